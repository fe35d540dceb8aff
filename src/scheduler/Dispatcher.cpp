#include "Dispatcher.h"

#include "CommandFolders.h"
#include "FailureRecords.h"
#include "ItemRouter.h"
#include "Prompter.h"
#include "QorloGlobals.h"
#include "ScheduleView.h"

#include "calendar/NextRun.h"
#include "core/Clock.h"
#include "core/QorloError.h"
#include "core/StopRequest.h"
#include "run/ErrorTrap.h"
#include "store/ScheduleBackup.h"

namespace {

const QString kProcessingCaption = QStringLiteral("QorloMANAGER - File and Report Manager (processing)");
constexpr double kWebRefreshDays = 10.0 / (24 * 60);

} // namespace

Dispatcher::Dispatcher(QorloGlobals &globals, int intervalMs, QObject *parent)
    : QObject(parent), m_globals(globals)
{
    m_timer.setInterval(intervalMs);
    connect(&m_timer, &QTimer::timeout, this, &Dispatcher::QueueTick);
}

void Dispatcher::Start()
{
    m_timer.start();
}

// The timer's slot only queues the tick: a queued call is delivered by the nested event pumps of the
// mail waits, so ticks nest inside a running item.
void Dispatcher::QueueTick()
{
    QMetaObject::invokeMethod(this, &Dispatcher::TickOrFail, Qt::QueuedConnection);
}

void Dispatcher::TickOrFail()
{
    try {
        Tick();
    } catch (const StopRequested &) {
        // The program closes once the event loop sees the signal.
    } catch (...) {
        m_globals.prompter.FatalError(CaughtError());
    }
}

void Dispatcher::Tick()
{
    // Once the program is told to stop, nothing new starts.
    if (StopRequest::Requested())
        return;
    ++m_depth;
    struct DepthGuard
    {
        Dispatcher &self;
        ~DepthGuard()
        {
            Q_EMIT self.TickEnded(self.m_depth);
            --self.m_depth;
        }
    } guard{*this};

    RefreshStatusPages(Now());
    m_globals.DisplayCaption();
    PollCommandFolders(m_globals);
    if (StopRequest::Requested())
        return;
    BackupIfDue(m_globals.Schedule, [this] { m_globals.SaveWeb(); });
    if (!ApplyTimers() || !m_globals.Schedule.Active)
        return;
    if (m_globals.NextRunDate > Now() || m_globals.View().Rows() < 2)
        return;
    RunDueItem();
}

void Dispatcher::RefreshStatusPages(double now)
{
    if (m_globals.NextWebRefresh > now)
        return;
    m_globals.SaveWeb();
    m_globals.NextWebRefresh = now + kWebRefreshDays;
}

// False when a timer ends the tick: a pending start holds back everything after it, a stop that has
// come ends the tick once it has stopped the schedule.
bool Dispatcher::ApplyTimers()
{
    clsSchedule &schedule = m_globals.Schedule;
    if (!schedule.StartTime.isEmpty()) {
        const TimerAction start = ApplyStartTimer(schedule);
        if (start == TimerAction::Hold)
            return false;
        if (start == TimerAction::Started)
            m_globals.DisplayCaption();
    }
    if (!schedule.StopTime.isEmpty() && ApplyStopTimer(schedule) == TimerAction::Stopped) {
        m_globals.DisplayCaption();
        return false;
    }
    return true;
}

void Dispatcher::RunDueItem()
{
    ScheduleView &view = m_globals.View();
    view.SetCaption(kProcessingCaption);
    const int selectedRow = view.SelectedRow();
    const int selectedColumn = view.SelectedColumn();
    const QString reportID = GetDueItem();
    if (!reportID.isEmpty()) {
        const int row = RowOf(reportID);
        view.SetSchedule(ScheduleView::RunningColour, row);
        RecordFailure([&] { RunScheduleItem(m_globals, reportID); },
                      [&](const QorloError &error) { HoldItem(m_globals, reportID, error); });
        view.SetSchedule(ScheduleView::NormalColour, row);
        m_globals.RefreshRow(row);
    }
    view.SetSelectedColumn(selectedColumn);
    view.SetSelectedRow(selectedRow);
    m_globals.DisplayCaption();
}

int Dispatcher::RowOf(const QString &reportID) const
{
    ScheduleView &view = m_globals.View();
    for (int row = 1; row < view.Rows(); ++row) {
        if (view.RowReportID(row) == reportID)
            return row;
    }
    return 0;
}

QString Dispatcher::GetDueItem()
{
    clsSchedule &schedule = m_globals.Schedule;
    if (!schedule.ProcessingID.isEmpty())
        return QString();
    const int position = schedule.Position();
    if (Now() < NextReportRun(schedule))
        return QString();
    schedule.SetPosition(schedule.NextItemIndex);
    const QString reportID = schedule.ReportID();
    RecordFailure(
        [&] {
            SaveNextTime(schedule, Now());
            m_globals.SaveSchedule();
        },
        [&](const QorloError &error) { HoldItem(m_globals, reportID, error); });
    schedule.SetPosition(position);
    return reportID;
}

void Dispatcher::StartSchedule()
{
    m_globals.Schedule.Active = true;
    m_globals.DisplayCaption();
}

void Dispatcher::StopSchedule()
{
    m_globals.Schedule.Active = false;
    m_globals.DisplayCaption();
}

void Dispatcher::RunNow(int row)
{
    ScheduleView &view = m_globals.View();
    clsSchedule &schedule = m_globals.Schedule;
    if (view.Rows() < 2 || row < 1)
        return;
    const QString title = QStringLiteral("Run Now");
    if (!schedule.ProcessingID.isEmpty()) {
        m_globals.prompter.ShowMessage(title, QStringLiteral("Please wait until report finished processing"));
        return;
    }
    const QString reportID = view.RowReportID(row);
    if (!m_globals.prompter.AskYesNo(title,
                                     QStringLiteral("Confirm you want to run Schedule Item ") + reportID))
        return;
    m_globals.prompter.SetBusy(true);
    schedule.Find(reportID);
    const int position = schedule.Position();
    view.SetSchedule(ScheduleView::RunningColour, row);
    RunScheduleItem(m_globals, reportID);
    view.SetSchedule(ScheduleView::NormalColour, row);
    schedule.SetPosition(position);
    m_globals.SaveSchedule();
    m_globals.prompter.SetBusy(false);
    m_globals.RefreshRow(row);
}

bool Dispatcher::StopForEditing(bool refuseWhileRunning)
{
    clsSchedule &schedule = m_globals.Schedule;
    if (refuseWhileRunning && !schedule.ProcessingID.isEmpty()) {
        m_globals.prompter.ShowMessage(
            QStringLiteral("Modify Schedule"),
            QStringLiteral("Please wait until the current report processing has completed"));
        return false;
    }
    if (schedule.Count() == 0)
        return true;
    if (schedule.Active)
        m_globals.ReactivateOnFocus = true;
    StopSchedule();
    return true;
}

void Dispatcher::StopForAdvance()
{
    StopSchedule();
    m_globals.RefreshRowIndex = -1;
}

void Dispatcher::MainWindowInFront()
{
    const qint16 index = m_globals.RefreshRowIndex;
    if (index < 0)
        m_globals.ViewTable();
    else
        m_globals.RefreshRow(index == 0 ? 1 : index);
    if (m_globals.ReactivateOnFocus) {
        m_globals.ReactivateOnFocus = false;
        StartSchedule();
    }
}
