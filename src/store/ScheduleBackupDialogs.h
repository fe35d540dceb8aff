#pragma once
// The logic of the backup settings and set-timer dialogs: the values they show and what saving does.

#include <QString>
#include <QStringList>

#include <functional>

class clsSchedule;

// A moment as the dialogs pick it: a day, an hour and a minute.
struct DayHourMinute
{
    double Day = 0; // whole day
    int Hour = 0;
    int Minute = 0;

    static DayHourMinute Of(double moment);
    double Moment() const;
};

// The values the backup settings dialog shows.
struct BackupSettings
{
    QString Frequency;
    DayHourMinute Next;
    QString Previous;
    QString PreviousFile;
    QString PurgeDays;
};
QStringList BackupFrequencies(); // "Never", "Daily", "Weekly", "Monthly"
BackupSettings LoadBackupSettings(const clsSchedule &schedule);
// Stores the dialog's values and saves the schedule file. Purge days that are not a number raise
// QorloError 13 (too large: 6) before anything is changed.
void SaveBackupSettings(clsSchedule &schedule, const BackupSettings &settings);

// One timer of the set-timer dialog: its check box and its moment.
struct TimerSetting
{
    bool Set = false;
    DayHourMinute At;
};
// From StartTime/StopTime when set, else unchecked at the present moment.
TimerSetting LoadStartTimer(const clsSchedule &schedule);
TimerSetting LoadStopTimer(const clsSchedule &schedule);
// "DD-Mon-YYYY HH:MM:00" for a set timer, empty otherwise.
QString TimerText(const TimerSetting &timer);
// Stores both timers, saves the schedule file, then calls `saveWeb` (the status page).
void SaveTimers(clsSchedule &schedule, const TimerSetting &start, const TimerSetting &stop,
                const std::function<void()> &saveWeb);
