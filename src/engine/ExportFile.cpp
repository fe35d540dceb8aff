#include "engine/DataExports.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

namespace Engine {

namespace {

// "Region: {value}" heads a column "Region".
QString GroupFieldCaption(const GroupDefinition &group)
{
    QString caption = group.caption;
    caption.remove(QLatin1String("{value}"));
    while (!caption.isEmpty() && (caption.back() == QLatin1Char(':') || caption.back().isSpace()))
        caption.chop(1);
    return caption.trimmed().isEmpty() ? group.field : caption.trimmed();
}

} // namespace

QList<ExportColumn> ExportColumns(const Report &report, bool withGroupFields)
{
    const RecordStore &records = report.records();
    QList<ExportColumn> columns;
    for (const GroupDefinition &group : report.definition().layout.groups) {
        const int field = records.fieldIndex(group.field);
        const auto shown = [&](const ColumnDefinition &column) {
            return records.fieldIndex(column.field) == field;
        };
        const QList<ColumnDefinition> &layoutColumns = report.definition().layout.columns;
        if (withGroupFields && field >= 0 && std::none_of(layoutColumns.begin(), layoutColumns.end(), shown))
            columns.append(
                {GroupFieldCaption(group), field, QString(), records.fieldTypes()[field], 72, false});
    }
    for (const ColumnDefinition &column : report.definition().layout.columns) {
        const int field = records.fieldIndex(column.field);
        columns.append({column.caption, field, column.format,
                        field < 0 ? int(StringField) : records.fieldTypes()[field], column.width,
                        column.alignment.testFlag(Qt::AlignRight)});
    }
    if (report.definition().layout.columns.isEmpty()) {
        columns.clear();
        for (int i = 0; i < records.fieldNames().size(); ++i)
            columns.append({records.fieldNames()[i], i, QString(), records.fieldTypes()[i], 72, false});
    }
    return columns;
}

ExportFile::ExportFile(const QString &fileName, std::optional<TextEncoding> text)
    : m_file(fileName), m_encoding(text.value_or(TextEncoding::Utf8))
{
    if (!m_file.open(QIODevice::WriteOnly))
        fail();
    if (text)
        write(FileStart(*text));
}

void ExportFile::write(const QByteArray &bytes)
{
    if (m_file.write(bytes) != bytes.size())
        fail();
}

void ExportFile::writeText(QStringView text)
{
    write(Encoded(text, m_encoding));
}

void ExportFile::writeWhenLarge(QString &text)
{
    if (text.size() <= 1 << 16)
        return;
    writeText(text);
    text.clear();
}

void ExportFile::commit()
{
    if (!m_file.commit())
        fail();
}

void ExportFile::fail()
{
    throw EngineError(EngineError::ExportFailed,
                      QStringLiteral("Cannot write %1: %2").arg(m_file.fileName(), m_file.errorString()));
}

} // namespace Engine
