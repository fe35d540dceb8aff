#pragma once
// The heartbeat: a tick every 6 seconds that refreshes the status pages, polls the command folders,
// takes the backup, honours the start and stop timers and runs at most one due item; also the
// operator's start, stop and run-now commands and the rule that editing stops the schedule.

#include <QObject>
#include <QString>
#include <QTimer>

class QorloGlobals;

class Dispatcher : public QObject
{
    Q_OBJECT
public:
    static constexpr int TickInterval = 6000;

    // Tests pass a shorter interval.
    explicit Dispatcher(QorloGlobals &globals, int intervalMs = TickInterval, QObject *parent = nullptr);

    // Starts the timer; it is never stopped while the dispatcher lives.
    void Start();
    // One tick, all of its steps in order; none once a stop is requested. A failure that escapes it
    // ends the process, after the item or command file it arose on is recorded and set aside.
    void Tick();
    // The ReportID to run now, its NextRun already moved on and saved; empty when nothing is due.
    QString GetDueItem();

    void StartSchedule();
    void StopSchedule();
    // Runs the item of a grid row at once after the operator confirms; NextRun stays.
    void RunNow(int row);
    // Before an editor opens on the schedule: stops it and remembers to start it again. The item
    // editor (`refuseWhileRunning`) is refused during a run; false means do not open it.
    bool StopForEditing(bool refuseWhileRunning);
    // Before Advance: stops the schedule for good and asks for all rows to be refreshed.
    void StopForAdvance();
    // The main window is in front again.
    void MainWindowInFront();

Q_SIGNALS:
    // After each tick, nested ones included; `depth` is 1 for a tick that no other tick encloses.
    void TickEnded(int depth);

private:
    void QueueTick();
    void TickOrFail();
    void RefreshStatusPages(double now);
    bool ApplyTimers();
    void RunDueItem();
    int RowOf(const QString &reportID) const;

    QorloGlobals &m_globals;
    QTimer m_timer;
    int m_depth = 0;
};
