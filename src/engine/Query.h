#pragma once
// The report's query: placeholders resolved into bound values, then run forward-only into a record store.

#include "engine/DatabaseConnection.h"
#include "engine/RecordStore.h"

#include <QVariant>
#include <functional>
#include <optional>

namespace Engine {

struct BoundQuery
{
    QString sql;
    QVariantList values; // one per "?" of sql, in order
};

// Replaces {Table} by the table's location and {?Name} by one "?" per value of the parameter (a list
// for a multi-valued one). Text inside single quotes is left alone. Raises EngineError for an unknown
// table or parameter, or a parameter without a value.
BoundQuery BindQuery(const QString &query,
                     const std::function<std::optional<QString>(const QString &)> &tableLocation,
                     const std::function<std::optional<QVariantList>(const QString &)> &parameterValues);

// Runs the query and spools every record; raises EngineError with the driver's message.
void ReadQuery(DatabaseConnection &connection, const BoundQuery &query, RecordStore &records);

} // namespace Engine
