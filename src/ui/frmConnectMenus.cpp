// The connection editor's menu: another list file, rows learned from a report or deleted, and the
// list's options.
#include "frmConnect.h"

#include "core/CommonFile.h"
#include "core/QorloError.h"
#include "core/TWReg.h"
#include "run/ReportConnections.h"
#include "run/RunState.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QAction>

namespace {

const QString kSystem = QStringLiteral("System");
const QString kConnectFolder = QStringLiteral("Connect Database");
const QString kReportFolder = QStringLiteral("Report");
const QString kListFilter = QStringLiteral("Qorlo Connection File (Connect.xml Connect.XML)");

} // namespace

QString frmConnect::ConnectFolder() const
{
    return TWReg::ReadSetting(kSystem, kConnectFolder, m_globals.AppPath);
}

void frmConnect::mnuOpen_Click()
{
    if (!LeaveRow())
        return;
    const QString file = m_globals.prompter.AskOpenFileName(windowTitle(), ConnectFolder(), kListFilter);
    if (file.isEmpty())
        return;
    TWReg::SaveSetting(kSystem, kConnectFolder, CommonFile::FolderOf(file));
    m_globals.Connections.Load(file);
    LoadSettings();
}

void frmConnect::mnuSaveAs_Click()
{
    const QString file = m_globals.prompter.AskSaveFileName(
        windowTitle(), CommonFile::JoinPath(ConnectFolder(), QStringLiteral("Connect.XML")), kListFilter);
    if (file.isEmpty())
        return;
    TWReg::SaveSetting(kSystem, kConnectFolder, CommonFile::FolderOf(file));
    m_globals.Connections.Connection_File = file;
    m_globals.Connections.Save();
    LoadSettings();
}

// The report is logged on as a run would: each connection the list lacks becomes a row.
void frmConnect::mnuInsert_Click()
{
    if (!LeaveRow())
        return;
    const QString file = m_globals.prompter.AskOpenFileName(
        windowTitle(), TWReg::ReadSetting(kSystem, kReportFolder, m_globals.AppPath),
        QStringLiteral("Crystal Report (*.rpt)"));
    if (file.isEmpty())
        return;
    TWReg::SaveSetting(kSystem, kReportFolder, CommonFile::FolderOf(file));
    try {
        ReportBinding::LearnConnections(m_globals.Context(), file, QString());
    } catch (const QorloError &error) {
        m_globals.prompter.ShowMessage(QStringLiteral("Database Connections"),
                                       QStringLiteral("Error: ") + error.description());
    }
    const int shown = m_row;
    LoadSettings();
    ShowRow(m_globals.Connections.Count() > 0 ? qMax(shown, 0) : -1);
}

void frmConnect::mnuDelete_Click()
{
    if (m_row < 0 ||
        !m_globals.prompter.AskYesNo(QStringLiteral("Delete record?"), QStringLiteral("Are you sure?")))
        return;
    clsConnect &connections = m_globals.Connections;
    connections.Delete(qint16(m_row));
    connections.Save();
    const int shown = qMin(m_row, connections.Count() - 1);
    FillTree();
    ShowRow(shown);
}

void frmConnect::mnuCaseSensitive_Click()
{
    clsConnect &connections = m_globals.Connections;
    connections.CaseSensitive = !connections.CaseSensitive;
    connections.Save();
    m_caseSensitive->setChecked(connections.CaseSensitive);
}

// Kept with the next save of the list.
void frmConnect::mnuRetainUser_Click()
{
    clsConnect &connections = m_globals.Connections;
    connections.UserOption =
        connections.UserOption == QLatin1String("Yes") ? QStringLiteral("No") : QStringLiteral("Yes");
    m_retainUser->setChecked(connections.UserOption == QLatin1String("Yes"));
}

void frmConnect::mnuLockPassword_Click()
{
    const QString title = QStringLiteral("Database Connection");
    clsConnect &connections = m_globals.Connections;
    const QString password = m_globals.prompter.AskText(
        title, QStringLiteral("Enter the new password of this window, or nothing to open it freely"), true);
    if (password.isEmpty()) {
        if (connections.Connection_Password.isEmpty() ||
            !m_globals.prompter.AskYesNo(title, QStringLiteral("Open this window without a password?")))
            return;
    } else if (m_globals.prompter.AskText(title, QStringLiteral("Enter the new password again"), true) !=
               password) {
        return m_globals.prompter.ShowMessage(title, QStringLiteral("Passwords do not match!"));
    }
    connections.Connection_Password = password;
    connections.Save();
}
