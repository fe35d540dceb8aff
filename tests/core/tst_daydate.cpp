#include "core/DayDate.h"
#include "TestMain.h"

using namespace Qt::Literals::StringLiterals;

class TestDayDate : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void epochAndKnownDays();
    void formatting();
    void parserAcceptsOnlyTheListedForms();
    void monthArithmeticClamps();
};

void TestDayDate::epochAndKnownDays()
{
    QCOMPARE(DayDate::FromParts(1899, 12, 30), 0.0);
    QCOMPARE(DayDate::FromParts(1900, 1, 1), 2.0);
    QCOMPARE(DayDate::FromParts(2000, 1, 1), 36526.0);
    QCOMPARE(DayDate::FromParts(2024, 2, 29, 18, 0), 45351.75);
    // Before the epoch the time counts away from zero: -1.25 is 29 Dec 1899 06:00.
    QCOMPARE(DayDate::ToDateTime(-1.25), QDateTime(QDate(1899, 12, 29), QTime(6, 0)));
    QCOMPARE(Weekday(0), 7);                                // a Saturday
    QCOMPARE(Weekday(DayDate::FromParts(2026, 11, 22)), 1); // a Sunday
    QCOMPARE(Weekday(DayDate::FromParts(2026, 11, 23, 23, 59)), 2);
}

void TestDayDate::formatting()
{
    QCOMPARE(FormatDate(DayDate::FromParts(2026, 3, 5, 14, 7)), u"05-Mar-2026"_s);
    QCOMPARE(FormatDateTime(DayDate::FromParts(2026, 3, 5, 14, 7)), u"05-Mar-2026 14:07"_s);
    // A time a hair short of the minute is that minute, and one short of midnight the next day.
    QCOMPARE(FormatDateTime(DayDate::FromParts(2026, 3, 5, 10, 30) - 1e-9), u"05-Mar-2026 10:30"_s);
    QCOMPARE(FormatDateTime(DayDate::FromParts(2026, 3, 6) - 1e-9), u"06-Mar-2026 00:00"_s);
    QCOMPARE(FormatDate(0), QString());
    QCOMPARE(FormatDateTime(DayDate::FromParts(1899, 1, 1)), QString());
    QCOMPARE(FormatDate(DayDate::FromParts(1900, 1, 1)), u"01-Jan-1900"_s);
}

void TestDayDate::parserAcceptsOnlyTheListedForms()
{
    const double march5 = DayDate::FromParts(2026, 3, 5);
    QCOMPARE(DayDate::Parse(u"5-Mar-2026"_s), march5);
    QCOMPARE(DayDate::Parse(u" 05-mar-2026 "_s), march5);
    QCOMPARE(DayDate::Parse(u"2026-3-5"_s), march5);
    QCOMPARE(DayDate::Parse(u"05-Mar-2026 7:05"_s), DayDate::FromParts(2026, 3, 5, 7, 5));
    QCOMPARE(DayDate::Parse(u"2026-03-05 23:59:58"_s), DayDate::FromParts(2026, 3, 5, 23, 59, 58));
    QCOMPARE(DayDate::Parse(u"18:00"_s), 0.75);
    QCOMPARE(DayDate::Parse(u"29-Feb-2024"_s), DayDate::FromParts(2024, 2, 29));

    const QStringList refused = {QString(),        u"next week"_s,         u"31-Feb-2026"_s,
                                 u"29-Feb-2025"_s, u"05-Mrz-2026"_s,       u"05/03/2026"_s,
                                 u"2026-13-01"_s,  u"05-Mar-2026 24:00"_s, u"05-Mar-2026 10:60"_s,
                                 u"05-Mar-26"_s,   u"05-Mar-2026T10:00"_s, u"12:00 pm"_s};
    for (const QString &text : refused)
        QVERIFY2(!DayDate::IsDate(text), qPrintable(text));
}

void TestDayDate::monthArithmeticClamps()
{
    const double jan31 = DayDate::FromParts(2024, 1, 31, 8, 30);
    QCOMPARE(FormatDateTime(DayDate::AddMonths(jan31, 1)), u"29-Feb-2024 08:30"_s);
    QCOMPARE(FormatDateTime(DayDate::AddMonths(jan31, 13)), u"28-Feb-2025 08:30"_s);
    QCOMPARE(FormatDate(DayDate::AddMonths(DayDate::FromParts(2026, 3, 31), -1)), u"28-Feb-2026"_s);
    QCOMPARE(FormatDate(DayDate::AddMonths(DayDate::FromParts(2026, 12, 15), 1)), u"15-Jan-2027"_s);
    QCOMPARE(FormatDate(DayDate::AddYears(DayDate::FromParts(2024, 2, 29), 1)), u"28-Feb-2025"_s);
}

QORLO_TEST_MAIN(TestDayDate)
#include "tst_daydate.moc"
