#include "DesktopOpen.h"

#include "core/CommonFile.h"
#include "scheduler/Prompter.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

void OpenWithDesktop(Prompter &prompter, const QString &title, const QUrl &address)
{
    if (QDesktopServices::openUrl(address))
        return;
    const QString shown = address.isLocalFile() ? address.toLocalFile() : address.toDisplayString();
    prompter.ShowMessage(title, QStringLiteral("No program of the desktop could open ") + shown,
                         Prompter::Icon::Warning);
}

void OpenHelpPage(Prompter &prompter, const QString &appPath, const QString &page)
{
    const QString title = QStringLiteral("QorloMANAGER Help");
    const QString path = CommonFile::JoinPath(appPath, QStringLiteral("Help/") + page);
    if (!QFileInfo::exists(path))
        return prompter.ShowMessage(title,
                                    QStringLiteral("The help page ") + path + QStringLiteral(" is missing"),
                                    Prompter::Icon::Warning);
    OpenWithDesktop(prompter, title, QUrl::fromLocalFile(path));
}
