#pragma once
// What a report file declares: tables, parameters, query, layout, sub-reports, alerts and saved data.

#include "engine/RecordStore.h"
#include "engine/TextEncoding.h"
#include "engine/page/PageModel.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace Engine {

struct PropertyDefinition
{
    QString name;
    QString value;
};

struct TableDefinition
{
    QString name;
    QString location;
    QString dllName; // sqlite, psql or odbc
    QList<PropertyDefinition> properties;
};

struct ParameterDefinition
{
    QString name; // without braces
    int valueType = 12;
    QString prompt;
    bool multiple = false;
    QStringList defaultValues;
    QStringList currentValues;
};

struct ColumnDefinition
{
    QString field;
    QString caption;
    double width = 72; // points
    Qt::Alignment alignment = Qt::AlignLeft;
    QString format;    // number pattern or date pattern, by the field's type
    bool wrap = false; // long text wraps into more lines instead of ending in "…"
};

struct SummaryDefinition
{
    QString field;
    QString function = QStringLiteral("sum"); // sum, count, avg, min, max
};

struct GroupDefinition
{
    QString field;
    QString caption; // "{value}" stands for the group's value
    bool newPage = false;
    bool keepTogether = false; // the whole group on one page when it fits on one
    QList<SummaryDefinition> subtotals;
};

struct LayoutDefinition
{
    PageSetup page;
    bool pageSetInFile = false;
    QString pageHeader;
    QString pageFooter = QStringLiteral("Page {PageNumber} of {TotalPages}");
    double fontSize = 9;
    QList<ColumnDefinition> columns;
    QList<GroupDefinition> groups;
    QList<SummaryDefinition> grandTotals;
};

struct ReportDefinition;

struct SubreportLink
{
    QString parameter; // the sub-report's parameter, without braces
    QString source;    // the main report's parameter, without braces
};

struct SubreportDefinition
{
    QString name;
    QString fileName; // empty for an inline sub-report
    std::shared_ptr<ReportDefinition> report;
    QList<SubreportLink> links;
};

struct AlertDefinition
{
    QString name;
    QString condition;
};

struct ReportDefinition
{
    QString fileName;
    int version = 1;
    QString title;
    QList<TableDefinition> tables;
    QList<ParameterDefinition> parameters;
    QString query;
    LayoutDefinition layout;
    QList<SubreportDefinition> subreports;
    QList<AlertDefinition> alerts;
    QString groupSelection;
    // Of the character-separated, record and text exports.
    TextEncoding textEncoding = TextEncoding::Windows1252;
    std::optional<RecordStore> savedData;
};

} // namespace Engine
