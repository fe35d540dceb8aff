#pragma once
// Reads a report file (.rpt, XML) into a ReportDefinition, sub-report files included.

#include "engine/ReportDefinition.h"

#include <QXmlStreamReader>
#include <functional>

namespace Engine {

class ReportFile
{
public:
    // Raises EngineError naming the file, the line and what to fix.
    static ReportDefinition Read(const QString &fileName);
    // The version of the format this engine reads and writes.
    static constexpr int Version = 1;

private:
    ReportFile(QString fileName, int depth);
    ReportDefinition readFile();
    ReportDefinition readReport();
    void readChild(ReportDefinition &report);
    TableDefinition readTable();
    ParameterDefinition readParameter();
    void readLayout(LayoutDefinition &layout);
    void readPage(LayoutDefinition &layout);
    ColumnDefinition readColumn();
    GroupDefinition readGroup();
    SummaryDefinition readSummary();
    SubreportDefinition readSubreport();
    TextEncoding readExport();
    RunningTotalDefinition readRunningTotal();
    QString summaryFunction(const QString &fallback);
    bool descending();
    Qt::Alignment alignment();
    QColor color(const char *name);
    StyleRule readStyle();
    void readSection(SectionDefinition &section);
    SectionObject readText();
    SectionObject readPicture();
    SectionObject readChart();
    SectionObject readCrosstab();
    // The text of an element whose child elements `readChild` takes; the text is trimmed.
    QString readMixed(const std::function<void()> &readChild);
    RecordStore readSavedData();

    QString attribute(const char *name, bool required = false);
    double numberAttribute(const char *name, double fallback);
    bool flagAttribute(const char *name);
    QString text();
    QString xmlFault() const;
    [[noreturn]] void fail(const QString &what);
    [[noreturn]] void unknownElement();

    QString m_fileName;
    int m_depth;
    QXmlStreamReader m_xml;
};

} // namespace Engine
