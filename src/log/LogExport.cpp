#include "LogExport.h"

#include "clsLog.h"
#include "core/Ansi.h"
#include "core/CommonFile.h"
#include "core/QorloError.h"

#include <QSaveFile>

namespace LogExport {

namespace {

QString Quoted(const QString &text)
{
    QString doubled = text;
    doubled.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + doubled + QLatin1Char('"');
}

QString CsvLine(const clsLog &log, int row)
{
    QStringList fields;
    for (const clsLog::Column column :
         {clsLog::ColReportID, clsLog::ColLogDate, clsLog::ColFinish, clsLog::ColNextDate, clsLog::ColText})
        fields.append(Quoted(log.CellAt(row, column)));
    fields.append(log.CellAt(row, clsLog::ColPages));
    return fields.join(QLatin1Char(','));
}

} // namespace

QString Title()
{
    return QStringLiteral("Log File Export");
}

QString ExportLogCsv(const clsLog &log)
{
    if (log.Count() == 0)
        return QStringLiteral("No log entries to display");

    const QString path = CommonFile::JoinPath(log.AppPath(), QStringLiteral("QorloLog.csv"));
    QStringList lines = {
        QStringLiteral("\"ReportID\",\"Start\",\"Finish\",\"NextRun\",\"Description\",\"Pages\"")};
    for (int row = 0; row <= log.Count(); ++row)
        lines.append(CsvLine(log, row));

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw QorloError(QorloError::PathFileAccess);
    file.write(Ansi::Encode(lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")));
    if (!file.commit())
        throw QorloError(QorloError::PathFileAccess);
    return path + QStringLiteral(" created");
}

} // namespace LogExport
