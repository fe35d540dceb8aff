#include "engine/Formula.h"

#include "engine/EngineError.h"
#include "engine/FormulaNode.h"
#include "engine/NearestNames.h"
#include "engine/ValueFormat.h"

#include <QDateTime>
#include <cmath>
#include <optional>

namespace Engine {

namespace {

using Node = Formula::Node;

class Evaluator
{
public:
    Evaluator(const QString &name, const RecordStore::Row &row) : m_name(name), m_row(row) {}

    QVariant value(const Node &node) const
    {
        switch (node.kind) {
        case Node::Literal:
        case Node::Parameter: return node.value;
        case Node::Field: return normalized(m_row.value(node.fieldIndex));
        case Node::Unary: return unary(node);
        case Node::Binary: return binary(node);
        case Node::In: return contains(node);
        case Node::Call: return call(node);
        case Node::List: return list(node);
        }
        return QVariant();
    }

    // Databases without a boolean type (SQLite) give 0 and 1.
    static bool truth(const QVariant &value)
    {
        return value.typeId() == QMetaType::Bool ? value.toBool()
                                                 : IsNumberType(value) && value.toDouble() != 0;
    }

private:
    static bool isMoment(const QVariant &v)
    {
        return v.typeId() == QMetaType::QDate || v.typeId() == QMetaType::QDateTime;
    }
    static QVariant normalized(const QVariant &v) { return IsNumberType(v) ? QVariant(v.toDouble()) : v; }

    [[noreturn]] void mismatch(const Node &node, const QString &what) const
    {
        throw EngineError(
            EngineError::BadFormula,
            QStringLiteral("Formula %1: position %2: %3").arg(m_name).arg(node.position).arg(what));
    }

    double number(const Node &node, const QVariant &v) const
    {
        if (IsNumberType(v) || v.typeId() == QMetaType::Bool)
            return v.toDouble();
        bool ok = false;
        const double parsed = v.toString().toDouble(&ok);
        if (!ok)
            mismatch(node, QStringLiteral("\"%1\" is not a number").arg(v.toString()));
        return parsed;
    }

    QDateTime moment(const Node &node, const QVariant &v) const
    {
        const QDateTime parsed = MomentOf(v);
        if (!parsed.isValid())
            mismatch(node, QStringLiteral("\"%1\" is not a date").arg(v.toString()));
        return parsed;
    }

    // Negative, zero or positive; nothing when either side is null.
    std::optional<int> compare(const Node &node, const QVariant &a, const QVariant &b) const
    {
        if (a.isNull() || b.isNull())
            return std::nullopt;
        if (isMoment(a) || isMoment(b)) {
            const QDateTime x = moment(node, a), y = moment(node, b);
            return x < y ? -1 : (y < x ? 1 : 0);
        }
        if (a.typeId() == QMetaType::Bool || b.typeId() == QMetaType::Bool)
            return int(truth(a)) - int(truth(b));
        if (IsNumberType(a) || IsNumberType(b)) {
            const double x = number(node, a), y = number(node, b);
            return x < y ? -1 : (y < x ? 1 : 0);
        }
        return a.toString().compare(b.toString());
    }

    QVariant unary(const Node &node) const
    {
        const QVariant v = value(*node.args[0]);
        if (v.isNull())
            return QVariant();
        if (node.op == QLatin1String("not"))
            return !truth(v);
        return -number(node, v);
    }

    QVariant binary(const Node &node) const
    {
        const QString &op = node.op;
        if (op == QLatin1String("and"))
            return truth(value(*node.args[0])) && truth(value(*node.args[1]));
        if (op == QLatin1String("or"))
            return truth(value(*node.args[0])) || truth(value(*node.args[1]));
        const QVariant a = value(*node.args[0]);
        const QVariant b = value(*node.args[1]);
        if (op == QLatin1String("&"))
            return QString(a.toString() + b.toString());
        if (a.isNull() || b.isNull())
            return QVariant();
        if (op == QLatin1String("+") && !IsNumberType(a) && !IsNumberType(b))
            return QString(a.toString() + b.toString());
        if (op == QLatin1String("+"))
            return number(node, a) + number(node, b);
        if (op == QLatin1String("-"))
            return number(node, a) - number(node, b);
        if (op == QLatin1String("*"))
            return number(node, a) * number(node, b);
        if (op == QLatin1String("/")) {
            const double divisor = number(node, b);
            return divisor == 0 ? QVariant() : QVariant(number(node, a) / divisor);
        }
        const std::optional<int> order = compare(node, a, b);
        if (!order)
            return QVariant();
        if (op == QLatin1String("=") || op == QLatin1String("=="))
            return *order == 0;
        if (op == QLatin1String("<>") || op == QLatin1String("!="))
            return *order != 0;
        if (op == QLatin1String("<"))
            return *order < 0;
        if (op == QLatin1String("<="))
            return *order <= 0;
        if (op == QLatin1String(">"))
            return *order > 0;
        return *order >= 0;
    }

    QVariant contains(const Node &node) const
    {
        const QVariant item = value(*node.args[0]);
        if (item.isNull())
            return QVariant();
        const QVariant set = value(*node.args[1]);
        const QVariantList members =
            set.typeId() == QMetaType::QVariantList ? set.toList() : QVariantList{set};
        for (const QVariant &member : members) {
            if (compare(node, item, normalized(member)) == 0)
                return true;
        }
        return false;
    }

    QVariant list(const Node &node) const
    {
        QVariantList values;
        for (const auto &arg : node.args)
            values.append(value(*arg));
        return values;
    }

    QVariant call(const Node &node) const;

    QString m_name;
    const RecordStore::Row &m_row;
};

struct Function
{
    const char *name;
    int arguments;
};

constexpr Function Functions[] = {
    {"upper", 1}, {"lower", 1}, {"trim", 1},   {"length", 1},   {"abs", 1},        {"round", 2}, {"year", 1},
    {"month", 1}, {"day", 1},   {"isnull", 1}, {"contains", 2}, {"startswith", 2}, {"date", 3}};

QVariant Evaluator::call(const Node &node) const
{
    QVariantList args;
    for (const auto &arg : node.args)
        args.append(value(*arg));
    const QString &f = node.op;
    if (f == QLatin1String("isnull"))
        return args[0].isNull();
    for (const QVariant &arg : args) {
        if (arg.isNull())
            return QVariant();
    }
    if (f == QLatin1String("upper"))
        return args[0].toString().toUpper();
    if (f == QLatin1String("lower"))
        return args[0].toString().toLower();
    if (f == QLatin1String("trim"))
        return args[0].toString().trimmed();
    if (f == QLatin1String("length"))
        return double(args[0].toString().size());
    if (f == QLatin1String("abs"))
        return std::abs(number(node, args[0]));
    if (f == QLatin1String("round")) {
        const double scale = std::pow(10.0, number(node, args[1]));
        return std::round(number(node, args[0]) * scale) / scale;
    }
    if (f == QLatin1String("year"))
        return double(moment(node, args[0]).date().year());
    if (f == QLatin1String("month"))
        return double(moment(node, args[0]).date().month());
    if (f == QLatin1String("day"))
        return double(moment(node, args[0]).date().day());
    if (f == QLatin1String("contains"))
        return args[0].toString().contains(args[1].toString());
    if (f == QLatin1String("startswith"))
        return args[0].toString().startsWith(args[1].toString());
    const QDate date(int(number(node, args[0])), int(number(node, args[1])), int(number(node, args[2])));
    return date.isValid() ? QVariant(date) : QVariant();
}

[[noreturn]] void BindFailure(const QString &formula, const Node &node, const QString &what)
{
    throw EngineError(
        EngineError::BadFormula,
        QStringLiteral("Formula %1: position %2: %3").arg(formula).arg(node.position).arg(what));
}

void BindNode(const QString &formula, Node &node, const QStringList &fields,
              const Formula::ParameterLookup &parameters)
{
    if (node.kind == Node::Field) {
        node.fieldIndex = -1;
        for (int i = 0; i < fields.size() && node.fieldIndex < 0; ++i) {
            const QString &field = fields[i];
            // "{Table.field}" finds the field by its own name too.
            if (field.compare(node.name, Qt::CaseInsensitive) == 0 ||
                field.compare(node.name.section(QLatin1Char('.'), -1), Qt::CaseInsensitive) == 0)
                node.fieldIndex = i;
        }
        if (node.fieldIndex < 0)
            BindFailure(formula, node,
                        QStringLiteral("unknown field \"%1\"").arg(node.name) +
                            NearestNamesNote(node.name, fields));
    } else if (node.kind == Node::Parameter) {
        const QVariantList values = parameters ? parameters(node.name) : QVariantList();
        node.value = values.size() == 1 ? values.first() : (values.isEmpty() ? QVariant() : QVariant(values));
    } else if (node.kind == Node::Call) {
        const auto known = std::find_if(std::begin(Functions), std::end(Functions),
                                        [&](const Function &f) { return node.op == QLatin1String(f.name); });
        if (known == std::end(Functions))
            BindFailure(formula, node, QStringLiteral("unknown function \"%1\"").arg(node.op));
        if (int(node.args.size()) != known->arguments)
            BindFailure(formula, node,
                        QStringLiteral("%1 takes %2 argument(s)").arg(node.op).arg(known->arguments));
    }
    for (const auto &arg : node.args)
        BindNode(formula, *arg, fields, parameters);
}

} // namespace

Formula::Formula() = default;

Formula Formula::Parse(const QString &name, const QString &text)
{
    Formula formula;
    formula.m_name = name;
    formula.m_text = text;
    if (!text.trimmed().isEmpty())
        formula.m_root = ParseFormula(name, text);
    return formula;
}

void Formula::bind(const QStringList &fieldNames, const ParameterLookup &parameters)
{
    if (m_root)
        BindNode(m_name, *m_root, fieldNames, parameters);
}

QVariant Formula::evaluate(const RecordStore::Row &row) const
{
    return m_root ? Evaluator(m_name, row).value(*m_root) : QVariant(true);
}

bool Formula::test(const RecordStore::Row &row) const
{
    return Evaluator::truth(evaluate(row));
}

} // namespace Engine
