// SIGTERM while a report runs: the run stops at its next check instead of waiting its waits out, its
// log entry says so, and the program closes as closing its window does.
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
};

// The report goes by mail to a server that takes the connection and never answers: the mail client
// would wait 40 seconds for its greeting.
void TestShutdown::stopsDuringAReport()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    DaemonInstallation installed(QStringLiteral(QORLO_DAEMON), FreePort());
    MakeSalesDatabase(installed.path(u"sales.db"_s));
    const QString report =
        SalesReport(QDir(installed.app.path()), u"sales.rpt"_s, u"SELECT * FROM {Sales}"_s);
    const double due = Now() - 1;
    clsSchedule schedule(installed.app.path());
    AddItem(schedule, {u"7"_s, u"Sales"_s, report, u"D"_s, u"1"_s, FormatDateTime(due)});
    schedule.SetDest(u"E"_s);
    schedule.SetEmail(u"boss@example.com"_s);
    schedule.SetOutputFormat(u"CSV File"_s);
    schedule.Active = true;
    schedule.AutoRun = true;
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
    ::kill(daemon.processId(), SIGTERM);
    QVERIFY2(daemon.waitForFinished(10000), "the run did not stop");
    QVERIFY2(daemon.exitStatus() == QProcess::NormalExit, daemon.readAllStandardError().constData());
    QCOMPARE(daemon.exitCode(), 0);

    QCOMPARE(SavedLogEntries(installed.app.path()), QStringList{u"7|Sales: Run stopped at shutdown"_s});
    QVERIFY(ReadFile(installed.path(u"Web/livestat.htm"_s)).contains("QorloMANAGER shutdown at "));
    // The next run was moved on and saved before the run began: a restart does not repeat it.
    clsSchedule saved(installed.app.path());
    saved.Load(installed.path(u"Qorlo.XML"_s));
    QVERIFY(*DayDate::Parse(saved.Cell(0, clsSchedule::colNextRun)) > Now());
}

QORLO_TEST_MAIN(TestShutdown)
#include "tst_shutdown.moc"
