#include "DatabasePeers.h"

#include "Files.h"
#include "Peers.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>

namespace TestSupport {

namespace {

const QString kSqliteOdbcDriver = QStringLiteral("/usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so");
const QString kPostgresBin = QStringLiteral("/usr/lib/postgresql/15/bin/");

} // namespace

bool OdbcInstalled()
{
    return QFile::exists(kSqliteOdbcDriver) && QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC"));
}

void MakeOdbcDataSource(const QString &folder, const QString &name, const QString &database)
{
    const QDir dir(folder);
    WriteFile(dir.filePath(QStringLiteral("odbcinst.ini")),
              "[SQLite3]\nDriver=" + kSqliteOdbcDriver.toUtf8() + "\n");
    const QString ini =
        WriteFile(dir.filePath(QStringLiteral("odbc.ini")),
                  "[" + name.toUtf8() + "]\nDriver=SQLite3\nDatabase=" + database.toUtf8() + "\n");
    qputenv("ODBCSYSINI", QFile::encodeName(folder));
    qputenv("ODBCINI", QFile::encodeName(ini));
}

bool PostgresPeer::Installed()
{
    return QFile::exists(kPostgresBin + QStringLiteral("initdb")) &&
           !FindProgram(QStringLiteral("runuser")).isEmpty() &&
           QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL"));
}

PostgresPeer::~PostgresPeer()
{
    if (m_started)
        asPostgres(QStringLiteral("pg_ctl"),
                   {QStringLiteral("-D"), dataDir(), QStringLiteral("-m"), QStringLiteral("fast"),
                    QStringLiteral("-w"), QStringLiteral("stop")});
}

bool PostgresPeer::start(const QString &password)
{
    if (!m_dir.isValid())
        return fail(QStringLiteral("no temporary folder"));
    const QString pw = WriteFile(m_dir.filePath(QStringLiteral("pw")), password.toUtf8() + '\n');
    QDir(m_dir.path()).mkdir(QStringLiteral("sock"));
    if (QProcess::execute(QStringLiteral("chown"),
                          {QStringLiteral("-R"), QStringLiteral("postgres"), m_dir.path()}) != 0)
        return fail(QStringLiteral("chown to postgres failed"));
    if (!asPostgres(QStringLiteral("initdb"),
                    {QStringLiteral("-D"), dataDir(), QStringLiteral("-U"), QStringLiteral("postgres"),
                     QStringLiteral("--pwfile=") + pw, QStringLiteral("--auth-local=trust"),
                     QStringLiteral("--auth-host=scram-sha-256")}))
        return false;
    m_port = FreePort();
    const QString options =
        QStringLiteral("-c listen_addresses=127.0.0.1 -c port=%1 -c unix_socket_directories=%2 "
                       "-c fsync=off")
            .arg(m_port)
            .arg(m_dir.filePath(QStringLiteral("sock")));
    if (!asPostgres(QStringLiteral("pg_ctl"),
                    {QStringLiteral("-D"), dataDir(), QStringLiteral("-w"), QStringLiteral("-o"), options,
                     QStringLiteral("-l"), m_dir.filePath(QStringLiteral("log")), QStringLiteral("start")}))
        return false;
    m_started = true;
    return true;
}

bool PostgresPeer::sql(const QString &statements)
{
    return asPostgres(QStringLiteral("psql"),
                      {QStringLiteral("-v"), QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-h"),
                       m_dir.filePath(QStringLiteral("sock")), QStringLiteral("-p"), QString::number(m_port),
                       QStringLiteral("-d"), QStringLiteral("postgres"), QStringLiteral("-c"), statements});
}

bool PostgresPeer::asPostgres(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("runuser"), QStringList{QStringLiteral("-u"), QStringLiteral("postgres"),
                                                         QStringLiteral("--"), kPostgresBin + tool} +
                                                 arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return fail(tool + QStringLiteral(": ") + QString::fromLocal8Bit(process.readAll()));
    return true;
}

bool PostgresPeer::fail(const QString &what)
{
    m_error = what;
    return false;
}

} // namespace TestSupport
