#pragma once
// One parameter of a report ({?Name}): its value type, prompt, defaults and the current values of this run.

#include "engine/ReportDefinition.h"

#include <QVariant>

namespace Engine {

class ParameterFieldDefinition
{
public:
    explicit ParameterFieldDefinition(const ParameterDefinition &definition);

    QString Name() const { return QStringLiteral("{?") + m_name + QLatin1Char('}'); }
    QString ParameterFieldName() const { return m_name; }
    int ValueType() const { return m_valueType; }
    QString Prompt() const { return m_prompt; }
    bool EnableMultipleValues() const { return m_multiple; }

    // Converts the value to the field's type (raises a type mismatch when it cannot); a single-valued
    // field keeps only the last value added.
    void AddCurrentValue(const QVariant &value);
    void ClearCurrentValueAndRange() { m_current.clear(); }
    int NumberOfCurrentValues() const { return int(m_current.size()); }
    QVariant GetNthCurrentValue(int index) const; // 1-based

    // The values a query binds: the current ones, else the defaults.
    QVariantList boundValues() const;

private:
    QVariant converted(const QVariant &value) const;

    QString m_name;
    int m_valueType;
    QString m_prompt;
    bool m_multiple;
    QVariantList m_defaults;
    QVariantList m_current;
};

} // namespace Engine
