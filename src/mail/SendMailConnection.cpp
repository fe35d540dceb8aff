// clsSendMail: the connection to the server, the reply handler, the waits and the failure reporting.

#include "clsSendMail.h"

#include "MailWait.h"
#include "MimeEncoders.h"

#include "core/EventWait.h"
#include "core/StopRequest.h"
#include "core/Ansi.h"
#include "core/Numbers.h"
#include "core/QorloError.h"

#include <QCoreApplication>
#include <QSslConfiguration>
#include <QSslSocket>

namespace {

const QString kWrongStateText =
    QStringLiteral("Wrong protocol or connection state for the requested transaction or request");

// Whether a read ends a reply: its last line has no "-" after the code.
bool EndsReply(const QString &reply)
{
    const QStringList lines = reply.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    return !lines.isEmpty() && lines.last().mid(3, 1) != QLatin1String("-");
}

} // namespace

bool clsSendMail::OpenConnection()
{
    try {
        if (SocketState() == Open)
            return true;
        if (SocketState() > Closed) {
            SocketClose();
            PumpEvents();
        }
        if (m_smtpHost.isEmpty()) {
            m_smtpHost = MXQuery(QString());
            if (m_smtpHost.isEmpty()) {
                AddError(QStringLiteral("Invalid or Missing SMTP Host Name"));
                return false;
            }
        }
        if (m_usePopAuthentication && !OpenPop3Login())
            return false;
        return OpenSmtpDialogue();
    } catch (const QorloError &error) {
        Q_EMIT Status(QStringLiteral("Connect error: ") + error.description());
        return false;
    }
}

bool clsSendMail::OpenPop3Login()
{
    Q_EMIT Status(QStringLiteral("Connecting to POP3 Server (") + m_pop3Host + QStringLiteral(")..."));
    m_failed = false;
    m_connected = false;
    m_popDone = false;
    m_popStep = 0;
    if (m_pop3Host.isEmpty()) {
        AddError(QStringLiteral("Invalid or Missing POP3 Host Name"));
        RaiseFailure();
        return false;
    }
    ConnectWithRetries(m_pop3Host, m_pop3Port, false);
    if (m_failed)
        return false;
    // The reply handler walks the login meanwhile; a server that stays silent is not looked at here.
    WaitForFlag(m_popDone, m_connectTimeout, false);
    SocketClose();
    PumpEvents();
    if (m_failed)
        return false;
    Q_EMIT Status(QStringLiteral("POP3 Authentication Successful..."));
    return true;
}

bool clsSendMail::OpenSmtpDialogue()
{
    m_replyOk = m_dataReady = m_authOffered = m_authParam = m_authAccepted = m_failed = m_connected = false;
    if (SocketState() > Closed) {
        SocketClose();
        PumpEvents();
    }
    PumpEvents();
    Q_EMIT Status(QStringLiteral("Connecting to SMTP Server (") + m_smtpHost + QStringLiteral(")..."));
    const bool implicitTls = m_encryption.compare(QLatin1String("TLS"), Qt::CaseInsensitive) == 0;
    ConnectWithRetries(m_smtpHost, quint16(m_smtpPort), implicitTls);
    if (m_failed)
        return false;
    PumpEvents();
    const bool greeted = WaitForFlag(m_replyOk, m_connectTimeout, false);
    if (SocketState() != Open || m_failed || !m_connected || !greeted) {
        RaiseTimeout();
        return false;
    }
    Q_EMIT Status(QStringLiteral("Initializing Communications..."));
    if (!SayHello())
        return false;
    if (m_encryption.compare(QLatin1String("STARTTLS"), Qt::CaseInsensitive) == 0 && !StartTls())
        return false;
    return !m_useAuthentication || Login();
}

void clsSendMail::ConnectWithRetries(const QString &host, quint16 port, bool encrypted)
{
    for (qint32 attempt = 0; attempt < m_connectRetry; ++attempt) {
        if (SocketState() == Open) {
            m_connected = true;
            return;
        }
        m_connected = false;
        if (SocketState() == Closed)
            SocketConnect(host, port, encrypted);
        if (WaitForFlag(m_connected, m_connectTimeout, false) || m_failed)
            return;
        if (SocketState() == Error)
            SocketClose();
        PumpEvents();
    }
}

bool clsSendMail::SayHello()
{
    m_replyOk = false;
    // The hello names the sender's mail domain, not this machine.
    const QString domain = m_from.mid(m_from.indexOf(QLatin1Char('@')) + 1);
    SendLine((m_useAuthentication ? QStringLiteral("EHLO ") : QStringLiteral("HELO ")) + domain);
    return WaitForFlag(m_replyOk, m_connectTimeout, true);
}

bool clsSendMail::StartTls()
{
    // The hello reply may come in pieces: a piece that arrived after STARTTLS would be taken for its
    // answer, and the server's real answer for the first bytes of the handshake.
    if (!WaitForFlag(m_replyEnded, m_connectTimeout, true))
        return false;
    Q_EMIT Status(QStringLiteral("Starting TLS Encryption..."));
    m_replyOk = false;
    SendLine(QStringLiteral("STARTTLS"));
    if (!WaitForFlag(m_replyOk, m_connectTimeout, true))
        return false;
    m_connected = false;
    ConfigureTls(m_remoteHost);
    m_socket->startClientEncryption();
    if (!WaitForFlag(m_connected, m_connectTimeout, true))
        return false;
    // What the server offered before the upgrade does not count.
    m_authOffered = false;
    return SayHello();
}

bool clsSendMail::Login()
{
    // The hello reply may come in pieces: an AUTH sent on the piece that offers it would get its
    // prompt in one read with the reply's last line, and the prompt would go unanswered.
    WaitForFlag(m_replyEnded, m_connectTimeout, false);
    if (!WaitForFlag(m_authOffered, 5, false)) {
        Q_EMIT Status(QStringLiteral("Login Not Supported by Host, Continuing..."));
        return true;
    }
    Q_EMIT Status(QStringLiteral("Sending Login Authentication..."));
    SendLine(QStringLiteral("AUTH Login"));
    if (!WaitForFlag(m_authAccepted, 5, false)) {
        Q_EMIT Status(QStringLiteral("Host Login Failed!"));
        m_failed = true;
        return false;
    }
    Q_EMIT Status(QStringLiteral("Host Login OK!"));
    return !m_failed;
}

void clsSendMail::CloseConnection()
{
    if (SocketState() > Closed)
        Q_EMIT Status(QStringLiteral("Closing Connection..."));
    if (SocketState() == Open) {
        m_replyOk = false;
        SendLine(QStringLiteral("QUIT"));
        WaitForFlag(m_replyOk, 2, false);
    }
    SocketClose();
    PumpEvents();
}

void clsSendMail::AddError(const QString &text)
{
    m_errorList.append(text);
}

void clsSendMail::ClearError(const QString &text)
{
    m_errorList.removeIf([&](const QString &entry) { return entry.compare(text, Qt::CaseInsensitive) == 0; });
}

void clsSendMail::RaiseFailure()
{
    QString text;
    for (const QString &entry : std::as_const(m_errorList))
        text += entry + QStringLiteral("\r\n");
    Q_EMIT SendFailed(text);
    if (SocketState() > Closed)
        CloseConnection();
    m_failed = true;
    m_errorList.clear();
}

void clsSendMail::RaiseTimeout()
{
    AddError(QStringLiteral("Timeout occurred: The SMTP Host did not respond to the request"));
    RaiseFailure();
}

bool clsSendMail::WaitForFlag(const bool &flag, qint32 seconds, bool raiseOnTimeout)
{
    if (seconds < 1)
        return false;
    const MailDeadline deadline(seconds);
    while (!flag) {
        if (deadline.Passed()) {
            if (raiseOnTimeout)
                RaiseTimeout();
            return false;
        }
        // A stop ends the wait, also the one of a connection closed on the way out.
        if (m_failed || StopRequest::Requested())
            return false;
        WaitForNextEvent(kMailTurnMs);
    }
    return flag;
}

void clsSendMail::OnDataArrival()
{
    if (SocketState() != Open)
        return;
    const QString reply = Ansi::Decode(m_socket->readAll());
    m_replyEnded = EndsReply(reply);
    const QString code = reply.left(3).toUpper();
    if (code == QLatin1String("220") || code == QLatin1String("221") || code == QLatin1String("251")) {
        m_replyOk = true;
    } else if (code == QLatin1String("250")) {
        m_replyOk = true;
        const QString lower = reply.toLower();
        if (lower.contains(QLatin1String("auth")) && lower.contains(QLatin1String("login")))
            m_authOffered = true;
    } else if (code == QLatin1String("235")) {
        m_authAccepted = true;
    } else if (code == QLatin1String("334")) {
        AnswerLoginPrompt(reply);
    } else if (code == QLatin1String("354")) {
        m_dataReady = true;
    } else if (code == QLatin1String("211") || code == QLatin1String("214")) {
        return;
    } else if (code == QLatin1String("+OK")) {
        StepPop3Login();
    } else {
        if (code == QLatin1String("-ER")) {
            m_popDone = false;
            m_popStep = 0;
            m_failed = true;
        }
        AddError(reply);
        RaiseFailure();
    }
}

void clsSendMail::AnswerLoginPrompt(const QString &reply)
{
    QString prompt = reply.mid(3).trimmed();
    prompt.remove(QStringLiteral("\r\n"));
    const QString decoded = MimeEncoders::DecodeBase64String(prompt);
    if (decoded.contains(QLatin1String("username"), Qt::CaseInsensitive))
        SendData(Ansi::Encode(MimeEncoders::EncodeBase64String(m_username)));
    else if (decoded.contains(QLatin1String("password"), Qt::CaseInsensitive))
        SendData(Ansi::Encode(MimeEncoders::EncodeBase64String(m_password)));
    else
        SendData("\r\n*\r\n");
}

void clsSendMail::StepPop3Login()
{
    switch (m_popStep) {
    case 0: SendLine(QStringLiteral("USER ") + m_username); break;
    case 1: SendLine(QStringLiteral("PASS ") + m_password); break;
    case 2: SendLine(QStringLiteral("QUIT")); break;
    default:
        m_popDone = true;
        m_popStep = 0;
        return;
    }
    ++m_popStep;
}

void clsSendMail::OnSocketError()
{
    const QAbstractSocket::SocketError error = m_socket->error();
    // The peer closing is the socket's close event, not an error.
    if (error == QAbstractSocket::RemoteHostClosedError)
        return;
    m_socketError = true;
    const bool certificate =
        error == QAbstractSocket::SslHandshakeFailedError && !m_certificateProblem.isEmpty();
    AddError(certificate ? m_certificateProblem : m_socket->errorString());
    RaiseFailure();
}

void clsSendMail::OnSendProgress(qint64 bytesSent)
{
    m_bytesSent += bytesSent;
    m_sendProgressSeen = true;
    m_bytesRemaining = m_socket->bytesToWrite();
    int percent = 0;
    if (m_messageSize > 0)
        percent =
            qMin(100, int(Numbers::RoundEven(double(float(m_bytesSent) / float(m_messageSize) * 100.0f))));
    if (percent != m_lastPercent && SocketState() == Open) {
        m_lastPercent = percent;
        Q_EMIT Progress(percent);
    }
}

int clsSendMail::SocketState() const
{
    switch (m_socket->state()) {
    case QAbstractSocket::UnconnectedState: return m_socketError ? Error : Closed;
    case QAbstractSocket::HostLookupState: return ResolvingHost;
    case QAbstractSocket::ConnectingState: return Connecting;
    case QAbstractSocket::ConnectedState:
        // A TLS connection is open for the dialogue once its handshake is done.
        return m_socket->mode() == QSslSocket::UnencryptedMode || m_socket->isEncrypted() ? Open : Connecting;
    case QAbstractSocket::ClosingState: return PeerClosing;
    default: return Connecting;
    }
}

void clsSendMail::SocketConnect(const QString &host, quint16 port, bool encrypted)
{
    m_socketError = false;
    m_remoteHost = host;
    if (encrypted) {
        ConfigureTls(host);
        m_socket->connectToHostEncrypted(host, port);
    } else {
        m_socket->connectToHost(host, port);
    }
}

void clsSendMail::ConfigureTls(const QString &host)
{
    m_certificateProblem.clear();
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    if (!m_extraCACertificates.isEmpty()) {
        QList<QSslCertificate> authorities = configuration.caCertificates();
        authorities += QSslCertificate::fromPath(m_extraCACertificates);
        configuration.setCaCertificates(authorities);
    }
    m_socket->setSslConfiguration(configuration);
    m_socket->setPeerVerifyName(host);
}

void clsSendMail::SocketClose()
{
    m_socket->abort();
    m_socketError = false;
}

void clsSendMail::SendData(const QByteArray &bytes)
{
    if (SocketState() != Open)
        throw QorloError(kWrongState, kWrongStateText);
    m_socket->write(bytes);
}

void clsSendMail::SendLine(const QString &text)
{
    SendData(Ansi::Encode(text + QStringLiteral("\r\n")));
}

void clsSendMail::PumpEvents()
{
    QCoreApplication::processEvents();
}
