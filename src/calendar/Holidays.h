#pragma once
// The process-wide holiday table behind the business-day rule, filled from the Holiday-List file.

class clsSchedule;

namespace DynDates {

// Room for index 0 to 100.
constexpr int HolidayCapacity = 101;

// Refills the table from Holiday-List, completed with the application folder and stored back.
// No name or no file means no holidays; a 102nd date raises the subscript error.
void LoadHolidays(clsSchedule &schedule);
// Whether the date of `value` is in the table, looking at the entries loaded and at the one after
// them, which may still hold a date of an earlier, longer load. With a full table that look past
// the end raises the subscript error unless a match came first.
bool IsHoliday(double value);
int HolidayCount();

} // namespace DynDates
