#pragma once
// One table of a report: its name, its real name in the database (Location), its driver and log-on
// properties.

#include "engine/ConnectionProperty.h"
#include "engine/ReportDefinition.h"

namespace Engine {

class Application;

class DatabaseTable
{
public:
    DatabaseTable(const TableDefinition &definition, Application *application, QString baseFolder);

    QString Name() const { return m_name; }
    QString Location() const { return m_location; }
    void setLocation(const QString &location) { m_location = location; }
    QString DllName() const { return m_dllName; }
    Engine::ConnectionProperties &ConnectionProperties() { return m_properties; }
    const Engine::ConnectionProperties &ConnectionProperties() const { return m_properties; }
    // Really connects with the present properties; the driver's message of a failure is in lastError().
    bool TestConnectivity();

    QString lastError() const { return m_lastError; }

private:
    QString m_name;
    QString m_location;
    QString m_dllName;
    Engine::ConnectionProperties m_properties;
    Application *m_application;
    QString m_baseFolder;
    QString m_lastError;
};

class Database
{
public:
    const Collection<DatabaseTable> &Tables() const { return m_tables; }
    Collection<DatabaseTable> &Tables() { return m_tables; }

private:
    Collection<DatabaseTable> m_tables;
};

} // namespace Engine
