// Advance: moving the schedule's run times past a chosen moment, and the Advance dialog's answers.
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "calendar/AdvanceSchedule.h"
#include "store/clsSchedule.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// NextRun, Frequency, FreqTimes: overdue daily, weekly ahead, undated, not a date, overdue once-only,
// once-only ahead, last day of month ahead, undated.
const char *const kItems[][3] = {
    {"10-Mar-2026 08:00", "D", "1"},
    {"20-Mar-2026 08:00", "W", "1"},
    {"", "D", "1"},
    {"next week", "D", "1"},
    {"15-Mar-2026 09:00", "D", "0"},
    {"18-Mar-2026 09:00", "D", "0"},
    {"20-Mar-2026 06:00", "L", "1"},
    {"", "W", "1"},
};

void Fill(clsSchedule &schedule)
{
    for (const auto &item : kItems) {
        schedule.AddNew();
        schedule.SetSchedule(u"Y"_s);
        schedule.SetNextRun(QString::fromLatin1(item[0]));
        schedule.SetFrequency(QString::fromLatin1(item[1]));
        schedule.SetFreqTimes(QString::fromLatin1(item[2]));
    }
}

QString Column(const clsSchedule &schedule, int column)
{
    QStringList cells;
    for (int row = 0; row < schedule.Count(); ++row)
        cells.append(schedule.Cell(row, column));
    return cells.join(u'|');
}

} // namespace

class TestAdvance : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void countAndApply();
    void dialogAnswers();

private:
    FixedClock m_clock{QDateTime(QDate(2026, 3, 14), QTime(10, 30))};
    ClockGuard m_guard{m_clock};
};

void TestAdvance::countAndApply()
{
    QTemporaryDir app;
    clsSchedule schedule(app.path());
    Fill(schedule);
    const QString before = Column(schedule, clsSchedule::colNextRun);
    schedule.SetPosition(1);
    int count = 99;
    AdvanceSchedule(schedule, D(2026, 3, 16, 12, 0), false, count);
    QCOMPARE(count, 2);
    QCOMPARE(Column(schedule, clsSchedule::colNextRun), before);
    QCOMPARE(schedule.Position(), 1);

    // Every dated row is stepped: once-only rows lose their run, the last-day rule steps from today.
    AdvanceSchedule(schedule, D(2026, 3, 16, 12, 0), true, count);
    QCOMPARE(count, 2);
    QCOMPARE(Column(schedule, clsSchedule::colNextRun),
             u"17-Mar-2026 08:00|20-Mar-2026 08:00||next week|||30-Apr-2026 06:00|"_s);
    QCOMPARE(Column(schedule, clsSchedule::colSchedule), u"Y|Y|Y|Y|N|N|Y|Y"_s);
    QCOMPARE(schedule.Position(), 6); // the last row treated

    // A moment in the past counts nothing and moves only what steps from the present moment.
    clsSchedule past(app.path());
    Fill(past);
    AdvanceSchedule(past, D(2026, 3, 1), true, count);
    QCOMPARE(count, 0);
    QCOMPARE(Column(past, clsSchedule::colNextRun),
             u"10-Mar-2026 08:00|20-Mar-2026 08:00||next week|||30-Apr-2026 06:00|"_s);
}

void TestAdvance::dialogAnswers()
{
    QTemporaryDir app;
    clsSchedule schedule(app.path());
    Fill(schedule);
    const double moment = D(2026, 3, 16, 12, 0);
    QCOMPARE(AnalyseAdvance(schedule, moment),
             u"2 items in schedule will be advanced when you click the process button"_s);
    QVERIFY(!QFile::exists(app.filePath(u"Qorlo.XML"_s)));
    QCOMPARE(ProcessAdvance(schedule, moment),
             u"2 items in schedule have now been advanced to process after 16-Mar-2026 12:00"_s);
    QVERIFY(ReadFile(app.filePath(u"Qorlo.XML"_s)).contains("<NextRun>17-Mar-2026 08:00</NextRun>"));
    QCOMPARE(AnalyseAdvance(schedule, moment),
             u"0 items in schedule will be advanced when you click the process button"_s);
}

QORLO_TEST_MAIN(TestAdvance)
#include "tst_advance.moc"
