// List file values, the holiday table and the three business rules.
#include "calendar/BusinessCalendar.h"
#include "calendar/Holidays.h"
#include "calendar/ListFile.h"
#include "store/clsSchedule.h"

#include "CalendarTestSupport.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace DynDates;

class TestBusinessCalendar : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void listFileValues();
    void holidayTable();
    void holidayTableLimits();
    void nextBusinessDay();
    void nextBusinessHour();
    void nextBusinessMonth();

private:
    QString Day(double d, double reference)
    {
        return FormatDateTime(NextBusinessDay(*m_schedule, d, reference));
    }
    QString Hour(double d) { return FormatDateTime(NextBusinessHour(*m_schedule, d, Now())); }
    void SetHolidays(const QStringList &lines) { WriteListFile(m_dir->filePath(L("holiday.lst")), lines); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<clsSchedule> m_schedule;
};

void TestBusinessCalendar::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_schedule = std::make_unique<clsSchedule>(m_dir->path());
}

void TestBusinessCalendar::listFileValues()
{
    const QStringList expected = {L("01-Dec-2026"),      L("02-Dec-2026"), L("03-Dec-2026"),
                                  L("04-Dec-2026"),      L("05-Dec-2026"), L("06-Dec-2026, still quoted"),
                                  L("07-Dec-2026"),      L("not a date"),  QString(),
                                  L("08-Dec-2026 10:30")};
    QCOMPARE(ReadListValues(TestSupport::DataFile(L("calendar/values.lst"))), expected);
    QVERIFY(ReadListValues(m_dir->filePath(L("missing.lst"))).isEmpty());
}

void TestBusinessCalendar::holidayTable()
{
    m_schedule->AppPath = TestSupport::DataFile(L("calendar"));
    m_schedule->Holiday_List = L("values.lst");
    LoadHolidays(*m_schedule);
    QCOMPARE(m_schedule->Holiday_List, m_schedule->AppPath + L("/values.lst"));
    QCOMPARE(HolidayCount(), 7); // the values that read as dates
    QVERIFY(IsHoliday(D(2026, 12, 2, 15, 0)));
    QVERIFY(IsHoliday(D(2026, 12, 7)));
    QVERIFY(!IsHoliday(D(2026, 12, 6)));
    QVERIFY(!IsHoliday(D(2026, 12, 8))); // listed with a time, so never equal to a whole day

    // The entry one past a shorter load still counts; the one after it does not.
    m_schedule->AppPath = m_dir->path();
    m_schedule->Holiday_List = L("holiday.lst");
    SetHolidays(ConsecutiveDays(D(2026, 11, 23), 3));
    LoadHolidays(*m_schedule);
    SetHolidays({L("01-Jan-2027")});
    LoadHolidays(*m_schedule);
    QCOMPARE(HolidayCount(), 1);
    QVERIFY(IsHoliday(D(2027, 1, 1)));
    QVERIFY(IsHoliday(D(2026, 11, 24)));
    QVERIFY(!IsHoliday(D(2026, 11, 25)));

    m_schedule->Holiday_List = L("gone.lst");
    LoadHolidays(*m_schedule);
    QCOMPARE(HolidayCount(), 0);
    QCOMPARE(m_schedule->Holiday_List, m_dir->filePath(L("gone.lst")));
    m_schedule->Holiday_List.clear();
    LoadHolidays(*m_schedule);
    QCOMPARE(HolidayCount(), 0);
}

void TestBusinessCalendar::holidayTableLimits()
{
    SetHolidays(ConsecutiveDays(D(2026, 1, 1), 101));
    LoadHolidays(*m_schedule);
    QCOMPARE(HolidayCount(), 101);
    QVERIFY(IsHoliday(D(2026, 4, 11)));
    // The look one past a full table runs off its end unless a match came first.
    QCOMPARE(ErrorOf([] { IsHoliday(D(2030, 1, 1)); }), int(QorloError::OutOfRange));
    SetHolidays(ConsecutiveDays(D(2026, 1, 1), 102));
    QCOMPARE(ErrorOf([this] { LoadHolidays(*m_schedule); }), int(QorloError::OutOfRange));
}

void TestBusinessCalendar::nextBusinessDay()
{
    const double friday = D(2026, 11, 20, 8, 0);
    const double fridayLater = D(2026, 11, 20, 8, 0, 30);
    QCOMPARE(Day(friday, fridayLater), L("23-Nov-2026 08:00"));
    QCOMPARE(Day(friday, D(2026, 11, 20)), L("20-Nov-2026 08:00"));
    SetHolidays({L("23-Nov-2026")});
    QCOMPARE(Day(friday, fridayLater), L("24-Nov-2026 08:00"));
    QCOMPARE(Day(D(2026, 1, 1, 9, 0), D(2026, 11, 22, 12, 0)), L("24-Nov-2026 09:00"));
    // A later date is kept on a working day and moved off a rest day.
    QCOMPARE(Day(D(2026, 11, 25, 6, 0), fridayLater), L("25-Nov-2026 06:00"));
    QCOMPARE(Day(D(2026, 11, 28, 6, 0), fridayLater), L("30-Nov-2026 06:00"));

    SetHolidays({L("20-Nov-2026")});
    m_schedule->Business_Week = L("Monday-Saturday");
    QCOMPARE(Day(D(2026, 11, 19, 8, 0), D(2026, 11, 19, 8, 0, 30)), L("21-Nov-2026 08:00"));
    QCOMPARE(Day(D(2026, 11, 21, 8, 0), D(2026, 11, 21, 9, 0)), L("23-Nov-2026 08:00"));
    // An unknown week skips no weekday, holidays still; codes compare exactly.
    for (const char *week : {"Tuesday-Friday", "monday-friday"}) {
        m_schedule->Business_Week = L(week);
        QCOMPARE(Day(D(2026, 11, 19, 8, 0), D(2026, 11, 19, 8, 0, 30)), L("21-Nov-2026 08:00"));
        QCOMPARE(Day(D(2026, 11, 21, 8, 0), D(2026, 11, 21, 9, 0)), L("22-Nov-2026 08:00"));
    }
    m_schedule->Business_Week = L("Monday-Friday");
    SetHolidays({L("01-Jan-2027"), L("2027-01-04")});
    QCOMPARE(Day(D(2026, 12, 31, 17, 0), D(2026, 12, 31, 17, 0, 1)), L("05-Jan-2027 17:00"));
}

void TestBusinessCalendar::nextBusinessHour()
{
    FixedClock clock(QDateTime(QDate(2026, 11, 20), QTime(16, 0, 5)));
    ClockGuard guard(clock);
    SetHolidays({L("23-Nov-2026")});
    QCOMPARE(Hour(D(2026, 11, 20, 16, 0)), L("20-Nov-2026 17:00")); // the end of the day itself stays
    clock.set(QDateTime(QDate(2026, 11, 20), QTime(17, 0, 5)));
    QCOMPARE(Hour(D(2026, 11, 20, 17, 0)), L("24-Nov-2026 09:00"));

    clock.set(QDateTime(QDate(2026, 11, 20), QTime(10, 17)));
    m_schedule->BusinessHour_Schedule = 15;
    m_schedule->BusinessHour_Start = {8, 30};
    QCOMPARE(Hour(D(2026, 11, 20, 10, 0)), L("20-Nov-2026 10:30"));
    QCOMPARE(Hour(D(2026, 11, 13, 10, 0)), L("20-Nov-2026 10:30"));
    QCOMPARE(Hour(D(2026, 11, 25, 10, 0)), L("25-Nov-2026 08:30")); // today's end, even for a later day
    m_schedule->BusinessHour_Schedule = -5;                         // read as 60
    m_schedule->BusinessHour_End = {16, 45};
    QCOMPARE(Hour(D(2026, 11, 20, 15, 45)), L("20-Nov-2026 16:45"));
    QCOMPARE(Hour(D(2026, 11, 20, 15, 46)), L("24-Nov-2026 08:30"));
}

void TestBusinessCalendar::nextBusinessMonth()
{
    FixedClock clock(QDateTime(QDate(2026, 1, 31), QTime(12, 0)));
    ClockGuard guard(clock);
    const auto month = [&, this](const char *rule, const QDate &today) {
        m_schedule->Business_Month = L(rule);
        clock.set(QDateTime(today, QTime(12, 0)));
        return FormatDateTime(NextBusinessMonth(*m_schedule, D(2025, 6, 1, 7, 15)));
    };
    QCOMPARE(month("Last Day", QDate(2026, 1, 31)), L("28-Feb-2026 07:15"));
    QCOMPARE(month("Last Day", QDate(2024, 1, 31)), L("29-Feb-2024 07:15"));
    QCOMPARE(month("Last Day", QDate(2026, 3, 30)), L("31-Mar-2026 07:15"));
    QCOMPARE(month("Last Day", QDate(2026, 12, 31)), L("31-Jan-2027 07:15"));
    m_schedule->Today_Adjust = -5; // not applied here
    QCOMPARE(month("Last Day", QDate(2026, 12, 2)), L("31-Dec-2026 07:15"));
    for (const char *rule : {"First Day", "", "first day"})
        QCOMPARE(month(rule, QDate(2026, 12, 15)), L("01-Jan-2027 07:15"));
    QCOMPARE(month("3", QDate(2026, 11, 10)), L("03-Dec-2026 07:15"));
    QCOMPARE(month("0", QDate(2026, 11, 30)), L("30-Nov-2026 07:15"));
    QCOMPARE(month("5", QDate(2026, 11, 2)), L("05-Dec-2026 07:15")); // a Saturday: no working-day test

    // Fiscal months: measured from the end of the period most recently completed, so on a period's last
    // day "Last Day" three days on still finds that same end.
    m_schedule->Month_Length = 1;
    m_schedule->Period_One = D(2026, 1, 28);
    QCOMPARE(month("First Day", QDate(2026, 5, 10)), L("07-May-2026 07:15"));
    QCOMPARE(month("Last Day", QDate(2026, 5, 6)), L("06-May-2026 07:15"));
}

QORLO_TEST_MAIN(TestBusinessCalendar)
#include "tst_businesscalendar.moc"
