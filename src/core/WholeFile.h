#pragma once
// Files that the program reads whole (state files, HTML files, text bodies, list and multi-run files,
// attachments) must be regular files of bounded size: a FIFO would block the program for good and a
// device would never end. Anything else counts as a missing file.

#include <QByteArray>
#include <QString>

#include <optional>

namespace WholeFile {

constexpr qint64 MaxSize = 64 * 1024 * 1024;

// A regular file (symbolic links followed) of at most MaxSize bytes.
bool IsWholeFile(const QString &path);
// Its bytes; nothing when it is not a whole file or cannot be read. The test is made on the file
// opened, so a file swapped for a FIFO after a check cannot block the reader.
std::optional<QByteArray> Read(const QString &path);

} // namespace WholeFile
