// Record format export (type 3): fixed-width lines; each sub-report after them as a section of its own.
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

void WriteLines(const Report &report, ExportFile &file, QString &text)
{
    const QList<ExportColumn> columns = ExportColumns(report);
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
}

// After a blank line, a line of the sub-report's title (and the group it stands for), then its records
// in its own columns.
void WriteSubreports(const Report &report, ExportFile &file, QString &text)
{
    ForEachSubreport(report, [&](SubreportObject &object, const QString &group) {
        const Report &subreport = object.OpenSubreport();
        if (!subreport.hasRecords())
            return;
        const QString title = object.Heading();
        text += QLatin1String("\r\n") + title + (group.isEmpty() ? QString() : QStringLiteral(": ") + group) +
                QLatin1String("\r\n");
        WriteLines(subreport, file, text);
        WriteSubreports(subreport, file, text);
    });
}

} // namespace

void WriteRecordFormat(const Report &report, const QString &fileName)
{
    ExportFile file(fileName, report.definition().textEncoding);
    QString text;
    WriteLines(report, file, text);
    WriteSubreports(report, file, text);
    file.writeText(text);
    file.commit();
}

} // namespace Engine
