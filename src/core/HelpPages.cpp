#include "HelpPages.h"

#include "CommonFile.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace HelpPages {

QString InstalledFolder(const QString &executablePath)
{
    const QString bin = QFileInfo(executablePath).absolutePath();
    return QDir::cleanPath(bin + QStringLiteral("/../share/qorlomanager/help"));
}

void Refresh(const QString &source, const QString &helpFolder)
{
    const QDir from(source);
    if (!from.exists())
        return;
    QDirIterator pages(source, QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (pages.hasNext()) {
        const QFileInfo page(pages.next());
        const QString target = CommonFile::JoinPath(helpFolder, from.relativeFilePath(page.filePath()));
        const QFileInfo present(target);
        if (present.exists() && present.lastModified() == page.lastModified())
            continue;
        QDir().mkpath(present.absolutePath());
        QFile::remove(target);
        QFile copy(target);
        // The copy keeps the page's time: a page of another version, older or newer, is replaced.
        if (QFile::copy(page.filePath(), target) && copy.open(QIODevice::Append))
            copy.setFileTime(page.lastModified(), QFileDevice::FileModificationTime);
    }
}

} // namespace HelpPages
