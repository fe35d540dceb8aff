// Record format export (type 3): fixed-width lines.
#include "engine/DataExports.h"
#include "engine/RecordWalk.h"
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
    ExportFile file(fileName, report.definition().textEncoding);
    QString text;
    ForEachRecord(report, [&](const ReportContext &context) {
        QString line;
        for (const ExportColumn &column : columns) {
            const int width = Characters(column);
            QString cell = FormatValue(context.valueOf(column.source), column.format);
            cell.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
            cell.truncate(width);
            line += column.alignRight ? cell.rightJustified(width) : cell.leftJustified(width);
        }
        text += line + QLatin1String("\r\n");
        file.writeWhenLarge(text);
    });
    file.writeText(text);
    file.commit();
}

} // namespace Engine
