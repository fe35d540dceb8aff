// List file values, the holiday table and the three business rules.
#include "calendar/BusinessCalendar.h"
#include "calendar/Holidays.h"
#include "calendar/ListFile.h"
#include "store/clsSchedule.h"

#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

using namespace DynDates;

class TestBusinessCalendar : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir.emplace();
        m_schedule.emplace(m_dir->path());
    }
    void listFileValues();
    void holidayTable();
    void nextBusinessDay();
    void nextBusinessHour();
    void nextBusinessMonth();

private:
    QString Day(double d, double reference)
    {
        return FormatDateTime(NextBusinessDay(*m_schedule, d, reference));
    }
    QString Hour(double d) { return FormatDateTime(NextBusinessHour(*m_schedule, d, Now())); }
    void SetHolidays(const QStringList &lines) { WriteLines(m_dir->filePath(u"holiday.lst"_s), lines); }

    std::optional<QTemporaryDir> m_dir;
    std::optional<clsSchedule> m_schedule;
};

void TestBusinessCalendar::listFileValues()
{
    const QStringList expected = {u"01-Dec-2026"_s,      u"02-Dec-2026"_s, u"03-Dec-2026"_s,
                                  u"04-Dec-2026"_s,      u"05-Dec-2026"_s, u"06-Dec-2026, still quoted"_s,
                                  u"07-Dec-2026"_s,      u"not a date"_s,  QString(),
                                  u"08-Dec-2026 10:30"_s};
    QCOMPARE(ReadListValues(TestSupport::DataFile(u"calendar/values.lst"_s)), expected);
    QVERIFY(ReadListValues(m_dir->filePath(u"missing.lst"_s)).isEmpty());
}

void TestBusinessCalendar::holidayTable()
{
    m_schedule->AppPath = TestSupport::DataFile(u"calendar"_s);
    m_schedule->Holiday_List = u"values.lst"_s;
    LoadHolidays(*m_schedule);
    QCOMPARE(m_schedule->Holiday_List, m_schedule->AppPath + u"/values.lst"_s);
    QCOMPARE(HolidayCount(), 7); // the values that read as dates
    QVERIFY(IsHoliday(D(2026, 12, 2, 15, 0)));
    QVERIFY(IsHoliday(D(2026, 12, 7)));
    QVERIFY(!IsHoliday(D(2026, 12, 6)));
    QVERIFY(!IsHoliday(D(2026, 12, 8))); // listed with a time, so never equal to a whole day

    // The entry one past a shorter load still counts; the one after it does not.
    m_schedule->AppPath = m_dir->path();
    m_schedule->Holiday_List = u"holiday.lst"_s;
    SetHolidays(ConsecutiveDays(D(2026, 11, 23), 3));
    LoadHolidays(*m_schedule);
    SetHolidays({u"01-Jan-2027"_s});
    LoadHolidays(*m_schedule);
    QCOMPARE(HolidayCount(), 1);
    QVERIFY(IsHoliday(D(2027, 1, 1)));
    QVERIFY(IsHoliday(D(2026, 11, 24)));
    QVERIFY(!IsHoliday(D(2026, 11, 25)));

    m_schedule->Holiday_List = u"gone.lst"_s;
    LoadHolidays(*m_schedule);
    QCOMPARE(HolidayCount(), 0);
    QCOMPARE(m_schedule->Holiday_List, m_dir->filePath(u"gone.lst"_s));
    m_schedule->Holiday_List.clear();
    LoadHolidays(*m_schedule);
    QCOMPARE(HolidayCount(), 0);

    // 101 entries at most.
    m_schedule->Holiday_List = u"holiday.lst"_s;
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
    QCOMPARE(Day(friday, fridayLater), u"23-Nov-2026 08:00"_s);
    QCOMPARE(Day(friday, D(2026, 11, 20)), u"20-Nov-2026 08:00"_s);
    SetHolidays({u"23-Nov-2026"_s});
    QCOMPARE(Day(friday, fridayLater), u"24-Nov-2026 08:00"_s);
    QCOMPARE(Day(D(2026, 1, 1, 9, 0), D(2026, 11, 22, 12, 0)), u"24-Nov-2026 09:00"_s);
    // A later date is kept on a working day and moved off a rest day.
    QCOMPARE(Day(D(2026, 11, 25, 6, 0), fridayLater), u"25-Nov-2026 06:00"_s);
    QCOMPARE(Day(D(2026, 11, 28, 6, 0), fridayLater), u"30-Nov-2026 06:00"_s);

    SetHolidays({u"20-Nov-2026"_s});
    m_schedule->Business_Week = u"Monday-Saturday"_s;
    QCOMPARE(Day(D(2026, 11, 19, 8, 0), D(2026, 11, 19, 8, 0, 30)), u"21-Nov-2026 08:00"_s);
    QCOMPARE(Day(D(2026, 11, 21, 8, 0), D(2026, 11, 21, 9, 0)), u"23-Nov-2026 08:00"_s);
    // An unknown week skips no weekday, holidays still; codes compare exactly.
    for (const char *week : {"Tuesday-Friday", "monday-friday"}) {
        m_schedule->Business_Week = QString::fromLatin1(week);
        QCOMPARE(Day(D(2026, 11, 19, 8, 0), D(2026, 11, 19, 8, 0, 30)), u"21-Nov-2026 08:00"_s);
        QCOMPARE(Day(D(2026, 11, 21, 8, 0), D(2026, 11, 21, 9, 0)), u"22-Nov-2026 08:00"_s);
    }
    m_schedule->Business_Week = u"Monday-Friday"_s;
    SetHolidays({u"01-Jan-2027"_s, u"2027-01-04"_s});
    QCOMPARE(Day(D(2026, 12, 31, 17, 0), D(2026, 12, 31, 17, 0, 1)), u"05-Jan-2027 17:00"_s);
}

void TestBusinessCalendar::nextBusinessHour()
{
    FixedClock clock(QDateTime(QDate(2026, 11, 20), QTime(16, 0, 5)));
    ClockGuard guard(clock);
    SetHolidays({u"23-Nov-2026"_s});
    QCOMPARE(Hour(D(2026, 11, 20, 16, 0)), u"20-Nov-2026 17:00"_s); // the end of the day itself stays
    clock.set(QDateTime(QDate(2026, 11, 20), QTime(17, 0, 5)));
    QCOMPARE(Hour(D(2026, 11, 20, 17, 0)), u"24-Nov-2026 09:00"_s);

    clock.set(QDateTime(QDate(2026, 11, 20), QTime(10, 17)));
    m_schedule->BusinessHour_Schedule = 15;
    m_schedule->BusinessHour_Start = {8, 30};
    QCOMPARE(Hour(D(2026, 11, 20, 10, 0)), u"20-Nov-2026 10:30"_s);
    QCOMPARE(Hour(D(2026, 11, 13, 10, 0)), u"20-Nov-2026 10:30"_s);
    QCOMPARE(Hour(D(2026, 11, 25, 10, 0)), u"25-Nov-2026 08:30"_s); // today's end, even for a later day
    m_schedule->BusinessHour_Schedule = -5;                         // read as 60
    m_schedule->BusinessHour_End = {16, 45};
    QCOMPARE(Hour(D(2026, 11, 20, 15, 45)), u"20-Nov-2026 16:45"_s);
    QCOMPARE(Hour(D(2026, 11, 20, 15, 46)), u"24-Nov-2026 08:30"_s);
}

void TestBusinessCalendar::nextBusinessMonth()
{
    FixedClock clock(QDateTime(QDate(2026, 1, 31), QTime(12, 0)));
    ClockGuard guard(clock);
    const auto month = [&, this](const char *rule, const QDate &today) {
        m_schedule->Business_Month = QString::fromLatin1(rule);
        clock.set(QDateTime(today, QTime(12, 0)));
        return FormatDateTime(NextBusinessMonth(*m_schedule, D(2025, 6, 1, 7, 15)));
    };
    QCOMPARE(month("Last Day", QDate(2026, 1, 31)), u"28-Feb-2026 07:15"_s);
    QCOMPARE(month("Last Day", QDate(2024, 1, 31)), u"29-Feb-2024 07:15"_s);
    QCOMPARE(month("Last Day", QDate(2026, 3, 30)), u"31-Mar-2026 07:15"_s);
    QCOMPARE(month("Last Day", QDate(2026, 12, 31)), u"31-Jan-2027 07:15"_s);
    m_schedule->Today_Adjust = -5; // not applied here
    QCOMPARE(month("Last Day", QDate(2026, 12, 2)), u"31-Dec-2026 07:15"_s);
    for (const char *rule : {"First Day", "", "first day"})
        QCOMPARE(month(rule, QDate(2026, 12, 15)), u"01-Jan-2027 07:15"_s);
    QCOMPARE(month("3", QDate(2026, 11, 10)), u"03-Dec-2026 07:15"_s);
    QCOMPARE(month("0", QDate(2026, 11, 30)), u"30-Nov-2026 07:15"_s);
    QCOMPARE(month("5", QDate(2026, 11, 2)), u"05-Dec-2026 07:15"_s); // a Saturday: no working-day test

    // Fiscal months: measured from the end of the period most recently completed, so on a period's last
    // day "Last Day" three days on still finds that same end.
    m_schedule->Month_Length = 1;
    m_schedule->Period_One = D(2026, 1, 28);
    QCOMPARE(month("First Day", QDate(2026, 5, 10)), u"07-May-2026 07:15"_s);
    QCOMPARE(month("Last Day", QDate(2026, 5, 6)), u"06-May-2026 07:15"_s);
}

QORLO_TEST_MAIN(TestBusinessCalendar)
#include "tst_businesscalendar.moc"
