#pragma once
// The Dynamic Dates window: the schedule's date-keyword settings with a preview of what each keyword
// gives today. It works on the settings directly: from the first Apply on they hold its values.

#include <QDialog>

class QorloGlobals;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;

class frmDates : public QDialog
{
    Q_OBJECT
public:
    explicit frmDates(QorloGlobals &globals, QWidget *parent = nullptr);

    // The settings into the controls and the preview refreshed, as each opening of the window does.
    void LoadSettings();

private:
    void BuildFields();
    QWidget *PreviewRows();
    // The picker of the first period's end, enabled for fiscal months, set to that keyword's date.
    void EnablePeriodPicker();
    void cmbMonthLen_Click();
    void SaveVals();
    void RefreshPreview();
    void cmdApply_Click();
    void cmdSave_Click();
    double Reference() const;

    QorloGlobals &m_globals;
    bool m_loading = false;
    QLabel *lDate = nullptr;
    QLineEdit *txtDate = nullptr;
    QComboBox *cmbThisWeek = nullptr;
    QComboBox *cmbMonthLen = nullptr;
    QDateEdit *dtpYear = nullptr;
    QDateEdit *dtpPeriod1 = nullptr;
    QList<QLabel *> m_values;
};
