#include "engine/ParameterFieldDefinition.h"

#include "engine/Codes.h"
#include "engine/EngineError.h"

#include <QDateTime>
#include <cmath>

namespace Engine {

namespace {

// Day-count dates: day 0 is 30 December 1899, the fraction the time of day.
QDateTime FromDayCount(double days)
{
    const double whole = std::floor(days);
    const qint64 ms = qint64(std::llround((days - whole) * 86400000.0));
    return QDate(1899, 12, 30).addDays(qint64(whole)).startOfDay().addMSecs(ms);
}

bool IsNumber(const QVariant &value)
{
    const int id = value.typeId();
    return id == QMetaType::Double || id == QMetaType::Int || id == QMetaType::LongLong ||
           id == QMetaType::Float || id == QMetaType::UInt || id == QMetaType::ULongLong ||
           id == QMetaType::Short;
}

QDateTime ToMoment(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime();
    if (value.typeId() == QMetaType::QDate)
        return value.toDate().startOfDay();
    if (IsNumber(value))
        return FromDayCount(value.toDouble());
    const QString text = value.toString().trimmed();
    QDateTime moment = QDateTime::fromString(text, Qt::ISODate);
    if (!moment.isValid())
        moment = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (!moment.isValid())
        moment = QDate::fromString(text, Qt::ISODate).startOfDay();
    return moment;
}

} // namespace

ParameterFieldDefinition::ParameterFieldDefinition(const ParameterDefinition &definition)
    : m_name(definition.name), m_valueType(definition.valueType), m_prompt(definition.prompt),
      m_multiple(definition.multiple)
{
    for (const QString &value : definition.defaultValues)
        m_defaults.append(converted(value));
    for (const QString &value : definition.currentValues)
        AddCurrentValue(value);
}

void ParameterFieldDefinition::AddCurrentValue(const QVariant &value)
{
    const QVariant typed = converted(value);
    if (!m_multiple)
        m_current.clear();
    m_current.append(typed);
}

QVariant ParameterFieldDefinition::GetNthCurrentValue(int index) const
{
    if (index < 1 || index > m_current.size())
        throw EngineError(EngineError::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    return m_current[index - 1];
}

QVariantList ParameterFieldDefinition::boundValues() const
{
    return m_current.isEmpty() ? m_defaults : m_current;
}

QVariant ParameterFieldDefinition::converted(const QVariant &value) const
{
    QVariant result;
    switch (m_valueType) {
    case NumberField:
    case CurrencyField: {
        bool ok = IsNumber(value);
        const double number = ok ? value.toDouble() : value.toString().trimmed().toDouble(&ok);
        if (ok)
            result = number;
        break;
    }
    case BooleanField:
        if (value.typeId() == QMetaType::Bool)
            result = value.toBool();
        else if (IsNumber(value))
            result = value.toDouble() != 0;
        else {
            const QString text = value.toString().trimmed().toLower();
            if (text == QLatin1String("true") || text == QLatin1String("yes") || text == QLatin1String("1"))
                result = true;
            else if (text == QLatin1String("false") || text == QLatin1String("no") ||
                     text == QLatin1String("0"))
                result = false;
        }
        break;
    case DateField: {
        const QDateTime moment = ToMoment(value);
        if (moment.isValid())
            result = moment.date();
        break;
    }
    case DateTimeField: {
        const QDateTime moment = ToMoment(value);
        if (moment.isValid())
            result = moment;
        break;
    }
    case TimeField: {
        const QTime time = value.typeId() == QMetaType::QTime
                               ? value.toTime()
                               : QTime::fromString(value.toString().trimmed(), Qt::ISODate);
        if (time.isValid())
            result = time;
        break;
    }
    default: result = value.toString();
    }
    if (!result.isValid())
        throw EngineError(EngineError::TypeMismatch,
                          QStringLiteral("Type mismatch: \"%1\" is no value for parameter %2 of type %3")
                              .arg(value.toString(), Name())
                              .arg(m_valueType));
    return result;
}

} // namespace Engine
