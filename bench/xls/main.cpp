// Writes 100,000 rows of 6 mixed columns to an .xls file and prints the time taken and the peak memory.
// Usage: bench_xls [ROWS [FILE]]; without FILE the workbook goes to a temporary folder.

#include "engine/xls/XlsSheetSeries.h"
#include "engine/xls/XlsWorkbook.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

using namespace Engine;

namespace {

// The process's peak resident memory in MiB, from the kernel's own count.
double PeakMemoryMiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return -1;
}

void WriteRows(XlsWorkbook &book, int rows)
{
    const QStringList customers{QStringLiteral("Müller GmbH"), QStringLiteral("Smith & Sons"),
                                QStringLiteral("Ωmega Ltd"), QStringLiteral("東京商事"),
                                QStringLiteral("Dupont SA")};
    const XlsStyle money = book.addStyle(QStringLiteral("#,##0.00"));
    XlsSheetSeries series(book, QStringLiteral("Sheet"));
    series.setHeadings({QStringLiteral("Order"), QStringLiteral("Customer"), QStringLiteral("Quantity"),
                        QStringLiteral("Amount"), QStringLiteral("Ordered"), QStringLiteral("Note")});
    for (int i = 0; i < rows; ++i) {
        const XlsRowPlace at = series.appendRow();
        at.sheet->writeText(at.row, 0, QStringLiteral("ORD-%1").arg(i, 7, 10, QLatin1Char('0')));
        at.sheet->writeText(at.row, 1, customers[i % customers.size()]);
        at.sheet->writeNumber(at.row, 2, i % 250);
        at.sheet->writeNumber(at.row, 3, i * 1.37 + 0.001, money);
        at.sheet->writeDate(at.row, 4, 45000 + i / 100 + (i % 96) / 96.0);
        at.sheet->writeText(at.row, 5, QStringLiteral("note %1 for this order").arg(i % 5000));
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int rows = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 100000;
    QTemporaryDir dir;
    const QString path =
        argc > 2 ? QString::fromLocal8Bit(argv[2]) : dir.filePath(QStringLiteral("bench.xls"));
    QTextStream out(stdout);

    QElapsedTimer timer;
    timer.start();
    XlsWorkbook book;
    WriteRows(book, rows);
    const qint64 cellsMs = timer.elapsed();
    if (!book.save(path)) {
        out << "save failed: " << book.errorString() << Qt::endl;
        return 1;
    }
    const qint64 totalMs = timer.elapsed();
    out << "rows x columns:      " << rows << " x 6 on " << book.sheetCount() << " sheet(s)\n"
        << "cells encoded in:    " << cellsMs << " ms\n"
        << "saved in:            " << totalMs - cellsMs << " ms\n"
        << "total:               " << totalMs << " ms (target under 5000 ms)\n"
        << "file size:           " << QFileInfo(path).size() / 1024 << " KiB\n"
        << "peak memory (VmHWM): " << QString::number(PeakMemoryMiB(), 'f', 1) << " MiB" << Qt::endl;
    return 0;
}
