#pragma once
// The conditions of a section or a column, bound to a report's names: whether it is hidden, and the
// looks that hold for a record or a group.

#include "engine/ReportDefinition.h"
#include "engine/Summary.h"
#include "engine/TextTemplate.h"

#include <vector>

namespace Engine {

class Conditions
{
public:
    Conditions() = default;
    // Raises EngineError naming `name` when a condition does not parse or names what the report lacks.
    // Summaries without a group are those of `level`.
    Conditions(const QString &name, const QString &suppress, const QList<StyleRule> &styles,
               FormulaNames &names, int level);

    bool hides(const FormulaContext &context) const;
    // Gives `text` the looks whose conditions hold, the later over the earlier.
    void style(const FormulaContext &context, PageText &text) const;

private:
    struct Style
    {
        Formula condition; // none: always
        StyleRule look;
    };

    Formula m_suppress;
    std::vector<Style> m_styles;
};

// A chart's levels and the formula it draws, over each group of the deepest of them.
struct ChartRule
{
    int categoryLevel = -1;
    int seriesLevel = -1; // -1: no series
    Formula value;
};

// What a cross-tab counts: the fields of its rows, columns and cells.
struct CrosstabRule
{
    NameRef rows;
    NameRef columns;
    NameRef field;
    SummaryFunction function = SummaryFunction::Sum;
};

struct SectionRules
{
    SectionRules() = default;
    // `level`: the section's group level, -1 for the report's; `groupFields`: the layout's groups, outermost
    // first, which charts name.
    SectionRules(const QString &name, const SectionDefinition &section, FormulaNames &names, int level,
                 const QStringList &groupFields);

    Conditions conditions;
    // By the section's objects: the text of a text, the field of a picture from a record.
    std::vector<TextTemplate> texts;
    std::vector<std::optional<NameRef>> fields;
    std::vector<ChartRule> charts;
    std::vector<CrosstabRule> crosstabs;

private:
    static CrosstabRule bindCrosstab(const QString &name, const CrosstabDefinition &crosstab,
                                     const FormulaNames &names);
    static ChartRule bindChart(const QString &name, const ChartDefinition &chart, FormulaNames &names,
                               int level, const QStringList &groupFields);
};

} // namespace Engine
