#include "SingleInstance.h"

#include "core/CommonFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Readable by all, so that another user's instance on the folder can open it and see the lock.
constexpr mode_t kLockFileMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

int OpenLockFile(const QByteArray &path)
{
    // Never through a symbolic link that someone left in the folder's place.
    const int fd = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kLockFileMode);
    if (fd >= 0)
        return fd;
    // Another user's lock file: a lock needs no write access.
    return ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
}

} // namespace

QString SingleInstance::LockFileName(const QString &appPath)
{
    QString canonical = QFileInfo(appPath).canonicalFilePath();
    if (canonical.isEmpty())
        canonical = QDir::cleanPath(QFileInfo(appPath).absoluteFilePath());
    return CommonFile::JoinPath(canonical, QStringLiteral(".QorloMANAGER.lock"));
}

SingleInstance::~SingleInstance()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

bool SingleInstance::Claim(const QString &appPath)
{
    if (m_fd >= 0)
        return true;
    const int fd = OpenLockFile(QFile::encodeName(LockFileName(appPath)));
    if (fd < 0)
        return false;
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd);
        return false;
    }
    m_fd = fd;
    return true;
}
