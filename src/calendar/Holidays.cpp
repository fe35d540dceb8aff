#include "Holidays.h"

#include "ListFile.h"

#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "core/WholeFile.h"
#include "store/clsSchedule.h"

#include <array>

namespace DynDates {

namespace {

struct HolidayTable
{
    std::array<double, HolidayCapacity> dates{};
    int count = 0;
};

HolidayTable &Table()
{
    static HolidayTable table;
    return table;
}

void Append(HolidayTable &table, double date)
{
    if (table.count >= HolidayCapacity)
        throw QorloError(QorloError::OutOfRange);
    table.dates[table.count++] = date;
}

} // namespace

void LoadHolidays(clsSchedule &schedule)
{
    HolidayTable &table = Table();
    table.count = 0;
    if (schedule.Holiday_List.isEmpty())
        return;
    schedule.Holiday_List = CommonFile::CompletePath(schedule.AppPath, schedule.Holiday_List);
    if (!WholeFile::IsWholeFile(schedule.Holiday_List))
        return;
    for (const QString &value : ReadListValues(schedule.Holiday_List)) {
        if (const std::optional<double> date = DayDate::Parse(value))
            Append(table, *date);
    }
}

bool IsHoliday(double value)
{
    const HolidayTable &table = Table();
    const double day = DayDate::DayOf(value);
    for (int i = 0; i <= table.count; ++i) {
        if (i >= HolidayCapacity)
            throw QorloError(QorloError::OutOfRange);
        if (table.dates[i] == day)
            return true;
    }
    return false;
}

int HolidayCount()
{
    return Table().count;
}

} // namespace DynDates
