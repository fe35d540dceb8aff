#include "engine/Query.h"

#include "engine/Codes.h"
#include "engine/EngineError.h"
#include "engine/Interruption.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

namespace Engine {

namespace {

void AppendPlaceholders(BoundQuery &bound, const QString &name, const QVariantList &values)
{
    if (values.isEmpty())
        throw EngineError(EngineError::BadParameter,
                          QStringLiteral("Parameter {?%1} has no value").arg(name));
    for (int i = 0; i < values.size(); ++i) {
        bound.sql += i == 0 ? QStringLiteral("?") : QStringLiteral(", ?");
        bound.values.append(values[i]);
    }
}

// SQLite keeps dates as text; bind them in the form its date functions and stored values use.
QVariant ForSqlite(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDate)
        return value.toDate().toString(QStringLiteral("yyyy-MM-dd"));
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (value.typeId() == QMetaType::QTime)
        return value.toTime().toString(QStringLiteral("HH:mm:ss"));
    return value;
}

} // namespace

BoundQuery BindQuery(const QString &query,
                     const std::function<std::optional<QString>(const QString &)> &tableLocation,
                     const std::function<std::optional<QVariantList>(const QString &)> &parameterValues)
{
    BoundQuery bound;
    bool quoted = false;
    for (qsizetype at = 0; at < query.size(); ++at) {
        const QChar c = query[at];
        const qsizetype close = c == QLatin1Char('{') && !quoted ? query.indexOf(QLatin1Char('}'), at) : -1;
        if (close < 0) {
            if (c == QLatin1Char('\''))
                quoted = !quoted;
            bound.sql += c;
            continue;
        }
        const QString inner = query.mid(at + 1, close - at - 1);
        at = close;
        if (inner.startsWith(QLatin1Char('?'))) {
            const std::optional<QVariantList> values = parameterValues(inner.mid(1));
            if (!values)
                throw EngineError(EngineError::BadParameter,
                                  QStringLiteral("The query names the unknown parameter {%1}").arg(inner));
            AppendPlaceholders(bound, inner.mid(1), *values);
        } else {
            const std::optional<QString> location = tableLocation(inner);
            if (!location)
                throw EngineError(EngineError::DatabaseError,
                                  QStringLiteral("The query names the unknown table {%1}").arg(inner));
            bound.sql += *location;
        }
    }
    return bound;
}

void ReadQuery(DatabaseConnection &connection, const BoundQuery &bound, RecordStore &records)
{
    QSqlQuery query(connection.database());
    query.setForwardOnly(true);
    if (!query.prepare(bound.sql))
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("The query failed: %1").arg(query.lastError().text()));
    for (const QVariant &value : bound.values)
        query.addBindValue(connection.isSqlite() ? ForSqlite(value) : value);
    if (!query.exec())
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("The query failed: %1").arg(query.lastError().text()));
    const QSqlRecord shape = query.record();
    QStringList names;
    QList<int> types;
    for (int i = 0; i < shape.count(); ++i) {
        names.append(shape.fieldName(i));
        types.append(RecordStore::valueTypeOf(shape.field(i).metaType()));
    }
    records.clear();
    records.setFields(names, types);
    const int width = int(names.size());
    const auto valueAt = [&](int i) {
        const QVariant value = query.value(i);
        // SQLite and ODBC give a boolean column as 0 and 1; keep it a boolean.
        return types[i] == BooleanField && !value.isNull() ? QVariant(value.toBool()) : value;
    };
    for (int count = 1; query.next(); ++count) {
        records.append(width, valueAt);
        if (count % 256 == 0)
            PollInterruption();
    }
    if (query.lastError().isValid())
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("Reading the records failed: %1").arg(query.lastError().text()));
}

} // namespace Engine
