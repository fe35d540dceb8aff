#pragma once
// What a report file declares: tables, parameters, query, layout, sub-reports, alerts and saved data.

#include "engine/RecordStore.h"
#include "engine/TextEncoding.h"
#include "engine/page/PageModel.h"

#include <QColor>
#include <QImage>
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

// A look a condition gives to a field or a whole section: what it sets, the rest stays.
struct StyleRule
{
    QString condition;
    std::optional<bool> bold;
    std::optional<bool> italic;
    QColor color;      // invalid: unchanged
    QColor background; // invalid: unchanged
};

enum class ChartType { Bar, StackedBar, Line, Pie };

// A chart over the groups of one level (its categories), a summary formula over each; with `series`,
// split further by the groups of a deeper level.
struct ChartDefinition
{
    ChartType type = ChartType::Bar;
    QString group;
    QString series;
    QString value;
};

// A table of one summary by the values of two fields: a row for each value of one, a column for each
// value of the other, with row and column totals.
struct CrosstabDefinition
{
    QString rows;
    QString columns;
    QString field;
    QString function = QStringLiteral("sum");
    QString format;
    double cellWidth = 60;
};

// What a section holds besides its own lines: a text with values, a picture, a chart or a cross-tab.
struct SectionObject
{
    enum Kind { Text, Picture, Chart, Crosstab };
    Kind kind = Text;
    QString text; // a text with values in braces; a chart's title
    Qt::Alignment alignment = Qt::AlignLeft;
    bool bold = false;
    double fontSize = 0; // 0: the report's
    // A picture: from a file, read with the report, or from a field of each record (PNG or JPEG bytes),
    // drawn into a box of `width` by `height` points.
    QImage image;
    QString field;
    double width = 0;
    double height = 0;
    ChartDefinition chart;
    CrosstabDefinition crosstab;
};

// A section of the layout (report header and footer, a group's header and footer, the details): a
// condition that hides it, the looks conditions give it, and its objects.
struct SectionDefinition
{
    QString suppress;
    QList<StyleRule> styles;
    QList<SectionObject> objects;
};

struct ColumnDefinition
{
    QString field;
    QString caption;
    double width = 72; // points
    Qt::Alignment alignment = Qt::AlignLeft;
    QString format;    // number pattern or date pattern, by the field's type
    bool wrap = false; // long text wraps into more lines instead of ending in "…"
    QString suppress;  // a condition that leaves the field empty
    QList<StyleRule> styles;
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
    SectionDefinition header;
    SectionDefinition footerSection;
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
    QList<SectionObject> pageHeaderPictures; // a logo beside the page header's text
    QString pageFooter = QStringLiteral("Page {PageNumber} of {TotalPages}");
    double fontSize = 9;
    QList<ColumnDefinition> columns;
    QList<GroupDefinition> groups;
    QList<SortDefinition> sorts;
    QList<SummaryDefinition> grandTotals;
    SectionDefinition reportHeader;
    SectionDefinition details;
    SectionDefinition reportFooter;
    SectionDefinition noData; // printed in place of the records when there are none
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
    QString field;     // or the field of the main report's record where the sub-report stands
};

struct SubreportDefinition
{
    QString name;
    QString fileName; // empty for an inline sub-report
    std::shared_ptr<ReportDefinition> report;
    QList<SubreportLink> links;
    // Where it stands: reportHeader, reportFooter, or the header or footer of the group of `group`.
    QString section = QStringLiteral("reportFooter");
    QString group;
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
