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

const QFontMetricsF &MetricsOf(const PageFont &font)
{
    static QHash<PageFont, std::shared_ptr<QFontMetricsF>> cache;
    auto found = cache.constFind(font);
    if (found == cache.constEnd())
        found = cache.insert(font, std::make_shared<QFontMetricsF>(ToQFont(font), &PointDevice()));
    return **found;
}

} // namespace Engine
