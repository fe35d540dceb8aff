#include "Files.h"
#include "SmtpPeer.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/Ansi.h"

#include "scheduler/QorloGlobals.h"
#include "ui/frmSMTP.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace TestSupport;

namespace {

// An application folder with its global objects and the mail settings window over them.
struct SmtpFixture : GlobalsFixture
{
    SmtpFixture()
    {
        clsSchedule &s = globals.Schedule;
        s.SMTP_Server = QStringLiteral("127.0.0.1");
        s.SMTP_Port = 2525;
        s.SMTP_From = QStringLiteral("scheduler@example.com");
        s.TestMessageTo = QStringLiteral("boss@example.com");
        s.SMTP_StdMessage = QStringLiteral("Hello\nteam");
        s.SMTPDelay = 7;
        s.SMTPAuthentication = QStringLiteral("Yes");
        s.SMTPUser = QStringLiteral("clerk");
        s.SMTPPassword = QStringLiteral("s3cret");
    }
    template <class Widget = QLineEdit> Widget *field(const char *name)
    {
        return Child<Widget>(window.get(), name);
    }
    void setText(const char *name, const QString &text) { field(name)->setText(text); }
    void click(const char *name) { Click(window.get(), name); }
    QString smtpLog() const { return Ansi::Decode(ReadFile(path(QStringLiteral("SMTP.Log")))); }
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
    QCOMPARE(f.field<QPlainTextEdit>("txtMessage")->toPlainText(), QStringLiteral("Hello\nteam"));
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
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("SMTP Settings: Please enter a server name")});
    QCOMPARE(QApplication::focusWidget(), f.field("txtServer"));
    f.setText("txtServer", QStringLiteral("mail.example.com"));
    f.click("cmdSave");
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("SMTP Settings: Please enter your email address")});
    QCOMPARE(QApplication::focusWidget(), f.field("txtFrom"));
    f.setText("txtFrom", QStringLiteral("desk@example.com"));
    f.click("cmdTest");
    QCOMPARE(f.prompter.take(),
             QStringList{
                 QStringLiteral("SMTP Settings: Please enter a destination address for the test message")});
    QCOMPARE(QApplication::focusWidget(), f.field("txtTestTo"));
    QVERIFY(f.window->isVisible());
    QVERIFY(!QFile::exists(f.dir.filePath(QStringLiteral("Qorlo.XML"))));

    // Save stores the fields, keeps the old delay when the new one is no number, and closes.
    f.setText("txtPort", QStringLiteral("587"));
    f.setText("txtDelay", QString());
    f.setText("txtUser", QStringLiteral("other"));
    f.click("cmdSave");
    QVERIFY(!f.window->isVisible());
    QVERIFY(f.prompter.take().isEmpty());
    const auto saved = f.saved();
    QCOMPARE(saved->SMTP_Server, QStringLiteral("mail.example.com"));
    QCOMPARE(saved->TestMessageTo, QString());
    QCOMPARE(saved->SMTP_Port, 587);
    QCOMPARE(saved->SMTPDelay, qint16(7));
    QCOMPARE(saved->SMTPAuthentication, QStringLiteral("No"));
    QCOMPARE(saved->SMTPUser, QStringLiteral("other"));

    // A numeric delay is taken; a port that is no number is the fatal conversion error, and the
    // window stays.
    f.open();
    f.setText("txtDelay", QStringLiteral("3"));
    f.setText("txtPort", QStringLiteral("smtp"));
    f.click("cmdSave");
    QCOMPARE(f.prompter.fatal, QStringList{QStringLiteral("Run-time error '13': Type mismatch")});
    QVERIFY(f.window->isVisible());
    QCOMPARE(f.globals.Schedule.SMTPDelay, qint16(3));
    QCOMPARE(f.saved()->SMTPDelay, qint16(7));
}

void TestFrmSMTP::testMessageReachesTheServer()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start({QStringLiteral("--user"), QStringLiteral("clerk"),
                                   QStringLiteral("--password"), QStringLiteral("s3cret")}),
                       peer.error());
    SmtpFixture f;
    f.open();
    // The values in the fields are tested, saved or not.
    f.setText("txtPort", QString::number(peer.port()));
    f.setText("txtTestTo", QStringLiteral("tester@example.com"));
    f.click("cmdTest");
    QCOMPARE(f.prompter.take(), QStringList{QStringLiteral("SMTP Message: Message Sent")});
    QCOMPARE(peer.messages().size(), 1);
    const QString message = peer.messages().first();
    QCOMPARE(Recipients(message), QStringList{QStringLiteral("tester@example.com")});
    const QJsonObject envelope = SmtpPeer::envelopeOf(message);
    QCOMPARE(envelope.value(QStringLiteral("mail_from")).toString(), QStringLiteral("scheduler@example.com"));
    QCOMPARE(envelope.value(QStringLiteral("login")).toString(), QStringLiteral("clerk"));
    const QJsonObject parsed = ParseMessage(message);
    QCOMPARE(parsed.value(QStringLiteral("subject")).toString(),
             QStringLiteral("Test message from QorloMANAGER"));
    QVERIFY(ReadFile(message).contains("Here is a test message from QorloMANAGER"));
    const QString log = f.smtpLog();
    QVERIFY2(log.contains(QStringLiteral("Sending Test Message")), qPrintable(log));
    QVERIFY2(log.contains(QStringLiteral("Message sent to tester@example.com")), qPrintable(log));
    QVERIFY(f.window->isVisible());
    QVERIFY(!QFile::exists(f.dir.filePath(QStringLiteral("Qorlo.XML"))));
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
    QVERIFY2(boxes.first().startsWith(QStringLiteral("SMTP Message: Send Failed\r\n")),
             qPrintable(boxes.first()));
    const QString reason = boxes.first().mid(QStringLiteral("SMTP Message: Send Failed\r\n").size());
    QVERIFY(!reason.isEmpty());
    QVERIFY2(f.smtpLog().contains(QStringLiteral("Send Failed - ") + reason), qPrintable(f.smtpLog()));
    QCOMPARE(f.globals.Schedule.SMTPAuthentication, QStringLiteral("Yes"));
}

QORLO_TEST_MAIN(TestFrmSMTP)
#include "tst_frmsmtp.moc"
