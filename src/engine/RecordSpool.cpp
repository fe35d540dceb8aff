#include "engine/RecordSpool.h"

#include "engine/EngineError.h"
#include "engine/RecordCodec.h"

#include <QDir>

namespace Engine {

RecordSpool::RecordSpool(qint64 memoryBound)
    : m_memoryBound(memoryBound), m_file(QDir::tempPath() + QStringLiteral("/qorlo-records-XXXXXX"))
{
}

void RecordSpool::append(const Row &row)
{
    startRow();
    RecordCodec::Encode(row, m_open);
    endRow();
}

void RecordSpool::append(int width, const std::function<QVariant(int)> &valueAt)
{
    startRow();
    RecordCodec::Encode(width, valueAt, m_open);
    endRow();
}

// The open block grows: what was decoded of it falls short now.
void RecordSpool::startRow()
{
    if (m_open.isEmpty())
        m_open.reserve(128 << 10);
    const int block = m_count / BlockRows;
    if (!m_decoded.empty())
        std::erase_if(m_decoded, [block](const auto &entry) { return entry.first == block; });
}

void RecordSpool::endRow()
{
    if (++m_count % BlockRows == 0)
        seal();
}

void RecordSpool::seal()
{
    Block block;
    block.size = m_open.size();
    if (m_inMemory + block.size <= m_memoryBound) {
        m_inMemory += block.size;
        block.bytes = m_open;
    } else {
        if (!m_file.isOpen() && !m_file.open())
            fail(m_file.errorString());
        block.offset = m_file.size();
        if (!m_file.seek(block.offset) || m_file.write(m_open) != block.size)
            fail(m_file.errorString());
    }
    m_blocks.push_back(std::move(block));
    m_open = QByteArray();
}

QByteArray RecordSpool::bytesOf(int block)
{
    if (block == int(m_blocks.size()))
        return m_open;
    const Block &sealed = m_blocks[size_t(block)];
    if (sealed.offset < 0)
        return sealed.bytes;
    QByteArray bytes;
    if (m_file.seek(sealed.offset))
        bytes = m_file.read(sealed.size);
    if (bytes.size() != sealed.size)
        fail(m_file.errorString());
    return bytes;
}

const std::vector<RecordSpool::Row> &RecordSpool::decoded(int block)
{
    for (size_t i = 0; i < m_decoded.size(); ++i) {
        if (m_decoded[i].first != block)
            continue;
        std::rotate(m_decoded.begin(), m_decoded.begin() + qsizetype(i),
                    m_decoded.begin() + qsizetype(i) + 1);
        return m_decoded.front().second;
    }
    const QByteArray bytes = bytesOf(block);
    std::vector<Row> rows;
    const int size = std::min(BlockRows, m_count - block * BlockRows);
    rows.reserve(size_t(size));
    const char *at = bytes.constData();
    for (int i = 0; i < size; ++i)
        rows.push_back(RecordCodec::Decode(at));
    if (m_decoded.size() == DecodedBlocks)
        m_decoded.pop_back();
    m_decoded.insert(m_decoded.begin(), {block, std::move(rows)});
    return m_decoded.front().second;
}

const char *RecordSpool::rowBytes(int index)
{
    const int block = index / BlockRows;
    // The open block changes with every row appended.
    if (block != m_rawBlock || block == int(m_blocks.size())) {
        m_raw = bytesOf(block);
        m_rawRows.clear();
        QVarLengthArray<const char *, 16> values;
        for (const char *at = m_raw.constData(); at < m_raw.constData() + m_raw.size();) {
            m_rawRows.push_back(int(at - m_raw.constData()));
            RecordCodec::Locate(at, values);
        }
        m_rawBlock = block;
    }
    return m_raw.constData() + m_rawRows[size_t(index % BlockRows)];
}

RecordSpool::Row RecordSpool::row(int index)
{
    return decoded(index / BlockRows)[size_t(index % BlockRows)];
}

void RecordSpool::fail(const QString &what) const
{
    throw EngineError(
        EngineError::DatabaseError,
        QStringLiteral("Cannot keep the records in the temporary file %1: %2").arg(m_file.fileName(), what));
}

} // namespace Engine
