#include "AppObjects.h"
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "core/DayDate.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/SingleInstance.h"
#include "scheduler/StartUp.h"
#include "ui/frmMain.h"
#include "ui/frmSMTP.h"
#include "ui/frmTextView.h"

#include <QAction>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSignalSpy>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// An application folder with its global objects, the dispatcher and the main window over them.
struct MainFixture : GlobalsFixture
{
    MainFixture() { globals.Viewer.ApplyStartDefaults(); }

    QTableWidget *grid() { return Child<QTableWidget>(&window, "fgView"); }
    QString text(int tableRow, int column) { return grid()->item(tableRow, column)->text(); }
    QColor background(int tableRow, int column)
    {
        return grid()->item(tableRow, column)->background().color();
    }
    QStringList rowTexts(int tableRow)
    {
        QStringList cells;
        for (int column = 0; column < frmMain::ColumnCount; ++column)
            cells.append(text(tableRow, column));
        return cells;
    }
    QStringList ids() { return RowIDs(window); }
    QAction *menu(const char *name) { return Child<QAction>(&window, name); }
    void trigger(const char *name) { menu(name)->trigger(); }
    clsViewer savedViewer() const
    {
        clsViewer viewer(dir.path());
        viewer.Load(path(u"Form.XML"_s));
        return viewer;
    }

    Dispatcher dispatcher{globals};
    frmMain window{globals, dispatcher};
};

const QString kCaption = u"QorloMANAGER - File and Report Manager "_s;

} // namespace

class TestFrmMain : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void gridShowsTheSchedule();
    void sortOrdersTheGridOnly();
    void startStopRunNowAndTick();
    void windowStateGoesToFormXml();
    void closeDoorAndComingToTheFront();
    void startUpShowsTheWindowBeforeTheMailBox();
    void duplicateAndDelete();
    void insertFileAndFolder();
    void smtpLogViewer();
    void opensNoSmallerThanItsGrid();
    void failingCommandKeepsTheProgram();
    void itemPartEntries();
};

void TestFrmMain::gridShowsTheSchedule()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    const ClockGuard guard(clock);
    MainFixture f;
    clsSchedule &s = f.schedule;
    AddItem(s, {QString(), u"Sales"_s, f.path(u"sales.rpt"_s), u"D"_s, u"1"_s, u"03-Mar-2026 06:00"_s});
    s.SetDest(u"E"_s);
    s.SetEmail(u"boss@example.com"_s);
    s.SetLastRun(u"01-Mar-2026 06:00"_s);
    AddItem(s, {QString(), QString(), u"/reports/stock.rpt"_s, u"D"_s, u"1"_s, QString()});
    AddItem(s, {QString(), u"Print"_s, u"/reports/print.rpt"_s, u"D"_s, u"1"_s, u"04-Mar-2026 07:30"_s});
    s.SetDest(u"P"_s);
    s.SetPrinter(u"Office"_s);
    f.globals.Viewer.Viewer_ColDesc = 4500;

    f.globals.ViewTable();
    f.window.ApplyViewerSettings();
    QTableWidget *grid = f.grid();
    QCOMPARE(grid->horizontalHeaderItem(5)->text(), u"Previous Run"_s);
    QCOMPARE(grid->columnWidth(0), 40);
    QCOMPARE(grid->columnWidth(2), 300);
    QCOMPARE(f.window.Rows(), 4);
    QCOMPARE(f.rowTexts(0), (QStringList{u"1"_s, u"03-Mar-2026 06:00"_s, u"Sales"_s, f.path(u"sales.rpt"_s),
                                         u"boss@example.com"_s, u"01-Mar-2026 06:00"_s}));
    // An empty name shows the file's base name, a disk item its output location.
    QCOMPARE(f.rowTexts(1), (QStringList{u"2"_s, QString(), u"stock"_s, u"/reports/stock.rpt"_s,
                                         f.path(u"Output/stock.rpt"_s), QString()}));
    QCOMPARE(f.globals.NextRunDate, DayDate::FromParts(2026, 3, 3, 6, 0));
    QCOMPARE(s.SortIndexCount(), 3);
    QVERIFY(f.prompter.take().isEmpty());

    // The running row is red from column 1 on; a refresh rewrites its texts and keeps the colour.
    f.window.SetSchedule(ScheduleView::RunningColour, 2);
    QCOMPARE(f.background(1, 1), QColor(Qt::red));
    QVERIFY(f.background(1, 0) != QColor(Qt::red));
    s.Find(u"2"_s);
    s.SetName(u"Stock list"_s);
    s.SetNextRun(u"02-Mar-2026 10:00"_s);
    f.globals.RefreshRow(2);
    QCOMPARE(f.text(1, 2), u"Stock list"_s);
    QCOMPARE(f.background(1, 2), QColor(Qt::red));
    QCOMPARE(f.globals.NextRunDate, DayDate::FromParts(2026, 3, 2, 10, 0));
    f.window.SetSchedule(ScheduleView::NormalColour, 2);
    QCOMPARE(f.background(1, 3), QColor(Qt::white));
    // Rows outside the grid are left alone.
    f.window.SetSchedule(ScheduleView::RunningColour, 0);
    f.window.SetSchedule(ScheduleView::RunningColour, 4);
    f.window.RefreshRow(7);

    // Entering a cell paints it cyan, leaving paints it white.
    grid->setCurrentCell(0, 2);
    QCOMPARE(f.background(0, 2), QColor(Qt::cyan));
    grid->setCurrentCell(2, 3);
    QCOMPARE(f.background(0, 2), QColor(Qt::white));

    s.Clear();
    f.globals.ViewTable();
    QCOMPARE(grid->rowCount(), 0);
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: No Data in Schedule"_s});
    QCOMPARE(f.globals.NextRunDate, Now());
}

void TestFrmMain::sortOrdersTheGridOnly()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    const ClockGuard guard(clock);
    MainFixture f;
    clsSchedule &s = f.schedule;
    AddItem(s, {u"10"_s, u"beta"_s, u"/r/b.rpt"_s, u"D"_s, u"1"_s, u"05-Mar-2026 08:00"_s});
    AddItem(s, {u"9"_s, u"Alpha"_s, u"/r/a.rpt"_s, u"D"_s, u"1"_s, QString()});
    AddItem(s, {u"100"_s, u"alpha"_s, u"/r/c.rpt"_s, u"D"_s, u"1"_s, u"01-Mar-2026 07:00"_s});
    f.globals.Viewer.SortCol = u"1"_s;
    f.globals.ViewTable();
    const auto sortIndex = [&s] {
        QStringList index;
        for (int i = 0; i < s.SortIndexCount(); ++i)
            index.append(s.GetSortIndexArray(i));
        return index;
    };

    // The sort column of Form.XML applies at load; an empty Next Run sorts as today.
    f.window.ApplyViewerSettings();
    QCOMPARE(f.window.SortColumn(), 1);
    QCOMPARE(f.ids(), (QStringList{u"100"_s, u"9"_s, u"10"_s}));
    QCOMPARE(sortIndex(), f.ids());

    f.trigger("mnuSortOrig");
    QCOMPARE(f.ids(), (QStringList{u"9"_s, u"10"_s, u"100"_s}));
    f.trigger("mnuSortDesc");
    QCOMPARE(f.window.SortColumn(), 2);
    QCOMPARE(f.ids(), (QStringList{u"9"_s, u"100"_s, u"10"_s}));
    QCOMPARE(sortIndex(), f.ids());
    // Every cell moves with its row.
    QCOMPARE(f.rowTexts(2).mid(1, 3), (QStringList{u"05-Mar-2026 08:00"_s, u"beta"_s, u"/r/b.rpt"_s}));

    // The schedule keeps its order: a save writes the rows as they were.
    f.trigger("mnuSaveSchedule");
    clsSchedule saved(f.dir.path());
    saved.Load(f.path(u"Qorlo.XML"_s));
    QCOMPARE(saved.Count(), 3);
    QCOMPARE(saved.Cell(0, clsSchedule::colReportID), u"10"_s);
    QCOMPARE(saved.Cell(2, clsSchedule::colReportID), u"100"_s);
}

void TestFrmMain::startStopRunNowAndTick()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    const ClockGuard guard(clock);
    MainFixture f;
    AppFolder::MakeWorkingFolders(f.dir.path());
    clsSchedule &s = f.schedule;
    const QString job = WriteScript(f.path(u"job.sh"_s), "exit 0");
    AddItem(s, {QString(), u"Overdue"_s, job, u"D"_s, u"1"_s, u"02-Mar-2026 08:00"_s});
    AddItem(s, {QString(), u"Later"_s, job, u"D"_s, u"1"_s, u"09-Mar-2026 08:00"_s});
    LoadMainWindow(f.globals);
    f.window.ApplyViewerSettings();
    QCOMPARE(f.window.windowTitle(), kCaption + u"(stopped)"_s);

    f.trigger("mnuStartSchedule");
    QVERIFY(s.Active);
    QCOMPARE(f.window.windowTitle(), kCaption + u"(active: 2)"_s);
    QVERIFY(!f.menu("mnuStartSchedule")->isEnabled());
    QVERIFY(f.menu("mnuStopSchedule")->isEnabled());
    f.trigger("mnuStopSchedule");
    QVERIFY(!s.Active);
    QCOMPARE(f.window.windowTitle(), kCaption + u"(stopped)"_s);

    // Run Now: nothing without a selection, nothing on No, the item on Yes with its NextRun kept.
    f.trigger("mnuRunNow");
    QVERIFY(f.prompter.take().isEmpty());
    f.grid()->setCurrentCell(1, 0);
    f.prompter.setNextAnswers({false});
    f.trigger("mnuRunNow");
    QCOMPARE(f.prompter.take(), QStringList{u"Run Now: Confirm you want to run Schedule Item 2"_s});
    QCOMPARE(f.text(1, 5), QString());
    f.prompter.setNextAnswers({true});
    f.trigger("mnuRunNow");
    f.prompter.take();
    QCOMPARE(f.text(1, 5), u"02-Mar-2026 09:00"_s);
    QCOMPARE(f.text(1, 1), u"09-Mar-2026 08:00"_s);
    s.ProcessingID = u"1"_s;
    f.trigger("mnuRunNow");
    QCOMPARE(f.prompter.take(), QStringList{u"Run Now: Please wait until report finished processing"_s});
    s.ProcessingID.clear();

    // A tick on a stopped schedule runs nothing; once started it runs the overdue item, shows its
    // next run and keeps the operator's selection.
    f.dispatcher.Tick();
    QCOMPARE(f.text(0, 1), u"02-Mar-2026 08:00"_s);
    f.trigger("mnuStartSchedule");
    f.dispatcher.Tick();
    QCOMPARE(f.text(0, 1), u"03-Mar-2026 08:00"_s);
    QCOMPARE(f.text(0, 5), u"02-Mar-2026 09:00"_s);
    QCOMPARE(f.background(0, 2), QColor(Qt::white));
    QCOMPARE(f.window.SelectedRow(), 2);
    QCOMPARE(f.window.windowTitle(), kCaption + u"(active: 2)"_s);
    QCOMPARE(f.globals.NextRunDate, DayDate::FromParts(2026, 3, 3, 8, 0));

    // AutoRun flips with its check mark and goes to Qorlo.XML with the next save.
    f.trigger("mnuAutoRun");
    QVERIFY(s.AutoRun);
    QVERIFY(f.menu("mnuAutoRun")->isChecked());
    f.trigger("mnuSaveSchedule");
    clsSchedule saved(f.dir.path());
    saved.Load(f.path(u"Qorlo.XML"_s));
    QVERIFY(saved.AutoRun);
    QVERIFY(saved.Active);
    saved.Find(u"2"_s);
    QCOMPARE(saved.LastRun(), u"02-Mar-2026 09:00"_s);
    QVERIFY(f.prompter.fatal.isEmpty());
}

void TestFrmMain::windowStateGoesToFormXml()
{
    MainFixture f;
    clsViewer &viewer = f.globals.Viewer;
    viewer.Viewer_Left = 1500;
    viewer.Viewer_Top = 1200;
    viewer.Viewer_Width = 13500;
    viewer.Viewer_Height = 6000;
    viewer.Viewer_ColFile = 2250;
    const QString form = f.path(u"Form.XML"_s);
    f.globals.ViewTable();
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: No Data in Schedule"_s});
    f.window.ApplyViewerSettings();
    QCOMPARE(f.window.size(), QSize(900, 400));
    QCOMPARE(f.window.pos(), QPoint(100, 80));
    f.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.window));
    QVERIFY(!QFile::exists(form));

    // Each resize writes the window state.
    f.window.resize(750, 450);
    QTRY_VERIFY(QFile::exists(form));
    QCOMPARE(f.savedViewer().Viewer_Width, 11250);
    QCOMPARE(f.savedViewer().Viewer_ColFile, 2250);
    QCOMPARE(f.savedViewer().Viewer_State, u"Normal"_s);

    // Exit with another window open asks; Cancel keeps the program.
    QSignalSpy exits(&f.window, &frmMain::ExitRequested);
    f.trigger("mnuSMTPSettings");
    auto *smtp = f.window.findChild<frmSMTP *>(u"frmSMTP"_s);
    QVERIFY(smtp && smtp->isVisible());
    f.prompter.setNextAnswers({false});
    f.trigger("mnuExit");
    QCOMPARE(f.prompter.take(), QStringList{u"Close Schedule: Confirm Close QorloMANAGER"_s});
    QCOMPARE(exits.count(), 0);
    smtp->close();
    f.grid()->setColumnWidth(3, 200);
    f.trigger("mnuExit");
    QVERIFY(f.prompter.take().isEmpty());
    QCOMPARE(exits.count(), 1);
    QCOMPARE(f.savedViewer().Viewer_ColFile, 3000);

    // Saved maximised as "Max", which the load step does not maximise; "Full" it does.
    f.window.showMaximized();
    QTRY_COMPARE(f.savedViewer().Viewer_State, u"Max"_s);
    QCOMPARE(f.savedViewer().Viewer_Width, 11250);
    MainFixture again;
    again.globals.Viewer.Viewer_State = u"Max"_s;
    again.globals.Viewer.SortCol = u"99999999"_s;
    again.window.ApplyViewerSettings();
    QCOMPARE(again.window.SortColumn(), 0);
    QVERIFY(!(again.window.windowState() & Qt::WindowMaximized));
    again.globals.Viewer.Viewer_State = u"Full"_s;
    again.window.ApplyViewerSettings();
    QVERIFY(again.window.windowState() & Qt::WindowMaximized);
}

void TestFrmMain::closeDoorAndComingToTheFront()
{
    MainFixture f;
    AddItem(f.schedule, {QString(), u"Job"_s, u"/r/job.rpt"_s, u"D"_s, u"1"_s, QString()});
    f.globals.ViewTable();
    f.window.ApplyViewerSettings();
    f.window.show();
    f.window.activateWindow();
    QTRY_COMPARE(QGuiApplication::focusWindow(), f.window.windowHandle());

    // Back from another form, a schedule that an editor stopped runs again.
    f.trigger("mnuSMTPSettings");
    auto *smtp = f.window.findChild<frmSMTP *>(u"frmSMTP"_s);
    smtp->activateWindow();
    QTRY_COMPARE(QGuiApplication::focusWindow(), smtp->windowHandle());
    f.globals.ReactivateOnFocus = true;
    smtp->close();
    f.window.activateWindow();
    QTRY_VERIFY(f.schedule.Active);
    QVERIFY(!f.globals.ReactivateOnFocus);
    QCOMPARE(f.window.windowTitle(), kCaption + u"(active: 0)"_s);

    // Cancel refuses the close, and the other windows are unloaded all the same.
    f.trigger("mnuSMTPSettings");
    QVERIFY(smtp->isVisible());
    f.prompter.setNextAnswers({false});
    QVERIFY(!f.window.close());
    QCOMPARE(f.prompter.take(),
             QStringList{u"Close Schedule: Confirm you want to close QorloMANAGER Report Scheduler?"_s});
    QVERIFY(f.window.isVisible());
    QVERIFY(!smtp->isVisible());
    QVERIFY(f.window.close());
    QVERIFY(f.prompter.take().isEmpty());
    QVERIFY(!f.window.isVisible());
    QCOMPARE(f.prompter.unanswered, 0);
}

// The load step's boxes come before the window shows, the mail details box after it, with the mail
// settings window opened behind it.
void TestFrmMain::startUpShowsTheWindowBeforeTheMailBox()
{
    MainFixture f;
    QStringList boxes;
    f.prompter.onRecord = [&] {
        boxes.append(f.prompter.messages.last() + (f.window.isVisible() ? u" (shown)"_s : QString()));
    };
    SingleInstance instance;
    QVERIFY(StartUp(f.globals, instance, f.dispatcher, f.path(u"qorlomanager"_s)));
    QCOMPARE(boxes.mid(boxes.size() - 2),
             (QStringList{u"QorloMANAGER: No Data in Schedule"_s,
                          u"SMTP Server settings: Please enter your mail connection details (shown)"_s}));
    const frmSMTP *settings = f.window.findChild<frmSMTP *>();
    QVERIFY(settings && settings->isVisible());
}

// Both commands need a row and a selection; a copy takes the item's parameters along, a delete asks
// first, and several selected rows go with one question.
void TestFrmMain::duplicateAndDelete()
{
    MainFixture f;
    clsSchedule &s = f.schedule;
    f.trigger("mnuDuplicate");
    f.trigger("mnuDeleteReport");
    QCOMPARE(f.prompter.take(), (QStringList{u"Duplicate Schedule Item: No item in Schedule to Duplicate"_s,
                                             u"Delete Schedule Item: No Item in Schedule to Delete"_s}));
    for (const QString &name : {u"Sales"_s, u"Stock"_s, u"Staff"_s})
        AddItem(s, {QString(), name, f.path(name + u".rpt"_s), u"D"_s, u"1"_s, u"03-Mar-2026 06:00"_s});
    s.ParmAddNew();
    s.SetParmReportID(u"1"_s);
    s.SetParmName(u"Region"_s);
    s.SetParmValue(u"North"_s);
    f.globals.ViewTable();
    f.trigger("mnuDuplicate");
    QCOMPARE(f.prompter.take(),
             QStringList{u"Duplicate Schedule Item: Please select an item from the list"_s});

    f.grid()->setCurrentCell(0, 1);
    f.trigger("mnuDuplicate");
    QCOMPARE(f.ids(), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
    s.Find(u"4"_s);
    QCOMPARE(s.Name(), u"Sales"_s);
    QCOMPARE(s.ParmReportCount(u"4"_s), 1);
    QVERIFY(QFile::exists(f.path(u"Qorlo.XML"_s)));

    f.grid()->setCurrentCell(1, 1);
    f.prompter.setNextAnswers({false, true});
    f.trigger("mnuDeleteReport");
    f.trigger("mnuDeleteReport");
    QCOMPARE(f.prompter.take(), (QStringList{u"Remove Item 2 from Schedule: Confirm Delete of Stock"_s,
                                             u"Remove Item 2 from Schedule: Confirm Delete of Stock"_s}));
    QCOMPARE(f.ids(), (QStringList{u"1"_s, u"3"_s, u"4"_s}));

    f.grid()->clearSelection();
    f.grid()->selectRow(0);
    f.grid()->selectionModel()->select(f.grid()->model()->index(2, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
    f.prompter.setNextAnswers({true});
    f.trigger("mnuDeleteReport");
    QCOMPARE(f.prompter.take(),
             QStringList{u"Delete Schedule Items: Confirm Delete of 2 items from the schedule"_s});
    QCOMPARE(f.ids(), QStringList{u"3"_s});
    QCOMPARE(s.ParmReportCount(u"4"_s), 0);
}

// A chosen file becomes an unscheduled weekly item, named after the file, and its folder is the next
// dialog's start; a folder adds its reports; a cancelled dialog adds nothing.
void TestFrmMain::insertFileAndFolder()
{
    MainFixture f;
    QDir(f.dir.path()).mkpath(u"reports"_s);
    for (const char *name : {"reports/a.rpt", "reports/b.RPT", "reports/notes.txt"}) {
        QFile file(f.path(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    f.prompter.setNextFileNames({f.path(u"reports/a.rpt"_s), f.path(u"tool.sh"_s)});
    f.trigger("mnuNewReport");
    f.trigger("mnuNewReport");
    f.trigger("mnuNewReport");
    QCOMPARE(f.prompter.take(), (QStringList{u"Insert Item into Schedule: "_s,
                                             u"Insert Item into Schedule: "_s + f.path(u"reports"_s),
                                             u"Insert Item into Schedule: "_s + f.dir.path()}));
    clsSchedule &s = f.schedule;
    QCOMPARE(s.Count(), 2);
    s.Find(u"1"_s);
    QCOMPARE((QStringList{s.Name(), s.Schedule(), s.FreqTimes(), s.Frequency()}),
             (QStringList{u"a"_s, u"N"_s, u"1"_s, u"W"_s}));
    s.Find(u"2"_s);
    QCOMPARE(s.Name(), u"tool (Application)"_s);
    QCOMPARE(f.window.SelectedRow(), 2);
    QVERIFY(QFile::exists(f.path(u"Qorlo.XML"_s)));

    f.prompter.setNextFileNames({f.path(u"reports"_s)});
    f.trigger("mnuNewFolder");
    QCOMPARE(f.prompter.take(), QStringList{u"Insert Report Folder into Schedule: "_s});
    QCOMPARE(s.Count(), 4);
    QCOMPARE(f.window.RowReportID(f.window.SelectedRow()), u"4"_s);
}

// The SMTP log shows as the program wrote it, in its code page; a missing log says so.
void TestFrmMain::smtpLogViewer()
{
    MainFixture f;
    f.trigger("mnuViewSMTP");
    auto *viewer = f.window.findChild<frmTextView *>();
    QVERIFY(viewer && viewer->isVisible());
    auto *text = viewer->findChild<QPlainTextEdit *>(u"txtView"_s);
    QVERIFY(text->toPlainText().startsWith(u"Cannot read "_s));
    WriteFile(f.path(u"SMTP.Log"_s), "09:00   Caf\xe9 report message sent to boss@example.com\r\n");
    f.trigger("mnuViewSMTP");
    QCOMPARE(text->toPlainText(), u"09:00   Caf\u00e9 report message sent to boss@example.com\n"_s);
    QVERIFY(text->isReadOnly());
}

void TestFrmMain::opensNoSmallerThanItsGrid()
{
    MainFixture f;
    f.globals.ViewTable();
    f.prompter.take();
    // The start measures are 358 by 168 pixels: too small for six headings and ten rows.
    clsViewer &viewer = f.globals.Viewer;
    viewer.Viewer_ColDate = viewer.Viewer_ColRun = 1500;
    viewer.Viewer_ColDesc = viewer.Viewer_ColFile = viewer.Viewer_ColDest = 2250;
    f.window.ShowWindow();
    QVERIFY(QTest::qWaitForWindowExposed(&f.window));
    QHeaderView *headings = f.grid()->horizontalHeader();
    QCOMPARE(headings->length(), (600 + 2 * 1500 + 3 * 2250) / 15);
    QVERIFY(f.window.width() > headings->length());
    QVERIFY(f.grid()->height() >= headings->height() + 10 * f.grid()->verticalHeader()->defaultSectionSize());

    // Columns wider than the screen give a window as wide as the screen, no wider.
    viewer.ApplyStartDefaults();
    viewer.Viewer_ColDesc = 30000;
    f.window.ApplyViewerSettings();
    QCOMPARE(f.window.width(), f.window.screen()->availableSize().width());
}

// A command that fails shows its run-time error; the window and its schedule stay.
void TestFrmMain::failingCommandKeepsTheProgram()
{
    MainFixture f;
    for (int row = 0; row < clsSchedule::MaxItems; ++row)
        AddItem(f.schedule,
                {QString(), u"Item"_s, f.path(u"job.sh"_s), u"D"_s, u"1"_s, u"01-Mar-2026 10:00"_s});
    f.globals.ViewTable();
    f.window.SetSelectedRow(1);
    f.trigger("mnuDuplicate");
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: Run-time error '9': Subscript out of range"_s});
    QVERIFY(f.prompter.fatal.isEmpty());
    QCOMPARE(f.schedule.Count(), clsSchedule::MaxItems);
}

void TestFrmMain::itemPartEntries()
{
    MainFixture f;
    const QStringList captions{u"Edit &Parameter Values"_s, u"Edit &MultiRun"_s, u"&New Collection"_s,
                               u"&Edit Collection"_s};
    const char *const names[] = {"mnuPList", "mnuMultiRun", "mnuNewPack", "mnuEditPack"};
    for (int entry = 0; entry < 4; ++entry)
        QCOMPARE(f.menu(names[entry])->text(), captions.at(entry));

    // Without an item or a selection they say what is missing.
    f.globals.ViewTable();
    f.prompter.take();
    f.trigger("mnuPList");
    AddItem(f.schedule, {QString(), u"Job"_s, f.path(u"job.sh"_s), u"D"_s, u"1"_s, u"01-Mar-2026 10:00"_s});
    f.globals.ViewTable();
    f.window.SetSelectedRow(0);
    f.trigger("mnuMultiRun");
    QCOMPARE(f.prompter.take(), (QStringList{u"Edit Parameter Values: No Report in Schedule to Modify"_s,
                                             u"Edit MultiRun: Please select a report from the list"_s}));

    // The parameter editor stops the schedule, to start again when the main window is back.
    f.schedule.Active = true;
    f.window.SetSelectedRow(1);
    f.trigger("mnuPList");
    QVERIFY(!f.schedule.Active);
    QVERIFY(f.globals.ReactivateOnFocus);
}

QORLO_TEST_MAIN(TestFrmMain)
#include "tst_frmmain.moc"
