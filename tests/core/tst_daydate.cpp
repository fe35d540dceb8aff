#include "core/DayDate.h"
#include "TestMain.h"

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
    QCOMPARE(FormatDate(DayDate::FromParts(2026, 3, 5, 14, 7)), QStringLiteral("05-Mar-2026"));
    QCOMPARE(FormatDateTime(DayDate::FromParts(2026, 3, 5, 14, 7)), QStringLiteral("05-Mar-2026 14:07"));
    // A time a hair short of the minute is that minute, and one short of midnight the next day.
    QCOMPARE(FormatDateTime(DayDate::FromParts(2026, 3, 5, 10, 30) - 1e-9),
             QStringLiteral("05-Mar-2026 10:30"));
    QCOMPARE(FormatDateTime(DayDate::FromParts(2026, 3, 6) - 1e-9), QStringLiteral("06-Mar-2026 00:00"));
    QCOMPARE(FormatDate(0), QString());
    QCOMPARE(FormatDateTime(DayDate::FromParts(1899, 1, 1)), QString());
    QCOMPARE(FormatDate(DayDate::FromParts(1900, 1, 1)), QStringLiteral("01-Jan-1900"));
}

void TestDayDate::parserAcceptsOnlyTheListedForms()
{
    const double march5 = DayDate::FromParts(2026, 3, 5);
    QCOMPARE(DayDate::Parse(QStringLiteral("5-Mar-2026")), march5);
    QCOMPARE(DayDate::Parse(QStringLiteral(" 05-mar-2026 ")), march5);
    QCOMPARE(DayDate::Parse(QStringLiteral("2026-3-5")), march5);
    QCOMPARE(DayDate::Parse(QStringLiteral("05-Mar-2026 7:05")), DayDate::FromParts(2026, 3, 5, 7, 5));
    QCOMPARE(DayDate::Parse(QStringLiteral("2026-03-05 23:59:58")),
             DayDate::FromParts(2026, 3, 5, 23, 59, 58));
    QCOMPARE(DayDate::Parse(QStringLiteral("18:00")), 0.75);
    QCOMPARE(DayDate::Parse(QStringLiteral("29-Feb-2024")), DayDate::FromParts(2024, 2, 29));

    const QStringList refused = {QString(),
                                 QStringLiteral("next week"),
                                 QStringLiteral("31-Feb-2026"),
                                 QStringLiteral("29-Feb-2025"),
                                 QStringLiteral("05-Mrz-2026"),
                                 QStringLiteral("05/03/2026"),
                                 QStringLiteral("2026-13-01"),
                                 QStringLiteral("05-Mar-2026 24:00"),
                                 QStringLiteral("05-Mar-2026 10:60"),
                                 QStringLiteral("05-Mar-26"),
                                 QStringLiteral("05-Mar-2026T10:00"),
                                 QStringLiteral("12:00 pm")};
    for (const QString &text : refused)
        QVERIFY2(!DayDate::IsDate(text), qPrintable(text));
}

void TestDayDate::monthArithmeticClamps()
{
    const double jan31 = DayDate::FromParts(2024, 1, 31, 8, 30);
    QCOMPARE(FormatDateTime(DayDate::AddMonths(jan31, 1)), QStringLiteral("29-Feb-2024 08:30"));
    QCOMPARE(FormatDateTime(DayDate::AddMonths(jan31, 13)), QStringLiteral("28-Feb-2025 08:30"));
    QCOMPARE(FormatDate(DayDate::AddMonths(DayDate::FromParts(2026, 3, 31), -1)),
             QStringLiteral("28-Feb-2026"));
    QCOMPARE(FormatDate(DayDate::AddMonths(DayDate::FromParts(2026, 12, 15), 1)),
             QStringLiteral("15-Jan-2027"));
    QCOMPARE(FormatDate(DayDate::AddYears(DayDate::FromParts(2024, 2, 29), 1)),
             QStringLiteral("28-Feb-2025"));
}

QORLO_TEST_MAIN(TestDayDate)
#include "tst_daydate.moc"
