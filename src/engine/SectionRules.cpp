#include "engine/SectionRules.h"

#include "engine/EngineError.h"
#include "engine/NearestNames.h"

namespace Engine {

Conditions::Conditions(const QString &name, const QString &suppress, const QList<StyleRule> &styles,
                       FormulaNames &names, int level)
    : m_suppress(Formula::Parse(QStringLiteral("suppress condition of ") + name, suppress))
{
    m_suppress.bind(names, level);
    for (const StyleRule &look : styles) {
        Style style{Formula::Parse(QStringLiteral("style condition of ") + name, look.condition), look};
        style.condition.bind(names, level);
        m_styles.push_back(std::move(style));
    }
}

bool Conditions::hides(const FormulaContext &context) const
{
    return !m_suppress.isEmpty() && m_suppress.test(context);
}

void Conditions::style(const FormulaContext &context, PageText &text) const
{
    for (const Style &style : m_styles) {
        if (!style.condition.test(context)) // no condition: always
            continue;
        const StyleRule &look = style.look;
        text.font.bold = look.bold.value_or(text.font.bold);
        text.font.italic = look.italic.value_or(text.font.italic);
        if (look.color.isValid())
            text.color = look.color;
        if (look.background.isValid())
            text.background = look.background;
    }
}

SectionRules::SectionRules(const QString &name, const SectionDefinition &section, FormulaNames &names,
                           int level, const QStringList &groupFields)
    : conditions(name, section.suppress, section.styles, names, level)
{
    for (const SectionObject &object : section.objects) {
        TextTemplate text(QStringLiteral("text of ") + name, object.text);
        text.bind(names, level);
        texts.push_back(std::move(text));
        fields.push_back(object.field.isEmpty() ? std::nullopt : names.resolve(object.field));
        if (!object.field.isEmpty() && !fields.back())
            throw EngineError(
                EngineError::BadFormula,
                QStringLiteral("The picture of %1 shows the field \"%2\", which the report does "
                               "not have")
                        .arg(name, object.field) +
                    NearestNamesNote(object.field, names.names()));
        crosstabs.push_back(object.kind == SectionObject::Crosstab
                                ? bindCrosstab(name, object.crosstab, names)
                                : CrosstabRule());
        charts.push_back(object.kind == SectionObject::Chart
                             ? bindChart(name, object.chart, names, level, groupFields)
                             : ChartRule());
    }
}

CrosstabRule SectionRules::bindCrosstab(const QString &name, const CrosstabDefinition &crosstab,
                                        const FormulaNames &names)
{
    const auto field = [&](const QString &wanted) {
        const std::optional<NameRef> ref = names.resolve(wanted);
        if (!ref || (ref->kind != NameRef::RecordField && ref->kind != NameRef::FormulaField))
            throw EngineError(
                EngineError::BadFormula,
                QStringLiteral("The cross-tab of %1 names the field \"%2\", which the report does "
                               "not have")
                        .arg(name, wanted) +
                    NearestNamesNote(wanted, names.names()));
        return *ref;
    };
    return CrosstabRule{field(crosstab.rows), field(crosstab.columns), field(crosstab.field),
                        *SummaryFunctionNamed(crosstab.function)};
}

// A chart draws groups below the section's own level, its series below its categories.
ChartRule SectionRules::bindChart(const QString &name, const ChartDefinition &chart, FormulaNames &names,
                                  int level, const QStringList &groupFields)
{
    const auto levelOf = [&](const QString &field, int above) {
        const auto found = std::find_if(groupFields.begin(), groupFields.end(), [&](const QString &group) {
            return group.compare(field, Qt::CaseInsensitive) == 0;
        });
        const int index = int(found - groupFields.begin());
        if (found == groupFields.end() || index <= above)
            throw EngineError(
                EngineError::BadFormula,
                QStringLiteral("The chart of %1 draws the groups of \"%2\", which are no groups "
                               "below it; it may draw: %3")
                    .arg(name, field, groupFields.mid(above + 1).join(QStringLiteral(", "))));
        return index;
    };
    ChartRule rule;
    rule.categoryLevel = levelOf(chart.group, level);
    rule.seriesLevel = chart.series.isEmpty() ? -1 : levelOf(chart.series, rule.categoryLevel);
    rule.value = Formula::Parse(QStringLiteral("chart value of ") + name, chart.value);
    rule.value.bind(names, std::max(rule.categoryLevel, rule.seriesLevel));
    return rule;
}

} // namespace Engine
