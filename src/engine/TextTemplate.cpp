#include "engine/TextTemplate.h"

#include "engine/EngineError.h"
#include "engine/ValueFormat.h"

namespace Engine {

namespace {

// Where the brace that opens at `open` closes, braces inside it counted; -1 when it does not.
qsizetype ClosingBrace(const QString &text, qsizetype open)
{
    int depth = 0;
    QChar quote;
    for (qsizetype at = open; at < text.size(); ++at) {
        const QChar c = text[at];
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
        } else if (c == QLatin1Char('{')) {
            ++depth;
        } else if (c == QLatin1Char('}') && --depth == 0) {
            return at;
        }
    }
    return -1;
}

// The colon that starts a pattern: outside quotes, date literals and inner braces.
qsizetype PatternColon(const QString &inner)
{
    int depth = 0;
    QChar quote;
    for (qsizetype at = 0; at < inner.size(); ++at) {
        const QChar c = inner[at];
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"') || c == QLatin1Char('#')) {
            quote = c;
        } else if (c == QLatin1Char('{')) {
            ++depth;
        } else if (c == QLatin1Char('}')) {
            --depth;
        } else if (c == QLatin1Char(':') && depth == 0) {
            return at;
        }
    }
    return -1;
}

} // namespace

TextTemplate::TextTemplate(const QString &name, const QString &text)
{
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype open = text.indexOf(QLatin1Char('{'), at);
        if (open < 0) {
            m_parts.append(Part{text.mid(at), Formula(), false});
            break;
        }
        if (open > at)
            m_parts.append(Part{text.mid(at, open - at), Formula(), false});
        const qsizetype close = ClosingBrace(text, open);
        if (close < 0)
            throw EngineError(
                EngineError::BadFormula,
                QStringLiteral("Text %1: position %2: \"{\" not closed by \"}\"").arg(name).arg(open + 1));
        const QString inner = text.mid(open + 1, close - open - 1);
        const qsizetype colon = PatternColon(inner);
        const QString expression = (colon < 0 ? inner : inner.left(colon)).trimmed();
        const QString pattern = colon < 0 ? QString() : inner.mid(colon + 1).trimmed();
        if (expression.compare(QLatin1String("value"), Qt::CaseInsensitive) == 0)
            m_parts.append(Part{pattern, Formula(), true});
        else
            m_parts.append(Part{
                pattern, Formula::Parse(QStringLiteral("%1 {%2}").arg(name, expression), expression), false});
        at = close + 1;
    }
}

void TextTemplate::bind(FormulaNames &names, int defaultLevel)
{
    for (Part &part : m_parts)
        part.formula.bind(names, defaultLevel);
}

QString TextTemplate::evaluate(const FormulaContext &context, const QVariant &value) const
{
    QString text;
    for (const Part &part : m_parts) {
        if (part.value)
            text += FormatValue(value, part.text);
        else if (part.formula.isEmpty())
            text += part.text;
        else
            text += FormatValue(part.formula.evaluate(context), part.text);
    }
    return text;
}

} // namespace Engine
