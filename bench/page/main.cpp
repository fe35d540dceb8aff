// Renders a 2000-page table report (100,000 rows of 6 columns) to PDF and prints the time it takes
// and the peak memory of the process. Targets: under 10 s and under 100 MB.
// Usage: bench_page [OUTPUT.pdf] [ROWS]

#include "engine/page/PdfPageSink.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <sys/resource.h>

using namespace Engine;

namespace {

constexpr int RowsPerPage = 50;
constexpr int Columns = 6;
constexpr double RowHeight = 13;
constexpr double ColumnWidth = 85;

PageText Cell(double x, double y, const QString &text, Qt::Alignment alignment = Qt::AlignLeft)
{
    PageText cell;
    cell.box = QRectF(x, y, ColumnWidth - 4, RowHeight);
    cell.text = text;
    cell.alignment = alignment | Qt::AlignVCenter;
    return cell;
}

// One page as the paginator would give it: a title, column headings, 50 rows, a footer.
Page TablePage(int number, int pageCount, int firstRow, int rowCount)
{
    Page page;
    page.number = number;
    PageText title = Cell(36, 36, QStringLiteral("Orders by customer"));
    title.box.setWidth(300);
    title.font.pointSize = 14;
    title.font.bold = true;
    page.texts.append(title);
    for (int column = 0; column < Columns; ++column) {
        PageText heading = Cell(36 + column * ColumnWidth, 64, QStringLiteral("Column %1").arg(column + 1));
        heading.font.bold = true;
        page.texts.append(heading);
    }
    page.lines.append(PageLine{QPointF(36, 78), QPointF(36 + Columns * ColumnWidth, 78), 0.75});
    for (int row = 0; row < rowCount; ++row) {
        const int id = firstRow + row;
        const double y = 82 + row * RowHeight;
        page.texts.append(Cell(36, y, QString::number(id), Qt::AlignRight));
        page.texts.append(Cell(36 + ColumnWidth, y, QStringLiteral("Customer %1").arg(id % 977)));
        page.texts.append(Cell(36 + 2 * ColumnWidth, y,
                               QStringLiteral("2026-%1-%2")
                                   .arg(1 + id % 12, 2, 10, QLatin1Char('0'))
                                   .arg(1 + id % 28, 2, 10, QLatin1Char('0'))));
        page.texts.append(Cell(36 + 3 * ColumnWidth, y, QStringLiteral("Product line %1").arg(id % 31)));
        page.texts.append(Cell(36 + 4 * ColumnWidth, y, QString::number(id * 7 % 1000), Qt::AlignRight));
        page.texts.append(Cell(36 + 5 * ColumnWidth, y, QString::number(id * 1.37, 'f', 2), Qt::AlignRight));
    }
    PageText footer = Cell(36, 800, QStringLiteral("Page %1 of %2").arg(number).arg(pageCount));
    footer.box.setWidth(200);
    page.texts.append(footer);
    return page;
}

rusage Usage()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage;
}

double CpuSeconds(const rusage &usage)
{
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir scratch;
    const QString output =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : scratch.filePath(QStringLiteral("bench.pdf"));
    const int rows = argc > 2 ? QString::fromLocal8Bit(argv[2]).toInt() : 100000;
    const int pageCount = (rows + RowsPerPage - 1) / RowsPerPage;
    const rusage before = Usage();

    QElapsedTimer timer;
    timer.start();
    PdfPageSink sink(output);
    PageSetup setup;
    setup.title = QStringLiteral("Benchmark");
    sink.begin(setup, pageCount);
    for (int number = 1; number <= pageCount; ++number) {
        const int first = (number - 1) * RowsPerPage;
        sink.addPage(TablePage(number, pageCount, first + 1, qMin(RowsPerPage, rows - first)));
    }
    sink.end();
    const qint64 elapsed = timer.elapsed();
    const rusage after = Usage();

    if (sink.failed()) {
        std::fprintf(stderr, "%s\n", qPrintable(sink.errorString()));
        return 1;
    }
    std::printf("PDF: %d rows, %d pages, %.1f MB file\n", rows, pageCount,
                QFileInfo(output).size() / 1048576.0);
    // CPU time shows the cost on a busy machine, where the wall clock also counts other programs.
    std::printf("time: %.2f s wall, %.2f s CPU (target < 10 s)\n", elapsed / 1000.0,
                CpuSeconds(after) - CpuSeconds(before));
    std::printf("peak memory: %.1f MB (target < 100 MB; %.1f MB before rendering)\n",
                after.ru_maxrss / 1024.0, before.ru_maxrss / 1024.0);
    return 0;
}
