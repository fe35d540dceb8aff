// Moving an item's next run on by each frequency, and finding the item due first.
#include "calendar/NextRun.h"
#include "store/clsSchedule.h"

#include "CalendarTestSupport.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

class TestNextRun : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void countingUnits();
    void calendarMonths();
    void businessRules();
    void customCalendar();
    void itemsThatStop();
    void nextReportRun();

private:
    // A new scheduled item through SaveNextTime: "Y" or "N", a blank and its NextRun.
    QString Advance(const char *frequency, const char *times, const char *nextRun, double reference,
                    const char *calendar = "")
    {
        m_schedule->AddNew();
        m_schedule->SetSchedule(L("Y"));
        m_schedule->SetFrequency(L(frequency));
        m_schedule->SetFreqTimes(L(times));
        m_schedule->SetNextRun(L(nextRun));
        m_schedule->SetCustomCalendarFile(L(calendar));
        SaveNextTime(*m_schedule, reference);
        return m_schedule->Schedule() + QLatin1Char(' ') + m_schedule->NextRun();
    }
    void SetNow(const QDate &date, const QTime &time = QTime(12, 0)) { m_clock.set(QDateTime(date, time)); }

    FixedClock m_clock{QDateTime(QDate(2026, 11, 21), QTime(12, 0))};
    ClockGuard m_guard{m_clock};
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<clsSchedule> m_schedule;
};

void TestNextRun::init()
{
    SetNow(QDate(2026, 11, 21));
    m_dir = std::make_unique<QTemporaryDir>();
    m_schedule = std::make_unique<clsSchedule>(m_dir->path());
}

void TestNextRun::countingUnits()
{
    // A next run equal to the reference counts as passed; one already ahead stays.
    QCOMPARE(Advance("Hour(s)", "2", "21-Nov-2026 10:00", D(2026, 11, 21, 10, 0)), L("Y 21-Nov-2026 12:00"));
    QCOMPARE(Advance("H", "5", "30-Nov-2026 22:00", D(2026, 11, 30, 22, 0)), L("Y 01-Dec-2026 03:00"));
    QCOMPARE(Advance("Minute(s)", "5", "21-Nov-2026 10:00", D(2026, 11, 21, 10, 17)),
             L("Y 21-Nov-2026 10:20"));
    QCOMPARE(Advance("Minute(s)", "5", "21-Nov-2026 13:00", D(2026, 11, 21, 12, 0)),
             L("Y 21-Nov-2026 13:00"));
    // Catching up after a long pause keeps the phase; here the reference falls exactly on a step.
    QCOMPARE(Advance("Minute(s)", "7", "01-Jan-2025 00:00", D(2026, 11, 21, 12, 0)),
             L("Y 21-Nov-2026 12:07"));
    QCOMPARE(Advance("D", "3", "27-Feb-2024 09:00", D(2024, 2, 28, 12, 0)), L("Y 01-Mar-2024 09:00"));
    QCOMPARE(Advance("Day(s)", "1.5", "31-Dec-2026 08:00", D(2026, 12, 31, 8, 0)), L("Y 02-Jan-2027 08:00"));
    QCOMPARE(Advance("Week(s)", "2", "17-Dec-2026 06:00", D(2026, 12, 31, 6, 0)), L("Y 14-Jan-2027 06:00"));
    QCOMPARE(Advance("W", "4681", "01-Jan-2026 06:00", D(2026, 1, 1, 6, 0)), L("Y 19-Sep-2115 06:00"));
    QCOMPARE(ErrorOf([this] { Advance("W", "4682", "01-Jan-2026 06:00", D(2026, 1, 1)); }),
             int(QorloError::Overflow));
}

void TestNextRun::calendarMonths()
{
    // The clamp compounds: once on the 28th, the item stays there.
    QCOMPARE(Advance("Month(s)", "1", "31-Jan-2026 10:00", D(2026, 2, 1)), L("Y 28-Feb-2026 10:00"));
    SaveNextTime(*m_schedule, D(2026, 3, 1));
    QCOMPARE(m_schedule->NextRun(), L("28-Mar-2026 10:00"));
    QCOMPARE(Advance("M", "1", "31-Jan-2024 10:00", D(2024, 2, 1)), L("Y 29-Feb-2024 10:00"));
    QCOMPARE(Advance("M", "12", "29-Feb-2024 10:00", D(2024, 3, 1)), L("Y 28-Feb-2025 10:00"));

    // The end of the month after the current one, at the old time of day, whatever the reference.
    const auto lastDay = [this](const char *frequency, const QDate &today) {
        SetNow(today);
        return Advance(frequency, "1", "05-Jan-2020 18:45", D(2000, 1, 1));
    };
    QCOMPARE(lastDay("Last day of month", QDate(2026, 11, 30)), L("Y 31-Dec-2026 18:45"));
    QCOMPARE(lastDay("L", QDate(2026, 11, 1)), L("Y 31-Dec-2026 18:45"));
    QCOMPARE(lastDay("L", QDate(2026, 12, 15)), L("Y 31-Jan-2027 18:45"));
    QCOMPARE(lastDay("L", QDate(2024, 1, 1)), L("Y 29-Feb-2024 18:45"));
}

void TestNextRun::businessRules()
{
    for (const char *frequency : {"B", "Business Day", "Business day"})
        QCOMPARE(Advance(frequency, "1", "20-Nov-2026 08:00", D(2026, 11, 20, 8, 0, 30)),
                 L("Y 23-Nov-2026 08:00"));
    // Business Hour steps past the present moment, whatever reference it is given.
    SetNow(QDate(2026, 11, 20), QTime(16, 0, 5));
    QCOMPARE(Advance("Business Hour", "1", "20-Nov-2026 16:00", D(2020, 1, 1)), L("Y 20-Nov-2026 17:00"));
    SetNow(QDate(2026, 1, 31));
    m_schedule->Business_Month = L("Last Day");
    QCOMPARE(Advance("Business Month", "9", "02-Jan-2026 06:30", Now()), L("Y 28-Feb-2026 06:30"));
    QCOMPARE(BusinessEndToday(*m_schedule), D(2026, 1, 31, 17, 0));
    m_schedule->BusinessHour_End = {18, 45};
    QCOMPARE(BusinessEndToday(*m_schedule), D(2026, 1, 31, 18, 45));
}

void TestNextRun::customCalendar()
{
    WriteListFile(m_dir->filePath(L("dates.lst")), {L("24-Nov-2026 06:00"), L("22-Nov-2026 06:00")});
    WriteListFile(m_dir->filePath(L("past.lst")), {L("01-Jan-2020 10:00")});
    const double now = Now();
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now, "dates.lst"),
             L("Y 22-Nov-2026 06:00"));
    QCOMPARE(m_schedule->CustomCalendarFile(), m_dir->filePath(L("dates.lst")));
    // Run out: parked twenty years ahead and still scheduled. Missing or no file: the item stops.
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now, "past.lst"), L("Y 31-Dec-2046 00:00"));
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now, "missing.lst"), L("N "));
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now), L("N "));
}

void TestNextRun::itemsThatStop()
{
    const double now = Now();
    // A negative count stops the item too, where the counting loops would never end.
    for (const char *times : {"0", "", "abc", "0.4", "-1"})
        QCOMPARE(Advance("Day(s)", times, "21-Nov-2026 10:00", now), L("N "));
    for (const char *frequency : {"Once", "N", "Daily", "hour(s)", "", "Minutes"})
        QCOMPARE(Advance(frequency, "1", "21-Nov-2026 10:00", now), L("N "));
    // Without a date in NextRun nothing changes, unless FreqTimes is 0.
    QCOMPARE(Advance("Day(s)", "1", "", now), L("Y "));
    QCOMPARE(Advance("Once", "1", "soon", now), L("Y soon"));
    QCOMPARE(Advance("Once", "0", "soon", now), L("N "));
}

void TestNextRun::nextReportRun()
{
    m_schedule->NextItemIndex = 7;
    QCOMPARE(NextReportRun(*m_schedule), D(2026, 11, 22));
    QCOMPARE(m_schedule->NextItemIndex, qint16(7));

    for (const char *nextRun :
         {"", "junk", "25-Nov-2026 10:00", "22-Nov-2026 09:00", "22-Nov-2026 09:00", "21-Nov-2027 00:00"}) {
        m_schedule->AddNew();
        m_schedule->SetSchedule(L("N")); // not looked at
        m_schedule->SetNextRun(L(nextRun));
    }
    QCOMPARE(NextReportRun(*m_schedule), D(2026, 11, 22, 9, 0));
    QCOMPARE(m_schedule->NextItemIndex, qint16(3));

    // Dates a year or more ahead are passed over, and the index stays where it was.
    m_schedule->NextItemIndex = 7;
    for (int row : {2, 3, 4}) {
        m_schedule->SetPosition(row);
        m_schedule->SetNextRun(L("01-Jan-2030 00:00"));
    }
    QCOMPARE(NextReportRun(*m_schedule), D(2027, 11, 21));
    QCOMPARE(m_schedule->NextItemIndex, qint16(7));
}

QORLO_TEST_MAIN(TestNextRun)
#include "tst_nextrun.moc"
