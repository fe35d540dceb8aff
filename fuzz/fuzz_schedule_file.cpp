// Qorlo.XML as the start-up reads it; what the schedule then writes must read back without a failure.
#include "FuzzSupport.h"

#include "calendar/NextRun.h"
#include "core/CommonFile.h"
#include "core/QorloError.h"
#include "store/clsSchedule.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = Fuzz::WriteInput(QStringLiteral("Qorlo.XML"), data, size);
    const QString saved = CommonFile::JoinPath(Fuzz::AppPath(), QStringLiteral("saved.XML"));
    clsSchedule schedule(Fuzz::AppPath());
    try {
        schedule.Load(path);
        NextReportRun(schedule);
        schedule.ActiveCount();
    } catch (const QorloError &) {
        return 0;
    }
    schedule.Save(saved);
    clsSchedule again(Fuzz::AppPath());
    try {
        again.Load(saved);
    } catch (const QorloError &) {
        __builtin_trap(); // a file the program wrote itself must read back
    }
    if (again.Count() != schedule.Count())
        __builtin_trap();
    return 0;
}
