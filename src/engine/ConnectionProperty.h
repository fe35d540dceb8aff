#pragma once
// One log-on setting of a table ("Server", "Database", "User ID", "Password", ...) and the table's set of
// them.

#include "engine/Collection.h"

#include <QString>
#include <QVariant>

namespace Engine {

class ConnectionProperty
{
public:
    ConnectionProperty(QString name, QVariant value);

    QString Name() const { return m_name; }
    QString LocalName() const;
    QString Description() const;
    QVariant Value() const { return m_value; }
    void setValue(const QVariant &value) { m_value = value; }
    // Composite properties have children; the ones this engine knows are all simple.
    const Collection<ConnectionProperty> &Children() const { return m_children; }

private:
    QString m_name;
    QVariant m_value;
    Collection<ConnectionProperty> m_children;
};

class ConnectionProperties : public Collection<ConnectionProperty>
{
public:
    void Add(const QString &name, const QVariant &value);
    // The value of the last property of that name (exact text), or empty text.
    QString textOf(const QString &name) const;
    bool has(const QString &name) const;
};

} // namespace Engine
