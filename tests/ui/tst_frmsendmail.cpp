#include "Files.h"
#include "SmtpPeer.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/Ansi.h"

#include "scheduler/QorloGlobals.h"
#include "ui/frmSendMail.h"

#include <QPlainTextEdit>
#include <QPushButton>

using namespace TestSupport;

class TestFrmSendMail : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { ShortMailTimeouts(); }
    void helpMessageGoesToSupport();
};

void TestFrmSendMail::helpMessageGoesToSupport()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start({QStringLiteral("--user"), QStringLiteral("clerk"),
                                   QStringLiteral("--password"), QStringLiteral("s3cret")}),
                       peer.error());
    GlobalsFixture f;
    TestPrompter &prompter = f.prompter;
    clsSchedule &s = f.schedule;
    s.SMTP_Server = QStringLiteral("127.0.0.1");
    s.SMTP_Port = peer.port();
    s.SMTP_From = QStringLiteral("scheduler@example.com");
    s.SMTPAuthentication = QStringLiteral("Yes");
    s.SMTPUser = QStringLiteral("clerk");
    s.SMTPPassword = QStringLiteral("s3cret");
    frmSendMail window(f.globals);
    auto *text = Child<QPlainTextEdit>(&window, "txtSend");
    auto *send = Child<QPushButton>(&window, "cmdSend");
    const QString smtpLog = f.path(QStringLiteral("SMTP.Log"));

    // An empty message is refused and closes the window.
    window.open();
    send->click();
    QCOMPARE(prompter.take(), QStringList{QStringLiteral("Send Help message: No Message to send")});
    QVERIFY(!window.isVisible());
    QVERIFY(peer.messages().isEmpty());
    QVERIFY(!QFile::exists(smtpLog));

    window.open();
    text->setPlainText(QStringLiteral("The sales report stops at night.\nPlease help."));
    send->click();
    QCOMPARE(prompter.take(), QStringList{QStringLiteral("SMTP Message: Message Sent")});
    QVERIFY(!window.isVisible());
    QCOMPARE(peer.messages().size(), 1);
    const QString message = peer.messages().first();
    QCOMPARE(Recipients(message), QStringList{QStringLiteral(QORLO_SUPPORT_MAILBOX)});
    const QJsonObject envelope = SmtpPeer::envelopeOf(message);
    QCOMPARE(envelope.value(QStringLiteral("mail_from")).toString(), QStringLiteral("scheduler@example.com"));
    QCOMPARE(envelope.value(QStringLiteral("login")).toString(), QStringLiteral("clerk"));
    const QByteArray raw = ReadFile(message);
    QVERIFY2(raw.contains("Subject: QorloMANAGER help request \r\n"), raw.constData());
    QVERIFY2(raw.contains("The sales report stops at night.") && raw.contains("Please help."),
             raw.constData());
    const QString log = Ansi::Decode(ReadFile(smtpLog));
    QVERIFY2(log.contains(QStringLiteral("Sending Help Message")), qPrintable(log));
    QVERIFY2(log.contains(QStringLiteral("Message sent to " QORLO_SUPPORT_MAILBOX)), qPrintable(log));
}

QORLO_TEST_MAIN(TestFrmSendMail)
#include "tst_frmsendmail.moc"
