#include "CommandFolderAccess.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

QString SecureCommandFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status;
    if (::stat(name.constData(), &status) != 0)
        return QString();
    if (!S_ISDIR(status.st_mode))
        return QStringLiteral("it is not a folder");
    if (status.st_uid != ::geteuid())
        return QStringLiteral("it belongs to another user");
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0 && ::chmod(name.constData(), S_IRWXU) != 0)
        return QStringLiteral("it cannot be made readable by its owner only");
    return QString();
}

QString RefusalNote(const QString &path, const QString &reason)
{
    return QStringLiteral("Command folder ") + path + QStringLiteral(" is not read: ") + reason;
}
