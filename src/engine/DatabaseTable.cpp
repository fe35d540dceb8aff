#include "engine/DatabaseTable.h"

#include "engine/Application.h"
#include "engine/DatabaseConnection.h"

namespace Engine {

DatabaseTable::DatabaseTable(const TableDefinition &definition, Application *application, QString baseFolder)
    : m_name(definition.name), m_location(definition.location), m_dllName(definition.dllName),
      m_application(application), m_baseFolder(std::move(baseFolder))
{
    for (const PropertyDefinition &property : definition.properties)
        m_properties.Add(property.name, property.value);
}

bool DatabaseTable::TestConnectivity()
{
    try {
        DatabaseConnection connection(m_dllName, m_properties, m_baseFolder);
        connection.open();
        m_application->noteLogOn(m_dllName, DatabaseConnection::serverOf(m_properties),
                                 DatabaseConnection::databaseOf(m_properties));
        m_lastError.clear();
        return true;
    } catch (const EngineError &error) {
        m_lastError = error.description();
        return false;
    }
}

} // namespace Engine
