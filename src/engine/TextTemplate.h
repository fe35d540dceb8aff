#pragma once
// A caption, header or footer text with values in braces: "Region: {value}", "Page {PageNumber} of
// {TotalPages}", "Total {Sum(amount):#,##0.00}". Each brace holds a formula and, after a colon, the pattern
// of its value.

#include "engine/Formula.h"

#include <QList>

namespace Engine {

class TextTemplate
{
public:
    TextTemplate() = default;
    // Raises EngineError naming `name` when a brace is not closed or its formula does not parse.
    TextTemplate(const QString &name, const QString &text);

    bool isEmpty() const { return m_parts.isEmpty(); }
    void bind(FormulaNames &names, int defaultLevel);
    // `value`: what "{value}" stands for, the group's value.
    QString evaluate(const FormulaContext &context, const QVariant &value = QVariant()) const;

private:
    struct Part
    {
        QString text;    // literal text, or the pattern of a formula's value
        Formula formula; // none for literal text and for {value}
        bool value = false;
    };

    QList<Part> m_parts;
};

} // namespace Engine
