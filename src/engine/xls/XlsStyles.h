#pragma once
// The workbook's cell formats: fonts, number formats and the extended formats (XF) cells point to.

#include <QByteArray>
#include <QList>
#include <QString>

namespace Engine {

// How a cell looks, as the index of its extended format. The default is the plain "General" cell;
// any other comes from XlsStyles::add.
class XlsStyle
{
public:
    static constexpr quint16 DefaultXf = 15;
    XlsStyle() = default;
    quint16 xf() const { return m_xf; }
    friend bool operator==(XlsStyle, XlsStyle) = default;

private:
    friend class XlsStyles;
    explicit XlsStyle(quint16 xf) : m_xf(xf) {}
    quint16 m_xf = DefaultXf;
};

class XlsStyles
{
public:
    // The style for a number format ("General", "#,##0.00", "dd-mmm-yyyy", ...) and weight; the same
    // pair always gives the same style. Throws EngineError (ExportFailed) for a format longer than 255
    // characters and past the 4,000 styles a workbook may hold.
    XlsStyle add(const QString &numberFormat, bool bold = false);
    // True for the styles this workbook has handed out (not those of another workbook).
    bool has(XlsStyle style) const { return style.xf() < BuiltInXfCount + m_cellFormats.size(); }

    // Appends the FONT, FORMAT, XF and STYLE records, in the order the globals need them.
    void write(QByteArray &out) const;

private:
    static constexpr int BuiltInXfCount = 21;
    struct CellFormat
    {
        quint16 formatId;
        bool bold;
    };
    static int BuiltInFormatId(const QString &numberFormat);
    quint16 formatId(const QString &numberFormat);
    void writeFonts(QByteArray &out) const;
    void writeFormats(QByteArray &out) const;
    void writeXfs(QByteArray &out) const;
    static void writeStyles(QByteArray &out);

    QList<QString> m_customFormats;
    QList<CellFormat> m_cellFormats;
};

} // namespace Engine
