#pragma once
// The Output Settings window: how View Report Now shows a report (viewer window state and zoom, screen
// or printer, and which printer), which kinds of file it offers, and the knowledgebase's host.

#include <QDialog>

class QorloGlobals;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QRadioButton;
class QSpinBox;

class frmSettings : public QDialog
{
    Q_OBJECT
public:
    explicit frmSettings(QorloGlobals &globals, QWidget *parent = nullptr);

    // The settings and the machine's printers, as each opening of the window shows them.
    void LoadSettings();

private:
    QWidget *FileKindBoxes();
    void cmdSave_Click();

    QorloGlobals &m_globals;
    QRadioButton *optNormal = nullptr;
    QRadioButton *optMaximised = nullptr;
    QSpinBox *spnZoom = nullptr;
    QRadioButton *optScreen = nullptr;
    QRadioButton *optPrinter = nullptr;
    QComboBox *cmbPrinter = nullptr;
    QList<QCheckBox *> m_fileKinds;
    QLineEdit *txtKnowledgebase = nullptr;
};
