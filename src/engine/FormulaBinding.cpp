// Binding a formula's names: record fields, formula fields, running totals, special names, parameters
// and summaries, each to where its value will come from.
#include "engine/EngineError.h"
#include "engine/FormulaNode.h"
#include "engine/NearestNames.h"

namespace Engine {

namespace {

using Node = Formula::Node;

struct Function
{
    const char *name;
    int fewest;
    int most;
};

constexpr Function Functions[] = {{"upper", 1, 1},         {"lower", 1, 1},        {"trim", 1, 1},
                                  {"length", 1, 1},        {"abs", 1, 1},          {"round", 2, 2},
                                  {"year", 1, 1},          {"month", 1, 1},        {"day", 1, 1},
                                  {"isnull", 1, 1},        {"contains", 2, 2},     {"startswith", 2, 2},
                                  {"date", 3, 3},          {"sum", 1, 2},          {"count", 1, 2},
                                  {"average", 1, 2},       {"minimum", 1, 2},      {"maximum", 1, 2},
                                  {"distinctcount", 1, 2}, {"percentofsum", 1, 2}, {"iif", 3, 3}};

[[noreturn]] void BindFailure(const QString &formula, const Node &node, const QString &what)
{
    throw EngineError(
        EngineError::BadFormula,
        QStringLiteral("Formula %1: position %2: %3").arg(formula).arg(node.position).arg(what));
}

void CheckCall(const QString &formula, const Node &node)
{
    const auto known = std::find_if(std::begin(Functions), std::end(Functions),
                                    [&](const Function &f) { return node.op == QLatin1String(f.name); });
    if (known == std::end(Functions))
        BindFailure(formula, node, QStringLiteral("unknown function \"%1\"").arg(node.op));
    const int count = int(node.args.size());
    if (count < known->fewest || count > known->most)
        BindFailure(formula, node,
                    known->fewest == known->most
                        ? QStringLiteral("%1 takes %2 argument(s)").arg(node.op).arg(known->fewest)
                        : QStringLiteral("%1 takes %2 or %3 arguments")
                              .arg(node.op)
                              .arg(known->fewest)
                              .arg(known->most));
}

// The names of a record alone.
class FieldNames : public FormulaNames
{
public:
    FieldNames(const QStringList &fields, const Formula::ParameterLookup &parameters)
        : m_fields(fields), m_parameters(parameters)
    {
    }

    std::optional<NameRef> resolve(const QString &name) const override
    {
        for (int i = 0; i < m_fields.size(); ++i) {
            // "{Table.field}" finds the field by its own name too.
            if (m_fields[i].compare(name, Qt::CaseInsensitive) == 0 ||
                m_fields[i].compare(name.section(QLatin1Char('.'), -1), Qt::CaseInsensitive) == 0)
                return NameRef{NameRef::RecordField, i};
        }
        return std::nullopt;
    }
    QStringList names() const override { return m_fields; }
    QVariantList parameter(const QString &name) const override
    {
        return m_parameters ? m_parameters(name) : QVariantList();
    }
    QString summary(const QString &function, const NameRef &, const QString &, int, SummaryRef &) override
    {
        return QStringLiteral("%1 needs the groups of a report").arg(function);
    }

private:
    QStringList m_fields;
    Formula::ParameterLookup m_parameters;
};

void BindSummary(const QString &formula, Node &node, FormulaNames &names, int defaultLevel)
{
    const Node &operand = *node.args[0];
    if (operand.kind != Node::Field)
        BindFailure(formula, operand, QStringLiteral("%1 takes the name of a field").arg(node.op));
    QString group;
    if (node.args.size() == 2) {
        if (node.args[1]->kind != Node::Field)
            BindFailure(formula, *node.args[1],
                        QStringLiteral("%1 takes the name of a group's field").arg(node.op));
        group = node.args[1]->name;
    }
    const QString fault = names.summary(node.op, operand.ref, group, defaultLevel, node.summary);
    if (!fault.isEmpty())
        BindFailure(formula, node, fault);
}

void BindNode(const QString &formula, Node &node, FormulaNames &names, int defaultLevel)
{
    if (node.kind == Node::Call && IsSummaryFunction(node.op) && node.args.size() == 2 &&
        node.args[1]->kind == Node::Field) {
        // The group is named by its field, which needs no value of its own.
        node.args[1]->ref = NameRef{NameRef::Special, NameRef::Value};
        BindNode(formula, *node.args[0], names, defaultLevel);
    } else {
        for (const auto &arg : node.args)
            BindNode(formula, *arg, names, defaultLevel);
    }
    if (node.kind == Node::Field) {
        QString name = node.name;
        if (name.startsWith(QLatin1Char('@'))) // {@name}: a formula field, as other report tools write it
            name.remove(0, 1);
        const std::optional<NameRef> ref = names.resolve(name);
        if (!ref)
            BindFailure(formula, node,
                        QStringLiteral("unknown field \"%1\"").arg(node.name) +
                            NearestNamesNote(name, names.names()));
        node.ref = *ref;
    } else if (node.kind == Node::Parameter) {
        const QVariantList values = names.parameter(node.name);
        node.value = values.size() == 1 ? values.first() : (values.isEmpty() ? QVariant() : QVariant(values));
    } else if (node.kind == Node::Call) {
        CheckCall(formula, node);
        if (IsSummaryFunction(node.op))
            BindSummary(formula, node, names, defaultLevel);
    }
}

bool ReadsBeyondRecord(const Node &node, const std::function<bool(int)> &formulaFieldReads)
{
    if (node.kind == Node::Call && IsSummaryFunction(node.op))
        return true;
    if (node.kind == Node::Field &&
        (node.ref.kind == NameRef::RunningTotal || node.ref.kind == NameRef::Special))
        return true;
    if (node.kind == Node::Field && node.ref.kind == NameRef::FormulaField &&
        formulaFieldReads(node.ref.index))
        return true;
    return std::any_of(node.args.begin(), node.args.end(),
                       [&](const auto &arg) { return ReadsBeyondRecord(*arg, formulaFieldReads); });
}

void CollectFormulaFields(const Node &node, QList<int> &fields)
{
    if (node.kind == Node::Field && node.ref.kind == NameRef::FormulaField &&
        !fields.contains(node.ref.index))
        fields.append(node.ref.index);
    for (const auto &arg : node.args)
        CollectFormulaFields(*arg, fields);
}

} // namespace

bool IsSummaryFunction(const QString &name)
{
    static const QStringList summaries = {QStringLiteral("sum"),         QStringLiteral("count"),
                                          QStringLiteral("average"),     QStringLiteral("minimum"),
                                          QStringLiteral("maximum"),     QStringLiteral("distinctcount"),
                                          QStringLiteral("percentofsum")};
    return summaries.contains(name);
}

void Formula::bind(const QStringList &fieldNames, const ParameterLookup &parameters)
{
    FieldNames names(fieldNames, parameters);
    bind(names);
}

void Formula::bind(FormulaNames &names, int defaultLevel)
{
    if (m_root)
        BindNode(m_name, *m_root, names, defaultLevel);
}

bool Formula::readsBeyondRecord(const std::function<bool(int)> &formulaFieldReads) const
{
    return m_root && ReadsBeyondRecord(*m_root, formulaFieldReads);
}

QList<int> Formula::formulaFields() const
{
    QList<int> fields;
    if (m_root)
        CollectFormulaFields(*m_root, fields);
    return fields;
}

} // namespace Engine
