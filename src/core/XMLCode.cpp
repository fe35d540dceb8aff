#include "XMLCode.h"

#include "core/Ansi.h"
#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/Numbers.h"

#include <QCoreApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QSaveFile>
#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace XMLCode {

namespace {

const QString kCrLf = QStringLiteral("\r\n");
const QString kMaker = QStringLiteral("Tessaly Works");
const QString kMakerWebAddress = QStringLiteral("https://www.tessalyworks.example");

// The writer's open file: one for the whole process, as the state files' writer has always kept it.
// Only one file is written at a time; a save never pumps events, so two saves cannot overlap.
struct OpenFile
{
    std::unique_ptr<QSaveFile> file;
    QByteArray pending; // lines not yet handed to the file, written in large blocks
    QString rootName;
};

OpenFile &State()
{
    static OpenFile state;
    return state;
}

// The 8-bit code of a character, or its Unicode value when Windows-1252 cannot hold it.
int CodeOf(QChar c)
{
    const int code = Ansi::Code(c);
    return code >= 0 ? code : c.unicode();
}

// The character of an 8-bit code (128 to 159 through Windows-1252), or of a Unicode value above 255.
QString CharOf(qint64 code)
{
    if (code >= 0 && code <= 255)
        return QString(Ansi::Char(int(code)));
    if (code > 255 && code <= 0xFFFF)
        return QString(QChar(char16_t(code)));
    if (code > 0xFFFF && code <= 0x10FFFF) {
        const char32_t point = char32_t(code);
        return QString::fromUcs4(&point, 1);
    }
    return QString(QChar(QChar::ReplacementCharacter));
}

// Length (1 or 2) and code of the character at `pos`; a surrogate pair counts as one character.
int CharacterAt(const QString &text, qsizetype pos, char32_t &code)
{
    const QChar c = text.at(pos);
    if (c.isHighSurrogate() && pos + 1 < text.size() && text.at(pos + 1).isLowSurrogate()) {
        code = QChar::surrogateToUcs4(c, text.at(pos + 1));
        return 2;
    }
    code = char32_t(CodeOf(c));
    return 1;
}

QString NumericReference(char32_t code)
{
    return QStringLiteral("&#") + Numbers::FormatZeros(code, 4) + QLatin1Char(';');
}

// Characters the code page cannot hold go to the file as numeric references, which the reader decodes.
void AppendFileBytes(QByteArray &bytes, const QString &line)
{
    // Bytes go straight into room made ahead; a reference takes the slower road.
    qsizetype out = bytes.size();
    bytes.resize(out + line.size() + 2);
    for (qsizetype i = 0; i < line.size();) {
        const QChar c = line.at(i);
        const int code = c.unicode() < 0x80 ? c.unicode() : Ansi::Code(c);
        if (code >= 0) {
            bytes[out++] = char(code);
            ++i;
            continue;
        }
        char32_t point;
        i += CharacterAt(line, i, point);
        const QByteArray reference = NumericReference(point).toLatin1();
        bytes.resize(bytes.size() + reference.size());
        std::copy(reference.cbegin(), reference.cend(), bytes.begin() + out);
        out += reference.size();
    }
    bytes[out++] = '\r';
    bytes[out++] = '\n';
    bytes.resize(out);
}

void Flush(OpenFile &state)
{
    state.file->write(state.pending);
    state.pending.resize(0);
}

// Puts the open file in place; the old file stays when the new one could not be written whole.
void Commit(OpenFile &state)
{
    Flush(state);
    state.file->commit();
    state.file.reset();
}

QString Print(const QString &line)
{
    OpenFile &state = State();
    if (state.file) {
        AppendFileBytes(state.pending, line);
        if (state.pending.size() >= 256 * 1024)
            Flush(state);
    }
    return line;
}

QString HeaderText(const QString &path)
{
    const double today = Today();
    QString program = QCoreApplication::applicationName();
    if (program.isEmpty())
        program = QStringLiteral("QorloMANAGER");
    const QString version =
        QStringLiteral("%1.%2 (%3)").arg(QORLO_VERSION_MAJOR).arg(QORLO_VERSION_MINOR).arg(QORLO_REVISION);
    const QStringList lines = {
        QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>"),
        QStringLiteral("<!-- XML File Created by ") + program + QStringLiteral(" -->"),
        QStringLiteral("<!-- Written by the XML writer of ") + kMaker + QStringLiteral(" -->"),
        QStringLiteral("<!-- Copyright ") + kMaker + QLatin1Char(' ') +
            QString::number(DayDate::Year(today)) + QStringLiteral(" -->"),
        QStringLiteral("<!-- QorloMANAGER version ") + version + QStringLiteral(" -->"),
        QStringLiteral("<!-- ") + kMakerWebAddress + QStringLiteral(" -->"),
        QStringLiteral("<!-- File ") + path + QStringLiteral(" Created ") + FormatDate(today) +
            QStringLiteral("-->"),
    };
    return lines.join(kCrLf);
}

QString OpeningTag(const QString &tag, const QString &attributes)
{
    if (attributes.isEmpty())
        return QLatin1Char('<') + tag + QLatin1Char('>');
    return QLatin1Char('<') + tag + QLatin1Char(' ') + attributes + QLatin1Char('>');
}

// The code of the text between "&#" and ";", read as a number; -1 when no character has it.
qint64 ReferenceCode(QStringView text)
{
    // Plain digits, as the writer puts them, are read without the general number parser.
    qint64 code = 0;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9') || code > 0x10FFFF) {
            code = -1;
            break;
        }
        code = code * 10 + (c.unicode() - u'0');
    }
    if (code >= 0 && !text.isEmpty())
        return code <= 0x10FFFF ? code : -1;
    const double number = Numbers::NumericPrefix(text.toString());
    return number >= 0 && number <= 0x10FFFF ? qint64(Numbers::RoundEven(number)) : -1;
}

// Replaces each "&#code;" by its character, in one pass over the line. A "&#" without a ";" after
// it ends the decoding of references for the line, so a damaged line cannot stall the reader.
// The result is that of replacing the first "&#" of the line again and again: a decoded "#" after
// an "&", or a decoded "&" before a "#", opens a further reference, whose code runs to the next ";".
void DecodeNumericReferences(QString &line)
{
    if (!line.contains(QLatin1String("&#")))
        return;
    QString out;
    out.reserve(line.size());
    const qsizetype size = line.size();
    qsizetype in = 0;
    while (in < size) {
        QChar c = line.at(in++);
        while (c == QLatin1Char('#') && out.endsWith(QLatin1Char('&'))) {
            const qsizetype end = line.indexOf(QLatin1Char(';'), in);
            if (end < 0) {
                out += c;
                out += QStringView(line).mid(in);
                line = std::move(out);
                return;
            }
            out.chop(1);
            const QString decoded = CharOf(ReferenceCode(QStringView(line).mid(in, end - in)));
            in = end + 1;
            // Of a surrogate pair only the second half is looked at, and it opens nothing.
            out += QStringView(decoded).chopped(1);
            c = decoded.back();
        }
        out += c;
    }
    line = std::move(out);
}

} // namespace

QString OpenXML(const QString &path, const QString &rootName, const QString &attributes, FileAccess access)
{
    OpenFile &state = State();
    if (state.file) {
        // A file left open loses its closing tag, as the one writer can hold only one file.
        Commit(state);
    }
    state.rootName = rootName;

    auto file = std::make_unique<QSaveFile>(path);
    if (!file->open(QIODevice::WriteOnly))
        return QStringLiteral("Error Creating File: ") + file->errorString();
    if (access == FileAccess::OwnerOnly)
        file->setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    state.file = std::move(file);

    Print(HeaderText(path));
    if (!rootName.isEmpty())
        Print(OpeningTag(rootName, attributes));
    return QString();
}

QString CloseXML()
{
    OpenFile &state = State();
    if (!state.file)
        return QStringLiteral("XML already closed");
    if (!state.rootName.isEmpty())
        WriteCloseTag(state.rootName);
    // The old file is replaced only now, when the new one is complete.
    Commit(state);
    return QStringLiteral("XML File closed");
}

QString WriteElement(const QString &tag, const QString &value)
{
    return Print(QLatin1Char('<') + tag + QLatin1Char('>') + XMLEscape(value) + QStringLiteral("</") + tag +
                 QLatin1Char('>'));
}

QString WriteLongElement(const QString &tag, const QString &value)
{
    return Print(QLatin1Char('<') + tag + QLatin1Char('>') + XMLEscape(value) + kCrLf + QStringLiteral("</") +
                 tag + QLatin1Char('>'));
}

QString WriteCDataElement(const QString &tag, const QString &value)
{
    return Print(QLatin1Char('<') + tag + QLatin1Char('>') + XMLCData(value) + QStringLiteral("</") + tag +
                 QLatin1Char('>'));
}

QString WriteOpenTag(const QString &tag, const QString &attributes)
{
    return Print(OpeningTag(tag, attributes));
}

QString WriteCloseTag(const QString &tag)
{
    return Print(QStringLiteral("</") + tag + QLatin1Char('>'));
}

namespace {

// The entity of a character XMLEscape replaces by name, or null.
const char *NamedEntity(char16_t c)
{
    switch (c) {
    case u'&': return "&amp;";
    case u'>': return "&gt;";
    case u'<': return "&lt;";
    case u'\'': return "&apos;";
    case u'"': return "&quot;";
    default: return nullptr;
    }
}

} // namespace

QString XMLEscape(const QString &value)
{
    QString escaped;
    qsizetype plainFrom = 0; // start of the run of characters copied as they are
    const auto replace = [&](qsizetype at, qsizetype length, const auto &by) {
        if (escaped.isNull())
            escaped.reserve(value.size() + 16);
        escaped += QStringView(value).mid(plainFrom, at - plainFrom);
        escaped += by;
        plainFrom = at + length;
    };
    for (qsizetype i = 0; i < value.size();) {
        const char16_t c = value.at(i).unicode();
        if (c <= 126) {
            if (const char *entity = NamedEntity(c))
                replace(i, 1, QLatin1String(entity));
            else if (c == u'\r' && i + 1 < value.size() && value.at(i + 1) == QLatin1Char('\n'))
                replace(i++, 2, QLatin1String("&#0013;&#0010;"));
            else if (c == u'\r' || c == u'\n') // alone it would end the line, and cut the value there
                replace(i, 1, NumericReference(c));
            ++i;
            continue;
        }
        char32_t code;
        const int length = CharacterAt(value, i, code);
        // The last character stays raw when the code page can hold it.
        const bool lastHoldable = i + length >= value.size() && length == 1 && Ansi::Code(value.at(i)) >= 0;
        if (code > 126 && !lastHoldable)
            replace(i, length, NumericReference(code));
        i += length;
    }
    if (escaped.isNull())
        return value;
    escaped += QStringView(value).mid(plainFrom);
    return escaped;
}

QString XMLCData(const QString &value)
{
    QString copy = value;
    copy.replace(kCrLf, QLatin1String("&#0013;&#0010;"));
    if (copy.contains(QLatin1Char('<')))
        return QStringLiteral("<![CDATA[") + copy + QStringLiteral("]]>");
    if (value.contains(QLatin1Char('~')))
        return QStringLiteral("<![CDATA[") + value + QStringLiteral("]]>");
    return value;
}

QString LineTag(const QString &line)
{
    return LineTag(QStringView(line)).toString();
}

QStringView LineTag(QStringView line)
{
    const qsizetype end = line.indexOf(QLatin1Char('>'));
    return end < 0 ? QStringView() : line.left(end + 1);
}

namespace {

// Replaces &gt; &lt; &apos; &quot; and &amp; in one pass. Every entity holds one "&", so no two can
// overlap, and a decoded "&" is not read again: "&amp;lt;" stays "&lt;".
void DecodeNamedEntities(QString &line)
{
    static const std::array<std::pair<QLatin1String, QChar>, 5> entities = {{
        {QLatin1String("&gt;"), QLatin1Char('>')},
        {QLatin1String("&lt;"), QLatin1Char('<')},
        {QLatin1String("&apos;"), QLatin1Char('\'')},
        {QLatin1String("&quot;"), QLatin1Char('"')},
        {QLatin1String("&amp;"), QLatin1Char('&')},
    }};
    qsizetype out = 0;
    for (qsizetype in = 0; in < line.size();) {
        QChar c = line.at(in++);
        if (c == QLatin1Char('&')) {
            const QStringView rest = QStringView(line).mid(in - 1);
            for (const auto &[entity, character] : entities) {
                if (rest.startsWith(entity)) {
                    c = character;
                    in += entity.size() - 1;
                    break;
                }
            }
        }
        line[out++] = c;
    }
    line.truncate(out);
}

// True when the line holds a mark that TagValue replaces; most lines hold none.
bool HoldsEscapes(QStringView line)
{
    return line.contains(QLatin1Char('[')) || line.contains(QLatin1Char('&'));
}

// Replaces every `mark` by CR LF in one pass; QString::replace moves the rest of the line once for
// each block of marks, which grows with the square of a long line.
void ReplaceByLineBreaks(QString &line, QLatin1String mark)
{
    qsizetype at = line.indexOf(mark);
    if (at < 0)
        return;
    QString out;
    out.reserve(line.size());
    qsizetype done = 0;
    for (; at >= 0; at = line.indexOf(mark, done)) {
        out += QStringView(line).mid(done, at - done);
        out += kCrLf;
        done = at + mark.size();
    }
    out += QStringView(line).mid(done);
    line = std::move(out);
}

void DecodeEscapes(QString &line)
{
    if (line.contains(QLatin1Char('[')))
        ReplaceByLineBreaks(line, QLatin1String("[[--CRLF--]]"));
    if (line.contains(QLatin1Char('&'))) {
        ReplaceByLineBreaks(line, QLatin1String("&#0013;&#0010;"));
        DecodeNumericReferences(line);
        DecodeNamedEntities(line);
    }
}

// The position of the first "</" from `from` on, or -1. The character search is the fast one, and a
// state-file line holds few "<".
qsizetype FindClosingTag(QStringView line, qsizetype from)
{
    for (qsizetype at = line.indexOf(QLatin1Char('<'), from); at >= 0;
         at = line.indexOf(QLatin1Char('<'), at + 1)) {
        if (at + 1 < line.size() && line.at(at + 1) == QLatin1Char('/'))
            return at;
    }
    return -1;
}

// The element value of a line already decoded.
QStringView DecodedTagValue(QStringView line)
{
    const qsizetype open = line.indexOf(QLatin1Char('>'));
    if (open < 0)
        return {};
    const qsizetype close = FindClosingTag(line, open);
    if (close < 0)
        return line.mid(open + 1);

    const QStringView value = line.mid(open + 1, close - open - 1);
    qsizetype cdataStart = value.indexOf(QLatin1Char('<'));
    if (cdataStart >= 0)
        cdataStart = value.indexOf(QLatin1String("<![CDATA["), cdataStart);
    if (cdataStart < 0)
        return value;
    const qsizetype cdataEnd = value.indexOf(QLatin1String("]]>"));
    if (cdataEnd < 0)
        return value;
    // Counted from the value's 10th character: a CDATA block is meant to stand at the start.
    return value.mid(9, qMax<qsizetype>(0, cdataEnd - cdataStart - 9));
}

} // namespace

QString TagValue(QString &line)
{
    DecodeEscapes(line);
    return DecodedTagValue(line).toString();
}

QString ReadTagValue(QStringView line)
{
    if (!HoldsEscapes(line))
        return DecodedTagValue(line).toString();
    QString copy = line.toString();
    return TagValue(copy);
}

QString ReadLongElement(LineReader &file, const QString &line, const QString &endTag, EndLine endLine)
{
    QString value = line.mid(line.indexOf(QLatin1Char('>')) + 1);
    qsizetype end = value.indexOf(endTag);
    if (end >= 0)
        return value.left(end);
    while (!file.atEnd()) {
        const QString next = file.readLine();
        end = next.indexOf(endTag);
        if (end >= 0)
            return value + (endLine == EndLine::Joined ? kCrLf : QString()) + next.left(end);
        value += kCrLf + next;
    }
    return value;
}

QString EncodeText(const QString &clear)
{
    QRandomGenerator *random = QRandomGenerator::global();
    const int k = int(Numbers::RoundEven(12 * random->generateDouble()));
    QString coded = CharOf(k + 64);
    for (qsizetype i = 0; i < clear.size(); ++i) {
        const QChar scrambled = CharOf(CodeOf(clear.at(i)) + k).at(0);
        const QChar following = i + 1 < clear.size() ? CharOf(CodeOf(clear.at(i + 1)) + k).at(0) : QChar();
        coded += scrambled;
        // The reader cuts a value at "</", so the noise never forms one with its neighbours.
        QChar noise;
        do {
            noise = CharOf(qint64(Numbers::RoundEven(random->generateDouble() * 64 + 32))).at(0);
        } while ((scrambled == QLatin1Char('<') && noise == QLatin1Char('/')) ||
                 (noise == QLatin1Char('<') && following == QLatin1Char('/')));
        coded += noise;
    }
    return coded;
}

QString DecodeText(const QString &coded)
{
    if (coded.isEmpty())
        return QString();
    const int k = CodeOf(coded.at(0)) - 64;
    QString clear;
    // 1-based positions 2, 4, 6, ... below the length are 0-based 1, 3, 5, ...
    for (qsizetype i = 1; i + 1 < coded.size(); i += 2) {
        const int c = CodeOf(coded.at(i));
        if (c > k)
            clear += CharOf(c - k);
    }
    return clear;
}

void CreateLockFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return;
    file.write(Ansi::Encode(QStringLiteral("Lock File Created : ") + FormatDate(Today()) + kCrLf));
}

} // namespace XMLCode
