#include "ConnectionLookup.h"

#include "RunState.h"

#include "connect/clsConnect.h"
#include "core/QorloError.h"

namespace ReportBinding {

namespace {

// Moves the list's cursor to the connection; true when there is one.
bool Locate(clsConnect &connections, const QString &dll, const QString &server, const QString &database,
            const QString &user)
{
    if (connections.UserOption == QLatin1String("No"))
        return connections.Find(dll, server, database);
    return connections.FindExt(dll, server, database, user);
}

void QueueLogOff(RunState &state, const QString &dll, const QString &server, const QString &database)
{
    const qint32 index = ++state.LogOffCount;
    if (index < 0 || index > RunState::LogOffUpperBound)
        throw QorloError(QorloError::OutOfRange);
    state.LogOffList[size_t(index)] = {server, database, dll};
}

} // namespace

QString FindUser(clsConnect &connections, const QString &dll, const QString &server, const QString &database,
                 const QString &user)
{
    return Locate(connections, dll, server, database, user) ? connections.User() : QString();
}

QString FindPassword(RunContext &run, const QString &dll, const QString &server, const QString &database,
                     const QString &user)
{
    clsConnect &connections = run.connections;
    if (Locate(connections, dll, server, database, user)) {
        QueueLogOff(run.state, dll, server, database);
        return connections.Password();
    }
    connections.AddNew();
    connections.SetDLL(dll);
    connections.SetServer(server);
    connections.SetDatabase(database);
    connections.SetUser(user);
    connections.SetPassword(QString());
    connections.Save();
    return QString();
}

QString ConnectionStringValue(const QString &connectionString, const QString &key)
{
    // Keys are matched in any case; the value keeps its own.
    const qsizetype at = connectionString.indexOf(key, 0, Qt::CaseInsensitive);
    if (at < 0)
        return QString();
    const qsizetype from = at + key.size();
    const qsizetype end = connectionString.indexOf(QLatin1Char(';'), from);
    return connectionString.mid(from, end < 0 ? -1 : end - from);
}

} // namespace ReportBinding
