#include "CommonFile.h"

#include <QSysInfo>

namespace CommonFile {

QString FileExtension(const QString &path)
{
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : path.mid(dot + 1);
}

QString ChangeExtension(const QString &path, const QString &extension)
{
    if (path.isEmpty() || extension.isEmpty())
        return path;
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return path + QLatin1Char('.') + extension;
    return path.left(dot + 1) + extension;
}

QString FileBaseName(const QString &path)
{
    const QString name = FileNameOnly(path);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? name : name.left(dot);
}

QString FileNameOnly(const QString &path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString FolderOf(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? path : path.left(slash);
}

QString JoinPath(const QString &folder, const QString &name)
{
    return folder + QLatin1Char('/') + name;
}

QString CompletePath(const QString &folder, const QString &name)
{
    return name.contains(QLatin1Char('/')) ? name : JoinPath(folder, name);
}

QString ComputerName()
{
    return QSysInfo::machineHostName();
}

} // namespace CommonFile
