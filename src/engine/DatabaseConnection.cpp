#include "engine/DatabaseConnection.h"

#include "engine/EngineError.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <atomic>

namespace Engine {

namespace {

QString FirstOf(const ConnectionProperties &properties, std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        const QString value = properties.textOf(QLatin1String(name));
        if (!value.isEmpty())
            return value;
    }
    return QString();
}

QString NextConnectionName()
{
    static std::atomic<int> counter{0};
    return QStringLiteral("qorlo-engine-%1").arg(++counter);
}

} // namespace

DatabaseConnection::DatabaseConnection(const QString &dllName, const ConnectionProperties &properties,
                                       const QString &baseFolder)
    : m_dllName(dllName), m_properties(properties), m_baseFolder(baseFolder)
{
}

DatabaseConnection::~DatabaseConnection()
{
    if (m_connectionName.isEmpty())
        return;
    QSqlDatabase::database(m_connectionName, false).close();
    QSqlDatabase::removeDatabase(m_connectionName);
}

QString DatabaseConnection::serverOf(const ConnectionProperties &properties)
{
    return FirstOf(properties, {"DSN", "Server", "Data Source"});
}

QString DatabaseConnection::databaseOf(const ConnectionProperties &properties)
{
    return FirstOf(properties, {"Database", "Initial Catalog"});
}

void DatabaseConnection::open()
{
    static const QList<std::pair<QLatin1String, QLatin1String>> drivers = {
        {QLatin1String("sqlite"), QLatin1String("QSQLITE")},
        {QLatin1String("psql"), QLatin1String("QPSQL")},
        {QLatin1String("odbc"), QLatin1String("QODBC")}};
    const auto driver =
        std::find_if(drivers.begin(), drivers.end(), [&](const auto &d) { return d.first == m_dllName; });
    if (driver == drivers.end())
        throw EngineError(
            EngineError::DatabaseError,
            QStringLiteral("Unknown database driver \"%1\": use sqlite, psql or odbc").arg(m_dllName));
    if (!QSqlDatabase::isDriverAvailable(driver->second))
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("The Qt SQL driver %1 is not installed").arg(driver->second));
    m_connectionName = NextConnectionName();
    QSqlDatabase db = QSqlDatabase::addDatabase(driver->second, m_connectionName);
    if (m_dllName == QLatin1String("sqlite"))
        configureSqlite(db);
    else if (m_dllName == QLatin1String("psql"))
        configurePsql(db);
    else
        configureOdbc(db);
    if (isSqlite() && !QFileInfo::exists(db.databaseName()))
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("%1: the file does not exist").arg(describe(db)));
    if (!db.open())
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("%1: %2").arg(describe(db), db.lastError().text()));
    // SQLite reads the file only when asked for something: a file that is no database fails here.
    QSqlQuery probe(db);
    if (isSqlite() && !probe.exec(QStringLiteral("PRAGMA schema_version")))
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("%1: %2").arg(describe(db), probe.lastError().text()));
}

// What failed, by the place its owner knows it: the file, the server, the data source.
QString DatabaseConnection::describe(const QSqlDatabase &db) const
{
    if (isSqlite())
        return QStringLiteral("Cannot open the SQLite database %1").arg(db.databaseName());
    if (m_dllName == QLatin1String("psql")) {
        const QString port = db.port() > 0 ? QStringLiteral(":%1").arg(db.port()) : QString();
        return QStringLiteral("Cannot connect to the PostgreSQL server %1%2, database %3")
            .arg(db.hostName().isEmpty() ? QStringLiteral("localhost") : db.hostName(), port,
                 db.databaseName());
    }
    return QStringLiteral("Cannot connect to the ODBC data source %1").arg(db.databaseName());
}

void DatabaseConnection::configureSqlite(QSqlDatabase &db) const
{
    QString file = FirstOf(m_properties, {"Database", "Data Source", "Server"});
    if (!file.isEmpty() && QDir::isRelativePath(file))
        file = QDir(m_baseFolder).filePath(file);
    db.setDatabaseName(file);
    // Read-only: a report never writes, and a missing file is an error instead of a new empty database.
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
}

void DatabaseConnection::configurePsql(QSqlDatabase &db) const
{
    QString host = FirstOf(m_properties, {"Server", "Data Source"});
    QString port = m_properties.textOf(QStringLiteral("Port"));
    if (host.count(QLatin1Char(':')) == 1) {
        port = host.section(QLatin1Char(':'), 1);
        host = host.section(QLatin1Char(':'), 0, 0);
    }
    db.setHostName(host);
    if (!port.isEmpty())
        db.setPort(port.toInt());
    db.setDatabaseName(databaseOf(m_properties));
    db.setUserName(FirstOf(m_properties, {"User ID", "UserId"}));
    db.setPassword(m_properties.textOf(QStringLiteral("Password")));
    QString options = QStringLiteral("connect_timeout=10");
    const QString extra = m_properties.textOf(QStringLiteral("Connection String"));
    if (!extra.isEmpty())
        options += QLatin1Char(';') + extra;
    db.setConnectOptions(options);
}

void DatabaseConnection::configureOdbc(QSqlDatabase &db) const
{
    const QString connectionString = m_properties.textOf(QStringLiteral("Connection String"));
    db.setDatabaseName(connectionString.isEmpty() ? serverOf(m_properties) : connectionString);
    db.setUserName(FirstOf(m_properties, {"User ID", "UserId"}));
    db.setPassword(m_properties.textOf(QStringLiteral("Password")));
}

} // namespace Engine
