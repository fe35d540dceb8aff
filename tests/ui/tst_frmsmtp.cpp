// The mail settings window and the help message window, each sending through the SMTP peer.
#include "Files.h"
#include "SmtpPeer.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/Ansi.h"
#include "ui/frmSMTP.h"
#include "ui/frmSendMail.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// An application folder with its global objects and mail settings, and the mail settings window over them.
struct SmtpFixture : GlobalsFixture
{
    SmtpFixture()
    {
        clsSchedule &s = globals.Schedule;
        s.SMTP_Server = u"127.0.0.1"_s;
        s.SMTP_Port = 2525;
        s.SMTP_From = u"scheduler@example.com"_s;
        s.TestMessageTo = u"boss@example.com"_s;
        s.SMTP_StdMessage = u"Hello\nteam"_s;
        s.SMTPDelay = 7;
        s.SMTPAuthentication = u"Yes"_s;
        s.SMTPUser = u"clerk"_s;
        s.SMTPPassword = u"s3cret"_s;
    }
    template <class Widget = QLineEdit> Widget *field(const char *name)
    {
        return Child<Widget>(window.get(), name);
    }
    void setText(const char *name, const QString &text) { field(name)->setText(text); }
    void click(const char *name) { Click(window.get(), name); }
    QString smtpLog() const { return Ansi::Decode(ReadFile(path(u"SMTP.Log"_s))); }
    void open()
    {
        window = std::make_unique<frmSMTP>(globals);
        window->open();
    }

    std::unique_ptr<frmSMTP> window;
};

} // namespace

class TestFrmSMTP : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { ShortMailTimeouts(); }
    void fieldsChecksAndSave();
    void testMessageReachesTheServer();
    void failedTestMessage();
    void helpMessageGoesToSupport();
};

void TestFrmSMTP::fieldsChecksAndSave()
{
    SmtpFixture f;
    f.open();
    const QList<std::pair<const char *, const char *>> loaded = {
        {"txtServer", "127.0.0.1"},        {"txtPort", "2525"}, {"txtFrom", "scheduler@example.com"},
        {"txtTestTo", "boss@example.com"}, {"txtDelay", "7"},   {"txtUser", "clerk"},
        {"txtPassword", "s3cret"}};
    for (const auto &[name, value] : loaded)
        QCOMPARE(f.field(name)->text(), QLatin1String(value));
    auto *message = f.field<QPlainTextEdit>("txtMessage");
    QCOMPARE(message->toPlainText(), u"Hello\nteam"_s);
    // Tab leaves the message for the next field instead of going into the text.
    QApplication::setActiveWindow(f.window.get());
    message->setFocus();
    QTest::keyClick(message, Qt::Key_Tab);
    QCOMPARE(message->toPlainText(), u"Hello\nteam"_s);
    QCOMPARE(QApplication::focusWidget(), f.field("txtDelay"));
    auto *secure = f.field<QCheckBox>("chkSecure");
    auto *frame = f.field<QGroupBox>("frSecure");
    QVERIFY(secure->isChecked());
    QVERIFY(frame->isEnabled());
    secure->setChecked(false);
    QVERIFY(!frame->isEnabled());

    // The checks, in order, with the focus on the field that failed; the test address only for the test.
    QApplication::setActiveWindow(f.window.get());
    f.setText("txtServer", QString());
    f.setText("txtFrom", QString());
    f.setText("txtTestTo", QString());
    f.click("cmdTest");
    QCOMPARE(f.prompter.take(), QStringList{u"SMTP Settings: Please enter a server name"_s});
    QCOMPARE(QApplication::focusWidget(), f.field("txtServer"));
    f.setText("txtServer", u"mail.example.com"_s);
    f.click("cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"SMTP Settings: Please enter your email address"_s});
    QCOMPARE(QApplication::focusWidget(), f.field("txtFrom"));
    f.setText("txtFrom", u"desk@example.com"_s);
    f.click("cmdTest");
    QCOMPARE(f.prompter.take(),
             QStringList{u"SMTP Settings: Please enter a destination address for the test message"_s});
    QCOMPARE(QApplication::focusWidget(), f.field("txtTestTo"));
    QVERIFY(f.window->isVisible());
    QVERIFY(!QFile::exists(f.dir.filePath(u"Qorlo.XML"_s)));

    // Save stores the fields, keeps the old delay when the new one is no number, and closes.
    f.setText("txtPort", u"587"_s);
    f.setText("txtDelay", QString());
    f.setText("txtUser", u"other"_s);
    auto *encryption = f.field<QComboBox>("cmbEncryption");
    QCOMPARE(encryption->currentText(), u"None"_s);
    encryption->setCurrentText(u"STARTTLS"_s);
    f.click("cmdSave");
    QVERIFY(!f.window->isVisible());
    QVERIFY(f.prompter.take().isEmpty());
    const auto saved = f.saved();
    QCOMPARE(saved->SMTP_Server, u"mail.example.com"_s);
    QCOMPARE(saved->TestMessageTo, QString());
    QCOMPARE(saved->SMTP_Port, 587);
    QCOMPARE(saved->SMTPDelay, qint16(7));
    QCOMPARE(saved->SMTPAuthentication, u"No"_s);
    QCOMPARE(saved->SMTPUser, u"other"_s);
    QCOMPARE(saved->SMTP_Encryption, u"STARTTLS"_s);

    // A port that is no number shows the conversion error; the window stays, the program goes on, and
    // nothing of the window is stored, not even the delay typed beside it.
    f.open();
    f.setText("txtDelay", u"3"_s);
    f.setText("txtPort", u"smtp"_s);
    f.click("cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: Run-time error '13': Type mismatch"_s});
    QVERIFY(f.prompter.fatal.isEmpty());
    QVERIFY(f.window->isVisible());
    QCOMPARE(f.globals.Schedule.SMTPDelay, qint16(7));
    QCOMPARE(f.saved()->SMTPDelay, qint16(7));
}

void TestFrmSMTP::testMessageReachesTheServer()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({u"--user"_s, u"clerk"_s, u"--password"_s, u"s3cret"_s}), peer);
    SmtpFixture f;
    f.open();
    // The values in the fields are tested, saved or not.
    f.setText("txtPort", QString::number(peer.port()));
    f.setText("txtTestTo", u"tester@example.com"_s);
    f.click("cmdTest");
    QCOMPARE(f.prompter.take(), QStringList{u"SMTP Message: Message Sent"_s});
    QCOMPARE(peer.messages().size(), 1);
    const QString message = peer.messages().first();
    QCOMPARE(Recipients(message), QStringList{u"tester@example.com"_s});
    const QJsonObject envelope = SmtpPeer::envelopeOf(message);
    QCOMPARE(envelope.value(u"mail_from"_s).toString(), u"scheduler@example.com"_s);
    QCOMPARE(envelope.value(u"login"_s).toString(), u"clerk"_s);
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(u"subject"_s).toString(), u"Test message from QorloMANAGER"_s);
    QVERIFY(ReadFile(message).contains("Here is a test message from QorloMANAGER"));
    const QString log = f.smtpLog();
    QVERIFY2(log.contains(u"Sending Test Message"_s), qPrintable(log));
    QVERIFY2(log.contains(u"Message sent to tester@example.com"_s), qPrintable(log));
    QVERIFY(f.window->isVisible());
    QVERIFY(!QFile::exists(f.dir.filePath(u"Qorlo.XML"_s)));

    // The encryption chosen in the window is the one tried: the plain server cannot speak TLS.
    f.field<QComboBox>("cmbEncryption")->setCurrentText(u"TLS"_s);
    f.click("cmdTest");
    QVERIFY(f.prompter.take().value(0).startsWith(u"SMTP Message: Send Failed"_s));
    QCOMPARE(peer.messages().size(), 1);
}

void TestFrmSMTP::failedTestMessage()
{
    SmtpFixture f;
    f.open();
    // Nothing listens on this port.
    f.setText("txtPort", QString::number(FreePort()));
    f.field<QCheckBox>("chkSecure")->setChecked(false);
    f.click("cmdTest");
    const QStringList boxes = f.prompter.take();
    QCOMPARE(boxes.size(), 1);
    QVERIFY2(boxes.first().startsWith(u"SMTP Message: Send Failed\r\n"_s), qPrintable(boxes.first()));
    const QString reason = boxes.first().mid(u"SMTP Message: Send Failed\r\n"_s.size());
    QVERIFY(!reason.isEmpty());
    QVERIFY2(f.smtpLog().contains(u"Send Failed - "_s + reason), qPrintable(f.smtpLog()));
    QCOMPARE(f.globals.Schedule.SMTPAuthentication, u"Yes"_s);
}

void TestFrmSMTP::helpMessageGoesToSupport()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({u"--user"_s, u"clerk"_s, u"--password"_s, u"s3cret"_s}), peer);
    SmtpFixture f;
    f.globals.Schedule.SMTP_Port = peer.port();
    frmSendMail window(f.globals);
    auto *text = Child<QPlainTextEdit>(&window, "txtSend");

    // An empty message is refused and closes the window.
    window.open();
    Click(&window, "cmdSend");
    QCOMPARE(f.prompter.take(), QStringList{u"Send Help message: No Message to send"_s});
    QVERIFY(!window.isVisible());
    QVERIFY(peer.messages().isEmpty());
    QVERIFY(!QFile::exists(f.path(u"SMTP.Log"_s)));

    window.open();
    text->setPlainText(u"The sales report stops at night.\nPlease help."_s);
    Click(&window, "cmdSend");
    QCOMPARE(f.prompter.take(), QStringList{u"SMTP Message: Message Sent"_s});
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
    const QString log = f.smtpLog();
    QVERIFY2(log.contains(u"Sending Help Message"_s), qPrintable(log));
    QVERIFY2(log.contains(QStringLiteral("Message sent to " QORLO_SUPPORT_MAILBOX)), qPrintable(log));
}

QORLO_TEST_MAIN(TestFrmSMTP)
#include "tst_frmsmtp.moc"
