#include "engine/DataExports.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

namespace Engine {

namespace {

// "Region: {value}" heads a column "Region": the caption's text before its first value.
QString GroupFieldCaption(const GroupDefinition &group)
{
    QString caption = group.caption.section(QLatin1Char('{'), 0, 0).trimmed();
    while (caption.endsWith(QLatin1Char(':')))
        caption.chop(1);
    return caption.trimmed().isEmpty() ? group.field : caption.trimmed();
}

} // namespace

QList<ExportColumn> ExportColumns(const Report &report, bool withGroupFields)
{
    const RecordStore &records = report.records();
    const ReportFormulas &formulas = report.formulas();
    const LayoutDefinition &layout = report.definition().layout;
    const auto typeOf = [&](const NameRef &source) {
        return source.kind == NameRef::RecordField ? records.fieldTypes().value(source.index, StringField)
                                                   : int(StringField);
    };
    QList<ExportColumn> columns;
    if (layout.columns.isEmpty()) {
        for (int i = 0; i < records.fieldNames().size(); ++i)
            columns.append({records.fieldNames()[i], NameRef{NameRef::RecordField, i}, QString(),
                            records.fieldTypes()[i], 72, false});
        return columns;
    }
    QList<NameRef> shown;
    for (const ColumnDefinition &column : layout.columns)
        shown.append(formulas.resolve(column.field).value_or(NameRef{NameRef::RecordField, -1}));
    for (int level = 0; withGroupFields && level < formulas.levels(); ++level) {
        const NameRef field = formulas.group(level).field;
        const bool inColumns = std::any_of(shown.begin(), shown.end(), [&](const NameRef &ref) {
            return ref.kind == field.kind && ref.index == field.index;
        });
        if (!inColumns)
            columns.append(
                {GroupFieldCaption(layout.groups[level]), field, QString(), typeOf(field), 72, false});
    }
    for (int c = 0; c < layout.columns.size(); ++c) {
        const ColumnDefinition &column = layout.columns[c];
        columns.append({column.caption, shown[c], column.format, typeOf(shown[c]), column.width,
                        column.alignment.testFlag(Qt::AlignRight)});
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
