#include "engine/RecordStore.h"

#include "engine/Codes.h"

#include <QDateTime>

namespace Engine {

void RecordStore::setFields(const QStringList &names, const QList<int> &valueTypes)
{
    m_names = names;
    m_types = valueTypes;
}

void RecordStore::append(Row row)
{
    m_rows.push_back(std::move(row));
}

void RecordStore::clear()
{
    m_names.clear();
    m_types.clear();
    m_rows.clear();
}

int RecordStore::fieldIndex(const QString &name) const
{
    for (int i = 0; i < m_names.size(); ++i) {
        if (m_names[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

int RecordStore::valueTypeOf(QMetaType type)
{
    switch (type.id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::Double:
    case QMetaType::Float: return NumberField;
    case QMetaType::Bool: return BooleanField;
    case QMetaType::QDate: return DateField;
    case QMetaType::QTime: return TimeField;
    case QMetaType::QDateTime: return DateTimeField;
    default: return StringField;
    }
}

QVariant RecordStore::fromText(const QString &text, int valueType)
{
    switch (valueType) {
    case NumberField:
    case CurrencyField: return text.toDouble();
    case BooleanField: return text == QLatin1String("true");
    case DateField: return QDate::fromString(text, Qt::ISODate);
    case TimeField: return QTime::fromString(text, Qt::ISODate);
    case DateTimeField: return QDateTime::fromString(text, Qt::ISODate);
    default: return text;
    }
}

QString RecordStore::toText(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::QDate: return value.toDate().toString(Qt::ISODate);
    case QMetaType::QTime: return value.toTime().toString(Qt::ISODate);
    case QMetaType::QDateTime: return value.toDateTime().toString(Qt::ISODate);
    case QMetaType::Double: return QString::number(value.toDouble(), 'g', 17);
    default: return value.toString();
    }
}

} // namespace Engine
