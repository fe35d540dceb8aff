#include "Files.h"
#include "MailEvents.h"
#include "SmtpPeer.h"
#include "TestMain.h"

using namespace TestSupport;

// POP3 before SMTP against dovecot, and the optional STARTTLS and implicit TLS.
class TestSendMailSecure : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void pop3BeforeSmtp();
    void startTls();
    void implicitTls();
    void untrustedCertificate();

private:
    void prepare(clsSendMail &mail, quint16 port);
    QTemporaryDir m_folder;
    QString m_certificate;
    QString m_key;
};

void TestSendMailSecure::initTestCase()
{
    const QString openssl = FindProgram(QStringLiteral("openssl"));
    QORLO_REQUIRE_PEER(!openssl.isEmpty(), QStringLiteral("openssl"));
    m_certificate = m_folder.filePath(QStringLiteral("cert.pem"));
    m_key = m_folder.filePath(QStringLiteral("key.pem"));
    QVERIFY(
        RunProgram(openssl, {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                             QStringLiteral("rsa:2048"), QStringLiteral("-nodes"), QStringLiteral("-keyout"),
                             m_key, QStringLiteral("-out"), m_certificate, QStringLiteral("-days"),
                             QStringLiteral("2"), QStringLiteral("-subj"), QStringLiteral("/CN=127.0.0.1"),
                             QStringLiteral("-addext"), QStringLiteral("subjectAltName=IP:127.0.0.1")}));
}

void TestSendMailSecure::prepare(clsSendMail &mail, quint16 port)
{
    AimAt(mail, port);
    mail.SetSubject(QStringLiteral("Secure"));
    mail.SetMessage(QStringLiteral("Over TLS"));
}

void TestSendMailSecure::pop3BeforeSmtp()
{
    QTemporaryDir popFolder;
    const quint16 popPort = FreePort();
    PeerProcess dovecot;
    QORLO_REQUIRE_PEER(!FindProgram(QStringLiteral("dovecot")).isEmpty(), QStringLiteral("dovecot"));
    QORLO_REQUIRE_PEER(StartPop3Peer(dovecot, popFolder.path(), popPort, QStringLiteral("carol"),
                                     QStringLiteral("pop-pass")),
                       dovecot.error());
    SmtpPeer smtp;
    QORLO_REQUIRE_PEER(smtp.start(), smtp.error());
    const auto send = [&](const QString &password, clsSendMail &mail) {
        prepare(mail, smtp.port());
        mail.SetUsePopAuthentication(true);
        mail.SetPOP3Host(QStringLiteral("127.0.0.1"));
        mail.SetPOP3Port(popPort);
        mail.SetUsername(QStringLiteral("carol"));
        mail.SetPassword(password);
        mail.Send();
    };
    {
        clsSendMail mail;
        MailEvents events(mail);
        send(QStringLiteral("pop-pass"), mail);
        QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
        QCOMPARE(events.statuses.mid(0, 3),
                 QStringList({QStringLiteral("Connecting to POP3 Server (127.0.0.1)..."),
                              QStringLiteral("POP3 Authentication Successful..."),
                              QStringLiteral("Connecting to SMTP Server (127.0.0.1)...")}));
        QCOMPARE(smtp.messages().size(), 1);
    }
    clsSendMail mail;
    MailEvents events(mail);
    send(QStringLiteral("wrong"), mail);
    QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
    QVERIFY2(events.failures.first().startsWith(QLatin1String("-ERR ")), qPrintable(events.failures.first()));
    QVERIFY(!events.statuses.contains(QStringLiteral("Connecting to SMTP Server (127.0.0.1)...")));
    QCOMPARE(smtp.messages().size(), 1);
}

void TestSendMailSecure::startTls()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(
        peer.start({QStringLiteral("--starttls"), m_certificate, m_key, QStringLiteral("--user"),
                    QStringLiteral("dave"), QStringLiteral("--password"), QStringLiteral("tls-pass")}),
        peer.error());
    clsSendMail mail;
    MailEvents events(mail);
    prepare(mail, peer.port());
    mail.SetEncryption(QStringLiteral("STARTTLS"));
    mail.SetExtraCACertificates(m_certificate);
    mail.SetUseAuthentication(true);
    mail.SetUsername(QStringLiteral("dave"));
    mail.SetPassword(QStringLiteral("tls-pass"));
    mail.Send();
    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(events.statuses.contains(QStringLiteral("Starting TLS Encryption...")));
    QVERIFY(events.statuses.contains(QStringLiteral("Host Login OK!")));
    const QJsonObject envelope = SmtpPeer::envelopeOf(peer.messages().first());
    QVERIFY(envelope.value(QStringLiteral("tls")).toBool());
    QCOMPARE(envelope.value(QStringLiteral("login")).toString(), QStringLiteral("dave"));
    QCOMPARE(envelope.value(QStringLiteral("commands")).toVariant().toStringList().mid(0, 4),
             QStringList({QStringLiteral("EHLO example.com"), QStringLiteral("STARTTLS"),
                          QStringLiteral("EHLO example.com"), QStringLiteral("AUTH Login")}));
    QCOMPARE(ParseMessage(peer.messages().first()).value(QStringLiteral("subject")).toString(),
             QStringLiteral("Secure"));
    // The same object starts plain again for its next message and upgrades once more.
    mail.Send();
    QCOMPARE(events.events, QStringList({QStringLiteral("SendSuccesful"), QStringLiteral("SendSuccesful")}));
    QVERIFY(SmtpPeer::envelopeOf(peer.messages().last()).value(QStringLiteral("tls")).toBool());
}

void TestSendMailSecure::implicitTls()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start({QStringLiteral("--tls"), m_certificate, m_key}), peer.error());
    clsSendMail mail;
    MailEvents events(mail);
    prepare(mail, peer.port());
    mail.SetEncryption(QStringLiteral("TLS"));
    mail.SetExtraCACertificates(m_certificate);
    mail.Send();
    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(!events.statuses.contains(QStringLiteral("Starting TLS Encryption...")));
    QVERIFY(SmtpPeer::envelopeOf(peer.messages().first()).value(QStringLiteral("tls")).toBool());
    // A second message on the same object starts a fresh TLS connection.
    mail.Send();
    QCOMPARE(events.events, QStringList({QStringLiteral("SendSuccesful"), QStringLiteral("SendSuccesful")}));
    QCOMPARE(peer.messages().size(), 2);
}

void TestSendMailSecure::untrustedCertificate()
{
    for (const QString &mode : {QStringLiteral("TLS"), QStringLiteral("STARTTLS")}) {
        SmtpPeer peer;
        QORLO_REQUIRE_PEER(
            peer.start({mode == QLatin1String("TLS") ? QStringLiteral("--tls") : QStringLiteral("--starttls"),
                        m_certificate, m_key}),
            peer.error());
        clsSendMail mail;
        MailEvents events(mail);
        prepare(mail, peer.port());
        mail.SetEncryption(mode);
        mail.Send();
        QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
        const QString failure = events.failures.first();
        QVERIFY2(failure.startsWith(QLatin1String("TLS certificate of 127.0.0.1 not accepted: ")),
                 qPrintable(failure));
        QVERIFY2(failure.contains(QLatin1String("self signed"), Qt::CaseInsensitive) ||
                     failure.contains(QLatin1String("self-signed"), Qt::CaseInsensitive),
                 qPrintable(failure));
        QVERIFY(peer.messages().isEmpty());
    }
}

QORLO_TEST_MAIN(TestSendMailSecure)
#include "tst_sendmailsecure.moc"
