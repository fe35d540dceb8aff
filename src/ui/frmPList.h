#pragma once
// The parameter editor: the parameters of a report, or of all the reports of a collection, each with a
// stored value that lets the report run unattended. Values are kept in the schedule's parameter rows in
// the text form of ParameterText.

#include "ReportParameters.h"

#include <QDialog>

class QorloGlobals;
class QComboBox;
class QDateEdit;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableWidget;
class QToolButton;

class frmPList : public QDialog
{
    Q_OBJECT
public:
    explicit frmPList(QorloGlobals &globals, QWidget *parent = nullptr);

    // Loads the item at `position` of the schedule; false when there is nothing to edit and the window
    // is not to be opened.
    bool LoadTables(int position);

private:
    // One grid row: a parameter of the report and its value in stored form.
    struct Row
    {
        ReportParameter parameter;
        QString value;
    };
    enum class Editor { None, Text, Date, DateTime, Boolean };

    void BuildEditors(QFormLayout *values);
    void BuildMultipleControls(QFormLayout *values);
    void BuildLayout(QGroupBox *frame);
    void SetTabOrder();
    void Clear();
    bool LoadCollection();
    void LoadReport(const QString &file);
    void AddRow(const ReportParameter &parameter);
    void MatchStoredValues();
    void ReadMultiRunParameter();
    void FillGrid();

    // The row's value in its editor; the editors that do not fit its type are hidden.
    void ShowRow(int row);
    void ShowEditor(Editor editor);
    void ShowValue(const QString &value);
    void ShowDate(const QString &value);
    // The editor's content encoded into the row on show; raises for an adjustment that is no number.
    void StoreRow();
    void SetRowValue(const QString &value);
    QString EditedValue() const;
    QString EditedDate() const;
    void RefreshDynamicControls();
    Editor EditorOf(const Row &row) const;
    bool Editable(int row) const;

    void OnRowChanged(int row, int previous);
    void OnValueEdited();
    void AddValue();
    void DeleteValue();
    void StepValue(int step);
    void ShowListValue(int index);
    void ShowValuePosition();
    void cmdSave_Click();

    QorloGlobals &m_globals;
    QList<Row> m_rows;
    int ListPosition = -1;
    QString EditReportID;
    QString MultiRunParameter;
    QStringList ValueList;
    int ValueIndex = 0;
    // The row on show, and a guard that keeps the editors' own signals out while they are filled.
    int m_row = -1;
    Editor m_editor = Editor::None;
    bool m_showing = false;
    // Set while a refused row change puts the selection back.
    bool m_switching = false;

    QLabel *lName = nullptr;
    QLabel *lStatus = nullptr;
    QTableWidget *fgPList = nullptr;
    QGroupBox *frValues = nullptr;
    QFormLayout *m_values = nullptr;
    QLabel *txtFrame = nullptr;
    QLineEdit *txtPList = nullptr;
    QDateEdit *dtpPlist = nullptr;
    QComboBox *cmbHour = nullptr;
    QComboBox *cmbMin = nullptr;
    QWidget *m_dateRow = nullptr;
    QWidget *m_timeRow = nullptr;
    QWidget *m_adjustRow = nullptr;
    QRadioButton *OptPListTrue = nullptr;
    QRadioButton *OptPListFalse = nullptr;
    QWidget *m_booleanRow = nullptr;
    QComboBox *cmbDynDate = nullptr;
    QLineEdit *txtAdjDate = nullptr;
    QLabel *lDynPreview = nullptr;
    QLabel *lPos = nullptr;
    QToolButton *udMultiUp = nullptr;
    QToolButton *udMultiDown = nullptr;
    QPushButton *lPlus = nullptr;
    QPushButton *lDel = nullptr;
    QWidget *m_multipleRow = nullptr;
    QLabel *lPrompt = nullptr;
    QLabel *lDefaults = nullptr;
    QPushButton *cmdSave = nullptr;
    QPushButton *cmdExit = nullptr;
};
