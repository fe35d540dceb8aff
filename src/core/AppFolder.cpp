#include "AppFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace AppFolder {

QString Resolve(const QString &executablePath)
{
    const QString folder = QFileInfo(executablePath).absolutePath();
    const bool systemFolder = folder.startsWith(QStringLiteral("/usr/")) ||
                              folder == QStringLiteral("/usr") || folder.startsWith(QStringLiteral("/bin")) ||
                              folder.startsWith(QStringLiteral("/sbin"));
    if (!systemFolder && QFileInfo(folder).isWritable())
        return folder;
    const QString home = QDir::homePath() + QStringLiteral("/.local/share/QorloMANAGER");
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
        const QString path = appPath + QLatin1Char('/') + name;
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
