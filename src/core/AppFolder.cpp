#include "AppFolder.h"

#include "core/CommonFile.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace AppFolder {

bool IsSystemFolder(const QString &folder)
{
    for (const QLatin1String root : {QLatin1String("/usr"), QLatin1String("/bin"), QLatin1String("/sbin")}) {
        if (folder == root || folder.startsWith(root + QLatin1Char('/')))
            return true;
    }
    return false;
}

QString Resolve(const QString &executablePath)
{
    const QString folder = QFileInfo(executablePath).absolutePath();
    if (!IsSystemFolder(folder) && QFileInfo(folder).isWritable())
        return folder;
    const QString home = CommonFile::JoinPath(QDir::homePath(), QStringLiteral(".local/share/QorloMANAGER"));
    QDir().mkpath(home);
    return home;
}

QStringList WorkingFolderNames()
{
    return {QStringLiteral("Backup"), QStringLiteral("Output"), QStringLiteral("SMTP"),
            QStringLiteral("Web"),    QStringLiteral("Remote"), QStringLiteral("Multirun"),
            QStringLiteral("Spool"),  QStringLiteral("Help"),   QStringLiteral("Mail")};
}

void MakeWorkingFolders(const QString &appPath)
{
    for (const QString &name : WorkingFolderNames()) {
        const QString path = CommonFile::JoinPath(appPath, name);
        if (QFileInfo::exists(path))
            continue;
        QDir().mkdir(path);
        if (name == QStringLiteral("Remote") || name == QStringLiteral("Mail"))
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
}

QString Enter(const QString &executablePath)
{
    const QString named = qEnvironmentVariable("QORLO_APP_FOLDER");
    const QString folder =
        named.isEmpty() ? Resolve(executablePath) : QDir::cleanPath(QDir(named).absolutePath());
    QDir().mkpath(folder);
    QDir::setCurrent(folder);
    return folder;
}

} // namespace AppFolder
