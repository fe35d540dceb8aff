#include "engine/page/HtmlPageMarkup.h"

#include "engine/page/PageFonts.h"
#include "engine/page/PageGeometry.h"

#include <QBuffer>
#include <cmath>
#include <map>
#include <set>

namespace Engine::HtmlPageMarkup {

namespace {

// A length in points with at most two decimals, as CSS and SVG read it.
QString Pt(double value)
{
    return QString::number(std::round(Finite(value) * 100) / 100, 'g', 10);
}

double Rounded(double value)
{
    return std::round(Finite(value) * 100) / 100;
}

QString ColorOf(const QColor &color)
{
    return color.name(QColor::HexRgb);
}

QString Escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

// As a style sheet has it; an attribute needs its quotes escaped.
QString FontStyle(const PageFont &font)
{
    QStringList families;
    for (QString family : FontFamilies(font))
        families.append(QStringLiteral("\"%1\"").arg(
            family.remove(QLatin1Char('"')).remove(QLatin1Char('<')).remove(QLatin1Char('>'))));
    return QStringLiteral("font:%1%2%3pt %4,sans-serif")
        .arg(font.italic ? QStringLiteral("italic ") : QString(),
             font.bold ? QStringLiteral("bold ") : QString(), Pt(font.pointSize),
             families.join(QLatin1Char(',')));
}

// The box is a flex container, so the alignment flags map straight to its two axes.
QString FlexAlignment(Qt::Alignment alignment)
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

QString CellAlignment(Qt::Alignment alignment)
{
    const char *across = (alignment & Qt::AlignRight)     ? "right"
                         : (alignment & Qt::AlignHCenter) ? "center"
                                                          : "left";
    const char *down = (alignment & Qt::AlignBottom) ? "bottom"
                       : (alignment & Qt::AlignTop)  ? "top"
                                                     : "middle";
    return QStringLiteral("text-align:%1;vertical-align:%2").arg(QLatin1String(across), QLatin1String(down));
}

// A text that shares its row with one it overlaps stands on its own above the table.
QString FloatingText(const PageText &text)
{
    return QStringLiteral("<div class=\"t\" "
                          "style=\"left:%1pt;top:%2pt;width:%3pt;height:%4pt;%5;%6;color:%7%8\">%9</div>\n")
        .arg(Pt(text.box.left()), Pt(text.box.top()), Pt(text.box.width()), Pt(text.box.height()),
             Escaped(FontStyle(text.font)), FlexAlignment(text.alignment), ColorOf(text.color),
             text.background.isValid() ? QStringLiteral(";background-color:") + ColorOf(text.background)
                                       : QString(),
             Escaped(text.text));
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

// A text in a row of the table: its cell runs from its left edge to the next text's.
struct Cell
{
    const PageText *text;
    double start;
    double end;
};

struct Row
{
    double top;
    double height;     // of its texts' boxes
    double extent = 0; // down to the next row, when that follows closely
    QList<Cell> cells;
};

// The page's texts by rows, the texts of a row left to right; those that overlap another go to
// `floating`.
QList<Row> RowsOf(const Page &page, QList<const PageText *> &floating)
{
    std::map<double, QList<const PageText *>> byTop;
    for (const PageText &text : page.texts) {
        if (!text.text.isEmpty())
            byTop[std::round(Finite(text.box.top()) * 2) / 2].append(&text);
    }
    QList<Row> rows;
    for (auto &[top, texts] : byTop) {
        std::stable_sort(texts.begin(), texts.end(), [](const PageText *a, const PageText *b) {
            return Finite(a->box.left()) < Finite(b->box.left());
        });
        Row row{top, 0, 0, {}};
        double taken = -1e9;
        for (const PageText *text : texts) {
            if (Rounded(text->box.left()) < taken || text->box.width() <= 0) {
                floating.append(text);
                continue;
            }
            if (!row.cells.isEmpty())
                row.cells.back().end = Rounded(text->box.left());
            row.cells.append(Cell{text, Rounded(text->box.left()), Rounded(text->box.right())});
            taken = Rounded(text->box.right());
            row.height = std::max(row.height, Finite(text->box.height()));
        }
        if (!row.cells.isEmpty())
            rows.append(row);
    }
    // A row never reaches into the next, so that every row keeps its place; a narrow gap below it
    // belongs to the row, a wide one is a row of its own.
    for (int i = 0; i < rows.size(); ++i) {
        Row &row = rows[i];
        const double pitch = i + 1 < rows.size() ? rows[i + 1].top - row.top : row.height;
        row.height = std::max(0.0, std::min(row.height, pitch));
        row.extent = pitch - row.height <= row.height ? pitch : row.height;
    }
    return rows;
}

QString Table(const QList<Row> &rows, StyleSheet &styles)
{
    std::set<double> edges;
    for (const Row &row : rows) {
        for (const Cell &cell : row.cells) {
            edges.insert(cell.start);
            edges.insert(cell.end);
        }
    }
    const QList<double> grid(edges.begin(), edges.end());
    QString html = QStringLiteral("<table style=\"left:%1pt;top:%2pt;width:%3pt\"><colgroup>")
                       .arg(Pt(grid.first()), Pt(rows.first().top), Pt(grid.last() - grid.first()));
    for (int i = 0; i + 1 < grid.size(); ++i)
        html += QStringLiteral("<col style=\"width:%1pt\">").arg(Pt(grid[i + 1] - grid[i]));
    html += QStringLiteral("</colgroup>\n");
    const auto span = [](qsizetype columns) {
        return columns > 1 ? QStringLiteral(" colspan=\"%1\"").arg(columns) : QString();
    };
    double bottom = rows.first().top;
    for (const Row &row : rows) {
        if (row.top - bottom > 0.01)
            html += QStringLiteral("<tr class=\"%1\"><td%2></td></tr>\n")
                        .arg(styles.rowClass(row.top - bottom), span(grid.size() - 1));
        html += QStringLiteral("<tr class=\"%1\">").arg(styles.rowClass(row.extent));
        qsizetype column = 0;
        for (const Cell &cell : row.cells) {
            const qsizetype first = std::lower_bound(grid.begin(), grid.end(), cell.start) - grid.begin();
            const qsizetype last = std::lower_bound(grid.begin(), grid.end(), cell.end) - grid.begin();
            if (first > column)
                html += QStringLiteral("<td%1></td>").arg(span(first - column));
            html += QStringLiteral("<td class=\"%1\"%2>%3</td>")
                        .arg(styles.cellClass(*cell.text, cell.end - Rounded(cell.text->box.right()),
                                              row.extent - row.height),
                             span(last - first), Escaped(cell.text->text));
            column = last;
        }
        html += QStringLiteral("</tr>\n");
        bottom = row.top + row.extent;
    }
    return html + QStringLiteral("</table>\n");
}

} // namespace

QString StyleSheet::classFor(const QString &declaration, QChar prefix)
{
    const auto found = m_names.constFind(declaration);
    if (found != m_names.constEnd())
        return *found;
    const QString name = prefix + QString::number(m_names.size());
    m_names.insert(declaration, name);
    // "td.c1" outweighs the ".page td" of the document's head, which it refines.
    m_new +=
        QStringLiteral("%1.%2{%3}\n")
            .arg(prefix == QLatin1Char('c') ? QStringLiteral("td") : QStringLiteral("tr"), name, declaration);
    return name;
}

QString StyleSheet::cellClass(const PageText &text, double paddingRight, double paddingBottom)
{
    QString declaration = FontStyle(text.font) + QLatin1Char(';') + CellAlignment(text.alignment);
    if (text.color != Qt::black)
        declaration += QStringLiteral(";color:%1").arg(ColorOf(text.color));
    if (text.background.isValid())
        declaration += QStringLiteral(";background-color:%1").arg(ColorOf(text.background));
    if (paddingRight > 0.005)
        declaration += QStringLiteral(";padding-right:%1pt").arg(Pt(paddingRight));
    if (paddingBottom > 0.005)
        declaration += QStringLiteral(";padding-bottom:%1pt").arg(Pt(paddingBottom));
    return classFor(declaration, QLatin1Char('c'));
}

QString StyleSheet::rowClass(double height)
{
    return classFor(QStringLiteral("height:%1pt").arg(Pt(height)), QLatin1Char('h'));
}

QString StyleSheet::takeNew()
{
    if (m_new.isEmpty())
        return QString();
    QString style = QStringLiteral("<style>\n") + m_new + QStringLiteral("</style>\n");
    m_new.clear();
    return style;
}

QString DocumentHead(const QString &title)
{
    return QStringLiteral(
               "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>%1</title>\n<style>\n"
               "body { background: #e0e0e0; margin: 0; padding: 12pt 0; }\n"
               ".page { position: relative; margin: 0 auto 12pt auto; background: #fff; overflow: hidden;"
               " box-shadow: 0 0 4pt #999; }\n"
               ".page .g { position: absolute; left: 0; top: 0; }\n"
               ".page .p { position: absolute; }\n"
               ".page .t { position: absolute; display: flex; white-space: pre; overflow: hidden; }\n"
               ".page table { position: absolute; border-collapse: collapse; border-spacing: 0;"
               " table-layout: fixed; }\n"
               ".page td { padding: 0; white-space: pre; overflow: hidden; line-height: 1; }\n"
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

QString StyleSheet::pictureSource(const QImage &image)
{
    auto found = m_pictures.constFind(image.cacheKey());
    if (found == m_pictures.constEnd()) {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        found = m_pictures.insert(image.cacheKey(), QStringLiteral("data:image/png;base64,") +
                                                        QString::fromLatin1(png.toBase64()));
    }
    return *found;
}

QString PageBlock(const Page &page, const QSizeF &size, StyleSheet &styles)
{
    QList<const PageText *> floating;
    const QList<Row> rows = RowsOf(page, floating);
    QString body = Graphics(page, size);
    for (const PagePicture &picture : page.pictures)
        body +=
            QStringLiteral("<img class=\"p\" alt=\"\" style=\"left:%1pt;top:%2pt;width:%3pt;height:%4pt\" "
                           "src=\"%5\">\n")
                .arg(Pt(picture.box.left()), Pt(picture.box.top()), Pt(picture.box.width()),
                     Pt(picture.box.height()), styles.pictureSource(picture.image));
    if (!rows.isEmpty())
        body += Table(rows, styles);
    for (const PageText *text : floating)
        body += FloatingText(*text);
    return styles.takeNew() +
           QStringLiteral("<div class=\"page\" id=\"page%1\" style=\"width:%2pt;height:%3pt\">\n")
               .arg(page.number)
               .arg(Pt(size.width()), Pt(size.height())) +
           body + QStringLiteral("</div>\n");
}

} // namespace Engine::HtmlPageMarkup
