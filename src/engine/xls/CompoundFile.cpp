#include "engine/xls/CompoundFile.h"

#include "engine/xls/Biff.h"

#include <QIODevice>

namespace Engine {

namespace {

constexpr int SectorSize = 512;
constexpr int EntriesPerSector = SectorSize / 4;
constexpr int HeaderTableIndexEntries = 109;
constexpr quint32 TableIndexSect = 0xFFFFFFFC;
constexpr quint32 TableSect = 0xFFFFFFFD;
constexpr quint32 EndOfChain = 0xFFFFFFFE;
constexpr quint32 FreeSect = 0xFFFFFFFF;
constexpr quint32 NoStream = 0xFFFFFFFF;

qint64 CeilDiv(qint64 value, qint64 divisor)
{
    return (value + divisor - 1) / divisor;
}

void PadToSector(QByteArray &bytes, char fill)
{
    const qsizetype rest = bytes.size() % SectorSize;
    if (rest != 0)
        bytes.append(SectorSize - rest, fill);
}

void PutEntry(QByteArray &out, const QString &name, quint8 type, quint32 child, quint32 start, quint32 size)
{
    const qsizetype begin = out.size();
    for (QChar c : name)
        Biff::Put16(out, c.unicode());
    out.append(64 - name.size() * 2, '\0');
    Biff::Put16(out, quint16((name.size() + 1) * 2));
    Biff::Put8(out, type);
    Biff::Put8(out, 1); // black: a tree of one node per level needs no balancing
    Biff::Put32(out, NoStream);
    Biff::Put32(out, NoStream);
    Biff::Put32(out, child);
    out.append(16 + 4 + 8 + 8, '\0'); // class id, state bits, creation and modification times
    Biff::Put32(out, start);
    Biff::Put32(out, size);
    Biff::Put32(out, 0);
    Q_ASSERT(out.size() - begin == 128);
}

} // namespace

// Sector order: the stream, one directory sector, the allocation table, its index sectors.
struct CompoundFile::Layout
{
    qint64 streamSectors = 0;
    qint64 tableSectors = 0;
    qint64 indexSectors = 0;
    qint64 directorySector() const { return streamSectors; }
    qint64 firstTableSector() const { return streamSectors + 1; }
    qint64 firstIndexSector() const { return firstTableSector() + tableSectors; }
    qint64 totalSectors() const { return firstIndexSector() + indexSectors; }
};

CompoundFile::Layout CompoundFile::Plan(qint64 streamSize)
{
    Layout layout;
    layout.streamSectors = CeilDiv(streamSize, SectorSize);
    // The table must also map its own sectors and the index sectors, so grow until it settles.
    for (;;) {
        const qint64 table = CeilDiv(layout.totalSectors(), EntriesPerSector);
        const qint64 index = table > HeaderTableIndexEntries
                                 ? CeilDiv(table - HeaderTableIndexEntries, EntriesPerSector - 1)
                                 : 0;
        if (table == layout.tableSectors && index == layout.indexSectors)
            return layout;
        layout.tableSectors = table;
        layout.indexSectors = index;
    }
}

QByteArray CompoundFile::Header(const Layout &layout)
{
    QByteArray out;
    out.reserve(SectorSize);
    out.append("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    out.append(16, '\0'); // class id
    Biff::Put16(out, 0x003E);
    Biff::Put16(out, 0x0003);
    Biff::Put16(out, 0xFFFE); // little-endian byte order mark
    Biff::Put16(out, 9);      // 2^9 = 512-byte sectors
    Biff::Put16(out, 6);      // 2^6 = 64-byte mini sectors
    out.append(6, '\0');
    Biff::Put32(out, 0); // directory sector count: always 0 in version 3
    Biff::Put32(out, quint32(layout.tableSectors));
    Biff::Put32(out, quint32(layout.directorySector()));
    Biff::Put32(out, 0); // transaction signature
    Biff::Put32(out, quint32(MiniStreamCutoff));
    Biff::Put32(out, EndOfChain); // no mini allocation table
    Biff::Put32(out, 0);
    Biff::Put32(out, layout.indexSectors > 0 ? quint32(layout.firstIndexSector()) : EndOfChain);
    Biff::Put32(out, quint32(layout.indexSectors));
    for (qint64 i = 0; i < HeaderTableIndexEntries; ++i)
        Biff::Put32(out, i < layout.tableSectors ? quint32(layout.firstTableSector() + i) : FreeSect);
    Q_ASSERT(out.size() == SectorSize);
    return out;
}

QByteArray CompoundFile::Directory(const QString &streamName, qint64 streamSize)
{
    QByteArray out;
    out.reserve(SectorSize);
    PutEntry(out, QStringLiteral("Root Entry"), 5, 1, EndOfChain, 0);
    PutEntry(out, streamName, 2, NoStream, 0, quint32(streamSize));
    while (out.size() < SectorSize)
        PutEntry(out, QString(), 0, NoStream, 0, 0);
    return out;
}

QByteArray CompoundFile::AllocationTable(const Layout &layout)
{
    QByteArray out;
    out.reserve(layout.tableSectors * SectorSize);
    for (qint64 s = 0; s + 1 < layout.streamSectors; ++s)
        Biff::Put32(out, quint32(s + 1));
    Biff::Put32(out, EndOfChain); // last stream sector
    Biff::Put32(out, EndOfChain); // the directory's only sector
    for (qint64 s = 0; s < layout.tableSectors; ++s)
        Biff::Put32(out, TableSect);
    for (qint64 s = 0; s < layout.indexSectors; ++s)
        Biff::Put32(out, TableIndexSect);
    PadToSector(out, '\xFF');
    return out;
}

QByteArray CompoundFile::TableIndexSectors(const Layout &layout)
{
    QByteArray out;
    qint64 table = HeaderTableIndexEntries;
    for (qint64 s = 0; s < layout.indexSectors; ++s) {
        for (int i = 0; i < EntriesPerSector - 1; ++i, ++table)
            Biff::Put32(out,
                        table < layout.tableSectors ? quint32(layout.firstTableSector() + table) : FreeSect);
        const bool last = s + 1 == layout.indexSectors;
        Biff::Put32(out, last ? EndOfChain : quint32(layout.firstIndexSector() + s + 1));
    }
    return out;
}

bool CompoundFile::Write(QIODevice &out, const QString &streamName, const QList<QByteArrayView> &parts)
{
    QList<StreamPart> inMemory;
    for (QByteArrayView part : parts)
        inMemory.append(StreamPart{part});
    return Write(out, streamName, inMemory);
}

bool CompoundFile::WritePart(QIODevice &out, const StreamPart &part)
{
    if (!part.file)
        return out.write(part.bytes.data(), part.bytes.size()) == part.bytes.size();
    if (!part.file->seek(part.offset))
        return false;
    for (qint64 left = part.size; left > 0;) {
        const QByteArray chunk = part.file->read(std::min<qint64>(left, 1 << 20));
        if (chunk.isEmpty() || out.write(chunk) != chunk.size())
            return false;
        left -= chunk.size();
    }
    return true;
}

bool CompoundFile::Write(QIODevice &out, const QString &streamName, const QList<StreamPart> &parts)
{
    qint64 streamSize = 0;
    for (const StreamPart &part : parts)
        streamSize += part.length();
    Q_ASSERT(streamSize >= MiniStreamCutoff && streamName.size() < 32);
    if (streamSize > 0xFFFFFFFFll)
        return false; // a version 3 file cannot hold a stream this long
    const Layout layout = Plan(streamSize);

    bool ok = out.write(Header(layout)) == SectorSize;
    for (const StreamPart &part : parts)
        ok = ok && WritePart(out, part);
    const qint64 padding = layout.streamSectors * SectorSize - streamSize;
    ok = ok && out.write(QByteArray(padding, '\0')) == padding;
    for (const QByteArray &block :
         {Directory(streamName, streamSize), AllocationTable(layout), TableIndexSectors(layout)})
        ok = ok && out.write(block) == block.size();
    return ok;
}

} // namespace Engine
