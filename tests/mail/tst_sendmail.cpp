#include "Files.h"
#include "MailEvents.h"
#include "SmtpPeer.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/TWReg.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSettings>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace TestSupport;

class TestSendMail : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void plainMessage();
    void htmlWithRelatedImages();
    void attachmentsAndEncodedNames();
    void uuencodeWithOnlyBcc();
    void keptConnection();
    void authentication();
    void serverRefusals();
    void silentServerAndMidnight();
    void configurationFaults();
    void persistentSettings();
    void hostLookupsAndPing();

private:
    QString writeFile(const QString &name, const QByteArray &bytes);
    QTemporaryDir m_files;
};

namespace {

QStringList Names(const QJsonObject &parsed)
{
    return parsed.value(QStringLiteral("header_names")).toVariant().toStringList();
}

QString Sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QJsonObject Address(const QString &name, const QString &address)
{
    return {{QStringLiteral("name"), name}, {QStringLiteral("address"), address}};
}

} // namespace

QString TestSendMail::writeFile(const QString &name, const QByteArray &bytes)
{
    return WriteFile(m_files.filePath(name), bytes);
}

void TestSendMail::plainMessage()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    const OffsetClock clock(QDateTime(QDate(2026, 3, 1), QTime(14, 5, 0)));
    const ClockGuard guard(clock);
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    mail.SetSubject(QStringLiteral("Daily figures"));
    mail.SetMessage(QStringLiteral("Line one\r\n.\r\n.dot line\r\nLast"));
    mail.SetReplyToAddress(QStringLiteral(" desk@example.com "));
    mail.SetPriority(1);
    mail.SetReceipt(true);
    mail.Send();

    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QCOMPARE(
        events.statuses,
        QStringList({QStringLiteral("Connecting to SMTP Server (127.0.0.1)..."),
                     QStringLiteral("Initializing Communications..."),
                     QStringLiteral("Sending Sender Information..."),
                     QStringLiteral("Sending Recipient Information..."), QStringLiteral("Sending Message..."),
                     QStringLiteral("Transmission Complete..."), QStringLiteral("Closing Connection...")}));
    QCOMPARE(events.progress.last(), 100);
    QCOMPARE(peer.messages().size(), 1);
    const QString recorded = peer.messages().first();
    const QJsonObject envelope = SmtpPeer::envelopeOf(recorded);
    QCOMPARE(
        envelope.value(QStringLiteral("commands")).toVariant().toStringList(),
        QStringList({QStringLiteral("HELO example.com"), QStringLiteral("MAIL FROM: <reports@example.com>"),
                     QStringLiteral("RCPT TO: <boss@example.com>"), QStringLiteral("DATA")}));
    const QJsonObject parsed = ParseMessage(recorded);
    QCOMPARE(Names(parsed),
             QStringList({QStringLiteral("Message-ID"), QStringLiteral("From"), QStringLiteral("To"),
                          QStringLiteral("Subject"), QStringLiteral("Reply-to"), QStringLiteral("Date"),
                          QStringLiteral("MIME-Version"), QStringLiteral("X-Priority"),
                          QStringLiteral("X-MSMail-Priority"), QStringLiteral("Disposition-Notification-To"),
                          QStringLiteral("Content-Type"), QStringLiteral("Content-Transfer-Encoding")}));
    QCOMPARE(parsed.value(QStringLiteral("from")).toArray().first().toObject(),
             Address(QStringLiteral("reports@example.com"), QStringLiteral("reports@example.com")));
    QCOMPARE(parsed.value(QStringLiteral("subject")).toString(), QStringLiteral("Daily figures"));
    QCOMPARE(parsed.value(QStringLiteral("parts")).toArray().size(), 1);
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("content_type")).toString(),
             QStringLiteral("text/plain"));
    // The reader hands text parts over with LF line ends; the raw message keeps CR LF.
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("text")).toString(),
             QStringLiteral("Line one\n.\n.dot line\nLast\n"));
    const QByteArray raw = ReadFile(recorded);
    QVERIFY(raw.contains("\r\n\r\nLine one\r\n.\r\n.dot line\r\nLast\r\n"));
    QVERIFY(raw.contains("\r\nDate: Sun, 1 Mar 2026 14:05:"));
    QVERIFY(raw.contains("\r\nX-Priority: 1\r\nX-MSMail-Priority: High\r\n"));
    QVERIFY(raw.contains("\r\nReply-to: <desk@example.com>\r\n"));
    QVERIFY(raw.contains("\r\nContent-Transfer-Encoding: 7bit\r\n"));
    QVERIFY(QRegularExpression(QStringLiteral("^Message-ID: <\\d{17}\\.[A-Za-z0-9+/]{20}@[^>]+>\r\n"))
                .match(QString::fromLatin1(raw))
                .hasMatch());
    QVERIFY(QRegularExpression(QStringLiteral("\r\nDate: [^\r]* [+-]\\d{4}\r\n"))
                .match(QString::fromLatin1(raw))
                .hasMatch());
}

void TestSendMail::htmlWithRelatedImages()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    const QByteArray png = QByteArray::fromHex("89504e470d0a1a0a") + QByteArray(300, '\x7f');
    const QString logo = writeFile(QStringLiteral("logo.png"), png);
    const QString data = writeFile(QStringLiteral("data.csv"), "a;b\r\n1;2\r\n");
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    mail.SetAsHTML(true);
    mail.SetContentBase(QStringLiteral("intranet\\reports"));
    QCOMPARE(mail.ContentBase(), QStringLiteral("http://intranet/reports/"));
    mail.SetMessage(QStringLiteral(
        "<html><body><p>Chart in LOGO.PNG:</p><img alt=\"x\" src=\"logo.png\"></body></html>"));
    mail.SetAttachment(logo + QLatin1Char(';') + data);
    mail.Send();

    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(events.statuses.contains(QStringLiteral("Sending Embedded File, logo.png...")));
    QVERIFY(events.statuses.contains(QStringLiteral("Sending Attachment, data.csv...")));
    const QJsonObject parsed = ParseMessage(peer.messages().first());
    QCOMPARE(parsed.value(QStringLiteral("content_type")).toString(), QStringLiteral("multipart/related"));
    QVERIFY(parsed.value(QStringLiteral("boundary"))
                .toString()
                .startsWith(QLatin1String("----_=_NextPart_000_")));
    QCOMPARE(parsed.value(QStringLiteral("defects")).toArray().size(), 0);
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("content_type")).toString(), QStringLiteral("text/html"));
    // The name outside a tag stays; the attribute now points at the related part.
    QCOMPARE(
        PartOf(parsed, 0).value(QStringLiteral("text")).toString(),
        QStringLiteral(
            "<html><body><p>Chart in LOGO.PNG:</p><img alt=\"x\" src=\"cid:logo.png\"></body></html>\n"));
    QCOMPARE(PartOf(parsed, 1).value(QStringLiteral("content_type")).toString(), QStringLiteral("image/png"));
    QCOMPARE(PartOf(parsed, 1).value(QStringLiteral("content_id")).toString(), QStringLiteral("<logo.png>"));
    QCOMPARE(PartOf(parsed, 1).value(QStringLiteral("sha256")).toString(), Sha256(png));
    QCOMPARE(PartOf(parsed, 2).value(QStringLiteral("content_type")).toString(), QStringLiteral("text/csv"));
    QCOMPARE(PartOf(parsed, 2).value(QStringLiteral("filename")).toString(), QStringLiteral("data.csv"));
    QVERIFY(PartOf(parsed, 2).value(QStringLiteral("content_id")).isNull());
    QVERIFY(ReadFile(peer.messages().first()).contains("\r\nContent-Base: \"http://intranet/reports/\"\r\n"));
}

void TestSendMail::attachmentsAndEncodedNames()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    QRandomGenerator random(RandomSeed());
    QByteArray big(3 * 1024 * 1024, '\0');
    for (char &b : big)
        b = char(random.bounded(256));
    QByteArray small(57, '\0');
    for (int i = 0; i < small.size(); ++i)
        small[i] = char(200 + i % 50);
    const QStringList paths{writeFile(QStringLiteral("empty.bin"), QByteArray()),
                            writeFile(QStringLiteral("small.bin"), small),
                            writeFile(QStringLiteral("big.dat"), big)};
    const QString subject = QStringLiteral("\u00dcberblick: Quartalszahlen f\u00fcr das Gesch\u00e4ftsjahr, "
                                           "Zusammenfassung \u00e0 la fran\u00e7aise");
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port(), 20);
    mail.SetFromDisplayName(QStringLiteral(" Zo\u00eb M\u00fcller "));
    mail.SetRecipient(QStringLiteral("one@example.com; two@example.com"));
    mail.SetRecipientDisplayName(QStringLiteral("Ren\u00e9e Dupont"));
    mail.SetCcRecipient(QStringLiteral("cc@example.org"));
    mail.SetCcDisplayName(QStringLiteral("Carbon Copy"));
    mail.SetBccRecipient(QStringLiteral("hidden@example.net"));
    mail.SetSubject(subject);
    mail.SetMessage(QStringLiteral("Gr\u00fc\u00dfe aus K\u00f6ln"));
    mail.SetAttachment(paths.join(QLatin1Char(';')));
    mail.Send();

    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(events.progress.size() > 5);
    QVERIFY(std::is_sorted(events.progress.cbegin(), events.progress.cend()));
    const QString recorded = peer.messages().first();
    QCOMPARE(SmtpPeer::envelopeOf(recorded).value(QStringLiteral("rcpt_tos")).toVariant().toStringList(),
             QStringList({QStringLiteral("one@example.com"), QStringLiteral("two@example.com"),
                          QStringLiteral("cc@example.org"), QStringLiteral("hidden@example.net")}));
    const QJsonObject parsed = ParseMessage(recorded);
    QCOMPARE(Names(parsed),
             QStringList({QStringLiteral("Message-ID"), QStringLiteral("From"), QStringLiteral("To"),
                          QStringLiteral("Cc"), QStringLiteral("Subject"), QStringLiteral("Date"),
                          QStringLiteral("MIME-Version"), QStringLiteral("Content-Type")}));
    QCOMPARE(parsed.value(QStringLiteral("subject")).toString(), subject);
    QCOMPARE(parsed.value(QStringLiteral("from")).toArray().first().toObject(),
             Address(QStringLiteral("Zo\u00eb M\u00fcller"), QStringLiteral("reports@example.com")));
    QCOMPARE(parsed.value(QStringLiteral("to")).toArray(),
             QJsonArray({Address(QStringLiteral("Ren\u00e9e Dupont"), QStringLiteral("one@example.com")),
                         Address(QStringLiteral("two@example.com"), QStringLiteral("two@example.com"))}));
    QCOMPARE(parsed.value(QStringLiteral("cc")).toArray(),
             QJsonArray({Address(QStringLiteral("Carbon Copy"), QStringLiteral("cc@example.org"))}));
    QCOMPARE(parsed.value(QStringLiteral("content_type")).toString(), QStringLiteral("multipart/mixed"));
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("transfer_encoding")).toString(), QStringLiteral("8bit"));
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("text")).toString(),
             QStringLiteral("Gr\u00fc\u00dfe aus K\u00f6ln\n"));
    const QList<QByteArray> contents{QByteArray(), small, big};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(PartOf(parsed, i + 1).value(QStringLiteral("filename")).toString(),
                 paths.at(i).section(QLatin1Char('/'), -1));
        QCOMPARE(PartOf(parsed, i + 1).value(QStringLiteral("size")).toInt(), contents.at(i).size());
        QCOMPARE(PartOf(parsed, i + 1).value(QStringLiteral("sha256")).toString(), Sha256(contents.at(i)));
    }
    const QByteArray raw = ReadFile(recorded);
    // A file of 0 bytes sends only its part headers and the empty lines; 57 bytes make one full line.
    QVERIFY(raw.contains("filename=\"empty.bin\"\r\n\r\n\r\n--"));
    QVERIFY(raw.contains(
        QByteArray(QByteArray("filename=\"small.bin\"\r\n\r\n") + small.toBase64() + "\r\n\r\n--")));
    QVERIFY(raw.contains("Subject: =?ISO-8859-1?B?"));
    QVERIFY(raw.contains("?=\r\n\t=?ISO-8859-1?B?"));
}

void TestSendMail::uuencodeWithOnlyBcc()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    const QString file = writeFile(QStringLiteral("notes.txt"), QByteArray(100, 'n'));
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    mail.SetEncodeType(1);
    mail.SetRecipient(QString());
    mail.SetBccRecipient(QStringLiteral("hidden@example.net"));
    mail.SetMessage(QStringLiteral("See the notes"));
    mail.SetAttachment(file);
    mail.Send();

    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    const QByteArray raw = ReadFile(peer.messages().first());
    QVERIFY(raw.contains("\r\nTo: \r\n"));
    QVERIFY(!raw.contains("MIME-Version"));
    QVERIFY(!raw.contains("Content-Type"));
    // 100 bytes: two full lines of 45 bytes ("M" + 60 characters), then 10 bytes with the short-group
    // padding.
    const qsizetype begin = raw.indexOf("begin 600 notes.txt\r\n");
    QVERIFY(begin > 0);
    const QList<QByteArray> lines = raw.mid(begin).split('\n');
    QCOMPARE(lines.at(1).left(1), QByteArray("M"));
    QCOMPARE(lines.at(1).size(), 62);
    QCOMPARE(lines.at(3).left(1), QByteArray("*"));
    QVERIFY(lines.at(3).endsWith("==\r"));
    QCOMPARE(lines.at(4), QByteArray("end\r"));
}

void TestSendMail::keptConnection()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    QVERIFY(mail.Connect());
    mail.Send();
    mail.Send();
    QCOMPARE(events.events, QStringList({QStringLiteral("SendSuccesful"), QStringLiteral("SendSuccesful")}));
    QCOMPARE(events.statuses.count(QStringLiteral("Connecting to SMTP Server (127.0.0.1)...")), 1);
    QCOMPARE(events.statuses.count(QStringLiteral("Closing Connection...")), 0);
    mail.Disconnect();
    QCOMPARE(events.statuses.last(), QStringLiteral("Closing Connection..."));
    QCOMPARE(peer.messages().size(), 2);
}

void TestSendMail::authentication()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start({QStringLiteral("--user"), QStringLiteral("alice"),
                                   QStringLiteral("--password"), QStringLiteral("s3cret")}),
                       peer.error());
    const auto send = [&](const QString &password, clsSendMail &mail) {
        AimAt(mail, peer.port());
        mail.SetUseAuthentication(true);
        mail.SetUsername(QStringLiteral("alice"));
        mail.SetPassword(password);
        mail.Send();
    };
    {
        clsSendMail mail;
        MailEvents events(mail);
        send(QStringLiteral("s3cret"), mail);
        QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
        QVERIFY(events.statuses.contains(QStringLiteral("Sending Login Authentication...")));
        QVERIFY(events.statuses.contains(QStringLiteral("Host Login OK!")));
        QCOMPARE(SmtpPeer::envelopeOf(peer.messages().first()).value(QStringLiteral("login")).toString(),
                 QStringLiteral("alice"));
        QCOMPARE(SmtpPeer::envelopeOf(peer.messages().first())
                     .value(QStringLiteral("commands"))
                     .toVariant()
                     .toStringList()
                     .mid(0, 2),
                 QStringList({QStringLiteral("EHLO example.com"), QStringLiteral("AUTH Login")}));
    }
    {
        clsSendMail mail;
        MailEvents events(mail);
        send(QStringLiteral("wrong"), mail);
        QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
        QVERIFY2(events.failures.first().startsWith(QLatin1String("535 ")),
                 qPrintable(events.failures.first()));
        QVERIFY(events.failures.first().endsWith(QLatin1String("\r\n\r\n")));
        QCOMPARE(events.statuses.last(), QStringLiteral("Host Login Failed!"));
        QCOMPARE(peer.messages().size(), 1);
    }
    SmtpPeer plain;
    QORLO_REQUIRE_PEER(plain.start(), plain.error());
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, plain.port());
    mail.SetUseAuthentication(true);
    mail.Send();
    QVERIFY(events.succeeded());
    QVERIFY(events.statuses.contains(QStringLiteral("Login Not Supported by Host, Continuing...")));
}

void TestSendMail::serverRefusals()
{
    SmtpPeer refusing;
    QORLO_REQUIRE_PEER(refusing.start({QStringLiteral("--refuse-rcpt")}), refusing.error());
    {
        clsSendMail mail;
        MailEvents events(mail);
        AimAt(mail, refusing.port());
        mail.SetRecipient(QStringLiteral("nobody@example.com"));
        mail.Send();
        QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
        QCOMPARE(events.failures.first(),
                 QStringLiteral("550 5.1.1 <nobody@example.com>: Recipient address rejected\r\n\r\n"));
        QCOMPARE(events.statuses.last(), QStringLiteral("Closing Connection..."));
        QVERIFY(refusing.messages().isEmpty());
    }
    SmtpPeer closing;
    QORLO_REQUIRE_PEER(closing.start({QStringLiteral("--close-in-data")}), closing.error());
    {
        const QString big = writeFile(QStringLiteral("closing.bin"), QByteArray(2 * 1024 * 1024, 'c'));
        clsSendMail mail;
        MailEvents events(mail);
        AimAt(mail, closing.port(), 3);
        mail.SetAttachment(big);
        mail.Send();
        QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
        // The next attachment chunk finds the connection gone.
        QCOMPARE(events.failures.first(), QStringLiteral("Socket not Open\r\n"));
        QVERIFY(closing.messages().isEmpty());
    }
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, FreePort());
    mail.Send();
    QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
    QCOMPARE(events.failures.first(), QStringLiteral("Connection refused\r\n"));
}

void TestSendMail::silentServerAndMidnight()
{
    SmtpPeer silent;
    QORLO_REQUIRE_PEER(silent.start({QStringLiteral("--silent")}), silent.error());
    const QString timeout =
        QStringLiteral("Timeout occurred: The SMTP Host did not respond to the request\r\n");
    {
        clsSendMail mail;
        MailEvents events(mail);
        AimAt(mail, silent.port(), 2);
        QElapsedTimer watch;
        watch.start();
        mail.Send();
        QVERIFY(watch.elapsed() >= 1900);
        QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
        QCOMPARE(events.failures.first(), timeout);
        QCOMPARE(events.statuses, QStringList({QStringLiteral("Connecting to SMTP Server (127.0.0.1)..."),
                                               QStringLiteral("Closing Connection...")}));
    }
    // A wait whose end would fall past midnight ends at once.
    const OffsetClock clock(QDateTime(QDate(2026, 3, 1), QTime(23, 59, 30)));
    const ClockGuard guard(clock);
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, silent.port(), 60);
    mail.SetConnectRetry(3);
    QElapsedTimer watch;
    watch.start();
    mail.Send();
    QVERIFY(watch.elapsed() < 30000);
    QCOMPARE(events.failures, QStringList{timeout});
}

void TestSendMail::configurationFaults()
{
    clsSendMail mail;
    MailEvents events(mail);
    mail.SetSMTPHostValidation(1);
    mail.SetSMTPHost(QStringLiteral("localhost"));
    mail.SetSMTPPort(70000);
    QCOMPARE(mail.SMTPPort(), 25);
    mail.SetFrom(QStringLiteral("not an address"));
    mail.SetRecipient(QStringLiteral("a@example.com;b@example.test"));
    mail.SetAttachment(m_files.filePath(QStringLiteral("missing.pdf")));
    mail.SetAsHTML(true);
    mail.SetEncodeType(1);
    mail.Send();
    QCOMPARE(events.events, QStringList{QStringLiteral("SendFailed")});
    QCOMPARE(events.failures.first(),
             QStringLiteral(
                 "Invalid or Missing SMTP Host Name\r\nInvalid Remote Port\r\n"
                 "Missing or Invalid Sender E-mail Address\r\n"
                 "Missing or Invalid Recipient E-mail Address\r\n"
                 "The file you tried to attach does not exist\r\nSending HTML requires MIME encoding\r\n"));
    QVERIFY(events.statuses.isEmpty());
    // A valid value clears its own message; the list was emptied by the failure.
    mail.SetSMTPHost(QStringLiteral("mail.example.com"));
    QCOMPARE(mail.SMTPHost(), QStringLiteral("mail.example.com"));
    mail.SetFrom(QString());
    mail.SetAsHTML(false);
    mail.SetAttachment(QString());
    mail.SetRecipient(QString());
    mail.SetMaxRecipients(-1);
    mail.SetRecipient(QStringLiteral("a@example.com;b@example.com"));
    mail.Send();
    QCOMPARE(events.failures.last(),
             QStringLiteral("Missing or Invalid Sender E-mail Address\r\nToo many recipients\r\n"));
    mail.SetRecipient(QString());
    mail.SetFrom(QStringLiteral("a@example.com"));
    mail.Send();
    QCOMPARE(events.failures.last(), QStringLiteral("No Recipient E-mail Address Specified\r\n"));
}

void TestSendMail::persistentSettings()
{
    const QString file = TWReg::SettingsFolder() + QStringLiteral("/QorloSendMail.ini");
    QFile::remove(file);
    {
        clsSendMail mail;
        mail.SetConnectRetry(7);
        mail.SetUsername(QStringLiteral("nobody"));
        QVERIFY(!QFile::exists(file));
        mail.SetPersistentSettings(1);
        mail.SetConnectRetry(30);
        QCOMPARE(mail.ConnectRetry(), 7);
        mail.SetSMTPHostValidation(0);
        mail.SetSMTPHost(QStringLiteral("mail.example.com"));
        mail.SetUseAuthentication(true);
        mail.SetPassword(QStringLiteral("never stored"));
        mail.SetMaxRecipients(0);
    }
    const QSettings stored(file, QSettings::IniFormat);
    QCOMPARE(stored.value(QStringLiteral("Settings/PersistentSettings")).toString(), QStringLiteral("1"));
    QVERIFY(!stored.contains(QStringLiteral("Settings/Password")));
    clsSendMail reread;
    // Values come back without the range tests of their setters; a stored 0 becomes 100 at construction.
    QCOMPARE(reread.ConnectRetry(), 30);
    QCOMPARE(reread.SMTPHost(), QStringLiteral("mail.example.com"));
    QCOMPARE(reread.UseAuthentication(), true);
    QCOMPARE(reread.Username(), QString());
    QCOMPARE(reread.MaxRecipients(), 100);
    QCOMPARE(reread.Password(), QString());
    reread.SetPersistentSettings(0);
    QCOMPARE(
        QSettings(file, QSettings::IniFormat).value(QStringLiteral("Settings/PersistentSettings")).toString(),
        QStringLiteral("1"));
    // The other cases start from the table's defaults.
    QFile::remove(file);
}

void TestSendMail::hostLookupsAndPing()
{
    clsSendMail mail;
    QString host;
    mail.GetIPAddress(host);
    QCOMPARE(host, mail.GetIPHost());
    QVERIFY(!host.isEmpty());
    host = QStringLiteral(" localhost ");
    QCOMPARE(mail.GetIPAddress(host), QStringLiteral("127.0.0.1"));
    host = QStringLiteral("no-such-host.invalid");
    QCOMPARE(mail.GetIPAddress(host), QString());

    // ICMP needs a ping socket or a raw one; without either, Ping says false.
    const int probe = ::socket(AF_INET, SOCK_RAW, IPPROTO_ICMP);
    const int dgram = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_ICMP);
    const bool icmpAllowed = probe >= 0 || dgram >= 0;
    ::close(probe);
    ::close(dgram);
    QString target = QStringLiteral("127.0.0.1");
    QString time, size;
    bool same = false;
    QCOMPARE(mail.Ping(target, time, size, same), icmpAllowed);
    if (icmpAllowed) {
        QCOMPARE(target, QStringLiteral("127.0.0.1"));
        QCOMPARE(size, QStringLiteral("32 bytes"));
        QVERIFY(same);
        QCOMPARE(time, QString::number(time.toInt())); // the round-trip time in milliseconds
    }
    target = QStringLiteral("no-such-host.invalid");
    QVERIFY(!mail.Ping(target, time, size, same));
    mail.SetSMTPHostValidation(2);
    mail.SetSMTPHost(QStringLiteral("127.0.0.1"));
    QCOMPARE(mail.SMTPHost().isEmpty(), !icmpAllowed);
}

QORLO_TEST_MAIN(TestSendMail)
#include "tst_sendmail.moc"
