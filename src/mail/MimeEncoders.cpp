#include "MimeEncoders.h"

#include "core/Ansi.h"

#include <QStringList>

namespace MimeEncoders {

namespace {

constexpr int kGroupsPerLine = 19;
constexpr int kHeaderPiece = 42;
constexpr qsizetype kLongestLine = 998;

char UuChar(int value)
{
    return value == 0 ? char(96) : char(value + 32);
}

QString FoldLine(const QString &line, const QString &lineBreak)
{
    QString out;
    QString rest = line;
    while (rest.size() > kLongestLine) {
        const qsizetype blank = rest.left(kLongestLine).lastIndexOf(QLatin1Char(' '));
        const qsizetype take = blank < 0 ? kLongestLine : blank + 1;
        out += rest.left(take) + lineBreak;
        rest = rest.mid(take);
    }
    return out + rest;
}

} // namespace

QByteArray EncodeBase64Bytes(const QByteArray &bytes)
{
    QByteArray out;
    out.reserve(bytes.size() * 4 / 3 + bytes.size() / 28 + 8);
    const qsizetype groups = (bytes.size() + 2) / 3;
    for (qsizetype g = 0; g < groups; ++g) {
        if (g > 0 && g % kGroupsPerLine == 0)
            out.append("\r\n");
        unsigned int triple = 0;
        for (int i = 0; i < 3; ++i) {
            const qsizetype at = g * 3 + i;
            triple = (triple << 8) | (at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0u);
        }
        for (int shift = 18; shift >= 0; shift -= 6)
            out.append(kBase64Table[(triple >> shift) & 0x3F]);
    }
    const qsizetype pad = groups * 3 - bytes.size();
    for (qsizetype i = 0; i < pad; ++i)
        out[out.size() - 1 - i] = '=';
    out.append("\r\n");
    return out;
}

QString EncodeBase64String(const QString &text)
{
    if (text.isEmpty())
        return QString();
    return QString::fromLatin1(EncodeBase64Bytes(Ansi::Encode(text)));
}

QString DecodeBase64String(const QString &text)
{
    const QLatin1String table(kBase64Table);
    QByteArray out;
    for (qsizetype g = 0; g < text.size(); g += 4) {
        unsigned int triple = 0;
        int count = 0;
        for (int i = 0; i < 4 && g + i < text.size(); ++i) {
            const qsizetype value = table.indexOf(text.at(g + i));
            if (value < 0)
                return QString();
            if (value == 64)
                break;
            triple |= unsigned(value) << (18 - 6 * i);
            ++count;
        }
        for (int i = 0; i < count - 1; ++i)
            out.append(char((triple >> (16 - 8 * i)) & 0xFF));
    }
    return Ansi::Decode(out);
}

QByteArray UuEncodeLine(const QByteArray &bytes)
{
    if (bytes.size() > 63)
        return QByteArray();
    QByteArray out(1, UuChar(int(bytes.size())));
    for (qsizetype g = 0; g < bytes.size(); g += 3) {
        const int inGroup = int(qMin<qsizetype>(3, bytes.size() - g));
        unsigned int triple = 0;
        for (int i = 0; i < 3; ++i)
            triple = (triple << 8) | (i < inGroup ? static_cast<unsigned char>(bytes[g + i]) : 0u);
        for (int i = 0; i <= inGroup; ++i)
            out.append(UuChar(int((triple >> (18 - 6 * i)) & 0x3F)));
        if (inGroup < 3)
            out.append(QByteArray(3 - inGroup, '='));
    }
    return out;
}

QString EncodeHeaderText(const QString &text, bool quote)
{
    if (!HasEightBit(text))
        return quote ? QLatin1Char('"') + text + QLatin1Char('"') : text;
    QStringList words;
    for (qsizetype at = 0; at < text.size(); at += kHeaderPiece) {
        const QString encoded = EncodeBase64String(text.mid(at, kHeaderPiece));
        words.append(QStringLiteral("=?ISO-8859-1?B?") + encoded.chopped(2) + QStringLiteral("?="));
    }
    return words.join(QStringLiteral("\r\n\t"));
}

QString PrepareMessageText(const QString &text)
{
    if (text.isEmpty())
        return text;
    QString lineBreak;
    if (text.contains(QStringLiteral("\r\n")))
        lineBreak = QStringLiteral("\r\n");
    else if (text.contains(QLatin1Char('\r')))
        lineBreak = QStringLiteral("\r");
    QStringList lines = lineBreak.isEmpty() ? QStringList{text} : text.split(lineBreak);
    const QString foldBreak = lineBreak.isEmpty() ? QStringLiteral("\r\n") : lineBreak;
    for (QString &line : lines) {
        if (line.startsWith(QLatin1Char('.')))
            line.prepend(QLatin1Char('.'));
        if (line.size() > kLongestLine)
            line = FoldLine(line, foldBreak);
    }
    return lines.join(lineBreak);
}

bool HasEightBit(const QString &text)
{
    for (const QChar c : text) {
        const int code = Ansi::Code(c);
        if (code < 0 || code > 126)
            return true;
    }
    return false;
}

} // namespace MimeEncoders
