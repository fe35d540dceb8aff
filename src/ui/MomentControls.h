#pragma once
// The date control with hour and minute lists through which the schedule windows pick a moment.

#include "store/ScheduleBackupDialogs.h"

class QComboBox;
class QDateEdit;
class QHBoxLayout;
class QWidget;

// A day in a date control, an hour from a list of 0 to 23 and a minute from a list of 0 to 59.
struct MomentControls
{
    MomentControls(QWidget *parent, const char *dateName, const char *hourName, const char *minuteName);
    void Show(const DayHourMinute &moment);
    DayHourMinute Picked() const;
    void SetEnabled(bool enabled);
    // The three controls side by side, for the window's layout.
    QHBoxLayout *Row() const;

    QDateEdit *Date;
    QComboBox *Hour;
    QComboBox *Minute;
};
