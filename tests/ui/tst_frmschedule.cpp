#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"
#include "ui/frmMain.h"
#include "ui/frmSchedule.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>

using namespace TestSupport;

namespace {

struct EditorFixture : GlobalsFixture
{
    EditorFixture() { globals.Viewer.ApplyStartDefaults(); }

    // A report item mailed monthly from 5 March 2026 07:30; the cursor stays on it.
    QString addReport(const QString &name)
    {
        schedule.AddNew();
        schedule.SetName(name);
        schedule.SetFile(dir.filePath(name + QStringLiteral(".rpt")));
        schedule.SetSchedule(QStringLiteral("Y"));
        schedule.SetNextRun(QStringLiteral("05-Mar-2026 07:30"));
        schedule.SetFrequency(QStringLiteral("M"));
        schedule.SetFreqTimes(QStringLiteral("2"));
        schedule.SetDest(QStringLiteral("E"));
        schedule.SetEmail(QStringLiteral("boss@example.com"));
        return schedule.ReportID();
    }
    // The item as the schedule file holds it.
    QString saved(const QString &id, int column)
    {
        const auto file = GlobalsFixture::saved();
        file->Find(id);
        return file->NoMatch() ? QStringLiteral("<missing>") : file->Field(column);
    }

    FixedClock clock{QDateTime(QDate(2026, 3, 2), QTime(9, 0))};
    ClockGuard guard{clock};
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
};

void TestFrmSchedule::fillsEditsAndSaves()
{
    EditorFixture f;
    const QString first = f.addReport(QStringLiteral("Weekly"));
    f.schedule.SetFrequency(QStringLiteral("B"));
    const QString id = f.addReport(QStringLiteral("Sales"));
    frmSchedule editor(f.globals);
    editor.ShowSchedule();
    QCOMPARE(editor.windowTitle(), QStringLiteral("Edit schedule for Item ") + id);
    QCOMPARE(Child<QComboBox>(&editor, "cmbWhen")->currentText(), QStringLiteral("Month(s)"));
    QCOMPARE(Child<QComboBox>(&editor, "cmbDest")->currentText(), QStringLiteral("Email"));
    QCOMPARE(Child<QDateEdit>(&editor, "dtDay")->date(), QDate(2026, 3, 5));
    QCOMPARE(Child<QComboBox>(&editor, "cmbHour")->currentIndex(), 7);
    QCOMPARE(Child<QComboBox>(&editor, "cmbMin")->currentIndex(), 30);
    QCOMPARE(Child<QLabel>(&editor, "lDayMessage")->text(), QStringLiteral("Thursday"));
    auto *tabs = Child<QTabWidget>(&editor, "tbOutput");
    QVERIFY(tabs->isTabVisible(0) && !tabs->isTabVisible(2) && !tabs->isTabVisible(3));

    Child<QComboBox>(&editor, "cmbWhen")->setCurrentText(QStringLiteral("Custom Calendar"));
    QCOMPARE(Child<QLabel>(&editor, "lDayMessage")->text(), QStringLiteral("No Filename specified"));
    Child<QLineEdit>(&editor, "txtReportName")->setText(QStringLiteral("Sales EU"));
    Child<QLineEdit>(&editor, "txtMailCC")->setText(QStringLiteral("cc@example.com"));
    Child<QComboBox>(&editor, "cmbWhen")->setCurrentText(QStringLiteral("Month(s)"));
    Child<QComboBox>(&editor, "cmbHour")->setCurrentIndex(18);
    editor.show();
    Child<QPushButton>(&editor, "cmdSave")->click();
    QVERIFY(!editor.isVisible());
    QCOMPARE(f.saved(id, clsSchedule::colName), QStringLiteral("Sales EU"));
    QCOMPARE(f.saved(id, clsSchedule::colRptToCC), QStringLiteral("cc@example.com"));
    QCOMPARE(f.saved(id, clsSchedule::colFrequency), QStringLiteral("Month(s)"));
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), QStringLiteral("05-Mar-2026 18:30"));
    QCOMPARE(f.saved(id, clsSchedule::colDest), QStringLiteral("E"));

    // Paging writes the shown item back first; the first item's letter form shows in full.
    f.schedule.LoadSortIndexArray(first + QLatin1Char('|') + id);
    Child<QRadioButton>(&editor, "optRun1")->setChecked(true);
    Child<QPushButton>(&editor, "cmdFirst")->click();
    QCOMPARE(f.saved(id, clsSchedule::colSchedule), QStringLiteral("N"));
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), QString());
    QCOMPARE(editor.windowTitle(), QStringLiteral("Edit schedule for Item ") + first);
    QCOMPARE(Child<QComboBox>(&editor, "cmbWhen")->currentText(), QStringLiteral("Business Day"));
    QVERIFY(f.prompter.take().isEmpty());
}

void TestFrmSchedule::refusesBlankDestinations()
{
    EditorFixture f;
    const QString id = f.addReport(QStringLiteral("Sales"));
    f.globals.SaveSchedule();
    frmSchedule editor(f.globals);
    editor.ShowSchedule();
    editor.show();
    Child<QLineEdit>(&editor, "txtMail")->clear();
    Child<QLineEdit>(&editor, "txtMailCC")->setText(QStringLiteral("cc@example.com"));
    Child<QPushButton>(&editor, "cmdSave")->click();
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("Not Saved: Email Address is blank")});
    QVERIFY(editor.isVisible());
    QCOMPARE(f.saved(id, clsSchedule::colRptToCC), QString());

    Child<QComboBox>(&editor, "cmbDest")->setCurrentText(QStringLiteral("Disk File"));
    QVERIFY(Child<QTabWidget>(&editor, "tbOutput")->isTabVisible(2));
    Child<QLineEdit>(&editor, "txtOutput")->clear();
    Child<QPushButton>(&editor, "cmdApply")->click();
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("Not Saved: Disk file destination is blank")});
    QCOMPARE(f.saved(id, clsSchedule::colDest), QStringLiteral("E"));

    // A printer needs no further field.
    Child<QComboBox>(&editor, "cmbDest")->setCurrentText(QStringLiteral("Printer"));
    Child<QPushButton>(&editor, "cmdApply")->click();
    QVERIFY(f.prompter.take().isEmpty());
    QCOMPARE(f.saved(id, clsSchedule::colDest), QStringLiteral("P"));

    // Multi-run proposes a control file beside the report.
    Child<QComboBox>(&editor, "cmbDest")->setCurrentText(QStringLiteral("MultiRun"));
    QCOMPARE(Child<QLineEdit>(&editor, "txtMRFile")->text(), f.dir.filePath(QStringLiteral("Sales-mr.txt")));
    QVERIFY(Child<QTabWidget>(&editor, "tbOutput")->isTabVisible(4));
}

void TestFrmSchedule::modifyFromTheMainWindow()
{
    EditorFixture f;
    Dispatcher dispatcher(f.globals);
    frmMain window(f.globals, dispatcher);
    QAction *modify = window.findChild<QAction *>(QStringLiteral("mnuModifyReport"));
    // An empty schedule says so in the grid; only the refusal counts here.
    f.globals.ViewTable();
    f.prompter.take();
    modify->trigger();
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("Modify Schedule Item: No Report in Schedule to Modify")});

    const QString first = f.addReport(QStringLiteral("Sales"));
    const QString second = f.addReport(QStringLiteral("Costs"));
    f.globals.ViewTable();
    window.SetSelectedRow(0);
    modify->trigger();
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("Modify Schedule Item: Please select a report from the list")});

    f.schedule.ProcessingID = second;
    window.SetSelectedRow(2);
    modify->trigger();
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral(
                 "Modify Schedule: Please wait until the current report processing has completed")});
    QVERIFY(!window.findChild<frmSchedule *>());

    f.schedule.ProcessingID.clear();
    f.schedule.Active = true;
    modify->trigger();
    QVERIFY(!f.schedule.Active);
    QVERIFY(f.globals.ReactivateOnFocus);
    auto *editor = window.findChild<frmSchedule *>();
    QVERIFY(editor && editor->isVisible());
    QCOMPARE(editor->windowTitle(), QStringLiteral("Edit schedule for Item ") + second);
    QCOMPARE(Child<QLineEdit>(editor, "txtReportName")->text(), QStringLiteral("Costs"));

    // A double click selects the row and opens the editor on it.
    editor->reject();
    Q_EMIT window.findChild<QTableWidget *>(QStringLiteral("fgView"))->cellDoubleClicked(0, 2);
    QCOMPARE(window.SelectedRow(), 1);
    QVERIFY(editor->isVisible());
    QCOMPARE(editor->windowTitle(), QStringLiteral("Edit schedule for Item ") + first);
}

void TestFrmSchedule::runNowKeepsNextRun()
{
    EditorFixture f;
    AppFolder::MakeWorkingFolders(f.dir.path());
    const QString id = f.addReport(QStringLiteral("Job"));
    f.schedule.SetFile(WriteScript(f.path(QStringLiteral("job.sh")), "exit 0"));
    frmSchedule editor(f.globals);
    editor.ShowSchedule();
    QAction *run = editor.findChild<QAction *>(QStringLiteral("mnuRun"));
    f.schedule.ProcessingID = id;
    run->trigger();
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("Run Now: Please wait until report has finished processing")});
    QCOMPARE(f.saved(id, clsSchedule::colLastRun), QStringLiteral("<missing>"));

    f.schedule.ProcessingID.clear();
    run->trigger();
    QCOMPARE(f.saved(id, clsSchedule::colLastRun), QStringLiteral("02-Mar-2026 09:00"));
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), QStringLiteral("05-Mar-2026 07:30"));
    QVERIFY(f.prompter.fatal.isEmpty());
}

QORLO_TEST_MAIN(TestFrmSchedule)
#include "tst_frmschedule.moc"
