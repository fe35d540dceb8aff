#include "engine/xls/XlsSharedStrings.h"

#include "engine/xls/Biff.h"

#include <algorithm>

namespace Engine {

namespace {
constexpr int MaxBuckets = 128;
constexpr int MinBucketSize = 8;
constexpr int RecordHeader = 4;
} // namespace

// Fills SST then CONTINUE records. A string's count and flag never straddle two records; its
// characters may, and the part in the next record starts with its own flag byte.
class XlsSharedStrings::RecordSplitter
{
public:
    explicit RecordSplitter(QByteArray &out) : m_out(out) { open(Biff::Sst); }

    qsizetype room() const { return Biff::MaxRecordData - dataSize(); }
    qsizetype dataSize() const { return m_out.size() - m_start - RecordHeader; }
    qsizetype recordStart() const { return m_start; }

    void open(quint16 id)
    {
        m_start = m_out.size();
        Biff::Put16(m_out, id);
        Biff::Put16(m_out, 0);
    }
    void close()
    {
        const qsizetype size = dataSize();
        m_out[m_start + 2] = char(size & 0xFF);
        m_out[m_start + 3] = char(size >> 8);
    }
    void next()
    {
        close();
        open(Biff::Continue);
    }

private:
    QByteArray &m_out;
    qsizetype m_start = 0;
};

quint32 XlsSharedStrings::intern(const QString &text)
{
    ++m_references;
    const auto found = m_index.constFind(text);
    if (found != m_index.cend())
        return *found;
    const auto index = quint32(m_strings.size());
    m_strings.append(text);
    m_index.insert(text, index);
    return index;
}

int XlsSharedStrings::bucketSize() const
{
    const auto perBucket = int((m_strings.size() + MaxBuckets - 1) / MaxBuckets);
    return std::max(MinBucketSize, perBucket);
}

void XlsSharedStrings::write(QByteArray &out) const
{
    RecordSplitter records(out);
    Biff::Put32(out, m_references);
    Biff::Put32(out, quint32(m_strings.size()));
    const int perBucket = bucketSize();
    QList<Bucket> buckets;
    for (qsizetype i = 0; i < m_strings.size(); ++i) {
        const QString &text = m_strings[i];
        const bool compressed = Biff::FitsLatin1(text);
        const int charSize = compressed ? 1 : 2;
        // The count, the flag and the first character (both halves of a surrogate pair) belong together.
        if (records.room() < 3 + (text.isEmpty() ? 0 : 2 * charSize))
            records.next();
        if (i % perBucket == 0)
            buckets.append({quint32(out.size()), quint16(out.size() - records.recordStart())});
        Biff::Put16(out, quint16(text.size()));
        Biff::Put8(out, compressed ? 0 : 1);
        QStringView rest(text);
        for (;;) {
            qsizetype fits = std::min<qsizetype>(rest.size(), records.room() / charSize);
            if (fits > 0 && fits < rest.size() && rest[fits - 1].isHighSurrogate())
                --fits; // readers decode each part alone: keep a surrogate pair together
            Biff::PutCharacters(out, rest.first(fits), compressed);
            rest = rest.sliced(fits);
            if (rest.isEmpty())
                break;
            records.next();
            Biff::Put8(out, compressed ? 0 : 1);
        }
    }
    records.close();
    writeExtSst(out, buckets, perBucket);
}

void XlsSharedStrings::writeExtSst(QByteArray &out, const QList<Bucket> &buckets, int bucketSize)
{
    QByteArray data;
    Biff::Put16(data, quint16(bucketSize));
    for (const Bucket &bucket : buckets) {
        Biff::Put32(data, bucket.streamPosition);
        Biff::Put16(data, bucket.recordOffset);
        Biff::Put16(data, 0);
    }
    Biff::PutRecord(out, Biff::ExtSst, data);
}

} // namespace Engine
