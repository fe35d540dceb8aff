// A list file in each of its roles: holiday list, custom calendar, dynamic dates and address list.
#include "FuzzSupport.h"

#include "calendar/CustomCalendar.h"
#include "calendar/EvaluateDate.h"
#include "calendar/Holidays.h"
#include "calendar/ListFile.h"
#include "core/Clock.h"
#include "core/QorloError.h"
#include "mail/AddressList.h"
#include "store/clsSchedule.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Fuzz::WriteInput(QStringLiteral("list.lst"), data, size);
    clsSchedule schedule(Fuzz::AppPath());
    schedule.Holiday_List = QStringLiteral("list.lst");
    try {
        DynDates::LoadHolidays(schedule);
        DynDates::IsHoliday(Now());
        QString calendar = QStringLiteral("list.lst");
        DynDates::NextCustomCalendarDate(schedule, calendar, Now());
        const QStringList values = DynDates::ReadListValues(schedule.Holiday_List);
        for (qsizetype i = 0; i < values.size() && i < 16; ++i)
            DynDates::EvaluateDate(schedule, values.at(i));
        const AddressList::Sources sources{Fuzz::AppPath(), QStringList(10), {}};
        AddressList::ExpandAddressList(QStringLiteral("<list.lst>;a@example.com"), sources);
    } catch (const QorloError &) {
    }
    return 0;
}
