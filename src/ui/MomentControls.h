#pragma once
// The date control with hour and minute lists through which the schedule windows pick a moment.

#include "store/ScheduleBackupDialogs.h"

class QAbstractButton;
class QComboBox;
class QDateEdit;
class QFormLayout;
class QHBoxLayout;
class QWidget;

// A day in a date control, an hour from a list of 0 to 23 and a minute from a list of 0 to 59.
struct MomentControls
{
    MomentControls(QWidget *parent, const char *dateName, const char *hourName, const char *minuteName);
    void Show(const DayHourMinute &moment);
    DayHourMinute Picked() const;
    void SetEnabled(bool enabled);
    // The three controls side by side, the hour after "at" and the minute after ":".
    QHBoxLayout *Row() const;
    // The controls as a row of a form whose caption labels the date.
    void AddRow(QFormLayout *form, const QString &caption) const;
    // The same led by a check box, whose text names the date.
    void AddRow(QFormLayout *form, QAbstractButton *caption) const;

    QDateEdit *Date;
    QComboBox *Hour;
    QComboBox *Minute;
};
