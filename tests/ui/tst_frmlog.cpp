// The run log viewer and its settings window, driven through their controls over a real log file.
#include "AppObjects.h"
#include "Files.h"
#include "SalesReport.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "core/TWReg.h"
#include "run/RunReport.h"
#include "run/RunState.h"
#include "ui/frmLog.h"
#include "ui/frmLogSetting.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QTableView>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// Wednesday 4 March 2026, 10:00.
const QDateTime kNow(QDate(2026, 3, 4), QTime(10, 0));

struct LogFixture : GlobalsFixture
{
    void addEntry(const QString &id, double start, const QString &text, qint32 pages = 0)
    {
        clsLog &log = globals.Log;
        log.AddNew();
        log.SetReportID(id);
        log.SetLogDate(start);
        log.SetFinishDate(start + 1.0 / 1440);
        log.SetLogText(text);
        log.SetPages(pages);
    }
    // Six rows over two weeks, one of them removed by retention.
    void addWeeks()
    {
        addEntry(u"1"_s, D(2026, 3, 4, 8, 0), u"Sales today"_s, 3);
        addEntry(u"2"_s, D(2026, 3, 3, 23, 59), u"Stock yesterday"_s);
        addEntry(u"DEL"_s, D(2026, 3, 4, 7, 0), u"removed"_s);
        addEntry(u"1"_s, D(2026, 2, 28, 9, 0), u"Sales on Saturday"_s, 12);
        addEntry(u"3"_s, D(2026, 2, 25, 10, 0), u"Prices a week ago"_s);
        addEntry(u"2"_s, D(2026, 2, 20, 6, 0), u"Stock long ago"_s);
        globals.Log.DeleteLogDate = D(2026, 12, 31);
        globals.Log.Save();
    }

    FixedClock clock{kNow};
    ClockGuard guard{clock};
};

} // namespace

class TestFrmLog : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Each case starts from the viewer's start values.
    void init() { QFile::remove(TWReg::SettingsFolder() + u"/QorloMANAGER.ini"_s); }
    void filtersAndColumns();
    void emptyLogs();
    void clearExportRefresh();
    void followsARunningSchedule();
    void measuresAndLogSettings();
};

void TestFrmLog::filtersAndColumns()
{
    LogFixture f;
    f.addWeeks();
    AddItem(f.schedule, {u"1"_s, u"Sales"_s, f.path(u"sales.rpt"_s), u"D"_s, u"1"_s, QString()});
    frmLog window(f.globals);
    window.ShowLog();
    auto *grid = Child<QTableView>(&window, "fgView");
    QStringList headings;
    for (int column = 0; column < 5; ++column)
        headings.append(grid->model()->headerData(column, Qt::Horizontal).toString());
    QCOMPARE(headings, (QStringList{u"ID"_s, u"Start"_s, u"Finish"_s, u"Description"_s, u"Pages"_s}));
    QCOMPARE(window.Filter(), qint16(0));
    QCOMPARE(ColumnTexts(grid, 0), (QStringList{u"1"_s, u"2"_s, u"1"_s, u"3"_s, u"2"_s}));
    QCOMPARE(ColumnTexts(grid, 1).first(), u"04-Mar-2026 08:00"_s);
    QCOMPARE(ColumnTexts(grid, 2).first(), u"04-Mar-2026 08:01"_s);
    // A page count shows only above 0.
    QCOMPARE(ColumnTexts(grid, 4), (QStringList{u"3"_s, QString(), u"12"_s, QString(), QString()}));

    // The week reaches back to the Saturday before; the prior seven days to last Wednesday.
    const struct
    {
        const char *entry;
        QStringList texts;
    } filters[] = {
        {"mnuFilter1", {u"Sales today"_s, u"Sales on Saturday"_s}},
        {"mnuFilter2", {u"Sales today"_s}},
        {"mnuFilter3", {u"Stock yesterday"_s}},
        {"mnuFilter4", {u"Sales today"_s, u"Stock yesterday"_s, u"Sales on Saturday"_s}},
        {"mnuFilter5",
         {u"Sales today"_s, u"Stock yesterday"_s, u"Sales on Saturday"_s, u"Prices a week ago"_s}},
    };
    for (const auto &filter : filters) {
        Child<QAction>(&window, filter.entry)->trigger();
        QCOMPARE(ColumnTexts(grid, 3), filter.texts);
        QVERIFY(Child<QAction>(&window, filter.entry)->isChecked());
        QVERIFY(!Child<QAction>(&window, "mnuFilter0")->isChecked());
    }
    QCOMPARE(TWReg::ReadSetting(u"LogForm"_s, u"Filter"_s, QString()), u"5"_s);

    // "Current Report" with nothing at the schedule's cursor shows nothing.
    f.schedule.SetPosition(-1);
    window.ViewLog(1);
    QCOMPARE(grid->model()->rowCount(), 0);
    QVERIFY(f.prompter.take().isEmpty());
    // The sort entries stay without an action.
    QVERIFY(!Child<QAction>(&window, "mnuSortAsc")->isEnabled());
    QVERIFY(!Child<QAction>(&window, "mnuSortDesc")->isEnabled());

    // The next opening takes the stored filter.
    frmLog again(f.globals);
    again.ShowLog();
    QCOMPARE(again.Filter(), qint16(1));
}

void TestFrmLog::emptyLogs()
{
    LogFixture f;
    frmLog window(f.globals);
    window.ShowLog();
    QCOMPARE(f.prompter.take(), QStringList{u"Empty log File: No Entries in Log"_s});
    QCOMPARE(Child<QTableView>(&window, "fgView")->model()->rowCount(), 0);

    // Rows removed by retention are rows: the grid is empty without a word.
    f.addEntry(u"DEL"_s, D(2026, 3, 1), u"old"_s);
    f.addEntry(u"DEL"_s, D(2026, 3, 2), u"older"_s);
    window.ViewLog(0);
    QVERIFY(f.prompter.take().isEmpty());
    QCOMPARE(Child<QTableView>(&window, "fgView")->model()->rowCount(), 0);
}

void TestFrmLog::clearExportRefresh()
{
    LogFixture f;
    f.addWeeks();
    frmLog window(f.globals);
    window.ShowLog();
    auto *grid = Child<QTableView>(&window, "fgView");

    Child<QAction>(&window, "mnuExport")->trigger();
    const QString csv = f.path(u"QorloLog.csv"_s);
    QCOMPARE(f.prompter.take(), QStringList{u"Log File Export: "_s + csv + u" created"_s});
    const QByteArray exported = ReadFile(csv);
    QVERIFY(
        exported.startsWith("\"ReportID\",\"Start\",\"Finish\",\"NextRun\",\"Description\",\"Pages\"\r\n"));
    QVERIFY2(
        exported.contains("\"1\",\"04-Mar-2026 08:00\",\"04-Mar-2026 08:01\",\"\",\"Sales today\",3\r\n"),
        exported.constData());

    // Refresh reads the file again: an entry written by another copy of the log appears.
    clsLog other(f.dir.path());
    WriteLogEntry(other, u"4"_s, D(2026, 3, 4, 9, 0), D(2026, 3, 4, 9, 5), QString(), u"Written elsewhere"_s,
                  1);
    Child<QAction>(&window, "mnuRefresh")->trigger();
    QCOMPARE(ColumnTexts(grid, 3).last(), u"Written elsewhere"_s);

    // Clear asks first; No keeps everything.
    Child<QAction>(&window, "mnuClear")->trigger();
    QCOMPARE(f.prompter.take(), QStringList{u"Clear Log: Confirm that you want to delete all log entries"_s});
    QCOMPARE(grid->model()->rowCount(), 6);
    f.prompter.setNextAnswers({true});
    Child<QAction>(&window, "mnuClear")->trigger();
    QCOMPARE(grid->model()->rowCount(), 0);
    QCOMPARE(f.prompter.take().size(), 1);
    QVERIFY(SavedLogEntries(f.dir.path()).isEmpty());
    Child<QAction>(&window, "mnuExport")->trigger();
    QCOMPARE(f.prompter.take(), QStringList{u"Log File Export: No log entries to display"_s});

    // Save writes the log and shows it again.
    f.addEntry(u"5"_s, D(2026, 3, 4, 9, 30), u"Added in memory"_s);
    Child<QAction>(&window, "mnuSave")->trigger();
    QCOMPARE(SavedLogEntries(f.dir.path()), QStringList{u"5|Added in memory"_s});
    QCOMPARE(ColumnTexts(grid, 3), QStringList{u"Added in memory"_s});
}

// A report run writes its entry; the viewer shows it without being asked.
void TestFrmLog::followsARunningSchedule()
{
    LogFixture f;
    f.addEntry(u"1"_s, D(2026, 3, 4, 8, 0), u"Before"_s);
    f.globals.Log.Save();
    AppFolder::MakeWorkingFolders(f.dir.path());
    MakeSalesDatabase(f.path(u"sales.db"_s));
    SalesReport(QDir(f.dir.path()), u"sales.rpt"_s, u"SELECT region, amount FROM {Sales}"_s);
    AddItem(f.schedule, {u"7"_s, u"Sales"_s, f.path(u"sales.rpt"_s), u"D"_s, u"1"_s, QString()});
    f.schedule.SetOutputFormat(u"CSV File"_s);
    f.schedule.SetLocation(f.path(u"Output/sales.csv"_s));
    frmLog window(f.globals);
    window.ShowLog();
    auto *grid = Child<QTableView>(&window, "fgView");
    QCOMPARE(grid->model()->rowCount(), 1);

    f.schedule.ProcessingID = u"7"_s;
    f.schedule.ProcessingName = u"Sales"_s;
    RunContext run = f.globals.Context();
    RunReport(run);
    const QString success = u"Sales: Successful output to "_s + f.path(u"Output/sales.csv"_s);
    QVERIFY2(WaitUntil([&] { return ColumnTexts(grid, 3).contains(success); }, 5000),
             qPrintable(ColumnTexts(grid, 3).join(u'|')));
    QCOMPARE(ColumnTexts(grid, 0), (QStringList{u"1"_s, u"7"_s}));
    QVERIFY(f.prompter.take().isEmpty());
}

void TestFrmLog::measuresAndLogSettings()
{
    LogFixture f;
    f.addWeeks();
    f.globals.Log.RetainLog = 30;
    f.globals.Log.CheckRetainLog = u"W"_s;
    f.globals.Log.WebLogSetting = u"Last 7 days"_s;
    frmLog window(f.globals);
    window.ShowLog();
    auto *grid = Child<QTableView>(&window, "fgView");
    // The start values in twips: 15 to a pixel.
    QCOMPARE(window.size(), QSize(358, 168));
    QCOMPARE(grid->columnWidth(0), 132);
    QCOMPARE(grid->columnWidth(3), 200);
    QCOMPARE(grid->columnWidth(4), 65);
    window.resize(600, 300);
    grid->setColumnWidth(3, 300);
    // Opening it again while it is open keeps it as it is.
    window.ShowLog();
    QCOMPARE(window.size(), QSize(600, 300));
    window.close();
    QCOMPARE(TWReg::ReadSettingNumber(u"LogForm"_s, u"Width"_s, 0), 9000);
    QCOMPARE(TWReg::ReadSettingNumber(u"LogForm"_s, u"ColDesc"_s, 0), 4500);
    frmLog again(f.globals);
    again.ShowLog();
    QCOMPARE(again.size(), QSize(600, 300));
    QCOMPARE(Child<QTableView>(&again, "fgView")->columnWidth(3), 300);

    // The settings window, opened from the viewer's menu.
    Child<QAction>(&again, "mnuSettings")->trigger();
    auto *settings = again.findChild<frmLogSetting *>();
    QVERIFY(settings && settings->isVisible());
    QCOMPARE(settings->windowTitle(), u"Log File Settings"_s);
    auto *retain = Child<QLineEdit>(settings, "txtRetain");
    QCOMPARE(retain->text(), u"30"_s);
    QCOMPARE(Child<QDateEdit>(settings, "dtDelete")->date(), QDate(2026, 12, 31));
    QCOMPARE(Child<QComboBox>(settings, "cmbReview")->currentText(), u"Weekly"_s);
    QCOMPARE(Child<QComboBox>(settings, "cmbWebLog")->currentText(), u"Last 7 days"_s);

    // Days that are no number: the error box, and nothing is stored.
    retain->setText(u"five"_s);
    Click(settings, "cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: Run-time error '13': Type mismatch"_s});
    QVERIFY(settings->isVisible());
    QCOMPARE(f.globals.Log.RetainLog, 30);

    // A check due today keeps five days: the older rows go, and the viewer shows what is left.
    retain->setText(u"5"_s);
    Child<QDateEdit>(settings, "dtDelete")->setDate(QDate(2026, 3, 4));
    Child<QComboBox>(settings, "cmbReview")->setCurrentText(u"Daily"_s);
    Child<QComboBox>(settings, "cmbWebLog")->setCurrentText(u"Today"_s);
    Click(settings, "cmdSave");
    QVERIFY(!settings->isVisible());
    clsLog saved(f.dir.path());
    saved.Load(saved.FileName());
    QCOMPARE(saved.RetainLog, 5);
    QCOMPARE(saved.CheckRetainLog, u"D"_s);
    QCOMPARE(saved.WebLogSetting, u"Today"_s);
    QCOMPARE(saved.DeleteLogDate, D(2026, 3, 5));
    QCOMPARE(f.globals.Log.Count(), saved.Count());
    again.ViewLog(0);
    QCOMPARE(ColumnTexts(Child<QTableView>(&again, "fgView"), 3),
             (QStringList{u"Sales today"_s, u"Stock yesterday"_s, u"Sales on Saturday"_s,
                          u"Automatic delete of 2 items from log file"_s}));
}

QORLO_TEST_MAIN(TestFrmLog)
#include "tst_frmlog.moc"
