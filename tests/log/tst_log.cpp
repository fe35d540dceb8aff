#include "core/DayDate.h"
#include "core/QorloError.h"
#include "log/LogExport.h"
#include "log/clsLog.h"
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

class TestLog : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void roundTrip();
    void retention();
    void fullTable();
    void writeLogEntry();
    void damagedFiles();
    void csvExport();
};

using namespace TestSupport;

namespace {

void AddRow(clsLog &log, const QString &id, double start, double finish, const QString &text, qint32 pages)
{
    log.AddNew();
    log.SetReportID(id);
    log.SetLogDate(start);
    log.SetFinishDate(finish);
    log.SetLogText(text);
    log.SetPages(pages);
}

int RowsMarked(const clsLog &log, const QString &id)
{
    int rows = 0;
    for (int row = 0; row < log.Count(); ++row)
        rows += log.CellAt(row, clsLog::ColReportID) == id;
    return rows;
}

const double kNov21 = DayDate::FromParts(2026, 11, 21);

} // namespace

void TestLog::roundTrip()
{
    QTemporaryDir app;
    FixedClock clock(QDateTime(QDate(2026, 11, 21), QTime(10, 0)));
    const ClockGuard guard(clock);
    clsLog log(app.path());
    int webPages = 0;
    log.SetWebPageWriter([&webPages](const clsLog &) { ++webPages; });
    log.RetainLog = 30;
    log.DeleteLogDate = kNov21 + 3; // retention not due
    log.CheckRetainLog = QStringLiteral("W");
    log.WebLogSetting = QStringLiteral("Errors");
    AddRow(log, QStringLiteral("4"), kNov21 + 0.25, kNov21 + 0.26, QStringLiteral("Sent to a <b> & \"c\""),
           3);
    log.SetNextDate(QStringLiteral("28-Nov-2026 06:00"));
    AddRow(log, QStringLiteral("5"), kNov21 + 0.3, 0, QStringLiteral("caf\u00e9\r\nline two \u20ac"), 12);
    log.Save();
    QCOMPARE(webPages, 1);

    const QByteArray first = ReadFile(log.FileName());
    QVERIFY(first.contains("<RetainLog>30</RetainLog>\r\n<DeleteLogDate>24-Nov-2026</DeleteLogDate>"));
    QCOMPARE(first.count("<LogFinish>"), 1); // an empty finish writes no line
    QVERIFY(first.contains("<LogText>caf&#0233;&#0013;&#0010;line two \x80</LogText>"));

    clsLog fresh(app.path());
    fresh.Load(log.FileName());
    QCOMPARE(fresh.Count(), qint16(2));
    QCOMPARE(fresh.RetainLog, 30);
    QCOMPARE(fresh.WebLogSetting, QStringLiteral("Errors"));
    fresh.Locate(1);
    QCOMPARE(fresh.LogText(), QStringLiteral("caf\u00e9\r\nline two \u20ac"));
    QCOMPARE(fresh.FinishDate(), 0.0);
    QCOMPARE(fresh.LogDate(), kNov21 + 0.3);
    fresh.Save();
    QCOMPARE(ReadFile(log.FileName()), first);

    // Pages 0 is stored as empty text and reads back as "0".
    log.SetPages(0);
    QCOMPARE(log.PagesTxt(), QString());
    log.Save();
    fresh.Clear();
    fresh.Load(log.FileName());
    fresh.Locate(1);
    QCOMPARE(fresh.PagesTxt(), QStringLiteral("0"));
}

void TestLog::retention()
{
    QTemporaryDir app;
    FixedClock clock(QDateTime(QDate(2026, 3, 31), QTime(12, 0)));
    const ClockGuard guard(clock);
    const double mar1 = DayDate::FromParts(2026, 3, 1);
    clsLog log(app.path());
    log.ApplyStartDefaults(); // the check is due at the first save after a start
    AddRow(log, QStringLiteral("1"), mar1 + 9.0 / 24, 0, QStringLiteral("after the cutoff"), 1);
    AddRow(log, QStringLiteral("2"), mar1, 0, QStringLiteral("on the cutoff"), 1);
    AddRow(log, QStringLiteral("3"), mar1 - 0.5, 0, QStringLiteral("before"), 1);
    // Entries written without a start (a missing file) age by their finish.
    AddRow(log, QStringLiteral("4"), 0, mar1 - 1, QStringLiteral("Cannot find file /x.rpt"), 0);
    AddRow(log, QStringLiteral("5"), 0, mar1 + 1, QStringLiteral("Cannot find file /y.rpt"), 0);
    log.Save();
    log.Locate(4);
    QCOMPARE(log.ReportID(), QStringLiteral("5"));
    log.Locate(5);

    QCOMPARE(log.Count(), qint16(6));
    QCOMPARE(RowsMarked(log, QStringLiteral("DEL")), 3);
    QCOMPARE(log.ReportID(), QStringLiteral("LOG"));
    QCOMPARE(log.LogText(), QStringLiteral("Automatic delete of 3 items from log file"));
    QCOMPARE(log.DeleteLogDate, DayDate::FromParts(2026, 4, 7));
    // Deleted rows stay in the file while the cursor is on another row.
    QCOMPARE(ReadFile(log.FileName()).count("<LogReportID>DEL</LogReportID>"), 3);

    // Not due again: nothing changes. An unknown interval leaves the date, so every save checks,
    // and rows already marked count again.
    log.Save();
    QCOMPARE(log.Count(), qint16(6));
    log.CheckRetainLog = QStringLiteral("Q");
    log.DeleteLogDate = DayDate::FromParts(2026, 3, 30);
    log.Save();
    QCOMPARE(log.Count(), qint16(7));
    QCOMPARE(log.LogText(), QStringLiteral("Automatic delete of 3 items from log file"));
    QCOMPARE(log.DeleteLogDate, DayDate::FromParts(2026, 3, 30));

    // With the cursor on a deleted row no row at all is written.
    log.DeleteLogDate = DayDate::FromParts(2026, 5, 1);
    log.Locate(1);
    log.Save();
    QCOMPARE(ReadFile(log.FileName()).count("<QorloLog>"), 0);

    // A check date of two years ago reads as today.
    WriteFile(log.FileName(), "<DeleteLogDate>01-Jan-2024</DeleteLogDate>\r\n<RetainLog>9</RetainLog>\r\n");
    log.Load(log.FileName());
    QCOMPARE(log.DeleteLogDate, DayDate::FromParts(2026, 3, 31));
    QCOMPARE(log.RetainLog, 9);
}

void TestLog::fullTable()
{
    QTemporaryDir app;
    clsLog log(app.path());
    for (int i = 0; i < 10000; ++i)
        log.AddNew();
    log.Locate(0);
    log.SetReportID(QStringLiteral("77"));
    log.SetPages(5);
    log.Locate(1);
    log.SetLogText(QStringLiteral("old"));
    log.AddNew(); // the 10001st
    QCOMPARE(log.Count(), qint16(2));
    QCOMPARE(log.Cursor(), qint16(1));
    QCOMPARE(log.LogText(), QString()); // a new row is blank
    log.Locate(0);
    QCOMPARE(log.LogText(), QStringLiteral("Log file full - all entries removed"));
    QCOMPARE(log.ReportID(), QStringLiteral("77")); // left over from the old row 0
    QCOMPARE(log.Pages(), 5);
    log.Locate(-1);
    QVERIFY_THROWS_EXCEPTION(QorloError, log.ReportID());
}

void TestLog::writeLogEntry()
{
    QTemporaryDir app;
    OffsetClock clock(QDateTime(QDate(2026, 11, 21), QTime(10, 0)));
    const ClockGuard guard(clock);
    clsLog log(app.path());
    WriteLogEntry(log, QStringLiteral("8"), kNov21 + 0.5 + 7.0 / 86400, 0, QString(), QStringLiteral("one"),
                  0);

    // What another copy of the log wrote is picked up; dates keep only their text's precision.
    clsLog other(app.path());
    WriteLogEntry(other, QStringLiteral("9"), kNov21 + 0.6, kNov21 + 0.7, QStringLiteral("tomorrow"),
                  QStringLiteral("two"), 4);
    WriteLogEntry(log, QStringLiteral("10"), kNov21 + 0.8, 0, QString(), QStringLiteral("three"), 1);
    QCOMPARE(log.Count(), qint16(3));
    log.Locate(0);
    QCOMPARE(log.LogDateTxt(), QStringLiteral("21-Nov-2026 12:00"));
    QCOMPARE(log.FinishDateTxt(), QString());
    log.Locate(1);
    QCOMPARE(log.NextDate(), QStringLiteral("tomorrow"));
    QCOMPARE(log.Pages(), 4);
}

void TestLog::damagedFiles()
{
    QTemporaryDir app;
    clsLog log(app.path());
    log.Load(TestSupport::DataFile(QStringLiteral("log/QorloLog-truncated.XML")));
    QCOMPARE(log.Count(), qint16(2));
    QCOMPARE(log.RetainLog, 45);
    QCOMPARE(log.CheckRetainLog, QStringLiteral("M"));
    log.Locate(0);
    QCOMPARE(log.LogDateTxt(), QStringLiteral("19-Nov-2026 08:05"));
    // The reference without its own ";" swallows text up to the next ";".
    QCOMPARE(log.LogText(), QStringLiteral("Sent \u00e9t\u00e9 more"));
    QCOMPARE(log.PagesTxt(), QStringLiteral("0"));
    log.Locate(1);
    QCOMPARE(log.LogText(), QStringLiteral("Part of a li"));

    QRandomGenerator random(RandomSeed());
    QByteArray garbage(64 * 1024, Qt::Uninitialized);
    for (char &byte : garbage)
        byte = char(random.bounded(256));
    WriteFile(log.FileName(), garbage);
    log.Clear();
    log.Load(log.FileName());
    QCOMPARE(log.Count(), qint16(0));

    // A start that is no date raises the type mismatch; the rows before it stay.
    WriteFile(
        log.FileName(),
        "<QorloLog>\r\n<LogText>kept</LogText>\r\n<QorloLog>\r\n<LogDate>31-Feb-2026 10:00</LogDate>\r\n");
    QCOMPARE(ErrorOf([&] { log.Load(log.FileName()); }), int(QorloError::TypeMismatch));
    QCOMPARE(log.Count(), qint16(2));
    QCOMPARE(log.CellAt(0, clsLog::ColText), QStringLiteral("kept"));
}

void TestLog::csvExport()
{
    QTemporaryDir app;
    clsLog log(app.path());
    QCOMPARE(LogExport::ExportLogCsv(log), QStringLiteral("No log entries to display"));
    QVERIFY(!QFile::exists(app.filePath(QStringLiteral("QorloLog.csv"))));

    AddRow(log, QStringLiteral("DEL"), kNov21 + 0.5, kNov21 + 0.75, QStringLiteral("said \"hi\""), 0);
    AddRow(log, QStringLiteral("3"), kNov21, 0, QStringLiteral("\u00e9"), 7);
    const QString csv = app.filePath(QStringLiteral("QorloLog.csv"));
    QCOMPARE(LogExport::ExportLogCsv(log), csv + QStringLiteral(" created"));
    QCOMPARE(ReadFile(csv),
             QByteArray("\"ReportID\",\"Start\",\"Finish\",\"NextRun\",\"Description\",\"Pages\"\r\n"
                        "\"DEL\",\"21-Nov-2026 12:00\",\"21-Nov-2026 18:00\",\"\",\"said \"\"hi\"\"\",\r\n"
                        "\"3\",\"21-Nov-2026 00:00\",\"\",\"\",\"\xe9\",7\r\n"
                        "\"\",\"\",\"\",\"\",\"\",\r\n"));
}

QORLO_TEST_MAIN(TestLog)
#include "tst_log.moc"
