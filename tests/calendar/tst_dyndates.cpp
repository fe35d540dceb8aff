// Date keywords and typed date values: calendar months, fiscal periods, offsets and the date() form.
#include "calendar/DynamicDate.h"
#include "calendar/EvaluateDate.h"
#include "store/clsSchedule.h"

#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

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
        return FormatDateTime(DynamicDate(*m_schedule, reference, QString::fromLatin1(expression)));
    }

    QTemporaryDir m_dir;
    std::unique_ptr<clsSchedule> m_schedule;
};

void TestDynDates::weekKeywords()
{
    m_schedule->Week_Start = 2;
    QCOMPARE(Dyn(D(2026, 11, 22), "week.start.ty"), u"16-Nov-2026 00:00"_s);
    QCOMPARE(Dyn(D(2026, 11, 23, 9, 15), "week.start.ty"), u"23-Nov-2026 09:15"_s);
    QCOMPARE(Dyn(D(2026, 11, 22), "week.end.ty"), u"22-Nov-2026 00:00"_s);
    QCOMPARE(Dyn(D(2026, 11, 25), "week.end.ty-7"), u"22-Nov-2026 00:00"_s);
    QCOMPARE(Dyn(D(2027, 1, 1), "week.start.ty"), u"28-Dec-2026 00:00"_s);
    // Week-Start 0 is not mended: the week starts on the Saturday before.
    m_schedule->Week_Start = 0;
    QCOMPARE(Dyn(D(2026, 11, 21), "week.start.ty"), u"14-Nov-2026 00:00"_s);
}

void TestDynDates::calendarMonthKeywords()
{
    const double lateMarch = D(2026, 3, 31, 14, 30);
    QCOMPARE(Dyn(lateMarch, "today"), u"31-Mar-2026 14:30"_s);
    QCOMPARE(Dyn(lateMarch, "month.start.ty"), u"01-Mar-2026 00:00"_s);
    QCOMPARE(Dyn(lateMarch, "lastmth.start.ty"), u"01-Feb-2026 00:00"_s);
    QCOMPARE(Dyn(D(2024, 3, 31), "lastmth.start.ty"), u"01-Feb-2024 00:00"_s);
    QCOMPARE(Dyn(D(2024, 3, 1), "lastmth.end.ty"), u"29-Feb-2024 00:00"_s);
    QCOMPARE(Dyn(D(2024, 2, 10), "MONTH.END.TY"), u"29-Feb-2024 00:00"_s);
    QCOMPARE(Dyn(D(2026, 12, 31, 23, 0), "month.end.ty"), u"31-Dec-2026 00:00"_s);
    QCOMPARE(Dyn(D(2027, 1, 15), "lastmth.start.ty"), u"01-Dec-2026 00:00"_s);
}

void TestDynDates::yearKeywordsAndPeriodOne()
{
    m_schedule->Year_Start = D(2006, 4, 1);
    for (double reference : {D(2006, 5, 1), D(2026, 11, 21)}) {
        QCOMPARE(Dyn(reference, "year.end.ly"), u"31-Mar-2006 00:00"_s);
        QCOMPARE(Dyn(reference, "year.start.ly"), u"01-Apr-2005 00:00"_s);
        QCOMPARE(Dyn(reference, "year.start.ty"), u"01-Apr-2006 00:00"_s);
        QCOMPARE(Dyn(reference, "year.end.ty"), u"31-Mar-2007 00:00"_s);
    }
    // With calendar months the first period is the year's first month, and it is stored.
    m_schedule->Period_One = D(2000, 1, 1);
    QCOMPARE(Dyn(D(2026, 1, 1), "period1.end.ty+1"), u"01-May-2006 00:00"_s);
    QCOMPARE(m_schedule->Period_One, D(2006, 4, 30));
    m_schedule->Month_Length = 1;
    m_schedule->Period_One = D(2006, 4, 28);
    QCOMPARE(Dyn(D(2026, 1, 1), "period1.end.ty"), u"28-Apr-2006 00:00"_s);
    QCOMPARE(m_schedule->Period_One, D(2006, 4, 28));
}

void TestDynDates::offsetsAndUnknownKeywords()
{
    const double reference = D(2026, 11, 21, 8, 0);
    QCOMPARE(Dyn(reference, "today-2"), u"19-Nov-2026 08:00"_s);
    QCOMPARE(Dyn(reference, "Today+12"), u"03-Dec-2026 08:00"_s);
    QCOMPARE(Dyn(reference, "month.end.ty+1"), u"01-Dec-2026 00:00"_s);
    // "+" wins and what stands before it is the keyword; blanks belong to the keyword.
    QCOMPARE(Dyn(reference, "today-2+3"), u"04-Jan-1900 00:00"_s);
    QCOMPARE(Dyn(reference, "today +1"), u"02-Jan-1900 00:00"_s);
    QCOMPARE(Dyn(reference, ""), u"01-Jan-1900 00:00"_s);
    QCOMPARE(DynamicDateText(*m_schedule, reference, u"nonsense"_s), u"01-Jan-1900"_s);
    QCOMPARE(Dyn(reference, "today+2.5"), u"23-Nov-2026 08:00"_s); // halves go to the even neighbour
    QCOMPARE(Dyn(reference, "today+3.5"), u"25-Nov-2026 08:00"_s);
    QCOMPARE(ErrorOf([&] { Dyn(reference, "today+40000"); }), int(QorloError::Overflow));
}

void TestDynDates::fiscalPeriods()
{
    m_schedule->Year_Start = D(2026, 1, 1);
    m_schedule->Period_One = D(2026, 1, 28);
    for (qint16 length : {1, 2}) {
        m_schedule->Month_Length = length;
        QCOMPARE(Dyn(D(2026, 5, 10), "month.start.ty"), u"07-May-2026 00:00"_s);
        QCOMPARE(Dyn(D(2026, 5, 6), "month.start.ty"), u"02-Apr-2026 00:00"_s);
        QCOMPARE(Dyn(D(2026, 3, 5), "month.start.ty"), u"05-Mar-2026 00:00"_s);
        QCOMPARE(Dyn(D(2027, 2, 1), "month.start.ty"), u"14-Jan-2027 00:00"_s); // no restart at the year
        QCOMPARE(Dyn(D(2026, 1, 27), "month.start.ty+2"), u"03-Jan-2026 00:00"_s);
        QCOMPARE(Dyn(D(2026, 5, 10), "month.end.ty"), u"06-May-2026 00:00"_s);
        QCOMPARE(Dyn(D(2026, 5, 6), "month.end.ty"), u"06-May-2026 00:00"_s);
        QCOMPARE(Dyn(D(2026, 5, 5), "month.end.ty+1"), u"02-Apr-2026 00:00"_s);
        QCOMPARE(Dyn(D(2026, 1, 20), "month.end.ty"), u"28-Jan-2026 00:00"_s);
        // On Period-One itself the start finds no period, and the offset is not applied.
        QCOMPARE(DynamicDate(*m_schedule, D(2026, 1, 28), u"month.start.ty+5"_s), 0.0);
        QCOMPARE(Dyn(D(2026, 1, 28), "month.end.ty"), u"28-Jan-2026 00:00"_s);
        QCOMPARE(DynamicDate(*m_schedule, D(2026, 5, 10), u"lastmth.start.ty"_s), 0.0);
        QCOMPARE(DynamicDateText(*m_schedule, D(2026, 5, 10), u"lastmth.end.ty+1"_s), QString());
    }
    m_schedule->Month_Length = -1;
    QCOMPARE(DynamicDate(*m_schedule, D(2026, 5, 10), u"month.start.ty+1"_s), 0.0);
    QCOMPARE(DynamicDate(*m_schedule, D(2026, 5, 10), u"month.end.ty"_s), 0.0);
}

void TestDynDates::evaluateDate()
{
    FixedClock clock(QDateTime(QDate(2026, 12, 1), QTime(10, 45)));
    ClockGuard guard(clock);
    m_schedule->Today_Adjust = -1;
    const auto eval = [this](const char *text) {
        return FormatDateTime(EvaluateDate(*m_schedule, QString::fromLatin1(text)));
    };
    QCOMPARE(eval(" 05-Mar-2026 "), u"05-Mar-2026 00:00"_s);
    QCOMPARE(eval("2026-03-05 7:05"), u"05-Mar-2026 07:05"_s);
    QCOMPARE(eval(""), u"01-Dec-2026 00:00"_s);
    QCOMPARE(eval("today-1"), u"29-Nov-2026 00:00"_s);
    QCOMPARE(eval("TODAY"), u"30-Nov-2026 00:00"_s);
    QCOMPARE(eval("month.end.ty"), u"30-Nov-2026 00:00"_s);
    QCOMPARE(eval("no.such.key"), u"01-Jan-1900 00:00"_s);
    QCOMPARE(eval("date(2006,3,1,10,30,0)"), u"01-Mar-2006 10:30"_s);
    QCOMPARE(eval("Date(2024, 2, 29)"), u"29-Feb-2024 00:00"_s);
    QCOMPARE(eval("date(2026,13,1)"), u"01-Jan-2027 00:00"_s);
    QCOMPARE(eval("date(26,12,31,23,59,59)"), u"31-Dec-2026 23:59"_s);
    QCOMPARE(ErrorOf([&] { eval("date(-5,1,1)"); }), int(QorloError::InvalidCall));
    for (const char *text :
         {"date(2006,3,1,10,30)", "date(2006,3)", "date(2006,3,1", "date 2006", "next week", "31-Feb-2026"})
        QVERIFY2(EvaluateDate(*m_schedule, QString::fromLatin1(text)) == D(1200, 1, 1), text);
}

QORLO_TEST_MAIN(TestDynDates)
#include "tst_dyndates.moc"
