#include "engine/layout/ChartGathering.h"

#include "engine/Report.h"
#include "engine/ReportContext.h"
#include "engine/ValueFormat.h"

namespace Engine {

namespace {

double ValueOf(const Report &report, ReportContext &context, const Formula &formula, const GroupNode &group)
{
    context.setGroup(group, report.records().row(report.groups().order()[group.first]));
    const QVariant value = formula.evaluate(context);
    return value.isNull() ? 0 : value.toDouble();
}

} // namespace

ChartData GatherChart(const Report &report, const ChartRule &rule, const GroupNode &scope)
{
    ReportContext context(report.formulas(), report.ReportTitle());
    std::vector<const GroupNode *> categories;
    GroupsOfLevel(scope, rule.categoryLevel, categories);
    ChartData data;
    for (const GroupNode *category : categories)
        data.categories.append(PlainText(category->value));
    if (rule.seriesLevel < 0) {
        QList<double> values;
        for (const GroupNode *category : categories)
            values.append(ValueOf(report, context, rule.value, *category));
        data.values.append(values);
        return data;
    }
    // Series by their value, in the order in which they first appear.
    for (qsizetype c = 0; c < qsizetype(categories.size()); ++c) {
        std::vector<const GroupNode *> cells;
        GroupsOfLevel(*categories[size_t(c)], rule.seriesLevel, cells);
        for (const GroupNode *cell : cells) {
            const QString name = PlainText(cell->value);
            qsizetype series = data.series.indexOf(name);
            if (series < 0) {
                series = data.series.size();
                data.series.append(name);
                data.values.append(QList<double>(categories.size(), 0.0));
            }
            data.values[series][c] += ValueOf(report, context, rule.value, *cell);
        }
    }
    return data;
}

} // namespace Engine
