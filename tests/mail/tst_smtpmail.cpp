#include "AppObjects.h"
#include "SmtpPeer.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/TWReg.h"
#include "mail/SmtpLog.h"
#include "mail/frmSMTPSendMail.h"

#include <QDir>
#include <QJsonArray>
#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

using namespace SmtpLog;
using namespace TestSupport;

namespace {

// The server of MailApp's schedule: the peer, without authentication.
SmtpSettings PeerServer(quint16 port)
{
    SmtpSettings settings;
    settings.server = u"127.0.0.1"_s;
    settings.from = u"scheduler@example.com"_s;
    settings.port = port;
    return settings;
}

// A new message from the schedule's sender to `to`.
void StartMessage(frmSMTPSendMail &sender, const clsSchedule &schedule, const QString &to)
{
    sender.StartMail();
    sender.MailServer = schedule.SMTP_Server;
    sender.MailFrom = schedule.SMTP_From;
    sender.MailTo = to;
}

} // namespace

class TestSmtpMail : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { ShortMailTimeouts(); }
    void smtpLogBuffer();
    void textBodyAndMissingFiles();
    void htmlFolderWithImages();
    void scheduleSettingsAndExpansion();
    void failedSendIsLogged();
};

void TestSmtpMail::smtpLogBuffer()
{
    QTemporaryDir dir;
    FixedClock clock(QDateTime(QDate(2026, 3, 2), QTime(9, 5, 30)));
    const ClockGuard guard(clock);
    StartSmtpLog(QString());
    QCOMPARE(SmtpLogBuffer(), u"09:05   Starting new message"_s);
    StartSmtpLog(u"Sending Test Message"_s);
    clock.advanceSeconds(60);
    AddSmtpLog(u"Caf\u00e9 \u20ac"_s);
    QCOMPARE(SmtpLogBuffer(), u"09:05   Sending Test Message\r\n\r\n09:06   Caf\u00e9 \u20ac"_s);
    FlushSmtpLog(dir.path());
    QCOMPARE(ReadFile(dir.filePath(u"SMTP.Log"_s)),
             QByteArray("09:05   Sending Test Message\r\n\r\n09:06   Caf\xe9 \x80\r\n"));
    // Each flush replaces the file: it tells the last message only.
    StartSmtpLog(u"Next"_s);
    FlushSmtpLog(dir.path());
    QCOMPARE(ReadFile(dir.filePath(u"SMTP.Log"_s)), QByteArray("09:06   Next\r\n\r\n"));
}

void TestSmtpMail::textBodyAndMissingFiles()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    MailApp app(peer.port());
    const QString text = app.writeFile(u"report.txt"_s, "Region|Amount\r\nNorth|10\r\n");
    const QString sheet = app.writeFile(u"figures.xls"_s, QByteArray(300, 'x'));
    StartSmtpLog(u"Send Report: Sales"_s);

    frmSMTPSendMail sender(PeerServer(peer.port()), app.appPath);
    StartMessage(sender, app.schedule, u"boss@example.com"_s);
    sender.MailFrom = u"desk@example.com"_s;
    sender.MailSubject = u"Figures"_s;
    sender.AppendTextMsg(u"Hello"_s);
    sender.AppendTextFile(text);
    sender.AppendTextFile(QString());
    sender.AppendTextFile(app.path(u"gone.txt"_s));
    sender.AppendFile(QString());
    sender.AppendFile(app.path(u"gone.pdf"_s));
    sender.AppendFile(sheet);
    sender.AppendFile(text);
    QCOMPARE(sender.MailBody, u"\r\nHello\r\nRegion|Amount\r\nNorth|10"_s);
    QCOMPARE(sender.poSendMail()->Attachment(), sheet + u";"_s + text);
    sender.SendMail();
    QVERIFY(!sender.poSendMail());
    QVERIFY(sender.lStatus.startsWith(u"\r\nConnecting to SMTP Server (127.0.0.1)...\r\n"_s));
    QVERIFY(sender.lStatus.endsWith(u"\r\nTransmission Complete...\r\nClosing Connection..."_s));
    sender.CloseForm();

    QCOMPARE(peer.messages().size(), 1);
    const QJsonObject parsed = ParseMessage(peer.messages().first());
    QCOMPARE(PartNames(parsed), QStringList({QString(), u"figures.xls"_s, u"report.txt"_s}));
    QCOMPARE(PartOf(parsed, 0).value(u"text"_s).toString(), u"\nHello\nRegion|Amount\nNorth|10\n"_s);
    const QStringList log = app.smtpLog().split(u"\r\n"_s);
    const auto line = [](const QString &entry) -> QString {
        return u"^\\d\\d:\\d\\d   "_s + QRegularExpression::escape(entry) + u'$';
    };
    for (const QString &expected :
         QStringList{u"Send Report: Sales"_s, u"Request to load Text File - but no file specified"_s,
                     u"Cannot Find Text File: "_s + app.path(u"gone.txt"_s),
                     u"Request to load File-but no file specified"_s,
                     u"Cannot Find File: "_s + app.path(u"gone.pdf"_s),
                     u"Sending Attachment, figures.xls..."_s, u"Message sent to boss@example.com"_s})
        QVERIFY2(log.indexOf(QRegularExpression(line(expected))) >= 0, qPrintable(expected));
}

void TestSmtpMail::htmlFolderWithImages()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    MailApp app(peer.port());
    QDir(app.appPath).mkdir(u"SMTP"_s);
    const QString page = app.writeFile(
        u"SMTP/sales.html"_s,
        "<html><body>\r\n<img src=\"logo.png\" alt=\"logo\">\r\n<p>Total 42</p>\r\n</body></html>\r\n");
    app.writeFile(u"SMTP/logo.png"_s, QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(100, '\1'));
    app.writeFile(u"SMTP/sales2.html"_s, "<html>page two</html>\r\n");

    frmSMTPSendMail sender(PeerServer(peer.port()), app.appPath);
    StartMessage(sender, app.schedule, u"boss@example.com"_s);
    sender.MailFormat = u"HTML"_s;
    sender.AppendHTMLFolder(QString(), page);
    sender.AppendHTMLFolder(app.path(u"nowhere/x.html"_s), page);
    sender.AppendHTMLFolder(page, page);
    QCOMPARE(sender.poSendMail()->Attachment(),
             app.path(u"SMTP/logo.png"_s) + u';' + app.path(u"SMTP/sales2.html"_s));
    sender.SendMail();
    sender.CloseForm();

    QCOMPARE(peer.messages().size(), 1);
    const QJsonObject parsed = ParseMessage(peer.messages().first());
    QCOMPARE(parsed.value(u"content_type"_s).toString(), u"multipart/related"_s);
    QCOMPARE(PartNames(parsed), QStringList({QString(), u"logo.png"_s, u"sales2.html"_s}));
    const QJsonObject body = PartOf(parsed, 0);
    QCOMPARE(body.value(u"content_type"_s).toString(), u"text/html"_s);
    QVERIFY(body.value(u"text"_s).toString().contains(u"<img src=\"cid:logo.png\" alt=\"logo\">"_s));
    QCOMPARE(PartOf(parsed, 1).value(u"content_id"_s).toString(), u"<logo.png>"_s);
    QCOMPARE(PartOf(parsed, 1).value(u"size"_s).toInt(), 108);
    const QString log = app.smtpLog();
    QVERIFY(log.contains(u"Request to load HTML Folder - but no file specified"_s));
    QVERIFY(log.contains(u"Cannot Find HTML Folder: "_s + app.path(u"nowhere/x.html"_s)));
    QVERIFY(log.contains(u"Sending Embedded File, logo.png..."_s));
    QVERIFY(log.contains(u"Sending Attachment, sales2.html..."_s));

    // Without a main file every file of the folder is attached, replacing earlier attachments.
    sender.StartMail();
    sender.AppendFile(app.path(u"SMTP/logo.png"_s));
    sender.AppendHTMLFolder(page, QString());
    QCOMPARE(sender.poSendMail()->Attachment().split(u';').size(), 3);
    QVERIFY(sender.MailBody.isEmpty());
    sender.CloseForm();
}

void TestSmtpMail::scheduleSettingsAndExpansion()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({u"--user"_s, u"mailer"_s, u"--password"_s, u"s3cret"_s}), peer);
    MailApp app(peer.port());
    SmtpSettings settings = PeerServer(peer.port());
    settings.authentication = u"Yes"_s;
    settings.user = u"mailer"_s;
    settings.password = u"s3cret"_s;
    QStringList expanded;
    frmSMTPSendMail sender(settings, app.appPath, {}, [&expanded](const QString &text) -> QString {
        expanded.append(text);
        return text + u" [x]"_s;
    });
    StartMessage(sender, app.schedule, u"boss@example.com"_s);
    sender.MailCc = u"cc1@example.com;cc2@example.com"_s;
    sender.MailBcc = u"hidden@example.com"_s;
    sender.MailSubject = u"Week"_s;
    sender.MailBody = u"Body"_s;
    sender.SendMail();
    sender.CloseForm();

    QCOMPARE(expanded, QStringList({u"Week"_s, u"Body"_s}));
    QCOMPARE(peer.messages().size(), 1);
    const QString message = peer.messages().first();
    QCOMPARE(SmtpPeer::envelopeOf(message).value(u"login"_s).toString(), u"mailer"_s);
    QCOMPARE(Recipients(message), QStringList({u"boss@example.com"_s, u"cc1@example.com"_s,
                                               u"cc2@example.com"_s, u"hidden@example.com"_s}));
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(u"subject"_s).toString(), u"Week [x]"_s);
    QCOMPARE(parsed.value(u"cc"_s).toArray().size(), 2);
    QCOMPARE(PartOf(parsed, 0).value(u"content_type"_s).toString(), u"text/plain"_s);
    QCOMPARE(PartOf(parsed, 0).value(u"text"_s).toString(), u"Body [x]\n"_s);

    // Authentication only when the setting is exactly "Yes". The client keeps its switch among its
    // persistent settings, so the test puts it back first.
    TWReg::SaveSetting(u"Settings"_s, u"UseAuthentication"_s, u"False"_s, u"QorloSendMail"_s);
    settings.authentication = u"yes"_s;
    frmSMTPSendMail lowerCase(settings, app.appPath);
    StartMessage(lowerCase, app.schedule, u"boss@example.com"_s);
    lowerCase.SendMail();
    QCOMPARE(peer.messages().size(), 2);
    QVERIFY(SmtpPeer::envelopeOf(peer.messages().last()).value(u"login"_s).isNull());
}

void TestSmtpMail::failedSendIsLogged()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({u"--refuse-rcpt"_s}), peer);
    MailApp app(peer.port());
    QStringList logged;
    frmSMTPSendMail sender(PeerServer(peer.port()), app.appPath,
                           [&logged](const QString &explanation) { logged.append(explanation); });
    StartMessage(sender, app.schedule, u"nobody@example.com"_s);
    sender.SendMail();
    sender.CloseForm();

    QVERIFY(peer.messages().isEmpty());
    const QString failure = u"550 5.1.1 <nobody@example.com>: Recipient address rejected\r\n\r\n"_s;
    QVERIFY2(app.smtpLog().contains(u"Send failed to nobody@example.com  Failure="_s + failure + u"\r\n"_s),
             qPrintable(app.smtpLog()));
    QCOMPARE(logged, QStringList{failure});

    // A refused address stops the message before any connection, and is logged the same way.
    StartMessage(sender, app.schedule, u"not an address"_s);
    sender.SendMail();
    QCOMPARE(logged.size(), 2);
    QCOMPARE(logged.last(), u"Missing or Invalid Recipient E-mail Address\r\n"_s);
}

QORLO_TEST_MAIN(TestSmtpMail)
#include "tst_smtpmail.moc"
