#pragma once
// The global objects of a running scheduler, one of each, with the main window's state that the tick
// works on and the grid operations that keep NextRunDate current.

#include "connect/clsConnect.h"
#include "connect/clsMap.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"
#include "store/clsViewer.h"

#include <QMap>
#include <QString>

#include <memory>

// Held by pointer, so that the windows that include this header do not depend on the report engine.
class ListScheduleView;
class Prompter;
class ScheduleView;
struct RunContext;
struct RunState;

class QorloGlobals
{
public:
    // The objects are created in the order of start-up: schedule, connections, log, table map, viewer.
    QorloGlobals(const QString &appPath, Prompter &prompter);
    ~QorloGlobals();
    QorloGlobals(const QorloGlobals &) = delete;
    QorloGlobals &operator=(const QorloGlobals &) = delete;

    const QString AppPath;
    clsSchedule Schedule;
    clsConnect Connections;
    clsLog Log;
    clsMap TableMap;
    clsViewer Viewer;
    Prompter &prompter;

    // The earliest NextRun as of the last grid refresh; the cache that keeps idle ticks cheap.
    double NextRunDate = 0;
    // The next moment to rewrite the status pages; the first tick does it.
    double NextWebRefresh = 0;
    // An editor was opened on an active schedule.
    bool ReactivateOnFocus = false;
    // The rows to refresh when the main window comes back: 0 the first, -1 all, else that row.
    qint16 RefreshRowIndex = 0;
    // The command folders that are not read, with the reason; the status page shows them.
    QMap<QString, QString> RefusedCommandFolders;

    // The grid of the front; a ListScheduleView until the front sets its own.
    ScheduleView &View() { return *m_view; }
    void SetView(ScheduleView &view) { m_view = &view; }

    // The objects and hooks a report run works with.
    RunContext Context();

    // AppPath + "/" + name.
    QString PathOf(const QString &name) const;
    // Saves the schedule to Qorlo.XML in the application folder.
    void SaveSchedule();
    // Rewrites the status page of the schedule; `shutdown` adds the shutdown line.
    void SaveWeb(bool shutdown = false);

    // Refills the grid and takes NextRunDate and the caption's count of dated items from the
    // schedule; an empty schedule says so.
    void ViewTable();
    void RefreshRow(int row);
    // The caption and the start/stop menu state from Active, StartTime and StopTime.
    void DisplayCaption();

private:
    void CountActive();

    std::unique_ptr<ListScheduleView> m_listView;
    ScheduleView *m_view;
    // The process-wide state of report runs.
    std::unique_ptr<RunState> m_run;
    // ActiveCount parses every NextRun; like NextRunDate it follows the grid refreshes, so that the
    // caption of an idle tick costs nothing.
    qint32 m_activeCount = 0;
};
