// An operator with only the desktop program: a demo report inserted, its parameters set (one of them a
// dynamic date), a multi-run file of three lines, the report and a second one in a collection, the
// schedule started, and the outputs and the run log looked at.
#include "AppObjects.h"
#include "CupsPeer.h"
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "scheduler/Dispatcher.h"
#include "ui/frmMain.h"
#include "ui/frmMulti.h"
#include "ui/frmPList.h"
#include "ui/frmPack.h"
#include "ui/frmPackList.h"
#include "ui/frmSchedule.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

namespace {

// The demo folder's reports and database without its schedule, on 15 March 2024 at 09:00.
struct OperatorApp : GlobalsFixture
{
    OperatorApp()
    {
        CopyFolder(QStringLiteral(QORLO_SOURCE_DIR "/demo"), dir.path());
        QFile::remove(path(u"Qorlo.XML"_s));
        AppFolder::MakeWorkingFolders(dir.path());
        globals.Viewer.ApplyStartDefaults();
        window.ShowWindow();
        globals.ViewTable();
        prompter.take();
    }
    template <class Window> Window *open() { return window.findChild<Window *>(); }
    // The main window back in front once the operator closed a window.
    void backToMain() { dispatcher.MainWindowInFront(); }
    // Insert Item into Schedule with the report picked in the file dialog; its new ReportID.
    QString insert(const QString &report)
    {
        prompter.setNextFileNames({path(report)});
        Trigger(&window, "mnuNewReport");
        return schedule.ReportID();
    }
    frmSchedule *modify(const QString &reportID)
    {
        SelectItem(window, reportID);
        Trigger(&window, "mnuModifyReport");
        return open<frmSchedule>();
    }

    OffsetClock clock{QDateTime(QDate(2024, 3, 15), QTime(9, 0))};
    ClockGuard guard{clock};
    Dispatcher dispatcher{globals, 200};
    frmMain window{globals, dispatcher};
};

// The values of an exported file among `known`, sorted; the default character-separated settings put
// each field in single quotes and separate them with "|".
QStringList FieldsOf(const QString &file, const QStringList &known)
{
    QStringList seen;
    for (const QString &line :
         QString::fromUtf8(ReadFile(file)).split(u"\r\n"_s, Qt::SkipEmptyParts).mid(1)) {
        for (QString field : line.split(u'|')) {
            field.remove(u'\'');
            if (known.contains(field) && !seen.contains(field))
                seen.append(field);
        }
    }
    seen.sort();
    return seen;
}

} // namespace

class TestScenario : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { NoPrintServer(); }
    void operatorBuildsAndRunsACollection();
};

void TestScenario::operatorBuildsAndRunsACollection()
{
    OperatorApp app;

    // A demo report into the schedule, made a multi-run item in the item editor.
    const QString regional = app.insert(u"sales-parameters.rpt"_s);
    frmSchedule *editor = app.modify(regional);
    QVERIFY(editor && editor->isVisible());
    Child<QLineEdit>(editor, "txtReportName")->setText(u"Regional sales"_s);
    Child<QComboBox>(editor, "cmbDest")->setCurrentText(u"MultiRun"_s);
    QCOMPARE(Child<QLineEdit>(editor, "txtMRFile")->text(), app.path(u"sales-parameters-mr.txt"_s));
    Click(editor, "cmdApply");

    // Report, Multi-Run: three lines to disk, one file for each.
    Trigger(editor, "mnuMultiRun");
    auto *multi = app.open<frmMulti>();
    QVERIFY(multi && multi->isVisible());
    Child<QComboBox>(multi, "cmbOutput")->setCurrentText(u"Disk File"_s);
    Child<QComboBox>(multi, "cmbFormat")->setCurrentText(u"CSV File"_s);
    auto *lines = Child<QTableWidget>(multi, "fgMulti");
    for (const QString &regions : {u"North"_s, u"South"_s, u"East;West"_s}) {
        Click(multi, "cmdNewValue");
        const int row = lines->rowCount() - 1;
        lines->item(row, frmMulti::colValue)->setText(regions);
        lines->item(row, frmMulti::colDestination)
            ->setText(app.path(u"Output/"_s + QString(regions).remove(u';') + u".csv"_s));
    }
    Click(multi, "cmdSave");
    QVERIFY(!multi->isVisible());
    QCOMPARE(ReadFile(app.path(u"sales-parameters-mr.txt"_s)).count("\r\n"), 3);

    // Report, Parameters: the multi-run feeds the regions; from the first of March to yesterday.
    Trigger(editor, "mnuParameters");
    auto *parameters = app.open<frmPList>();
    QVERIFY(parameters && parameters->isVisible());
    auto *grid = Child<QTableWidget>(parameters, "fgPList");
    QCOMPARE(Child<QLabel>(parameters, "txtFrame")->text(), u"Controlled by Multi-Run"_s);
    grid->setCurrentCell(1, 1);
    Child<QDateEdit>(parameters, "dtpPlist")->setDate(QDate(2024, 3, 1));
    grid->setCurrentCell(2, 1);
    Child<QComboBox>(parameters, "cmbDynDate")->setCurrentText(u"Today"_s);
    Child<QLineEdit>(parameters, "txtAdjDate")->setText(u"-1"_s);
    Q_EMIT Child<QLineEdit>(parameters, "txtAdjDate")->editingFinished();
    QCOMPARE(Child<QLabel>(parameters, "lDynPreview")->text(), u"gives 14-Mar-2024"_s);
    Click(parameters, "cmdSave");
    Click(editor, "cmdSave");
    QVERIFY(!editor->isVisible());
    app.backToMain();

    // A second report, to a PDF file.
    const QString summary = app.insert(u"sales-by-region.rpt"_s);
    editor = app.modify(summary);
    Child<QComboBox>(editor, "cmbDest")->setCurrentText(u"Disk File"_s);
    Child<QComboBox>(editor, "cmbFormat")->setCurrentText(u"Acrobat File"_s);
    Child<QLineEdit>(editor, "txtOutput")->setText(app.path(u"Output/summary.pdf"_s));
    Click(editor, "cmdSave");
    app.backToMain();

    // New Collection with both reports, scheduled for 08:00 today, an hour ago.
    Trigger(&app.window, "mnuNewPack");
    auto *pack = app.open<frmPack>();
    const QString collection = Child<QLabel>(pack, "lPackID")->text();
    Child<QLineEdit>(pack, "txtPack")->setText(u"Morning reports"_s);
    Trigger(pack, "mnuSaveCollection");
    Trigger(pack, "mnuAddReport");
    auto *picker = app.open<frmPackList>();
    auto *items = Child<QTableWidget>(picker, "fgList");
    // The summary first: the collection runs its members in the order they were added.
    for (int row : {1, 0}) {
        Q_EMIT items->cellClicked(row, 1);
        app.prompter.setNextAnswers({true});
        Trigger(picker, "mnuAddCollection");
    }
    picker->reject();
    QCOMPARE(Child<QTableWidget>(pack, "fgTable")->rowCount(), 2);
    Trigger(pack, "mnuScheduleCollection");
    QCOMPARE(editor->windowTitle(), u"Edit schedule for Item "_s + collection);
    Child<QRadioButton>(editor, "optRun0")->setChecked(true);
    Child<QDateEdit>(editor, "dtDay")->setDate(QDate(2024, 3, 15));
    Child<QComboBox>(editor, "cmbHour")->setCurrentIndex(8);
    Child<QComboBox>(editor, "cmbMin")->setCurrentIndex(0);
    Click(editor, "cmdSave");
    pack->reject();
    app.backToMain();
    // The only boxes: the two file dialogs (the second opens in the folder of the first) and the questions
    // before adding to the collection.
    QStringList boxes = app.prompter.take();
    boxes.replaceInStrings(app.dir.path(), u"APP"_s);
    QCOMPARE(
        boxes,
        (QStringList{
            u"Insert Item into Schedule: "_s, u"Insert Item into Schedule: APP"_s,
            u"Add Reports to Collection: Confirm you wish to load 1\r\nreports into this collection"_s,
            u"Add Reports to Collection: Confirm you wish to load 1\r\nreports into this collection"_s}));
    QVERIFY(app.prompter.fatal.isEmpty());

    // Start Schedule, and the tick runs the collection.
    Trigger(&app.window, "mnuStartSchedule");
    app.dispatcher.Start();
    const QString total =
        u"Morning reports (Finished): Successful Run (2 schedule items processed in collection)"_s;
    QVERIFY2(
        WaitUntil([&] { return SavedLogEntries(app.dir.path()).contains(collection + u'|' + total); }, 60000),
        qPrintable(SavedLogEntries(app.dir.path()).join(u'\n')));

    QStringList entries = SavedLogEntries(app.dir.path());
    entries.replaceInStrings(app.dir.path(), u"APP"_s);
    const QString in = collection + u"|Morning reports ("_s;
    QCOMPARE(
        entries,
        (QStringList{
            in + u"Start): Start Process report collection"_s,
            in + u"1): Successful output to APP/Output/summary.pdf"_s,
            in + u"2): Successful multirun output to APP/Output/North.csv for {?Regions} = North"_s,
            in + u"2): Successful multirun output to APP/Output/South.csv for {?Regions} = South"_s,
            in + u"2): Successful multirun output to APP/Output/EastWest.csv for {?Regions} = East;West"_s,
            in + u"2): MultiRun Completed (3 reports and  0 errors)"_s, collection + u'|' + total}));

    // Each file holds its regions, from the first of March to the day before the run.
    const QStringList regions{u"North"_s, u"South"_s, u"East"_s, u"West"_s};
    QCOMPARE(FieldsOf(app.path(u"Output/North.csv"_s), regions), QStringList{u"North"_s});
    QCOMPARE(FieldsOf(app.path(u"Output/South.csv"_s), regions), QStringList{u"South"_s});
    QCOMPARE(FieldsOf(app.path(u"Output/EastWest.csv"_s), regions), (QStringList{u"East"_s, u"West"_s}));
    // The demo database has orders on each of these days (North alone has none on the 10th).
    QStringList dates;
    for (const QString &file : {u"North"_s, u"South"_s, u"EastWest"_s})
        dates += FieldsOf(app.path(u"Output/"_s + file + u".csv"_s), ConsecutiveDays(D(2024, 2, 1), 60));
    dates.removeDuplicates();
    dates.sort();
    QCOMPARE(dates, ConsecutiveDays(D(2024, 3, 1), 14));
    QVERIFY(QFileInfo(app.path(u"Output/summary.pdf"_s)).size() > 0);
    auto saved = app.saved();
    saved->Find(collection);
    QCOMPARE(saved->NextRun(), u"22-Mar-2024 08:00"_s); // a new collection runs once a week
}

QORLO_TEST_MAIN(TestScenario)
#include "tst_scenario.moc"
