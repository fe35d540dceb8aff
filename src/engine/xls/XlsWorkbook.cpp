#include "engine/xls/XlsWorkbook.h"

#include "engine/EngineError.h"
#include "engine/xls/Biff.h"
#include "engine/xls/CompoundFile.h"

#include <QSaveFile>

namespace Engine {

namespace {

constexpr int MaxSheetName = 31;
constexpr quint16 GlobalsBof = 0x0005;
constexpr quint16 UnicodeCodePage = 1200;

void PutGlobalsBof(QByteArray &out)
{
    QByteArray data;
    Biff::Put16(data, 0x0600);
    Biff::Put16(data, GlobalsBof);
    Biff::Put16(data, 0x0DBB);
    Biff::Put16(data, 0x07CC);
    Biff::Put32(data, 0);
    Biff::Put32(data, 0x0006);
    Biff::PutRecord(out, Biff::Bof, data);
}

void PutWord(QByteArray &out, quint16 id, quint16 value)
{
    QByteArray data;
    Biff::Put16(data, value);
    Biff::PutRecord(out, id, data);
}

// The first `units` UTF-16 units of `text`, one fewer if the last would be half a surrogate pair.
QString LeftWhole(const QString &text, qsizetype units)
{
    if (units < text.size() && units > 0 && text[units - 1].isHighSurrogate())
        --units;
    return text.left(units);
}

void PutWindow1(QByteArray &out)
{
    QByteArray data;
    Biff::Put16(data, 0); // left, top
    Biff::Put16(data, 0);
    Biff::Put16(data, 0x3A5C); // width, height in twips
    Biff::Put16(data, 0x2328);
    Biff::Put16(data, 0x0038); // scroll bars and sheet tabs shown
    Biff::Put16(data, 0);      // active sheet
    Biff::Put16(data, 0);      // first visible tab
    Biff::Put16(data, 1);      // one sheet selected
    Biff::Put16(data, 600);    // tab bar width, per mille
    Biff::PutRecord(out, Biff::Window1, data);
}

} // namespace

XlsWorkbook::XlsWorkbook()
    : m_dateStyle(m_styles.add(QStringLiteral("dd-mmm-yyyy"))),
      m_dateTimeStyle(m_styles.add(QStringLiteral("dd-mmm-yyyy hh:mm:ss"))),
      m_headingStyle(m_styles.add(QStringLiteral("General"), true))
{
}

XlsWorkbook::~XlsWorkbook() = default;

XlsStyle XlsWorkbook::addStyle(const QString &numberFormat, bool bold)
{
    return m_styles.add(numberFormat, bold);
}

bool XlsWorkbook::nameTaken(const QString &name) const
{
    for (const auto &sheet : m_sheets) {
        if (sheet->name().compare(name, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

QString XlsWorkbook::usableSheetName(const QString &wanted) const
{
    QString name = wanted.trimmed();
    for (QChar &c : name) {
        if (QStringLiteral(":\\/?*[]").contains(c) || c.unicode() < 0x20)
            c = QLatin1Char('_');
    }
    while (name.startsWith(QLatin1Char('\'')))
        name.remove(0, 1);
    if (name.isEmpty())
        name = QStringLiteral("Sheet%1").arg(m_sheets.size() + 1);
    name = LeftWhole(name, MaxSheetName);
    while (name.endsWith(QLatin1Char('\'')))
        name.chop(1);
    const QString base = name;
    for (int n = 2; nameTaken(name); ++n) {
        const QString suffix = QStringLiteral(" (%1)").arg(n);
        name = LeftWhole(base, MaxSheetName - suffix.size()) + suffix;
    }
    return name;
}

XlsSheet &XlsWorkbook::addSheet(const QString &name)
{
    m_sheets.push_back(
        std::unique_ptr<XlsSheet>(new XlsSheet(usableSheetName(name), m_strings, m_styles, m_dateStyle)));
    return *m_sheets.back();
}

QByteArray XlsWorkbook::globals(QList<qsizetype> &sheetOffsetFields) const
{
    QByteArray out;
    PutGlobalsBof(out);
    PutWord(out, Biff::CodePage, UnicodeCodePage);
    PutWindow1(out);
    PutWord(out, Biff::DateMode, 0);  // day 1 is 1 January 1900
    PutWord(out, Biff::Precision, 1); // full precision, not as displayed
    m_styles.write(out);
    for (const auto &sheet : m_sheets) {
        QByteArray data;
        Biff::Put32(data, 0); // the sheet's BOF offset, patched once known
        Biff::Put8(data, 0);  // visible
        Biff::Put8(data, 0);  // worksheet
        Biff::PutString8(data, sheet->name());
        sheetOffsetFields.append(out.size() + 4);
        Biff::PutRecord(out, Biff::BoundSheet, data);
    }
    m_strings.write(out);
    Biff::PutRecord(out, Biff::Eof, {});
    return out;
}

bool XlsWorkbook::write(QIODevice &out)
{
    if (m_sheets.empty())
        addSheet(QStringLiteral("Sheet1"));
    QList<qsizetype> offsetFields;
    QByteArray head = globals(offsetFields);
    QList<QByteArray> prologs;
    QList<QByteArray> epilogs;
    qint64 position = head.size();
    for (std::size_t i = 0; i < m_sheets.size(); ++i) {
        prologs.append(m_sheets[i]->prolog());
        epilogs.append(m_sheets[i]->epilog(i == 0));
        Biff::Patch32(head, offsetFields[qsizetype(i)], quint32(position));
        position += prologs.back().size() + m_sheets[i]->cellsSize() + epilogs.back().size();
    }
    if (position > 0xFFFFFFFFll) {
        m_error = QStringLiteral("The workbook is larger than 4 GB.");
        return false;
    }
    QList<StreamPart> parts{StreamPart{head}};
    for (std::size_t i = 0; i < m_sheets.size(); ++i)
        parts << StreamPart{prologs[qsizetype(i)]} << m_sheets[i]->cells(&m_spool)
              << StreamPart{epilogs[qsizetype(i)]};
    // Short streams would belong in the mini stream; zeros after the last EOF keep this one out of it.
    const QByteArray padding(std::max<qint64>(0, CompoundFile::MiniStreamCutoff - position), '\0');
    parts << StreamPart{padding};
    if (!CompoundFile::Write(out, QStringLiteral("Workbook"), parts)) {
        m_error = out.errorString().isEmpty() ? m_spool.errorString() : out.errorString();
        return false;
    }
    return true;
}

void XlsWorkbook::parkSheet(XlsSheet &sheet)
{
    if ((m_spool.isOpen() || m_spool.open()) && sheet.park(m_spool))
        return;
    throw EngineError(
        EngineError::ExportFailed,
        QStringLiteral("Cannot keep a finished sheet in a temporary file: %1").arg(m_spool.errorString()));
}

bool XlsWorkbook::save(const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        m_error = file.errorString();
        return false;
    }
    if (!write(file)) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        m_error = file.errorString();
        return false;
    }
    return true;
}

} // namespace Engine
