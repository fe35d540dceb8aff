#pragma once
// The main window: the schedule grid (the core's ScheduleView), the schedule's commands and Form.XML.

#include "scheduler/ScheduleView.h"

#include <QMainWindow>
#include <QPointer>
#include <functional>

class DeskCommands;
class Dispatcher;
class QorloGlobals;
class QAction;
class QMenu;
class QTableWidget;
class QWindow;
class ItemWindows;
class frmAdv;
class frmBackup;
class frmDomain;
class frmSMTP;
class frmSendMail;
class frmTextView;
class frmSetTimer;

class frmMain : public QMainWindow, public ScheduleView
{
    Q_OBJECT
public:
    static constexpr int ColumnCount = 6;

    // Becomes the core's view of the schedule.
    frmMain(QorloGlobals &globals, Dispatcher &dispatcher, QWidget *parent = nullptr);

    // The window's part of the load step: column widths, check marks, window state and measures,
    // and the sort column of Form.XML.
    void ApplyViewerSettings();
    // Puts the grid rows in ascending order by the column; the schedule's rows stay where they are.
    void SortBy(int column);
    int SortColumn() const { return m_sortColumn; }

    void ViewTable() override;
    void RefreshRow(int row) override;
    void SetSchedule(int colour, int row) override;
    int Rows() const override;
    QString RowReportID(int row) const override;
    int SelectedRow() const override;
    int SelectedColumn() const override;
    void SetSelectedRow(int row) override;
    void SetSelectedColumn(int column) override;
    void SetCaption(const QString &caption) override;
    void SetStartStopMenu(bool startEnabled, bool stopEnabled) override;
    void SetStatusText(const QString &text) override;
    void ShowWindow() override;
    void OpenMailSettings() override;

Q_SIGNALS:
    // The operator left through mnuExit: the front ends the process at once.
    void ExitRequested();

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void BuildGrid();
    void BuildMenus();
    QAction *AddAction(QMenu *menu, const char *name, const QString &caption, std::function<void()> action);
    // Runs a command; a failure shows its run-time error box and ends that command only.
    void Guarded(const std::function<void()> &command);
    void WriteCells(int gridRow);
    void SetCell(int gridRow, int column, const QString &text);
    void RebuildSortIndex();
    void PaintCell(int tableRow, int column, int colour);
    void OnCurrentCellChanged(int row, int column, int previousRow, int previousColumn);
    void OnFocusWindowChanged(QWindow *window);
    // The window measures, column widths and sort column into the viewer settings, and Form.XML.
    void StoreWindowState();
    void SaveWindowState();
    bool OtherWindowsOpen() const;
    void CloseOtherWindows();
    void Exit();
    // mnuNewReport and mnuNewFolder: a file, or every report of a folder, as new unscheduled items.
    void InsertItem();
    void InsertFolder();
    void ShowInsertedItems();
    // mnuModifyReport and a double click on a row: the item editor on the selected item, the schedule
    // stopped meanwhile.
    void AddModifyCommand(QMenu *schedule);
    void ModifyItem();
    // mnuDuplicate: the selected item to a new one with its parameters.
    void DuplicateItem();
    // mnuDeleteReport and the Delete key: the selected items, after the operator confirms.
    void DeleteItems();
    // mnuPList, mnuMultiRun, mnuNewPack and mnuEditPack: the parameters, the multi-run file and the
    // collections of items.
    void AddItemPartCommands(QMenu *schedule);
    // The selected item's row in the schedule, at the cursor; -1 after saying what is missing.
    int SelectedItem(const QString &title);
    void EditParameters();
    void EditMultiRun();
    void EditCollection();
    // The smallest size that shows the six column headings and ten rows.
    QSize ContentSize() const;
    // One window of each kind, made when first used and kept, filled afresh at each opening.
    template <typename Window> void OpenSettingsWindow(Window *&window);
    void OpenDomainShortcuts();
    void OpenBackupSettings();
    // mnuAdvance: the schedule stops for good before the Advance window opens.
    void OpenAdvance();
    void OpenScheduleTimers();
    void OpenHelpMessage();
    void ViewSmtpLog();
    void ToggleAutoRun();
    void ToggleEncryptDB();

    QorloGlobals &m_globals;
    Dispatcher &m_dispatcher;
    QTableWidget *m_grid = nullptr;
    QAction *m_start = nullptr;
    QAction *m_stop = nullptr;
    QAction *m_autoRun = nullptr;
    QAction *m_encryptDB = nullptr;
    DeskCommands *m_desk = nullptr;
    frmSMTP *m_smtp = nullptr;
    frmDomain *m_domains = nullptr;
    frmSendMail *m_helpMessage = nullptr;
    frmTextView *m_textView = nullptr;
    frmBackup *m_backup = nullptr;
    frmAdv *m_advance = nullptr;
    frmSetTimer *m_timers = nullptr;
    ItemWindows *m_items = nullptr;
    QPointer<QWindow> m_lastFocusWindow;
    qint16 m_sortColumn = 0;
    // Resizes before the load step has ended do not write Form.XML.
    bool m_loaded = false;
};
