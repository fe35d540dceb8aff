#pragma once
// A private PostgreSQL 15 server for one test on 127.0.0.1 and a free port, with password log-on over TCP.

#include "Peers.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

class PostgresPeer
{
public:
    static QString BinFolder() { return QStringLiteral("/usr/lib/postgresql/15/bin"); }
    static bool Installed()
    {
        return QFile::exists(BinFolder() + QStringLiteral("/initdb")) &&
               !TestSupport::FindProgram(QStringLiteral("runuser")).isEmpty();
    }

    ~PostgresPeer()
    {
        if (m_started)
            asPostgres(QStringLiteral("pg_ctl"),
                       {QStringLiteral("-D"), dataDir(), QStringLiteral("-m"), QStringLiteral("fast"),
                        QStringLiteral("-w"), QStringLiteral("stop")});
    }

    // Starts the server with `password` for the user postgres; false with error() when it cannot.
    bool start(const QString &password)
    {
        if (!m_dir.isValid())
            return fail(QStringLiteral("no temporary folder"));
        QFile pw(m_dir.filePath(QStringLiteral("pw")));
        if (!pw.open(QIODevice::WriteOnly))
            return fail(pw.errorString());
        pw.write(password.toUtf8() + '\n');
        pw.close();
        QDir(m_dir.path()).mkdir(QStringLiteral("sock"));
        if (QProcess::execute(QStringLiteral("chown"),
                              {QStringLiteral("-R"), QStringLiteral("postgres"), m_dir.path()}) != 0)
            return fail(QStringLiteral("chown to postgres failed"));
        if (!asPostgres(QStringLiteral("initdb"),
                        {QStringLiteral("-D"), dataDir(), QStringLiteral("-U"), QStringLiteral("postgres"),
                         QStringLiteral("--pwfile=") + pw.fileName(), QStringLiteral("--auth-local=trust"),
                         QStringLiteral("--auth-host=scram-sha-256")}))
            return false;
        m_port = TestSupport::FreePort();
        const QString options =
            QStringLiteral("-c listen_addresses=127.0.0.1 -c port=%1 -c unix_socket_directories=%2 "
                           "-c fsync=off")
                .arg(m_port)
                .arg(m_dir.filePath(QStringLiteral("sock")));
        if (!asPostgres(QStringLiteral("pg_ctl"),
                        {QStringLiteral("-D"), dataDir(), QStringLiteral("-w"), QStringLiteral("-o"), options,
                         QStringLiteral("-l"), m_dir.filePath(QStringLiteral("log")),
                         QStringLiteral("start")}))
            return false;
        m_started = true;
        return true;
    }

    // Runs SQL through psql on the server's socket, as the superuser.
    bool sql(const QString &statements)
    {
        return asPostgres(QStringLiteral("psql"),
                          {QStringLiteral("-v"), QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-h"),
                           m_dir.filePath(QStringLiteral("sock")), QStringLiteral("-p"),
                           QString::number(m_port), QStringLiteral("-d"), QStringLiteral("postgres"),
                           QStringLiteral("-c"), statements});
    }

    quint16 port() const { return m_port; }
    QString error() const { return m_error; }

private:
    QString dataDir() const { return m_dir.filePath(QStringLiteral("data")); }

    bool asPostgres(const QString &tool, const QStringList &arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("runuser"),
                      QStringList{QStringLiteral("-u"), QStringLiteral("postgres"), QStringLiteral("--"),
                                  BinFolder() + QLatin1Char('/') + tool} +
                          arguments);
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit ||
            process.exitCode() != 0)
            return fail(tool + QStringLiteral(": ") + QString::fromLocal8Bit(process.readAll()));
        return true;
    }

    bool fail(const QString &what)
    {
        m_error = what;
        return false;
    }

    QTemporaryDir m_dir;
    quint16 m_port = 0;
    bool m_started = false;
    QString m_error;
};
