// The schedule item editor's menus and the windows it opens, its collections grid, and its watch over
// the schedule's cursor.
#include "frmSchedule.h"

#include "DesktopOpen.h"
#include "ItemWindows.h"
#include "WindowHandler.h"
#include "frmCrystal.h"
#include "frmList.h"
#include "frmMulti.h"
#include "frmTableMap.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QTableWidget>

void frmSchedule::BuildMenus(QMenuBar *menus)
{
    const auto add = [this](QMenu *menu, const char *name, const QString &caption, auto command) {
        QAction *entry = menu->addAction(caption);
        entry->setObjectName(QLatin1String(name));
        connect(entry, &QAction::triggered, this, command);
        return entry;
    };
    QMenu *file = menus->addMenu(QStringLiteral("&File"));
    add(file, "mnuSave", QStringLiteral("&Save"), [this] { Apply(); });
    add(file, "mnuExit", QStringLiteral("E&xit"), [this] { reject(); });
    add(menus->addMenu(QStringLiteral("&Run")), "mnuRun", QStringLiteral("&Run Now"), [this] { RunNow(); });

    QMenu *report = menus->addMenu(QStringLiteral("R&eport"));
    add(report, "mnuMultiRun", QStringLiteral("&Multi-Run"), [this] { OpenMultiRun(); });
    QMenu *output = report->addMenu(QStringLiteral("&Output"));
    output->setObjectName(QStringLiteral("mnuOutput"));
    add(output, "mnuOutputDisk", QStringLiteral("&Disk File"),
        [this] { SelectDestination(QStringLiteral("Disk File")); });
    add(output, "mnuOutputEmail", QStringLiteral("&EMail"),
        [this] { SelectDestination(QStringLiteral("Email")); });
    add(output, "mnuOutputPrinter", QStringLiteral("&Printer"),
        [this] { SelectDestination(QStringLiteral("Printer")); });
    add(report, "mnuParameters", QStringLiteral("&Parameters"), [this] { OpenParameters(); });
    add(report, "mnuTableMapping", QStringLiteral("&Table Mapping"),
        [this] { frmTableMap::OpenTableMap(m_globals, this, m_shownID, txtReportFile->text()); });
    QMenu *calendar = report->addMenu(QStringLiteral("&Custom Calendar.."));
    calendar->setObjectName(QStringLiteral("mnuCustomCalendar"));
    add(calendar, "mnuSelectFile", QStringLiteral("&Select File"), [this] { SelectCalendarFile(); });
    add(calendar, "mnuEditCalendar", QStringLiteral("&Edit Calendar"), [this] { EditCalendarFile(); });
    report->addSeparator();
    // The saved item as the viewer shows it, with its stored parameters, connections and table map.
    add(report, "mnuPreview", QStringLiteral("Pre&view"), [this] {
        if (Apply())
            frmCrystal::PreviewItem(m_globals, m_shownID, txtReportFile->text(), this);
    });

    add(menus->addMenu(QStringLiteral("&Help")), "mnuHelp", QStringLiteral("&Help"),
        [this] { OpenHelpPage(m_globals.prompter, m_globals.AppPath, QStringLiteral("schedule.htm")); });
}

void frmSchedule::FindShown()
{
    m_globals.Schedule.Find(m_shownID);
}

// The multi-run editor works on the item as stored; its file comes back into the window.
void frmSchedule::OpenMultiRun()
{
    RunHandler(m_globals.prompter, [this] {
        FindShown();
        connect(
            &m_windows.MultiRun(), &QDialog::finished, this,
            [this](int result) {
                if (result != QDialog::Accepted)
                    return;
                FindShown();
                txtMRFile->setText(m_globals.Schedule.Prompt());
            },
            Qt::SingleShotConnection);
        m_windows.OpenMultiRun(this);
    });
}

void frmSchedule::OpenParameters()
{
    RunHandler(m_globals.prompter, [this] {
        FindShown();
        m_windows.OpenParameters(m_globals.Schedule.Position(), this);
    });
}

void frmSchedule::SelectDestination(const QString &destination)
{
    cmbDest->setCurrentIndex(cmbDest->findText(destination));
}

void frmSchedule::SelectCalendarFile()
{
    const QString file =
        m_globals.prompter.AskOpenFileName(QStringLiteral("Select File"), m_globals.AppPath,
                                           QStringLiteral("List Files (*.lst);;All Files (*)"));
    if (file.isEmpty())
        return;
    RunHandler(m_globals.prompter, [this, &file] {
        FindShown();
        m_globals.Schedule.SetCustomCalendarFile(file);
        m_calendarFile = file;
        RefreshDayLine();
    });
}

void frmSchedule::EditCalendarFile()
{
    if (m_calendarFile.isEmpty())
        return m_globals.prompter.ShowMessage(
            QStringLiteral("Edit Calendar"), QStringLiteral("Please select a calendar file for this report"));
    frmList::OpenList(m_globals, this, frmList::DateTime, m_calendarFile);
}

// The collections that run the item shown, with their next runs.
void frmSchedule::ShowCollections()
{
    clsSchedule &schedule = m_globals.Schedule;
    fgCollection->setRowCount(0);
    for (int entry = 0; entry < schedule.CollectionCount(); ++entry) {
        schedule.SetCollectionPosition(entry);
        if (m_shownID.isEmpty() || schedule.CollectionItem() != m_shownID)
            continue;
        const QString collection = schedule.CollectionID();
        const int row = fgCollection->rowCount();
        fgCollection->insertRow(row);
        fgCollection->setItem(row, 0, new QTableWidgetItem(schedule.CollectionDescription(collection)));
        fgCollection->setItem(row, 1, new QTableWidgetItem(schedule.CollectionNextRun(collection)));
    }
}

void frmSchedule::ShowWhenOrCollections()
{
    const bool collected = optRunCollection->isChecked();
    frWhen->setVisible(!collected);
    fgCollection->setVisible(collected);
}

bool frmSchedule::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate)
        RunHandler(m_globals.prompter, [this] { CheckCursor(); });
    return QDialog::event(event);
}

void frmSchedule::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    txtReportName->setFocus();
}

void frmSchedule::CheckCursor()
{
    clsSchedule &schedule = m_globals.Schedule;
    if (m_checkingCursor || !isVisible() || m_shownID.isEmpty() || schedule.ReportID() == m_shownID)
        return;
    QScopedValueRollback checking(m_checkingCursor, true);
    const int cursor = schedule.Position();
    if (m_globals.prompter.AskYesNo(QStringLiteral("Edit Schedule"),
                                    QStringLiteral("You are currently editing schedule item ") + m_shownID +
                                        QStringLiteral("\nReport Title=") + txtReportName->text() +
                                        QStringLiteral("\nDo you wish to save changes?"))) {
        Apply();
        schedule.SetPosition(cursor);
    }
    ShowSchedule();
}
