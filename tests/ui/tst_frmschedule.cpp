#include "ScriptedPrompter.h"
#include "TestClocks.h"
#include "UiTestMain.h"

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

namespace {

struct EditorFixture
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
        clsSchedule file(dir.path());
        file.Load(dir.filePath(QStringLiteral("Qorlo.XML")));
        file.Find(id);
        return file.NoMatch() ? QStringLiteral("<missing>") : file.Field(column);
    }
    template <typename Widget> Widget *child(QWidget &window, const char *name)
    {
        return window.findChild<Widget *>(QLatin1String(name));
    }

    FixedClock clock{QDateTime(QDate(2026, 3, 2), QTime(9, 0))};
    ClockGuard guard{clock};
    QTemporaryDir dir;
    ScriptedPrompter prompter;
    QorloGlobals globals{dir.path(), prompter};
    clsSchedule &schedule = globals.Schedule;
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
    QCOMPARE(f.child<QComboBox>(editor, "cmbWhen")->currentText(), QStringLiteral("Month(s)"));
    QCOMPARE(f.child<QComboBox>(editor, "cmbDest")->currentText(), QStringLiteral("Email"));
    QCOMPARE(f.child<QDateEdit>(editor, "dtDay")->date(), QDate(2026, 3, 5));
    QCOMPARE(f.child<QComboBox>(editor, "cmbHour")->currentIndex(), 7);
    QCOMPARE(f.child<QComboBox>(editor, "cmbMin")->currentIndex(), 30);
    QCOMPARE(f.child<QLabel>(editor, "lDayMessage")->text(), QStringLiteral("Thursday"));
    auto *tabs = f.child<QTabWidget>(editor, "tbOutput");
    QVERIFY(tabs->isTabVisible(0) && !tabs->isTabVisible(2) && !tabs->isTabVisible(3));

    f.child<QComboBox>(editor, "cmbWhen")->setCurrentText(QStringLiteral("Custom Calendar"));
    QCOMPARE(f.child<QLabel>(editor, "lDayMessage")->text(), QStringLiteral("No Filename specified"));
    f.child<QLineEdit>(editor, "txtReportName")->setText(QStringLiteral("Sales EU"));
    f.child<QLineEdit>(editor, "txtMailCC")->setText(QStringLiteral("cc@example.com"));
    f.child<QComboBox>(editor, "cmbWhen")->setCurrentText(QStringLiteral("Month(s)"));
    f.child<QComboBox>(editor, "cmbHour")->setCurrentIndex(18);
    editor.show();
    f.child<QPushButton>(editor, "cmdSave")->click();
    QVERIFY(!editor.isVisible());
    QCOMPARE(f.saved(id, clsSchedule::colName), QStringLiteral("Sales EU"));
    QCOMPARE(f.saved(id, clsSchedule::colRptToCC), QStringLiteral("cc@example.com"));
    QCOMPARE(f.saved(id, clsSchedule::colFrequency), QStringLiteral("Month(s)"));
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), QStringLiteral("05-Mar-2026 18:30"));
    QCOMPARE(f.saved(id, clsSchedule::colDest), QStringLiteral("E"));

    // Paging writes the shown item back first; the first item's letter form shows in full.
    f.schedule.LoadSortIndexArray(first + QLatin1Char('|') + id);
    f.child<QRadioButton>(editor, "optRun1")->setChecked(true);
    f.child<QPushButton>(editor, "cmdFirst")->click();
    QCOMPARE(f.saved(id, clsSchedule::colSchedule), QStringLiteral("N"));
    QCOMPARE(f.saved(id, clsSchedule::colNextRun), QString());
    QCOMPARE(editor.windowTitle(), QStringLiteral("Edit schedule for Item ") + first);
    QCOMPARE(f.child<QComboBox>(editor, "cmbWhen")->currentText(), QStringLiteral("Business Day"));
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
    f.child<QLineEdit>(editor, "txtMail")->clear();
    f.child<QLineEdit>(editor, "txtMailCC")->setText(QStringLiteral("cc@example.com"));
    f.child<QPushButton>(editor, "cmdSave")->click();
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("Not Saved: Email Address is blank")});
    QVERIFY(editor.isVisible());
    QCOMPARE(f.saved(id, clsSchedule::colRptToCC), QString());

    f.child<QComboBox>(editor, "cmbDest")->setCurrentText(QStringLiteral("Disk File"));
    QVERIFY(f.child<QTabWidget>(editor, "tbOutput")->isTabVisible(2));
    f.child<QLineEdit>(editor, "txtOutput")->clear();
    f.child<QPushButton>(editor, "cmdApply")->click();
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("Not Saved: Disk file destination is blank")});
    QCOMPARE(f.saved(id, clsSchedule::colDest), QStringLiteral("E"));

    // A printer needs no further field.
    f.child<QComboBox>(editor, "cmbDest")->setCurrentText(QStringLiteral("Printer"));
    f.child<QPushButton>(editor, "cmdApply")->click();
    QVERIFY(f.prompter.take().isEmpty());
    QCOMPARE(f.saved(id, clsSchedule::colDest), QStringLiteral("P"));

    // Multi-run proposes a control file beside the report.
    f.child<QComboBox>(editor, "cmbDest")->setCurrentText(QStringLiteral("MultiRun"));
    QCOMPARE(f.child<QLineEdit>(editor, "txtMRFile")->text(), f.dir.filePath(QStringLiteral("Sales-mr.txt")));
    QVERIFY(f.child<QTabWidget>(editor, "tbOutput")->isTabVisible(4));
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
    QCOMPARE(f.child<QLineEdit>(*editor, "txtReportName")->text(), QStringLiteral("Costs"));

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
    QFile script(f.dir.filePath(QStringLiteral("job.sh")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nexit 0\n");
    script.setPermissions(script.permissions() | QFileDevice::ExeOwner);
    script.close();
    const QString id = f.addReport(QStringLiteral("Job"));
    f.schedule.SetFile(script.fileName());
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
    QVERIFY(f.prompter.fatalErrors.isEmpty());
}

QORLO_TEST_MAIN_WIDGETS(TestFrmSchedule)
#include "tst_frmschedule.moc"
