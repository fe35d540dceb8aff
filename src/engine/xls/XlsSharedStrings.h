#pragma once
// The workbook's shared string table: each distinct text once, cells refer to it by index.

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

namespace Engine {

class XlsSharedStrings
{
public:
    // The index of `text`, adding it on first use; counts one more reference.
    quint32 intern(const QString &text);
    qsizetype uniqueCount() const { return m_strings.size(); }

    // Appends the SST record with its CONTINUE records and the EXTSST record. `out` is the start of the
    // stream (the index record stores absolute stream positions).
    void write(QByteArray &out) const;

private:
    class RecordSplitter;
    struct Bucket
    {
        quint32 streamPosition;
        quint16 recordOffset;
    };
    static void writeExtSst(QByteArray &out, const QList<Bucket> &buckets, int bucketSize);
    int bucketSize() const;

    QList<QString> m_strings;
    QHash<QString, quint32> m_index;
    quint32 m_references = 0;
};

} // namespace Engine
