#include "ScheduleBackup.h"

#include "clsSchedule.h"
#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/QorloError.h"

#include <QDirIterator>
#include <QFile>

#include <optional>

namespace {

constexpr int kBackupNameLength = 17;
constexpr int kPurgeNameLimit = 91;
constexpr double kPurgeAgeDays = 30;

// One step of SetNextBackup from `date`.
double NextBackupStep(const QString &frequency, double date)
{
    if (frequency == QLatin1String("Never"))
        return date + 30;
    if (frequency == QLatin1String("Weekly"))
        return date + 7;
    if (frequency == QLatin1String("Monthly"))
        return DayDate::AddMonths(date, 1);
    return date + 1; // "Daily", and any unknown text, which must not stall the loop
}

// The number in `length` characters of `name` from the 1-based `start`, or nothing if not numeric.
std::optional<int> NamePart(const QString &name, int start, int length)
{
    const QString part = name.mid(start - 1, length);
    if (!Numbers::IsNumeric(part))
        return std::nullopt;
    return int(Numbers::RoundEven(Numbers::NumericPrefix(part)));
}

// Whether the schedule file holds an item.
bool HoldsItems(const QString &path)
{
    LineReader reader(path);
    while (!reader.atEnd()) {
        if (reader.readLineView().trimmed().startsWith(QLatin1String("<ReportID>")))
            return true;
    }
    return false;
}

// A stored timer as a date, or nothing when it is empty or no date.
std::optional<double> TimerDate(const QString &text)
{
    return text.isEmpty() ? std::nullopt : DayDate::Parse(text);
}

} // namespace

void SaveBackup(clsSchedule &schedule, const QString &path)
{
    if (!path.isEmpty())
        schedule.Save(path);
}

void SetNextBackup(clsSchedule &schedule)
{
    const double now = Now();
    do
        schedule.BackupDate = NextBackupStep(schedule.BackupFrequency, schedule.BackupDate);
    while (schedule.BackupDate <= now);
}

QString BackupFileName(const clsSchedule &schedule, double day)
{
    return CommonFile::JoinPath(schedule.AppPath,
                                QStringLiteral("Backup/Qorlo") +
                                    DayDate::ToDate(day).toString(QStringLiteral("yyyyMMdd")) +
                                    QStringLiteral(".xml"));
}

double FileNameDate(const QString &name)
{
    const double today = Today();
    if (name.size() != kBackupNameLength)
        return today;
    const std::optional<int> year = NamePart(name, 6, 4);
    const std::optional<int> month = NamePart(name, 10, 2);
    const std::optional<int> day = NamePart(name, 12, 2);
    if (!year || !month || !day)
        return today;
    const int thisYear = DayDate::Year(today);
    if ((*year != thisYear && *year != thisYear - 1) || *month < 1 || *month > 12 || *day < 1 || *day > 31)
        return today;
    // A day past the month's end runs on into the next month.
    return DayDate::FromParts(*year, *month, 1) + (*day - 1);
}

void PurgeOldFiles(const QString &pattern)
{
    const QString folder = CommonFile::FolderOf(pattern);
    QStringList names;
    QDirIterator found(folder, {CommonFile::FileNameOnly(pattern)}, QDir::Files);
    while (names.size() < kPurgeNameLimit && found.hasNext()) {
        found.next();
        names.append(found.fileName());
    }
    const double cutoff = Today() - kPurgeAgeDays;
    for (const QString &name : names) {
        if (FileNameDate(name) >= cutoff)
            continue;
        QFile file(CommonFile::JoinPath(folder, name));
        if (!file.remove())
            throw QorloError(file.exists() ? QorloError::PermissionDenied : QorloError::FileNotFound);
    }
}

bool BackupIfDue(clsSchedule &schedule, const std::function<void()> &saveWeb)
{
    const double now = Now();
    if (schedule.BackupDate > now)
        return false;
    const QString path = BackupFileName(schedule, now);
    // Written before the fields below change, so the copy holds their previous values. An empty
    // schedule never replaces a backup of the day that holds items: it may be all that is left.
    if (schedule.Count() > 0 || !HoldsItems(path))
        SaveBackup(schedule, path);
    schedule.BackupPrevious = FormatDateTime(now);
    schedule.BackupPreviousFile = path;
    SetNextBackup(schedule);
    if (saveWeb)
        saveWeb();
    schedule.Save(schedule.FileName);
    PurgeOldFiles(CommonFile::JoinPath(schedule.AppPath, QStringLiteral("Backup/Qorlo*.xml")));
    return true;
}

double StartTimedt(const clsSchedule &schedule)
{
    return TimerDate(schedule.StartTime).value_or(Now() - 1);
}

double StopTimedt(const clsSchedule &schedule)
{
    return TimerDate(schedule.StopTime).value_or(Now() + 365);
}

TimerAction ApplyStartTimer(clsSchedule &schedule)
{
    if (schedule.StartTime.isEmpty())
        return TimerAction::None;
    if (Now() < StartTimedt(schedule))
        return TimerAction::Hold;
    schedule.StartTime.clear();
    schedule.Active = true;
    schedule.Save(schedule.FileName);
    return TimerAction::Started;
}

TimerAction ApplyStopTimer(clsSchedule &schedule)
{
    if (schedule.StopTime.isEmpty() || Now() < StopTimedt(schedule))
        return TimerAction::None;
    schedule.StopTime.clear();
    schedule.Active = false;
    schedule.Save(schedule.FileName);
    return TimerAction::Stopped;
}
