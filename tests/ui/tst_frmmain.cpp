#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "core/DayDate.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/SingleInstance.h"
#include "scheduler/StartUp.h"
#include "ui/frmMain.h"
#include "ui/frmSMTP.h"
#include "ui/frmTextView.h"

#include <QAction>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>

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
    QStringList ids()
    {
        QStringList column;
        for (int row = 1; row < window.Rows(); ++row)
            column.append(window.RowReportID(row));
        return column;
    }
    QAction *menu(const char *name) { return Child<QAction>(&window, name); }
    void trigger(const char *name) { menu(name)->trigger(); }
    clsViewer savedViewer() const
    {
        clsViewer viewer(dir.path());
        viewer.Load(path(QStringLiteral("Form.XML")));
        return viewer;
    }

    Dispatcher dispatcher{globals};
    frmMain window{globals, dispatcher};
};

void AddItem(clsSchedule &schedule, const QString &name, const QString &file, const QString &nextRun)
{
    schedule.AddNew();
    schedule.SetName(name);
    schedule.SetFile(file);
    schedule.SetNextRun(nextRun);
    schedule.SetSchedule(QStringLiteral("Y"));
    schedule.SetFrequency(QStringLiteral("D"));
    schedule.SetFreqTimes(QStringLiteral("1"));
}

const QString kCaption = QStringLiteral("QorloMANAGER - File and Report Manager ");

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
};

void TestFrmMain::gridShowsTheSchedule()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    const ClockGuard guard(clock);
    MainFixture f;
    clsSchedule &s = f.schedule;
    AddItem(s, QStringLiteral("Sales"), f.path(QStringLiteral("sales.rpt")),
            QStringLiteral("03-Mar-2026 06:00"));
    s.SetDest(QStringLiteral("E"));
    s.SetEmail(QStringLiteral("boss@example.com"));
    s.SetLastRun(QStringLiteral("01-Mar-2026 06:00"));
    AddItem(s, QString(), QStringLiteral("/reports/stock.rpt"), QString());
    AddItem(s, QStringLiteral("Print"), QStringLiteral("/reports/print.rpt"),
            QStringLiteral("04-Mar-2026 07:30"));
    s.SetDest(QStringLiteral("P"));
    s.SetPrinter(QStringLiteral("Office"));
    f.globals.Viewer.Viewer_ColDesc = 4500;

    f.globals.ViewTable();
    f.window.ApplyViewerSettings();
    QTableWidget *grid = f.grid();
    QCOMPARE(grid->horizontalHeaderItem(5)->text(), QStringLiteral("Previous Run"));
    QCOMPARE(grid->columnWidth(0), 40);
    QCOMPARE(grid->columnWidth(2), 300);
    QCOMPARE(f.window.Rows(), 4);
    QCOMPARE(f.rowTexts(0),
             (QStringList{QStringLiteral("1"), QStringLiteral("03-Mar-2026 06:00"), QStringLiteral("Sales"),
                          f.path(QStringLiteral("sales.rpt")), QStringLiteral("boss@example.com"),
                          QStringLiteral("01-Mar-2026 06:00")}));
    // An empty name shows the file's base name, a disk item its output location.
    QCOMPARE(f.rowTexts(1), (QStringList{QStringLiteral("2"), QString(), QStringLiteral("stock"),
                                         QStringLiteral("/reports/stock.rpt"),
                                         f.path(QStringLiteral("Output/stock.rpt")), QString()}));
    QCOMPARE(f.globals.NextRunDate, DayDate::FromParts(2026, 3, 3, 6, 0));
    QCOMPARE(s.SortIndexCount(), 3);
    QVERIFY(f.prompter.take().isEmpty());

    // The running row is red from column 1 on; a refresh rewrites its texts and keeps the colour.
    f.window.SetSchedule(ScheduleView::RunningColour, 2);
    QCOMPARE(f.background(1, 1), QColor(Qt::red));
    QVERIFY(f.background(1, 0) != QColor(Qt::red));
    s.Find(QStringLiteral("2"));
    s.SetName(QStringLiteral("Stock list"));
    s.SetNextRun(QStringLiteral("02-Mar-2026 10:00"));
    f.globals.RefreshRow(2);
    QCOMPARE(f.text(1, 2), QStringLiteral("Stock list"));
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
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("QorloMANAGER: No Data in Schedule")});
    QCOMPARE(f.globals.NextRunDate, Now());
}

void TestFrmMain::sortOrdersTheGridOnly()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    const ClockGuard guard(clock);
    MainFixture f;
    clsSchedule &s = f.schedule;
    AddItem(s, QStringLiteral("beta"), QStringLiteral("/r/b.rpt"), QStringLiteral("05-Mar-2026 08:00"));
    s.SetReportID(QStringLiteral("10"));
    AddItem(s, QStringLiteral("Alpha"), QStringLiteral("/r/a.rpt"), QString());
    s.SetReportID(QStringLiteral("9"));
    AddItem(s, QStringLiteral("alpha"), QStringLiteral("/r/c.rpt"), QStringLiteral("01-Mar-2026 07:00"));
    s.SetReportID(QStringLiteral("100"));
    f.globals.Viewer.SortCol = QStringLiteral("1");
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
    QCOMPARE(f.ids(), (QStringList{QStringLiteral("100"), QStringLiteral("9"), QStringLiteral("10")}));
    QCOMPARE(sortIndex(), f.ids());

    f.trigger("mnuSortOrig");
    QCOMPARE(f.ids(), (QStringList{QStringLiteral("9"), QStringLiteral("10"), QStringLiteral("100")}));
    f.trigger("mnuSortDesc");
    QCOMPARE(f.window.SortColumn(), 2);
    QCOMPARE(f.ids(), (QStringList{QStringLiteral("9"), QStringLiteral("100"), QStringLiteral("10")}));
    QCOMPARE(sortIndex(), f.ids());
    // Every cell moves with its row.
    QCOMPARE(f.rowTexts(2).mid(1, 3), (QStringList{QStringLiteral("05-Mar-2026 08:00"),
                                                   QStringLiteral("beta"), QStringLiteral("/r/b.rpt")}));

    // The schedule keeps its order: a save writes the rows as they were.
    f.trigger("mnuSaveSchedule");
    clsSchedule saved(f.dir.path());
    saved.Load(f.path(QStringLiteral("Qorlo.XML")));
    QCOMPARE(saved.Count(), 3);
    QCOMPARE(saved.Cell(0, clsSchedule::colReportID), QStringLiteral("10"));
    QCOMPARE(saved.Cell(2, clsSchedule::colReportID), QStringLiteral("100"));
}

void TestFrmMain::startStopRunNowAndTick()
{
    FixedClock clock(QDateTime(QDate(2026, 3, 2), QTime(9, 0)));
    const ClockGuard guard(clock);
    MainFixture f;
    AppFolder::MakeWorkingFolders(f.dir.path());
    clsSchedule &s = f.schedule;
    const QString job = WriteScript(f.path(QStringLiteral("job.sh")), "exit 0");
    AddItem(s, QStringLiteral("Overdue"), job, QStringLiteral("02-Mar-2026 08:00"));
    AddItem(s, QStringLiteral("Later"), job, QStringLiteral("09-Mar-2026 08:00"));
    LoadMainWindow(f.globals);
    f.window.ApplyViewerSettings();
    QCOMPARE(f.window.windowTitle(), kCaption + QStringLiteral("(stopped)"));

    f.trigger("mnuStartSchedule");
    QVERIFY(s.Active);
    QCOMPARE(f.window.windowTitle(), kCaption + QStringLiteral("(active: 2)"));
    QVERIFY(!f.menu("mnuStartSchedule")->isEnabled());
    QVERIFY(f.menu("mnuStopSchedule")->isEnabled());
    f.trigger("mnuStopSchedule");
    QVERIFY(!s.Active);
    QCOMPARE(f.window.windowTitle(), kCaption + QStringLiteral("(stopped)"));

    // Run Now: nothing without a selection, nothing on No, the item on Yes with its NextRun kept.
    f.trigger("mnuRunNow");
    QVERIFY(f.prompter.take().isEmpty());
    f.grid()->setCurrentCell(1, 0);
    f.prompter.setNextAnswers({false});
    f.trigger("mnuRunNow");
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("Run Now: Confirm you want to run Schedule Item 2")});
    QCOMPARE(f.text(1, 5), QString());
    f.prompter.setNextAnswers({true});
    f.trigger("mnuRunNow");
    f.prompter.take();
    QCOMPARE(f.text(1, 5), QStringLiteral("02-Mar-2026 09:00"));
    QCOMPARE(f.text(1, 1), QStringLiteral("09-Mar-2026 08:00"));
    s.ProcessingID = QStringLiteral("1");
    f.trigger("mnuRunNow");
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("Run Now: Please wait until report finished processing")});
    s.ProcessingID.clear();

    // A tick on a stopped schedule runs nothing; once started it runs the overdue item, shows its
    // next run and keeps the operator's selection.
    f.dispatcher.Tick();
    QCOMPARE(f.text(0, 1), QStringLiteral("02-Mar-2026 08:00"));
    f.trigger("mnuStartSchedule");
    f.dispatcher.Tick();
    QCOMPARE(f.text(0, 1), QStringLiteral("03-Mar-2026 08:00"));
    QCOMPARE(f.text(0, 5), QStringLiteral("02-Mar-2026 09:00"));
    QCOMPARE(f.background(0, 2), QColor(Qt::white));
    QCOMPARE(f.window.SelectedRow(), 2);
    QCOMPARE(f.window.windowTitle(), kCaption + QStringLiteral("(active: 2)"));
    QCOMPARE(f.globals.NextRunDate, DayDate::FromParts(2026, 3, 3, 8, 0));

    // AutoRun flips with its check mark and goes to Qorlo.XML with the next save.
    f.trigger("mnuAutoRun");
    QVERIFY(s.AutoRun);
    QVERIFY(f.menu("mnuAutoRun")->isChecked());
    f.trigger("mnuSaveSchedule");
    clsSchedule saved(f.dir.path());
    saved.Load(f.path(QStringLiteral("Qorlo.XML")));
    QVERIFY(saved.AutoRun);
    QVERIFY(saved.Active);
    saved.Find(QStringLiteral("2"));
    QCOMPARE(saved.LastRun(), QStringLiteral("02-Mar-2026 09:00"));
    QVERIFY(f.prompter.fatal.isEmpty());
}

void TestFrmMain::windowStateGoesToFormXml()
{
    MainFixture f;
    clsViewer &viewer = f.globals.Viewer;
    viewer.Viewer_Left = 1500;
    viewer.Viewer_Top = 1200;
    viewer.Viewer_Width = 9000;
    viewer.Viewer_Height = 6000;
    viewer.Viewer_ColFile = 2250;
    const QString form = f.path(QStringLiteral("Form.XML"));
    f.globals.ViewTable();
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("QorloMANAGER: No Data in Schedule")});
    f.window.ApplyViewerSettings();
    QCOMPARE(f.window.size(), QSize(600, 400));
    QCOMPARE(f.window.pos(), QPoint(100, 80));
    f.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.window));
    QVERIFY(!QFile::exists(form));

    // Each resize writes the window state.
    f.window.resize(750, 450);
    QTRY_VERIFY(QFile::exists(form));
    QCOMPARE(f.savedViewer().Viewer_Width, 11250);
    QCOMPARE(f.savedViewer().Viewer_ColFile, 2250);
    QCOMPARE(f.savedViewer().Viewer_State, QStringLiteral("Normal"));

    // Exit with another window open asks; Cancel keeps the program.
    QSignalSpy exits(&f.window, &frmMain::ExitRequested);
    f.trigger("mnuSMTPSettings");
    auto *smtp = f.window.findChild<frmSMTP *>(QStringLiteral("frmSMTP"));
    QVERIFY(smtp && smtp->isVisible());
    f.prompter.setNextAnswers({false});
    f.trigger("mnuExit");
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("Close Schedule: Confirm Close QorloMANAGER")});
    QCOMPARE(exits.count(), 0);
    smtp->close();
    f.grid()->setColumnWidth(3, 200);
    f.trigger("mnuExit");
    QVERIFY(f.prompter.take().isEmpty());
    QCOMPARE(exits.count(), 1);
    QCOMPARE(f.savedViewer().Viewer_ColFile, 3000);

    // Saved maximised as "Max", which the load step does not maximise; "Full" it does.
    f.window.showMaximized();
    QTRY_COMPARE(f.savedViewer().Viewer_State, QStringLiteral("Max"));
    QCOMPARE(f.savedViewer().Viewer_Width, 11250);
    MainFixture again;
    again.globals.Viewer.Viewer_State = QStringLiteral("Max");
    again.globals.Viewer.SortCol = QStringLiteral("99999999");
    again.window.ApplyViewerSettings();
    QCOMPARE(again.window.SortColumn(), 0);
    QVERIFY(!(again.window.windowState() & Qt::WindowMaximized));
    again.globals.Viewer.Viewer_State = QStringLiteral("Full");
    again.window.ApplyViewerSettings();
    QVERIFY(again.window.windowState() & Qt::WindowMaximized);
}

void TestFrmMain::closeDoorAndComingToTheFront()
{
    MainFixture f;
    AddItem(f.schedule, QStringLiteral("Job"), QStringLiteral("/r/job.rpt"), QString());
    f.globals.ViewTable();
    f.window.ApplyViewerSettings();
    f.window.show();
    f.window.activateWindow();
    QTRY_COMPARE(QGuiApplication::focusWindow(), f.window.windowHandle());

    // Back from another form, a schedule that an editor stopped runs again.
    f.trigger("mnuSMTPSettings");
    auto *smtp = f.window.findChild<frmSMTP *>(QStringLiteral("frmSMTP"));
    smtp->activateWindow();
    QTRY_COMPARE(QGuiApplication::focusWindow(), smtp->windowHandle());
    f.globals.ReactivateOnFocus = true;
    smtp->close();
    f.window.activateWindow();
    QTRY_VERIFY(f.schedule.Active);
    QVERIFY(!f.globals.ReactivateOnFocus);
    QCOMPARE(f.window.windowTitle(), kCaption + QStringLiteral("(active: 0)"));

    // Cancel refuses the close, and the other windows are unloaded all the same.
    f.trigger("mnuSMTPSettings");
    QVERIFY(smtp->isVisible());
    f.prompter.setNextAnswers({false});
    QVERIFY(!f.window.close());
    QCOMPARE(f.prompter.take(),
             QStringList{
                 QStringLiteral("Close Schedule: Confirm you want to close QorloMANAGER Report Scheduler?")});
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
        boxes.append(f.prompter.messages.last() +
                     (f.window.isVisible() ? QStringLiteral(" (shown)") : QString()));
    };
    SingleInstance instance;
    QVERIFY(StartUp(f.globals, instance, f.dispatcher, f.path(QStringLiteral("qorlomanager"))));
    QCOMPARE(boxes.mid(boxes.size() - 2),
             (QStringList{
                 QStringLiteral("QorloMANAGER: No Data in Schedule"),
                 QStringLiteral("SMTP Server settings: Please enter your mail connection details (shown)")}));
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
    QCOMPARE(f.prompter.take(),
             (QStringList{QStringLiteral("Duplicate Schedule Item: No item in Schedule to Duplicate"),
                          QStringLiteral("Delete Schedule Item: No Item in Schedule to Delete")}));
    for (const QString &name : {QStringLiteral("Sales"), QStringLiteral("Stock"), QStringLiteral("Staff")})
        AddItem(s, name, f.path(name + QStringLiteral(".rpt")), QStringLiteral("03-Mar-2026 06:00"));
    s.ParmAddNew();
    s.SetParmReportID(QStringLiteral("1"));
    s.SetParmName(QStringLiteral("Region"));
    s.SetParmValue(QStringLiteral("North"));
    f.globals.ViewTable();
    f.trigger("mnuDuplicate");
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("Duplicate Schedule Item: Please select an item from the list")});

    f.grid()->setCurrentCell(0, 1);
    f.trigger("mnuDuplicate");
    QCOMPARE(f.ids(), (QStringList{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                                   QStringLiteral("4")}));
    s.Find(QStringLiteral("4"));
    QCOMPARE(s.Name(), QStringLiteral("Sales"));
    QCOMPARE(s.ParmReportCount(QStringLiteral("4")), 1);
    QVERIFY(QFile::exists(f.path(QStringLiteral("Qorlo.XML"))));

    f.grid()->setCurrentCell(1, 1);
    f.prompter.setNextAnswers({false, true});
    f.trigger("mnuDeleteReport");
    f.trigger("mnuDeleteReport");
    QCOMPARE(f.prompter.take(),
             (QStringList{QStringLiteral("Remove Item 2 from Schedule: Confirm Delete of Stock"),
                          QStringLiteral("Remove Item 2 from Schedule: Confirm Delete of Stock")}));
    QCOMPARE(f.ids(), (QStringList{QStringLiteral("1"), QStringLiteral("3"), QStringLiteral("4")}));

    f.grid()->clearSelection();
    f.grid()->selectRow(0);
    f.grid()->selectionModel()->select(f.grid()->model()->index(2, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
    f.prompter.setNextAnswers({true});
    f.trigger("mnuDeleteReport");
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral(
                                    "Delete Schedule Items: Confirm Delete of 2 items from the schedule")});
    QCOMPARE(f.ids(), QStringList{QStringLiteral("3")});
    QCOMPARE(s.ParmReportCount(QStringLiteral("4")), 0);
}

// A chosen file becomes an unscheduled weekly item, named after the file, and its folder is the next
// dialog's start; a folder adds its reports; a cancelled dialog adds nothing.
void TestFrmMain::insertFileAndFolder()
{
    MainFixture f;
    QDir(f.dir.path()).mkpath(QStringLiteral("reports"));
    for (const char *name : {"reports/a.rpt", "reports/b.RPT", "reports/notes.txt"}) {
        QFile file(f.path(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    f.prompter.setNextFileNames({f.path(QStringLiteral("reports/a.rpt")), f.path(QStringLiteral("tool.sh"))});
    f.trigger("mnuNewReport");
    f.trigger("mnuNewReport");
    f.trigger("mnuNewReport");
    QCOMPARE(f.prompter.take(),
             (QStringList{QStringLiteral("Insert Item into Schedule: "),
                          QStringLiteral("Insert Item into Schedule: ") + f.path(QStringLiteral("reports")),
                          QStringLiteral("Insert Item into Schedule: ") + f.dir.path()}));
    clsSchedule &s = f.schedule;
    QCOMPARE(s.Count(), 2);
    s.Find(QStringLiteral("1"));
    QCOMPARE(
        (QStringList{s.Name(), s.Schedule(), s.FreqTimes(), s.Frequency()}),
        (QStringList{QStringLiteral("a"), QStringLiteral("N"), QStringLiteral("1"), QStringLiteral("W")}));
    s.Find(QStringLiteral("2"));
    QCOMPARE(s.Name(), QStringLiteral("tool (Application)"));
    QCOMPARE(f.window.SelectedRow(), 2);
    QVERIFY(QFile::exists(f.path(QStringLiteral("Qorlo.XML"))));

    f.prompter.setNextFileNames({f.path(QStringLiteral("reports"))});
    f.trigger("mnuNewFolder");
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("Insert Report Folder into Schedule: ")});
    QCOMPARE(s.Count(), 4);
    QCOMPARE(f.window.RowReportID(f.window.SelectedRow()), QStringLiteral("4"));
}

// The SMTP log shows as the program wrote it, in its code page; a missing log says so.
void TestFrmMain::smtpLogViewer()
{
    MainFixture f;
    f.trigger("mnuViewSMTP");
    auto *viewer = f.window.findChild<frmTextView *>();
    QVERIFY(viewer && viewer->isVisible());
    auto *text = viewer->findChild<QPlainTextEdit *>(QStringLiteral("txtView"));
    QVERIFY(text->toPlainText().startsWith(QStringLiteral("Cannot read ")));
    QFile log(f.path(QStringLiteral("SMTP.Log")));
    QVERIFY(log.open(QIODevice::WriteOnly));
    log.write("09:00   Caf\xe9 report message sent to boss@example.com\r\n");
    log.close();
    f.trigger("mnuViewSMTP");
    QCOMPARE(text->toPlainText(),
             QStringLiteral("09:00   Caf\u00e9 report message sent to boss@example.com\n"));
    QVERIFY(text->isReadOnly());
}

QORLO_TEST_MAIN(TestFrmMain)
#include "tst_frmmain.moc"
