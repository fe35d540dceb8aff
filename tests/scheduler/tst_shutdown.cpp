// SIGTERM while a report runs: the run stops at its next check instead of waiting its waits out, its
// log entry says so, and the program closes as closing its window does. SIGTERM during a long batch of
// command files: the batch stops between two files.
#include "AppObjects.h"
#include "DaemonInstallation.h"
#include "SalesReport.h"
#include "TestMain.h"

#include "core/Clock.h"
#include "core/DayDate.h"

#include <QDir>
#include <QProcess>
#include <QTcpServer>

#include <csignal>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestShutdown : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stopsDuringAReport();
    void stopsWhileTheEngineReads();
    void stopsBetweenCommandFiles();
    void mailDocumentStaysAtShutdown();
};

namespace {

// One report item over `query`, due now, in a schedule of the daemon's folder that runs by itself.
void AddDueReport(clsSchedule &schedule, const DaemonInstallation &installed, const QString &query)
{
    MakeSalesDatabase(installed.path(u"sales.db"_s));
    const QString report = SalesReport(QDir(installed.app.path()), u"sales.rpt"_s, query);
    AddItem(schedule, {u"7"_s, u"Sales"_s, report, u"D"_s, u"1"_s, FormatDateTime(Now() - 1)});
    schedule.SetOutputFormat(u"CSV File"_s);
    schedule.Active = true;
    schedule.AutoRun = true;
}

// After SIGTERM the daemon ends within the time given, normally, with the run's entry saying it stopped.
void StopsAtShutdown(QProcess &daemon, const DaemonInstallation &installed, int withinMs)
{
    ::kill(daemon.processId(), SIGTERM);
    QVERIFY2(daemon.waitForFinished(withinMs), "the run did not stop");
    QVERIFY2(daemon.exitStatus() == QProcess::NormalExit, daemon.readAllStandardError().constData());
    QCOMPARE(daemon.exitCode(), 0);
    QCOMPARE(SavedLogEntries(installed.app.path()), QStringList{u"7|Sales: Run stopped at shutdown"_s});
    QVERIFY(ReadFile(installed.path(u"Web/livestat.htm"_s)).contains("QorloMANAGER shutdown at "));
    // The next run was moved on and saved before the run began: a restart does not repeat it.
    clsSchedule saved(installed.app.path());
    saved.Load(installed.path(u"Qorlo.XML"_s));
    QVERIFY(*DayDate::Parse(saved.Cell(0, clsSchedule::colNextRun)) > Now());
}

} // namespace

// The report goes by mail to a server that takes the connection and never answers: the mail client
// would wait 40 seconds for its greeting.
void TestShutdown::stopsDuringAReport()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    DaemonInstallation installed(QStringLiteral(QORLO_DAEMON), FreePort());
    clsSchedule schedule(installed.app.path());
    AddDueReport(schedule, installed, u"SELECT * FROM {Sales}"_s);
    schedule.SetDest(u"E"_s);
    schedule.SetEmail(u"boss@example.com"_s);
    schedule.SMTP_Server = u"127.0.0.1"_s;
    schedule.SMTP_Port = silent.serverPort();
    schedule.SMTP_From = u"scheduler@example.com"_s;
    schedule.SMTPDelay = 0;
    schedule.Save(installed.path(u"Qorlo.XML"_s));

    QProcess daemon;
    installed.start(daemon);
    QVERIFY(daemon.waitForStarted(5000));
    QVERIFY2(WaitUntil([&] { return silent.hasPendingConnections(); }, 20000),
             daemon.readAllStandardError().constData());
    StopsAtShutdown(daemon, installed, 10000);
}

// A query of a hundred million rows: the engine is still reading when the signal comes, and stops
// between two records well within systemd's stop time.
void TestShutdown::stopsWhileTheEngineReads()
{
    DaemonInstallation installed(QStringLiteral(QORLO_DAEMON), FreePort());
    clsSchedule schedule(installed.app.path());
    AddDueReport(schedule, installed,
                 u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                 "WHERE i < 100000000) SELECT i AS id FROM n"_s);
    schedule.SetDest(u"D"_s);
    schedule.SetLocation(installed.path(u"Output/sales.csv"_s));
    schedule.Save(installed.path(u"Qorlo.XML"_s));

    QProcess daemon;
    installed.start(daemon);
    QVERIFY(daemon.waitForStarted(5000));
    // The run has begun once its next run is moved on and saved; then it reads for a long while.
    QVERIFY2(WaitUntil(
                 [&] {
                     clsSchedule saved(installed.app.path());
                     saved.Load(installed.path(u"Qorlo.XML"_s));
                     return *DayDate::Parse(saved.Cell(0, clsSchedule::colNextRun)) > Now();
                 },
                 20000),
             daemon.readAllStandardError().constData());
    QTest::qWait(1000);
    StopsAtShutdown(daemon, installed, 5000);
    QVERIFY(!QFile::exists(installed.path(u"Output/sales.csv"_s)));
}

// Two thousand command files take a minute to apply, each saved on its own; the signal ends the batch
// after the file at hand, and the files not reached wait for the next start.
void TestShutdown::stopsBetweenCommandFiles()
{
    DaemonInstallation installed(QStringLiteral(QORLO_DAEMON), FreePort());
    clsSchedule schedule(installed.app.path());
    schedule.Active = true;
    schedule.Save(installed.path(u"Qorlo.XML"_s));
    QVERIFY(QDir(installed.app.path()).mkdir(u"Remote"_s));
    constexpr int kFiles = 2000;
    const auto commandFile = [&](int number) { return installed.path(u"Remote/cmd-%1.xml"_s.arg(number)); };
    for (int number = 1; number <= kFiles; ++number)
        WriteFile(commandFile(number), "<ReportID>" + QByteArray::number(number) +
                                           "</ReportID>\r\n<ReportFile>/bin/true</ReportFile>\r\n");
    const auto waiting = [&] { return QDir(installed.path(u"Remote"_s)).entryList(QDir::Files).size(); };

    QProcess daemon;
    installed.start(daemon);
    QVERIFY(daemon.waitForStarted(5000));
    QVERIFY2(WaitUntil([&] { return waiting() < kFiles; }, 20000), daemon.readAllStandardError().constData());
    ::kill(daemon.processId(), SIGTERM);
    QVERIFY2(daemon.waitForFinished(5000), "the batch did not stop");
    QCOMPARE(daemon.exitCode(), 0);
    const qsizetype left = waiting();
    QVERIFY(left > 0);

    clsSchedule saved(installed.app.path());
    saved.Load(installed.path(u"Qorlo.XML"_s));
    QCOMPARE(saved.Count(), kFiles - left);
    for (int number = 1; number <= kFiles; ++number)
        QCOMPARE(saved.Confirm(QString::number(number)), !QFile::exists(commandFile(number)));
    QCOMPARE(SavedLogEntries(installed.app.path()).size(), kFiles - left);
}

// A mail document whose send the signal cuts short stays for the next start instead of being taken
// for sent.
void TestShutdown::mailDocumentStaysAtShutdown()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    DaemonInstallation installed(QStringLiteral(QORLO_DAEMON), silent.serverPort());
    clsSchedule schedule(installed.app.path());
    schedule.Active = true;
    schedule.Save(installed.path(u"Qorlo.XML"_s));
    QVERIFY(QDir(installed.app.path()).mkdir(u"Mail"_s));
    const QString document = installed.path(u"Mail/note.xml"_s);
    WriteFile(document, "<QorloMAILDoc>\r\n<Server>127.0.0.1</Server>\r\n<From>desk@example.com</From>\r\n"
                        "<To>boss@example.com</To>\r\n<Subject>Stock note</Subject>\r\n</QorloMAILDoc>\r\n");

    QProcess daemon;
    installed.start(daemon);
    QVERIFY(daemon.waitForStarted(5000));
    QVERIFY2(WaitUntil([&] { return silent.hasPendingConnections(); }, 20000),
             daemon.readAllStandardError().constData());
    ::kill(daemon.processId(), SIGTERM);
    QVERIFY2(daemon.waitForFinished(5000), "the send did not stop");
    QCOMPARE(daemon.exitCode(), 0);
    QVERIFY(QFile::exists(document));
}

QORLO_TEST_MAIN(TestShutdown)
#include "tst_shutdown.moc"
