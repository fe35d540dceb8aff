#include "engine/Formula.h"

#include "engine/EngineError.h"
#include "engine/FormulaNode.h"
#include "engine/ValueFormat.h"

#include <QDateTime>
#include <algorithm>
#include <cmath>
#include <optional>

namespace Engine {

namespace {

using Node = Formula::Node;

class Evaluator
{
public:
    Evaluator(const QString &name, const FormulaContext &context) : m_name(name), m_context(context) {}

    QVariant value(const Node &node) const
    {
        switch (node.kind) {
        case Node::Literal:
        case Node::Parameter: return node.value;
        case Node::Field:
            return normalized(node.ref.kind == NameRef::RecordField ? m_context.field(node.ref.index)
                                                                    : m_context.named(node.ref));
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
        const auto isTrue = [this](const auto &arg) { return truth(value(*arg)); };
        if (op == QLatin1String("and"))
            return std::all_of(node.args.begin(), node.args.end(), isTrue);
        if (op == QLatin1String("or"))
            return std::any_of(node.args.begin(), node.args.end(), isTrue);
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
    const FormulaContext &m_context;
};

// A record's fields alone, for the formulas that name nothing else (alerts, selection, tests).
class RowContext : public FormulaContext
{
public:
    explicit RowContext(const RecordStore::Row &row) : m_row(row) {}
    QVariant field(int index) const override { return m_row.value(index); }

private:
    const RecordStore::Row &m_row;
};

QVariant Evaluator::call(const Node &node) const
{
    if (IsSummaryFunction(node.op))
        return m_context.summary(node.summary);
    QVariantList args;
    for (const auto &arg : node.args)
        args.append(value(*arg));
    const QString &f = node.op;
    if (f == QLatin1String("isnull"))
        return args[0].isNull();
    if (f == QLatin1String("iif")) // a null condition is not true
        return truth(args[0]) ? args[1] : args[2];
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

int Formula::depth() const
{
    return m_root ? m_root->height : 0;
}

QVariant FormulaContext::named(const NameRef &) const
{
    return QVariant();
}

QVariant FormulaContext::summary(const SummaryRef &) const
{
    return QVariant();
}

QVariant Formula::evaluate(const RecordStore::Row &row) const
{
    return evaluate(RowContext(row));
}

QVariant Formula::evaluate(const FormulaContext &context) const
{
    return m_root ? Evaluator(m_name, context).value(*m_root) : QVariant(true);
}

bool Formula::test(const RecordStore::Row &row) const
{
    return Evaluator::truth(evaluate(row));
}

bool Formula::test(const FormulaContext &context) const
{
    return Evaluator::truth(evaluate(context));
}

} // namespace Engine
