#include "core/DayDate.h"
#include "core/QorloError.h"
#include "log/LogExport.h"
#include "log/clsLog.h"
#include "AppObjects.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

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
    log.CheckRetainLog = u"W"_s;
    log.WebLogSetting = u"Errors"_s;
    AddLogRow(log, u"4"_s, kNov21 + 0.25, kNov21 + 0.26, u"Sent to a <b> & \"c\""_s, 3);
    log.SetNextDate(u"28-Nov-2026 06:00"_s);
    AddLogRow(log, u"5"_s, kNov21 + 0.3, 0, u"caf\u00e9\r\nline two \u20ac"_s, 12);
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
    QCOMPARE(fresh.WebLogSetting, u"Errors"_s);
    fresh.Locate(1);
    QCOMPARE(fresh.LogText(), u"caf\u00e9\r\nline two \u20ac"_s);
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
    QCOMPARE(fresh.PagesTxt(), u"0"_s);
}

void TestLog::retention()
{
    QTemporaryDir app;
    FixedClock clock(QDateTime(QDate(2026, 3, 31), QTime(12, 0)));
    const ClockGuard guard(clock);
    const double mar1 = DayDate::FromParts(2026, 3, 1);
    clsLog log(app.path());
    log.ApplyStartDefaults(); // the check is due at the first save after a start
    AddLogRow(log, u"1"_s, mar1 + 9.0 / 24, 0, u"after the cutoff"_s, 1);
    AddLogRow(log, u"2"_s, mar1, 0, u"on the cutoff"_s, 1);
    AddLogRow(log, u"3"_s, mar1 - 0.5, 0, u"before"_s, 1);
    // Entries written without a start (a missing file) age by their finish.
    AddLogRow(log, u"4"_s, 0, mar1 - 1, u"Cannot find file /x.rpt"_s, 0);
    AddLogRow(log, u"5"_s, 0, mar1 + 1, u"Cannot find file /y.rpt"_s, 0);
    log.Save();
    log.Locate(4);
    QCOMPARE(log.ReportID(), u"5"_s);
    log.Locate(5);

    QCOMPARE(log.Count(), qint16(6));
    QCOMPARE(RowsMarked(log, u"DEL"_s), 3);
    QCOMPARE(log.ReportID(), u"LOG"_s);
    QCOMPARE(log.LogText(), u"Automatic delete of 3 items from log file"_s);
    QCOMPARE(log.DeleteLogDate, DayDate::FromParts(2026, 4, 7));
    // Deleted rows stay in the file while the cursor is on another row.
    QCOMPARE(ReadFile(log.FileName()).count("<LogReportID>DEL</LogReportID>"), 3);

    // Not due again: nothing changes. An unknown interval leaves the date, so every save checks,
    // and rows already marked count again.
    log.Save();
    QCOMPARE(log.Count(), qint16(6));
    log.CheckRetainLog = u"Q"_s;
    log.DeleteLogDate = DayDate::FromParts(2026, 3, 30);
    log.Save();
    QCOMPARE(log.Count(), qint16(7));
    QCOMPARE(log.LogText(), u"Automatic delete of 3 items from log file"_s);
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
    log.SetReportID(u"77"_s);
    log.SetPages(5);
    log.Locate(1);
    log.SetLogText(u"old"_s);
    log.AddNew(); // the 10001st
    QCOMPARE(log.Count(), qint16(2));
    QCOMPARE(log.Cursor(), qint16(1));
    QCOMPARE(log.LogText(), QString()); // a new row is blank
    log.Locate(0);
    QCOMPARE(log.LogText(), u"Log file full - all entries removed"_s);
    QCOMPARE(log.ReportID(), u"77"_s); // left over from the old row 0
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
    WriteLogEntry(log, u"8"_s, kNov21 + 0.5 + 7.0 / 86400, 0, QString(), u"one"_s, 0);

    // What another copy of the log wrote is picked up; dates keep only their text's precision.
    clsLog other(app.path());
    WriteLogEntry(other, u"9"_s, kNov21 + 0.6, kNov21 + 0.7, u"tomorrow"_s, u"two"_s, 4);
    WriteLogEntry(log, u"10"_s, kNov21 + 0.8, 0, QString(), u"three"_s, 1);
    QCOMPARE(log.Count(), qint16(3));
    log.Locate(0);
    QCOMPARE(log.LogDateTxt(), u"21-Nov-2026 12:00"_s);
    QCOMPARE(log.FinishDateTxt(), QString());
    log.Locate(1);
    QCOMPARE(log.NextDate(), u"tomorrow"_s);
    QCOMPARE(log.Pages(), 4);

    // An engine's error text with line ends: each becomes a blank, so that the entry stays one row
    // and the next read of the file has all of it.
    WriteLogEntry(log, u"11\n"_s, kNov21 + 0.9, kNov21 + 0.9, u"next\rday"_s,
                  u"ERROR: query failed\nline 2\r\nline 3\rend"_s, 0);
    clsLog reread(app.path());
    reread.Load(reread.FileName());
    QCOMPARE(reread.Count(), qint16(4));
    reread.Locate(3);
    QCOMPARE(reread.ReportID(), u"11 "_s);
    QCOMPARE(reread.NextDate(), u"next day"_s);
    QCOMPARE(reread.LogText(), u"ERROR: query failed line 2 line 3 end"_s);
}

void TestLog::damagedFiles()
{
    QTemporaryDir app;
    clsLog log(app.path());
    log.Load(TestSupport::DataFile(u"log/QorloLog-truncated.XML"_s));
    QCOMPARE(log.Count(), qint16(2));
    QCOMPARE(log.RetainLog, 45);
    QCOMPARE(log.CheckRetainLog, u"M"_s);
    log.Locate(0);
    QCOMPARE(log.LogDateTxt(), u"19-Nov-2026 08:05"_s);
    // The reference without its own ";" swallows text up to the next ";".
    QCOMPARE(log.LogText(), u"Sent \u00e9t\u00e9 more"_s);
    QCOMPARE(log.PagesTxt(), u"0"_s);
    log.Locate(1);
    QCOMPARE(log.LogText(), u"Part of a li"_s);

    WriteFile(log.FileName(), RandomBytes(64 * 1024));
    log.Clear();
    log.Load(log.FileName());
    QCOMPARE(log.Count(), qint16(0));

    // A start that is no date raises the type mismatch; the rows before it stay.
    WriteFile(
        log.FileName(),
        "<QorloLog>\r\n<LogText>kept</LogText>\r\n<QorloLog>\r\n<LogDate>31-Feb-2026 10:00</LogDate>\r\n");
    QCOMPARE(ErrorOf([&] { log.Load(log.FileName()); }), int(QorloError::TypeMismatch));
    QCOMPARE(log.Count(), qint16(2));
    QCOMPARE(log.CellAt(0, clsLog::ColText), u"kept"_s);
}

void TestLog::csvExport()
{
    QTemporaryDir app;
    clsLog log(app.path());
    QCOMPARE(LogExport::ExportLogCsv(log), u"No log entries to display"_s);
    QVERIFY(!QFile::exists(app.filePath(u"QorloLog.csv"_s)));

    AddLogRow(log, u"DEL"_s, kNov21 + 0.5, kNov21 + 0.75, u"said \"hi\""_s, 0);
    AddLogRow(log, u"3"_s, kNov21, 0, u"\u00e9"_s, 7);
    const QString csv = app.filePath(u"QorloLog.csv"_s);
    QCOMPARE(LogExport::ExportLogCsv(log), csv + u" created"_s);
    QCOMPARE(ReadFile(csv),
             QByteArray("\"ReportID\",\"Start\",\"Finish\",\"NextRun\",\"Description\",\"Pages\"\r\n"
                        "\"DEL\",\"21-Nov-2026 12:00\",\"21-Nov-2026 18:00\",\"\",\"said \"\"hi\"\"\",\r\n"
                        "\"3\",\"21-Nov-2026 00:00\",\"\",\"\",\"\xe9\",7\r\n"
                        "\"\",\"\",\"\",\"\",\"\",\r\n"));
}

QORLO_TEST_MAIN(TestLog)
#include "tst_log.moc"
