#pragma once
// Database servers for one test: an ODBC data source over SQLite, and a private PostgreSQL 15 on
// 127.0.0.1 and a free port with password log-on over TCP.

#include <QString>
#include <QTemporaryDir>

namespace TestSupport {

// The SQLite ODBC driver and Qt's ODBC plug-in.
bool OdbcInstalled();
// Declares the data source `name` over the SQLite file in ini files below `folder` and points unixODBC
// at them.
void MakeOdbcDataSource(const QString &folder, const QString &name, const QString &database);

class PostgresPeer
{
public:
    // PostgreSQL 15 and Qt's PostgreSQL plug-in.
    static bool Installed();
    PostgresPeer() = default;
    PostgresPeer(const PostgresPeer &) = delete;
    PostgresPeer &operator=(const PostgresPeer &) = delete;
    ~PostgresPeer();

    // Starts the server with `password` for the user postgres; false with error() when it cannot.
    bool start(const QString &password);
    // Runs SQL through psql on the server's socket, as the superuser.
    bool sql(const QString &statements);
    quint16 port() const { return m_port; }
    QString error() const { return m_error; }

private:
    QString dataDir() const { return m_dir.filePath(QStringLiteral("data")); }
    bool asPostgres(const QString &tool, const QStringList &arguments);
    bool fail(const QString &what);

    QTemporaryDir m_dir;
    quint16 m_port = 0;
    bool m_started = false;
    QString m_error;
};

} // namespace TestSupport
