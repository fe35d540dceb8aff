#include "engine/page/PageFonts.h"

#include <QHash>
#include <QImage>
#include <memory>

namespace Engine {

namespace {

// Debian's fonts-noto-cjk; the simplified Chinese face covers the common CJK ideographs, kana and
// hangul. DejaVu fills in symbols and scripts the office fonts lack.
const QStringList &Fallbacks()
{
    static const QStringList families = {QStringLiteral("DejaVu Sans"), QStringLiteral("Noto Sans CJK SC")};
    return families;
}

// A device of 72 dots an inch, so that font measures come out in points.
const QImage &PointDevice()
{
    static const QImage device = [] {
        QImage image(1, 1, QImage::Format_Mono);
        constexpr int DotsPerMeterAt72Dpi = 2835;
        image.setDotsPerMeterX(DotsPerMeterAt72Dpi);
        image.setDotsPerMeterY(DotsPerMeterAt72Dpi);
        return image;
    }();
    return device;
}

} // namespace

// Found by argument-dependent lookup from the font cache below.
static size_t qHash(const PageFont &font, size_t seed = 0)
{
    return qHashMulti(seed, font.family, font.pointSize, font.bold, font.italic);
}

QStringList FontFamilies(const PageFont &font)
{
    QStringList families{font.family};
    for (const QString &family : Fallbacks()) {
        if (!families.contains(family))
            families.append(family);
    }
    return families;
}

QFont ToQFont(const PageFont &font)
{
    QFont result;
    result.setFamilies(FontFamilies(font));
    // NaN fails the comparison and becomes the smallest size too.
    result.setPointSizeF(font.pointSize >= 1 ? qMin(font.pointSize, 1000.0) : 1);
    result.setBold(font.bold);
    result.setItalic(font.italic);
    // Positions come from the font's outlines, not from a screen grid.
    result.setHintingPreference(QFont::PreferNoHinting);
    return result;
}

bool LatinGlyphs::lookUp(QStringView text, QList<quint32> *glyphs, double &width) const
{
    width = 0;
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code > 0xFF || glyph[code] == 0)
            return false;
        width += advance[code];
        if (glyphs)
            glyphs->append(glyph[code]);
    }
    return true;
}

const LatinGlyphs &LatinGlyphsOf(const PageFont &font)
{
    static QHash<PageFont, std::shared_ptr<LatinGlyphs>> cache;
    // Texts come in runs of the same font: the last one is asked for most.
    static std::pair<PageFont, const LatinGlyphs *> last;
    if (last.second && last.first == font)
        return *last.second;
    auto found = cache.constFind(font);
    if (found != cache.constEnd()) {
        last = {font, found->get()};
        return **found;
    }
    auto glyphs = std::make_shared<LatinGlyphs>();
    glyphs->font = QRawFont::fromFont(ToQFont(font));
    glyphs->font.setPixelSize(ToQFont(font).pointSizeF()); // a pixel is a point on the page
    QString characters;
    for (char16_t code = 0x20; code <= 0xFF; ++code)
        characters += QChar(code);
    const QList<quint32> indexes = glyphs->font.glyphIndexesForString(characters);
    const QList<QPointF> advances = glyphs->font.advancesForGlyphIndexes(indexes);
    for (qsizetype i = 0; i < characters.size() && i < indexes.size(); ++i) {
        const char16_t code = characters[i].unicode();
        // Control characters and the soft hyphen need more than a glyph.
        if (code >= 0x7F && code < 0xA0)
            continue;
        glyphs->glyph[code] = indexes[i];
        glyphs->advance[code] = advances.value(i).x();
    }
    last = {font, glyphs.get()};
    return **cache.insert(font, glyphs);
}

const QFontMetricsF &MetricsOf(const PageFont &font)
{
    static QHash<PageFont, std::shared_ptr<QFontMetricsF>> cache;
    auto found = cache.constFind(font);
    if (found == cache.constEnd())
        found = cache.insert(font, std::make_shared<QFontMetricsF>(ToQFont(font), &PointDevice()));
    return **found;
}

} // namespace Engine
