#include "AppObjects.h"
#include "SmtpPeer.h"
#include "TestPrompter.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/AppFolder.h"
#include "core/DayDate.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestNestedTick : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void tickInsideSlowMail();
};

// An item whose file is missing sends its error mail to a server that answers slowly. Ticks keep
// coming during the send: one of them, nested in the first, applies a remote file dropped meanwhile
// and, the run state being clear after the first log entry, runs the item that file added.
void TestNestedTick::tickInsideSlowMail()
{
    SmtpPeer server;
    QORLO_START_PEER(server.start({u"--delay"_s, u"3"_s}), server);

    QTemporaryDir app;
    AppFolder::MakeWorkingFolders(app.path());
    const QString marker = app.filePath(u"added.txt"_s);
    WriteScript(app.filePath(u"added.sh"_s), "date > '" + marker.toUtf8() + "'");
    OffsetClock clock(QDateTime::currentDateTime());
    ClockGuard guard(clock);
    TestPrompter prompter(true);
    QorloGlobals globals(app.path(), prompter);
    clsSchedule &schedule = globals.Schedule;
    globals.Log.ApplyStartDefaults();
    schedule.SMTP_Server = u"127.0.0.1"_s;
    schedule.SMTP_From = u"reports@example.com"_s;
    schedule.SMTP_Port = server.port();
    schedule.SMTPDelay = 0;
    const QString overdue = FormatDateTime(Now() - 1);
    AddItem(schedule, {u"1"_s, u"Missing"_s, app.filePath(u"missing.exe"_s), u"D"_s, u"1"_s, overdue});
    schedule.SetErrorTo(u"on"_s);
    schedule.SetNotifyTo(u"boss@example.com"_s);
    schedule.Active = true;
    globals.ViewTable();

    Dispatcher dispatcher(globals, 700);
    int deepest = 0;
    connect(&dispatcher, &Dispatcher::TickEnded, this,
            [&](int depth) { deepest = std::max(deepest, depth); });
    // Fires only once the outer tick pumps events, that is inside the mail send.
    QTimer::singleShot(300, this, [&] {
        WriteFile(app.filePath(u"Remote/add.xml"_s),
                  "<ReportID>7</ReportID>\r\n<ReportName>Added</ReportName>\r\n<ReportFile>" +
                      app.filePath(u"added.sh"_s).toUtf8() +
                      "</ReportFile>\r\n<ReportSchedule>Y</ReportSchedule>\r\n"
                      "<ReportFrequency>D</ReportFrequency>\r\n<FreqTimes>1</FreqTimes>\r\n<NextRun>" +
                      overdue.toUtf8() + "</NextRun>\r\n");
    });
    dispatcher.Start();
    dispatcher.Tick();

    QVERIFY(deepest >= 2);
    QCOMPARE(LogEntries(globals.Log, {clsLog::ColReportID, clsLog::ColText}, u" "_s),
             (QStringList{u"1 Missing: Cannot find file "_s + app.filePath(u"missing.exe"_s),
                          u"REMOTE Process Remote command file: add.xml"_s,
                          u"7 Added: Successful Execute of Application "_s}));
    QVERIFY(!QFile::exists(app.filePath(u"Remote/add.xml"_s)));
    const QStringList messages = server.messages();
    QCOMPARE(messages.size(), 1);
    QVERIFY(ReadFile(messages.first()).contains("Subject: Error Processing 1: Missing"));
    QVERIFY(WaitUntil([&] { return QFile::exists(marker); }, 5000));
    QVERIFY(prompter.fatal.isEmpty());
}

QORLO_TEST_MAIN(TestNestedTick)
#include "tst_nestedtick.moc"
