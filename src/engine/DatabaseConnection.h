#pragma once
// A Qt SQL connection opened from a table's driver name (sqlite, psql, odbc) and its connection properties.

#include "engine/ConnectionProperty.h"

#include <QSqlDatabase>
#include <QString>

namespace Engine {

class DatabaseConnection
{
public:
    // `baseFolder` completes a relative SQLite file name (the report's folder).
    DatabaseConnection(const QString &dllName, const ConnectionProperties &properties,
                       const QString &baseFolder);
    ~DatabaseConnection();
    DatabaseConnection(const DatabaseConnection &) = delete;
    DatabaseConnection &operator=(const DatabaseConnection &) = delete;

    // Raises EngineError with the driver's own message when the connection fails.
    void open();
    QSqlDatabase database() const { return QSqlDatabase::database(m_connectionName, false); }
    bool isSqlite() const { return m_dllName == QLatin1String("sqlite"); }

    // The texts that name the server and the database of a table, as log-on and log-off see them.
    static QString serverOf(const ConnectionProperties &properties);
    static QString databaseOf(const ConnectionProperties &properties);

private:
    void configureSqlite(QSqlDatabase &db) const;
    void configurePsql(QSqlDatabase &db) const;
    void configureOdbc(QSqlDatabase &db) const;
    QString describe(const QSqlDatabase &db) const;

    QString m_dllName;
    const ConnectionProperties &m_properties;
    QString m_baseFolder;
    QString m_connectionName;
};

} // namespace Engine
