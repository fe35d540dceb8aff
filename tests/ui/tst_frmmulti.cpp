// The multi-run editor over the demo folder: the control file shown and checked with every warning, the
// grid's commands and cell editors. The scenario test runs a file the window wrote.
#include "CupsPeer.h"
#include "DemoWindows.h"
#include "SalesReport.h"
#include "TestMain.h"

#include "core/TWReg.h"
#include "store/clsViewer.h"
#include "ui/frmMulti.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

namespace {

struct MultiApp : DemoWindows
{
    frmMulti &window() { return windows.MultiRun(); }
    // The editor on the item, as the main window opens it.
    frmMulti &open(const QString &reportID)
    {
        select(reportID);
        windows.OpenMultiRun(nullptr);
        return window();
    }
    template <class Control = QWidget> Control *child(const char *name)
    {
        return Child<Control>(&window(), name);
    }
    QTableWidget *grid() { return child<QTableWidget>("fgMulti"); }
    QString cell(int row, int column) { return grid()->item(row, column)->text(); }
    void setCell(int row, int column, const QString &text) { grid()->item(row, column)->setText(text); }
    QStringList headings()
    {
        QStringList texts;
        for (int column = 0; column < grid()->columnCount(); ++column)
            texts.append(grid()->horizontalHeaderItem(column)->text());
        return texts;
    }
    QStringList parameters() { return ItemTexts(child<QComboBox>("cmbParameter")); }
    void trigger(const char *name) { Trigger(&window(), name); }
    // A new row of the window's output and format.
    void newRow(const QString &value, const QString &destination, const QString &subject = QString())
    {
        Click(&window(), "cmdNewValue");
        const int row = grid()->rowCount() - 1;
        setCell(row, frmMulti::colValue, value);
        setCell(row, frmMulti::colDestination, destination);
        setCell(row, frmMulti::colSubject, subject);
    }
    // Item 3 on a report of one parameter, Region.
    void openOneParameterReport()
    {
        SalesReport(QDir(dir.path()), u"one.rpt"_s, u"SELECT region FROM {Sales} WHERE region = {?Region}"_s,
                    u"<parameter name=\"Region\" type=\"12\"/><layout><column field=\"region\"/></layout>"_s);
        select(u"3"_s);
        schedule.SetFile(path(u"one.rpt"_s));
        open(u"3"_s);
    }
    void choose(const QString &output, const QString &format)
    {
        child<QComboBox>("cmbOutput")->setCurrentText(output);
        child<QComboBox>("cmbFormat")->setCurrentText(format);
    }
};

} // namespace

class TestFrmMulti : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { NoPrintServer(); }
    void showsTheControlFile();
    void everyWarning();
    void gridCommands();
    void tableMapAndAllParameters();
    void cellEditors();
    void keepsItsPlace();
};

void TestFrmMulti::showsTheControlFile()
{
    MultiApp app;
    frmMulti &window = app.open(u"4"_s);
    QCOMPARE(window.windowTitle(), u"Multi-Run"_s);
    QCOMPARE(app.child<QLabel>("lName")->text(), u"Regional sales"_s);
    QCOMPARE(app.child<QLabel>("lControlFile")->text(), app.path(u"regions.txt"_s));
    QCOMPARE(app.parameters(), (QStringList{u"{?Regions}"_s, u"{?From}"_s, u"{?To}"_s, u"*ALL*"_s}));
    QCOMPARE(app.child<QComboBox>("cmbParameter")->currentText(), u"{?Regions}"_s);
    QCOMPARE(app.grid()->rowCount(), 4);
    QVERIFY(app.cell(0, frmMulti::colValue).startsWith(u" One report run"_s));
    QCOMPARE(app.cell(0, frmMulti::colSubject), u"Comment"_s);
    QCOMPARE(app.cell(0, frmMulti::colBrowse), QString());
    QCOMPARE(app.cell(3, frmMulti::colValue), u"East;West"_s);
    QCOMPARE(app.cell(3, frmMulti::colOutput), u"Disk File"_s);
    QCOMPARE(app.cell(3, frmMulti::colBrowse), u"..."_s);
    // All rows go to disk; their formats differ.
    QCOMPARE(app.child<QComboBox>("cmbOutput")->currentText(), u"Disk File"_s);
    QCOMPARE(app.child<QComboBox>("cmbFormat")->currentText(), u"Custom"_s);
    app.grid()->setCurrentCell(1, 0);
    QCOMPARE(app.headings(), (QStringList{u"Value"_s, u"Output to"_s, u"Format"_s,
                                          u"Output Path\\File Name"_s, QString(), u"..."_s}));
    QVERIFY(app.prompter.messages.isEmpty());

    // Without a control file the report's own name is proposed beside it; a report without parameters
    // warns, and one with a single parameter offers no "*ALL*".
    app.select(u"4"_s);
    app.schedule.SetPrompt(QString());
    app.open(u"4"_s);
    QCOMPARE(app.child<QLabel>("lControlFile")->text(), app.path(u"sales-parameters-mr.txt"_s));
    QCOMPARE(app.grid()->rowCount(), 0);
    app.open(u"3"_s);
    QCOMPARE(app.prompter.take(),
             QStringList{u"No parameters in report: Warning - Multi-run expects a report to "
                         "have at least one parameter"_s});
    QVERIFY(app.parameters().isEmpty());
    app.openOneParameterReport();
    QCOMPARE(app.parameters(), QStringList{u"{?Region}"_s});
}

void TestFrmMulti::everyWarning()
{
    MultiApp app;
    app.select(u"4"_s);
    app.schedule.SetPrompt(app.path(u"checked.txt"_s));
    app.open(u"4"_s);
    app.choose(u"Custom"_s, u"CSV File"_s);
    app.newRow(u"North"_s, u"out.csv"_s);
    app.choose(u"EMail"_s, u"CSV File"_s);
    app.newRow(u"South"_s, QString());
    app.choose(u"Both (Disk and EMail)"_s, u"CSV File"_s);
    app.newRow(u"East"_s, u"boss@example.com"_s);
    app.newRow(u"West"_s, QString(), u"boss@example.com"_s);
    app.trigger("mnuNewComment");
    app.setCell(4, frmMulti::colValue, u" checked"_s);
    app.choose(u"Printer"_s, u"Custom"_s);
    app.newRow(u"North"_s, QString());
    QCOMPARE(app.cell(2, frmMulti::colOutput), u"Both"_s);
    QCOMPARE(app.cell(5, frmMulti::colFormat), QString());

    // Cancel at the second warning writes nothing.
    app.prompter.setNextAnswers({true, false});
    Click(&app.window(), "cmdSave");
    QCOMPARE(app.prompter.take(),
             (QStringList{u"Warning - invalid destination: Missing value on line 1"_s,
                          u"Warning - empty value or destination: Missing value on line 2"_s}));
    QVERIFY(!QFile::exists(app.path(u"checked.txt"_s)));
    QVERIFY(app.window().isVisible());

    // OK to each warning saves the file as it stands.
    app.prompter.answer = true;
    app.trigger("mnuSave");
    QCOMPARE(app.prompter.take(),
             (QStringList{u"Warning - invalid destination: Missing value on line 1"_s,
                          u"Warning - empty value or destination: Missing value on line 2"_s,
                          u"Warning - invalid email address: Invalid value on line 2"_s,
                          u"Warning - invalid disk file name: Invalid value on line 3"_s,
                          u"Warning - blank email address: Missing value on line 3"_s,
                          u"Warning - invalid email address: Invalid value on line 3"_s,
                          u"Warning - blank file name: Missing value on line 4"_s}));
    QVERIFY(!app.window().isVisible());
    QCOMPARE(QString::fromLatin1(ReadFile(app.path(u"checked.txt"_s))).split(u"\r\n"_s),
             (QStringList{u"\"{?Regions}\",\"North\",\"\",\"CSV File\",\"out.csv\",\"\""_s,
                          u"\"{?Regions}\",\"South\",\"E\",\"CSV File\",\"\",\"\""_s,
                          u"\"{?Regions}\",\"East\",\"B\",\"CSV File\",\"boss@example.com\",\"\""_s,
                          u"\"{?Regions}\",\"West\",\"B\",\"CSV File\",\"\",\"boss@example.com\""_s,
                          u"// checked"_s, u"\"{?Regions}\",\"North\",\"P\",\"\",\"\",\"\""_s, QString()}));
}

void TestFrmMulti::gridCommands()
{
    MultiApp app;
    app.select(u"4"_s);
    app.schedule.SetPrompt(QString());
    app.open(u"4"_s);
    app.trigger("mnuCopyValue");
    app.trigger("mnuDelValue");
    app.trigger("mnuSortValue");
    QCOMPARE(app.prompter.take(), (QStringList{u"Copy Schedule Item: No value to copy"_s,
                                               u"Delete Multirun Item: No Values to Delete"_s,
                                               u"Sort Schedule: No rows to sort"_s}));
    app.choose(u"EMail"_s, u"Acrobat File"_s);
    app.newRow(u"b"_s, u"z@example.com"_s);
    app.newRow(u"A"_s, u"y@example.com"_s);
    app.newRow(u"a"_s, u"x@example.com"_s);
    app.grid()->clearSelection();
    app.trigger("mnuCopyValue");
    app.trigger("mnuDelValue");
    QCOMPARE(app.prompter.take(), (QStringList{u"Copy Schedule Item: Please select a row to copy"_s,
                                               u"Delete Multirun Item: Please select a value to delete"_s}));

    // Sorting is case-sensitive and moves whole rows.
    app.trigger("mnuSortValue");
    QCOMPARE(app.cell(0, frmMulti::colValue) + app.cell(1, frmMulti::colValue) +
                 app.cell(2, frmMulti::colValue),
             u"Aab"_s);
    QCOMPARE(app.cell(0, frmMulti::colDestination), u"y@example.com"_s);
    app.trigger("mnuSortDest");
    QCOMPARE(app.cell(0, frmMulti::colValue), u"a"_s);
    app.grid()->selectRow(2);
    app.trigger("mnuCopyValue");
    QCOMPARE(app.grid()->rowCount(), 4);
    QCOMPARE(app.cell(3, frmMulti::colDestination), u"z@example.com"_s);
    app.grid()->selectRow(0);
    app.trigger("mnuDelValue");
    QCOMPARE(app.grid()->rowCount(), 3);
    QCOMPARE(app.cell(0, frmMulti::colValue), u"A"_s);
    QVERIFY(app.prompter.messages.isEmpty());
}

void TestFrmMulti::tableMapAndAllParameters()
{
    MultiApp app;
    app.open(u"4"_s);
    auto *parameter = app.child<QComboBox>("cmbParameter");
    auto *list = app.child<QTableWidget>("fgList");
    QVERIFY(!list->isVisibleTo(&app.window()));

    // A line for all parameters is edited in the list below the grid.
    app.setCell(1, frmMulti::colValue, u"{?Regions}North{?To}2024-03-10"_s);
    app.grid()->setCurrentCell(1, 0);
    parameter->setCurrentText(u"*ALL*"_s);
    QVERIFY(list->isVisibleTo(&app.window()));
    QCOMPARE(list->rowCount(), 3);
    QCOMPARE(list->item(0, 1)->text(), u"North"_s);
    QCOMPARE(list->item(1, 1)->text(), QString());
    QCOMPARE(list->item(2, 1)->text(), u"2024-03-10"_s);
    list->item(1, 1)->setText(u"2024-03-01"_s);
    QCOMPARE(app.cell(1, frmMulti::colValue), u"{?Regions}North{?From}2024-03-01{?To}2024-03-10"_s);

    // The table map is one more parameter; choosing it turns column 0 into "Map".
    app.trigger("mnuTableMap");
    QCOMPARE(app.parameters().last(), u"{$TableMap}"_s);
    parameter->setCurrentText(u"{$TableMap}"_s);
    QCOMPARE(app.headings().first(), u"Map"_s);
    parameter->setCurrentIndex(0);
    QCOMPARE(app.headings().first(), u"Map"_s);
    parameter->setCurrentText(u"{$TableMap}"_s);
    app.trigger("mnuTableMap");
    QCOMPARE(app.parameters(), (QStringList{u"{?Regions}"_s, u"{?From}"_s, u"{?To}"_s, u"*ALL*"_s}));
    QCOMPARE(parameter->currentIndex(), 0);

    // With one parameter the table map brings "*ALL*"; with none it is chosen at once.
    app.openOneParameterReport();
    app.trigger("mnuTableMap");
    QCOMPARE(app.parameters(), (QStringList{u"{?Region}"_s, u"{$TableMap}"_s, u"*ALL*"_s}));
    app.select(u"3"_s);
    app.schedule.SetFile(app.path(u"sales-by-region.rpt"_s));
    app.open(u"3"_s);
    app.prompter.take();
    app.trigger("mnuTableMap");
    QCOMPARE(parameter->currentText(), u"{$TableMap}"_s);
    app.trigger("mnuTableMap");
    QCOMPARE(parameter->currentIndex(), -1);

    // A file of table expressions brings its own entry and ticks the menu.
    app.select(u"3"_s);
    app.schedule.SetPrompt(
        WriteLines(app.path(u"map.txt"_s), {u"{$TableMap},sales=archive,D,CSV File,out.csv,"_s}));
    app.open(u"3"_s);
    QCOMPARE(parameter->currentText(), u"{$TableMap}"_s);
    QVERIFY(app.child<QAction>("mnuTableMap")->isChecked());
    QCOMPARE(app.headings().first(), u"Map"_s);
}

void TestFrmMulti::cellEditors()
{
    MultiApp app;
    app.open(u"4"_s);
    QTableWidget *grid = app.grid();
    // The open cell editor; those closed before are gone first.
    const auto editor = [grid](const char *name) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return grid->findChild<QWidget *>(QLatin1String(name));
    };

    // Choosing a disk output gives the destination the format's extension beside the report.
    app.setCell(1, frmMulti::colOutput, u"EMail"_s);
    app.setCell(1, frmMulti::colDestination, u"north"_s);
    grid->setCurrentCell(1, frmMulti::colOutput);
    grid->edit(grid->currentIndex());
    auto *outputs = qobject_cast<QComboBox *>(editor("cmbMulti"));
    QVERIFY(outputs);
    QCOMPARE(outputs->currentText(), u"EMail"_s);
    QCOMPARE(outputs->count(), 4);
    outputs->setCurrentText(u"Disk File"_s);
    grid->setCurrentCell(2, frmMulti::colOutput);
    QCOMPARE(app.cell(1, frmMulti::colOutput), u"Disk File"_s);
    QCOMPARE(app.cell(1, frmMulti::colDestination), app.path(u"north.pdf"_s));

    // A printer row picks its printer from the machine's, "No Printer" first; other cells take text.
    app.setCell(2, frmMulti::colOutput, u"Printer"_s);
    grid->setCurrentCell(2, frmMulti::colDestination);
    grid->edit(grid->currentIndex());
    QCOMPARE(qobject_cast<QComboBox *>(editor("cmbMulti"))->itemText(0), u"No Printer"_s);
    grid->setCurrentCell(3, frmMulti::colSubject);
    grid->edit(grid->currentIndex());
    QVERIFY(qobject_cast<QLineEdit *>(editor("txtMEdit")));
    grid->setCurrentCell(3, frmMulti::colValue);
    grid->edit(grid->currentIndex());
    auto *value = qobject_cast<QLineEdit *>(editor("txtEdit"));
    QVERIFY(value);
    value->setText(u"North;East"_s);
    app.trigger("mnuNewValue");
    QCOMPARE(app.cell(3, frmMulti::colValue), u"North;East"_s);
    QVERIFY(!(grid->item(0, frmMulti::colOutput)->flags() & Qt::ItemIsEditable));

    // Browsing starts in the folder of the last choice, else beside the destination; mail rows have none.
    TWReg::SaveSetting(u"System"_s, u"Load Multi"_s, QString());
    app.prompter.setNextFileNames({app.path(u"Output/picked.pdf"_s), app.path(u"Output/again.pdf"_s)});
    Q_EMIT grid->cellDoubleClicked(3, frmMulti::colBrowse);
    Q_EMIT grid->cellDoubleClicked(3, frmMulti::colBrowse);
    app.setCell(4, frmMulti::colOutput, u"EMail"_s);
    Q_EMIT grid->cellDoubleClicked(4, frmMulti::colBrowse);
    QCOMPARE(app.prompter.take(),
             (QStringList{u"Output File: Output/regions"_s, u"Output File: "_s + app.path(u"Output"_s)}));
    QCOMPARE(app.cell(3, frmMulti::colDestination), app.path(u"Output/again.pdf"_s));
}

void TestFrmMulti::keepsItsPlace()
{
    MultiApp app;
    frmMulti &window = app.open(u"4"_s);
    QVERIFY(window.width() >= window.minimumSizeHint().width());
    QVERIFY(window.width() >= 7575 / 15);
    window.move(120, 90);
    window.resize(window.width() + 60, window.height() + 30);
    const QSize size = window.size();
    Click(&window, "cmdExit");
    clsViewer placement(app.dir.path(), u"MultiForm.XML"_s);
    placement.Load(app.path(u"MultiForm.XML"_s));
    QCOMPARE(placement.Viewer_Left, 120 * 15);
    QCOMPARE(placement.Viewer_Width, size.width() * 15);
    app.open(u"4"_s);
    QCOMPARE(window.size(), size);
    QCOMPARE(window.pos(), QPoint(120, 90));
}

QORLO_TEST_MAIN(TestFrmMulti)
#include "tst_frmmulti.moc"
