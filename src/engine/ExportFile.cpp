#include "engine/DataExports.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

namespace Engine {

QList<ExportColumn> ExportColumns(const Report &report)
{
    const RecordStore &records = report.records();
    QList<ExportColumn> columns;
    for (const ColumnDefinition &column : report.definition().layout.columns) {
        const int field = records.fieldIndex(column.field);
        columns.append({column.caption, field, column.format,
                        field < 0 ? int(StringField) : records.fieldTypes()[field], column.width,
                        column.alignment.testFlag(Qt::AlignRight)});
    }
    if (columns.isEmpty()) {
        for (int i = 0; i < records.fieldNames().size(); ++i)
            columns.append({records.fieldNames()[i], i, QString(), records.fieldTypes()[i], 72, false});
    }
    return columns;
}

ExportFile::ExportFile(const QString &fileName) : m_file(fileName)
{
    if (!m_file.open(QIODevice::WriteOnly))
        fail();
}

void ExportFile::write(const QByteArray &bytes)
{
    if (m_file.write(bytes) != bytes.size())
        fail();
}

void ExportFile::writeWhenLarge(QString &text)
{
    if (text.size() <= 1 << 16)
        return;
    write(text.toUtf8());
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
