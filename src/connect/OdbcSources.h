#pragma once
// The ODBC data sources of the machine, as unixODBC lists them (user and system sources).

#include <QStringList>

namespace OdbcSources {

// The names of all data sources, in the order the driver manager gives them; empty when it has none
// or cannot be asked.
QStringList DataSourceNames();
// Whether `name` is one of them; the driver manager compares names without regard to capitals.
bool Exists(const QString &name);

} // namespace OdbcSources
