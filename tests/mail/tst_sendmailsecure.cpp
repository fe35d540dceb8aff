#include "Files.h"
#include "MailEvents.h"
#include "SmtpPeer.h"
#include "TestMain.h"

using namespace Qt::Literals::StringLiterals;

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
    const QString openssl = FindProgram(u"openssl"_s);
    QORLO_REQUIRE_PEER(!openssl.isEmpty(), u"openssl"_s);
    m_certificate = m_folder.filePath(u"cert.pem"_s);
    m_key = m_folder.filePath(u"key.pem"_s);
    QVERIFY(RunProgram(openssl, {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-keyout"_s,
                                 m_key, u"-out"_s, m_certificate, u"-days"_s, u"2"_s, u"-subj"_s,
                                 u"/CN=127.0.0.1"_s, u"-addext"_s, u"subjectAltName=IP:127.0.0.1"_s}));
}

void TestSendMailSecure::prepare(clsSendMail &mail, quint16 port)
{
    AimAt(mail, port);
    mail.SetSubject(u"Secure"_s);
    mail.SetMessage(u"Over TLS"_s);
}

void TestSendMailSecure::pop3BeforeSmtp()
{
    QTemporaryDir popFolder;
    const quint16 popPort = FreePort();
    PeerProcess dovecot;
    QORLO_REQUIRE_PEER(!FindProgram(u"dovecot"_s).isEmpty(), u"dovecot"_s);
    QORLO_START_PEER(StartPop3Peer(dovecot, popFolder.path(), popPort, u"carol"_s, u"pop-pass"_s), dovecot);
    SmtpPeer smtp;
    QORLO_START_PEER(smtp.start(), smtp);
    const auto send = [&](const QString &password, clsSendMail &mail) {
        prepare(mail, smtp.port());
        mail.SetUsePopAuthentication(true);
        mail.SetPOP3Host(u"127.0.0.1"_s);
        mail.SetPOP3Port(popPort);
        mail.SetUsername(u"carol"_s);
        mail.SetPassword(password);
        mail.Send();
    };
    {
        clsSendMail mail;
        MailEvents events(mail);
        send(u"pop-pass"_s, mail);
        QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
        QCOMPARE(events.statuses.mid(0, 3), QStringList({u"Connecting to POP3 Server (127.0.0.1)..."_s,
                                                         u"POP3 Authentication Successful..."_s,
                                                         u"Connecting to SMTP Server (127.0.0.1)..."_s}));
        QCOMPARE(smtp.messages().size(), 1);
    }
    clsSendMail mail;
    MailEvents events(mail);
    send(u"wrong"_s, mail);
    QCOMPARE(events.events, QStringList{u"SendFailed"_s});
    QVERIFY2(events.failures.first().startsWith(u"-ERR "_s), qPrintable(events.failures.first()));
    QVERIFY(!events.statuses.contains(u"Connecting to SMTP Server (127.0.0.1)..."_s));
    QCOMPARE(smtp.messages().size(), 1);
}

void TestSendMailSecure::startTls()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({u"--starttls"_s, m_certificate, m_key, u"--user"_s, u"dave"_s,
                                 u"--password"_s, u"tls-pass"_s}),
                     peer);
    clsSendMail mail;
    MailEvents events(mail);
    prepare(mail, peer.port());
    mail.SetEncryption(u"STARTTLS"_s);
    mail.SetExtraCACertificates(m_certificate);
    mail.SetUseAuthentication(true);
    mail.SetUsername(u"dave"_s);
    mail.SetPassword(u"tls-pass"_s);
    mail.Send();
    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(events.statuses.contains(u"Starting TLS Encryption..."_s));
    QVERIFY(events.statuses.contains(u"Host Login OK!"_s));
    const QJsonObject envelope = SmtpPeer::envelopeOf(peer.messages().first());
    QVERIFY(envelope.value(u"tls"_s).toBool());
    QCOMPARE(envelope.value(u"login"_s).toString(), u"dave"_s);
    QCOMPARE(envelope.value(u"commands"_s).toVariant().toStringList().mid(0, 4),
             QStringList({u"EHLO example.com"_s, u"STARTTLS"_s, u"EHLO example.com"_s, u"AUTH Login"_s}));
    QCOMPARE(ParseMessage(peer.messages().first()).value(u"subject"_s).toString(), u"Secure"_s);
    // The same object starts plain again for its next message and upgrades once more.
    mail.Send();
    QCOMPARE(events.events, QStringList({u"SendSuccesful"_s, u"SendSuccesful"_s}));
    QVERIFY(SmtpPeer::envelopeOf(peer.messages().last()).value(u"tls"_s).toBool());
}

void TestSendMailSecure::implicitTls()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({u"--tls"_s, m_certificate, m_key}), peer);
    clsSendMail mail;
    MailEvents events(mail);
    prepare(mail, peer.port());
    mail.SetEncryption(u"TLS"_s);
    mail.SetExtraCACertificates(m_certificate);
    mail.Send();
    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(!events.statuses.contains(u"Starting TLS Encryption..."_s));
    QVERIFY(SmtpPeer::envelopeOf(peer.messages().first()).value(u"tls"_s).toBool());
    // A second message on the same object starts a fresh TLS connection.
    mail.Send();
    QCOMPARE(events.events, QStringList({u"SendSuccesful"_s, u"SendSuccesful"_s}));
    QCOMPARE(peer.messages().size(), 2);
}

void TestSendMailSecure::untrustedCertificate()
{
    for (const QString &mode : {u"TLS"_s, u"STARTTLS"_s}) {
        SmtpPeer peer;
        QORLO_START_PEER(peer.start({mode == u"TLS"_s ? u"--tls"_s : u"--starttls"_s, m_certificate, m_key}),
                         peer);
        clsSendMail mail;
        MailEvents events(mail);
        prepare(mail, peer.port());
        mail.SetEncryption(mode);
        mail.Send();
        QCOMPARE(events.events, QStringList{u"SendFailed"_s});
        const QString failure = events.failures.first();
        QVERIFY2(failure.startsWith(u"TLS certificate of 127.0.0.1 not accepted: "_s), qPrintable(failure));
        QVERIFY2(failure.contains(u"self signed"_s, Qt::CaseInsensitive) ||
                     failure.contains(u"self-signed"_s, Qt::CaseInsensitive),
                 qPrintable(failure));
        QVERIFY(peer.messages().isEmpty());
    }
}

QORLO_TEST_MAIN(TestSendMailSecure)
#include "tst_sendmailsecure.moc"
