// Record format export (type 3): fixed-width lines.
#include "engine/DataExports.h"
#include "engine/Report.h"
#include "engine/ValueFormat.h"

#include <cmath>

namespace Engine {

namespace {

// A column's width in characters: 6 points a character, the pitch of 12 characters an inch.
int Characters(const ExportColumn &column)
{
    return std::max(1, int(std::lround(column.width / 6.0)));
}

} // namespace

void WriteRecordFormat(const Report &report, const QString &fileName)
{
    const QList<ExportColumn> columns = ExportColumns(report);
    const RecordStore &records = report.records();
    ExportFile file(fileName, report.definition().textEncoding);
    QString text;
    for (int row : report.selectedRows()) {
        const RecordStore::Row &values = records.row(row);
        QString line;
        for (const ExportColumn &column : columns) {
            const int width = Characters(column);
            QString cell = column.field < 0 ? QString() : FormatValue(values[column.field], column.format);
            cell.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
            cell.truncate(width);
            line += column.alignRight ? cell.rightJustified(width) : cell.leftJustified(width);
        }
        text += line + QLatin1String("\r\n");
        file.writeWhenLarge(text);
    }
    file.writeText(text);
    file.commit();
}

} // namespace Engine
