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

using namespace TestSupport;

namespace {

const QDateTime kNow(QDate(2026, 3, 14), QTime(10, 30));

void Touch(const QString &path)
{
    WriteFile(path, QByteArray());
}

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
    QVERIFY(QDir(app.path()).mkdir(QStringLiteral("Backup")));
    Touch(app.filePath(QStringLiteral("Backup/Qorlo20260201.xml")));
    clsSchedule schedule(app.path()); // BackupDate starts a day ago: due at once
    schedule.AddNew();
    schedule.SetName(QStringLiteral("Sales"));
    const QString backup = app.filePath(QStringLiteral("Backup/Qorlo20260314.xml"));
    int pages = 0;
    QVERIFY(BackupIfDue(schedule, [&] {
        // The page follows the new BackupDate and comes before the schedule file.
        QCOMPARE(schedule.BackupDate, D(2026, 3, 15, 10, 30));
        QVERIFY(!QFile::exists(schedule.FileName));
        ++pages;
    }));
    QCOMPARE(pages, 1);
    QCOMPARE(schedule.BackupPrevious, QStringLiteral("14-Mar-2026 10:30"));
    QCOMPARE(schedule.BackupPreviousFile, backup);
    // The copy holds the values from before the step.
    QVERIFY(ReadFile(backup).contains("<BackupDate>13-Mar-2026 10:30</BackupDate>\r\n<BackupFrequency>Daily"
                                      "</BackupFrequency>\r\n<BackupPrevious></BackupPrevious>"));
    QVERIFY(ReadFile(schedule.FileName).contains("<BackupDate>15-Mar-2026 10:30</BackupDate>"));
    QVERIFY(!BackupIfDue(schedule, {}));

    // Later the same day the one file is replaced; the old backup has been purged.
    m_clock.set(kNow.addSecs(3600));
    schedule.BackupDate = Now();
    schedule.BackupFrequency = QStringLiteral("Never"); // still a backup, then 30 days
    schedule.SetName(QStringLiteral("Revenue"));
    QVERIFY(BackupIfDue(schedule, {}));
    QCOMPARE(schedule.BackupDate, D(2026, 4, 13, 11, 30));
    QCOMPARE(FileNames(app.filePath(QStringLiteral("Backup"))),
             QStringList{QStringLiteral("Qorlo20260314.xml")});
    QVERIFY(ReadFile(backup).contains("Revenue"));

    // Without a Backup folder the copy fails silently and BackupDate moves on all the same.
    QVERIFY(QDir(app.filePath(QStringLiteral("Backup"))).removeRecursively());
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
    const QString pattern = folder.path() + QStringLiteral("/Qorlo*.xml");
    // Kept: no match, the year before last, exactly 30 days old, no month 15, not 17 characters.
    QStringList kept{QStringLiteral("Other20250101.xml"), QStringLiteral("Qorlo20240101.xml"),
                     QStringLiteral("Qorlo20250101.txt"), QStringLiteral("Qorlo20260212.xml"),
                     QStringLiteral("Qorlo20261501.xml"), QStringLiteral("Qorlo2025.xml")};
    kept.sort();
    for (const QString &name :
         kept + QStringList{QStringLiteral("Qorlo20260211.xml"), QStringLiteral("Qorlo20250101.XML")})
        Touch(folder.filePath(name));
    PurgeOldFiles(pattern);
    QCOMPARE(FileNames(folder.path()), kept);

    // 91 names a pass; the rest wait for the next one.
    const QString many = folder.filePath(QStringLiteral("many"));
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("many")));
    for (int day = 0; day < 100; ++day)
        Touch(many + DayDate::ToDate(D(2025, 6, 1) + day).toString(QStringLiteral("'/Qorlo'yyyyMMdd'.xml'")));
    PurgeOldFiles(many + QStringLiteral("/Qorlo*.xml"));
    QCOMPARE(FileNames(many).size(), 9);
    PurgeOldFiles(many + QStringLiteral("/Qorlo*.xml"));
    QCOMPARE(FileNames(many).size(), 0);
}

void TestScheduleBackup::purgeUndeletable()
{
    if (geteuid() == 0)
        QSKIP("root deletes in a read-only folder too");
    QTemporaryDir folder;
    const QString pattern = folder.path() + QStringLiteral("/Qorlo*.xml");
    Touch(folder.filePath(QStringLiteral("Qorlo20250101.xml")));
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
    schedule.StartTime = QStringLiteral("soon");
    schedule.StopTime = QStringLiteral("31-Feb-2026 10:00");
    QCOMPARE(StartTimedt(schedule), Now() - 1);
    QCOMPARE(StopTimedt(schedule), Now() + 365);

    schedule.StartTime = QStringLiteral("14-Mar-2026 10:35:00");
    QCOMPARE(ApplyStartTimer(schedule), TimerAction::Hold);
    QVERIFY(!schedule.Active);
    m_clock.set(kNow.addSecs(300));
    QCOMPARE(ApplyStartTimer(schedule), TimerAction::Started);
    QVERIFY(schedule.Active && schedule.StartTime.isEmpty());
    QVERIFY(ReadFile(schedule.FileName).contains("<Schedule_State>Active</Schedule_State>"));
    QCOMPARE(ApplyStartTimer(schedule), TimerAction::None);

    QCOMPARE(ApplyStopTimer(schedule), TimerAction::None); // no date: waits a year, text kept
    QCOMPARE(schedule.StopTime, QStringLiteral("31-Feb-2026 10:00"));
    schedule.StopTime = QStringLiteral("2026-03-14 10:35");
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
    QCOMPARE(backup.PurgeDays, QStringLiteral("30"));
    backup = {QStringLiteral("Weekly"), {D(2026, 3, 20), 23, 5}, {}, {}, QStringLiteral("x45")};
    QCOMPARE(ErrorOf([&] { SaveBackupSettings(schedule, backup); }), int(QorloError::TypeMismatch));
    backup.PurgeDays = QStringLiteral("40000");
    QCOMPARE(ErrorOf([&] { SaveBackupSettings(schedule, backup); }), int(QorloError::Overflow));
    QCOMPARE(schedule.BackupFrequency, QStringLiteral("Daily"));
    backup.PurgeDays = QStringLiteral("45");
    SaveBackupSettings(schedule, backup);
    QCOMPARE(schedule.BackupPurge, qint16(45));
    QVERIFY(ReadFile(schedule.FileName)
                .contains("<BackupDate>20-Mar-2026 23:05</BackupDate>\r\n"
                          "<BackupFrequency>Weekly</BackupFrequency>"));

    schedule.StopTime = QStringLiteral("no date");
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
