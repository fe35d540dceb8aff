#include "engine/xls/XlsStyles.h"

#include "engine/EngineError.h"
#include "engine/xls/Biff.h"

namespace Engine {

namespace {

constexpr int FirstCustomFormat = 164;
constexpr int MaxXfCount = 4000;
constexpr quint16 BoldFont = 5; // font index 4 does not exist, so the fifth FONT record is index 5
constexpr quint16 NormalWeight = 400;
constexpr quint16 BoldWeight = 700;

struct BuiltInFormat
{
    int id;
    const char *text;
};

// Number formats every reader knows by id; they need no FORMAT record.
constexpr BuiltInFormat BuiltInFormats[] = {
    {0, "General"}, {1, "0"},      {2, "0.00"},      {3, "#,##0"}, {4, "#,##0.00"},
    {9, "0%"},      {10, "0.00%"}, {11, "0.00E+00"}, {49, "@"},
};

void PutFont(QByteArray &out, quint16 weight)
{
    QByteArray data;
    Biff::Put16(data, 200);                               // 10 points, in twentieths
    Biff::Put16(data, weight == BoldWeight ? 0x0001 : 0); // the bold flag beside the weight; not italic
    Biff::Put16(data, 0x7FFF);                            // the window text colour
    Biff::Put16(data, weight);
    Biff::Put16(data, 0); // no super- or subscript
    Biff::Put8(data, 0);  // no underline
    Biff::Put8(data, 2);  // swiss family
    Biff::Put8(data, 0);  // ANSI character set
    Biff::Put8(data, 0);
    Biff::PutString8(data, u"Arial");
    Biff::PutRecord(out, Biff::Font, data);
}

// One XF record. Style XFs have no parent (0xFFF); cell XFs inherit from the Normal style (XF 0).
// `used` marks which attribute groups the XF sets itself.
void PutXf(QByteArray &out, quint16 font, quint16 format, bool styleXf, quint8 used)
{
    QByteArray data;
    Biff::Put16(data, font);
    Biff::Put16(data, format);
    Biff::Put16(data, styleXf ? 0xFFF5 : 0x0001); // locked; style flag and parent index
    Biff::Put8(data, 0x20);                       // general alignment, bottom
    Biff::Put8(data, 0);                          // no rotation
    Biff::Put8(data, 0);                          // no indent
    Biff::Put8(data, used);
    Biff::Put32(data, 0);      // no borders
    Biff::Put32(data, 0);      // no border colours, no fill pattern
    Biff::Put16(data, 0x20C0); // automatic pattern colours (64, 65)
    Biff::PutRecord(out, Biff::Xf, data);
}

} // namespace

int XlsStyles::BuiltInFormatId(const QString &numberFormat)
{
    for (const BuiltInFormat &known : BuiltInFormats) {
        if (numberFormat == QLatin1String(known.text))
            return known.id;
    }
    return -1;
}

quint16 XlsStyles::formatId(const QString &numberFormat)
{
    if (numberFormat.isEmpty())
        return 0;
    const int builtIn = BuiltInFormatId(numberFormat);
    if (builtIn >= 0)
        return quint16(builtIn);
    if (numberFormat.size() > 255)
        throw EngineError(EngineError::ExportFailed,
                          QStringLiteral("A number format is longer than 255 characters."));
    qsizetype index = m_customFormats.indexOf(numberFormat);
    if (index < 0) {
        index = m_customFormats.size();
        m_customFormats.append(numberFormat);
    }
    return quint16(FirstCustomFormat + index);
}

XlsStyle XlsStyles::add(const QString &numberFormat, bool bold)
{
    const quint16 format = formatId(numberFormat);
    for (qsizetype i = 0; i < m_cellFormats.size(); ++i) {
        if (m_cellFormats[i].formatId == format && m_cellFormats[i].bold == bold)
            return XlsStyle(quint16(BuiltInXfCount + i));
    }
    if (format == 0 && !bold)
        return {};
    if (BuiltInXfCount + m_cellFormats.size() >= MaxXfCount)
        throw EngineError(EngineError::ExportFailed,
                          QStringLiteral("A workbook holds at most 4,000 cell styles."));
    m_cellFormats.append({format, bold});
    return XlsStyle(quint16(BuiltInXfCount + m_cellFormats.size() - 1));
}

void XlsStyles::write(QByteArray &out) const
{
    writeFonts(out);
    writeFormats(out);
    writeXfs(out);
    writeStyles(out);
}

void XlsStyles::writeFonts(QByteArray &out) const
{
    for (int i = 0; i < 4; ++i)
        PutFont(out, NormalWeight);
    PutFont(out, BoldWeight);
}

void XlsStyles::writeFormats(QByteArray &out) const
{
    for (qsizetype i = 0; i < m_customFormats.size(); ++i) {
        QByteArray data;
        Biff::Put16(data, quint16(FirstCustomFormat + i));
        Biff::PutString16(data, m_customFormats[i]);
        Biff::PutRecord(out, Biff::Format, data);
    }
}

void XlsStyles::writeXfs(QByteArray &out) const
{
    // The 21 XFs every workbook starts with: Normal, 14 outline-level styles, the default cell,
    // then the built-in styles Comma, Comma [0], Currency, Currency [0] and Percent.
    PutXf(out, 0, 0, true, 0x00);
    for (quint16 i = 1; i < 15; ++i)
        PutXf(out, i <= 2 ? 1 : (i <= 4 ? 2 : 0), 0, true, 0xF4);
    PutXf(out, 0, 0, false, 0x00);
    for (quint16 format : {43, 41, 44, 42, 9})
        PutXf(out, 1, format, true, 0xF8);
    for (const CellFormat &cell : m_cellFormats) {
        const quint8 used = quint8((cell.formatId != 0 ? 0x04 : 0) | (cell.bold ? 0x08 : 0));
        PutXf(out, cell.bold ? BoldFont : 0, cell.formatId, false, used);
    }
}

void XlsStyles::writeStyles(QByteArray &out)
{
    struct BuiltInStyle
    {
        quint16 xf;
        quint8 id;
    };
    for (const BuiltInStyle style : {BuiltInStyle{0, 0}, {16, 3}, {17, 6}, {18, 4}, {19, 7}, {20, 5}}) {
        QByteArray data;
        Biff::Put16(data, quint16(0x8000 | style.xf));
        Biff::Put8(data, style.id);
        Biff::Put8(data, 0xFF);
        Biff::PutRecord(out, Biff::Style, data);
    }
}

} // namespace Engine
