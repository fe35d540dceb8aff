#include "Peers.h"

#include "Files.h"

#include <QDeadlineTimer>
#include <QStandardPaths>
#include <QTcpServer>
#include <QUdpSocket>

using namespace Qt::Literals::StringLiterals;

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
    return u"/usr/bin/python3"_s;
}

QString PeerScript(const QString &name)
{
    return QStringLiteral(QORLO_PEERS_DIR "/") + name;
}

QProcessEnvironment OwnProgramEnvironment(const QString &home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, home);
    environment.insert(u"XDG_CONFIG_HOME"_s, home + u"/.config"_s);
    environment.insert(u"CUPS_SERVER"_s, u"127.0.0.1:"_s + QString::number(FreePort()));
    environment.remove(u"QORLO_APP_FOLDER"_s);
    return environment;
}

bool WaitForText(const QString &file, const QByteArray &text, int ms)
{
    return WaitUntil([&] { return ReadFile(file).contains(text); }, ms);
}

QString FindProgram(const QString &name, const QStringList &extraFolders)
{
    QString path = QStandardPaths::findExecutable(name);
    if (path.isEmpty())
        path = QStandardPaths::findExecutable(name, extraFolders + QStringList{u"/usr/sbin"_s, u"/sbin"_s});
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
    m_timedOut = false;
    m_process->start(program, arguments);
    if (!m_process->waitForStarted(timeoutMs)) {
        m_error = program + u": "_s + m_process->errorString();
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
    m_timedOut = m_process->state() != QProcess::NotRunning;
    m_error = program + u" did not become ready: "_s +
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
    return peer.start(DebianPython(),
                      {PeerScript(u"pop3_server.py"_s), folder, QString::number(port), user, password},
                      u"READY"_s);
}

bool StartDnsPeer(PeerProcess &peer, quint16 port, const QStringList &records)
{
    const QStringList arguments = QStringList{u"--no-daemon"_s,         u"--conf-file=/dev/null"_s,
                                              u"--port=%1"_s.arg(port), u"--listen-address=127.0.0.1"_s,
                                              u"--bind-interfaces"_s,   u"--no-resolv"_s,
                                              u"--no-hosts"_s,          u"--pid-file="_s} +
                                  records;
    // dnsmasq logs to standard error; the shell hands that to the ready check.
    return peer.start(u"/bin/sh"_s,
                      QStringList{u"-c"_s, u"exec \"$0\" \"$@\" 2>&1"_s, FindProgram(u"dnsmasq"_s)} +
                          arguments,
                      u"started"_s);
}

} // namespace TestSupport
