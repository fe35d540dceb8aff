// An item's own calendar file and the day names in it.
#include "calendar/CustomCalendar.h"
#include "store/clsSchedule.h"

#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

using namespace DynDates;

class TestCustomCalendar : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void expandDayName();
    void nextCustomCalendarDate();

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
        return FormatDateTime(ExpandDayName(QString::fromLatin1(text), reference));
    };
    // Today's weekday is today, even when its time has gone by.
    QCOMPARE(expand("Monday 08:30", D(2026, 11, 23, 10, 0)), u"23-Nov-2026 08:30"_s);
    QCOMPARE(expand("friday", D(2026, 11, 21, 12, 0)), u"27-Nov-2026 00:00"_s);
    QCOMPARE(expand("SATURDAY 18:00", D(2026, 11, 21, 12, 0)), u"21-Nov-2026 18:00"_s);
    QCOMPARE(expand("Sunday", D(2026, 11, 21, 12, 0)), u"22-Nov-2026 00:00"_s);
    QCOMPARE(expand("Friday 6:00", D(2026, 12, 26)), u"01-Jan-2027 06:00"_s);
    QCOMPARE(expand("Thursday", D(2024, 2, 24)), u"29-Feb-2024 00:00"_s);
    for (const char *text : {"next tuesday", "Monday 25:00", "funday", ""})
        QVERIFY2(ExpandDayName(QString::fromLatin1(text), D(2026, 11, 21)) == D(1900, 1, 1), text);
}

void TestCustomCalendar::nextCustomCalendarDate()
{
    FixedClock clock(QDateTime(QDate(2026, 11, 21), QTime(12, 0)));
    ClockGuard guard(clock);
    const double reference = Now();
    QString path;
    QCOMPARE(NextCustomCalendarDate(m_schedule, path, reference), 0.0);
    path = u"none.lst"_s;
    QCOMPARE(NextCustomCalendarDate(m_schedule, path, reference), D(1900, 1, 1));
    QCOMPARE(path, m_dir.filePath(u"none.lst"_s));

    WriteLines(m_dir.filePath(u"mixed.lst"_s),
               {u"30-Nov-2026 10:00"_s, u"25-Nov-2026 09:00, 25-Nov-2026 09:00"_s, u"\"Monday 07:00\""_s,
                u"21-Nov-2026 12:00"_s, u"01-Jan-1900 10:00"_s, u"10:00"_s, u"junk"_s, u"01-Jan-2020"_s});
    QCOMPARE(Next(u"mixed.lst"_s, reference), u"23-Nov-2026 07:00"_s);
    // From Monday 07:00 itself its own line offers nothing; the repeated date gives one run.
    QCOMPARE(Next(u"mixed.lst"_s, D(2026, 11, 23, 7, 0)), u"25-Nov-2026 09:00"_s);
    // A day name moves on with the reference: next Monday 07:00 comes before 30-Nov 10:00.
    QCOMPARE(Next(m_dir.filePath(u"mixed.lst"_s), D(2026, 11, 25, 9, 0)), u"30-Nov-2026 07:00"_s);

    // A calendar that has run out parks twenty years ahead; one without usable entries is unusable.
    WriteLines(m_dir.filePath(u"past.lst"_s), {u"01-Jan-2020 10:00"_s});
    QCOMPARE(Next(u"past.lst"_s, reference), u"31-Dec-2046 00:00"_s);
    WriteLines(m_dir.filePath(u"junk.lst"_s), {u"junk"_s, u"1-Jan-1900"_s});
    QCOMPARE(Next(u"junk.lst"_s, reference), u"01-Jan-1900 00:00"_s);

    // 3001 entries at most.
    WriteLines(m_dir.filePath(u"big.lst"_s), ConsecutiveDays(D(2030, 1, 1), 3001));
    QCOMPARE(Next(u"big.lst"_s, D(2031, 1, 1)), u"02-Jan-2031 00:00"_s);
    WriteLines(m_dir.filePath(u"big.lst"_s), ConsecutiveDays(D(2030, 1, 1), 3002));
    QCOMPARE(ErrorOf([&] { Next(u"big.lst"_s, D(2031, 1, 1)); }), int(QorloError::OutOfRange));
}

QORLO_TEST_MAIN(TestCustomCalendar)
#include "tst_customcalendar.moc"
