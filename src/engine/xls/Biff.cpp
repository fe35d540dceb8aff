#include "engine/xls/Biff.h"

#include <cstring>

namespace Engine::Biff {

void PutDouble(QByteArray &out, double value)
{
    quint64 bits;
    std::memcpy(&bits, &value, sizeof bits);
    Put32(out, quint32(bits & 0xFFFFFFFFu));
    Put32(out, quint32(bits >> 32));
}

void Patch32(QByteArray &out, qsizetype offset, quint32 value)
{
    for (int i = 0; i < 4; ++i)
        out[offset + i] = char((value >> (8 * i)) & 0xFF);
}

bool FitsLatin1(QStringView text)
{
    for (QChar c : text) {
        if (c.unicode() > 0xFF)
            return false;
    }
    return true;
}

void PutCharacters(QByteArray &out, QStringView text, bool compressed)
{
    if (compressed) {
        const qsizetype start = out.size();
        out.resize(start + text.size());
        char *bytes = out.data() + start;
        for (qsizetype i = 0; i < text.size(); ++i)
            bytes[i] = char(text[i].unicode());
        return;
    }
    for (QChar c : text)
        Put16(out, c.unicode());
}

void PutString16(QByteArray &out, QStringView text)
{
    const bool compressed = FitsLatin1(text);
    Put16(out, quint16(text.size()));
    Put8(out, compressed ? 0 : 1);
    PutCharacters(out, text, compressed);
}

void PutString8(QByteArray &out, QStringView text)
{
    const bool compressed = FitsLatin1(text);
    Put8(out, quint8(text.size()));
    Put8(out, compressed ? 0 : 1);
    PutCharacters(out, text, compressed);
}

void PutRecord(QByteArray &out, quint16 id, QByteArrayView data)
{
    Q_ASSERT(data.size() <= MaxRecordData);
    Put16(out, id);
    Put16(out, quint16(data.size()));
    out.append(data.data(), data.size());
}

} // namespace Engine::Biff
