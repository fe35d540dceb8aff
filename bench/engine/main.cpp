// Measures the report engine on 100,000 SQLite rows: CSV export against `sqlite3 -csv` on the same
// query (target: within 3 times), then PDF and Excel exports. Prints rows per second and peak memory.

#include "engine/Application.h"
#include "engine/Report.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdio>
#include <sys/resource.h>

namespace {

constexpr int Rows = 100000;
const char *const Query = "SELECT id, order_date, region, customer, quantity, amount FROM sales ORDER BY id";

long PeakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

bool MakeDatabase(const QString &path)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(path);
    if (!db.open())
        return false;
    QSqlQuery q(db);
    q.exec(QStringLiteral("CREATE TABLE sales (id INTEGER, order_date DATE, region TEXT, customer TEXT, "
                          "quantity INTEGER, amount DOUBLE)"));
    db.transaction();
    q.prepare(QStringLiteral("INSERT INTO sales VALUES (?, ?, ?, ?, ?, ?)"));
    const QStringList regions{QStringLiteral("North"), QStringLiteral("South"), QStringLiteral("East"),
                              QStringLiteral("West")};
    const QDate start(2024, 1, 1);
    for (int i = 1; i <= Rows; ++i) {
        q.addBindValue(i);
        q.addBindValue(start.addDays(i % 366).toString(Qt::ISODate));
        q.addBindValue(regions[i % 4]);
        q.addBindValue(QStringLiteral("Customer \"%1\", Ltd").arg(i % 997));
        q.addBindValue(1 + i % 40);
        q.addBindValue((i % 10000) / 4.0);
        if (!q.exec())
            return false;
    }
    const bool ok = db.commit();
    db.close();
    return ok;
}

QString WriteReport(const QString &folder)
{
    const QString path = folder + QStringLiteral("/bench.rpt");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    file.write(QByteArray(R"(<?xml version="1.0" encoding="UTF-8"?>
<report version="1">
  <title>Benchmark</title>
  <table name="Sales" location="sales" dll="sqlite"><property name="Database">bench.db</property></table>
  <query>)") + QByteArray(Query).replace("FROM sales", "FROM {Sales}") +
               R"(</query>
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

double TimeExport(Engine::Application &application, const QString &report, int formatType,
                  const QString &target)
{
    QElapsedTimer timer;
    timer.start();
    auto opened = application.OpenReport(report);
    opened->ExportOptions().FormatType = formatType;
    opened->ExportOptions().DiskFileName = target;
    if (formatType == Engine::CharSeparatedFormat) {
        // As the scheduler sets it for "CSV File".
        opened->ExportOptions().UseReportDateFormat = true;
        opened->ExportOptions().UseReportNumberFormat = true;
        opened->ExportOptions().CharFieldDelimiter = QStringLiteral("|");
        opened->ExportOptions().CharStringDelimiter = QStringLiteral("'");
    }
    opened->ReadRecords();
    const double read = timer.nsecsElapsed() / 1e9;
    opened->Export(false);
    const double seconds = timer.nsecsElapsed() / 1e9;
    std::printf("format %2d: %7.3f s (read %.3f s), %9.0f rows/s, %d pages, peak memory %ld KiB\n",
                formatType, seconds, read, Rows / seconds, opened->PrintingStatus().NumberOfPages(),
                PeakKilobytes());
    return seconds;
}

double TimeSqliteShell(const QString &folder)
{
    const QString sqlite3 = QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
    if (sqlite3.isEmpty())
        return -1;
    QProcess process;
    process.setStandardOutputFile(folder + QStringLiteral("/shell.csv"));
    QElapsedTimer timer;
    timer.start();
    process.start(sqlite3,
                  {QStringLiteral("-csv"), folder + QStringLiteral("/bench.db"), QString::fromLatin1(Query)});
    process.waitForFinished(-1);
    return timer.nsecsElapsed() / 1e9;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const bool all = !app.arguments().contains(QStringLiteral("--csv-only"));
    QTemporaryDir folder;
    if (!MakeDatabase(folder.filePath(QStringLiteral("bench.db")))) {
        std::fprintf(stderr, "cannot build the benchmark database\n");
        return 1;
    }
    const QString report = WriteReport(folder.path());
    std::printf("%d rows, peak memory before the runs %ld KiB\n", Rows, PeakKilobytes());
    Engine::Application application;
    try {
        const double csv = TimeExport(application, report, Engine::CharSeparatedFormat,
                                      folder.filePath(QStringLiteral("out.csv")));
        const double shell = TimeSqliteShell(folder.path());
        if (shell > 0)
            std::printf("sqlite3 -csv: %7.3f s; engine CSV / sqlite3 = %.2f (target 3 or less)\n", shell,
                        csv / shell);
        if (all) {
            TimeExport(application, report, Engine::ExcelDataOnlyFormat,
                       folder.filePath(QStringLiteral("out.xls")));
            TimeExport(application, report, Engine::Excel80Format,
                       folder.filePath(QStringLiteral("report.xls")));
            TimeExport(application, report, Engine::PdfFormat, folder.filePath(QStringLiteral("out.pdf")));
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
