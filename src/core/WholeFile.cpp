#include "WholeFile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace WholeFile {

namespace {

bool Fits(const struct stat &status)
{
    return S_ISREG(status.st_mode) && status.st_size <= MaxSize;
}

} // namespace

bool IsWholeFile(const QString &path)
{
    struct stat status;
    return !path.isEmpty() && ::stat(QFile::encodeName(path).constData(), &status) == 0 && Fits(status);
}

std::optional<QByteArray> Read(const QString &path)
{
    if (path.isEmpty())
        return std::nullopt;
    // Non-blocking, so that opening a FIFO without a writer returns at once.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    struct stat status;
    QFile file;
    if (::fstat(fd, &status) != 0 || !Fits(status) ||
        !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return std::nullopt;
    }
    QByteArray bytes = file.readAll();
    // A file that grew while it was read is cut at the limit.
    if (bytes.size() > MaxSize)
        bytes.truncate(MaxSize);
    return bytes;
}

} // namespace WholeFile
