#pragma once
// A formula of the engine's expression language (alerts, selections, formula fields, captions): parsed once,
// bound to the names of a report, evaluated per record or per group.

#include "engine/RecordStore.h"

#include <QString>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>

namespace Engine {

// What a name in a formula stands for.
struct NameRef
{
    enum Kind { RecordField, FormulaField, RunningTotal, Special };
    // The special names: what the engine knows of a record or a page, not of the data.
    enum SpecialName {
        PrintDate,
        PageNumber,
        TotalPages,
        RecordNumber,
        GroupNumber,
        GroupRecordNumber,
        Title,
        Value
    };

    Kind kind = RecordField;
    int index = -1; // the field, formula, running total or SpecialName
};

// A summary a formula asks for: which one of the summaries kept for a group level (-1 the report).
struct SummaryRef
{
    int level = -1;
    int slot = -1;
};

// The report's side of binding: the names it knows and the summaries it keeps.
class FormulaNames
{
public:
    virtual ~FormulaNames() = default;
    virtual std::optional<NameRef> resolve(const QString &name) const = 0;
    // Every name resolve() knows, for naming the nearest to an unknown one.
    virtual QStringList names() const = 0;
    virtual QVariantList parameter(const QString &name) const = 0;
    // A summary function over a name, for the group of `groupField` (empty: the formula's own level).
    // Empty text when it can be kept, else why not.
    virtual QString summary(const QString &function, const NameRef &operand, const QString &groupField,
                            int defaultLevel, SummaryRef &summary) = 0;
};

// Where a formula finds the values of what it names while it is evaluated.
class FormulaContext
{
public:
    virtual ~FormulaContext() = default;
    virtual QVariant field(int index) const = 0;
    virtual QVariant named(const NameRef &name) const;
    virtual QVariant summary(const SummaryRef &summary) const;
};

class Formula
{
public:
    struct Node;
    // The values of a parameter, by its plain name; an empty list when it has none.
    using ParameterLookup = std::function<QVariantList(const QString &name)>;
    // The deepest a formula may nest, with the formula fields it names: parsing and evaluating take
    // stack for each level.
    static constexpr int MaxDepth = 500;

    Formula();
    // Raises EngineError naming the formula and the position (1-based) of the fault.
    static Formula Parse(const QString &name, const QString &text);

    bool isEmpty() const { return !m_root; }
    QString name() const { return m_name; }
    QString text() const { return m_text; }
    // How deep its tree nests; 0 for an empty formula.
    int depth() const;

    // Resolves names against the records' fields and reads parameter values; raises on an unknown name.
    void bind(const QStringList &fieldNames, const ParameterLookup &parameters);
    // Resolves names against a report's names; summaries without a group are those of `defaultLevel`.
    void bind(FormulaNames &names, int defaultLevel = -1);
    // Whether the formula reads more than the record and the parameters (a summary, a running total, a
    // special name), directly or through the formula fields it names, which `formulaFieldReads` tells of.
    bool readsBeyondRecord(const std::function<bool(int formulaField)> &formulaFieldReads) const;
    // The formula fields it names directly.
    QList<int> formulaFields() const;

    // The value of the formula for one record.
    QVariant evaluate(const RecordStore::Row &row) const;
    QVariant evaluate(const FormulaContext &context) const;
    // True when the formula gives true; a null result counts as false.
    bool test(const RecordStore::Row &row) const;
    bool test(const FormulaContext &context) const;

private:
    QString m_name;
    QString m_text;
    std::shared_ptr<Node> m_root;
};

} // namespace Engine
