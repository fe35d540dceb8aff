#include "AppObjects.h"
#include "DaemonInstallation.h"
#include "SmtpPeer.h"
#include "TestMain.h"

#include "core/Clock.h"
#include "core/DayDate.h"
#include "log/clsLog.h"

#include <QDir>
#include <QProcess>

#include <csignal>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestQorloManagerd : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void runsAsAService();
};

void TestQorloManagerd::runsAsAService()
{
    SmtpPeer smtp;
    QORLO_START_PEER(smtp.start(), smtp);
    DaemonInstallation installed(QStringLiteral(QORLO_DAEMON), smtp.port());
    const double now = Now();
    clsSchedule schedule(installed.app.path());
    AddItem(schedule,
            {u"1"_s, u"Second"_s, installed.script(u"Second"_s), u"D"_s, u"1"_s, FormatDateTime(now - 1)});
    AddItem(schedule,
            {u"2"_s, u"First"_s, installed.script(u"First"_s), u"D"_s, u"1"_s, FormatDateTime(now - 2)});
    schedule.Active = true;
    schedule.SMTP_Server = u"127.0.0.1"_s;
    schedule.Save(installed.path(u"Qorlo.XML"_s));

    QProcess daemon;
    installed.start(daemon);
    QVERIFY(daemon.waitForStarted(5000));
    // Ticks come every 6 seconds: the older item at the first, the other at the second.
    QVERIFY(WaitUntil([&] { return !installed.order().isEmpty(); }, 15000));
    QProcess second;
    installed.start(second);
    QVERIFY(second.waitForFinished(10000));
    QCOMPARE(second.exitCode(), 1);
    QVERIFY(second.readAllStandardError().contains("QorloMANAGER: QorloMANAGER already running"));
    QVERIFY(WaitUntil([&] { return installed.order().size() == 2; }, 15000));
    QCOMPARE(installed.order(), (QStringList{u"First"_s, u"Second"_s}));

    // A locked Remote folder waits; the Mail folder beside it does not.
    WriteFile(installed.path(u"Remote/hold.lck"_s), "writing");
    WriteFile(installed.path(u"Remote/add.xml"_s),
              "<ReportID>9</ReportID>\r\n<ReportName>Third</ReportName>\r\n<ReportFile>" +
                  installed.script(u"Third"_s).toUtf8() +
                  "</ReportFile>\r\n<ReportFrequency>D</ReportFrequency>\r\n"
                  "<FreqTimes>1</FreqTimes>\r\n<NextRun>" +
                  FormatDateTime(now - 1).toUtf8() + "</NextRun>\r\n");
    WriteFile(
        installed.path(u"Mail/note.xml"_s),
        "<QorloMAILDoc>\r\n<Server>127.0.0.1</Server>\r\n<From>desk@example.com</From>\r\n"
        "<To>boss@example.com</To>\r\n<Subject>Stock note</Subject>\r\n<Body>Shelves are full</Body>\r\n"
        "</QorloMAILDoc>\r\n");
    QVERIFY(WaitUntil([&] { return smtp.messages().size() == 1; }, 15000));
    QVERIFY(ReadFile(smtp.messages().first()).contains("Subject: Stock note"));
    QVERIFY(WaitUntil([&] { return !QFile::exists(installed.path(u"Mail/note.xml"_s)); }, 5000));
    QVERIFY(QFile::exists(installed.path(u"Remote/add.xml"_s)));
    QFile::remove(installed.path(u"Remote/hold.lck"_s));
    QVERIFY(WaitUntil([&] { return installed.order().size() == 3; }, 15000));
    QCOMPARE(installed.order().last(), u"Third"_s);
    QVERIFY(!QFile::exists(installed.path(u"Remote/add.xml"_s)));

    // The script can write its line before the daemon has logged its start.
    QStringList lines;
    QVERIFY2(
        WaitUntil(
            [&] {
                lines = SavedLogEntries(installed.app.path(), {clsLog::ColReportID, clsLog::ColText}, u" "_s);
                return lines.size() == 5;
            },
            5000),
        qPrintable(lines.join(u'\n')));
    QCOMPARE(lines, (QStringList{u"2 First: Successful Execute of Application "_s,
                                 u"1 Second: Successful Execute of Application "_s,
                                 u"MAIL Process Remote command file: note.xml"_s,
                                 u"REMOTE Process Remote command file: add.xml"_s,
                                 u"9 Third: Successful Execute of Application "_s}));
    QVERIFY(ReadFile(installed.path(u"SMTP.Log"_s)).contains("Stock note message sent to boss@example.com"));

    // Each NextRun moved on by whole days past the moment it ran.
    clsSchedule saved(installed.app.path());
    saved.Load(installed.path(u"Qorlo.XML"_s));
    const QString tomorrow = FormatDateTime(*DayDate::Parse(FormatDateTime(now)) + 1);
    QCOMPARE(saved.Cell(0, clsSchedule::colNextRun), tomorrow);
    QCOMPARE(saved.Cell(1, clsSchedule::colNextRun), tomorrow);
    QCOMPARE(saved.Cell(2, clsSchedule::colNextRun), tomorrow);
    const QString day = DayDate::ToDate(Now()).toString(u"yyyyMMdd"_s);
    QVERIFY(QFile::exists(installed.path(u"Backup/Qorlo"_s + day + u".xml"_s)));
    QVERIFY(ReadFile(installed.path(u"Web/livestat.htm"_s)).contains("The schedule is currently active"));

    ::kill(daemon.processId(), SIGTERM);
    QVERIFY(daemon.waitForFinished(10000));
    QCOMPARE(daemon.exitCode(), 0);
    QVERIFY(ReadFile(installed.path(u"Web/livestat.htm"_s)).contains("QorloMANAGER shutdown at "));
    const QByteArray errors = daemon.readAllStandardError();
    QVERIFY2(
        errors.contains("Previously active: Schedule was active prior to shutdown Do you wish to activate "
                        "Schedule? [Yes]"),
        errors.constData());
}

QORLO_TEST_MAIN(TestQorloManagerd)
#include "tst_qorlomanagerd.moc"
