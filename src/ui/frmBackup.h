#pragma once
// The backup settings window: when the next copy of the schedule file is taken and how often.

#include "MomentControls.h"

#include <QDialog>

class QorloGlobals;
class QComboBox;
class QLabel;
class QLineEdit;

class frmBackup : public QDialog
{
    Q_OBJECT
public:
    explicit frmBackup(QorloGlobals &globals, QWidget *parent = nullptr);

    // The backup fields from the schedule, as each opening of the window shows them.
    void LoadSettings();

private:
    void BuildFields();
    void cmdSave_Click();

    QorloGlobals &m_globals;
    MomentControls m_next;
    QComboBox *m_frequency = nullptr;
    QLabel *m_previous = nullptr;
    QLabel *m_previousFile = nullptr;
    QLineEdit *m_purgeDays = nullptr;
};
