#include "engine/layout/TextFit.h"

#include "engine/page/PageFonts.h"

namespace Engine {

namespace {

// Most cells are short Latin texts far narrower than their column: those need no measuring.
bool SurelyFits(const QString &text, const QFontMetricsF &metrics, double width)
{
    if (text.size() * metrics.maxWidth() > width)
        return false;
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x100; });
}

bool Fits(const QString &text, const QFontMetricsF &metrics, double width)
{
    return SurelyFits(text, metrics, width) || metrics.horizontalAdvance(text) <= width;
}

// The longest start of `word` that fits, at least one character so that wrapping always advances.
qsizetype FittingPrefix(const QString &word, const QFontMetricsF &metrics, double width)
{
    qsizetype length = 1;
    while (length < word.size() && metrics.horizontalAdvance(word.left(length + 1)) <= width)
        ++length;
    if (length < word.size() && word[length - 1].isHighSurrogate())
        ++length;
    return length;
}

void WrapParagraph(const QString &paragraph, const QFontMetricsF &metrics, double width, QStringList &lines)
{
    QString line;
    for (QString word : paragraph.split(QLatin1Char(' '))) {
        const QString joined = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (Fits(joined, metrics, width)) {
            line = joined;
            continue;
        }
        if (!line.isEmpty())
            lines.append(line);
        while (!Fits(word, metrics, width)) {
            const qsizetype length = FittingPrefix(word, metrics, width);
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
    const QFontMetricsF &metrics = MetricsOf(font);
    if (Fits(text, metrics, width))
        return text;
    return metrics.elidedText(text, Qt::ElideRight, std::max(0.0, width));
}

QStringList Wrapped(const QString &text, const PageFont &font, double width)
{
    const QFontMetricsF &metrics = MetricsOf(font);
    QStringList lines;
    for (const QString &paragraph : text.split(QLatin1Char('\n')))
        WrapParagraph(paragraph, metrics, width, lines);
    return lines;
}

} // namespace Engine
