#include "frmAdv.h"

#include "DialogButtons.h"
#include "TabOrder.h"

#include "calendar/AdvanceSchedule.h"
#include "core/Clock.h"
#include "WindowHandler.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

frmAdv::frmAdv(QorloGlobals &globals, QWidget *parent)
    : QDialog(parent), m_globals(globals), m_moment(this, "dtAdv", "cboHour", "cboMinute")
{
    setObjectName(QStringLiteral("frmAdv"));
    setWindowTitle(AdvanceTexts::Title);
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    m_status->setWordWrap(true);
    // The longest answer takes three lines: room for them keeps it from being cut off.
    m_status->setMinimumHeight(3 * m_status->fontMetrics().lineSpacing());
    m_status->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *analyse =
        AddButton(buttons, "cmdAnalyse", QStringLiteral("Analyse Schedule"), [this] { cmdAnalyse_Click(); });
    QPushButton *process =
        AddButton(buttons, "cmdProcess", QStringLiteral("&Process"), [this] { cmdProcess_Click(); });

    auto *fields = new QFormLayout;
    m_moment.AddRow(fields, QStringLiteral("Advance to after"));
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(m_status);
    layout->addWidget(buttons);
    SetTabOrder({m_moment.Date, m_moment.Hour, m_moment.Minute, analyse, process});
    LoadSettings();
}

void frmAdv::LoadSettings()
{
    m_moment.Show(DayHourMinute::Of(Now()));
    m_status->clear();
}

void frmAdv::cmdAnalyse_Click()
{
    m_status->setText(AdvanceTexts::Analysing);
    // A long schedule takes a moment: the event loop would not show the text before the count.
    m_status->repaint();
    m_status->setText(AnalyseAdvance(m_globals.Schedule, m_moment.Picked().Moment()));
}

void frmAdv::cmdProcess_Click()
{
    const double moment = m_moment.Picked().Moment();
    m_status->setText(AdvanceTexts::Processing);
    if (!m_globals.prompter.AskYesNo(AdvanceTexts::Title, AdvanceTexts::Confirm)) {
        m_status->setText(AdvanceTexts::Cancelled);
        return;
    }
    RunHandler(m_globals.prompter,
               [this, moment] { m_status->setText(ProcessAdvance(m_globals.Schedule, moment)); });
}
