// A remote command file merged into a running schedule, and the step of the tick that follows: the
// item that is due has its next run moved on.
#include "FuzzSupport.h"

#include "calendar/NextRun.h"
#include "core/Clock.h"
#include "core/QorloError.h"
#include "store/clsSchedule.h"

namespace {

// A schedule with a few items of different frequencies, some due.
void AddItems(clsSchedule &schedule)
{
    const char *const frequencies[] = {"D", "Hour(s)", "Business Day", "M", "Last day of month", "Once"};
    int id = 1;
    for (const char *frequency : frequencies) {
        schedule.AddNew();
        schedule.SetReportID(QString::number(id));
        schedule.SetName(QStringLiteral("Item ") + QString::number(id));
        schedule.SetFile(QStringLiteral("/bin/true"));
        schedule.SetFrequency(QLatin1String(frequency));
        schedule.SetFreqTimes(QString::number(id));
        schedule.SetNextRun(QStringLiteral("01-Jan-2020 08:00"));
        ++id;
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = Fuzz::WriteInput(QStringLiteral("Remote/command.xml"), data, size);
    clsSchedule schedule(Fuzz::AppPath());
    try {
        AddItems(schedule);
        schedule.Load(path);
        if (Now() >= NextReportRun(schedule)) {
            schedule.SetPosition(schedule.NextItemIndex);
            SaveNextTime(schedule, Now());
        }
        schedule.Save(schedule.FileName);
    } catch (const QorloError &) {
    }
    return 0;
}
