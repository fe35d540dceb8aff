// A report item run from its opening to its delivery, against real report files and SQLite data.
#include "../engine/EngineFixtures.h"
#include "../mail/tst_smtpmail_support.h"

#include "Peers.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "connect/clsConnect.h"
#include "connect/clsMap.h"
#include "core/AppFolder.h"
#include "core/DayDate.h"
#include "run/RunReport.h"
#include "run/RunState.h"

using namespace SmtpMailTest;
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

// Item 7 "Sales" over the fixture sales table, with the run's objects around it.
struct RunApp
{
    explicit RunApp(quint16 smtpPort = 25) : mail(smtpPort)
    {
        AppFolder::MakeWorkingFolders(mail.dir.path());
        EngineFixtures::MakeSalesDatabase(path(u"sales.db"_s));
        writeReport(u"SELECT region, customer, amount FROM {Sales} ORDER BY id"_s);
        schedule().SetOutputFormat(u"CSV File"_s);
        schedule().SetDest(u"D"_s);
        schedule().SetLocation(path(u"Output/%z/sales.csv"_s));
    }
    QString path(const QString &name) const { return mail.path(name); }
    clsSchedule &schedule() { return mail.schedule; }
    void writeReport(const QString &query, const QString &extra = QString())
    {
        EngineFixtures::SalesReport(QDir(mail.dir.path()), u"sales.rpt"_s, query,
                                    extra + u"<layout><column field=\"customer\"/></layout>"_s);
    }
    void run()
    {
        schedule().ProcessingID = schedule().ReportID();
        schedule().ProcessingName = schedule().Name();
        RunContext context{
            schedule(),
            mail.log,
            connections,
            map,
            state,
            mail.dir.path(),
            [this] { ++webPages; },
            [this](const QString &title, const QString &text) { warnings.append(title + u": "_s + text); }};
        RunReport(context);
    }
    // "ID|text" of each run log entry.
    QStringList log() const
    {
        QStringList entries;
        for (const QString &entry : mail.logEntries())
            entries.append(entry.section(u'|', 0, 1));
        return entries;
    }

    MailApp mail;
    clsConnect connections{mail.dir.path()};
    clsMap map{mail.dir.path()};
    RunState state;
    int webPages = 0;
    QStringList warnings;
};

} // namespace

void TestRunReport::initTestCase()
{
    // No print server: the printer list is empty.
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(FreePort()));
}

// The output under its expanded name with the log, page count and LastRun; the report's own file as
// its location goes through Output/Temp.ctl; an unknown destination delivers nothing.
void TestRunReport::diskRuns()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 31), QTime(6, 0)));
    ClockGuard guard(clock);
    RunApp app;
    app.run();
    const QString output = app.path(u"Output/2026/sales.csv"_s);
    QVERIFY(ReadAll(output).contains("'Acme Ltd'"));
    QCOMPARE(app.log(), QStringList{u"7|Sales: Successful output to "_s + output});
    QCOMPARE(app.schedule().PageCount(), 1);
    QCOMPARE(app.schedule().LastRun(), u"31-Mar-2026 06:00"_s);
    QVERIFY(QFile::exists(app.path(u"Qorlo.XML"_s)));
    QVERIFY(!app.state.report && !app.state.application);
    QVERIFY(app.schedule().ProcessingID.isEmpty());

    RunApp overwrite;
    overwrite.schedule().SetLocation(overwrite.schedule().File());
    overwrite.run();
    QVERIFY(ReadAll(overwrite.schedule().File()).contains("'Acme Ltd'"));
    QVERIFY(QFile::exists(overwrite.path(u"Output/Temp.ctl"_s)));
    QCOMPARE(overwrite.log().first(),
             u"7|Sales: Successful output to "_s + overwrite.path(u"Output/Temp.ctl"_s));

    for (const QString &dest : {u"B"_s, u"D"_s}) {
        RunApp nowhere;
        nowhere.schedule().SetDest(dest);
        if (dest == u"D"_s)
            nowhere.schedule().SetLocation(QString());
        nowhere.run();
        QVERIFY(nowhere.log().isEmpty());
        QCOMPARE(nowhere.schedule().LastRun(), u"31-Mar-2026 06:00"_s);
        QCOMPARE(QDir(nowhere.path(u"Output"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
    }
}

// Each early end logs its reason and leaves LastRun, the schedule file and the engine objects alone.
void TestRunReport::runsThatEndEarly()
{
    RunApp broken;
    broken.mail.writeFile(u"sales.rpt"_s, "<report version=\"1\"><colum/></report>");
    broken.run();
    QCOMPARE(broken.log().size(), 1);
    QVERIFY(broken.log().first().startsWith(u"7|Sales: ERROR: "_s));
    QVERIFY(broken.log().first().endsWith(u" for report "_s + broken.schedule().File()));
    QVERIFY(broken.schedule().LastRun().isEmpty());
    QVERIFY(!QFile::exists(broken.path(u"Qorlo.XML"_s)));
    // The next run replaces the stale objects.
    broken.writeReport(u"SELECT customer FROM {Sales}"_s);
    broken.run();
    QVERIFY(broken.log().last().startsWith(u"7|Sales: Successful output to "_s));

    RunApp parameter;
    parameter.writeReport(u"SELECT customer FROM {Sales} WHERE amount > {?Least}"_s,
                          u"<parameter name=\"Least\" type=\"7\"/>"_s);
    parameter.schedule().ParmAddNew();
    parameter.schedule().SetParmReportID(u"7"_s);
    parameter.schedule().SetParmName(u"least"_s);
    parameter.schedule().SetParmValue(u"many"_s);
    parameter.run();
    QCOMPARE(parameter.log(), QStringList{u"7|Sales: ERROR: Parameter must be numeric"_s});

    // A table that does not connect is logged and the run goes on to fail at the read, without an ID.
    RunApp unreachable;
    unreachable.mail.writeFile(
        u"sales.rpt"_s,
        "<report version=\"1\"><title>T</title><table name=\"Sales\" location=\"sales\" dll=\"sqlite\">"
        "<property name=\"Database\">no/such/folder/sales.db</property></table>"
        "<query>SELECT customer FROM {Sales}</query><layout><column field=\"customer\"/></layout></report>");
    unreachable.run();
    QCOMPARE(unreachable.log().size(), 2);
    QCOMPARE(unreachable.log().first(), u"7|Sales: Cannot connect to Sales"_s);
    QVERIFY(unreachable.log().last().startsWith(u"|: ERROR: ("_s));
    QVERIFY(unreachable.log().last().endsWith(u" for disk file "_s));

    // Only the exact "Send Empty Report" exports a report without data.
    RunApp empty;
    empty.writeReport(u"SELECT customer FROM {Sales} WHERE id < 0"_s);
    empty.schedule().SetNoRecords(u"send empty report"_s);
    empty.run();
    QCOMPARE(empty.log(), QStringList{u"7|No Data in Report.  Invalid option selected=send empty report"_s});
    empty.schedule().SetNoRecords(u"Send Empty Report"_s);
    empty.run();
    QVERIFY(empty.log().last().startsWith(u"7|Sales: Successful output to "_s));
}

// A mail run stages the export and sends it; without a server it is logged as an error and then as a
// success. Printers without a print server each log their failure and then the run's success line.
void TestRunReport::mailAndPrinters()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    ShortClientTimeouts(peer.port());
    RunApp mailed(peer.port());
    mailed.schedule().SetDest(u"E"_s);
    mailed.schedule().SetEmail(u"boss@example.com"_s);
    mailed.schedule().SetRptSubject(u"Sales figures"_s);
    mailed.run();
    QCOMPARE(mailed.log(), QStringList{u"7|Sales: Successful email to boss@example.com"_s});
    QTRY_COMPARE_WITH_TIMEOUT(peer.messages().size(), 1, 10000);
    const QString message = QString::fromUtf8(ReadAll(peer.messages().first()));
    QVERIFY(message.contains(u"Subject: Sales figures"_s));
    QVERIFY(message.contains(u"sales.csv"_s));

    RunApp serverless;
    serverless.schedule().SMTP_Server.clear();
    serverless.schedule().SetDest(u"E"_s);
    serverless.schedule().SetEmail(u"boss@example.com"_s);
    serverless.run();
    QCOMPARE(serverless.log(), (QStringList{u"7|ERROR: No mail server or sender specified"_s,
                                            u"7|Sales: Successful email to boss@example.com"_s}));
    QVERIFY(QFile::exists(serverless.path(u"SMTP/sales.csv"_s)));

    RunApp printed;
    printed.schedule().SetDest(u"P"_s);
    printed.schedule().SetPrinter(u"Front;Back"_s);
    printed.run();
    QCOMPARE(printed.log(), (QStringList{u"7|Sales: ERROR: Could not print to Front"_s,
                                         u"|: Sales: Successful print on Front;Back"_s,
                                         u"|: ERROR: Could not print to Back"_s,
                                         u"|: Sales: Successful print on Front;Back"_s}));
}

QORLO_TEST_MAIN(TestRunReport)
#include "tst_runreport.moc"
