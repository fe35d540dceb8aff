#include "Ansi.h"

#include <QStringDecoder>

#include <array>

namespace {

// Unicode of the codes 0x80 to 0x9F; the five codes Windows-1252 leaves undefined map to themselves.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

namespace Ansi {

int Code(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 0x80 || (u >= 0xA0 && u <= 0xFF))
        return u;
    for (int i = 0; i < 32; ++i) {
        if (kHighControls[i] == u)
            return 0x80 + i;
    }
    return -1;
}

QChar Char(int code)
{
    code &= 0xFF;
    if (code >= 0x80 && code < 0xA0)
        return QChar(kHighControls[code - 0x80]);
    return QChar(char16_t(code));
}

QByteArray Encode(const QString &text, char replacement)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        const int code = Code(c);
        bytes.append(code < 0 ? replacement : char(code));
    }
    return bytes;
}

QString Decode(const QByteArray &bytes)
{
    // State files of several megabytes pass through here: one table lookup a byte.
    static const auto table = [] {
        std::array<char16_t, 256> codes{};
        for (int code = 0; code < 256; ++code)
            codes[code] = Char(code).unicode();
        return codes;
    }();
    QString text(bytes.size(), Qt::Uninitialized);
    char16_t *out = reinterpret_cast<char16_t *>(text.data());
    for (const char b : bytes)
        *out++ = table[static_cast<unsigned char>(b)];
    return text;
}

QString DecodeFile(const QByteArray &bytes)
{
    const std::optional<QStringConverter::Encoding> marked = QStringConverter::encodingForData(bytes);
    if (!marked)
        return Decode(bytes);
    // The decoder drops the mark itself.
    QStringDecoder decoder(*marked);
    return decoder.decode(bytes);
}

} // namespace Ansi
