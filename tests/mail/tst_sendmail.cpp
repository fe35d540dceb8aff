#include "Files.h"
#include "MailEvents.h"
#include "SmtpPeer.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/TWReg.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QRegularExpression>
#include <QSettings>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

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
    void partialPersistentSettings();
    void hostLookupsAndPing();

private:
    QString writeFile(const QString &name, const QByteArray &bytes);
    QTemporaryDir m_files;
};

namespace {

QStringList Names(const QJsonObject &parsed)
{
    return parsed.value(u"header_names"_s).toVariant().toStringList();
}

QString Sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QJsonObject Address(const QString &name, const QString &address)
{
    return {{u"name"_s, name}, {u"address"_s, address}};
}

} // namespace

QString TestSendMail::writeFile(const QString &name, const QByteArray &bytes)
{
    return WriteFile(m_files.filePath(name), bytes);
}

void TestSendMail::plainMessage()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    const OffsetClock clock(QDateTime(QDate(2026, 3, 1), QTime(14, 5, 0)));
    const ClockGuard guard(clock);
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    mail.SetSubject(u"Daily figures"_s);
    mail.SetMessage(u"Line one\r\n.\r\n.dot line\r\nLast"_s);
    mail.SetReplyToAddress(u" desk@example.com "_s);
    mail.SetPriority(1);
    mail.SetReceipt(true);
    mail.Send();

    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QCOMPARE(
        events.statuses,
        QStringList({u"Connecting to SMTP Server (127.0.0.1)..."_s, u"Initializing Communications..."_s,
                     u"Sending Sender Information..."_s, u"Sending Recipient Information..."_s,
                     u"Sending Message..."_s, u"Transmission Complete..."_s, u"Closing Connection..."_s}));
    QCOMPARE(events.progress.last(), 100);
    QCOMPARE(peer.messages().size(), 1);
    const QString recorded = peer.messages().first();
    const QJsonObject envelope = SmtpPeer::envelopeOf(recorded);
    QCOMPARE(envelope.value(u"commands"_s).toVariant().toStringList(),
             QStringList({u"HELO example.com"_s, u"MAIL FROM: <reports@example.com>"_s,
                          u"RCPT TO: <boss@example.com>"_s, u"DATA"_s}));
    const QJsonObject parsed = ParseMessage(recorded);
    QCOMPARE(Names(parsed), QStringList({u"Message-ID"_s, u"From"_s, u"To"_s, u"Subject"_s, u"Reply-to"_s,
                                         u"Date"_s, u"MIME-Version"_s, u"X-Priority"_s,
                                         u"X-MSMail-Priority"_s, u"Disposition-Notification-To"_s,
                                         u"Content-Type"_s, u"Content-Transfer-Encoding"_s}));
    QCOMPARE(parsed.value(u"from"_s).toArray().first().toObject(),
             Address(u"reports@example.com"_s, u"reports@example.com"_s));
    QCOMPARE(parsed.value(u"subject"_s).toString(), u"Daily figures"_s);
    QCOMPARE(parsed.value(u"parts"_s).toArray().size(), 1);
    QCOMPARE(PartOf(parsed, 0).value(u"content_type"_s).toString(), u"text/plain"_s);
    // The reader hands text parts over with LF line ends; the raw message keeps CR LF.
    QCOMPARE(PartOf(parsed, 0).value(u"text"_s).toString(), u"Line one\n.\n.dot line\nLast\n"_s);
    const QByteArray raw = ReadFile(recorded);
    QVERIFY(raw.contains("\r\n\r\nLine one\r\n.\r\n.dot line\r\nLast\r\n"));
    QVERIFY(raw.contains("\r\nDate: Sun, 1 Mar 2026 14:05:"));
    QVERIFY(raw.contains("\r\nX-Priority: 1\r\nX-MSMail-Priority: High\r\n"));
    QVERIFY(raw.contains("\r\nReply-to: <desk@example.com>\r\n"));
    QVERIFY(raw.contains("\r\nContent-Transfer-Encoding: 7bit\r\n"));
    QVERIFY(QRegularExpression(u"^Message-ID: <\\d{17}\\.[A-Za-z0-9+/]{20}@[^>]+>\r\n"_s)
                .match(QString::fromLatin1(raw))
                .hasMatch());
    QVERIFY(
        QRegularExpression(u"\r\nDate: [^\r]* [+-]\\d{4}\r\n"_s).match(QString::fromLatin1(raw)).hasMatch());
}

void TestSendMail::htmlWithRelatedImages()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    const QByteArray png = QByteArray::fromHex("89504e470d0a1a0a") + QByteArray(300, '\x7f');
    const QString logo = writeFile(u"logo.png"_s, png);
    const QString data = writeFile(u"data.csv"_s, "a;b\r\n1;2\r\n");
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    mail.SetAsHTML(true);
    mail.SetContentBase(u"intranet\\reports"_s);
    QCOMPARE(mail.ContentBase(), u"http://intranet/reports/"_s);
    mail.SetMessage(u"<html><body><p>Chart in LOGO.PNG:</p><img alt=\"x\" src=\"logo.png\"></body></html>"_s);
    mail.SetAttachment(logo + u';' + data);
    mail.Send();

    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(events.statuses.contains(u"Sending Embedded File, logo.png..."_s));
    QVERIFY(events.statuses.contains(u"Sending Attachment, data.csv..."_s));
    const QJsonObject parsed = ParseMessage(peer.messages().first());
    QCOMPARE(parsed.value(u"content_type"_s).toString(), u"multipart/related"_s);
    QVERIFY(parsed.value(u"boundary"_s).toString().startsWith(u"----_=_NextPart_000_"_s));
    QCOMPARE(parsed.value(u"defects"_s).toArray().size(), 0);
    QCOMPARE(PartOf(parsed, 0).value(u"content_type"_s).toString(), u"text/html"_s);
    // The name outside a tag stays; the attribute now points at the related part.
    QCOMPARE(PartOf(parsed, 0).value(u"text"_s).toString(),
             u"<html><body><p>Chart in LOGO.PNG:</p><img alt=\"x\" src=\"cid:logo.png\"></body></html>\n"_s);
    QCOMPARE(PartOf(parsed, 1).value(u"content_type"_s).toString(), u"image/png"_s);
    QCOMPARE(PartOf(parsed, 1).value(u"content_id"_s).toString(), u"<logo.png>"_s);
    QCOMPARE(PartOf(parsed, 1).value(u"sha256"_s).toString(), Sha256(png));
    QCOMPARE(PartOf(parsed, 2).value(u"content_type"_s).toString(), u"text/csv"_s);
    QCOMPARE(PartOf(parsed, 2).value(u"filename"_s).toString(), u"data.csv"_s);
    QVERIFY(PartOf(parsed, 2).value(u"content_id"_s).isNull());
    QVERIFY(ReadFile(peer.messages().first()).contains("\r\nContent-Base: \"http://intranet/reports/\"\r\n"));
}

void TestSendMail::attachmentsAndEncodedNames()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    const QByteArray big = RandomBytes(3 * 1024 * 1024);
    QByteArray small(57, '\0');
    for (int i = 0; i < small.size(); ++i)
        small[i] = char(200 + i % 50);
    const QStringList paths{writeFile(u"empty.bin"_s, QByteArray()), writeFile(u"small.bin"_s, small),
                            writeFile(u"big.dat"_s, big)};
    const QString subject = u"\u00dcberblick: Quartalszahlen f\u00fcr das Gesch\u00e4ftsjahr, "
                            "Zusammenfassung \u00e0 la fran\u00e7aise"_s;
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port(), 20);
    mail.SetFromDisplayName(u" Zo\u00eb M\u00fcller "_s);
    mail.SetRecipient(u"one@example.com; two@example.com"_s);
    mail.SetRecipientDisplayName(u"Ren\u00e9e Dupont"_s);
    mail.SetCcRecipient(u"cc@example.org"_s);
    mail.SetCcDisplayName(u"Carbon Copy"_s);
    mail.SetBccRecipient(u"hidden@example.net"_s);
    mail.SetSubject(subject);
    mail.SetMessage(u"Gr\u00fc\u00dfe aus K\u00f6ln"_s);
    mail.SetAttachment(paths.join(u';'));
    mail.Send();

    QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    QVERIFY(events.progress.size() > 5);
    QVERIFY(std::is_sorted(events.progress.cbegin(), events.progress.cend()));
    const QString recorded = peer.messages().first();
    QCOMPARE(SmtpPeer::envelopeOf(recorded).value(u"rcpt_tos"_s).toVariant().toStringList(),
             QStringList(
                 {u"one@example.com"_s, u"two@example.com"_s, u"cc@example.org"_s, u"hidden@example.net"_s}));
    const QJsonObject parsed = ParseMessage(recorded);
    QCOMPARE(Names(parsed), QStringList({u"Message-ID"_s, u"From"_s, u"To"_s, u"Cc"_s, u"Subject"_s,
                                         u"Date"_s, u"MIME-Version"_s, u"Content-Type"_s}));
    QCOMPARE(parsed.value(u"subject"_s).toString(), subject);
    QCOMPARE(parsed.value(u"from"_s).toArray().first().toObject(),
             Address(u"Zo\u00eb M\u00fcller"_s, u"reports@example.com"_s));
    QCOMPARE(parsed.value(u"to"_s).toArray(),
             QJsonArray({Address(u"Ren\u00e9e Dupont"_s, u"one@example.com"_s),
                         Address(u"two@example.com"_s, u"two@example.com"_s)}));
    QCOMPARE(parsed.value(u"cc"_s).toArray(), QJsonArray({Address(u"Carbon Copy"_s, u"cc@example.org"_s)}));
    QCOMPARE(parsed.value(u"content_type"_s).toString(), u"multipart/mixed"_s);
    QCOMPARE(PartOf(parsed, 0).value(u"transfer_encoding"_s).toString(), u"8bit"_s);
    QCOMPARE(PartOf(parsed, 0).value(u"text"_s).toString(), u"Gr\u00fc\u00dfe aus K\u00f6ln\n"_s);
    const QList<QByteArray> contents{QByteArray(), small, big};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(PartOf(parsed, i + 1).value(u"filename"_s).toString(), paths.at(i).section(u'/', -1));
        QCOMPARE(PartOf(parsed, i + 1).value(u"size"_s).toInt(), contents.at(i).size());
        QCOMPARE(PartOf(parsed, i + 1).value(u"sha256"_s).toString(), Sha256(contents.at(i)));
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
    QORLO_START_PEER(peer.start(), peer);
    const QString file = writeFile(u"notes.txt"_s, QByteArray(100, 'n'));
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    mail.SetEncodeType(1);
    mail.SetRecipient(QString());
    mail.SetBccRecipient(u"hidden@example.net"_s);
    mail.SetMessage(u"See the notes"_s);
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
    QORLO_START_PEER(peer.start(), peer);
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, peer.port());
    QVERIFY(mail.Connect());
    mail.Send();
    mail.Send();
    QCOMPARE(events.events, QStringList({u"SendSuccesful"_s, u"SendSuccesful"_s}));
    QCOMPARE(events.statuses.count(u"Connecting to SMTP Server (127.0.0.1)..."_s), 1);
    QCOMPARE(events.statuses.count(u"Closing Connection..."_s), 0);
    mail.Disconnect();
    QCOMPARE(events.statuses.last(), u"Closing Connection..."_s);
    QCOMPARE(peer.messages().size(), 2);
}

void TestSendMail::authentication()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({u"--user"_s, u"alice"_s, u"--password"_s, u"s3cret"_s}), peer);
    const auto send = [&](const QString &password, clsSendMail &mail) {
        AimAt(mail, peer.port());
        mail.SetUseAuthentication(true);
        mail.SetUsername(u"alice"_s);
        mail.SetPassword(password);
        mail.Send();
    };
    {
        clsSendMail mail;
        MailEvents events(mail);
        send(u"s3cret"_s, mail);
        QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
        QVERIFY(events.statuses.contains(u"Sending Login Authentication..."_s));
        QVERIFY(events.statuses.contains(u"Host Login OK!"_s));
        QCOMPARE(SmtpPeer::envelopeOf(peer.messages().first()).value(u"login"_s).toString(), u"alice"_s);
        QCOMPARE(SmtpPeer::envelopeOf(peer.messages().first())
                     .value(u"commands"_s)
                     .toVariant()
                     .toStringList()
                     .mid(0, 2),
                 QStringList({u"EHLO example.com"_s, u"AUTH Login"_s}));
    }
    {
        clsSendMail mail;
        MailEvents events(mail);
        send(u"wrong"_s, mail);
        QCOMPARE(events.events, QStringList{u"SendFailed"_s});
        QVERIFY2(events.failures.first().startsWith(u"535 "_s), qPrintable(events.failures.first()));
        QVERIFY(events.failures.first().endsWith(u"\r\n\r\n"_s));
        QCOMPARE(events.statuses.last(), u"Host Login Failed!"_s);
        QCOMPARE(peer.messages().size(), 1);
    }
    {
        // The login waits for the end of the hello reply: its last line would otherwise come in one
        // piece with the login prompt, which then goes unanswered.
        SmtpPeer slow;
        QORLO_START_PEER(
            slow.start({u"--user"_s, u"alice"_s, u"--password"_s, u"s3cret"_s, u"--slow-hello"_s, u"0.3"_s}),
            slow);
        clsSendMail mail;
        MailEvents events(mail);
        AimAt(mail, slow.port());
        mail.SetUseAuthentication(true);
        mail.SetUsername(u"alice"_s);
        mail.SetPassword(u"s3cret"_s);
        mail.Send();
        QVERIFY2(events.succeeded(), qPrintable(events.statuses.join(u" | "_s)));
        QCOMPARE(slow.messages().size(), 1);
    }
    SmtpPeer plain;
    QORLO_START_PEER(plain.start(), plain);
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, plain.port());
    mail.SetUseAuthentication(true);
    mail.Send();
    QVERIFY(events.succeeded());
    QVERIFY(events.statuses.contains(u"Login Not Supported by Host, Continuing..."_s));
}

void TestSendMail::serverRefusals()
{
    SmtpPeer refusing;
    QORLO_START_PEER(refusing.start({u"--refuse-rcpt"_s}), refusing);
    {
        clsSendMail mail;
        MailEvents events(mail);
        AimAt(mail, refusing.port());
        mail.SetRecipient(u"nobody@example.com"_s);
        mail.Send();
        QCOMPARE(events.events, QStringList{u"SendFailed"_s});
        QCOMPARE(events.failures.first(),
                 u"550 5.1.1 <nobody@example.com>: Recipient address rejected\r\n\r\n"_s);
        QCOMPARE(events.statuses.last(), u"Closing Connection..."_s);
        QVERIFY(refusing.messages().isEmpty());
    }
    SmtpPeer closing;
    QORLO_START_PEER(closing.start({u"--close-in-data"_s}), closing);
    {
        const QString big = writeFile(u"closing.bin"_s, QByteArray(2 * 1024 * 1024, 'c'));
        clsSendMail mail;
        MailEvents events(mail);
        AimAt(mail, closing.port(), 3);
        mail.SetAttachment(big);
        mail.Send();
        QCOMPARE(events.events, QStringList{u"SendFailed"_s});
        // The next attachment chunk finds the connection gone.
        QCOMPARE(events.failures.first(), u"Socket not Open\r\n"_s);
        QVERIFY(closing.messages().isEmpty());
    }
    clsSendMail mail;
    MailEvents events(mail);
    AimAt(mail, FreePort());
    mail.Send();
    QCOMPARE(events.events, QStringList{u"SendFailed"_s});
    QCOMPARE(events.failures.first(), u"Connection refused\r\n"_s);
}

void TestSendMail::silentServerAndMidnight()
{
    SmtpPeer silent;
    QORLO_START_PEER(silent.start({u"--silent"_s}), silent);
    const QString timeout = u"Timeout occurred: The SMTP Host did not respond to the request\r\n"_s;
    {
        clsSendMail mail;
        MailEvents events(mail);
        AimAt(mail, silent.port(), 2);
        QElapsedTimer watch;
        watch.start();
        mail.Send();
        QVERIFY(watch.elapsed() >= 1900);
        QCOMPARE(events.events, QStringList{u"SendFailed"_s});
        QCOMPARE(events.failures.first(), timeout);
        QCOMPARE(events.statuses,
                 QStringList({u"Connecting to SMTP Server (127.0.0.1)..."_s, u"Closing Connection..."_s}));
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
    mail.SetSMTPHost(u"localhost"_s);
    mail.SetSMTPPort(70000);
    QCOMPARE(mail.SMTPPort(), 25);
    mail.SetFrom(u"not an address"_s);
    mail.SetRecipient(u"a@example.com;b@example.test"_s);
    mail.SetAttachment(m_files.filePath(u"missing.pdf"_s));
    mail.SetAsHTML(true);
    mail.SetEncodeType(1);
    mail.Send();
    QCOMPARE(events.events, QStringList{u"SendFailed"_s});
    QCOMPARE(events.failures.first(),
             u"Invalid or Missing SMTP Host Name\r\nInvalid Remote Port\r\n"
             "Missing or Invalid Sender E-mail Address\r\n"
             "Missing or Invalid Recipient E-mail Address\r\n"
             "The file you tried to attach does not exist\r\nSending HTML requires MIME encoding\r\n"_s);
    QVERIFY(events.statuses.isEmpty());
    // A valid value clears its own message; the list was emptied by the failure.
    mail.SetSMTPHost(u"mail.example.com"_s);
    QCOMPARE(mail.SMTPHost(), u"mail.example.com"_s);
    mail.SetFrom(QString());
    mail.SetAsHTML(false);
    mail.SetAttachment(QString());
    mail.SetRecipient(QString());
    mail.SetMaxRecipients(-1);
    mail.SetRecipient(u"a@example.com;b@example.com"_s);
    mail.Send();
    QCOMPARE(events.failures.last(),
             u"Missing or Invalid Sender E-mail Address\r\nToo many recipients\r\n"_s);
    mail.SetRecipient(QString());
    mail.SetFrom(u"a@example.com"_s);
    mail.Send();
    QCOMPARE(events.failures.last(), u"No Recipient E-mail Address Specified\r\n"_s);
}

void TestSendMail::persistentSettings()
{
    const QString file = TWReg::SettingsFolder() + u"/QorloSendMail.ini"_s;
    QFile::remove(file);
    {
        clsSendMail mail;
        mail.SetConnectRetry(7);
        mail.SetUsername(u"nobody"_s);
        QVERIFY(!QFile::exists(file));
        mail.SetPersistentSettings(1);
        mail.SetConnectRetry(30);
        QCOMPARE(mail.ConnectRetry(), 7);
        mail.SetSMTPHostValidation(0);
        mail.SetSMTPHost(u"mail.example.com"_s);
        mail.SetUseAuthentication(true);
        mail.SetPassword(u"never stored"_s);
        mail.SetMaxRecipients(0);
    }
    const QSettings stored(file, QSettings::IniFormat);
    QCOMPARE(stored.value(u"Settings/PersistentSettings"_s).toString(), u"1"_s);
    QVERIFY(!stored.contains(u"Settings/Password"_s));
    clsSendMail reread;
    // Values come back without the range tests of their setters; a stored 0 becomes 100 at construction.
    QCOMPARE(reread.ConnectRetry(), 30);
    QCOMPARE(reread.SMTPHost(), u"mail.example.com"_s);
    QCOMPARE(reread.UseAuthentication(), true);
    QCOMPARE(reread.Username(), QString());
    QCOMPARE(reread.MaxRecipients(), 100);
    QCOMPARE(reread.Password(), QString());
    reread.SetPersistentSettings(0);
    QCOMPARE(QSettings(file, QSettings::IniFormat).value(u"Settings/PersistentSettings"_s).toString(),
             u"1"_s);
    // The other cases start from the table's defaults.
    QFile::remove(file);
}

void TestSendMail::partialPersistentSettings()
{
    const QString file = TWReg::SettingsFolder() + QStringLiteral("/QorloSendMail.ini");
    {
        QSettings stored(file, QSettings::IniFormat);
        stored.setValue(QStringLiteral("Settings/PersistentSettings"), QStringLiteral("1"));
        stored.setValue(QStringLiteral("Settings/RemoteHost"), QStringLiteral("mail.example.com"));
        stored.setValue(QStringLiteral("Settings/MessageTimeout"), QStringLiteral(" "));
    }
    // Keys that are missing, or stored empty, read with the defaults of the table, not as 0.
    const clsSendMail mail;
    QCOMPARE(mail.SMTPHost(), QStringLiteral("mail.example.com"));
    QCOMPARE(mail.ConnectRetry(), 4);
    QCOMPARE(mail.ConnectTimeout(), 40);
    QCOMPARE(mail.EmailAddressValidation(), 1);
    QCOMPARE(mail.EncodeType(), 0);
    QCOMPARE(mail.MessageTimeout(), 60);
    QCOMPARE(mail.SMTPHostValidation(), 3);
    QCOMPARE(mail.SMTPPort(), 25);
    QCOMPARE(mail.UseAuthentication(), false);
    QFile::remove(file);
}

void TestSendMail::hostLookupsAndPing()
{
    clsSendMail mail;
    QString host;
    mail.GetIPAddress(host);
    QCOMPARE(host, mail.GetIPHost());
    QVERIFY(!host.isEmpty());
    host = u" localhost "_s;
    QCOMPARE(mail.GetIPAddress(host), u"127.0.0.1"_s);
    host = u"no-such-host.invalid"_s;
    QCOMPARE(mail.GetIPAddress(host), QString());

    // ICMP needs a ping socket or a raw one; without either, Ping says false.
    const int probe = ::socket(AF_INET, SOCK_RAW, IPPROTO_ICMP);
    const int dgram = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_ICMP);
    const bool icmpAllowed = probe >= 0 || dgram >= 0;
    ::close(probe);
    ::close(dgram);
    QString target = u"127.0.0.1"_s;
    QString time, size;
    bool same = false;
    QCOMPARE(mail.Ping(target, time, size, same), icmpAllowed);
    if (icmpAllowed) {
        QCOMPARE(target, u"127.0.0.1"_s);
        QCOMPARE(size, u"32 bytes"_s);
        QVERIFY(same);
        QCOMPARE(time, QString::number(time.toInt())); // the round-trip time in milliseconds
    }
    target = u"no-such-host.invalid"_s;
    QVERIFY(!mail.Ping(target, time, size, same));
    mail.SetSMTPHostValidation(2);
    mail.SetSMTPHost(u"127.0.0.1"_s);
    QCOMPARE(mail.SMTPHost().isEmpty(), !icmpAllowed);
}

QORLO_TEST_MAIN(TestSendMail)
#include "tst_sendmail.moc"
