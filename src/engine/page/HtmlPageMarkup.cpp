#include "engine/page/HtmlPageMarkup.h"

#include "engine/page/PageFonts.h"

#include <cmath>

namespace Engine::HtmlPageMarkup {

namespace {

// A length in points with at most two decimals, as CSS and SVG read it.
QString Pt(double value)
{
    return QString::number(std::round(value * 100) / 100, 'g', 10);
}

QString ColorOf(const QColor &color)
{
    return color.name(QColor::HexRgb);
}

QString Escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

QString FontStyle(const PageFont &font)
{
    QStringList families;
    for (QString family : FontFamilies(font))
        families.append(
            QStringLiteral("&quot;%1&quot;")
                .arg(family.remove(QLatin1Char('"')).remove(QLatin1Char('<')).remove(QLatin1Char('>'))));
    return QStringLiteral("font:%1%2%3pt %4,sans-serif")
        .arg(font.italic ? QStringLiteral("italic ") : QString(),
             font.bold ? QStringLiteral("bold ") : QString(), Pt(font.pointSize),
             families.join(QLatin1Char(',')));
}

// The box is a flex container, so the alignment flags map straight to its two axes.
QString AlignmentStyle(Qt::Alignment alignment)
{
    const char *across = (alignment & Qt::AlignRight)     ? "flex-end"
                         : (alignment & Qt::AlignHCenter) ? "center"
                                                          : "flex-start";
    const char *down = (alignment & Qt::AlignBottom) ? "flex-end"
                       : (alignment & Qt::AlignTop)  ? "flex-start"
                                                     : "center";
    return QStringLiteral("justify-content:%1;align-items:%2")
        .arg(QLatin1String(across), QLatin1String(down));
}

QString TextElement(const PageText &text)
{
    return QStringLiteral(
               "<div class=\"t\" style=\"left:%1pt;top:%2pt;width:%3pt;height:%4pt;%5;%6\">%7</div>\n")
        .arg(Pt(text.box.left()), Pt(text.box.top()), Pt(text.box.width()), Pt(text.box.height()),
             FontStyle(text.font), AlignmentStyle(text.alignment), Escaped(text.text));
}

QString Graphics(const Page &page, const QSizeF &size)
{
    if (page.lines.isEmpty() && page.boxes.isEmpty())
        return QString();
    QString svg = QStringLiteral("<svg class=\"g\" viewBox=\"0 0 %1 %2\" style=\"width:%1pt;height:%2pt\">\n")
                      .arg(Pt(size.width()), Pt(size.height()));
    for (const PageBox &box : page.boxes)
        svg +=
            QStringLiteral("<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" fill=\"%5\" stroke=\"%6\" "
                           "stroke-width=\"%7\"/>\n")
                .arg(Pt(box.rect.x()), Pt(box.rect.y()), Pt(box.rect.width()), Pt(box.rect.height()),
                     box.fill.alpha() > 0 ? ColorOf(box.fill) : QStringLiteral("none"),
                     box.lineWidth > 0 ? QStringLiteral("black") : QStringLiteral("none"), Pt(box.lineWidth));
    for (const PageLine &line : page.lines)
        svg +=
            QStringLiteral(
                "<line x1=\"%1\" y1=\"%2\" x2=\"%3\" y2=\"%4\" stroke=\"black\" stroke-width=\"%5\"/>\n")
                .arg(Pt(line.from.x()), Pt(line.from.y()), Pt(line.to.x()), Pt(line.to.y()), Pt(line.width));
    return svg + QStringLiteral("</svg>\n");
}

} // namespace

QString DocumentHead(const QString &title)
{
    return QStringLiteral(
               "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>%1</title>\n<style>\n"
               "body { background: #e0e0e0; margin: 0; padding: 12pt 0; }\n"
               ".page { position: relative; margin: 0 auto 12pt auto; background: #fff; overflow: hidden;"
               " box-shadow: 0 0 4pt #999; }\n"
               ".page .g { position: absolute; left: 0; top: 0; }\n"
               ".page .t { position: absolute; display: flex; white-space: pre; overflow: hidden; }\n"
               ".navigator { text-align: center; font: 10pt sans-serif; margin: 0 0 12pt 0; }\n"
               ".navigator a, .navigator span { margin: 0 6pt; }\n"
               "@media print { body { background: none; padding: 0; } .navigator { display: none; }"
               " .page { margin: 0; box-shadow: none; page-break-after: always; } }\n"
               "</style>\n</head>\n<body>\n")
        .arg(Escaped(title));
}

QString DocumentTail()
{
    return QStringLiteral("</body>\n</html>\n");
}

QString PageBlock(const Page &page, const QSizeF &size)
{
    QString html = QStringLiteral("<div class=\"page\" id=\"page%1\" style=\"width:%2pt;height:%3pt\">\n")
                       .arg(page.number)
                       .arg(Pt(size.width()), Pt(size.height()));
    html += Graphics(page, size);
    for (const PageText &text : page.texts)
        if (!text.text.isEmpty())
            html += TextElement(text);
    return html + QStringLiteral("</div>\n");
}

} // namespace Engine::HtmlPageMarkup
