// Moving an item's next run on by each frequency, and finding the item due first.
#include "calendar/NextRun.h"
#include "store/clsSchedule.h"

#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

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
        m_schedule->SetSchedule(u"Y"_s);
        m_schedule->SetFrequency(QString::fromLatin1(frequency));
        m_schedule->SetFreqTimes(QString::fromLatin1(times));
        m_schedule->SetNextRun(QString::fromLatin1(nextRun));
        m_schedule->SetCustomCalendarFile(QString::fromLatin1(calendar));
        SaveNextTime(*m_schedule, reference);
        return m_schedule->Schedule() + u' ' + m_schedule->NextRun();
    }
    void SetNow(const QDate &date, const QTime &time = QTime(12, 0)) { m_clock.set(QDateTime(date, time)); }

    FixedClock m_clock{QDateTime(QDate(2026, 11, 21), QTime(12, 0))};
    ClockGuard m_guard{m_clock};
    std::optional<QTemporaryDir> m_dir;
    std::optional<clsSchedule> m_schedule;
};

void TestNextRun::init()
{
    SetNow(QDate(2026, 11, 21));
    m_dir.emplace();
    m_schedule.emplace(m_dir->path());
}

void TestNextRun::countingUnits()
{
    // A next run equal to the reference counts as passed; one already ahead stays.
    QCOMPARE(Advance("Hour(s)", "2", "21-Nov-2026 10:00", D(2026, 11, 21, 10, 0)), u"Y 21-Nov-2026 12:00"_s);
    QCOMPARE(Advance("H", "5", "30-Nov-2026 22:00", D(2026, 11, 30, 22, 0)), u"Y 01-Dec-2026 03:00"_s);
    QCOMPARE(Advance("Minute(s)", "5", "21-Nov-2026 10:00", D(2026, 11, 21, 10, 17)),
             u"Y 21-Nov-2026 10:20"_s);
    QCOMPARE(Advance("Minute(s)", "5", "21-Nov-2026 13:00", D(2026, 11, 21, 12, 0)),
             u"Y 21-Nov-2026 13:00"_s);
    // Catching up after a long pause keeps the phase; here the reference falls exactly on a step.
    QCOMPARE(Advance("Minute(s)", "7", "01-Jan-2025 00:00", D(2026, 11, 21, 12, 0)),
             u"Y 21-Nov-2026 12:07"_s);
    QCOMPARE(Advance("D", "3", "27-Feb-2024 09:00", D(2024, 2, 28, 12, 0)), u"Y 01-Mar-2024 09:00"_s);
    QCOMPARE(Advance("Day(s)", "1.5", "31-Dec-2026 08:00", D(2026, 12, 31, 8, 0)), u"Y 02-Jan-2027 08:00"_s);
    QCOMPARE(Advance("Week(s)", "2", "17-Dec-2026 06:00", D(2026, 12, 31, 6, 0)), u"Y 14-Jan-2027 06:00"_s);
    QCOMPARE(Advance("W", "4681", "01-Jan-2026 06:00", D(2026, 1, 1, 6, 0)), u"Y 19-Sep-2115 06:00"_s);
    QCOMPARE(ErrorOf([this] { Advance("W", "4682", "01-Jan-2026 06:00", D(2026, 1, 1)); }),
             int(QorloError::Overflow));
}

void TestNextRun::calendarMonths()
{
    // The clamp compounds: once on the 28th, the item stays there.
    QCOMPARE(Advance("Month(s)", "1", "31-Jan-2026 10:00", D(2026, 2, 1)), u"Y 28-Feb-2026 10:00"_s);
    SaveNextTime(*m_schedule, D(2026, 3, 1));
    QCOMPARE(m_schedule->NextRun(), u"28-Mar-2026 10:00"_s);
    QCOMPARE(Advance("M", "1", "31-Jan-2024 10:00", D(2024, 2, 1)), u"Y 29-Feb-2024 10:00"_s);
    QCOMPARE(Advance("M", "12", "29-Feb-2024 10:00", D(2024, 3, 1)), u"Y 28-Feb-2025 10:00"_s);

    // The end of the month after the current one, at the old time of day, whatever the reference.
    const auto lastDay = [this](const char *frequency, const QDate &today) {
        SetNow(today);
        return Advance(frequency, "1", "05-Jan-2020 18:45", D(2000, 1, 1));
    };
    QCOMPARE(lastDay("Last day of month", QDate(2026, 11, 30)), u"Y 31-Dec-2026 18:45"_s);
    QCOMPARE(lastDay("L", QDate(2026, 11, 1)), u"Y 31-Dec-2026 18:45"_s);
    QCOMPARE(lastDay("L", QDate(2026, 12, 15)), u"Y 31-Jan-2027 18:45"_s);
    QCOMPARE(lastDay("L", QDate(2024, 1, 1)), u"Y 29-Feb-2024 18:45"_s);
}

void TestNextRun::businessRules()
{
    for (const char *frequency : {"B", "Business Day", "Business day"})
        QCOMPARE(Advance(frequency, "1", "20-Nov-2026 08:00", D(2026, 11, 20, 8, 0, 30)),
                 u"Y 23-Nov-2026 08:00"_s);
    // Business Hour steps past the present moment, whatever reference it is given.
    SetNow(QDate(2026, 11, 20), QTime(16, 0, 5));
    QCOMPARE(Advance("Business Hour", "1", "20-Nov-2026 16:00", D(2020, 1, 1)), u"Y 20-Nov-2026 17:00"_s);
    SetNow(QDate(2026, 1, 31));
    m_schedule->Business_Month = u"Last Day"_s;
    QCOMPARE(Advance("Business Month", "9", "02-Jan-2026 06:30", Now()), u"Y 28-Feb-2026 06:30"_s);
    QCOMPARE(BusinessEndToday(*m_schedule), D(2026, 1, 31, 17, 0));
    m_schedule->BusinessHour_End = {18, 45};
    QCOMPARE(BusinessEndToday(*m_schedule), D(2026, 1, 31, 18, 45));
}

void TestNextRun::customCalendar()
{
    WriteLines(m_dir->filePath(u"dates.lst"_s), {u"24-Nov-2026 06:00"_s, u"22-Nov-2026 06:00"_s});
    WriteLines(m_dir->filePath(u"past.lst"_s), {u"01-Jan-2020 10:00"_s});
    const double now = Now();
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now, "dates.lst"),
             u"Y 22-Nov-2026 06:00"_s);
    QCOMPARE(m_schedule->CustomCalendarFile(), m_dir->filePath(u"dates.lst"_s));
    // Run out: parked twenty years ahead and still scheduled. Missing or no file: the item stops.
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now, "past.lst"), u"Y 31-Dec-2046 00:00"_s);
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now, "missing.lst"), u"N "_s);
    QCOMPARE(Advance("Custom Calendar", "1", "01-Nov-2026 06:00", now), u"N "_s);
}

void TestNextRun::itemsThatStop()
{
    const double now = Now();
    // A negative count stops the item too, where the counting loops would never end.
    for (const char *times : {"0", "", "abc", "0.4", "-1"})
        QCOMPARE(Advance("Day(s)", times, "21-Nov-2026 10:00", now), u"N "_s);
    for (const char *frequency : {"Once", "N", "Daily", "hour(s)", "", "Minutes"})
        QCOMPARE(Advance(frequency, "1", "21-Nov-2026 10:00", now), u"N "_s);
    // Without a date in NextRun nothing changes, unless FreqTimes is 0.
    QCOMPARE(Advance("Day(s)", "1", "", now), u"Y "_s);
    QCOMPARE(Advance("Once", "1", "soon", now), u"Y soon"_s);
    QCOMPARE(Advance("Once", "0", "soon", now), u"N "_s);
}

void TestNextRun::nextReportRun()
{
    m_schedule->NextItemIndex = 7;
    QCOMPARE(NextReportRun(*m_schedule), D(2026, 11, 22));
    QCOMPARE(m_schedule->NextItemIndex, qint16(7));

    for (const char *nextRun :
         {"", "junk", "25-Nov-2026 10:00", "22-Nov-2026 09:00", "22-Nov-2026 09:00", "21-Nov-2027 00:00"}) {
        m_schedule->AddNew();
        m_schedule->SetSchedule(u"N"_s); // not looked at
        m_schedule->SetNextRun(QString::fromLatin1(nextRun));
    }
    QCOMPARE(NextReportRun(*m_schedule), D(2026, 11, 22, 9, 0));
    QCOMPARE(m_schedule->NextItemIndex, qint16(3));

    // Dates a year or more ahead are passed over, and the index stays where it was.
    m_schedule->NextItemIndex = 7;
    for (int row : {2, 3, 4}) {
        m_schedule->SetPosition(row);
        m_schedule->SetNextRun(u"01-Jan-2030 00:00"_s);
    }
    QCOMPARE(NextReportRun(*m_schedule), D(2027, 11, 21));
    QCOMPARE(m_schedule->NextItemIndex, qint16(7));
}

QORLO_TEST_MAIN(TestNextRun)
#include "tst_nextrun.moc"
