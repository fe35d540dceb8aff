// Date keywords and typed date values: calendar months, fiscal periods, offsets and the date() form.
#include "calendar/DynamicDate.h"
#include "calendar/EvaluateDate.h"
#include "store/clsSchedule.h"

#include "CalendarTestSupport.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace DynDates;

class TestDynDates : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_schedule = std::make_unique<clsSchedule>(m_dir.path()); }
    void weekKeywords();
    void calendarMonthKeywords();
    void yearKeywordsAndPeriodOne();
    void offsetsAndUnknownKeywords();
    void fiscalPeriods();
    void evaluateDate();

private:
    QString Dyn(double reference, const char *expression)
    {
        return FormatDateTime(DynamicDate(*m_schedule, reference, L(expression)));
    }

    QTemporaryDir m_dir;
    std::unique_ptr<clsSchedule> m_schedule;
};

void TestDynDates::weekKeywords()
{
    m_schedule->Week_Start = 2;
    QCOMPARE(Dyn(D(2026, 11, 22), "week.start.ty"), L("16-Nov-2026 00:00"));
    QCOMPARE(Dyn(D(2026, 11, 23, 9, 15), "week.start.ty"), L("23-Nov-2026 09:15"));
    QCOMPARE(Dyn(D(2026, 11, 22), "week.end.ty"), L("22-Nov-2026 00:00"));
    QCOMPARE(Dyn(D(2026, 11, 25), "week.end.ty-7"), L("22-Nov-2026 00:00"));
    QCOMPARE(Dyn(D(2027, 1, 1), "week.start.ty"), L("28-Dec-2026 00:00"));
    // Week-Start 0 is not mended: the week starts on the Saturday before.
    m_schedule->Week_Start = 0;
    QCOMPARE(Dyn(D(2026, 11, 21), "week.start.ty"), L("14-Nov-2026 00:00"));
}

void TestDynDates::calendarMonthKeywords()
{
    const double lateMarch = D(2026, 3, 31, 14, 30);
    QCOMPARE(Dyn(lateMarch, "today"), L("31-Mar-2026 14:30"));
    QCOMPARE(Dyn(lateMarch, "month.start.ty"), L("01-Mar-2026 00:00"));
    QCOMPARE(Dyn(lateMarch, "lastmth.start.ty"), L("01-Feb-2026 00:00"));
    QCOMPARE(Dyn(D(2024, 3, 31), "lastmth.start.ty"), L("01-Feb-2024 00:00"));
    QCOMPARE(Dyn(D(2024, 3, 1), "lastmth.end.ty"), L("29-Feb-2024 00:00"));
    QCOMPARE(Dyn(D(2024, 2, 10), "MONTH.END.TY"), L("29-Feb-2024 00:00"));
    QCOMPARE(Dyn(D(2026, 12, 31, 23, 0), "month.end.ty"), L("31-Dec-2026 00:00"));
    QCOMPARE(Dyn(D(2027, 1, 15), "lastmth.start.ty"), L("01-Dec-2026 00:00"));
}

void TestDynDates::yearKeywordsAndPeriodOne()
{
    m_schedule->Year_Start = D(2006, 4, 1);
    for (double reference : {D(2006, 5, 1), D(2026, 11, 21)}) {
        QCOMPARE(Dyn(reference, "year.end.ly"), L("31-Mar-2006 00:00"));
        QCOMPARE(Dyn(reference, "year.start.ly"), L("01-Apr-2005 00:00"));
        QCOMPARE(Dyn(reference, "year.start.ty"), L("01-Apr-2006 00:00"));
        QCOMPARE(Dyn(reference, "year.end.ty"), L("31-Mar-2007 00:00"));
    }
    // With calendar months the first period is the year's first month, and it is stored.
    m_schedule->Period_One = D(2000, 1, 1);
    QCOMPARE(Dyn(D(2026, 1, 1), "period1.end.ty+1"), L("01-May-2006 00:00"));
    QCOMPARE(m_schedule->Period_One, D(2006, 4, 30));
    m_schedule->Month_Length = 1;
    m_schedule->Period_One = D(2006, 4, 28);
    QCOMPARE(Dyn(D(2026, 1, 1), "period1.end.ty"), L("28-Apr-2006 00:00"));
    QCOMPARE(m_schedule->Period_One, D(2006, 4, 28));
}

void TestDynDates::offsetsAndUnknownKeywords()
{
    const double reference = D(2026, 11, 21, 8, 0);
    QCOMPARE(Dyn(reference, "today-2"), L("19-Nov-2026 08:00"));
    QCOMPARE(Dyn(reference, "Today+12"), L("03-Dec-2026 08:00"));
    QCOMPARE(Dyn(reference, "month.end.ty+1"), L("01-Dec-2026 00:00"));
    // "+" wins and what stands before it is the keyword; blanks belong to the keyword.
    QCOMPARE(Dyn(reference, "today-2+3"), L("04-Jan-1900 00:00"));
    QCOMPARE(Dyn(reference, "today +1"), L("02-Jan-1900 00:00"));
    QCOMPARE(Dyn(reference, ""), L("01-Jan-1900 00:00"));
    QCOMPARE(DynamicDateText(*m_schedule, reference, L("nonsense")), L("01-Jan-1900"));
    QCOMPARE(Dyn(reference, "today+2.5"), L("23-Nov-2026 08:00")); // halves go to the even neighbour
    QCOMPARE(Dyn(reference, "today+3.5"), L("25-Nov-2026 08:00"));
    QCOMPARE(ErrorOf([&] { Dyn(reference, "today+40000"); }), int(QorloError::Overflow));
}

void TestDynDates::fiscalPeriods()
{
    m_schedule->Year_Start = D(2026, 1, 1);
    m_schedule->Period_One = D(2026, 1, 28);
    for (qint16 length : {1, 2}) {
        m_schedule->Month_Length = length;
        QCOMPARE(Dyn(D(2026, 5, 10), "month.start.ty"), L("07-May-2026 00:00"));
        QCOMPARE(Dyn(D(2026, 5, 6), "month.start.ty"), L("02-Apr-2026 00:00"));
        QCOMPARE(Dyn(D(2026, 3, 5), "month.start.ty"), L("05-Mar-2026 00:00"));
        QCOMPARE(Dyn(D(2027, 2, 1), "month.start.ty"), L("14-Jan-2027 00:00")); // no restart at the year
        QCOMPARE(Dyn(D(2026, 1, 27), "month.start.ty+2"), L("03-Jan-2026 00:00"));
        QCOMPARE(Dyn(D(2026, 5, 10), "month.end.ty"), L("06-May-2026 00:00"));
        QCOMPARE(Dyn(D(2026, 5, 6), "month.end.ty"), L("06-May-2026 00:00"));
        QCOMPARE(Dyn(D(2026, 5, 5), "month.end.ty+1"), L("02-Apr-2026 00:00"));
        QCOMPARE(Dyn(D(2026, 1, 20), "month.end.ty"), L("28-Jan-2026 00:00"));
        // On Period-One itself the start finds no period, and the offset is not applied.
        QCOMPARE(DynamicDate(*m_schedule, D(2026, 1, 28), L("month.start.ty+5")), 0.0);
        QCOMPARE(Dyn(D(2026, 1, 28), "month.end.ty"), L("28-Jan-2026 00:00"));
        QCOMPARE(DynamicDate(*m_schedule, D(2026, 5, 10), L("lastmth.start.ty")), 0.0);
        QCOMPARE(DynamicDateText(*m_schedule, D(2026, 5, 10), L("lastmth.end.ty+1")), QString());
    }
    m_schedule->Month_Length = -1;
    QCOMPARE(DynamicDate(*m_schedule, D(2026, 5, 10), L("month.start.ty+1")), 0.0);
    QCOMPARE(DynamicDate(*m_schedule, D(2026, 5, 10), L("month.end.ty")), 0.0);
}

void TestDynDates::evaluateDate()
{
    FixedClock clock(QDateTime(QDate(2026, 12, 1), QTime(10, 45)));
    ClockGuard guard(clock);
    m_schedule->Today_Adjust = -1;
    const auto eval = [this](const char *text) { return FormatDateTime(EvaluateDate(*m_schedule, L(text))); };
    QCOMPARE(eval(" 05-Mar-2026 "), L("05-Mar-2026 00:00"));
    QCOMPARE(eval("2026-03-05 7:05"), L("05-Mar-2026 07:05"));
    QCOMPARE(eval(""), L("01-Dec-2026 00:00"));
    QCOMPARE(eval("today-1"), L("29-Nov-2026 00:00"));
    QCOMPARE(eval("TODAY"), L("30-Nov-2026 00:00"));
    QCOMPARE(eval("month.end.ty"), L("30-Nov-2026 00:00"));
    QCOMPARE(eval("no.such.key"), L("01-Jan-1900 00:00"));
    QCOMPARE(eval("date(2006,3,1,10,30,0)"), L("01-Mar-2006 10:30"));
    QCOMPARE(eval("Date(2024, 2, 29)"), L("29-Feb-2024 00:00"));
    QCOMPARE(eval("date(2026,13,1)"), L("01-Jan-2027 00:00"));
    QCOMPARE(eval("date(26,12,31,23,59,59)"), L("31-Dec-2026 23:59"));
    QCOMPARE(ErrorOf([&] { eval("date(-5,1,1)"); }), int(QorloError::InvalidCall));
    for (const char *text :
         {"date(2006,3,1,10,30)", "date(2006,3)", "date(2006,3,1", "date 2006", "next week", "31-Feb-2026"})
        QVERIFY2(EvaluateDate(*m_schedule, L(text)) == D(1200, 1, 1), text);
}

QORLO_TEST_MAIN(TestDynDates)
#include "tst_dyndates.moc"
