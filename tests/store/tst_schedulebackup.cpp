// Schedule backups, their purge, the start and stop timers and the backup and timer dialogs' logic.
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "store/ScheduleBackup.h"
#include "store/ScheduleBackupDialogs.h"
#include "store/clsSchedule.h"

#include <QDir>
#include <QTemporaryDir>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

const QDateTime kNow(QDate(2026, 3, 14), QTime(10, 30));

} // namespace

class TestScheduleBackup : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_clock.set(kNow);
        m_guard.emplace(m_clock);
    }
    void cleanup() { m_guard.reset(); }
    void backupStep();
    void setNextBackup();
    void purge();
    void purgeUndeletable();
    void timers();
    void dialogs();

private:
    FixedClock m_clock{kNow};
    std::optional<ClockGuard> m_guard;
};

void TestScheduleBackup::backupStep()
{
    QTemporaryDir app;
    QVERIFY(QDir(app.path()).mkdir(u"Backup"_s));
    WriteFile(app.filePath(u"Backup/Qorlo20260201.xml"_s), {});
    clsSchedule schedule(app.path()); // BackupDate starts a day ago: due at once
    schedule.AddNew();
    schedule.SetName(u"Sales"_s);
    const QString backup = app.filePath(u"Backup/Qorlo20260314.xml"_s);
    int pages = 0;
    QVERIFY(BackupIfDue(schedule, [&] {
        // The page follows the new BackupDate and comes before the schedule file.
        QCOMPARE(schedule.BackupDate, D(2026, 3, 15, 10, 30));
        QVERIFY(!QFile::exists(schedule.FileName));
        ++pages;
    }));
    QCOMPARE(pages, 1);
    QCOMPARE(schedule.BackupPrevious, u"14-Mar-2026 10:30"_s);
    QCOMPARE(schedule.BackupPreviousFile, backup);
    // The copy holds the values from before the step.
    QVERIFY(ReadFile(backup).contains("<BackupDate>13-Mar-2026 10:30</BackupDate>\r\n<BackupFrequency>Daily"
                                      "</BackupFrequency>\r\n<BackupPrevious></BackupPrevious>"));
    QVERIFY(ReadFile(schedule.FileName).contains("<BackupDate>15-Mar-2026 10:30</BackupDate>"));
    QVERIFY(!BackupIfDue(schedule, {}));

    // Later the same day the one file is replaced; the old backup has been purged.
    m_clock.set(kNow.addSecs(3600));
    schedule.BackupDate = Now();
    schedule.BackupFrequency = u"Never"_s; // still a backup, then 30 days
    schedule.SetName(u"Revenue"_s);
    QVERIFY(BackupIfDue(schedule, {}));
    QCOMPARE(schedule.BackupDate, D(2026, 4, 13, 11, 30));
    QCOMPARE(FileNames(app.filePath(u"Backup"_s)), QStringList{u"Qorlo20260314.xml"_s});
    QVERIFY(ReadFile(backup).contains("Revenue"));

    // A schedule that lost its items (a file that could not be read) never replaces the day's backup
    // that holds them; an empty backup may be replaced.
    const QByteArray withItems = ReadFile(backup);
    clsSchedule empty(app.path());
    empty.BackupDate = Now();
    QVERIFY(BackupIfDue(empty, {}));
    QCOMPARE(ReadFile(backup), withItems);
    QVERIFY(ReadFile(empty.FileName).contains("<Report_Schedule>\r\n</Report_Schedule>"));
    empty.Save(backup);
    const QByteArray emptyBackup = ReadFile(backup);
    m_clock.set(kNow.addSecs(7200));
    empty.BackupDate = Now();
    QVERIFY(BackupIfDue(empty, {}));
    QVERIFY(ReadFile(backup) != emptyBackup);
    m_clock.set(kNow.addSecs(3600));

    // Without a Backup folder the copy fails silently and BackupDate moves on all the same.
    QVERIFY(QDir(app.filePath(u"Backup"_s)).removeRecursively());
    schedule.BackupDate = Now();
    QVERIFY(BackupIfDue(schedule, {}));
    QCOMPARE(schedule.BackupDate, D(2026, 4, 13, 11, 30));
}

void TestScheduleBackup::setNextBackup()
{
    clsSchedule schedule(QDir::tempPath());
    const auto next = [&schedule](const char *frequency, double from) {
        schedule.BackupFrequency = QLatin1String(frequency);
        schedule.BackupDate = from;
        SetNextBackup(schedule);
        return schedule.BackupDate;
    };
    QCOMPARE(next("Daily", D(2026, 3, 10, 12, 0)), D(2026, 3, 14, 12, 0));
    QCOMPARE(next("Daily", D(2026, 3, 10, 10, 30)), D(2026, 3, 15, 10, 30)); // must lie after the present
    QCOMPARE(next("Daily", D(2026, 3, 20, 8, 0)), D(2026, 3, 21, 8, 0));     // at least one step
    QCOMPARE(next("Weekly", D(2026, 2, 20, 9, 0)), D(2026, 3, 20, 9, 0));
    QCOMPARE(next("Never", D(2026, 1, 1, 6, 0)), D(2026, 4, 1, 6, 0));
    QCOMPARE(next("Monthly", D(2026, 1, 31, 8, 0)), D(2026, 3, 28, 8, 0)); // the February clamp carries on
    QCOMPARE(next("Fortnightly", D(2026, 3, 10, 8, 0)), D(2026, 3, 15, 8, 0));
}

void TestScheduleBackup::purge()
{
    const auto date = [](const char *name) { return FileNameDate(QLatin1String(name)); };
    QCOMPARE(date("Other20260214.txt"), D(2026, 2, 14));
    QCOMPARE(date("Qorlo20260231.xml"), D(2026, 3, 3)); // a day past the month's end runs on
    for (const char *today : {"Qorlo20240601.xml", "Qorlo20270101.xml", "Qorlo20261301.xml",
                              "Qorlo20260132.xml", "Qorlo2026011x.xml", "Qorlo202601011.xml"})
        QCOMPARE(date(today), D(2026, 3, 14));

    QTemporaryDir folder;
    const QString pattern = folder.path() + u"/Qorlo*.xml"_s;
    // Kept: no match, the year before last, exactly 30 days old, no month 15, not 17 characters.
    QStringList kept{u"Other20250101.xml"_s, u"Qorlo20240101.xml"_s, u"Qorlo20250101.txt"_s,
                     u"Qorlo20260212.xml"_s, u"Qorlo20261501.xml"_s, u"Qorlo2025.xml"_s};
    kept.sort();
    for (const QString &name : kept + QStringList{u"Qorlo20260211.xml"_s, u"Qorlo20250101.XML"_s})
        WriteFile(folder.filePath(name), {});
    PurgeOldFiles(pattern);
    QCOMPARE(FileNames(folder.path()), kept);

    // 91 names a pass; the rest wait for the next one.
    const QString many = folder.filePath(u"many"_s);
    QVERIFY(QDir(folder.path()).mkdir(u"many"_s));
    for (int day = 0; day < 100; ++day)
        WriteFile(many + DayDate::ToDate(D(2025, 6, 1) + day).toString(u"'/Qorlo'yyyyMMdd'.xml'"_s), {});
    PurgeOldFiles(many + u"/Qorlo*.xml"_s);
    QCOMPARE(FileNames(many).size(), 9);
    PurgeOldFiles(many + u"/Qorlo*.xml"_s);
    QCOMPARE(FileNames(many).size(), 0);
}

void TestScheduleBackup::purgeUndeletable()
{
    if (geteuid() == 0)
        QSKIP("root deletes in a read-only folder too");
    QTemporaryDir folder;
    const QString pattern = folder.path() + u"/Qorlo*.xml"_s;
    WriteFile(folder.filePath(u"Qorlo20250101.xml"_s), {});
    QVERIFY(QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner));
    const int error = ErrorOf([&] { PurgeOldFiles(pattern); });
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(error, int(QorloError::PermissionDenied));
}

void TestScheduleBackup::timers()
{
    QTemporaryDir app;
    clsSchedule schedule(app.path());
    QCOMPARE(StartTimedt(schedule), Now() - 1);
    QCOMPARE(StopTimedt(schedule), Now() + 365);
    schedule.StartTime = u"soon"_s;
    schedule.StopTime = u"31-Feb-2026 10:00"_s;
    QCOMPARE(StartTimedt(schedule), Now() - 1);
    QCOMPARE(StopTimedt(schedule), Now() + 365);

    schedule.StartTime = u"14-Mar-2026 10:35:00"_s;
    QCOMPARE(ApplyStartTimer(schedule), TimerAction::Hold);
    QVERIFY(!schedule.Active);
    m_clock.set(kNow.addSecs(300));
    QCOMPARE(ApplyStartTimer(schedule), TimerAction::Started);
    QVERIFY(schedule.Active && schedule.StartTime.isEmpty());
    QVERIFY(ReadFile(schedule.FileName).contains("<Schedule_State>Active</Schedule_State>"));
    QCOMPARE(ApplyStartTimer(schedule), TimerAction::None);

    QCOMPARE(ApplyStopTimer(schedule), TimerAction::None); // no date: waits a year, text kept
    QCOMPARE(schedule.StopTime, u"31-Feb-2026 10:00"_s);
    schedule.StopTime = u"2026-03-14 10:35"_s;
    QCOMPARE(ApplyStopTimer(schedule), TimerAction::Stopped);
    QVERIFY(!schedule.Active && schedule.StopTime.isEmpty());
    QVERIFY(ReadFile(schedule.FileName).contains("<Schedule_State>Stopped</Schedule_State>"));
}

void TestScheduleBackup::dialogs()
{
    QTemporaryDir app;
    clsSchedule schedule(app.path());
    BackupSettings backup = LoadBackupSettings(schedule);
    QCOMPARE(backup.Next.Moment(), D(2026, 3, 13, 10, 30));
    QCOMPARE(backup.PurgeDays, u"30"_s);
    backup = {u"Weekly"_s, {D(2026, 3, 20), 23, 5}, {}, {}, u"x45"_s};
    QCOMPARE(ErrorOf([&] { SaveBackupSettings(schedule, backup); }), int(QorloError::TypeMismatch));
    backup.PurgeDays = u"40000"_s;
    QCOMPARE(ErrorOf([&] { SaveBackupSettings(schedule, backup); }), int(QorloError::Overflow));
    QCOMPARE(schedule.BackupFrequency, u"Daily"_s);
    backup.PurgeDays = u"45"_s;
    SaveBackupSettings(schedule, backup);
    QCOMPARE(schedule.BackupPurge, qint16(45));
    QVERIFY(ReadFile(schedule.FileName)
                .contains("<BackupDate>20-Mar-2026 23:05</BackupDate>\r\n"
                          "<BackupFrequency>Weekly</BackupFrequency>"));

    schedule.StopTime = u"no date"_s;
    QVERIFY(!LoadStartTimer(schedule).Set);
    QCOMPARE(LoadStartTimer(schedule).At.Moment(), D(2026, 3, 14, 10, 30));
    QVERIFY(LoadStopTimer(schedule).Set);
    QCOMPARE(LoadStopTimer(schedule).At.Moment(), D(2027, 3, 14, 10, 30));
    bool savedFirst = false;
    SaveTimers(schedule, {true, {D(2026, 3, 15), 9, 5}}, {}, [&] {
        savedFirst = ReadFile(schedule.FileName).contains("<StartTime>15-Mar-2026 09:05:00<");
    });
    QVERIFY(savedFirst);
    QVERIFY(schedule.StopTime.isEmpty());
    QCOMPARE(StartTimedt(schedule), D(2026, 3, 15, 9, 5));
}

QORLO_TEST_MAIN(TestScheduleBackup)
#include "tst_schedulebackup.moc"
