#include "engine/ConnectionProperty.h"

namespace Engine {

ConnectionProperty::ConnectionProperty(QString name, QVariant value)
    : m_name(std::move(name)), m_value(std::move(value))
{
}

QString ConnectionProperty::LocalName() const
{
    // The engine shows its property names as they are; a UI may translate them.
    return m_name;
}

QString ConnectionProperty::Description() const
{
    static const QList<std::pair<QLatin1String, QLatin1String>> known = {
        {QLatin1String("Server"), QLatin1String("Host name of the database server")},
        {QLatin1String("Data Source"), QLatin1String("Database file or server")},
        {QLatin1String("DSN"), QLatin1String("ODBC data source name")},
        {QLatin1String("Database"), QLatin1String("Database name or file")},
        {QLatin1String("User ID"), QLatin1String("User name for the log-on")},
        {QLatin1String("Password"), QLatin1String("Password for the log-on")},
        {QLatin1String("Port"), QLatin1String("TCP port of the database server")},
        {QLatin1String("Connection String"), QLatin1String("Driver connection string")},
    };
    for (const auto &[name, text] : known) {
        if (m_name == name)
            return text;
    }
    return QString();
}

void ConnectionProperties::Add(const QString &name, const QVariant &value)
{
    append(std::make_unique<ConnectionProperty>(name, value));
}

QString ConnectionProperties::textOf(const QString &name) const
{
    QString value;
    for (const ConnectionProperty &property : *this) {
        if (property.Name() == name)
            value = property.Value().toString();
    }
    return value;
}

bool ConnectionProperties::has(const QString &name) const
{
    for (const ConnectionProperty &property : *this) {
        if (property.Name() == name)
            return true;
    }
    return false;
}

} // namespace Engine
