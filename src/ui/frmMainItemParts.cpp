// The main window's commands on the parts of items: stored parameters, multi-run files, collections.
#include "frmMain.h"

#include "ItemWindows.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QMenu>

void frmMain::AddItemPartCommands(QMenu *schedule)
{
    schedule->addSeparator();
    AddAction(schedule, "mnuPList", QStringLiteral("Edit &Parameter Values"), [this] { EditParameters(); });
    AddAction(schedule, "mnuMultiRun", QStringLiteral("Edit &MultiRun"), [this] { EditMultiRun(); });
    AddAction(schedule, "mnuNewPack", QStringLiteral("&New Collection"),
              [this] { m_items->OpenNewCollection(this); });
    AddAction(schedule, "mnuEditPack", QStringLiteral("&Edit Collection"), [this] { EditCollection(); });
}

int frmMain::SelectedItem(const QString &title)
{
    if (Rows() < 2) {
        m_globals.prompter.ShowMessage(title, QStringLiteral("No Report in Schedule to Modify"));
        return -1;
    }
    if (SelectedRow() < 1) {
        m_globals.prompter.ShowMessage(title, QStringLiteral("Please select a report from the list"));
        return -1;
    }
    clsSchedule &schedule = m_globals.Schedule;
    schedule.Find(RowReportID(SelectedRow()));
    return schedule.Position();
}

void frmMain::EditParameters()
{
    const int position = SelectedItem(QStringLiteral("Edit Parameter Values"));
    if (position >= 0)
        m_items->OpenParameters(position, this);
}

void frmMain::EditMultiRun()
{
    if (SelectedItem(QStringLiteral("Edit MultiRun")) >= 0)
        m_items->OpenMultiRun(this);
}

// Only a collection item is edited as one.
void frmMain::EditCollection()
{
    const QString title = QStringLiteral("Edit Collection");
    const int position = SelectedItem(title);
    if (position < 0)
        return;
    if (m_globals.Schedule.File() != QLatin1String("COLLECTION"))
        return m_globals.prompter.ShowMessage(title,
                                              QStringLiteral("Please select a collection from the list"));
    m_items->OpenCollection(position, this);
}
