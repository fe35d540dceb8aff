#include "DatabasePeers.h"

#include "Files.h"
#include "Peers.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>

using namespace Qt::Literals::StringLiterals;

namespace TestSupport {

namespace {

const QString kSqliteOdbcDriver = u"/usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so"_s;
const QString kPostgresBin = u"/usr/lib/postgresql/15/bin/"_s;

} // namespace

bool OdbcInstalled()
{
    return QFile::exists(kSqliteOdbcDriver) && QSqlDatabase::isDriverAvailable(u"QODBC"_s);
}

void MakeOdbcDataSource(const QString &folder, const QString &name, const QString &database)
{
    const QDir dir(folder);
    WriteFile(dir.filePath(u"odbcinst.ini"_s), "[SQLite3]\nDriver=" + kSqliteOdbcDriver.toUtf8() + "\n");
    const QString ini =
        WriteFile(dir.filePath(u"odbc.ini"_s),
                  "[" + name.toUtf8() + "]\nDriver=SQLite3\nDatabase=" + database.toUtf8() + "\n");
    qputenv("ODBCSYSINI", QFile::encodeName(folder));
    qputenv("ODBCINI", QFile::encodeName(ini));
}

bool PostgresPeer::Installed()
{
    return QFile::exists(kPostgresBin + u"initdb"_s) && !FindProgram(u"runuser"_s).isEmpty() &&
           QSqlDatabase::isDriverAvailable(u"QPSQL"_s);
}

PostgresPeer::~PostgresPeer()
{
    if (m_started)
        asPostgres(u"pg_ctl"_s, {u"-D"_s, dataDir(), u"-m"_s, u"fast"_s, u"-w"_s, u"stop"_s});
}

bool PostgresPeer::start(const QString &password)
{
    if (!m_dir.isValid())
        return fail(u"no temporary folder"_s);
    const QString pw = WriteFile(m_dir.filePath(u"pw"_s), password.toUtf8() + '\n');
    QDir(m_dir.path()).mkdir(u"sock"_s);
    if (QProcess::execute(u"chown"_s, {u"-R"_s, u"postgres"_s, m_dir.path()}) != 0)
        return fail(u"chown to postgres failed"_s);
    if (!asPostgres(u"initdb"_s, {u"-D"_s, dataDir(), u"-U"_s, u"postgres"_s, u"--pwfile="_s + pw,
                                  u"--auth-local=trust"_s, u"--auth-host=scram-sha-256"_s}))
        return false;
    m_port = FreePort();
    const QString options = u"-c listen_addresses=127.0.0.1 -c port=%1 -c unix_socket_directories=%2 "
                            "-c fsync=off"_s.arg(m_port)
                                .arg(m_dir.filePath(u"sock"_s));
    if (!asPostgres(u"pg_ctl"_s, {u"-D"_s, dataDir(), u"-w"_s, u"-o"_s, options, u"-l"_s,
                                  m_dir.filePath(u"log"_s), u"start"_s}))
        return false;
    m_started = true;
    return true;
}

bool PostgresPeer::sql(const QString &statements)
{
    return asPostgres(u"psql"_s, {u"-v"_s, u"ON_ERROR_STOP=1"_s, u"-h"_s, m_dir.filePath(u"sock"_s), u"-p"_s,
                                  QString::number(m_port), u"-d"_s, u"postgres"_s, u"-c"_s, statements});
}

bool PostgresPeer::asPostgres(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(u"runuser"_s,
                  QStringList{u"-u"_s, u"postgres"_s, u"--"_s, kPostgresBin + tool} + arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return fail(tool + u": "_s + QString::fromLocal8Bit(process.readAll()));
    return true;
}

bool PostgresPeer::fail(const QString &what)
{
    m_error = what;
    return false;
}

} // namespace TestSupport
