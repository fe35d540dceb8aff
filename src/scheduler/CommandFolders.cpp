#include "CommandFolders.h"

#include "CommandFolderAccess.h"
#include "FailureRecords.h"
#include "QorloGlobals.h"
#include "ScheduleView.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/StopRequest.h"
#include "mail/MailDocument.h"
#include "mail/SmtpLog.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>

namespace {

const QString kRemoteTag = QStringLiteral("REMOTE");
const QString kMailTag = QStringLiteral("MAIL");

// The command files of the folder in directory order; none while a lock file lies there. One listing
// serves both tests, so an idle folder costs one directory read. Symbolic links, FIFOs, devices and
// sockets are passed over.
QStringList CommandFiles(const QString &path)
{
    const QFileInfoList entries =
        QDir(path).entryInfoList({QStringLiteral("*.xml"), QStringLiteral("*.lck")},
                                 QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Unsorted);
    QStringList files;
    for (const QFileInfo &entry : entries) {
        if (entry.suffix().compare(QLatin1String("lck"), Qt::CaseInsensitive) == 0)
            return {};
        files.append(entry.fileName());
    }
    return files;
}

void LogCommandFile(QorloGlobals &globals, const QString &logTag, const QString &name)
{
    const double now = Now();
    WriteLogEntry(globals.Log, logTag, now, now, QString(),
                  QStringLiteral("Process Remote command file: ") + name, 0);
}

void ShowChanges(QorloGlobals &globals)
{
    globals.ViewTable();
    globals.DisplayCaption();
}

// Whether the folder may be read; a change of the answer is said once.
bool FolderAdmitted(QorloGlobals &globals, const QString &path, const QString &logTag)
{
    const QString reason = SecureCommandFolder(path);
    if (reason == globals.RefusedCommandFolders.value(path))
        return reason.isEmpty();
    if (reason.isEmpty()) {
        globals.RefusedCommandFolders.remove(path);
        return true;
    }
    globals.RefusedCommandFolders.insert(path, reason);
    NotifyOperator(globals, logTag, RefusalNote(path, reason));
    globals.SaveWeb();
    return false;
}

} // namespace

void CheckCommandFolders(QorloGlobals &globals)
{
    FolderAdmitted(globals, globals.PathOf(QStringLiteral("Remote")), kRemoteTag);
    FolderAdmitted(globals, globals.PathOf(QStringLiteral("Mail")), kMailTag);
}

void PollCommandFolders(QorloGlobals &globals)
{
    const QString remote = globals.PathOf(QStringLiteral("Remote"));
    if (FolderAdmitted(globals, remote, kRemoteTag))
        ProcessRemoteFolder(globals, remote, kRemoteTag);
    const QString mail = globals.PathOf(QStringLiteral("Mail"));
    if (FolderAdmitted(globals, mail, kMailTag))
        ProcessMailFolder(globals, mail, kMailTag);
}

void ProcessRemoteFolder(QorloGlobals &globals, const QString &path, const QString &logTag)
{
    const QStringList files = CommandFiles(path);
    if (files.isEmpty())
        return;
    for (const QString &name : files) {
        // The files not reached wait for the next start; each one applied is saved already.
        if (StopRequest::Requested())
            break;
        const QString file = CommonFile::JoinPath(path, name);
        // Saved before the file goes: a crash at any moment leaves the file or the saved result.
        RecordFailure(
            [&] {
                globals.Schedule.Load(file);
                globals.SaveSchedule();
                LogCommandFile(globals, logTag, name);
            },
            [&](const QorloError &error) { SetAsideCommandFile(globals, file, logTag, error); });
        QFile::remove(file);
    }
    ShowChanges(globals);
}

void ProcessMailFolder(QorloGlobals &globals, const QString &path, const QString &logTag)
{
    // A send pumps events, so a tick can nest inside this pass. It leaves the folder alone: the
    // document being sent is deleted only when its send ends and would otherwise go out twice.
    static bool passRunning = false;
    if (passRunning)
        return;
    const QStringList files = CommandFiles(path);
    if (files.isEmpty())
        return;
    passRunning = true;
    const auto done = qScopeGuard([] { passRunning = false; });
    SmtpLog::StartSmtpLog(QStringLiteral("QorloMAIL processing inside QorloMANAGER"));
    for (const QString &name : files) {
        if (StopRequest::Requested())
            break;
        const QString file = CommonFile::JoinPath(path, name);
        bool valid = false;
        RecordFailure([&] { valid = ProcessMailDocument(globals.AppPath, file); },
                      [&](const QorloError &error) { SetAsideCommandFile(globals, file, logTag, error); });
        // A stop cuts the send short without a word: the document stays for the next start.
        if (StopRequest::Requested())
            break;
        if (!valid)
            globals.View().SetStatusText(QStringLiteral("Invalid XML Doc"));
        QFile::remove(file);
        LogCommandFile(globals, logTag, name);
    }
    globals.SaveSchedule();
    ShowChanges(globals);
}
