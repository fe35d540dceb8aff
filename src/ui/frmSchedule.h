#pragma once
// The schedule item editor: shows the item at the schedule's cursor, pages through the schedule and
// writes the item back, saving the schedule file, on Save or Apply.

#include "MomentControls.h"

#include <QDialog>

class ItemWindows;
class QorloGlobals;
class QAction;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;
class QMenuBar;
class QPushButton;
class QTabWidget;
class QTableWidget;
class QVBoxLayout;

class frmSchedule : public QDialog
{
    Q_OBJECT
public:
    explicit frmSchedule(ItemWindows &windows, QWidget *parent = nullptr);

    // Fills the window from the item at the schedule's cursor; with no item there, the window shows
    // the defaults of a new item, which writing back adds to the schedule.
    void ShowSchedule();
    // Writes the window into the item shown and saves the schedule file; false when a check refused
    // the item, which then stays as it was apart from its name and file. A number field that holds no
    // number raises its error before anything is written.
    bool WriteSchedule();

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

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
    void BuildMenus(QMenuBar *menus);
    void SetTabOrder();
    void ShowItem();
    void ShowNewItem();
    void ShowCollections();
    void ShowWhenOrCollections();
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
    QString StoredField(int column) const;
    void RefreshDayLine();
    void WriteWhen();
    void WriteOutput(const QString &dest, qint16 copies);

    void cmdSave_Click();
    // WriteSchedule as a command: a failure shows its box and the window stays as it is.
    bool Apply();
    // The item shown at the cursor, for the windows opened from this one.
    void FindShown();
    void OpenMultiRun();
    void OpenParameters();
    void SelectDestination(const QString &destination);
    void SelectCalendarFile();
    void EditCalendarFile();
    // Something else moved the schedule's cursor while the window was in the back: offers to save the
    // window into its own item, then shows the item at the cursor.
    void CheckCursor();
    // Runs the shown item as stored, at once; its NextRun stays.
    void RunNow();
    // Writes the window back, then moves the cursor through `move` and shows the item found.
    template <typename Move> void Navigate(Move move);

    ItemWindows &m_windows;
    QorloGlobals &m_globals;
    bool m_filling = false;
    bool m_checkingCursor = false;
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
    QGroupBox *frWhen = nullptr;
    QTableWidget *fgCollection = nullptr;
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
    QPushButton *cmdFirst = nullptr;
    QPushButton *cmdPrior = nullptr;
    QPushButton *cmdNext = nullptr;
    QPushButton *cmdLast = nullptr;
    QPushButton *cmdRun = nullptr;
    QPushButton *cmdApply = nullptr;
    QPushButton *cmdSave = nullptr;
    QPushButton *cmdExit = nullptr;
};
