#pragma once
// The schedule item editor: shows the item at the schedule's cursor, pages through the schedule and
// writes the item back, saving the schedule file, on Save or Apply.

#include "MomentControls.h"

#include <QDialog>

class QorloGlobals;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;
class QTabWidget;
class QVBoxLayout;

class frmSchedule : public QDialog
{
    Q_OBJECT
public:
    explicit frmSchedule(QorloGlobals &globals, QWidget *parent = nullptr);

    // Fills the window from the item at the schedule's cursor.
    void ShowSchedule();
    // Writes the window into the item at the cursor and saves the schedule file; false when a check
    // refused the item, which then stays as it was apart from its name and file.
    bool WriteSchedule();

private:
    // The tabs of tbOutput, in their order.
    enum Tab { tabEmail, tabMessage, tabDisk, tabPrinter, tabMultirun, tabOptions, tabNotify, tabEachRun };

    void BuildFields(QVBoxLayout *layout);
    void BuildTabs(QVBoxLayout *layout);
    QWidget *EmailTab();
    QWidget *MessageTab();
    QWidget *PrinterTab();
    QWidget *MultirunTab();
    QWidget *OptionsTab();
    QWidget *NotifyTab();
    QWidget *EachRunTab();
    void BuildCommands(QVBoxLayout *layout);
    QLineEdit *LineEdit(const char *name);
    QPlainTextEdit *TextEdit(const char *name);
    QComboBox *ComboBox(const char *name, const QStringList &choices, bool editable = false);

    void ShowWhen();
    void ShowOutput();
    void ShowPrinter();
    // The tabs of the destination's first letter; with `filling` the multi-run file is left alone.
    void ShowDestinationTabs(bool filling);
    // The "Options" tab from the item's mail form, date stamp and page settings.
    void SetOptions();
    void RefreshDayLine();
    void WriteWhen();
    void WriteOutput(const QString &dest);

    void cmdSave_Click();
    // Runs the shown item as stored, at once; its NextRun stays.
    void RunNow();
    // Writes the window back, then moves the cursor through `move` and shows the item found.
    template <typename Move> void Navigate(Move move);

    QorloGlobals &m_globals;
    bool m_filling = false;
    QString m_shownID;
    QString m_calendarFile;

    QLineEdit *txtReportName = nullptr;
    QLineEdit *txtReportFile = nullptr;
    QPlainTextEdit *txtDesc = nullptr;
    QComboBox *cmbDest = nullptr;
    QComboBox *cmbFormat = nullptr;
    QRadioButton *optRunScheduled = nullptr;
    QRadioButton *optRunHold = nullptr;
    QRadioButton *optRunCollection = nullptr;
    MomentControls m_nextRun;
    QLineEdit *txtEvery = nullptr;
    QComboBox *cmbWhen = nullptr;
    QLabel *lDayMessage = nullptr;
    QTabWidget *tbOutput = nullptr;

    QLineEdit *txtMail = nullptr;
    QLineEdit *txtMailCC = nullptr;
    QLineEdit *txtMailBCC = nullptr;
    QLineEdit *txtMailFrom = nullptr;
    QPlainTextEdit *txtAttachFiles = nullptr;
    QLineEdit *txtMailSubject = nullptr;
    QPlainTextEdit *txtMailMessage = nullptr;
    QLineEdit *txtOutput = nullptr;
    QComboBox *cmbPrinter = nullptr;
    QLineEdit *txtPRCopies = nullptr;
    QComboBox *cmbOrient = nullptr;
    QLineEdit *txtMRFile = nullptr;
    QPlainTextEdit *txtAttachfilesMR = nullptr;
    QComboBox *cmbNoRecs = nullptr;
    QGroupBox *frEmail = nullptr;
    QRadioButton *optAttach = nullptr;
    QRadioButton *optBody = nullptr;
    QGroupBox *frHTML = nullptr;
    QRadioButton *optOnePage = nullptr;
    QRadioButton *optSepPage = nullptr;
    QCheckBox *chkDateStamp = nullptr;
    QCheckBox *chkRetain = nullptr;
    QComboBox *cmbNotifyTo = nullptr;
    QPlainTextEdit *txtNotifyMsg = nullptr;
    QComboBox *cmbErrorTo = nullptr;
    QPlainTextEdit *txtErrorMsg = nullptr;
    QComboBox *cmbMultiSuccessTo = nullptr;
    QPlainTextEdit *txtMultiSuccessMsg = nullptr;
    QComboBox *cmbMultiErrorTo = nullptr;
    QPlainTextEdit *txtMultiErrorMsg = nullptr;
};
