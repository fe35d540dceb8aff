// The parameter editor over the demo folder: the report's parameters read by the engine, each type's
// editor, the stored text forms and the values saved through the window (the scenario test runs them).
#include "DemoWindows.h"
#include "SalesReport.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "ui/frmPList.h"

#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

namespace {

// The demo folder on Wednesday 18 March 2026, with a report of every parameter type as item "types".
struct ParameterApp : DemoWindows
{
    ParameterApp()
    {
        WriteReport(
            QDir(dir.path()), u"types.rpt"_s,
            u"<table name=\"Sales\" location=\"sales\" dll=\"sqlite\"><property name=\"Database\">demo.db"
            "</property></table>"
            "<parameter name=\"Name\" type=\"12\" prompt=\"Customer name\"><default>Acme</default>"
            "<default>Bolt</default></parameter>"
            "<parameter name=\"Least\" type=\"7\" prompt=\"Least amount\"/>"
            "<parameter name=\"Rate\" type=\"8\"/><parameter name=\"Paid\" type=\"9\"/>"
            "<parameter name=\"Day\" type=\"10\"/><parameter name=\"At\" type=\"16\"/>"
            "<parameter name=\"Hour\" type=\"11\"/>"
            "<parameter name=\"Regions\" type=\"12\" multiple=\"true\"/>"
            "<query>SELECT region FROM {Sales}</query><layout><column field=\"region\"/></layout>"_s);
        schedule.AddNew();
        types = schedule.ReportID();
        schedule.SetName(u"Types"_s);
        schedule.SetFile(u"types.rpt"_s);
    }
    frmPList &window() { return windows.Parameters(); }
    bool load(const QString &reportID) { return window().LoadTables(select(reportID)); }
    template <class Control = QWidget> Control *child(const char *name)
    {
        return Child<Control>(&window(), name);
    }
    QTableWidget *grid() { return child<QTableWidget>("fgPList"); }
    void showRow(int row) { grid()->setCurrentCell(row, 1); }
    QString value(int row) { return grid()->item(row, 1)->text(); }
    bool shown(const char *name) { return child(name)->isVisibleTo(&window()); }
    void type(const char *name, const QString &text)
    {
        auto *line = child<QLineEdit>(name);
        line->selectAll();
        QTest::keyClicks(line, text);
    }
    void adjust(const QString &days)
    {
        child<QLineEdit>("txtAdjDate")->setText(days);
        Q_EMIT child<QLineEdit>("txtAdjDate")->editingFinished();
    }
    // The stored value of a parameter in the schedule file.
    QString saved(const QString &reportID, const QString &name) const
    {
        const auto file = GlobalsFixture::saved();
        for (int row = 0; row < file->ParmCount(); ++row) {
            if (file->ParmCell(row, clsSchedule::parmReportID) == reportID &&
                file->ParmCell(row, clsSchedule::parmName) == name)
                return file->ParmCell(row, clsSchedule::parmValue);
        }
        return u"<none>"_s;
    }

    FixedClock clock{QDateTime(QDate(2026, 3, 18), QTime(10, 0))};
    ClockGuard guard{clock};
    QString types;
};

} // namespace

class TestFrmPList : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsTheReportsParameters();
    void editsEachType();
    void severalValues();
    void savedValuesInTheFile();
    void whatThereIsToEdit();
    void collectionParameters();
    void lettersInANumberField();
};

void TestFrmPList::readsTheReportsParameters()
{
    ParameterApp app;
    clsSchedule &schedule = app.schedule;
    schedule.ParmUpdate(app.types, u"Least"_s, u"7"_s, u"100"_s, QString());
    // Of two stored values of one name the first wins; other items' values and unknown names are passed over.
    schedule.ParmAddNew();
    schedule.SetParmReportID(app.types);
    schedule.SetParmName(u"Least"_s);
    schedule.SetParmValue(u"999"_s);
    schedule.ParmUpdate(u"4"_s, u"Paid"_s, u"9"_s, u"True"_s, QString());
    schedule.ParmUpdate(app.types, u"Gone"_s, u"12"_s, u"x"_s, QString());
    schedule.ParmUpdate(app.types, u"Paid"_s, u"9"_s, u"False"_s, QString());
    schedule.ParmUpdate(app.types, u"Regions"_s, u"12"_s, u"North|East"_s, QString());

    QVERIFY(app.load(app.types));
    QCOMPARE(app.window().windowTitle(), u"Parameters"_s);
    QCOMPARE(app.child<QLabel>("lName")->text(), u"Types"_s);
    QCOMPARE(ColumnTexts(app.grid()), (QStringList{u"Name"_s, u"Least"_s, u"Rate"_s, u"Paid"_s, u"Day"_s,
                                                   u"At"_s, u"Hour"_s, u"Regions"_s}));
    QCOMPARE(app.value(1), u"100"_s);
    QCOMPARE(app.value(3), u"False"_s);
    QCOMPARE(app.value(7), u"North|East"_s);

    // The first row is on show, with the report's prompt and defaults.
    QCOMPARE(app.child<QGroupBox>("frValues")->title(), u"Parameter Values: Name"_s);
    QCOMPARE(app.child<QLabel>("lPrompt")->text(), u"Customer name"_s);
    QCOMPARE(app.child<QLabel>("lDefaults")->text(), u"Acme|Bolt"_s);
    QVERIFY(app.shown("txtPList") && !app.shown("dtpPlist") && !app.shown("OptPList0") && !app.shown("lPos"));

    // A time has no editor and says so.
    app.showRow(6);
    QCOMPARE(app.child<QLabel>("txtFrame")->text(),
             u"Can't currently process a parameter with a type of Time"_s);
    QVERIFY(app.shown("txtFrame") && !app.shown("txtPList") && !app.shown("cmbDynDate"));
    QVERIFY(app.prompter.messages.isEmpty());
}

void TestFrmPList::editsEachType()
{
    ParameterApp app;
    clsSchedule &schedule = app.schedule;
    schedule.ParmUpdate(app.types, u"Day"_s, u"10"_s, u"Date(2026,03,05)"_s, QString());
    schedule.ParmUpdate(app.types, u"At"_s, u"16"_s, u"DateTime(2026,03,05,14,45,0)"_s, QString());
    QVERIFY(app.load(app.types));
    app.window().show();

    app.showRow(1);
    app.type("txtPList", u"250"_s);
    QCOMPARE(app.value(1), u"250"_s);
    app.showRow(3);
    QVERIFY(app.child<QRadioButton>("OptPList0")->isChecked());
    app.child<QRadioButton>("OptPList1")->click();
    QCOMPARE(app.value(3), u"False"_s);

    // A fixed date shows in the picker; a keyword with its adjustment takes the picker's place.
    app.showRow(4);
    QCOMPARE(app.child<QComboBox>("cmbDynDate")->currentIndex(), 0);
    QCOMPARE(app.child<QDateEdit>("dtpPlist")->date(), QDate(2026, 3, 5));
    QVERIFY(app.shown("dtpPlist") && !app.shown("txtAdjDate") && !app.shown("cmbHour"));
    app.child<QDateEdit>("dtpPlist")->setDate(QDate(2026, 2, 28));
    QCOMPARE(app.value(4), u"Date(2026,02,28)"_s);
    app.child<QComboBox>("cmbDynDate")->setCurrentText(u"Month.End.TY"_s);
    app.adjust(u"-1"_s);
    QCOMPARE(app.value(4), u"Month.End.TY-1"_s);
    QVERIFY(!app.shown("dtpPlist") && app.shown("txtAdjDate"));
    QCOMPARE(app.child<QLabel>("lDynPreview")->text(), u"gives 30-Mar-2026"_s);
    app.adjust(u"0"_s);
    QCOMPARE(app.value(4), u"Month.End.TY"_s);

    // A date and time keeps its hour and minute.
    app.showRow(5);
    QVERIFY(app.shown("cmbHour"));
    QCOMPARE(app.child<QComboBox>("cmbHour")->currentIndex(), 14);
    QCOMPARE(app.child<QComboBox>("cmbMin")->currentIndex(), 45);
    app.child<QComboBox>("cmbHour")->setCurrentIndex(9);
    QCOMPARE(app.value(5), u"DateTime(2026,03,05,9,45,0)"_s);

    // Stored keywords in any case find their entry, the doubled one at its first place; text that is
    // neither keyword nor date falls to the picker.
    for (const auto &[stored, entry, adjustment] :
         {std::tuple{u"lastmth.start.ty+2"_s, 6, u"2"_s}, std::tuple{u"TODAY-3"_s, 1, u"-3"_s}}) {
        schedule.ParmUpdate(app.types, u"Day"_s, u"10"_s, stored, QString());
        QVERIFY(app.load(app.types));
        app.showRow(4);
        QCOMPARE(app.child<QComboBox>("cmbDynDate")->currentIndex(), entry);
        QCOMPARE(app.child<QLineEdit>("txtAdjDate")->text(), adjustment);
    }
    schedule.ParmUpdate(app.types, u"Day"_s, u"10"_s, u"next tuesday"_s, QString());
    QVERIFY(app.load(app.types));
    app.showRow(4);
    QCOMPARE(app.child<QComboBox>("cmbDynDate")->currentIndex(), 0);
    QCOMPARE(app.child<QDateEdit>("dtpPlist")->date(), QDate(1200, 1, 1));
}

void TestFrmPList::severalValues()
{
    ParameterApp app;
    app.schedule.ParmUpdate(app.types, u"Regions"_s, u"12"_s, u"North|East"_s, QString());
    QVERIFY(app.load(app.types));
    app.window().show();
    app.showRow(7);
    auto *position = app.child<QLabel>("lPos");
    auto *text = app.child<QLineEdit>("txtPList");
    QCOMPARE(position->text(), u"2 of 2"_s);
    QCOMPARE(text->text(), u"East"_s);
    app.child<QToolButton>("udMultiDown")->click();
    QCOMPARE(position->text(), u"1 of 2"_s);
    app.type("txtPList", u"West"_s);
    QCOMPARE(app.value(7), u"West|East"_s);
    app.child<QToolButton>("udMultiDown")->click();
    QCOMPARE(position->text(), u"1 of 2"_s);

    app.child<QPushButton>("lPlus")->click();
    QCOMPARE(app.value(7), u"West|East|"_s);
    QCOMPARE(position->text(), u"3 of 3"_s);
    QCOMPARE(text->text(), QString());
    app.type("txtPList", u"South"_s);
    QCOMPARE(app.value(7), u"West|East|South"_s);

    app.child<QToolButton>("udMultiUp")->click();
    QCOMPARE(position->text(), u"3 of 3"_s);
    app.child<QPushButton>("lDel")->click();
    QCOMPARE(app.value(7), u"West|East"_s);
    QCOMPARE(text->text(), u"East"_s);
    app.child<QPushButton>("lDel")->click();
    app.child<QPushButton>("lDel")->click();
    // The last value deleted leaves one empty value.
    QCOMPARE(app.value(7), QString());
    QCOMPARE(position->text(), u"1 of 1"_s);
}

void TestFrmPList::savedValuesInTheFile()
{
    ParameterApp app;
    app.select(u"4"_s);
    app.schedule.SetPrompt(QString());
    QVERIFY(app.load(u"4"_s));
    app.window().show();
    app.showRow(0);
    app.type("txtPList", u"North"_s);
    app.showRow(1);
    app.child<QDateEdit>("dtpPlist")->setDate(QDate(2024, 3, 1));
    app.showRow(2);
    app.child<QDateEdit>("dtpPlist")->setDate(QDate(2024, 3, 3));
    Click(&app.window(), "cmdSave");
    QVERIFY(!app.window().isVisible());

    // Written as a person would write it by hand.
    const QString file = QString::fromUtf8(ReadFile(app.path(u"Qorlo.XML"_s)));
    QVERIFY2(
        file.contains(u"<Parameter>\r\n<ParameterReportID>4</ParameterReportID>\r\n"
                      "<ParameterName>From</ParameterName>\r\n<ParameterValueType>10</ParameterValueType>\r\n"
                      "<ParameterValue>Date(2024,03,01)</ParameterValue>\r\n</Parameter>"_s),
        qPrintable(file));
    QCOMPARE(app.saved(u"4"_s, u"To"_s), u"Date(2024,03,03)"_s);
    QCOMPARE(app.saved(u"4"_s, u"Regions"_s), u"North"_s);
}

void TestFrmPList::whatThereIsToEdit()
{
    ParameterApp app;
    clsSchedule &schedule = app.schedule;
    schedule.AddNew();
    QVERIFY(!app.window().LoadTables(schedule.Position()));

    QVERIFY(app.load(u"1"_s));
    QCOMPARE(app.child<QLabel>("lStatus")->text(), u"Applications do not have parameters"_s);
    QCOMPARE(app.grid()->rowCount(), 0);

    // A report without parameters loses the values stored for it, in the file too.
    schedule.ParmUpdate(u"3"_s, u"Old"_s, u"12"_s, u"x"_s, QString());
    QVERIFY(app.load(u"3"_s));
    QCOMPARE(app.child<QLabel>("lStatus")->text(), u"No parameters used in report"_s);
    QCOMPARE(schedule.ParmReportCount(u"3"_s), qint16(0));
    QCOMPARE(app.saved(u"3"_s, u"Old"_s), u"<none>"_s);

    // A report that does not exist gives an empty grid without a word.
    app.select(app.types);
    schedule.SetFile(app.path(u"missing.rpt"_s));
    QVERIFY(app.load(app.types));
    QCOMPARE(app.grid()->rowCount(), 0);
    QVERIFY(app.prompter.messages.isEmpty());

    // The multi-run file feeds Regions: no editor, and its stored value stays as it was.
    schedule.ParmUpdate(u"4"_s, u"Regions"_s, u"12"_s, u"West"_s, QString());
    QVERIFY(app.load(u"4"_s));
    QCOMPARE(app.child<QLabel>("txtFrame")->text(), u"Controlled by Multi-Run"_s);
    QVERIFY(!app.shown("txtPList"));
    Click(&app.window(), "cmdSave");
    QCOMPARE(app.saved(u"4"_s, u"Regions"_s), u"West"_s);
}

void TestFrmPList::collectionParameters()
{
    ParameterApp app;
    clsSchedule &schedule = app.schedule;
    schedule.AddNew();
    const QString collection = schedule.ReportID();
    schedule.SetFile(u"COLLECTION"_s);
    for (const QString &member : {u"3"_s, u"4"_s, u"4"_s}) {
        schedule.NewCollectionItem();
        schedule.SetCollectionID(collection);
        schedule.SetCollectionItem(member);
    }
    app.prompter.setNextAnswers({false, true});
    QVERIFY(!app.load(collection));
    QCOMPARE(app.prompter.take(),
             QStringList{u"Collection Parameters: Do you want to edit parameters for this collection?"_s});
    QVERIFY(app.load(collection));
    QCOMPARE(app.grid()->rowCount(), 3);
    app.window().show();
    app.showRow(0);
    app.type("txtPList", u"East"_s);
    Click(&app.window(), "cmdSave");
    QCOMPARE(app.saved(collection, u"Regions"_s), u"East"_s);

    // A collection of reports without parameters has nothing to edit.
    schedule.AddNew();
    const QString plain = schedule.ReportID();
    schedule.SetFile(u"COLLECTION"_s);
    schedule.NewCollectionItem();
    schedule.SetCollectionID(plain);
    schedule.SetCollectionItem(u"3"_s);
    app.prompter.setNextAnswers({true});
    app.prompter.take();
    QVERIFY(!app.load(plain));
    QCOMPARE(app.prompter.take(),
             (QStringList{u"Collection Parameters: Do you want to edit parameters for this "
                          "collection?"_s,
                          u"Parameters: The reports in this collection do not have parameters"_s}));
}

void TestFrmPList::lettersInANumberField()
{
    ParameterApp app;
    app.schedule.ParmUpdate(app.types, u"Day"_s, u"10"_s, u"Today+1"_s, QString());
    app.globals.SaveSchedule();
    const QByteArray before = ReadFile(app.path(u"Qorlo.XML"_s));
    QVERIFY(app.load(app.types));
    app.window().show();
    app.showRow(4);
    app.adjust(u"two"_s);
    const QStringList box{u"QorloMANAGER: Run-time error '13': Type mismatch"_s};
    QCOMPARE(app.prompter.take(), box);
    QCOMPARE(app.value(4), u"Today+1"_s);
    QCOMPARE(app.child<QLabel>("lDynPreview")->text(), QString());

    // Another row is refused while the adjustment is no number; Save stores nothing.
    app.showRow(2);
    QCOMPARE(app.prompter.take(), box);
    QCOMPARE(app.grid()->currentRow(), 4);
    Click(&app.window(), "cmdSave");
    QCOMPARE(app.prompter.take(), box);
    QVERIFY(app.window().isVisible());
    QCOMPARE(ReadFile(app.path(u"Qorlo.XML"_s)), before);
    QVERIFY(app.prompter.fatal.isEmpty());

    app.adjust(u"2"_s);
    Click(&app.window(), "cmdSave");
    QCOMPARE(app.saved(app.types, u"Day"_s), u"Today+2"_s);
}

QORLO_TEST_MAIN(TestFrmPList)
#include "tst_frmplist.moc"
