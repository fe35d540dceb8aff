// Sends 200 messages of 100 KB to a local SMTP peer with clsSendMail and with Python's smtplib,
// and prints messages per second for each and their ratio. The senders take turns in rounds, so that
// a change in the machine's load falls on all of them alike.

#include "mail/clsSendMail.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int kMessages = 200;
constexpr int kRounds = 5;
constexpr int kPerRound = kMessages / kRounds;
constexpr int kMessageBytes = 100 * 1024;
const QString kPython = QStringLiteral("/usr/bin/python3");

quint16 FreePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    return server.serverPort();
}

QString Body()
{
    const QString line = QStringLiteral("0123456789").repeated(7) + QStringLiteral("abcdef");
    QStringList lines(kMessageBytes / (line.size() + 2), line);
    return lines.join(QStringLiteral("\r\n"));
}

bool StartPeer(QProcess &peer, quint16 port, const QString &folder)
{
    peer.start(kPython, {QStringLiteral(QORLO_PEERS_DIR "/smtp_server.py"), QStringLiteral("--port"),
                         QString::number(port), QStringLiteral("--folder"), folder});
    QByteArray seen;
    for (int turn = 0; turn < 300 && !seen.contains("READY"); ++turn) {
        peer.waitForReadyRead(50);
        seen += peer.readAllStandardOutput();
    }
    return seen.contains("READY");
}

// Seconds for one round through clsSendMail, one connection per message or one for the round.
double SendWithClient(quint16 port, const QString &body, bool keepConnection, int &delivered)
{
    clsSendMail mail;
    QObject::connect(&mail, &clsSendMail::SendSuccesful, [&delivered] { ++delivered; });
    mail.SetSMTPHostValidation(0);
    mail.SetSMTPHost(QStringLiteral("127.0.0.1"));
    mail.SetSMTPPort(port);
    mail.SetFrom(QStringLiteral("reports@example.com"));
    mail.SetRecipient(QStringLiteral("boss@example.com"));
    mail.SetSubject(QStringLiteral("Benchmark"));
    mail.SetMessage(body);
    QElapsedTimer watch;
    watch.start();
    if (keepConnection)
        mail.Connect();
    for (int i = 0; i < kPerRound; ++i)
        mail.Send();
    if (keepConnection)
        mail.Disconnect();
    return double(watch.nsecsElapsed()) / 1e9;
}

// Seconds for one round through smtplib, as the script measures its own loop; 0 when it failed.
double SendWithSmtplib(quint16 port)
{
    QProcess python;
    python.start(kPython, {QStringLiteral(QORLO_PEERS_DIR "/mail_bench_smtplib.py"), QString::number(port),
                           QString::number(kPerRound), QString::number(kMessageBytes)});
    python.waitForFinished(600000);
    const double rate = python.readAllStandardOutput().trimmed().toDouble();
    return rate > 0 ? kPerRound / rate : 0.0;
}

} // namespace

int main(int argc, char **argv)
{
    QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    QCoreApplication app(argc, argv);
    QTemporaryDir folder;
    const quint16 port = FreePort();
    QProcess peer;
    if (!StartPeer(peer, port, folder.path())) {
        std::fprintf(stderr, "SMTP peer did not start: %s\n", peer.readAllStandardError().constData());
        return 1;
    }
    const QString body = Body();
    int delivered = 0;
    double perConnectionSeconds = 0, keptSeconds = 0, smtplibSeconds = 0;
    bool smtplibFailed = false;
    for (int round = 0; round < kRounds; ++round) {
        perConnectionSeconds += SendWithClient(port, body, false, delivered);
        keptSeconds += SendWithClient(port, body, true, delivered);
        const double seconds = SendWithSmtplib(port);
        smtplibFailed = smtplibFailed || seconds <= 0;
        smtplibSeconds += seconds;
    }
    const double perConnection = kMessages / perConnectionSeconds;
    const double kept = kMessages / keptSeconds;
    const double smtplib = smtplibFailed ? 0.0 : kMessages / smtplibSeconds;
    peer.terminate();
    peer.waitForFinished(5000);
    std::printf("messages: %d x %d bytes of text in %d rounds, delivered by clsSendMail: %d of %d\n",
                kMessages, int(body.size()), kRounds, delivered, 2 * kMessages);
    std::printf("clsSendMail, one connection each:  %8.2f messages/s\n", perConnection);
    std::printf("clsSendMail, one kept connection:  %8.2f messages/s\n", kept);
    std::printf("Python smtplib, one connection each: %8.2f messages/s\n", smtplib);
    std::printf("ratio clsSendMail / smtplib (one connection each): %.3f\n",
                smtplib > 0 ? perConnection / smtplib : 0.0);
    return delivered == 2 * kMessages ? 0 : 1;
}
