#pragma once
// Moving an item's NextRun on by its frequency, and finding the item that is due first.

class clsSchedule;

// Advances NextRun of the item at the cursor past `reference` by its Frequency and FreqTimes, or ends
// its scheduling (Schedule "N", NextRun empty) when it has no further run. A NextRun that is not a
// date is left alone. The caller saves the file. A week product beyond 16 bits raises the overflow
// error.
void SaveNextTime(clsSchedule &schedule, double reference);
// The earliest NextRun of the schedule, its row stored in NextItemIndex. Dates a year or more ahead
// are passed over (today + 365 is given); with no dated item at all, tomorrow.
double NextReportRun(clsSchedule &schedule);
// Today at BusinessHour-End.
double BusinessEndToday(const clsSchedule &schedule);
