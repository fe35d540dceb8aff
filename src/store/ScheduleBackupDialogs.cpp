#include "ScheduleBackupDialogs.h"

#include "ScheduleBackup.h"
#include "clsSchedule.h"
#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/Numbers.h"

namespace {

TimerSetting LoadTimer(const QString &stored, double storedAt)
{
    TimerSetting timer;
    timer.Set = !stored.isEmpty();
    timer.At = DayHourMinute::Of(timer.Set ? storedAt : Now());
    return timer;
}

} // namespace

DayHourMinute DayHourMinute::Of(double moment)
{
    return {DayDate::DayOf(moment), DayDate::Hour(moment), DayDate::Minute(moment)};
}

double DayHourMinute::Moment() const
{
    return DayDate::DayOf(Day) + (Hour * 60 + Minute) / 1440.0;
}

QStringList BackupFrequencies()
{
    return {QStringLiteral("Never"), QStringLiteral("Daily"), QStringLiteral("Weekly"),
            QStringLiteral("Monthly")};
}

BackupSettings LoadBackupSettings(const clsSchedule &schedule)
{
    return {schedule.BackupFrequency, DayHourMinute::Of(schedule.BackupDate), schedule.BackupPrevious,
            schedule.BackupPreviousFile, QString::number(schedule.BackupPurge)};
}

void SaveBackupSettings(clsSchedule &schedule, const BackupSettings &settings)
{
    const qint16 purgeDays = Numbers::TextToInt16(settings.PurgeDays);
    schedule.BackupFrequency = settings.Frequency;
    schedule.BackupDate = settings.Next.Moment();
    schedule.BackupPurge = purgeDays;
    schedule.Save(schedule.FileName);
}

TimerSetting LoadStartTimer(const clsSchedule &schedule)
{
    return LoadTimer(schedule.StartTime, StartTimedt(schedule));
}

TimerSetting LoadStopTimer(const clsSchedule &schedule)
{
    return LoadTimer(schedule.StopTime, StopTimedt(schedule));
}

QString TimerText(const TimerSetting &timer)
{
    if (!timer.Set)
        return QString();
    return FormatDate(timer.At.Day) + QLatin1Char(' ') + Numbers::FormatZeros(timer.At.Hour, 2) +
           QLatin1Char(':') + Numbers::FormatZeros(timer.At.Minute, 2) + QStringLiteral(":00");
}

void SaveTimers(clsSchedule &schedule, const TimerSetting &start, const TimerSetting &stop,
                const std::function<void()> &saveWeb)
{
    schedule.StartTime = TimerText(start);
    schedule.StopTime = TimerText(stop);
    schedule.Save(schedule.FileName);
    if (saveWeb)
        saveWeb();
}
