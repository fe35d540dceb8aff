#pragma once
// The run log viewer: the log's rows under one of six filters, with clearing, export to CSV, the log
// settings, and a refill whenever the log file changes, so that it follows a running schedule.

#include <QDialog>

#include <array>

class QorloGlobals;
class QAction;
class QFileSystemWatcher;
class QTableView;
class LogRowsModel;

class frmLog : public QDialog
{
    Q_OBJECT
public:
    explicit frmLog(QorloGlobals &globals, QWidget *parent = nullptr);
    ~frmLog() override;

    // Shows the window with its kept measures and filter, in front; an open one only comes to the front.
    void ShowLog();
    // Stores the filter in the viewer settings, marks its menu entry and refills the grid.
    void ViewLog(qint16 filter);
    qint16 Filter() const { return m_filter; }

protected:
    void hideEvent(QHideEvent *event) override;

private:
    void BuildMenus();
    QAction *AddEntry(QMenu *menu, const char *name, const QString &caption, std::function<void()> action);
    void ApplyMeasures();
    void SaveMeasures();
    // The grid from the log in memory; an empty log says so when `tellEmpty`.
    void FillGrid(bool tellEmpty);
    void WatchLogFile();
    void LogFileChanged();
    void mnuClear_Click();
    void mnuExport_Click();
    void mnuSettings_Click();
    void mnuSave_Click();
    void mnuRefresh_Click();

    QorloGlobals &m_globals;
    QTableView *fgView = nullptr;
    LogRowsModel *m_rows = nullptr;
    std::array<QAction *, 6> m_filterEntries{};
    qint16 m_filter = 0;
    QFileSystemWatcher *m_watcher = nullptr;
    // The log file as the grid last showed it: its time and size.
    QString m_shownStamp;
};
