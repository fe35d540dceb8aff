#include "AppObjects.h"
#include "TestPrompter.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/AppFolder.h"
#include "core/DayDate.h"
#include "core/TWReg.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/ListScheduleView.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/StartUp.h"

#include <QDir>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestDispatcher : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void simulatedWeek();
    void timersAndCaption();
    void runNowAndEditing();
    void commandFolders();
};

namespace {

struct LogLine
{
    QString id;
    QString start;
    QString next;
    QString text;
    bool operator==(const LogLine &) const = default;
};

QList<LogLine> LogLines(const clsLog &log)
{
    QList<LogLine> lines;
    for (int row = 0; row < log.Count(); ++row)
        lines.append({log.CellAt(row, clsLog::ColReportID), log.CellAt(row, clsLog::ColLogDate),
                      log.CellAt(row, clsLog::ColNextDate), log.CellAt(row, clsLog::ColText)});
    return lines;
}

double At(int day, int hour, int minute)
{
    return DayDate::FromParts(2026, 11, 23 + day, hour, minute);
}

// An application folder with its working folders and the script a.sh, the clock at 23-Nov-2026 10:00,
// and the program's objects on it, every question answered Yes.
struct Program
{
    Program()
    {
        AppFolder::MakeWorkingFolders(app.path());
        WriteScript(app.filePath(u"a.sh"_s), "true");
    }

    QTemporaryDir app;
    FixedClock clock{DayDate::ToDateTime(At(0, 10, 0))};
    ClockGuard guard{clock};
    TestPrompter prompter{true};
    QorloGlobals globals{app.path(), prompter};
    clsSchedule &schedule = globals.Schedule;
};

} // namespace

// A week of ticks one minute apart over applications, a missing file, a report, a global process, a
// one-off item, an unscheduled one and an overdue one, behind a start timer and ended by a stop timer.
void TestDispatcher::simulatedWeek()
{
    Program program;
    auto &[app, clock, guard, prompter, globals, schedule] = program;
    clock.set(DayDate::ToDateTime(At(0, 8, 0)));
    QDir(app.path()).mkdir(u"my tools"_s);
    const QString argsFile = app.filePath(u"global-args.txt"_s);
    WriteScript(app.filePath(u"my tools/global.sh"_s), "printf '%s|' \"$@\" >> '" + argsFile.toUtf8() + "'");
    TWReg::SaveApplicationValue(u"QorloGLOBAL"_s, app.filePath(u"my tools/global.sh"_s));
    for (const char *name : {"b.sh", "c.sh"})
        WriteScript(app.filePath(QLatin1String(name)), "true");
    WriteFile(app.filePath(u"sales.rpt"_s), "<Report/>");
    WriteFile(app.filePath(u"cmd doc.xml"_s), "<Doc/>");
    const QString missing = app.filePath(u"missing.exe"_s);
    const QString global = app.filePath(u"cmd doc.xml"_s);
    AddItem(schedule,
            {u"1"_s, u"AppA"_s, app.filePath(u"a.sh"_s), u"Day(s)"_s, u"1"_s, u"23-Nov-2026 09:00"_s});
    AddItem(schedule, {u"2"_s, u"AppB"_s, app.filePath(u"b.sh"_s), u"D"_s, u"1"_s, u"23-Nov-2026 09:00"_s});
    AddItem(schedule, {u"3"_s, u"Missing"_s, missing, u"Hour(s)"_s, u"12"_s, u"23-Nov-2026 12:00"_s});
    AddItem(schedule,
            {u"4"_s, u"Sales"_s, app.filePath(u"sales.rpt"_s), u"W"_s, u"1"_s, u"25-Nov-2026 10:00"_s});
    AddItem(schedule, {u"5"_s, u"Global"_s, global, u"Month(s)"_s, u"1"_s, u"26-Nov-2026 07:30"_s});
    AddItem(schedule,
            {u"6"_s, u"Overdue"_s, app.filePath(u"c.sh"_s), u"D"_s, u"1"_s, u"21-Nov-2026 09:00"_s});
    AddItem(schedule, {u"7"_s, u"Idle"_s, app.filePath(u"c.sh"_s), u"D"_s, u"1"_s, u""_s});
    AddItem(schedule,
            {u"8"_s, u"OneOff"_s, app.filePath(u"c.sh"_s), u"Once"_s, u"1"_s, u"24-Nov-2026 15:00"_s});
    schedule.Active = true;
    schedule.StartTime = u"23-Nov-2026 08:30:00"_s;
    schedule.StopTime = u"29-Nov-2026 20:00:00"_s;
    globals.Log.ApplyStartDefaults();
    LoadMainWindow(globals);
    QCOMPARE(prompter.questions.size(), 1);
    QVERIFY(prompter.questions.first().startsWith(u"Previously active: "_s));

    Dispatcher dispatcher(globals);
    int ticksWithTwoItems = 0;
    const QDateTime start = DayDate::ToDateTime(At(0, 8, 0));
    for (int minute = 0; minute < 7 * 24 * 60; ++minute) {
        clock.set(start.addSecs(60 * minute));
        const int before = globals.Log.Count();
        dispatcher.Tick();
        QSet<QString> ids;
        for (int row = before; row < globals.Log.Count(); ++row)
            ids.insert(globals.Log.CellAt(row, clsLog::ColReportID));
        ticksWithTwoItems += ids.size() > 1;
    }
    QCOMPARE(ticksWithTwoItems, 0);

    // The expected log, built from the rules: applications at 09:00 one a minute in row order, the
    // overdue item once at the start timer, the missing file every 12 hours with a zero start.
    const auto next = [](double date) -> QString { return FormatDateTime(date); };
    QList<LogLine> expected{
        {u"6"_s, next(At(0, 8, 30)), next(At(0, 9, 0)), u"Overdue: Successful Execute of Application "_s}};
    const QString missingText = u"Missing: Cannot find file "_s + missing;
    const QString report = app.filePath(u"sales.rpt"_s);
    for (int day = 0; day < 7; ++day) {
        if (day > 0)
            expected.append({u"3"_s, QString(), next(At(day, 12, 0)), missingText});
        if (day == 3) {
            expected.append(
                {u"5"_s, next(At(3, 7, 30)), u"26-Dec-2026 07:30"_s, u"QorloGLOBAL: "_s + global});
            expected.append(
                {u"5"_s, next(At(3, 7, 30)), u"26-Dec-2026 07:30"_s, u"Global: Successful QorloGLOBAL "_s});
        }
        const QString tomorrow = next(At(day + 1, 9, 0));
        expected.append(
            {u"1"_s, next(At(day, 9, 0)), tomorrow, u"AppA: Successful Execute of Application "_s});
        expected.append(
            {u"2"_s, next(At(day, 9, 1)), tomorrow, u"AppB: Successful Execute of Application "_s});
        expected.append(
            {u"6"_s, next(At(day, 9, 2)), tomorrow, u"Overdue: Successful Execute of Application "_s});
        if (day == 2)
            expected.append({u"4"_s, next(At(2, 10, 0)), u"02-Dec-2026 10:00"_s,
                             u"Sales: ERROR: Cannot open report file "_s + report +
                                 u": line 1: expected <report>, found <Report> for report "_s + report});
        expected.append({u"3"_s, QString(), next(At(day + 1, 0, 0)), missingText});
        if (day == 1)
            expected.append(
                {u"8"_s, next(At(1, 15, 0)), QString(), u"OneOff: Successful Execute of Application "_s});
    }
    const QList<LogLine> actual = LogLines(globals.Log);
    QCOMPARE(actual.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        if (!(actual.at(i) == expected.at(i)))
            QFAIL(qPrintable(u"log line %1: %2 | %3 | %4 | %5"_s.arg(i).arg(
                actual.at(i).id, actual.at(i).start, actual.at(i).next, actual.at(i).text)));
    }

    // The stop timer ended the week; every NextRun where the rules left it, and on disk too.
    QVERIFY(!schedule.Active);
    QVERIFY(schedule.StopTime.isEmpty());
    const QStringList nextRuns{u"30-Nov-2026 09:00"_s,
                               u"30-Nov-2026 09:00"_s,
                               u"30-Nov-2026 00:00"_s,
                               u"02-Dec-2026 10:00"_s,
                               u"26-Dec-2026 07:30"_s,
                               u"30-Nov-2026 09:00"_s,
                               u""_s,
                               u""_s};
    clsSchedule saved(app.path());
    saved.Load(app.filePath(u"Qorlo.XML"_s));
    for (int row = 0; row < nextRuns.size(); ++row) {
        QCOMPARE(schedule.Cell(row, clsSchedule::colNextRun), nextRuns.at(row));
        QCOMPARE(saved.Cell(row, clsSchedule::colNextRun), nextRuns.at(row));
    }
    QCOMPARE(schedule.Cell(7, clsSchedule::colSchedule), u"N"_s);
    QCOMPARE(schedule.Cell(0, clsSchedule::colLastRun), FormatDateTime(At(6, 9, 0)));
    QVERIFY(schedule.ProcessingID.isEmpty());
    QCOMPARE(schedule.LastReportID, u"3"_s);
    QVERIFY(prompter.fatal.isEmpty());

    // The global program got its own path quoted and the document's blank split into two words.
    QVERIFY(WaitUntil([&] { return ReadFile(argsFile) == app.path().toUtf8() + "/cmd|doc.xml|"; }, 5000));
    // One backup a day, named by the day.
    QVERIFY(QFile::exists(app.filePath(u"Backup/Qorlo20261129.xml"_s)));
}

// The timers' edge cases, with the caption and menu state they leave.
void TestDispatcher::timersAndCaption()
{
    Program program;
    auto &[app, clock, guard, prompter, globals, schedule] = program;
    auto &view = static_cast<ListScheduleView &>(globals.View());
    globals.Log.ApplyStartDefaults();

    globals.ViewTable();
    QCOMPARE(prompter.messages, QStringList{u"QorloMANAGER: No Data in Schedule"_s});
    QCOMPARE(globals.NextRunDate, At(0, 10, 0));

    AddItem(schedule, {u"1"_s, u"AppA"_s, app.filePath(u"a.sh"_s), u"D"_s, u"1"_s, u"22-Nov-2026 09:00"_s});
    schedule.Active = true;
    schedule.StartTime = u"23-Nov-2026 10:05:00"_s;
    globals.ViewTable();
    Dispatcher dispatcher(globals);
    dispatcher.Tick();
    QCOMPARE(view.Caption(), u"QorloMANAGER - File and Report Manager (active: 1)"_s);
    QVERIFY(!view.StartEnabled() && view.StopEnabled());
    QCOMPARE(globals.Log.Count(), 0);
    clock.advanceSeconds(300);
    dispatcher.Tick();
    QCOMPARE(globals.Log.Count(), 1);
    QVERIFY(schedule.StartTime.isEmpty());
    QCOMPARE(schedule.Cell(0, clsSchedule::colNextRun), u"24-Nov-2026 09:00"_s);

    // A stop time that is not a date waits a year, and says so; a start time that is not one fires.
    schedule.StopTime = u"soon"_s;
    dispatcher.Tick();
    QVERIFY(schedule.Active);
    QCOMPARE(view.Caption(),
             u"QorloMANAGER - File and Report Manager (active: 1) (Will stop on timer at soon)"_s);
    schedule.StopTime = u"22-Nov-2026 10:00:00"_s;
    dispatcher.Tick();
    QVERIFY(!schedule.Active && schedule.StopTime.isEmpty());
    QCOMPARE(view.Caption(), u"QorloMANAGER - File and Report Manager (stopped)"_s);
    QVERIFY(view.StartEnabled() && !view.StopEnabled());
    schedule.StartTime = u"later"_s;
    globals.DisplayCaption();
    QCOMPARE(view.Caption(),
             u"QorloMANAGER - File and Report Manager (stopped) (Will start on timer at later)"_s);
    dispatcher.Tick();
    QVERIFY(schedule.Active && schedule.StartTime.isEmpty());

    // Stopped with an item overdue: nothing runs; after Start it runs once and lies in the future.
    dispatcher.StopSchedule();
    clock.advanceSeconds(2 * 86400);
    dispatcher.Tick();
    QCOMPARE(globals.Log.Count(), 1);
    dispatcher.StartSchedule();
    dispatcher.Tick();
    dispatcher.Tick();
    QCOMPARE(globals.Log.Count(), 2);
    QCOMPARE(schedule.Cell(0, clsSchedule::colNextRun), u"26-Nov-2026 09:00"_s);
    QCOMPARE(view.Colour(1), int(ScheduleView::NormalColour));
}

// Run Now and the editors: refusals during a run, NextRun kept, the schedule stopped and restarted.
void TestDispatcher::runNowAndEditing()
{
    Program program;
    auto &[app, clock, guard, prompter, globals, schedule] = program;
    AddItem(schedule, {u"1"_s, u"AppA"_s, app.filePath(u"a.sh"_s), u"D"_s, u"1"_s, u"25-Nov-2026 09:00"_s});
    AddItem(schedule, {u"2"_s, u"AppB"_s, app.filePath(u"a.sh"_s), u"D"_s, u"1"_s, u"25-Nov-2026 09:00"_s});
    schedule.Active = true;
    globals.ViewTable();
    Dispatcher dispatcher(globals);

    schedule.ProcessingID = u"1"_s;
    dispatcher.RunNow(2);
    QVERIFY(!dispatcher.StopForEditing(true));
    QCOMPARE(
        prompter.messages,
        (QStringList{u"Run Now: Please wait until report finished processing"_s,
                     u"Modify Schedule: Please wait until the current report processing has completed"_s}));
    QVERIFY(schedule.Active);
    schedule.ProcessingID.clear();

    prompter.answer = false;
    dispatcher.RunNow(2);
    QCOMPARE(prompter.questions.last(), u"Run Now: Confirm you want to run Schedule Item 2"_s);
    QCOMPARE(globals.Log.Count(), 0);
    prompter.answer = true;
    schedule.SetPosition(0);
    dispatcher.RunNow(2);
    QCOMPARE(globals.Log.Count(), 1);
    QCOMPARE(globals.Log.CellAt(0, clsLog::ColReportID), u"2"_s);
    QCOMPARE(schedule.Position(), 1);
    clsSchedule saved(app.path());
    saved.Load(app.filePath(u"Qorlo.XML"_s));
    QCOMPARE(saved.Cell(1, clsSchedule::colLastRun), u"23-Nov-2026 10:00"_s);
    QCOMPARE(saved.Cell(1, clsSchedule::colNextRun), u"25-Nov-2026 09:00"_s);

    QVERIFY(dispatcher.StopForEditing(true));
    QVERIFY(!schedule.Active && globals.ReactivateOnFocus);
    dispatcher.MainWindowInFront();
    QVERIFY(schedule.Active && !globals.ReactivateOnFocus);
    dispatcher.StopForAdvance();
    dispatcher.MainWindowInFront();
    QVERIFY(!schedule.Active);
}

// Locks hold back their own folder only; a mail document without its root is deleted with its reason
// in SMTP.Log; a remote document that fails ends the tick through the fatal box and stays in place.
void TestDispatcher::commandFolders()
{
    Program program;
    auto &[app, clock, guard, prompter, globals, schedule] = program;
    globals.Log.ApplyStartDefaults();
    Dispatcher dispatcher(globals, 50);
    WriteFile(app.filePath(u"Remote/hold.LCK"_s), "");
    WriteFile(app.filePath(u"Remote/add.XML"_s),
              "<ReportID>5</ReportID>\r\n<ReportName>Added</ReportName>\r\n");
    WriteFile(app.filePath(u"Mail/bad.xml"_s), "<NotMail>\r\n<To>boss@example.com</To>\r\n</NotMail>\r\n");
    dispatcher.Tick();
    QVERIFY(QFile::exists(app.filePath(u"Remote/add.XML"_s)));
    QVERIFY(!QFile::exists(app.filePath(u"Mail/bad.xml"_s)));
    QVERIFY(
        ReadFile(app.filePath(u"SMTP.Log"_s)).contains("Invalid XML document - cannot find QorloMAILDoc"));
    QCOMPARE(static_cast<ListScheduleView &>(globals.View()).StatusText(), u"Invalid XML Doc"_s);
    QCOMPARE(globals.Log.CellAt(0, clsLog::ColText), u"Process Remote command file: bad.xml"_s);
    QCOMPARE(globals.Log.CellAt(0, clsLog::ColReportID), u"MAIL"_s);

    QFile::remove(app.filePath(u"Remote/hold.LCK"_s));
    dispatcher.Tick();
    QVERIFY(!QFile::exists(app.filePath(u"Remote/add.XML"_s)));
    QCOMPARE(globals.Log.CellAt(1, clsLog::ColReportID), u"REMOTE"_s);
    QCOMPARE(globals.Log.CellAt(1, clsLog::ColText), u"Process Remote command file: add.XML"_s);
    clsSchedule saved(app.path());
    saved.Load(app.filePath(u"Qorlo.XML"_s));
    QCOMPARE(saved.Count(), 1);
    QCOMPARE(saved.Cell(0, clsSchedule::colName), u"Added"_s);
    QCOMPARE(globals.View().RowReportID(1), u"5"_s);

    WriteFile(app.filePath(u"Remote/bad.xml"_s), "<Period-One>not a date</Period-One>\r\n");
    dispatcher.Start();
    QVERIFY(WaitUntil([&] { return !prompter.fatal.isEmpty(); }, 5000));
    QCOMPARE(prompter.fatal.first(), u"Run-time error '13': Type mismatch"_s);
    // Set aside, so that the next start does not meet it again.
    QVERIFY(!QFile::exists(app.filePath(u"Remote/bad.xml"_s)));
    QVERIFY(QFile::exists(app.filePath(u"Remote/Failed/bad.xml"_s)));
}

QORLO_TEST_MAIN(TestDispatcher)
#include "tst_dispatcher.moc"
