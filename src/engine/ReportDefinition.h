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
    QString function = QStringLiteral("sum"); // a name SummaryFunctionNamed knows
};

struct GroupDefinition
{
    QString field;
    QString caption;                                  // "{value}" stands for the group's value
    QString footer = QStringLiteral("Total {value}"); // the label of its subtotals
    bool newPage = false;
    bool keepTogether = false; // the whole group on one page when it fits on one
    QList<SummaryDefinition> subtotals;
    QString selection; // a formula over the group: groups for which it is not true are left out
    QString sortBy;    // a formula over the group that orders the groups of one parent
    bool descending = false;
    int top = 0; // the first N groups of one parent after sorting; 0: all
};

// Orders the records within their groups.
struct SortDefinition
{
    QString field; // a field or formula field
    bool descending = false;
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
    QList<SortDefinition> sorts;
    QList<SummaryDefinition> grandTotals;
};

// A field computed by a formula from the record, the parameters and other formula fields.
struct FormulaFieldDefinition
{
    QString name;
    QString text;
};

// A summary carried from record to record in print order, from the start or from each group's start.
struct RunningTotalDefinition
{
    QString name;
    QString field;
    QString function = QStringLiteral("sum");
    QString reset; // the field of the group it starts again with; empty: never
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
    QList<FormulaFieldDefinition> formulas;
    QList<RunningTotalDefinition> runningTotals;
    LayoutDefinition layout;
    QList<SubreportDefinition> subreports;
    QList<AlertDefinition> alerts;
    QString groupSelection;
    // Of the character-separated, record and text exports.
    TextEncoding textEncoding = TextEncoding::Windows1252;
    std::optional<RecordStore> savedData;
};

} // namespace Engine
