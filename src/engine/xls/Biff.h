#pragma once
// Little-endian BIFF8 record writing: record ids, framing and the field encodings records share.

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>

namespace Engine::Biff {

enum RecordId : quint16 {
    Formula = 0x0006,
    Eof = 0x000A,
    Precision = 0x000E,
    DateMode = 0x0022,
    Font = 0x0031,
    Window1 = 0x003D,
    Continue = 0x003C,
    CodePage = 0x0042,
    ColInfo = 0x007D,
    BoundSheet = 0x0085,
    Sst = 0x00FC,
    LabelSst = 0x00FD,
    ExtSst = 0x00FF,
    Xf = 0x00E0,
    Dimensions = 0x0200,
    Blank = 0x0201,
    Number = 0x0203,
    BoolErr = 0x0205,
    Window2 = 0x023E,
    Rk = 0x027E,
    Style = 0x0293,
    Format = 0x041E,
    Bof = 0x0809,
};

// The most data bytes one record may carry; longer data goes on in CONTINUE records.
constexpr int MaxRecordData = 8224;

inline void Put8(QByteArray &out, quint8 value)
{
    out.append(char(value));
}

inline void Put16(QByteArray &out, quint16 value)
{
    const char bytes[2] = {char(value & 0xFF), char(value >> 8)};
    out.append(bytes, 2);
}

inline void Put32(QByteArray &out, quint32 value)
{
    const char bytes[4] = {char(value & 0xFF), char((value >> 8) & 0xFF), char((value >> 16) & 0xFF),
                           char(value >> 24)};
    out.append(bytes, 4);
}

void PutDouble(QByteArray &out, double value);
// Overwrites four bytes at `offset` (a field whose value became known later).
void Patch32(QByteArray &out, qsizetype offset, quint32 value);

// True when every character fits in one byte, so the text can be stored "compressed".
bool FitsLatin1(QStringView text);
// The characters alone, one byte each when they fit, else UTF-16LE; the caller writes the flag.
void PutCharacters(QByteArray &out, QStringView text, bool compressed);
// A string with a 16-bit character count, a flag byte and the characters.
void PutString16(QByteArray &out, QStringView text);
// The same with an 8-bit character count (sheet names, font names).
void PutString8(QByteArray &out, QStringView text);

// Appends one record: id, length, data. The data must fit in one record.
void PutRecord(QByteArray &out, quint16 id, QByteArrayView data);

} // namespace Engine::Biff
