// An item's own calendar file and the day names in it.
#include "calendar/CustomCalendar.h"
#include "store/clsSchedule.h"

#include "CalendarTestSupport.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace DynDates;

class TestCustomCalendar : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void expandDayName();
    void nextCustomCalendarDate();
    void calendarCapacity();

private:
    QString Next(const QString &name, double reference)
    {
        QString path = name;
        return FormatDateTime(NextCustomCalendarDate(m_schedule, path, reference));
    }

    QTemporaryDir m_dir;
    clsSchedule m_schedule{m_dir.path()};
};

void TestCustomCalendar::expandDayName()
{
    const auto expand = [](const char *text, double reference) {
        return FormatDateTime(ExpandDayName(L(text), reference));
    };
    // Today's weekday is today, even when its time has gone by.
    QCOMPARE(expand("Monday 08:30", D(2026, 11, 23, 10, 0)), L("23-Nov-2026 08:30"));
    QCOMPARE(expand("friday", D(2026, 11, 21, 12, 0)), L("27-Nov-2026 00:00"));
    QCOMPARE(expand("SATURDAY 18:00", D(2026, 11, 21, 12, 0)), L("21-Nov-2026 18:00"));
    QCOMPARE(expand("Sunday", D(2026, 11, 21, 12, 0)), L("22-Nov-2026 00:00"));
    QCOMPARE(expand("Friday 6:00", D(2026, 12, 26)), L("01-Jan-2027 06:00"));
    QCOMPARE(expand("Thursday", D(2024, 2, 24)), L("29-Feb-2024 00:00"));
    for (const char *text : {"next tuesday", "Monday 25:00", "funday", ""})
        QVERIFY2(ExpandDayName(L(text), D(2026, 11, 21)) == D(1900, 1, 1), text);
}

void TestCustomCalendar::nextCustomCalendarDate()
{
    FixedClock clock(QDateTime(QDate(2026, 11, 21), QTime(12, 0)));
    ClockGuard guard(clock);
    const double reference = Now();
    QString path;
    QCOMPARE(NextCustomCalendarDate(m_schedule, path, reference), 0.0);
    path = L("none.lst");
    QCOMPARE(NextCustomCalendarDate(m_schedule, path, reference), D(1900, 1, 1));
    QCOMPARE(path, m_dir.filePath(L("none.lst")));

    WriteListFile(m_dir.filePath(L("mixed.lst")),
                  {L("30-Nov-2026 10:00"), L("25-Nov-2026 09:00, 25-Nov-2026 09:00"), L("\"Monday 07:00\""),
                   L("21-Nov-2026 12:00"), L("01-Jan-1900 10:00"), L("10:00"), L("junk"), L("01-Jan-2020")});
    QCOMPARE(Next(L("mixed.lst"), reference), L("23-Nov-2026 07:00"));
    // From Monday 07:00 itself its own line offers nothing; the repeated date gives one run.
    QCOMPARE(Next(L("mixed.lst"), D(2026, 11, 23, 7, 0)), L("25-Nov-2026 09:00"));
    // A day name moves on with the reference: next Monday 07:00 comes before 30-Nov 10:00.
    QCOMPARE(Next(m_dir.filePath(L("mixed.lst")), D(2026, 11, 25, 9, 0)), L("30-Nov-2026 07:00"));

    // A calendar that has run out parks twenty years ahead; one without usable entries is unusable.
    WriteListFile(m_dir.filePath(L("past.lst")), {L("01-Jan-2020 10:00")});
    QCOMPARE(Next(L("past.lst"), reference), L("31-Dec-2046 00:00"));
    WriteListFile(m_dir.filePath(L("junk.lst")), {L("junk"), L("1-Jan-1900")});
    QCOMPARE(Next(L("junk.lst"), reference), L("01-Jan-1900 00:00"));
}

void TestCustomCalendar::calendarCapacity()
{
    const QString path = m_dir.filePath(L("big.lst"));
    WriteListFile(path, ConsecutiveDays(D(2030, 1, 1), CustomCalendarCapacity));
    QCOMPARE(Next(path, D(2031, 1, 1)), L("02-Jan-2031 00:00"));
    WriteListFile(path, ConsecutiveDays(D(2030, 1, 1), CustomCalendarCapacity + 1));
    QCOMPARE(ErrorOf([&] { Next(path, D(2031, 1, 1)); }), int(QorloError::OutOfRange));
}

QORLO_TEST_MAIN(TestCustomCalendar)
#include "tst_customcalendar.moc"
