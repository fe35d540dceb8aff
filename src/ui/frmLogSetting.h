#pragma once
// The Log File Settings window: how long run log entries are kept, when and how often that is
// checked, and which entries the web log page shows.

#include <QDialog>

class QorloGlobals;
class QComboBox;
class QDateEdit;
class QLineEdit;

class frmLogSetting : public QDialog
{
    Q_OBJECT
public:
    explicit frmLogSetting(QorloGlobals &globals, QWidget *parent = nullptr);

    // The log's settings into the controls, as each opening of the window shows them.
    void LoadSettings();

private:
    void cmdSave_Click();

    QorloGlobals &m_globals;
    QLineEdit *txtRetain = nullptr;
    QDateEdit *dtDelete = nullptr;
    QComboBox *cmbReview = nullptr;
    QComboBox *cmbWebLog = nullptr;
};
