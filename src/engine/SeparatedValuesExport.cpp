// Character- and tab-separated exports (types 5, 6, 9).
#include "engine/DataExports.h"
#include "engine/Report.h"
#include "engine/ValueFormat.h"

namespace Engine {

namespace {

struct Style
{
    QString fieldDelimiter;
    QString stringDelimiter;
    bool dateFormat = false;
    bool numberFormat = false;
};

Style StyleOf(const ExportOptions &options)
{
    if (options.FormatType == CharSeparatedFormat)
        return {options.CharFieldDelimiter, options.CharStringDelimiter, options.UseReportDateFormat,
                options.UseReportNumberFormat};
    if (options.FormatType == TabSeparatedValuesFormat)
        return {QStringLiteral("\t"), QStringLiteral("\""), false, false};
    return {QStringLiteral("\t"), QString(), true, true}; // 9: the report's own text of each value
}

bool IsNumberValue(const QVariant &value)
{
    double number = 0;
    return value.typeId() != QMetaType::QString && value.typeId() != QMetaType::Bool &&
           NumberOf(value, number);
}

QString Quoted(const QString &text, const Style &style)
{
    if (style.stringDelimiter.isEmpty()) {
        QString plain = text;
        plain.replace(QLatin1Char('\t'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
        return plain.replace(QLatin1Char('\n'), QLatin1Char(' '));
    }
    QString doubled = text;
    doubled.replace(style.stringDelimiter, style.stringDelimiter + style.stringDelimiter);
    return style.stringDelimiter + doubled + style.stringDelimiter;
}

// A column's pattern, when the options let the export use it.
QString PatternOf(const ExportColumn &column, const Style &style)
{
    const bool datePattern = IsDatePattern(column.format);
    return (datePattern ? style.dateFormat : style.numberFormat) ? column.format : QString();
}

QString Cell(const QVariant &value, const QString &pattern, const Style &style)
{
    if (value.isNull())
        return QString();
    const QString text = pattern.isEmpty() ? PlainText(value) : FormatValue(value, pattern);
    // A number stands bare unless its formatted text holds the field delimiter.
    const bool bare = IsNumberValue(value) && !text.contains(style.fieldDelimiter);
    return bare ? text : Quoted(text, style);
}

} // namespace

void WriteSeparatedValues(const Report &report, const ExportOptions &options, const QString &fileName)
{
    const Style style = StyleOf(options);
    const QList<ExportColumn> columns = ExportColumns(report, true);
    QStringList patterns;
    QStringList captions;
    for (const ExportColumn &column : columns) {
        patterns.append(PatternOf(column, style));
        captions.append(Quoted(column.caption, style));
    }
    const RecordStore &records = report.records();
    ExportFile file(fileName, report.definition().textEncoding);
    QString text = captions.join(style.fieldDelimiter) + QLatin1String("\r\n");
    for (int row : report.groups().order()) {
        const RecordStore::Row &values = records.row(row);
        for (int c = 0; c < columns.size(); ++c) {
            if (c > 0)
                text += style.fieldDelimiter;
            if (columns[c].field >= 0)
                text += Cell(values[columns[c].field], patterns[c], style);
        }
        text += QLatin1String("\r\n");
        file.writeWhenLarge(text);
    }
    file.writeText(text);
    file.commit();
}

} // namespace Engine
