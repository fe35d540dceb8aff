// Character- and tab-separated exports (types 5, 6, 9).
#include "engine/DataExports.h"
#include "engine/RecordWalk.h"
#include "engine/Report.h"
#include "engine/ValueFormat.h"

#include <charconv>

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

// A column's pattern, when the options let the export use it.
QString PatternOf(const ExportColumn &column, const Style &style)
{
    const bool datePattern = IsDatePattern(column.format);
    return (datePattern ? style.dateFormat : style.numberFormat) ? column.format : QString();
}

// The lines of the file, encoded as they are made: every record passes through here.
class Lines
{
public:
    Lines(const Style &style, TextEncoding encoding) : m_style(style), m_encoding(encoding) {}

    QByteArray &bytes() { return m_bytes; }
    void delimiter() { AppendEncoded(m_bytes, m_style.fieldDelimiter, m_encoding); }
    void end() { m_bytes += "\r\n"; }

    void quoted(QStringView text)
    {
        if (m_style.stringDelimiter.isEmpty()) {
            QString plain = text.toString();
            for (QChar &c : plain)
                c = c == QLatin1Char('\t') || c == QLatin1Char('\r') || c == QLatin1Char('\n')
                        ? QLatin1Char(' ')
                        : c;
            return AppendEncoded(m_bytes, plain, m_encoding);
        }
        AppendEncoded(m_bytes, m_style.stringDelimiter, m_encoding);
        if (text.contains(m_style.stringDelimiter)) {
            QString doubled = text.toString();
            doubled.replace(m_style.stringDelimiter, m_style.stringDelimiter + m_style.stringDelimiter);
            AppendEncoded(m_bytes, doubled, m_encoding);
        } else {
            AppendEncoded(m_bytes, text, m_encoding);
        }
        AppendEncoded(m_bytes, m_style.stringDelimiter, m_encoding);
    }

    void cell(const QVariant &value, const QString &pattern)
    {
        if (value.isNull())
            return;
        // Whole numbers without a pattern, the commonest cells, go straight in as digits.
        if (pattern.isEmpty() &&
            (value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int)) {
            char digits[24];
            const auto written = std::to_chars(digits, digits + sizeof digits, value.toLongLong());
            m_bytes.append(digits, written.ptr - digits);
            return;
        }
        const QString text = pattern.isEmpty() ? PlainText(value) : FormatValue(value, pattern);
        // A number stands bare unless its formatted text holds the field delimiter.
        if (IsNumberValue(value) && !text.contains(m_style.fieldDelimiter))
            AppendEncoded(m_bytes, text, m_encoding);
        else
            quoted(text);
    }

    // A text is read in place, unless a pattern turns it into something else (a date kept as text).
    void cell(const RecordView &row, int field, const QString &pattern)
    {
        const std::optional<QStringView> text = pattern.isEmpty() ? row.text(field) : std::nullopt;
        if (text)
            quoted(*text);
        else
            cell(row.value(field), pattern);
    }

private:
    const Style &m_style;
    TextEncoding m_encoding;
    QByteArray m_bytes;
};

// The caption line and the records of one report; the lines go to the file as they grow.
void WriteRecords(const Report &report, const Style &style, Lines &lines, ExportFile &file)
{
    const QList<ExportColumn> columns = ExportColumns(report, true);
    QStringList patterns;
    for (int c = 0; c < columns.size(); ++c) {
        patterns.append(PatternOf(columns[c], style));
        if (c > 0)
            lines.delimiter();
        lines.quoted(columns[c].caption);
    }
    lines.end();
    const auto endLine = [&] {
        lines.end();
        if (lines.bytes().size() > 1 << 16) {
            file.write(lines.bytes());
            lines.bytes().clear();
        }
    };
    // Fields of the records alone are read in place; formula fields and running totals are worked out.
    const bool recordFields = std::all_of(columns.begin(), columns.end(), [](const ExportColumn &column) {
        return column.source.kind == NameRef::RecordField;
    });
    if (recordFields) {
        report.records().visit(report.printOrder(), [&](const RecordView &row) {
            for (int c = 0; c < columns.size(); ++c) {
                if (c > 0)
                    lines.delimiter();
                if (columns[c].recordField() >= 0)
                    lines.cell(row, columns[c].recordField(), patterns[c]);
            }
            endLine();
        });
    } else {
        ForEachRecord(report, [&](const ReportContext &context) {
            for (int c = 0; c < columns.size(); ++c) {
                if (c > 0)
                    lines.delimiter();
                lines.cell(context.valueOf(columns[c].source), patterns[c]);
            }
            endLine();
        });
    }
}

void WriteSubreports(const Report &report, const Style &style, Lines &lines, ExportFile &file);

// After a blank line, a heading line of the sub-report's title (and the group it stands for), then its
// own captions and records.
void WriteSubreport(SubreportObject &object, const QString &group, const Style &style, Lines &lines,
                    ExportFile &file)
{
    const Report &subreport = object.OpenSubreport();
    if (!subreport.hasRecords())
        return;
    QString heading = object.Heading();
    if (!group.isEmpty())
        heading += QStringLiteral(": ") + group;
    lines.end();
    lines.quoted(heading);
    lines.end();
    WriteRecords(subreport, style, lines, file);
    WriteSubreports(subreport, style, lines, file);
}

// Each sub-report a section of the file.
void WriteSubreports(const Report &report, const Style &style, Lines &lines, ExportFile &file)
{
    ForEachSubreport(report, [&](SubreportObject &object, const QString &group) {
        WriteSubreport(object, group, style, lines, file);
    });
}

} // namespace

void WriteSeparatedValues(const Report &report, const ExportOptions &options, const QString &fileName)
{
    const Style style = StyleOf(options);
    const TextEncoding encoding = report.definition().textEncoding;
    Lines lines(style, encoding);
    ExportFile file(fileName, encoding);
    WriteRecords(report, style, lines, file);
    WriteSubreports(report, style, lines, file);
    file.write(lines.bytes());
    file.commit();
}

} // namespace Engine
