#include "engine/TextEncoding.h"

namespace Engine {

namespace {

// The characters of Windows-1252's codes 0x80 to 0x9F; the five codes it leaves undefined stand for
// the control characters of the same number, both ways.
constexpr char16_t HighCodes[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char Windows1252(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return char(c);
    for (int i = 0; i < 32; ++i) {
        if (HighCodes[i] == c)
            return char(0x80 + i);
    }
    return '?';
}

} // namespace

QByteArray Encoded(QStringView text, TextEncoding encoding)
{
    QByteArray bytes;
    AppendEncoded(bytes, text, encoding);
    return bytes;
}

void AppendEncoded(QByteArray &out, QStringView text, TextEncoding encoding)
{
    if (encoding == TextEncoding::Utf8) {
        out += text.toUtf8();
        return;
    }
    const qsizetype start = out.size();
    out.resize(start + text.size());
    char *at = out.data() + start;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        *at++ = Windows1252(c);
        // A character beyond the 16-bit range is one "?", not two.
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
    }
    out.truncate(at - out.constData());
}

QByteArray FileStart(TextEncoding encoding)
{
    return encoding == TextEncoding::Utf8 ? QByteArray("\xEF\xBB\xBF") : QByteArray();
}

} // namespace Engine
