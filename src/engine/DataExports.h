#pragma once
// The exports that come straight from the records: saved report, record format, separated values, XML, Excel.

#include "engine/Formula.h"
#include "engine/TextEncoding.h"

#include <QList>
#include <QSaveFile>
#include <QString>
#include <optional>

namespace Engine {

class Report;
struct ExportOptions;

// A column as the data exports see it: the layout's columns, or every field when the layout has none.
struct ExportColumn
{
    QString caption;
    NameRef source; // a field of the records, a formula field, a running total or a special name
    QString format;
    int valueType = 12;
    double width = 72;
    bool alignRight = false;

    // A field of the records, which an export can read without working anything out.
    int recordField() const { return source.kind == NameRef::RecordField ? source.index : -1; }
};
// `withGroupFields`: the fields of the groups first, when no column shows them, so that every row
// carries its groups.
QList<ExportColumn> ExportColumns(const Report &report, bool withGroupFields = false);

// A file written beside its target and renamed over it on commit; raises EngineError when it cannot.
class ExportFile
{
public:
    // `text`: the encoding of a text export, whose file starts as the encoding asks; writeText of
    // other exports writes UTF-8.
    explicit ExportFile(const QString &fileName, std::optional<TextEncoding> text = std::nullopt);
    void write(const QByteArray &bytes);
    void writeText(QStringView text);
    // Writes the text once it has grown past 64 KiB, and empties it.
    void writeWhenLarge(QString &text);
    void commit();

private:
    [[noreturn]] void fail();
    QSaveFile m_file;
    TextEncoding m_encoding;
};

// Types 1 and 33: the report file again, with the records of this run as its saved data.
void WriteSavedReport(const Report &report, const QString &fileName);
// Type 3: fixed-width records, one line each, widths from the layout.
void WriteRecordFormat(const Report &report, const QString &fileName);
// Types 5, 6 and 9: a heading line of captions, then one line per record.
void WriteSeparatedValues(const Report &report, const ExportOptions &options, const QString &fileName);
// Type 37: the fields and records as XML.
void WriteXmlRecords(const Report &report, const QString &fileName);
// Types 27 to 30 with groups and totals, 38 with the records alone: an Excel 97-2003 workbook.
void WriteExcelWorkbook(const Report &report, const ExportOptions &options, const QString &fileName);

} // namespace Engine
