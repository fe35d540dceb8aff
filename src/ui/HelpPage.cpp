#include "HelpPage.h"

#include "core/CommonFile.h"

#include <QDesktopServices>
#include <QUrl>

void OpenHelpPage(const QString &appPath, const QString &page)
{
    QDesktopServices::openUrl(
        QUrl::fromLocalFile(CommonFile::JoinPath(appPath, QStringLiteral("Help/") + page)));
}
