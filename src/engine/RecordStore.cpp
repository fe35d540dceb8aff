#include "engine/RecordStore.h"

#include "engine/Codes.h"
#include "engine/RecordCodec.h"
#include "engine/RecordSpool.h"

#include <QDateTime>

namespace Engine {

class RecordStore::Storage : public RecordSpool
{
public:
    using RecordSpool::RecordSpool;
};

RecordStore::RecordStore(qint64 memoryBound)
    : m_memoryBound(memoryBound), m_storage(std::make_shared<Storage>(memoryBound))
{
}

RecordStore::~RecordStore() = default;

RecordStore::RecordStore(const RecordStore &other) = default;

RecordStore &RecordStore::operator=(const RecordStore &other) = default;

void RecordStore::setFields(const QStringList &names, const QList<int> &valueTypes)
{
    m_names = names;
    m_types = valueTypes;
}

// The rows of a shared store are copied before this one changes them.
void RecordStore::detach()
{
    if (m_storage.use_count() == 1)
        return;
    auto own = std::make_shared<Storage>(m_memoryBound);
    for (int i = 0; i < m_storage->count(); ++i)
        own->append(m_storage->row(i));
    m_storage = std::move(own);
}

void RecordStore::append(const Row &row)
{
    detach();
    m_storage->append(row);
}

void RecordStore::append(int width, const std::function<QVariant(int)> &valueAt)
{
    detach();
    m_storage->append(width, valueAt);
}

void RecordStore::clear()
{
    m_names.clear();
    m_types.clear();
    m_storage = std::make_shared<Storage>(m_memoryBound);
}

int RecordStore::count() const
{
    return m_storage->count();
}

RecordStore::Row RecordStore::row(int index) const
{
    return m_storage->row(index);
}

QVariant RecordView::value(int index) const
{
    return RecordCodec::ValueAt(m_values[index]);
}

std::optional<QStringView> RecordView::text(int index) const
{
    return RecordCodec::TextAt(m_values[index]);
}

void RecordStore::visit(const QList<int> &rows, const std::function<void(const RecordView &)> &visitor) const
{
    RecordView view;
    for (int index : rows) {
        const char *at = m_storage->rowBytes(index);
        RecordCodec::Locate(at, view.m_values);
        visitor(view);
    }
}

bool RecordStore::spooled() const
{
    return m_storage->spooled();
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
