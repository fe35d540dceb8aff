#pragma once
// Writes a compound file (version 3, 512-byte sectors) that holds one stream under a root storage.

#include <QByteArrayView>
#include <QList>
#include <QString>

class QIODevice;

namespace Engine {

// A piece of a stream: bytes in memory, or `size` bytes of `file` from `offset`.
struct StreamPart
{
    QByteArrayView bytes;
    QIODevice *file = nullptr;
    qint64 offset = 0;
    qint64 size = 0;

    qint64 length() const { return file ? size : bytes.size(); }
};

class CompoundFile
{
public:
    // Streams shorter than this would belong in the mini stream, which this writer does not make.
    static constexpr qint64 MiniStreamCutoff = 4096;

    // Writes the file: header, the stream's sectors, the directory, the allocation table and, for
    // large streams, the extra allocation-table index sectors. `parts` are the stream's bytes in order;
    // together they must be at least MiniStreamCutoff bytes. False when the stream is longer than
    // 4 GiB or the device refuses a write.
    static bool Write(QIODevice &out, const QString &streamName, const QList<QByteArrayView> &parts);
    // The same with parts that may lie in files; false also when such a part cannot be read.
    static bool Write(QIODevice &out, const QString &streamName, const QList<StreamPart> &parts);

private:
    static bool WritePart(QIODevice &out, const StreamPart &part);
    struct Layout;
    static Layout Plan(qint64 streamSize);
    static QByteArray Header(const Layout &layout);
    static QByteArray Directory(const QString &streamName, qint64 streamSize);
    static QByteArray AllocationTable(const Layout &layout);
    static QByteArray TableIndexSectors(const Layout &layout);
};

} // namespace Engine
