#include "Files.h"
#include "SmtpPeer.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/Ansi.h"

#include "scheduler/QorloGlobals.h"
#include "ui/frmSendMail.h"

#include <QPlainTextEdit>
#include <QPushButton>

using namespace Qt::Literals::StringLiterals;

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
    QORLO_START_PEER(peer.start({u"--user"_s, u"clerk"_s, u"--password"_s, u"s3cret"_s}), peer);
    GlobalsFixture f;
    TestPrompter &prompter = f.prompter;
    clsSchedule &s = f.schedule;
    s.SMTP_Server = u"127.0.0.1"_s;
    s.SMTP_Port = peer.port();
    s.SMTP_From = u"scheduler@example.com"_s;
    s.SMTPAuthentication = u"Yes"_s;
    s.SMTPUser = u"clerk"_s;
    s.SMTPPassword = u"s3cret"_s;
    frmSendMail window(f.globals);
    auto *text = Child<QPlainTextEdit>(&window, "txtSend");
    auto *send = Child<QPushButton>(&window, "cmdSend");
    const QString smtpLog = f.path(u"SMTP.Log"_s);

    // An empty message is refused and closes the window.
    window.open();
    send->click();
    QCOMPARE(prompter.take(), QStringList{u"Send Help message: No Message to send"_s});
    QVERIFY(!window.isVisible());
    QVERIFY(peer.messages().isEmpty());
    QVERIFY(!QFile::exists(smtpLog));

    window.open();
    text->setPlainText(u"The sales report stops at night.\nPlease help."_s);
    send->click();
    QCOMPARE(prompter.take(), QStringList{u"SMTP Message: Message Sent"_s});
    QVERIFY(!window.isVisible());
    QCOMPARE(peer.messages().size(), 1);
    const QString message = peer.messages().first();
    QCOMPARE(Recipients(message), QStringList{QStringLiteral(QORLO_SUPPORT_MAILBOX)});
    const QJsonObject envelope = SmtpPeer::envelopeOf(message);
    QCOMPARE(envelope.value(u"mail_from"_s).toString(), u"scheduler@example.com"_s);
    QCOMPARE(envelope.value(u"login"_s).toString(), u"clerk"_s);
    const QByteArray raw = ReadFile(message);
    QVERIFY2(raw.contains("Subject: QorloMANAGER help request \r\n"), raw.constData());
    QVERIFY2(raw.contains("The sales report stops at night.") && raw.contains("Please help."),
             raw.constData());
    const QString log = Ansi::Decode(ReadFile(smtpLog));
    QVERIFY2(log.contains(u"Sending Help Message"_s), qPrintable(log));
    QVERIFY2(log.contains(QStringLiteral("Message sent to " QORLO_SUPPORT_MAILBOX)), qPrintable(log));
}

QORLO_TEST_MAIN(TestFrmSendMail)
#include "tst_frmsendmail.moc"
