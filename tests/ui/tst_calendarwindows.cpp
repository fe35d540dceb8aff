// The calendar and list windows driven through their controls, each with a round trip through the file
// it edits.
#include "AppObjects.h"
#include "CupsPeer.h"
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "calendar/NextRun.h"
#include "core/Ansi.h"
#include "ui/frmBusinessCal.h"
#include "ui/frmDates.h"
#include "ui/frmFind.h"
#include "ui/frmFormat.h"
#include "ui/frmList.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// Monday 2 March 2026, 09:30.
const QDateTime kNow(QDate(2026, 3, 2), QTime(9, 30));

struct CalendarFixture : GlobalsFixture
{
    QString savedFile() const { return Ansi::Decode(ReadFile(path(u"Qorlo.XML"_s))); }
    QStringList previews(const QWidget &window) const
    {
        QStringList texts;
        for (int row = 0; row < 11; ++row)
            texts.append(Child<QLabel>(&window, qPrintable(u"lValue"_s + QString::number(row)))->text());
        return texts;
    }
    // The next run of a business-day item due at `nextRun`, by the schedule as its file holds it.
    QString nextBusinessDay(const QString &nextRun, double reference) const
    {
        auto file = saved();
        AddItem(*file, {u"9"_s, u"Daily sales"_s, path(u"sales.rpt"_s), u"B"_s, u"1"_s, nextRun});
        SaveNextTime(*file, reference);
        return file->NextRun();
    }
    QStringList rows(const frmList &list) const { return ColumnTexts(Child<QTableWidget>(&list, "fgList")); }

    FixedClock clock{kNow};
    ClockGuard guard{clock};
};

} // namespace

class TestCalendarWindows : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { NoPrintServer(); }
    void dynamicDatesPreviewAndSave();
    void businessCalendarMovesTheNextRun();
    void listEditorKindsAndFile();
    void exportFormatChecks();
    void findAndReplace();
};

void TestCalendarWindows::dynamicDatesPreviewAndSave()
{
    CalendarFixture f;
    clsSchedule &s = f.schedule;
    frmDates window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Dynamic Dates"_s);
    // A week start of 0 becomes Sunday as the window opens; the year starts on 1 January.
    QCOMPARE(s.Week_Start, qint16(1));
    QCOMPARE(Child<QLabel>(&window, "lDate")->text(), u"Today is 02-Mar-2026"_s);
    QCOMPARE(Child<QComboBox>(&window, "cmbThisWeek")->currentText(), u"Sunday"_s);
    QCOMPARE(Child<QDateEdit>(&window, "dtpYear")->date(), QDate(2026, 1, 1));
    auto *period = Child<QDateEdit>(&window, "dtpPeriod1");
    QVERIFY(!period->isEnabled());
    QVERIFY(Child<QLabel>(&window, "lValue7")->isVisibleTo(&window));
    QCOMPARE(f.previews(window),
             (QStringList{u"02-Mar-2026"_s, u"01-Mar-2026"_s, u"07-Mar-2026"_s, u"01-Mar-2026"_s,
                          u"31-Mar-2026"_s, u"01-Feb-2026"_s, u"28-Feb-2026"_s, u"31-Jan-2026"_s,
                          u"31-Dec-2026"_s, u"01-Jan-2025"_s, u"31-Dec-2025"_s}));

    // Apply stores the values and shows them from yesterday, a Sunday, with weeks from Monday.
    Child<QLineEdit>(&window, "txtDate")->setText(u"-1"_s);
    Child<QComboBox>(&window, "cmbThisWeek")->setCurrentIndex(1);
    Click(&window, "cmdApply");
    QCOMPARE(s.Today_Adjust, qint16(-1));
    QCOMPARE(s.Week_Start, qint16(2));
    QCOMPARE(f.previews(window).mid(0, 3),
             (QStringList{u"01-Mar-2026"_s, u"23-Feb-2026"_s, u"01-Mar-2026"_s}));

    // Fiscal months: the choice is stored at once and the period picker takes over from the label.
    Child<QComboBox>(&window, "cmbMonthLen")->setCurrentIndex(1);
    QCOMPARE(s.Month_Length, qint16(1));
    QVERIFY(period->isEnabled());
    QVERIFY(!Child<QLabel>(&window, "lValue7")->isVisibleTo(&window));
    period->setDate(QDate(2026, 1, 28));
    Click(&window, "cmdApply");
    QCOMPARE(s.Period_One, D(2026, 1, 28));
    const QStringList fiscal = f.previews(window);
    QCOMPARE(fiscal.mid(3, 4), (QStringList{u"29-Jan-2026"_s, u"28-Jan-2026"_s, QString(), QString()}));
    // Leaving by Exit keeps the applied values in memory and writes nothing.
    Click(&window, "cmdExit");
    QVERIFY(!QFile::exists(f.path(u"Qorlo.XML"_s)));
    QCOMPARE(s.Today_Adjust, qint16(-1));

    // An adjustment beyond 16 bits shows its error box; the window stays and keeps the old value.
    window.LoadSettings();
    window.open();
    Child<QLineEdit>(&window, "txtDate")->setText(u"99999"_s);
    Click(&window, "cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: Run-time error '6': Overflow"_s});
    QVERIFY(window.isVisible());
    QCOMPARE(s.Today_Adjust, qint16(-1));
    Child<QLineEdit>(&window, "txtDate")->setText(u"2"_s);
    Click(&window, "cmdSave");
    QVERIFY(!window.isVisible());
    const QString file = f.savedFile();
    QVERIFY2(file.contains(u"<Today-Adjust>2</Today-Adjust>"_s), qPrintable(file));
    QCOMPARE(f.saved()->Week_Start, qint16(2));
    QCOMPARE(f.saved()->Period_One, D(2026, 1, 28));
    QCOMPARE(f.saved()->Year_Start, D(2026, 1, 1));
}

void TestCalendarWindows::businessCalendarMovesTheNextRun()
{
    CalendarFixture f;
    clsSchedule &s = f.schedule;
    s.Business_Month = u"3"_s;
    s.BusinessHour_Schedule = 0;
    frmBusinessCal window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Business Calendar"_s);
    // A step outside 1 to 300 becomes 60 at once; a numeric month is a third entry.
    QCOMPARE(s.BusinessHour_Schedule, qint16(60));
    auto *step = Child<QComboBox>(&window, "cmbFreq");
    QCOMPARE(step->currentText(), u"60"_s);
    auto *month = Child<QComboBox>(&window, "cmbBMonth");
    QCOMPARE(month->count(), 3);
    QCOMPARE(month->currentText(), u"3"_s);
    QCOMPARE(Child<QComboBox>(&window, "cmbStartHr")->currentText(), u"9"_s);
    QCOMPARE(Child<QComboBox>(&window, "cmbEndHr")->currentText(), u"17"_s);
    auto *holidays = Child<QLabel>(&window, "lBCal");
    QCOMPARE(holidays->text(), u"holiday.lst"_s);

    // The holiday list in the list editor, as dates: Tuesday 3 March is a holiday.
    Click(&window, "cmdEditHols");
    auto *list = window.findChild<frmList *>();
    QVERIFY(list && list->isVisible());
    QCOMPARE(list->Kind(), frmList::Date);
    QVERIFY(Child<QAction>(list, "mnuDate")->isChecked());
    QCOMPARE(list->FileName(), f.path(u"holiday.lst"_s));
    Trigger(list, "mnuNewLine");
    Child<QDateEdit>(list, "dtList")->setDate(QDate(2026, 3, 3));
    Trigger(list, "mnuSave");
    QCOMPARE(ReadFile(f.path(u"holiday.lst"_s)), QByteArray("03-Mar-2026\r\n"));
    Trigger(list, "mnuExit");

    // A file picked elsewhere is kept by its name alone.
    f.prompter.setNextFileNames({u"/elsewhere/closed.lst"_s});
    Click(&window, "cmdHolidays");
    QCOMPARE(holidays->text(), u"closed.lst"_s);
    holidays->setText(u"holiday.lst"_s);

    Child<QComboBox>(&window, "cmbBWeek")->setCurrentText(u"Monday-Saturday"_s);
    month->setCurrentText(u"Last Day"_s);
    Child<QComboBox>(&window, "cmbStartMin")->setCurrentText(u"30"_s);
    step->setCurrentText(u"360"_s);
    Click(&window, "cmdSave");
    QVERIFY(!window.isVisible());
    QCOMPARE(f.saved()->Business_Week, u"Monday-Saturday"_s);
    QCOMPARE(f.saved()->Business_Month, u"Last Day"_s);
    QCOMPARE(f.saved()->BusinessHour_Start, (clsSchedule::HourMinute{9, 30}));
    QCOMPARE(f.saved()->BusinessHour_Schedule, qint16(360));

    // From Monday the holiday is passed over; from Friday the Saturday now counts.
    QCOMPARE(f.nextBusinessDay(u"02-Mar-2026 08:00"_s, D(2026, 3, 2, 9, 30)), u"04-Mar-2026 08:00"_s);
    QCOMPARE(f.nextBusinessDay(u"06-Mar-2026 08:00"_s, D(2026, 3, 6, 9, 30)), u"07-Mar-2026 08:00"_s);

    // The next opening shows the offered 360 as 60.
    window.LoadSettings();
    QCOMPARE(step->currentText(), u"60"_s);
    QCOMPARE(s.BusinessHour_Schedule, qint16(60));
}

void TestCalendarWindows::listEditorKindsAndFile()
{
    CalendarFixture f;
    WriteLines(f.path(u"regions.lst"_s), {u"\"North\""_s, u"South"_s, u"\"East, \"Coast\""_s});
    frmList list(f.globals);
    list.ClearForm(frmList::Std);
    list.LoadFile(u"regions.lst"_s);
    list.open();
    QCOMPARE(list.windowTitle(), u"List File Editor"_s);
    QCOMPARE(f.rows(list), (QStringList{u"North"_s, u"South"_s, u"East, \"Coast"_s}));
    QCOMPARE(list.FileName(), f.path(u"regions.lst"_s));
    auto *grid = Child<QTableWidget>(&list, "fgList");
    auto *text = Child<QLineEdit>(&list, "txtEdit");

    // The text box over the cell writes it as it is typed.
    grid->setCurrentCell(1, 0);
    QVERIFY(text->isVisibleTo(&list));
    QCOMPARE(text->text(), u"South"_s);
    text->selectAll();
    QTest::keyClicks(text, u"West"_s);
    QCOMPARE(grid->item(1, 0)->text(), u"West"_s);
    Trigger(&list, "mnuInsertLine");
    QCOMPARE(grid->currentRow(), 1);
    QTest::keyClicks(text, u"Central"_s);
    Trigger(&list, "mnuNewLine");
    QTest::keyClicks(text, u"Isles"_s);
    grid->setCurrentCell(0, 0);
    Trigger(&list, "mnuDeleteLine");
    QCOMPARE(f.rows(list), (QStringList{u"Central"_s, u"West"_s, u"East, \"Coast"_s, u"Isles"_s}));
    // Saving over the file replaces it without a question.
    Trigger(&list, "mnuSave");
    QCOMPARE(ReadFile(f.path(u"regions.lst"_s)), QByteArray("Central\r\nWest\r\nEast, \"Coast\r\nIsles\r\n"));
    QVERIFY(f.prompter.take().isEmpty());

    // A date-and-time list: the picker and the two lists form the cell's text.
    Trigger(&list, "mnuNew");
    QVERIFY(f.rows(list).isEmpty() && list.FileName().isEmpty());
    Trigger(&list, "mnuDateTime");
    QCOMPARE(list.Kind(), frmList::DateTime);
    Trigger(&list, "mnuNewLine");
    QVERIFY(!text->isVisibleTo(&list));
    Child<QDateEdit>(&list, "dtList")->setDate(QDate(2026, 12, 24));
    Child<QComboBox>(&list, "cmbHours")->setCurrentIndex(8);
    Child<QComboBox>(&list, "cmbMins")->setCurrentIndex(5);
    QCOMPARE(f.rows(list), QStringList{u"24-Dec-2026 08:05"_s});
    // A new list is saved under the name the operator gives.
    f.prompter.setNextFileNames({f.path(u"calendar.lst"_s)});
    Trigger(&list, "mnuSave");
    QCOMPARE(ReadFile(f.path(u"calendar.lst"_s)), QByteArray("24-Dec-2026 08:05\r\n"));
    QCOMPARE(list.FileName(), f.path(u"calendar.lst"_s));

    // Without a printer on the machine the printer list says so.
    Trigger(&list, "mnuPrinter");
    QCOMPARE(f.prompter.take(), (QStringList{u"List File Editor: "_s + f.dir.path(),
                                             u"Load Printers: No Printers configured"_s}));
    QVERIFY(Child<QAction>(&list, "mnuPrinter")->isChecked());
    QVERIFY(!Child<QAction>(&list, "mnuDateTime")->isChecked());

    // A file that cannot be written shows its error box and the list stays.
    f.prompter.setNextFileNames({f.path(u"missing/folder/list.lst"_s)});
    Trigger(&list, "mnuSaveAs");
    QCOMPARE(f.prompter.take().last(), u"QorloMANAGER: Run-time error '75': Path/File access error"_s);
    QCOMPARE(f.rows(list).size(), 1);
}

void TestCalendarWindows::exportFormatChecks()
{
    CalendarFixture f;
    f.schedule.Excel_Format = u"Excel Data"_s;
    f.schedule.Text_FormatCPI = u"12"_s;
    frmFormat window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Export Formats"_s);
    QCOMPARE(Child<QComboBox>(&window, "cmbExcel")->currentText(), u"Excel Data"_s);
    QCOMPARE(Child<QComboBox>(&window, "cmbCrystal")->currentIndex(), -1);
    auto *cpi = Child<QLineEdit>(&window, "txtCPI");
    auto *page = Child<QLineEdit>(&window, "txtPage");
    QCOMPARE(cpi->text(), u"12"_s);

    const struct
    {
        QString cpi, page, message;
    } refused[] = {
        {u"twelve"_s, QString(), u"CPI value error: Text CPI must be a number"_s},
        {u"7"_s, QString(), u"CPI range error: Text CPI must be between 8 and 16"_s},
        {u"17"_s, QString(), u"CPI range error: Text CPI must be between 8 and 16"_s},
        {u"8"_s, u"sixty"_s, u"Page value error: Text lines per page must be a number"_s},
        {u"16"_s, u"201"_s, u"Page range error: Text Lines per Page must be between 0 and 200"_s},
        {QString(), u"-1"_s, u"Page range error: Text Lines per Page must be between 0 and 200"_s},
    };
    for (const auto &value : refused) {
        cpi->setText(value.cpi);
        page->setText(value.page);
        Click(&window, "cmdSave");
        QCOMPARE(f.prompter.take(), QStringList{value.message});
        QVERIFY(window.isVisible());
    }
    QVERIFY(!QFile::exists(f.path(u"Qorlo.XML"_s)));

    // An empty CPI saves as empty; the ends of the ranges pass.
    cpi->clear();
    page->setText(u"200"_s);
    Child<QComboBox>(&window, "cmbExcel")->setCurrentText(u"Excel"_s);
    Child<QComboBox>(&window, "cmbCrystal")->setCurrentIndex(0);
    Click(&window, "cmdSave");
    QVERIFY(!window.isVisible());
    auto saved = f.saved();
    QCOMPARE(saved->Text_FormatCPI, QString());
    QCOMPARE(saved->Text_FormatPage, u"200"_s);
    QCOMPARE(saved->Excel_Format, u"Excel"_s);
    QCOMPARE(saved->Crystal_Format, u"Crystal Reports"_s);
}

void TestCalendarWindows::findAndReplace()
{
    CalendarFixture f;
    clsSchedule &s = f.schedule;
    AddItem(s, {u"1"_s, u"Sales"_s, u"/reports/Monthly Sales.rpt"_s, u"D"_s, u"1"_s, QString()});
    AddItem(s, {u"2"_s, u"Stock"_s, u"/reports/stock.rpt"_s, u"D"_s, u"1"_s, QString()});
    s.SetEmail(u"Sales@Example.com"_s);
    AddItem(s, {u"3"_s, u"Sales again"_s, u"/archive/SALES.rpt"_s, u"D"_s, u"1"_s, QString()});
    frmFind window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Find and Replace"_s);
    auto *field = Child<QComboBox>(&window, "cmbOptions");
    QCOMPARE(field->count(), 4);
    field->setCurrentText(u"File/Folder"_s);
    Child<QLineEdit>(&window, "txtFind")->setText(u"sales"_s);
    Child<QLineEdit>(&window, "txtReplace")->setText(u"Stock"_s);

    // No: nothing changes.
    Click(&window, "cmdReplace");
    QCOMPARE(f.prompter.take(), QStringList{u"Find/Replace schedule: You have asked to modify 2 schedule "
                                            "items\r\nPlease confirm you wish to apply this change to the "
                                            "schedule?"_s});
    s.Find(u"1"_s);
    QCOMPARE(s.File(), u"/reports/Monthly Sales.rpt"_s);

    // Without case, the whole field comes back in small letters.
    f.prompter.setNextAnswers({true});
    Click(&window, "cmdReplace");
    QCOMPARE(f.prompter.take().last(), u"Changes made: This changed 2 schedule items"_s);
    auto saved = f.saved();
    saved->Find(u"1"_s);
    QCOMPARE(saved->File(), u"/reports/monthly Stock.rpt"_s);
    saved->Find(u"3"_s);
    QCOMPARE(saved->File(), u"/archive/Stock.rpt"_s);

    // With case, only the exact text; a count of 0 leaves the file as it was.
    field->setCurrentText(u"EMail Address"_s);
    Child<QCheckBox>(&window, "chkCase")->setChecked(true);
    Child<QLineEdit>(&window, "txtFind")->setText(u"sales@"_s);
    QFile::remove(f.path(u"Qorlo.XML"_s));
    f.prompter.setNextAnswers({true});
    Click(&window, "cmdReplace");
    QCOMPARE(
        f.prompter.take(),
        (QStringList{u"Find/Replace schedule: You have asked to modify 0 schedule items\r\nPlease confirm "
                     "you wish to apply this change to the schedule?"_s,
                     u"Changes made: This changed 0 schedule items"_s}));
    QVERIFY(!QFile::exists(f.path(u"Qorlo.XML"_s)));
}

QORLO_TEST_MAIN(TestCalendarWindows)
#include "tst_calendarwindows.moc"
