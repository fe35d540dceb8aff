#pragma once
// The set-timer window: a moment at which the schedule starts, and one at which it stops.

#include "MomentControls.h"
#include "store/ScheduleBackupDialogs.h"

#include <QDialog>

class QorloGlobals;
class QCheckBox;

class frmSetTimer : public QDialog
{
    Q_OBJECT
public:
    explicit frmSetTimer(QorloGlobals &globals, QWidget *parent = nullptr);

    // Both timers from the schedule, as each opening of the window shows them.
    void LoadSettings();

private:
    QCheckBox *AddCheck(const char *name, const QString &caption, MomentControls &moment);
    static void ShowTimer(const TimerSetting &timer, QCheckBox *check, MomentControls &moment);
    static TimerSetting PickedTimer(const QCheckBox *check, const MomentControls &moment);
    void cmdSave_Click();

    QorloGlobals &m_globals;
    MomentControls m_start;
    MomentControls m_stop;
    QCheckBox *m_setStart = nullptr;
    QCheckBox *m_setStop = nullptr;
};
