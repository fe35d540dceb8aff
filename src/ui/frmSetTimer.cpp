#include "frmSetTimer.h"

#include "DialogButtons.h"
#include "TabOrder.h"

#include "WindowHandler.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDateEdit>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

frmSetTimer::frmSetTimer(QorloGlobals &globals, QWidget *parent)
    : QDialog(parent), m_globals(globals), m_start(this, "dtStart", "cboStartHour", "cboStartMinute"),
      m_stop(this, "dtStop", "cboStopHour", "cboStopMinute")
{
    setObjectName(QStringLiteral("frmSetTimer"));
    setWindowTitle(QStringLiteral("Set Schedule Timer"));
    m_setStart = AddCheck("chkSetStart", QStringLiteral("Start the schedule at"), m_start);
    m_setStop = AddCheck("chkSetStop", QStringLiteral("Stop the schedule at"), m_stop);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *save = AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    QPushButton *exit = AddExitButton(buttons, this);

    auto *fields = new QFormLayout;
    m_start.AddRow(fields, m_setStart);
    m_stop.AddRow(fields, m_setStop);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(buttons);
    SetTabOrder({m_setStart, m_start.Date, m_start.Hour, m_start.Minute, m_setStop, m_stop.Date, m_stop.Hour,
                 m_stop.Minute, save, exit});
    LoadSettings();
}

QCheckBox *frmSetTimer::AddCheck(const char *name, const QString &caption, MomentControls &moment)
{
    auto *check = new QCheckBox(caption, this);
    check->setObjectName(QLatin1String(name));
    connect(check, &QCheckBox::toggled, this, [&moment](bool checked) { moment.SetEnabled(checked); });
    return check;
}

void frmSetTimer::LoadSettings()
{
    ShowTimer(LoadStartTimer(m_globals.Schedule), m_setStart, m_start);
    ShowTimer(LoadStopTimer(m_globals.Schedule), m_setStop, m_stop);
}

void frmSetTimer::ShowTimer(const TimerSetting &timer, QCheckBox *check, MomentControls &moment)
{
    check->setChecked(timer.Set);
    moment.SetEnabled(timer.Set);
    moment.Show(timer.At);
}

TimerSetting frmSetTimer::PickedTimer(const QCheckBox *check, const MomentControls &moment)
{
    return {check->isChecked(), moment.Picked()};
}

// The main window's caption shows the new timers at its next tick.
void frmSetTimer::cmdSave_Click()
{
    const bool saved = RunHandler(m_globals.prompter, [this] {
        SaveTimers(m_globals.Schedule, PickedTimer(m_setStart, m_start), PickedTimer(m_setStop, m_stop),
                   [this] { m_globals.SaveWeb(); });
    });
    if (saved)
        accept();
}
