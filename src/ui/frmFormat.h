#pragma once
// The Export Formats window: the schedule's Excel and report-file export choices and the layout of
// text exports, checked before they are saved.

#include <QDialog>

class QorloGlobals;
class QComboBox;
class QLineEdit;

class frmFormat : public QDialog
{
    Q_OBJECT
public:
    explicit frmFormat(QorloGlobals &globals, QWidget *parent = nullptr);

    // The four settings from the schedule, as each opening of the window shows them.
    void LoadSettings();

private:
    // False, with the box shown, when a text setting is out of its range.
    bool TextSettingsValid();
    bool Refuse(QLineEdit *field, const QString &title, const QString &text);
    void cmdSave_Click();

    QorloGlobals &m_globals;
    QComboBox *cmbExcel = nullptr;
    QComboBox *cmbCrystal = nullptr;
    QLineEdit *txtCPI = nullptr;
    QLineEdit *txtPage = nullptr;
};
