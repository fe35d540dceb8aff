#include "DeskCommands.h"

#include "HandlerErrors.h"
#include "OpenForms.h"
#include "frmAbout.h"
#include "frmBusinessCal.h"
#include "frmConnect.h"
#include "frmDates.h"
#include "frmFind.h"
#include "frmFormat.h"
#include "frmLog.h"
#include "frmLogSetting.h"
#include "frmMain.h"
#include "frmSettings.h"
#include "frmTableMap.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QWindow>

DeskCommands::DeskCommands(QorloGlobals &globals, frmMain &main)
    : QObject(&main), m_globals(globals), m_main(main)
{
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &DeskCommands::OnFocusWindowChanged);
}

QAction *DeskCommands::Add(QMenu *menu, const char *name, const QString &caption,
                           void (DeskCommands::*command)())
{
    QAction *entry = menu->addAction(caption);
    entry->setObjectName(QLatin1String(name));
    connect(entry, &QAction::triggered, this,
            [this, command] { RunHandler(m_globals.prompter, [&] { (this->*command)(); }); });
    return entry;
}

void DeskCommands::AddEntries(QMenu *schedule, QMenu *settings, QMenu *view, QMenu *help)
{
    schedule->addSeparator();
    Add(schedule, "mnuReplace", QStringLiteral("&Find and Replace"), &DeskCommands::OpenFindReplace);
    Add(schedule, "mnuTestConnection", QStringLiteral("&Test the Database Connection"),
        &DeskCommands::TestConnection);

    settings->addSeparator();
    Add(settings, "mnuBusCal", QStringLiteral("&Business Calendar"), &DeskCommands::OpenBusinessCalendar);
    Add(settings, "mnuDates", QStringLiteral("&Dynamic Dates"), &DeskCommands::OpenDynamicDates);
    Add(settings, "mnuConnection", QStringLiteral("Database &Connection"), &DeskCommands::OpenConnections);
    Add(settings, "mnuTableMapping", QStringLiteral("&Table Mapping"), &DeskCommands::OpenTableMap);
    Add(settings, "mnuExportFormat", QStringLiteral("&Export Format"), &DeskCommands::OpenExportFormats);
    Add(settings, "mnuLogSettings", QStringLiteral("&Log File"), &DeskCommands::OpenLogSettings);
    Add(settings, "mnuPrinterSettings", QStringLiteral("&Output"), &DeskCommands::OpenOutputSettings);

    Add(view, "mnuViewLog", QStringLiteral("View &Report Log"), &DeskCommands::OpenLogViewer);
    Add(view, "mnuBrowse", QStringLiteral("&View Report Now"), &DeskCommands::ViewReportNow);

    QMenuBar *bar = m_main.menuBar();
    AddListMenu(bar, help->menuAction());
    AddWindowMenu(bar, help->menuAction());

    QAction *first = help->actions().value(0);
    help->insertAction(
        first, Add(help, "mnuHelpFile", QStringLiteral("QorloMANAGER Help"), &DeskCommands::OpenHelp));
    help->insertAction(
        first, Add(help, "mnuKnowledge", QStringLiteral("&Knowledgebase"), &DeskCommands::OpenKnowledgebase));
    help->insertSeparator(first);
    Add(help, "mnuSendXML", QStringLiteral("Send XML Files"), &DeskCommands::SendXmlFiles);
    Add(help, "mnuSendConnectDB", QStringLiteral("Send Connection Details"),
        &DeskCommands::SendConnectionDetails);
    help->addSeparator();
    Add(help, "mnuAbout", QStringLiteral("&About QorloMANAGER"), &DeskCommands::OpenAbout);
}

void DeskCommands::AddListMenu(QMenuBar *bar, QAction *before)
{
    auto *lists = new QMenu(QStringLiteral("&Lists"), bar);
    Add(lists, "mnuNewList", QStringLiteral("&New List"), &DeskCommands::NewList);
    Add(lists, "mnuEditList", QStringLiteral("&Edit List"), &DeskCommands::EditList);
    Add(lists, "mnuDelList", QStringLiteral("&Delete List File"), &DeskCommands::DeleteList);
    bar->insertMenu(before, lists);
}

void DeskCommands::AddWindowMenu(QMenuBar *bar, QAction *before)
{
    auto *windows = new QMenu(QStringLiteral("&Window"), bar);
    windows->setObjectName(QStringLiteral("mnuWindow"));
    for (int index = 0; index < WindowEntries; ++index) {
        QAction *entry = windows->addAction(QString());
        entry->setObjectName(QStringLiteral("mnuWin") + QString::number(index));
        connect(entry, &QAction::triggered, this, [entry] {
            if (auto *window = entry->data().value<QWidget *>()) {
                window->raise();
                window->activateWindow();
            }
        });
        m_windowEntries[size_t(index)] = entry;
    }
    connect(windows, &QMenu::aboutToShow, this, &DeskCommands::RebuildWindowList);
    bar->insertMenu(before, windows);
    RebuildWindowList();
}

void DeskCommands::RebuildWindowList()
{
    const QList<QWidget *> forms = OpenForms(&m_main);
    for (int index = 0; index < WindowEntries; ++index) {
        QAction *entry = m_windowEntries[size_t(index)];
        QWidget *form = forms.value(index);
        entry->setData(QVariant::fromValue(form));
        entry->setText(form ? form->windowTitle() : QStringLiteral("No Forms open"));
        entry->setVisible(form || index == 0);
        // The entry that says no form is open leads nowhere.
        entry->setEnabled(form != nullptr);
    }
}

void DeskCommands::OnFocusWindowChanged(QWindow *window)
{
    if (window && window == m_main.windowHandle())
        RebuildWindowList();
}

template <typename Window> void DeskCommands::OpenOnce(Window *&window)
{
    if (!window)
        window = new Window(m_globals, &m_main);
    else if constexpr (requires { window->LoadSettings(); })
        window->LoadSettings();
    window->open();
}

void DeskCommands::OpenBusinessCalendar()
{
    OpenOnce(m_businessCal);
}

void DeskCommands::OpenDynamicDates()
{
    OpenOnce(m_dates);
}

void DeskCommands::OpenExportFormats()
{
    OpenOnce(m_formats);
}

void DeskCommands::OpenFindReplace()
{
    OpenOnce(m_find);
}

void DeskCommands::OpenLogSettings()
{
    OpenOnce(m_logSettings);
}

void DeskCommands::OpenOutputSettings()
{
    OpenOnce(m_output);
}

void DeskCommands::OpenAbout()
{
    if (!m_about)
        m_about = new frmAbout(&m_main);
    m_about->open();
}

// The viewer stays beside the main window, so that it can follow a running schedule.
void DeskCommands::OpenLogViewer()
{
    if (!m_log)
        m_log = new frmLog(m_globals, &m_main);
    m_log->ShowLog();
}

// A lock password on the list must be typed exactly; anything else opens nothing, without a word.
void DeskCommands::OpenConnections()
{
    const QString lock = m_globals.Connections.Connection_Password;
    if (!lock.isEmpty() &&
        m_globals.prompter.AskText(QStringLiteral("Database Connection"),
                                   QStringLiteral("Enter password to use this option"), true) != lock)
        return;
    OpenOnce(m_connect);
}

// The selected item's report, when there is one; the window shows the whole map either way.
void DeskCommands::OpenTableMap()
{
    QString reportID, file;
    SelectedItem(reportID, file);
    frmTableMap::OpenTableMap(m_globals, &m_main, reportID, file);
}

bool DeskCommands::SelectedItem(QString &reportID, QString &file) const
{
    const int row = m_main.SelectedRow();
    if (row < 1 || row >= m_main.Rows())
        return false;
    reportID = m_main.RowReportID(row);
    m_globals.Schedule.Find(reportID);
    file = m_globals.Schedule.File();
    return !m_globals.Schedule.NoMatch();
}
