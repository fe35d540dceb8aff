// The main window's commands on schedule items: insert a file or a folder, modify, duplicate, delete.
#include "frmMain.h"
#include "ItemWindows.h"

#include "core/CommonFile.h"
#include "core/TWReg.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QItemSelectionModel>
#include <QMenu>
#include <QTableWidget>

namespace {

// The settings section that remembers the folders of the file dialogs.
const QString kSystem = QStringLiteral("System");

} // namespace

void frmMain::InsertItem()
{
    const QString folderSetting = QStringLiteral("Load Report");
    const QString file = m_globals.prompter.AskOpenFileName(
        QStringLiteral("Insert Item into Schedule"), TWReg::ReadSetting(kSystem, folderSetting, QString()),
        QStringLiteral("Crystal Report (*.rpt);;Application (*);;QorloGlobal Process (*.xml)"));
    if (file.isEmpty())
        return;
    TWReg::SaveSetting(kSystem, folderSetting, CommonFile::FolderOf(file));
    clsSchedule &schedule = m_globals.Schedule;
    schedule.AddNew();
    const bool report = CommonFile::FileExtension(file).toLower() == QLatin1String("rpt");
    schedule.SetName(CommonFile::FileBaseName(file) +
                     (report ? QString() : QStringLiteral(" (Application)")));
    schedule.SetFile(file);
    // Unscheduled until the operator edits it.
    schedule.SetSchedule(QStringLiteral("N"));
    schedule.SetFreqTimes(QStringLiteral("1"));
    schedule.SetFrequency(QStringLiteral("W"));
    ShowInsertedItems();
}

void frmMain::InsertFolder()
{
    const QString folderSetting = QStringLiteral("Load Folder");
    const QString folder =
        m_globals.prompter.AskFolder(QStringLiteral("Insert Report Folder into Schedule"),
                                     TWReg::ReadSetting(kSystem, folderSetting, QString()));
    if (folder.isEmpty())
        return;
    TWReg::SaveSetting(kSystem, folderSetting, folder);
    // The schedule takes the folder of a path in it.
    m_globals.Schedule.AddFolder2Schedule(folder + QLatin1Char('/'));
    ShowInsertedItems();
}

// Saves and shows the grid with the last item, the newest, selected.
void frmMain::ShowInsertedItems()
{
    m_globals.SaveSchedule();
    m_globals.ViewTable();
    const QString newest = m_globals.Schedule.ReportID();
    for (int row = 1; row < Rows(); ++row) {
        if (RowReportID(row) == newest)
            SetSelectedRow(row);
    }
}

void frmMain::AddModifyCommand(QMenu *schedule)
{
    AddAction(schedule, "mnuModifyReport", QStringLiteral("&Modify"), [this] { ModifyItem(); });
    connect(m_grid, &QTableWidget::cellDoubleClicked, this, [this](int tableRow) {
        Guarded([this, tableRow] {
            SetSelectedRow(tableRow + 1);
            ModifyItem();
        });
    });
}

void frmMain::ModifyItem()
{
    // A run in progress is refused by the stopping itself, before anything else is said.
    const bool running = !m_globals.Schedule.ProcessingID.isEmpty();
    const QString title = QStringLiteral("Modify Schedule Item");
    if (!running && Rows() < 2)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("No Report in Schedule to Modify"));
    if (!running && SelectedRow() < 1)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("Please select a report from the list"));
    m_globals.Schedule.Find(RowReportID(SelectedRow()));
    m_items->OpenEditor(this);
}

void frmMain::DuplicateItem()
{
    const QString title = QStringLiteral("Duplicate Schedule Item");
    if (Rows() < 2)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("No item in Schedule to Duplicate"));
    if (SelectedRow() < 1)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("Please select an item from the list"));
    clsSchedule &schedule = m_globals.Schedule;
    const QString original = RowReportID(SelectedRow());
    schedule.Find(original);
    schedule.Duplicate();
    schedule.ParmDuplicate(original, schedule.ReportID());
    m_globals.SaveSchedule();
    m_globals.ViewTable();
}

void frmMain::DeleteItems()
{
    const QString title = QStringLiteral("Delete Schedule Item");
    if (Rows() < 2)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("No Item in Schedule to Delete"));
    QStringList ids;
    for (const QModelIndex &index : m_grid->selectionModel()->selectedRows())
        ids.append(RowReportID(index.row() + 1));
    if (ids.isEmpty() && SelectedRow() >= 1)
        ids.append(RowReportID(SelectedRow()));
    if (ids.isEmpty())
        return m_globals.prompter.ShowMessage(title, QStringLiteral("Please select an item in the list"));
    clsSchedule &schedule = m_globals.Schedule;
    bool confirmed = false;
    if (ids.size() == 1) {
        schedule.Find(ids.first());
        confirmed = m_globals.prompter.AskYesNo(QStringLiteral("Remove Item ") + ids.first() +
                                                    QStringLiteral(" from Schedule"),
                                                QStringLiteral("Confirm Delete of ") + schedule.Name());
    } else {
        confirmed =
            m_globals.prompter.AskYesNo(QStringLiteral("Delete Schedule Items"),
                                        QStringLiteral("Confirm Delete of ") + QString::number(ids.size()) +
                                            QStringLiteral(" items from the schedule"));
    }
    if (!confirmed)
        return;
    for (const QString &id : ids)
        schedule.Delete(id);
    m_globals.SaveSchedule();
    m_globals.ViewTable();
}
