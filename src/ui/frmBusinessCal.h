#pragma once
// The Business Calendar window: the business week and month, the hours of the business day, the step
// of business-hour items and the holiday list, which it opens in the list editor.

#include <QDialog>

class QorloGlobals;
class QComboBox;
class QLabel;

class frmBusinessCal : public QDialog
{
    Q_OBJECT
public:
    explicit frmBusinessCal(QorloGlobals &globals, QWidget *parent = nullptr);

    // The settings into the controls, as each opening of the window shows them; a business-hour step
    // outside 1 to 300 becomes 60 on the schedule first.
    void LoadSettings();

private:
    void BuildFields();
    void cmdHolidays_Click();
    void cmdEditHols_Click();
    void cmdSave_Click();

    QorloGlobals &m_globals;
    QComboBox *cmbBWeek = nullptr;
    QComboBox *cmbBMonth = nullptr;
    QComboBox *cmbStartHr = nullptr;
    QComboBox *cmbStartMin = nullptr;
    QComboBox *cmbEndHr = nullptr;
    QComboBox *cmbEndMin = nullptr;
    QComboBox *cmbFreq = nullptr;
    QLabel *lBCal = nullptr;
};
