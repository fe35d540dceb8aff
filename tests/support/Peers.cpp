#include "Peers.h"

#include <QDeadlineTimer>
#include <QStandardPaths>
#include <QTcpServer>
#include <QUdpSocket>

namespace TestSupport {

bool UnderCI()
{
    return qgetenv("CI") == "true";
}

quint16 FreePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    return server.serverPort();
}

quint16 FreeUdpPort()
{
    QUdpSocket socket;
    socket.bind(QHostAddress::LocalHost, 0);
    return socket.localPort();
}

QString DebianPython()
{
    return QStringLiteral("/usr/bin/python3");
}

QString PeerScript(const QString &name)
{
    return QStringLiteral(QORLO_PEERS_DIR "/") + name;
}

QString FindProgram(const QString &name, const QStringList &extraFolders)
{
    QString path = QStandardPaths::findExecutable(name);
    if (path.isEmpty())
        path = QStandardPaths::findExecutable(
            name, extraFolders + QStringList{QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")});
    return path;
}

PeerProcess::~PeerProcess()
{
    stop();
}

bool PeerProcess::start(const QString &program, const QStringList &arguments, const QString &readyLine,
                        int timeoutMs, const QProcessEnvironment &environment)
{
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    if (!environment.isEmpty())
        m_process->setProcessEnvironment(environment);
    m_process->start(program, arguments);
    if (!m_process->waitForStarted(timeoutMs)) {
        m_error = program + QStringLiteral(": ") + m_process->errorString();
        return false;
    }
    if (readyLine.isEmpty())
        return true;
    const QDeadlineTimer deadline(timeoutMs);
    QByteArray seen;
    while (!deadline.hasExpired()) {
        m_process->waitForReadyRead(50);
        seen += m_process->readAllStandardOutput();
        if (seen.contains(readyLine.toUtf8()))
            return true;
        if (m_process->state() == QProcess::NotRunning)
            break;
    }
    m_error = program + QStringLiteral(" did not become ready: ") +
              QString::fromLocal8Bit(seen + m_process->readAllStandardError());
    return false;
}

void PeerProcess::stop()
{
    if (!m_process || m_process->state() == QProcess::NotRunning)
        return;
    m_process->terminate();
    if (!m_process->waitForFinished(3000)) {
        m_process->kill();
        m_process->waitForFinished(3000);
    }
}

QByteArray PeerProcess::output() const
{
    return m_process ? m_process->readAllStandardOutput() : QByteArray();
}

bool StartPop3Peer(PeerProcess &peer, const QString &folder, quint16 port, const QString &user,
                   const QString &password)
{
    return peer.start(
        DebianPython(),
        {PeerScript(QStringLiteral("pop3_server.py")), folder, QString::number(port), user, password},
        QStringLiteral("READY"));
}

bool StartDnsPeer(PeerProcess &peer, quint16 port, const QStringList &records)
{
    const QStringList arguments =
        QStringList{QStringLiteral("--no-daemon"),         QStringLiteral("--conf-file=/dev/null"),
                    QStringLiteral("--port=%1").arg(port), QStringLiteral("--listen-address=127.0.0.1"),
                    QStringLiteral("--bind-interfaces"),   QStringLiteral("--no-resolv"),
                    QStringLiteral("--no-hosts"),          QStringLiteral("--pid-file=")} +
        records;
    // dnsmasq logs to standard error; the shell hands that to the ready check.
    return peer.start(QStringLiteral("/bin/sh"),
                      QStringList{QStringLiteral("-c"), QStringLiteral("exec \"$0\" \"$@\" 2>&1"),
                                  FindProgram(QStringLiteral("dnsmasq"))} +
                          arguments,
                      QStringLiteral("started"));
}

} // namespace TestSupport
