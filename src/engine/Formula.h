#pragma once
// A boolean formula of the engine's expression language (alerts, group selection): parsed once, evaluated per
// record.

#include "engine/RecordStore.h"

#include <QString>
#include <QVariant>
#include <functional>
#include <memory>

namespace Engine {

class Formula
{
public:
    struct Node;
    // The values of a parameter, by its plain name; an empty list when it has none.
    using ParameterLookup = std::function<QVariantList(const QString &name)>;

    Formula();
    // Raises EngineError naming the formula and the position (1-based) of the fault.
    static Formula Parse(const QString &name, const QString &text);

    bool isEmpty() const { return !m_root; }
    QString name() const { return m_name; }
    QString text() const { return m_text; }

    // Resolves field names against the records' fields and reads parameter values; raises on an unknown name.
    void bind(const QStringList &fieldNames, const ParameterLookup &parameters);
    // The value of the formula for one record.
    QVariant evaluate(const RecordStore::Row &row) const;
    // True when the formula gives true for the record; a null result counts as false.
    bool test(const RecordStore::Row &row) const;

private:
    QString m_name;
    QString m_text;
    std::shared_ptr<Node> m_root;
};

} // namespace Engine
