// A report item run from its opening to its delivery, against real report files and SQLite data.
#include "CupsPeer.h"
#include "RunObjects.h"
#include "SmtpPeer.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "run/RunReport.h"

using namespace TestSupport;
using namespace Qt::Literals::StringLiterals;

class TestRunReport : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void diskRuns();
    void runsThatEndEarly();
    void mailAndPrinters();
};

namespace {

// Item 7 "Sales" over the fixture sales table, mailing through the given port.
struct RunApp : RunObjects
{
    explicit RunApp(quint16 smtpPort = 25)
    {
        addSalesItem(smtpPort);
        schedule.SetOutputFormat(u"CSV File"_s);
        schedule.SetDest(u"D"_s);
        schedule.SetLocation(path(u"Output/%z/sales.csv"_s));
        writeReport(u"SELECT region, customer, amount FROM {Sales} ORDER BY id"_s);
    }
    void writeReport(const QString &query, const QString &extra = QString())
    {
        SalesReport(QDir(appPath), u"sales.rpt"_s, query,
                    extra + u"<layout><column field=\"customer\"/></layout>"_s);
    }
    void runItem()
    {
        startItem();
        RunReport(run);
    }
};

} // namespace

void TestRunReport::initTestCase()
{
    // No print server: the printer list is empty.
    NoPrintServer();
}

// The output under its expanded name with the log, page count and LastRun; the report's own file as
// its location goes through Output/Temp.ctl; an unknown destination delivers nothing.
void TestRunReport::diskRuns()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 31), QTime(6, 0)));
    ClockGuard guard(clock);
    RunApp app;
    app.runItem();
    const QString output = app.path(u"Output/2026/sales.csv"_s);
    QVERIFY(ReadFile(output).contains("'Acme Ltd'"));
    QCOMPARE(app.logEntries(), QStringList{u"7|Sales: Successful output to "_s + output});
    QCOMPARE(app.schedule.PageCount(), 1);
    QCOMPARE(app.schedule.LastRun(), u"31-Mar-2026 06:00"_s);
    QVERIFY(QFile::exists(app.path(u"Qorlo.XML"_s)));
    QVERIFY(!app.state.report && !app.state.application);
    QVERIFY(app.schedule.ProcessingID.isEmpty());

    RunApp overwrite;
    overwrite.schedule.SetLocation(overwrite.schedule.File());
    overwrite.runItem();
    QVERIFY(ReadFile(overwrite.schedule.File()).contains("'Acme Ltd'"));
    QVERIFY(QFile::exists(overwrite.path(u"Output/Temp.ctl"_s)));
    QCOMPARE(overwrite.logEntries().first(),
             u"7|Sales: Successful output to "_s + overwrite.path(u"Output/Temp.ctl"_s));

    // A failed export is logged with the error state as it reads after the trap is disarmed: empty.
    RunApp blocked;
    blocked.writeFile(u"blocker"_s, "a file where a folder should be");
    blocked.schedule.SetLocation(blocked.path(u"blocker/sales.csv"_s));
    blocked.runItem();
    QCOMPARE(blocked.logEntries(),
             QStringList{u"7|Sales: ERROR: (0)  for disk file "_s + blocked.path(u"blocker/sales.csv"_s)});
    QCOMPARE(blocked.schedule.LastRun(), u"31-Mar-2026 06:00"_s);

    for (const QString &dest : {u"B"_s, u"D"_s}) {
        RunApp nowhere;
        nowhere.schedule.SetDest(dest);
        if (dest == u"D"_s)
            nowhere.schedule.SetLocation(QString());
        nowhere.runItem();
        QVERIFY(nowhere.logEntries().isEmpty());
        QCOMPARE(nowhere.schedule.LastRun(), u"31-Mar-2026 06:00"_s);
        QCOMPARE(QDir(nowhere.path(u"Output"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
    }
}

// Each early end logs its reason and leaves LastRun, the schedule file and the engine objects alone.
void TestRunReport::runsThatEndEarly()
{
    RunApp broken;
    broken.writeFile(u"sales.rpt"_s, "<report version=\"1\"><colum/></report>");
    broken.runItem();
    QCOMPARE(broken.logEntries().size(), 1);
    QVERIFY(broken.logEntries().first().startsWith(u"7|Sales: ERROR: "_s));
    QVERIFY(broken.logEntries().first().endsWith(u" for report "_s + broken.schedule.File()));
    QVERIFY(broken.schedule.LastRun().isEmpty());
    QVERIFY(!QFile::exists(broken.path(u"Qorlo.XML"_s)));
    // The next run replaces the stale objects.
    broken.writeReport(u"SELECT customer FROM {Sales}"_s);
    broken.runItem();
    QVERIFY(broken.logEntries().last().startsWith(u"7|Sales: Successful output to "_s));

    RunApp parameter;
    parameter.writeReport(u"SELECT customer FROM {Sales} WHERE amount > {?Least}"_s,
                          u"<parameter name=\"Least\" type=\"7\"/>"_s);
    parameter.storeParameter(u"7"_s, u"least"_s, u"many"_s);
    parameter.runItem();
    QCOMPARE(parameter.logEntries(), QStringList{u"7|Sales: ERROR: Parameter must be numeric"_s});

    // A table that does not connect is logged and the run goes on to fail at the read, without an ID.
    RunApp unreachable;
    unreachable.writeFile(
        u"sales.rpt"_s,
        "<report version=\"1\"><title>T</title><table name=\"Sales\" location=\"sales\" dll=\"sqlite\">"
        "<property name=\"Database\">no/such/folder/sales.db</property></table>"
        "<query>SELECT customer FROM {Sales}</query><layout><column field=\"customer\"/></layout></report>");
    unreachable.runItem();
    QCOMPARE(unreachable.logEntries().size(), 2);
    QCOMPARE(unreachable.logEntries().first(), u"7|Sales: Cannot connect to Sales"_s);
    QVERIFY(unreachable.logEntries().last().startsWith(u"|: ERROR: ("_s));
    QVERIFY(unreachable.logEntries().last().endsWith(u" for disk file "_s));

    // Only the exact "Send Empty Report" exports a report without data.
    RunApp empty;
    empty.writeReport(u"SELECT customer FROM {Sales} WHERE id < 0"_s);
    empty.schedule.SetNoRecords(u"send empty report"_s);
    empty.runItem();
    QCOMPARE(empty.logEntries(),
             QStringList{u"7|No Data in Report.  Invalid option selected=send empty report"_s});
    empty.schedule.SetNoRecords(u"Send Empty Report"_s);
    empty.runItem();
    QVERIFY(empty.logEntries().last().startsWith(u"7|Sales: Successful output to "_s));
}

// A mail run stages the export and sends it; without a server it is logged as an error and then as a
// success. Printers without a print server each log their failure and then the run's success line.
void TestRunReport::mailAndPrinters()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    ShortMailTimeouts(peer.port());
    RunApp mailed(peer.port());
    mailed.schedule.SetDest(u"E"_s);
    mailed.schedule.SetEmail(u"boss@example.com"_s);
    mailed.schedule.SetRptSubject(u"Sales figures"_s);
    mailed.runItem();
    QCOMPARE(mailed.logEntries(), QStringList{u"7|Sales: Successful email to boss@example.com"_s});
    QTRY_COMPARE_WITH_TIMEOUT(peer.messages().size(), 1, 10000);
    const QString message = QString::fromUtf8(ReadFile(peer.messages().first()));
    QVERIFY(message.contains(u"Subject: Sales figures"_s));
    QVERIFY(message.contains(u"sales.csv"_s));

    RunApp serverless;
    serverless.schedule.SMTP_Server.clear();
    serverless.schedule.SetDest(u"E"_s);
    serverless.schedule.SetEmail(u"boss@example.com"_s);
    serverless.runItem();
    QCOMPARE(serverless.logEntries(), (QStringList{u"7|ERROR: No mail server or sender specified"_s,
                                                   u"7|Sales: Successful email to boss@example.com"_s}));
    QVERIFY(QFile::exists(serverless.path(u"SMTP/sales.csv"_s)));

    RunApp printed;
    printed.schedule.SetDest(u"P"_s);
    printed.schedule.SetPrinter(u"Front;Back"_s);
    printed.runItem();
    QCOMPARE(printed.logEntries(), (QStringList{u"7|Sales: ERROR: Could not print to Front"_s,
                                                u"|: Sales: Successful print on Front;Back"_s,
                                                u"|: ERROR: Could not print to Back"_s,
                                                u"|: Sales: Successful print on Front;Back"_s}));
}

QORLO_TEST_MAIN(TestRunReport)
#include "tst_runreport.moc"
