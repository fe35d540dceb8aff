#pragma once
// A hand-made report for the page renderers' tests: on each page a title, column headings under a
// line, rows of a three-column table in a box, and a "Page N of M" footer.

#include "engine/page/PageModel.h"

#include <QStringList>

namespace PageSample {

constexpr int RowsPerPage = 8;

inline Engine::PageText Text(double x, double y, double width, const QString &text,
                             Qt::Alignment alignment = Qt::AlignLeft, bool bold = false)
{
    Engine::PageText cell;
    cell.box = QRectF(x, y, width, 14);
    cell.text = text;
    cell.alignment = alignment | Qt::AlignVCenter;
    cell.font.bold = bold;
    return cell;
}

// The name in row `row` (1-based over the whole report); some rows carry characters that every
// writer has to escape or encode.
inline QString Name(int row)
{
    switch (row % 4) {
    case 1: return QStringLiteral("Smith & <Sons>");
    case 2: return QStringLiteral("Müller Grünwald");
    case 3: return QStringLiteral("Łódź {Ltd} \\ 5€");
    default: return QStringLiteral("Customer %1").arg(row);
    }
}

// The first column of row `row`: R001, R002, ...
inline QString RowLabel(int row)
{
    return QStringLiteral("R%1").arg(row, 3, 10, QLatin1Char('0'));
}

inline QString Amount(int row)
{
    return QString::number(row * 12.5, 'f', 2);
}

inline Engine::Page TablePage(int number, int pageCount)
{
    Engine::Page page;
    page.number = number;
    Engine::PageText title = Text(40, 40, 300, QStringLiteral("Sales by customer"), Qt::AlignLeft, true);
    title.font.pointSize = 14;
    title.box.setHeight(20);
    page.texts.append(title);
    page.texts.append(Text(40, 80, 60, QStringLiteral("Row"), Qt::AlignLeft, true));
    page.texts.append(Text(120, 80, 200, QStringLiteral("Customer"), Qt::AlignLeft, true));
    page.texts.append(Text(340, 80, 100, QStringLiteral("Amount"), Qt::AlignRight, true));
    page.lines.append(Engine::PageLine{QPointF(40, 96), QPointF(440, 96), 1});
    for (int i = 0; i < RowsPerPage; ++i) {
        const int row = (number - 1) * RowsPerPage + i + 1;
        const double y = 100 + i * 16;
        page.texts.append(Text(40, y, 60, RowLabel(row)));
        page.texts.append(Text(120, y, 200, Name(row)));
        page.texts.append(Text(340, y, 100, Amount(row), Qt::AlignRight));
    }
    page.boxes.append(
        Engine::PageBox{QRectF(36, 76, 408, 100 + RowsPerPage * 16 - 72), 0.5, QColor(240, 240, 240)});
    page.texts.append(Text(40, 460, 200, QStringLiteral("Page %1 of %2").arg(number).arg(pageCount)));
    return page;
}

// A small paper, 500 x 560 points, so that the footer lies near the bottom in both orientations.
inline Engine::PageSetup Setup(bool landscape)
{
    Engine::PageSetup setup;
    setup.size = QSizeF(500, 560);
    setup.landscape = landscape;
    setup.margins = QMarginsF(30, 30, 30, 30);
    setup.title = QStringLiteral("Sales & Co");
    return setup;
}

inline void Render(Engine::PageSink &sink, const Engine::PageSetup &setup, int pageCount)
{
    sink.begin(setup, pageCount);
    for (int number = 1; number <= pageCount; ++number)
        sink.addPage(TablePage(number, pageCount));
    sink.end();
}

} // namespace PageSample
