#pragma once
// Find and Replace: one text replaced in one field of every schedule item that holds it, after the
// operator has seen how many items it touches.

#include <QDialog>

class QorloGlobals;
class QCheckBox;
class QComboBox;
class QLineEdit;

class frmFind : public QDialog
{
    Q_OBJECT
public:
    explicit frmFind(QorloGlobals &globals, QWidget *parent = nullptr);

private:
    void cmdReplace_Click();

    QorloGlobals &m_globals;
    QComboBox *cmbOptions = nullptr;
    QLineEdit *txtFind = nullptr;
    QLineEdit *txtReplace = nullptr;
    QCheckBox *chkCase = nullptr;
};
