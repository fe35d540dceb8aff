#include "engine/ReportFormulas.h"

#include "engine/EngineError.h"
#include "engine/NearestNames.h"

namespace Engine {

namespace {

const QStringList &SpecialNames()
{
    // In the order of NameRef::SpecialName.
    static const QStringList names = {QStringLiteral("PrintDate"),   QStringLiteral("PageNumber"),
                                      QStringLiteral("TotalPages"),  QStringLiteral("RecordNumber"),
                                      QStringLiteral("GroupNumber"), QStringLiteral("GroupRecordNumber"),
                                      QStringLiteral("Title")};
    return names;
}

int IndexOf(const QStringList &names, const QString &name)
{
    for (int i = 0; i < names.size(); ++i) {
        if (names[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

[[noreturn]] void Fail(const QString &what)
{
    throw EngineError(EngineError::BadFormula, what);
}

} // namespace

ReportFormulas::ReportFormulas(const ReportDefinition &definition, const RecordStore &records,
                               const Formula::ParameterLookup &parameters)
    : m_fields(records.fieldNames()), m_parameters(parameters), m_slots(definition.layout.groups.size() + 1),
      m_subtotals(definition.layout.groups.size() + 1)
{
    const LayoutDefinition &layout = definition.layout;
    for (const FormulaFieldDefinition &formula : definition.formulas) {
        m_formulaNames.append(formula.name);
        m_formulaFields.push_back(
            Formula::Parse(QStringLiteral("field \"%1\"").arg(formula.name), formula.text));
    }
    for (const RunningTotalDefinition &total : definition.runningTotals)
        m_runningNames.append(total.name);
    for (const GroupDefinition &group : layout.groups)
        m_groupFields.append(group.field);
    for (Formula &formula : m_formulaFields)
        formula.bind(*this);
    checkCycles();
    for (const RunningTotalDefinition &total : definition.runningTotals) {
        const int reset = total.reset.isEmpty() ? -1 : levelOf(total.reset);
        if (reset < -1)
            Fail(QStringLiteral(
                     "Running total \"%1\" starts again with the group of \"%2\", which the layout does "
                     "not have")
                     .arg(total.name, total.reset));
        const QString what = QStringLiteral("running total \"%1\"").arg(total.name);
        const NameRef operand = recordName(what, total.field);
        m_runningTotals.push_back(BoundRunningTotal{*SummaryFunctionNamed(total.function), operand, reset});
        if (operand.kind == NameRef::FormulaField)
            m_operands.emplace_back(operand.index, what);
    }
    for (int level = 0; level < layout.groups.size(); ++level) {
        const GroupDefinition &group = layout.groups[level];
        GroupRule rule;
        rule.field = recordName(QStringLiteral("group \"%1\"").arg(group.field), group.field);
        const QString name = QStringLiteral("group \"%1\"").arg(group.field);
        rule.selection = Formula::Parse(QStringLiteral("selection of ") + name, group.selection);
        rule.sortBy = Formula::Parse(QStringLiteral("sort of ") + name, group.sortBy);
        rule.descending = group.descending;
        rule.top = group.top;
        rule.caption = TextTemplate(QStringLiteral("caption of ") + name, group.caption);
        rule.footer = TextTemplate(QStringLiteral("footer of ") + name, group.footer);
        for (Formula *formula : {&rule.selection, &rule.sortBy})
            formula->bind(*this, level);
        rule.caption.bind(*this, level);
        rule.footer.bind(*this, level);
        rule.header =
            SectionRules(QStringLiteral("header of ") + name, group.header, *this, level, m_groupFields);
        rule.footerSection = SectionRules(QStringLiteral("footer of ") + name, group.footerSection, *this,
                                          level, m_groupFields);
        m_groups.push_back(std::move(rule));
        for (const SummaryDefinition &subtotal : group.subtotals)
            addSubtotal(QStringLiteral("Subtotal"), subtotal, level);
    }
    for (const SummaryDefinition &total : layout.grandTotals)
        addSubtotal(QStringLiteral("Grand total"), total, -1);
    for (const SortDefinition &sort : layout.sorts)
        m_sorts.append({recordName(QStringLiteral("sort"), sort.field), sort.descending});
    m_pageHeader = TextTemplate(QStringLiteral("page header"), layout.pageHeader);
    m_pageFooter = TextTemplate(QStringLiteral("page footer"), layout.pageFooter);
    m_pageHeader.bind(*this, -1);
    m_pageFooter.bind(*this, -1);
    bindSections(layout);
    checkOperands();
}

// Conditions of records and columns read the summaries of the innermost group.
void ReportFormulas::bindSections(const LayoutDefinition &layout)
{
    const int innermost = int(layout.groups.size()) - 1;
    m_reportHeader =
        SectionRules(QStringLiteral("report header"), layout.reportHeader, *this, -1, m_groupFields);
    for (const SectionObject &object : layout.details.objects) {
        if (object.kind != SectionObject::Text && object.kind != SectionObject::Picture)
            Fail(
                QStringLiteral("The details hold texts and pictures; charts and cross-tabs stand in a header "
                               "or footer"));
    }
    m_details = SectionRules(QStringLiteral("details"), layout.details, *this, innermost, m_groupFields);
    m_reportFooter =
        SectionRules(QStringLiteral("report footer"), layout.reportFooter, *this, -1, m_groupFields);
    m_noData = SectionRules(QStringLiteral("no-data section"), layout.noData, *this, -1, m_groupFields);
    for (const ColumnDefinition &column : layout.columns)
        m_columns.emplace_back(QStringLiteral("column \"%1\"").arg(column.field), column.suppress,
                               column.styles, *this, innermost);
}

const Conditions &ReportFormulas::column(int index) const
{
    static const Conditions none;
    return index < int(m_columns.size()) ? m_columns[size_t(index)] : none;
}

bool ReportFormulas::IsSpecialName(const QString &name)
{
    return IndexOf(SpecialNames(), name) >= 0;
}

std::optional<NameRef> ReportFormulas::resolve(const QString &name) const
{
    const QString own = name.section(QLatin1Char('.'), -1); // "{Table.field}" names the field too
    if (const int field = IndexOf(m_fields, name); field >= 0)
        return NameRef{NameRef::RecordField, field};
    if (const int field = IndexOf(m_fields, own); field >= 0)
        return NameRef{NameRef::RecordField, field};
    if (const int formula = IndexOf(m_formulaNames, name); formula >= 0)
        return NameRef{NameRef::FormulaField, formula};
    if (const int total = IndexOf(m_runningNames, name); total >= 0)
        return NameRef{NameRef::RunningTotal, total};
    if (const int special = IndexOf(SpecialNames(), name); special >= 0)
        return NameRef{NameRef::Special, special};
    return std::nullopt;
}

QStringList ReportFormulas::names() const
{
    return m_fields + m_formulaNames + m_runningNames + SpecialNames();
}

QVariantList ReportFormulas::parameter(const QString &name) const
{
    return m_parameters ? m_parameters(name) : QVariantList();
}

int ReportFormulas::levelOf(const QString &groupField) const
{
    const int level = IndexOf(m_groupFields, groupField);
    return level >= 0 ? level : -2;
}

// A name that stands for a value of each record: a field or a formula field.
NameRef ReportFormulas::recordName(const QString &what, const QString &name) const
{
    const std::optional<NameRef> ref = resolve(name);
    if (!ref)
        Fail(QStringLiteral("The %1 names the field \"%2\", which the report does not have").arg(what, name) +
             NearestNamesNote(name, names()));
    if (ref->kind != NameRef::RecordField && ref->kind != NameRef::FormulaField)
        Fail(QStringLiteral("The %1 names \"%2\", which is no field of a record").arg(what, name));
    return *ref;
}

void ReportFormulas::addSubtotal(const QString &what, const SummaryDefinition &definition, int level)
{
    Subtotal subtotal;
    subtotal.operand = recordName(what.toLower(), definition.field);
    subtotal.function = *SummaryFunctionNamed(definition.function);
    const QString fault = summary(definition.function, subtotal.operand, QString(), level, subtotal.ref);
    if (!fault.isEmpty())
        Fail(QStringLiteral("%1 of \"%2\": %3").arg(what, definition.field, fault));
    m_subtotals[size_t(level + 1)].push_back(subtotal);
}

QString ReportFormulas::summary(const QString &function, const NameRef &operand, const QString &groupField,
                                int defaultLevel, SummaryRef &summary)
{
    const std::optional<SummaryFunction> kind = SummaryFunctionNamed(function);
    const int level = groupField.isEmpty() ? defaultLevel : levelOf(groupField);
    if (!kind)
        return QStringLiteral("\"%1\" is no summary").arg(function);
    if (level < -1)
        return QStringLiteral("the report has no group of \"%1\"").arg(groupField);
    if (operand.kind != NameRef::RecordField && operand.kind != NameRef::FormulaField)
        return QStringLiteral("%1 takes a field or a formula field").arg(function);
    if (operand.kind == NameRef::FormulaField)
        m_operands.emplace_back(operand.index, QStringLiteral("summary %1").arg(function));
    BoundSummary wanted{*kind, operand, -1};
    if (wanted.function == SummaryFunction::PercentOfSum && level >= 0) {
        SummaryRef parent;
        this->summary(QStringLiteral("sum"), operand, QString(), level - 1, parent);
        wanted.parentSlot = parent.slot;
    }
    std::vector<BoundSummary> &slots = m_slots[size_t(level + 1)];
    const auto same =
        std::find_if(slots.begin(), slots.end(), [&](const BoundSummary &s) { return s.sameAs(wanted); });
    summary = {level, int(same - slots.begin())};
    if (same == slots.end())
        slots.push_back(wanted);
    return QString();
}

// A formula field that is summarized or carried as a running total is worked out before the pages
// exist: it may read the record and the parameters, nothing that depends on the layout.
void ReportFormulas::checkOperands() const
{
    const std::function<bool(int)> reads = [&](int field) {
        return m_formulaFields[size_t(field)].readsBeyondRecord(reads);
    };
    for (const auto &[field, by] : m_operands) {
        if (field >= 0 && reads(field))
            Fail(QStringLiteral(
                     "The %1 sums the formula field \"%2\", which uses a summary, a running total or a "
                     "page's value")
                     .arg(by, m_formulaNames[field]));
    }
}

// A formula field is evaluated inside the formulas that name it, so their depths add up.
void ReportFormulas::checkCycles() const
{
    // 0 not seen, 1 being followed, 2 done.
    std::vector<int> state(m_formulaFields.size(), 0);
    std::vector<int> depth(m_formulaFields.size(), 0); // with the fields it names, once done
    const auto tooDeep = [this](const QString &name) {
        Fail(QStringLiteral("Formula field \"%1\": the formula fields it names nest more than %2 levels deep")
                 .arg(name)
                 .arg(Formula::MaxDepth));
    };
    const std::function<void(int, QStringList)> follow = [&](int field, QStringList path) {
        path.append(m_formulaNames[field]);
        if (state[size_t(field)] == 1)
            Fail(QStringLiteral("The formula fields refer to each other in a circle: %1")
                     .arg(path.join(QStringLiteral(" -> "))));
        if (state[size_t(field)] == 2)
            return;
        if (path.size() > Formula::MaxDepth)
            tooDeep(path.first());
        state[size_t(field)] = 1;
        const Formula &formula = m_formulaFields[size_t(field)];
        int below = 0;
        for (int next : formula.formulaFields()) {
            follow(next, path);
            below = std::max(below, depth[size_t(next)]);
        }
        depth[size_t(field)] = formula.depth() + below;
        if (depth[size_t(field)] > Formula::MaxDepth)
            tooDeep(m_formulaNames[field]);
        state[size_t(field)] = 2;
    };
    for (int field = 0; field < int(m_formulaFields.size()); ++field)
        follow(field, {});
}

bool ReportFormulas::reorders() const
{
    return !m_sorts.isEmpty() || std::any_of(m_groups.begin(), m_groups.end(), [](const GroupRule &rule) {
        return !rule.selection.isEmpty() || !rule.sortBy.isEmpty() || rule.top > 0;
    });
}

} // namespace Engine
