#include "StartUp.h"

#include "CommandFolders.h"
#include "Dispatcher.h"
#include "FailureRecords.h"
#include "Prompter.h"
#include "PrinterNames.h"
#include "QorloGlobals.h"
#include "ScheduleView.h"
#include "SingleInstance.h"

#include "core/AppFolder.h"
#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/HelpPages.h"
#include "core/TWReg.h"
#include "mail/clsSMTP.h"

#include <QFile>
#include <QFileInfo>

namespace {

const QString kProgram = QStringLiteral("QorloMANAGER");

// The state files in their order. True when Qorlo.XML holds something but yields no item and no
// setting: the first save would write an empty schedule over it.
bool LoadStateFiles(QorloGlobals &globals)
{
    const QString scheduleFile = globals.PathOf(QStringLiteral("Qorlo.XML"));
    const bool unread = globals.Schedule.Load(scheduleFile) == 0 && QFileInfo(scheduleFile).size() > 0;
    globals.Connections.Load(globals.PathOf(QStringLiteral("Connect.XML")));
    globals.TableMap.Load(globals.PathOf(QStringLiteral("TableMap.XML")));
    globals.Log.Load(globals.PathOf(QStringLiteral("QorloLog.XML")));
    globals.Viewer.Load(globals.PathOf(QStringLiteral("Form.XML")));
    globals.Schedule.FileName = scheduleFile;
    globals.Schedule.AppPath = globals.AppPath;
    return unread;
}

// Keeps a schedule file that could not be read beside it under a dated name, before anything is saved
// over it.
void KeepUnreadSchedule(QorloGlobals &globals)
{
    const QString file = globals.Schedule.FileName;
    const QString kept = globals.PathOf(QStringLiteral("Qorlo-unread-") +
                                        Clock::current().now().toString(QStringLiteral("yyyyMMdd-HHmmss")) +
                                        QStringLiteral(".XML"));
    const QString unread = QStringLiteral("No item and no setting could be read from ") + file;
    NotifyOperator(globals, kProgram,
                   QFile::copy(file, kept)
                       ? unread + QStringLiteral("; it is kept as ") + kept
                       : unread + QStringLiteral(", and it could not be kept as ") + kept);
}

// The values that stand at every start whatever the files said; Form.XML is read again so that its
// values win over the defaults, and the connection list comes from the file it names.
void ApplyStartDefaults(QorloGlobals &globals)
{
    globals.Log.ApplyStartDefaults();
    globals.Viewer.ApplyStartDefaults();
    globals.Viewer.Load(globals.PathOf(QStringLiteral("Form.XML")));
    if (!globals.Connections.Connection_File.isEmpty())
        globals.Connections.Load(globals.Connections.Connection_File);
}

void AskForMailServer(QorloGlobals &globals)
{
    if (!globals.Schedule.SMTP_Server.isEmpty())
        return;
    globals.prompter.ShowMessage(QStringLiteral("SMTP Server settings"),
                                 QStringLiteral("Please enter your mail connection details"));
    globals.View().OpenMailSettings();
}

} // namespace

bool StartUp(QorloGlobals &globals, SingleInstance &instance, Dispatcher &dispatcher,
             const QString &executablePath)
{
    globals.Schedule.AutoRun = false;
    const bool unreadSchedule = LoadStateFiles(globals);
    RegisterApplication(globals.AppPath, executablePath);
    if (!instance.Claim(globals.AppPath)) {
        globals.prompter.ShowMessage(
            kProgram,
            QStringLiteral("QorloMANAGER already running\r\n"
                           "Resume previous instance or wait 5 minutes and try again"),
            Prompter::Icon::Critical);
        return false;
    }
    AppFolder::MakeWorkingFolders(globals.AppPath);
    HelpPages::Refresh(HelpPages::InstalledFolder(executablePath), globals.PathOf(QStringLiteral("Help")));
    if (InstalledPrinterNames().isEmpty())
        globals.prompter.ShowMessage(QStringLiteral("Printer Setup"),
                                     QStringLiteral("Warning - No printers configured"),
                                     Prompter::Icon::Warning);
    ApplyStartDefaults(globals);
    // The run log is written from here on, with its retention values in place.
    if (unreadSchedule)
        KeepUnreadSchedule(globals);
    clsSMTP::RemoveOwnLockFiles(globals.PathOf(QStringLiteral("Mail")));
    CheckCommandFolders(globals);
    LoadMainWindow(globals);
    dispatcher.Start();
    AskForMailServer(globals);
    return true;
}

void RegisterApplication(const QString &appPath, const QString &executablePath)
{
    TWReg::SaveApplicationValue(kProgram, executablePath);
    const QString scheduler = TWReg::ReadApplicationValue(QStringLiteral("Scheduler"));
    if (!scheduler.isEmpty() && scheduler != kProgram)
        return;
    TWReg::SaveApplicationValue(QStringLiteral("Scheduler"), kProgram);
    TWReg::SaveApplicationValue(QStringLiteral("Mailbox"),
                                CommonFile::JoinPath(appPath, QStringLiteral("Mail")));
    TWReg::SaveApplicationValue(QStringLiteral("RemoteFolder"),
                                CommonFile::JoinPath(appPath, QStringLiteral("Remote")));
    // The family's log folder is the Remote folder, deliberately.
    TWReg::SaveApplicationValue(QStringLiteral("LogFolder"),
                                CommonFile::JoinPath(appPath, QStringLiteral("Remote")));
}

void LoadMainWindow(QorloGlobals &globals)
{
    clsSchedule &schedule = globals.Schedule;
    if (schedule.Active && !schedule.AutoRun &&
        !globals.prompter.AskYesNo(QStringLiteral("Previously active"),
                                   QStringLiteral("Schedule was active prior to shutdown\r\n"
                                                  "Do you wish to activate Schedule?")))
        schedule.Active = false;
    globals.DisplayCaption();
    globals.ViewTable();
    globals.View().ShowWindow();
}

bool ExitFromMenu(QorloGlobals &globals, bool otherWindowsOpen)
{
    if (otherWindowsOpen && !globals.prompter.AskOkCancel(QStringLiteral("Close Schedule"),
                                                          QStringLiteral("Confirm Close QorloMANAGER")))
        return false;
    globals.Viewer.Save();
    return true;
}

bool CloseMainWindow(QorloGlobals &globals, bool otherWindowsOpen)
{
    const bool close =
        !otherWindowsOpen || globals.prompter.AskOkCancel(
                                 QStringLiteral("Close Schedule"),
                                 QStringLiteral("Confirm you want to close QorloMANAGER Report Scheduler?"));
    globals.SaveWeb(true);
    return close;
}
