#include "frmBackup.h"

#include "DialogButtons.h"
#include "TabOrder.h"

#include "WindowHandler.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QDateEdit>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

frmBackup::frmBackup(QorloGlobals &globals, QWidget *parent)
    : QDialog(parent), m_globals(globals), m_next(this, "dtNext", "cboHour", "cboMinute")
{
    setObjectName(QStringLiteral("frmBackup"));
    setWindowTitle(QStringLiteral("Backup Settings"));
    BuildFields();
    LoadSettings();
}

void frmBackup::BuildFields()
{
    m_frequency = new QComboBox(this);
    m_frequency->setObjectName(QStringLiteral("cboFrequency"));
    m_frequency->addItems(BackupFrequencies());
    m_previous = new QLabel(this);
    m_previous->setObjectName(QStringLiteral("lblPrevious"));
    m_previousFile = new QLabel(this);
    m_previousFile->setObjectName(QStringLiteral("lblPreviousFile"));
    m_purgeDays = new QLineEdit(this);
    m_purgeDays->setObjectName(QStringLiteral("txtPurgeDays"));

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *save = AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    QPushButton *exit = AddExitButton(buttons, this);

    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("Backup Frequency"), m_frequency);
    m_next.AddRow(fields, QStringLiteral("Next Backup"));
    fields->addRow(QStringLiteral("Previous Backup"), m_previous);
    fields->addRow(QStringLiteral("Previous File"), m_previousFile);
    fields->addRow(QStringLiteral("Purge Days"), m_purgeDays);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addWidget(buttons);
    SetTabOrder({m_frequency, m_next.Date, m_next.Hour, m_next.Minute, m_purgeDays, save, exit});
}

void frmBackup::LoadSettings()
{
    const BackupSettings settings = LoadBackupSettings(m_globals.Schedule);
    m_frequency->setCurrentIndex(m_frequency->findText(settings.Frequency));
    m_next.Show(settings.Next);
    m_previous->setText(settings.Previous);
    m_previousFile->setText(settings.PreviousFile);
    m_purgeDays->setText(settings.PurgeDays);
}

// Purge days that are no number show their run-time error; the window stays.
void frmBackup::cmdSave_Click()
{
    const BackupSettings settings{m_frequency->currentText(), m_next.Picked(), m_previous->text(),
                                  m_previousFile->text(), m_purgeDays->text()};
    if (RunHandler(m_globals.prompter,
                   [this, &settings] { SaveBackupSettings(m_globals.Schedule, settings); }))
        accept();
}
