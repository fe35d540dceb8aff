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

using namespace SmtpLog;
using namespace TestSupport;

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
    QCOMPARE(SmtpLogBuffer(), QStringLiteral("09:05   Starting new message"));
    StartSmtpLog(QStringLiteral("Sending Test Message"));
    clock.advanceSeconds(60);
    AddSmtpLog(QStringLiteral("Caf\u00e9 \u20ac"));
    QCOMPARE(SmtpLogBuffer(), QStringLiteral("09:05   Sending Test Message\r\n\r\n09:06   Caf\u00e9 \u20ac"));
    FlushSmtpLog(dir.path());
    QCOMPARE(ReadFile(dir.filePath(QStringLiteral("SMTP.Log"))),
             QByteArray("09:05   Sending Test Message\r\n\r\n09:06   Caf\xe9 \x80\r\n"));
    // Each flush replaces the file: it tells the last message only.
    StartSmtpLog(QStringLiteral("Next"));
    FlushSmtpLog(dir.path());
    QCOMPARE(ReadFile(dir.filePath(QStringLiteral("SMTP.Log"))), QByteArray("09:06   Next\r\n\r\n"));
}

void TestSmtpMail::textBodyAndMissingFiles()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    MailApp app(peer.port());
    const QString text = app.writeFile(QStringLiteral("report.txt"), "Region|Amount\r\nNorth|10\r\n");
    const QString sheet = app.writeFile(QStringLiteral("figures.xls"), QByteArray(300, 'x'));
    StartSmtpLog(QStringLiteral("Send Report: Sales"));

    frmSMTPSendMail sender(app.schedule, app.log);
    sender.StartMail();
    sender.MailServer = app.schedule.SMTP_Server;
    sender.MailFrom = QStringLiteral("desk@example.com");
    sender.MailTo = QStringLiteral("boss@example.com");
    sender.MailSubject = QStringLiteral("Figures");
    sender.AppendTextMsg(QStringLiteral("Hello"));
    sender.AppendTextFile(text);
    sender.AppendTextFile(QString());
    sender.AppendTextFile(app.path(QStringLiteral("gone.txt")));
    sender.AppendFile(QString());
    sender.AppendFile(app.path(QStringLiteral("gone.pdf")));
    sender.AppendFile(sheet);
    sender.AppendFile(text);
    QCOMPARE(sender.MailBody, QStringLiteral("\r\nHello\r\nRegion|Amount\r\nNorth|10"));
    QCOMPARE(sender.poSendMail()->Attachment(), sheet + QStringLiteral(";") + text);
    sender.SendMail();
    QVERIFY(!sender.poSendMail());
    QVERIFY(sender.lStatus.startsWith(QStringLiteral("\r\nConnecting to SMTP Server (127.0.0.1)...\r\n")));
    QVERIFY(sender.lStatus.endsWith(QStringLiteral("\r\nTransmission Complete...\r\nClosing Connection...")));
    sender.CloseForm();

    QCOMPARE(peer.messages().size(), 1);
    const QJsonObject parsed = ParseMessage(peer.messages().first());
    QCOMPARE(PartNames(parsed),
             QStringList({QString(), QStringLiteral("figures.xls"), QStringLiteral("report.txt")}));
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("text")).toString(),
             QStringLiteral("\nHello\nRegion|Amount\nNorth|10\n"));
    const QStringList log = app.smtpLog().split(QStringLiteral("\r\n"));
    const auto line = [](const QString &entry) -> QString {
        return QStringLiteral("^\\d\\d:\\d\\d   ") + QRegularExpression::escape(entry) + QLatin1Char('$');
    };
    for (const QString &expected :
         QStringList{QStringLiteral("Send Report: Sales"),
                     QStringLiteral("Request to load Text File - but no file specified"),
                     QStringLiteral("Cannot Find Text File: ") + app.path(QStringLiteral("gone.txt")),
                     QStringLiteral("Request to load File-but no file specified"),
                     QStringLiteral("Cannot Find File: ") + app.path(QStringLiteral("gone.pdf")),
                     QStringLiteral("Sending Attachment, figures.xls..."),
                     QStringLiteral("Message sent to boss@example.com")})
        QVERIFY2(log.indexOf(QRegularExpression(line(expected))) >= 0, qPrintable(expected));
    QVERIFY(app.logEntries().isEmpty());
}

void TestSmtpMail::htmlFolderWithImages()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    MailApp app(peer.port());
    QDir(app.appPath).mkdir(QStringLiteral("SMTP"));
    const QString page = app.writeFile(
        QStringLiteral("SMTP/sales.html"),
        "<html><body>\r\n<img src=\"logo.png\" alt=\"logo\">\r\n<p>Total 42</p>\r\n</body></html>\r\n");
    app.writeFile(QStringLiteral("SMTP/logo.png"),
                  QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(100, '\1'));
    app.writeFile(QStringLiteral("SMTP/sales2.html"), "<html>page two</html>\r\n");

    frmSMTPSendMail sender(app.schedule, app.log);
    sender.StartMail();
    sender.MailServer = app.schedule.SMTP_Server;
    sender.MailFrom = app.schedule.SMTP_From;
    sender.MailTo = QStringLiteral("boss@example.com");
    sender.MailFormat = QStringLiteral("HTML");
    sender.AppendHTMLFolder(QString(), page);
    sender.AppendHTMLFolder(app.path(QStringLiteral("nowhere/x.html")), page);
    sender.AppendHTMLFolder(page, page);
    QCOMPARE(sender.poSendMail()->Attachment(), app.path(QStringLiteral("SMTP/logo.png")) + QLatin1Char(';') +
                                                    app.path(QStringLiteral("SMTP/sales2.html")));
    sender.SendMail();
    sender.CloseForm();

    QCOMPARE(peer.messages().size(), 1);
    const QJsonObject parsed = ParseMessage(peer.messages().first());
    QCOMPARE(parsed.value(QStringLiteral("content_type")).toString(), QStringLiteral("multipart/related"));
    QCOMPARE(PartNames(parsed),
             QStringList({QString(), QStringLiteral("logo.png"), QStringLiteral("sales2.html")}));
    const QJsonObject body = PartOf(parsed, 0);
    QCOMPARE(body.value(QStringLiteral("content_type")).toString(), QStringLiteral("text/html"));
    QVERIFY(body.value(QStringLiteral("text"))
                .toString()
                .contains(QStringLiteral("<img src=\"cid:logo.png\" alt=\"logo\">")));
    QCOMPARE(PartOf(parsed, 1).value(QStringLiteral("content_id")).toString(), QStringLiteral("<logo.png>"));
    QCOMPARE(PartOf(parsed, 1).value(QStringLiteral("size")).toInt(), 108);
    const QString log = app.smtpLog();
    QVERIFY(log.contains(QStringLiteral("Request to load HTML Folder - but no file specified")));
    QVERIFY(log.contains(QStringLiteral("Cannot Find HTML Folder: ") +
                         app.path(QStringLiteral("nowhere/x.html"))));
    QVERIFY(log.contains(QStringLiteral("Sending Embedded File, logo.png...")));
    QVERIFY(log.contains(QStringLiteral("Sending Attachment, sales2.html...")));

    // Without a main file every file of the folder is attached, replacing earlier attachments.
    sender.StartMail();
    sender.AppendFile(app.path(QStringLiteral("SMTP/logo.png")));
    sender.AppendHTMLFolder(page, QString());
    QCOMPARE(sender.poSendMail()->Attachment().split(QLatin1Char(';')).size(), 3);
    QVERIFY(sender.MailBody.isEmpty());
    sender.CloseForm();
}

void TestSmtpMail::scheduleSettingsAndExpansion()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start({QStringLiteral("--user"), QStringLiteral("mailer"),
                                   QStringLiteral("--password"), QStringLiteral("s3cret")}),
                       peer.error());
    MailApp app(peer.port());
    app.schedule.SMTPAuthentication = QStringLiteral("Yes");
    app.schedule.SMTPUser = QStringLiteral("mailer");
    app.schedule.SMTPPassword = QStringLiteral("s3cret");
    QStringList expanded;
    frmSMTPSendMail sender(app.schedule, app.log, [&expanded](const QString &text) -> QString {
        expanded.append(text);
        return text + QStringLiteral(" [x]");
    });
    sender.StartMail();
    sender.MailServer = app.schedule.SMTP_Server;
    sender.MailFrom = app.schedule.SMTP_From;
    sender.MailTo = QStringLiteral("boss@example.com");
    sender.MailCc = QStringLiteral("cc1@example.com;cc2@example.com");
    sender.MailBcc = QStringLiteral("hidden@example.com");
    sender.MailSubject = QStringLiteral("Week");
    sender.MailBody = QStringLiteral("Body");
    sender.SendMail();
    sender.CloseForm();

    QCOMPARE(expanded, QStringList({QStringLiteral("Week"), QStringLiteral("Body")}));
    QCOMPARE(peer.messages().size(), 1);
    const QString message = peer.messages().first();
    QCOMPARE(SmtpPeer::envelopeOf(message).value(QStringLiteral("login")).toString(),
             QStringLiteral("mailer"));
    QCOMPARE(Recipients(message),
             QStringList({QStringLiteral("boss@example.com"), QStringLiteral("cc1@example.com"),
                          QStringLiteral("cc2@example.com"), QStringLiteral("hidden@example.com")}));
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(QStringLiteral("subject")).toString(), QStringLiteral("Week [x]"));
    QCOMPARE(parsed.value(QStringLiteral("cc")).toArray().size(), 2);
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("content_type")).toString(),
             QStringLiteral("text/plain"));
    QCOMPARE(PartOf(parsed, 0).value(QStringLiteral("text")).toString(), QStringLiteral("Body [x]\n"));

    // Authentication only when the setting is exactly "Yes". The client keeps its switch among its
    // persistent settings, so the test puts it back first.
    TWReg::SaveSetting(QStringLiteral("Settings"), QStringLiteral("UseAuthentication"),
                       QStringLiteral("False"), QStringLiteral("QorloSendMail"));
    app.schedule.SMTPAuthentication = QStringLiteral("yes");
    sender.StartMail();
    sender.MailServer = app.schedule.SMTP_Server;
    sender.MailFrom = app.schedule.SMTP_From;
    sender.MailTo = QStringLiteral("boss@example.com");
    sender.SendMail();
    QCOMPARE(peer.messages().size(), 2);
    QVERIFY(SmtpPeer::envelopeOf(peer.messages().last()).value(QStringLiteral("login")).isNull());
}

void TestSmtpMail::failedSendIsLogged()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start({QStringLiteral("--refuse-rcpt")}), peer.error());
    MailApp app(peer.port());
    frmSMTPSendMail sender(app.schedule, app.log);
    sender.StartMail();
    sender.MailServer = app.schedule.SMTP_Server;
    sender.MailFrom = app.schedule.SMTP_From;
    sender.MailTo = QStringLiteral("nobody@example.com");
    sender.SendMail();
    sender.CloseForm();

    QVERIFY(peer.messages().isEmpty());
    const QString failure =
        QStringLiteral("550 5.1.1 <nobody@example.com>: Recipient address rejected\r\n\r\n");
    QVERIFY2(app.smtpLog().contains(QStringLiteral("Send failed to nobody@example.com  Failure=") + failure +
                                    QStringLiteral("\r\n")),
             qPrintable(app.smtpLog()));
    QCOMPARE(app.logEntries(), QStringList{QStringLiteral("7|Sales: Error Sending Email (") + failure +
                                           QStringLiteral(")|02-Mar-2026 06:00")});

    // A refused address stops the message before any connection, and is logged the same way.
    sender.StartMail();
    sender.MailServer = app.schedule.SMTP_Server;
    sender.MailFrom = app.schedule.SMTP_From;
    sender.MailTo = QStringLiteral("not an address");
    sender.SendMail();
    QCOMPARE(app.logEntries().size(), 2);
    QVERIFY(app.logEntries().last().contains(
        QStringLiteral("(Missing or Invalid Recipient E-mail Address\r\n)")));
}

QORLO_TEST_MAIN(TestSmtpMail)
#include "tst_smtpmail.moc"
