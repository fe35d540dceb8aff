#pragma once
// Where a record store keeps its rows: blocks of encoded rows, in memory up to a bound and in a
// temporary file beyond it, with the last few blocks read kept decoded.

#include <QByteArray>
#include <QList>
#include <QTemporaryFile>
#include <QVariant>
#include <functional>
#include <vector>

namespace Engine {

class RecordSpool
{
public:
    using Row = QList<QVariant>;

    explicit RecordSpool(qint64 memoryBound);

    // Raises EngineError when the temporary file cannot be written.
    void append(const Row &row);
    void append(int width, const std::function<QVariant(int)> &valueAt);
    int count() const { return m_count; }
    Row row(int index);
    bool spooled() const { return m_file.isOpen(); }
    // Where the values of the row start; valid until another row is read.
    const char *rowBytes(int index);

private:
    static constexpr int BlockRows = 1024;
    static constexpr int DecodedBlocks = 4;

    struct Block
    {
        QByteArray bytes; // empty once the block is in the file
        qint64 offset = -1;
        qint64 size = 0;
    };

    void startRow();
    void endRow();
    void seal();
    const std::vector<Row> &decoded(int block);
    QByteArray bytesOf(int block);
    [[noreturn]] void fail(const QString &what) const;

    qint64 m_memoryBound;
    qint64 m_inMemory = 0;
    std::vector<Block> m_blocks;
    QByteArray m_open; // the rows after the last whole block
    int m_count = 0;
    QTemporaryFile m_file;
    // The most recently read blocks first.
    std::vector<std::pair<int, std::vector<Row>>> m_decoded;
    // The block read in place last, and where its rows start.
    int m_rawBlock = -1;
    QByteArray m_raw;
    std::vector<int> m_rawRows;
};

} // namespace Engine
