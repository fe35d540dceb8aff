#pragma once
// Schedule backups with their purge, and the start and stop timers of the schedule.

#include <QString>

#include <functional>

class clsSchedule;

// Save(path) unless the path is empty.
void SaveBackup(clsSchedule &schedule, const QString &path);
// Moves BackupDate on by BackupFrequency, at least one step and until it lies after the present
// moment: "Never" 30 days, "Daily" 1, "Weekly" 7, "Monthly" one calendar month, anything else 1 day.
void SetNextBackup(clsSchedule &schedule);
// AppPath + "/Backup/Qorlo" + the day's "yyyyMMdd" + ".xml".
QString BackupFileName(const clsSchedule &schedule, double day);

// The date in a 17-character name such as "Qorlo20260314.xml" (year of this or last year); today for
// any other name.
double FileNameDate(const QString &name);
// Deletes the files matching `pattern` (a folder and a wildcard name) whose FileNameDate lies more
// than 30 days before today. At most 91 names are looked at in one pass, in directory order.
// A file that cannot be deleted raises QorloError 70 and ends the pass.
void PurgeOldFiles(const QString &pattern);

// The backup step of the tick: when BackupDate has come, copy the schedule (unless an empty schedule
// would replace a backup of the day that holds items), move BackupDate on, call `saveWeb` (the status
// page), save the schedule and purge old backups. Returns whether it ran.
bool BackupIfDue(clsSchedule &schedule, const std::function<void()> &saveWeb);

// StartTime as a date, or the present moment minus one day when it is empty or not a date.
double StartTimedt(const clsSchedule &schedule);
// StopTime as a date, or the present moment plus 365 days when it is empty or not a date.
double StopTimedt(const clsSchedule &schedule);

// What a timer step of the tick did; the caller refreshes its caption after Started and Stopped.
enum class TimerAction {
    None,    // no timer, or nothing to do
    Hold,    // a start timer is pending: the tick ends here
    Started, // StartTime has come: cleared, schedule active and saved
    Stopped, // StopTime has come: cleared, schedule stopped and saved; the tick ends here
};
TimerAction ApplyStartTimer(clsSchedule &schedule);
TimerAction ApplyStopTimer(clsSchedule &schedule);
