#include "engine/layout/TextFit.h"

#include "engine/page/PageFonts.h"

namespace Engine {

namespace {

// Most cells are Latin texts narrower than their column by more than kerning could add: those need no
// shaping.
bool SurelyFits(const QString &text, const LatinGlyphs &glyphs, double width)
{
    double advance = 0;
    return glyphs.lookUp(text, nullptr, advance) && advance * 1.02 + 0.5 <= width;
}

bool Fits(const QString &text, const PageFont &font, double width)
{
    return SurelyFits(text, LatinGlyphsOf(font), width) || MetricsOf(font).horizontalAdvance(text) <= width;
}

// The longest start of `word` that fits, at least one character so that wrapping always advances.
qsizetype FittingPrefix(const QString &word, const PageFont &font, double width)
{
    qsizetype length = 1;
    while (length < word.size() && MetricsOf(font).horizontalAdvance(word.left(length + 1)) <= width)
        ++length;
    if (length < word.size() && word[length - 1].isHighSurrogate())
        ++length;
    return length;
}

void WrapParagraph(const QString &paragraph, const PageFont &font, double width, QStringList &lines)
{
    QString line;
    for (QString word : paragraph.split(QLatin1Char(' '))) {
        const QString joined = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (Fits(joined, font, width)) {
            line = joined;
            continue;
        }
        if (!line.isEmpty())
            lines.append(line);
        while (!Fits(word, font, width)) {
            const qsizetype length = FittingPrefix(word, font, width);
            lines.append(word.left(length));
            word.remove(0, length);
        }
        line = word;
    }
    lines.append(line);
}

} // namespace

QString Elided(const QString &text, const PageFont &font, double width)
{
    if (Fits(text, font, width))
        return text;
    return MetricsOf(font).elidedText(text, Qt::ElideRight, std::max(0.0, width));
}

QStringList Wrapped(const QString &text, const PageFont &font, double width)
{
    QStringList lines;
    for (const QString &paragraph : text.split(QLatin1Char('\n')))
        WrapParagraph(paragraph, font, width, lines);
    return lines;
}

} // namespace Engine
