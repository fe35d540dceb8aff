#include "QorloGlobals.h"

#include "CommandFolderAccess.h"
#include "ListScheduleView.h"
#include "PrinterNames.h"
#include "Prompter.h"

#include "calendar/NextRun.h"
#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "log/StatusPages.h"
#include "run/RunState.h"

QorloGlobals::QorloGlobals(const QString &appPath, Prompter &frontPrompter)
    : AppPath(appPath), Schedule(appPath), Connections(appPath), Log(appPath), TableMap(appPath),
      Viewer(appPath), prompter(frontPrompter), NextWebRefresh(DayDate::FromParts(2000, 1, 1)),
      m_listView(std::make_unique<ListScheduleView>(Schedule)), m_view(m_listView.get()),
      m_run(std::make_unique<RunState>())
{
    Schedule.PrinterNames = InstalledPrinterNames;
    InstallLogWebPage(Log);
}

QorloGlobals::~QorloGlobals() = default;

RunContext QorloGlobals::Context()
{
    return RunContext{Schedule,
                      Log,
                      Connections,
                      TableMap,
                      *m_run,
                      AppPath,
                      [this] { SaveWeb(); },
                      [this](const QString &title, const QString &text) {
                          prompter.ShowMessage(title, text, Prompter::Icon::Warning);
                      }};
}

QString QorloGlobals::PathOf(const QString &name) const
{
    return CommonFile::JoinPath(AppPath, name);
}

void QorloGlobals::SaveSchedule()
{
    Schedule.Save(PathOf(QStringLiteral("Qorlo.XML")));
}

void QorloGlobals::SaveWeb(bool shutdown)
{
    QStringList notes;
    for (auto folder = RefusedCommandFolders.cbegin(); folder != RefusedCommandFolders.cend(); ++folder)
        notes.append(RefusalNote(folder.key(), folder.value()));
    ::SaveWeb(Schedule, shutdown, NextReportRun(Schedule), notes);
}

void QorloGlobals::ViewTable()
{
    m_view->ViewTable();
    CountActive();
    if (Schedule.Count() == 0) {
        prompter.ShowMessage(QStringLiteral("QorloMANAGER"), QStringLiteral("No Data in Schedule"));
        NextRunDate = Now();
        return;
    }
    NextRunDate = NextReportRun(Schedule);
}

void QorloGlobals::RefreshRow(int row)
{
    m_view->RefreshRow(row);
    CountActive();
    NextRunDate = NextReportRun(Schedule);
}

void QorloGlobals::CountActive()
{
    m_activeCount = Schedule.ActiveCount();
}

void QorloGlobals::DisplayCaption()
{
    QString caption = QStringLiteral("QorloMANAGER - File and Report Manager ");
    if (Schedule.Active) {
        caption += QStringLiteral("(active: ") + QString::number(m_activeCount) + QLatin1Char(')');
        if (!Schedule.StopTime.isEmpty())
            caption += QStringLiteral(" (Will stop on timer at ") + Schedule.StopTime + QLatin1Char(')');
    } else {
        caption += QStringLiteral("(stopped)");
        if (!Schedule.StartTime.isEmpty())
            caption += QStringLiteral(" (Will start on timer at ") + Schedule.StartTime + QLatin1Char(')');
    }
    m_view->SetCaption(caption);
    m_view->SetStartStopMenu(!Schedule.Active, Schedule.Active);
}
