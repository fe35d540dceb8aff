// Measures the report engine on 1,000,000 SQLite rows: CSV export against `sqlite3 -csv` on the same
// query in the same run (target: within 2 times), Excel and PDF exports of all rows, PDF and HTML of
// 100,000 rows (target: PDF under 3 seconds). Each export runs in a process of its own, so that its
// peak memory is its own (target: below 150 MB). Then how soon an export of all rows stops once asked,
// a second into it (target: well under a second).
//
// bench_engine [--rows N]

#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"
#include "engine/StopCheck.h"
#include "support/SalesDatabase.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <atomic>
#include <cstdio>
#include <sys/resource.h>
#include <thread>

namespace {

const char *const Query = "SELECT id, order_date, region, customer, quantity, amount FROM sales";

long PeakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Processor seconds, user and system, of this process or of its children that have ended.
double ProcessorSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval &t) { return double(t.tv_sec) + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// A report over the first `rows` records.
QString WriteReport(const QString &folder, int rows)
{
    const QString path = folder + QStringLiteral("/bench-%1.rpt").arg(rows);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    file.write(QByteArray(R"(<?xml version="1.0" encoding="UTF-8"?>
<report version="1">
  <title>Benchmark</title>
  <table name="Sales" location="sales" dll="sqlite"><property name="Database">bench.db</property></table>
  <query>)") + QByteArray(Query).replace("FROM sales", "FROM {Sales}") +
               " WHERE id &lt;= " + QByteArray::number(rows) + R"( ORDER BY id</query>
  <layout>
    <column field="id" caption="Order" width="50" align="right"/>
    <column field="order_date" caption="Date" width="70" format="dd-MMM-yyyy"/>
    <column field="region" caption="Region" width="60"/>
    <column field="customer" caption="Customer" width="160"/>
    <column field="quantity" caption="Qty" width="40" align="right"/>
    <column field="amount" caption="Amount" width="80" align="right" format="#,##0.00"/>
    <grandTotal field="amount"/>
  </layout>
</report>
)");
    return path;
}

// The child's work: one export, then "seconds processor-seconds peak-KiB pages bytes" on one line.
int RunExport(const QString &report, int formatType, const QString &target)
{
    QElapsedTimer timer;
    timer.start();
    try {
        Engine::Application application;
        auto opened = application.OpenReport(report);
        Engine::ExportOptions &options = opened->ExportOptions();
        options.FormatType = formatType;
        options.DiskFileName = target;
        options.HTMLFileName = target;
        // As the scheduler sets it for "CSV File".
        options.UseReportDateFormat = true;
        options.UseReportNumberFormat = true;
        options.CharFieldDelimiter = QStringLiteral("|");
        options.CharStringDelimiter = QStringLiteral("'");
        opened->Export(false);
        const double seconds = timer.nsecsElapsed() / 1e9;
        const long peak = PeakKilobytes();
        // Counted by a paginated export already; the data exports leave it alone.
        const bool paginated = formatType == Engine::PdfFormat || formatType == Engine::HtmlFormat;
        std::printf("%.3f %.3f %ld %d %lld\n", seconds, ProcessorSeconds(RUSAGE_SELF), peak,
                    paginated ? opened->PrintingStatus().NumberOfPages() : 0, QFileInfo(target).size());
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}

std::atomic<bool> g_stopAsked{false};

bool AskedToStop() noexcept
{
    return g_stopAsked.load();
}

// The child's work: one export, asked to stop `delay` ms after it starts; prints how long the export
// went on after the request, in ms.
int RunStoppedExport(const QString &report, int formatType, const QString &target, int delay)
{
    Engine::SetStopCheck(&AskedToStop);
    QElapsedTimer sinceAsked;
    std::thread asker([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        sinceAsked.start();
        g_stopAsked = true;
    });
    int status = 1;
    try {
        Engine::Application application;
        auto opened = application.OpenReport(report);
        opened->ExportOptions().FormatType = formatType;
        opened->ExportOptions().DiskFileName = target;
        opened->Export(false);
        std::fprintf(stderr, "the export ended before it was asked to stop\n");
    } catch (const Engine::EngineError &error) {
        if (error.number() == Engine::EngineError::Stopped) {
            std::printf("%.1f\n", sinceAsked.nsecsElapsed() / 1e6);
            status = 0;
        } else {
            std::fprintf(stderr, "%s\n", error.what());
        }
    }
    asker.join();
    return status;
}

void PrintStop(const char *what, const QString &report, int formatType, const QString &target)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--stop"), report, QString::number(formatType), target});
    child.waitForFinished(-1);
    if (child.exitCode() != 0)
        std::fprintf(stderr, "stopping %s failed: %s\n", what, child.readAllStandardError().constData());
    else
        std::printf("%-18s stopped %s ms after the request, a second into it\n", what,
                    child.readAllStandardOutput().trimmed().constData());
}

struct Measure
{
    double seconds = -1;
    double processor = -1;
    long peakKilobytes = 0;
    int pages = 0;
    qint64 bytes = 0;
};

Measure Measured(const QString &report, int formatType, const QString &target)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--export"), report, QString::number(formatType), target});
    child.waitForFinished(-1);
    Measure measure;
    const QList<QByteArray> fields = child.readAllStandardOutput().trimmed().split(' ');
    if (child.exitCode() != 0 || fields.size() != 5) {
        std::fprintf(stderr, "export %d failed: %s\n", formatType, child.readAllStandardError().constData());
        return measure;
    }
    measure = {fields[0].toDouble(), fields[1].toDouble(), fields[2].toLong(), fields[3].toInt(),
               fields[4].toLongLong()};
    return measure;
}

Measure TimeSqliteShell(const QString &folder, int rows)
{
    const QString sqlite3 = QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
    if (sqlite3.isEmpty())
        return Measure();
    const double before = ProcessorSeconds(RUSAGE_CHILDREN);
    QProcess process;
    process.setStandardOutputFile(folder + QStringLiteral("/shell.csv"));
    QElapsedTimer timer;
    timer.start();
    process.start(sqlite3,
                  {QStringLiteral("-csv"), folder + QStringLiteral("/bench.db"),
                   QString::fromLatin1(Query) + QStringLiteral(" WHERE id <= %1 ORDER BY id").arg(rows)});
    process.waitForFinished(-1);
    Measure measure;
    measure.seconds = timer.nsecsElapsed() / 1e9;
    measure.processor = ProcessorSeconds(RUSAGE_CHILDREN) - before;
    return measure;
}

void Print(const char *what, int rows, const Measure &measure)
{
    std::printf("%-18s %8d rows: %7.3f s (processor %6.3f s), %8.0f rows/s, peak %6.1f MB, %6d pages, "
                "%6.1f MB written\n",
                what, rows, measure.seconds, measure.processor, rows / measure.seconds,
                measure.peakKilobytes / 1024.0, measure.pages, measure.bytes / 1048576.0);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.value(1) == QLatin1String("--export"))
        return RunExport(arguments.value(2), arguments.value(3).toInt(), arguments.value(4));
    if (arguments.value(1) == QLatin1String("--stop"))
        return RunStoppedExport(arguments.value(2), arguments.value(3).toInt(), arguments.value(4), 1000);
    const qsizetype rowsAt = arguments.indexOf(QStringLiteral("--rows"));
    const int rows = rowsAt > 0 ? arguments.value(rowsAt + 1).toInt() : 1000000;
    const int pdfRows = std::min(rows, 100000);

    QTemporaryDir folder;
    QElapsedTimer timer;
    timer.start();
    if (!BenchData::MakeDatabase(folder.filePath(QStringLiteral("bench.db")), rows)) {
        std::fprintf(stderr, "cannot build the benchmark database\n");
        return 1;
    }
    std::printf("%d rows written to SQLite in %.1f s\n", rows, timer.nsecsElapsed() / 1e9);
    const QString all = WriteReport(folder.path(), rows);
    const QString some = WriteReport(folder.path(), pdfRows);

    const Measure csv =
        Measured(all, Engine::CharSeparatedFormat, folder.filePath(QStringLiteral("out.csv")));
    Print("CSV (5)", rows, csv);
    const Measure shell = TimeSqliteShell(folder.path(), rows);
    if (shell.seconds > 0)
        std::printf("sqlite3 -csv       %8d rows: %7.3f s (processor %6.3f s); engine CSV / sqlite3 = %.2f, "
                    "by processor time %.2f (target 2 or less)\n",
                    rows, shell.seconds, shell.processor, csv.seconds / shell.seconds,
                    csv.processor / shell.processor);
    Print("Excel data (38)", rows,
          Measured(all, Engine::ExcelDataOnlyFormat, folder.filePath(QStringLiteral("data.xls"))));
    Print("Excel report (29)", rows,
          Measured(all, Engine::Excel80Format, folder.filePath(QStringLiteral("report.xls"))));
    const Measure pdf = Measured(some, Engine::PdfFormat, folder.filePath(QStringLiteral("some.pdf")));
    Print("PDF (31)", pdfRows, pdf);
    std::printf("PDF of %d rows in %.3f s (target under 3 s)\n", pdfRows, pdf.seconds);
    Print("HTML (24)", pdfRows,
          Measured(some, Engine::HtmlFormat, folder.filePath(QStringLiteral("some.html"))));
    if (rows > pdfRows)
        Print("PDF (31)", rows, Measured(all, Engine::PdfFormat, folder.filePath(QStringLiteral("all.pdf"))));
    PrintStop("CSV (5)", all, Engine::CharSeparatedFormat, folder.filePath(QStringLiteral("stop.csv")));
    PrintStop("PDF (31)", all, Engine::PdfFormat, folder.filePath(QStringLiteral("stop.pdf")));
    return 0;
}
