// The desk's entries over files: list files, viewing a file, the help pages and the knowledgebase, the
// connection test of a report and the mails of files to the support mailbox.
#include "DeskCommands.h"

#include "DeskSettings.h"
#include "DesktopOpen.h"
#include "SupportMail.h"
#include "frmCrystal.h"
#include "frmList.h"
#include "frmMain.h"

#include "core/CommonFile.h"
#include "core/QorloError.h"
#include "run/ReportConnections.h"
#include "run/RunState.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QDir>
#include <QFile>
#include <QUrl>

namespace {

const QString kListFilter = QStringLiteral("List Files (*.lst);;All Files (*)");
const QString kSelectReport = QStringLiteral("Please select a report from the list");

} // namespace

void DeskCommands::NewList()
{
    frmList::OpenList(m_globals, &m_main, frmList::Std, QString());
}

void DeskCommands::EditList()
{
    const QString file =
        m_globals.prompter.AskOpenFileName(QStringLiteral("Edit List"), m_globals.AppPath, kListFilter);
    if (!file.isEmpty())
        frmList::OpenList(m_globals, &m_main, frmList::Std, file);
}

void DeskCommands::DeleteList()
{
    const QString title = QStringLiteral("Delete List File");
    const QString file = m_globals.prompter.AskOpenFileName(title, m_globals.AppPath, kListFilter);
    if (file.isEmpty() ||
        !m_globals.prompter.AskYesNo(title, QStringLiteral("Delete ") + file + QLatin1Char('?')))
        return;
    if (!QFile::remove(file))
        throw QorloError(QorloError::PermissionDenied);
}

// A report goes to the report viewer; every other file to the desktop's program for its kind.
void DeskCommands::ViewReportNow()
{
    const QString title = QStringLiteral("View Report Now");
    const QString file =
        m_globals.prompter.AskOpenFileName(title, m_globals.AppPath, DeskSettings::BrowseFilter());
    if (file.isEmpty())
        return;
    if (CommonFile::FileExtension(file).toUpper() == QLatin1String("RPT"))
        return void(frmCrystal::ViewFile(m_globals, file));
    OpenWithDesktop(m_globals.prompter, title, QUrl::fromLocalFile(file));
}

// Logs the selected report on as a run would, so that the connections it uses join the list.
void DeskCommands::TestConnection()
{
    const QString title = QStringLiteral("Test Connection");
    QString reportID, file;
    if (!SelectedItem(reportID, file))
        return m_globals.prompter.ShowMessage(title, kSelectReport);
    const int added = ReportBinding::LearnConnections(m_globals.Context(), file, reportID);
    m_globals.prompter.ShowMessage(title, added > 0
                                              ? QStringLiteral("New connections added to connections form")
                                              : QStringLiteral("No new connection found"));
}

void DeskCommands::OpenHelp()
{
    OpenHelpPage(m_globals.prompter, m_globals.AppPath, QStringLiteral("index.html"));
}

void DeskCommands::OpenKnowledgebase()
{
    OpenWithDesktop(m_globals.prompter, QStringLiteral("Knowledgebase"), DeskSettings::KnowledgebasePage());
}

void DeskCommands::SendXmlFiles()
{
    if (SupportMail::RefusedDuringRun(m_globals))
        return;
    // The name filter takes the extension in any case.
    const QDir folder(m_globals.AppPath);
    QStringList files;
    for (const QString &name : folder.entryList({QStringLiteral("*.xml")}, QDir::Files))
        files.append(folder.filePath(name));
    SupportMail::Send(m_globals, QStringLiteral("Sending XML Files"),
                      QStringLiteral("QorloMANAGER XML files"),
                      QStringLiteral("The XML files of ") + m_globals.AppPath, files);
}

void DeskCommands::SendConnectionDetails()
{
    if (SupportMail::RefusedDuringRun(m_globals))
        return;
    QString reportID, file;
    if (!SelectedItem(reportID, file))
        return m_globals.prompter.ShowMessage(QStringLiteral("Send Connection Details"), kSelectReport);
    SupportMail::Send(m_globals, QStringLiteral("Sending Connection Details"),
                      QStringLiteral("QorloMANAGER connection details"),
                      ReportBinding::ConnectionDetails(file));
}
