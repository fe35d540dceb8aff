#include "AppObjects.h"
#include "Files.h"
#include "SalesReport.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowChecks.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "scheduler/Dispatcher.h"
#include "ui/ItemWindows.h"
#include "ui/frmList.h"
#include "ui/frmMulti.h"
#include "ui/frmPList.h"
#include "ui/frmMain.h"
#include "ui/frmSchedule.h"
#include "ui/frmTableMap.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

struct EditorFixture : GlobalsFixture
{
    EditorFixture() { globals.Viewer.ApplyStartDefaults(); }

    // A report item mailed monthly from 5 March 2026 07:30; the cursor stays on it.
    QString addReport(const QString &name)
    {
        AddItem(schedule, {QString(), name, path(name + u".rpt"_s), u"M"_s, u"2"_s, u"05-Mar-2026 07:30"_s});
        schedule.SetDest(u"E"_s);
        schedule.SetEmail(u"boss@example.com"_s);
        return schedule.ReportID();
    }
    // The item as the schedule file holds it.
    QString saved(const QString &id, int column)
    {
        const auto file = GlobalsFixture::saved();
        file->Find(id);
        return file->NoMatch() ? u"<missing>"_s : file->Field(column);
    }

    FixedClock clock{QDateTime(QDate(2026, 3, 2), QTime(9, 0))};
    ClockGuard guard{clock};
    ItemWindows windows{globals, nullptr, nullptr};
};

} // namespace

class TestFrmSchedule : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fillsEditsAndSaves();
    void refusesBlankDestinations();
    void modifyFromTheMainWindow();
    void runNowKeepsNextRun();
    void reportMenu();
    void linkedWindows();
    void newItem();
    void itemMovedUnderTheEditor();
    void lettersInTheCopies();
};

void TestFrmSchedule::fillsEditsAndSaves()
{
    EditorFixture f;
    const QString first = f.addReport(u"Weekly"_s);
    f.schedule.SetFrequency(u"B"_s);
    const QString id = f.addReport(u"Sales"_s);
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    QCOMPARE(editor.windowTitle(), u"Edit schedule for Item "_s + id);
    QCOMPARE(Child<QComboBox>(&editor, "cmbWhen")->currentText(), u"Month(s)"_s);
    QCOMPARE(Child<QComboBox>(&editor, "cmbDest")->currentText(), u"Email"_s);
    QCOMPARE(Child<QDateEdit>(&editor, "dtDay")->date(), QDate(2026, 3, 5));
    QCOMPARE(Child<QComboBox>(&editor, "cmbHour")->currentIndex(), 7);
    QCOMPARE(Child<QComboBox>(&editor, "cmbMin")->currentIndex(), 30);
    QCOMPARE(Child<QLabel>(&editor, "lDayMessage")->text(), u"Thursday"_s);
    auto *tabs = Child<QTabWidget>(&editor, "tbOutput");
    QVERIFY(tabs->isTabVisible(0) && !tabs->isTabVisible(2) && !tabs->isTabVisible(3));

    Child<QComboBox>(&editor, "cmbWhen")->setCurrentText(u"Custom Calendar"_s);
    QCOMPARE(Child<QLabel>(&editor, "lDayMessage")->text(), u"No Filename specified"_s);
    Child<QLineEdit>(&editor, "txtReportName")->setText(u"Sales EU"_s);
    Child<QLineEdit>(&editor, "txtMailCC")->setText(u"cc@example.com"_s);
    Child<QComboBox>(&editor, "cmbWhen")->setCurrentText(u"Month(s)"_s);
    Child<QComboBox>(&editor, "cmbHour")->setCurrentIndex(18);
    editor.show();
    Child<QPushButton>(&editor, "cmdSave")->click();
    QVERIFY(!editor.isVisible());
    QCOMPARE(f.saved(id, clsSchedule::colName), u"Sales EU"_s);
    QCOMPARE(f.saved(id, clsSchedule::colRptToCC), u"cc@example.com"_s);
    QCOMPARE(f.saved(id, clsSchedule::colFrequency), u"Month(s)"_s);
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), u"05-Mar-2026 18:30"_s);
    QCOMPARE(f.saved(id, clsSchedule::colDest), u"E"_s);

    // Paging writes the shown item back first; the first item's letter form shows in full.
    f.schedule.LoadSortIndexArray(first + u'|' + id);
    Child<QRadioButton>(&editor, "optRun1")->setChecked(true);
    Child<QPushButton>(&editor, "cmdFirst")->click();
    QCOMPARE(f.saved(id, clsSchedule::colSchedule), u"N"_s);
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), QString());
    QCOMPARE(editor.windowTitle(), u"Edit schedule for Item "_s + first);
    QCOMPARE(Child<QComboBox>(&editor, "cmbWhen")->currentText(), u"Business Day"_s);
    QVERIFY(f.prompter.take().isEmpty());
}

void TestFrmSchedule::refusesBlankDestinations()
{
    EditorFixture f;
    const QString id = f.addReport(u"Sales"_s);
    f.globals.SaveSchedule();
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    editor.show();
    Child<QLineEdit>(&editor, "txtMail")->clear();
    Child<QLineEdit>(&editor, "txtMailCC")->setText(u"cc@example.com"_s);
    Child<QPushButton>(&editor, "cmdSave")->click();
    QCOMPARE(f.prompter.take(), QStringList{u"Not Saved: Email Address is blank"_s});
    QVERIFY(editor.isVisible());
    QCOMPARE(f.saved(id, clsSchedule::colRptToCC), QString());

    Child<QComboBox>(&editor, "cmbDest")->setCurrentText(u"Disk File"_s);
    QVERIFY(Child<QTabWidget>(&editor, "tbOutput")->isTabVisible(2));
    Child<QLineEdit>(&editor, "txtOutput")->clear();
    Child<QPushButton>(&editor, "cmdApply")->click();
    QCOMPARE(f.prompter.take(), QStringList{u"Not Saved: Disk file destination is blank"_s});
    QCOMPARE(f.saved(id, clsSchedule::colDest), u"E"_s);

    // A printer needs no further field.
    Child<QComboBox>(&editor, "cmbDest")->setCurrentText(u"Printer"_s);
    Child<QPushButton>(&editor, "cmdApply")->click();
    QVERIFY(f.prompter.take().isEmpty());
    QCOMPARE(f.saved(id, clsSchedule::colDest), u"P"_s);

    // Multi-run proposes a control file beside the report.
    Child<QComboBox>(&editor, "cmbDest")->setCurrentText(u"MultiRun"_s);
    QCOMPARE(Child<QLineEdit>(&editor, "txtMRFile")->text(), f.dir.filePath(u"Sales-mr.txt"_s));
    QVERIFY(Child<QTabWidget>(&editor, "tbOutput")->isTabVisible(4));
}

void TestFrmSchedule::modifyFromTheMainWindow()
{
    EditorFixture f;
    Dispatcher dispatcher(f.globals);
    frmMain window(f.globals, dispatcher);
    QAction *modify = window.findChild<QAction *>(u"mnuModifyReport"_s);
    // An empty schedule says so in the grid; only the refusal counts here.
    f.globals.ViewTable();
    f.prompter.take();
    modify->trigger();
    QCOMPARE(f.prompter.take(), QStringList{u"Modify Schedule Item: No Report in Schedule to Modify"_s});

    const QString first = f.addReport(u"Sales"_s);
    const QString second = f.addReport(u"Costs"_s);
    f.globals.ViewTable();
    window.SetSelectedRow(0);
    modify->trigger();
    QCOMPARE(f.prompter.take(), QStringList{u"Modify Schedule Item: Please select a report from the list"_s});

    f.schedule.ProcessingID = second;
    window.SetSelectedRow(2);
    modify->trigger();
    QCOMPARE(
        f.prompter.take(),
        QStringList{u"Modify Schedule: Please wait until the current report processing has completed"_s});
    QVERIFY(!window.findChild<frmSchedule *>());

    f.schedule.ProcessingID.clear();
    f.schedule.Active = true;
    modify->trigger();
    QVERIFY(!f.schedule.Active);
    QVERIFY(f.globals.ReactivateOnFocus);
    auto *editor = window.findChild<frmSchedule *>();
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(editor->windowTitle(), u"Edit schedule for Item "_s + second);
    QCOMPARE(Child<QLineEdit>(editor, "txtReportName")->text(), u"Costs"_s);

    // A double click selects the row and opens the editor on it.
    editor->reject();
    Q_EMIT window.findChild<QTableWidget *>(u"fgView"_s)->cellDoubleClicked(0, 2);
    QCOMPARE(window.SelectedRow(), 1);
    QVERIFY(editor->isVisible());
    QCOMPARE(editor->windowTitle(), u"Edit schedule for Item "_s + first);
}

void TestFrmSchedule::runNowKeepsNextRun()
{
    EditorFixture f;
    AppFolder::MakeWorkingFolders(f.dir.path());
    const QString id = f.addReport(u"Job"_s);
    f.schedule.SetFile(WriteScript(f.path(u"job.sh"_s), "exit 0"));
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    QAction *run = editor.findChild<QAction *>(u"mnuRun"_s);
    f.schedule.ProcessingID = id;
    run->trigger();
    QCOMPARE(f.prompter.take(), QStringList{u"Run Now: Please wait until report has finished processing"_s});
    QCOMPARE(f.saved(id, clsSchedule::colLastRun), u"<missing>"_s);

    f.schedule.ProcessingID.clear();
    run->trigger();
    QCOMPARE(f.saved(id, clsSchedule::colLastRun), u"02-Mar-2026 09:00"_s);
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), u"05-Mar-2026 07:30"_s);
    QVERIFY(f.prompter.fatal.isEmpty());
}

void TestFrmSchedule::reportMenu()
{
    EditorFixture f;
    const QString id = f.addReport(u"Sales"_s);
    SalesReport(QDir(f.dir.path()), u"Sales.rpt"_s, u"SELECT region FROM {Sales} WHERE region = {?Region}"_s,
                u"<parameter name=\"Region\" type=\"12\"/><layout><column field=\"region\"/></layout>"_s);
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    editor.show();
    const auto trigger = [&editor](const char *name) { Child<QAction>(&editor, name)->trigger(); };

    // Output picks the destination and shows its tab.
    trigger("mnuOutputPrinter");
    QCOMPARE(Child<QComboBox>(&editor, "cmbDest")->currentText(), u"Printer"_s);
    QCOMPARE(Child<QTabWidget>(&editor, "tbOutput")->currentIndex(), 3);
    trigger("mnuOutputDisk");
    QCOMPARE(Child<QTabWidget>(&editor, "tbOutput")->currentIndex(), 2);

    // The multi-run editor works on the item shown and gives its file back to the window.
    f.schedule.SetPosition(-1);
    trigger("mnuMultiRun");
    frmMulti &multi = f.windows.MultiRun();
    QVERIFY(multi.isVisible());
    QCOMPARE(Child<QLabel>(&multi, "lName")->text(), u"Sales"_s);
    Click(&multi, "cmdSave");
    QCOMPARE(Child<QLineEdit>(&editor, "txtMRFile")->text(), f.dir.filePath(u"Sales-mr.txt"_s));
    QCOMPARE(f.saved(id, clsSchedule::colPrompt), f.dir.filePath(u"Sales-mr.txt"_s));

    trigger("mnuParameters");
    QVERIFY(f.windows.Parameters().isVisible());
    QCOMPARE(Child<QTableWidget>(&f.windows.Parameters(), "fgPList")->item(0, 0)->text(), u"Region"_s);

    UrlReceiver pages;
    QDir().mkpath(f.path(u"Help"_s));
    WriteFile(f.path(u"Help/schedule.htm"_s), "<html></html>");
    trigger("mnuHelp");
    QCOMPARE(pages.opened, QList<QUrl>{QUrl::fromLocalFile(f.path(u"Help/schedule.htm"_s))});
    QVERIFY(f.prompter.messages.isEmpty());
}

void TestFrmSchedule::linkedWindows()
{
    EditorFixture f;
    const QString id = f.addReport(u"Sales"_s);
    MakeSalesDatabase(f.dir.filePath(u"sales.db"_s));
    SalesReport(QDir(f.dir.path()), u"Sales.rpt"_s, u"SELECT region FROM {Sales}"_s);
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    editor.show();

    // Table Mapping shows the tables of the item's report.
    Child<QAction>(&editor, "mnuTableMapping")->trigger();
    auto *map = editor.findChild<frmTableMap *>();
    QVERIFY(map && map->isVisible());
    auto *tables = Child<QTableWidget>(map, "fgTables");
    QCOMPARE(tables->rowCount(), 1);
    QCOMPARE(tables->item(0, 0)->text(), id);
    QCOMPARE(tables->item(0, 1)->text(), u"sales"_s); // the table the report reads
    QCOMPARE(f.prompter.take(), QStringList());
    map->close();

    // Edit Calendar needs a calendar file, which Select File gives the item; then the list editor opens it.
    Child<QAction>(&editor, "mnuEditCalendar")->trigger();
    QCOMPARE(f.prompter.take(),
             QStringList{u"Edit Calendar: Please select a calendar file for this report"_s});
    QVERIFY(!editor.findChild<frmList *>());
    const QString calendar = WriteLines(f.dir.filePath(u"month-ends.lst"_s), {u"31-Mar-2026"_s});
    f.prompter.setNextFileNames({calendar});
    Child<QAction>(&editor, "mnuSelectFile")->trigger();
    QCOMPARE(f.prompter.take(), QStringList{u"Select File: "_s + f.dir.path()});
    Child<QComboBox>(&editor, "cmbWhen")->setCurrentText(u"Custom Calendar"_s);
    QCOMPARE(Child<QLabel>(&editor, "lDayMessage")->text(), u"month-ends.lst"_s);
    Child<QAction>(&editor, "mnuEditCalendar")->trigger();
    auto *list = editor.findChild<frmList *>();
    QVERIFY(list && list->isVisible());
    QCOMPARE(Child<QLabel>(list, "lblFile")->text(), calendar);
    list->close();
    Click(&editor, "cmdApply");
    QCOMPARE(f.saved(id, clsSchedule::colCustomCalendarFile), calendar);
}

void TestFrmSchedule::newItem()
{
    EditorFixture f;
    f.addReport(u"Sales"_s);
    f.schedule.SetPosition(-1);
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    QCOMPARE(Child<QLineEdit>(&editor, "txtReportName")->text(), QString());
    QVERIFY(Child<QRadioButton>(&editor, "optRun0")->isChecked());
    QCOMPARE(Child<QDateEdit>(&editor, "dtDay")->date(), QDate(2026, 3, 2));
    QCOMPARE(Child<QComboBox>(&editor, "cmbHour")->currentIndex(), 9);
    QCOMPARE(Child<QLineEdit>(&editor, "txtEvery")->text(), u"1"_s);
    QCOMPARE(Child<QComboBox>(&editor, "cmbWhen")->currentText(), u"Day(s)"_s);
    QVERIFY(!Child<QCheckBox>(&editor, "chkDateStamp")->isChecked());

    // Writing it back adds it to the schedule.
    Child<QLineEdit>(&editor, "txtReportName")->setText(u"Nightly"_s);
    Child<QLineEdit>(&editor, "txtReportFile")->setText(f.dir.filePath(u"nightly.sh"_s));
    QVERIFY(editor.WriteSchedule());
    QCOMPARE(f.schedule.Count(), 2);
    QCOMPARE(editor.windowTitle(), u"Edit schedule for Item 2"_s);
    QCOMPARE(f.saved(u"2"_s, clsSchedule::colName), u"Nightly"_s);
    QCOMPARE(f.saved(u"2"_s, clsSchedule::colNextRun), u"02-Mar-2026 09:00"_s);
}

void TestFrmSchedule::itemMovedUnderTheEditor()
{
    EditorFixture f;
    const QString first = f.addReport(u"Sales"_s);
    const QString second = f.addReport(u"Costs"_s);
    f.schedule.Find(first);
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    editor.show();
    const auto activate = [&editor] {
        QEvent activation(QEvent::WindowActivate);
        QCoreApplication::sendEvent(&editor, &activation);
    };
    activate();
    QVERIFY(f.prompter.messages.isEmpty());

    // No: the window shows the item at the cursor and its own input is gone.
    Child<QLineEdit>(&editor, "txtMailCC")->setText(u"lost@example.com"_s);
    f.schedule.Find(second);
    f.prompter.setNextAnswers({false});
    activate();
    QCOMPARE(f.prompter.take(), QStringList{u"Edit Schedule: You are currently editing schedule item "_s +
                                            first + u"\nReport Title=Sales\nDo you wish to save changes?"_s});
    QCOMPARE(editor.windowTitle(), u"Edit schedule for Item "_s + second);
    QCOMPARE(f.saved(first, clsSchedule::colRptToCC), u"<missing>"_s);

    // Yes: the window goes into its own item first, and the cursor stays where it was put.
    Child<QLineEdit>(&editor, "txtMailCC")->setText(u"kept@example.com"_s);
    f.schedule.Find(first);
    f.prompter.setNextAnswers({true});
    activate();
    QCOMPARE(f.saved(second, clsSchedule::colRptToCC), u"kept@example.com"_s);
    QCOMPARE(f.schedule.ReportID(), first);
    QCOMPARE(editor.windowTitle(), u"Edit schedule for Item "_s + first);
}

void TestFrmSchedule::lettersInTheCopies()
{
    EditorFixture f;
    const QString id = f.addReport(u"Sales"_s);
    f.globals.SaveSchedule();
    frmSchedule &editor = f.windows.Editor();
    editor.ShowSchedule();
    editor.show();
    Child<QComboBox>(&editor, "cmbDest")->setCurrentText(u"Printer"_s);
    Child<QLineEdit>(&editor, "txtPRCopies")->setText(u"two"_s);
    Child<QLineEdit>(&editor, "txtReportName")->setText(u"Renamed"_s);
    Click(&editor, "cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: Run-time error '13': Type mismatch"_s});
    QVERIFY(f.prompter.fatal.isEmpty());
    QVERIFY(editor.isVisible());
    // Nothing was written, in the file or in memory.
    f.schedule.Find(id);
    QCOMPARE(f.schedule.Name(), u"Sales"_s);
    QCOMPARE(f.saved(id, clsSchedule::colDest), u"E"_s);

    Child<QLineEdit>(&editor, "txtPRCopies")->setText(u"2"_s);
    Click(&editor, "cmdSave");
    QVERIFY(!editor.isVisible());
    QCOMPARE(f.saved(id, clsSchedule::colPrinterCopies), u"2"_s);
}

QORLO_TEST_MAIN(TestFrmSchedule)
#include "tst_frmschedule.moc"
