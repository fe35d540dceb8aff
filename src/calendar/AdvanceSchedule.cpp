#include "AdvanceSchedule.h"

#include "NextRun.h"

#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "store/clsSchedule.h"

void AdvanceSchedule(clsSchedule &schedule, double date, bool apply, int &count)
{
    count = 0;
    for (int row = 0; row < schedule.Count(); ++row) {
        const QString text = schedule.Cell(row, clsSchedule::colNextRun);
        const std::optional<double> next = text.isEmpty() ? std::nullopt : DayDate::Parse(text);
        if (!next)
            continue;
        if (*next < date)
            ++count;
        if (apply) {
            schedule.SetPosition(row);
            SaveNextTime(schedule, date);
        }
    }
}

QString AnalyseAdvance(clsSchedule &schedule, double moment)
{
    int count = 0;
    AdvanceSchedule(schedule, moment, false, count);
    return QString::number(count) +
           QStringLiteral(" items in schedule will be advanced when you click the process button");
}

QString ProcessAdvance(clsSchedule &schedule, double moment)
{
    int count = 0;
    AdvanceSchedule(schedule, moment, true, count);
    schedule.Save(CommonFile::JoinPath(schedule.AppPath, QStringLiteral("Qorlo.XML")));
    return QString::number(count) +
           QStringLiteral(" items in schedule have now been advanced to process after ") +
           FormatDateTime(moment);
}
