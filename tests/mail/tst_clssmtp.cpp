#include "Files.h"
#include "MailEvents.h"
#include "SmtpPeer.h"
#include "TestMain.h"

#include "core/Ansi.h"
#include "core/XMLCode.h"
#include "mail/clsSMTP.h"

#include <QDir>

using namespace TestSupport;

class TestClsSMTP : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void plainDocument();
    void htmlBodyAndFile();
    void passwordsInFileOrder();
    void locksAndBadDocuments();
    void documentSent();
};

namespace {

// A mailbox folder holding the documents of tests/data/mail/documents, their paths made absolute.
struct Mailbox
{
    Mailbox()
    {
        const QDir source(DataFile(QStringLiteral("mail/documents")));
        for (const QString &name : source.entryList(QDir::Files))
            write(name, ReadFile(source.filePath(name)).replace("@FOLDER@", QFile::encodeName(dir.path())));
        write(QStringLiteral("chart.png"), QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(64, '\2'));
    }
    QString path(const QString &name) const { return dir.filePath(name); }
    void write(const QString &name, const QByteArray &bytes) const { WriteFile(path(name), bytes); }
    QStringList locks() const { return FileNames(dir.path(), {QStringLiteral("*.lck")}); }

    QTemporaryDir dir;
};

} // namespace

void TestClsSMTP::plainDocument()
{
    Mailbox box;
    clsSMTP document;
    document.Load(box.path(QStringLiteral("plain.xml")));
    QCOMPARE(document.DocType, QStringLiteral("QorloMAILDoc"));
    QCOMPARE(document.FilePath, box.path(QStringLiteral("plain.xml")));
    QCOMPARE(document.Server, QStringLiteral("127.0.0.1"));
    QCOMPARE(document.From, QStringLiteral("desk@example.com"));
    QCOMPARE(document.To, QStringLiteral("boss@example.com;team@example.com"));
    QCOMPARE(document.Subject, QStringLiteral("Orders & returns"));
    QCOMPARE(document.Body, QStringLiteral("First line & more\r\nSecond line"));
    QCOMPARE(document.Attach, QStringLiteral("\r\n") + box.path(QStringLiteral("orders.csv")) +
                                  QStringLiteral("\r\n") + box.path(QStringLiteral("notes.txt")));
    QCOMPARE(document.SMTP_Port, qint16(2525));
    QVERIFY(document.Authentication);
    QCOMPARE(document.SMTPUser, QStringLiteral("desk"));
    QCOMPARE(document.SMTPPassword, QStringLiteral("plain<pw"));
    QCOMPARE(document.MsgHTML(), QString());
    QVERIFY(box.locks().isEmpty());

    document.Clear();
    QCOMPARE(document.DocType, QString());
    QCOMPARE(document.Body, QString());
    QCOMPARE(document.SMTP_Port, qint16(25));
    QVERIFY(!document.Authentication);
}

void TestClsSMTP::htmlBodyAndFile()
{
    Mailbox box;
    clsSMTP document;
    document.Load(box.path(QStringLiteral("html.xml")));
    QCOMPARE(document.HTMLFileText,
             QStringLiteral("<html><body>\r\n<p>Total: 1,234.50 and again 1,234.50 for $NAME$</p>\r\n"
                            "<img src=\"chart.png\">\r\n</body></html>"));
    QCOMPARE(document.MsgHTML(),
             QStringLiteral("<h1>Week 9</h1>\r\n<p>See below</p>\r\n") + document.HTMLFileText);
    QCOMPARE(document.FindText, QString());

    // A named file that is missing leaves the HTML body alone.
    box.write(QStringLiteral("missing.xml"), "<QorloMAILDoc>\r\n<HTMLBody>Only this</HTMLBody>\r\n"
                                             "<HTML-File>/nowhere/page.htm</HTML-File>\r\n");
    document.Load(box.path(QStringLiteral("missing.xml")));
    QCOMPARE(document.MsgHTML(), QStringLiteral("Only this"));
    document.SetMsgHTML(QStringLiteral("Set"));
    QCOMPARE(document.MsgHTML(), QStringLiteral("Set"));
}

void TestClsSMTP::passwordsInFileOrder()
{
    Mailbox box;
    const QString coded = XMLCode::EncodeText(QStringLiteral("s3cret"));
    const QString line =
        QStringLiteral("<SMTPPassword>") + XMLCode::XMLEscape(coded) + QStringLiteral("</SMTPPassword>\r\n");
    // Tags act in file order: before <Encryption> the password is decoded, as the setting is not "None" yet.
    box.write(QStringLiteral("early.xml"),
              Ansi::Encode(line + QStringLiteral("<Encryption>None</Encryption>\r\n")));
    box.write(QStringLiteral("late.xml"),
              Ansi::Encode(QStringLiteral("<Encryption>None</Encryption>\r\n") + line));
    clsSMTP document;
    document.Load(box.path(QStringLiteral("early.xml")));
    QCOMPARE(document.SMTPPassword, QStringLiteral("s3cret"));
    QCOMPARE(document.Encryption, QStringLiteral("None"));
    document.Load(box.path(QStringLiteral("late.xml")));
    QCOMPARE(document.SMTPPassword, coded);
}

void TestClsSMTP::locksAndBadDocuments()
{
    Mailbox box;
    clsSMTP document;
    document.Load(box.path(QStringLiteral("noroot.xml")));
    QCOMPARE(document.DocType, QString());
    QCOMPARE(document.To, QStringLiteral("boss@example.com"));
    document.Load(box.path(QStringLiteral("absent.xml")));
    QCOMPARE(document.To, QString());
    QCOMPARE(document.FilePath, QString());

    // Another writer's lock, in any case of its extension, holds the folder: nothing is read or removed.
    box.write(QStringLiteral("writer.LCK"), "busy");
    document.Load(box.path(QStringLiteral("plain.xml")));
    QCOMPARE(document.DocType, QString());
    QCOMPARE(QDir(box.dir.path()).entryList({QStringLiteral("*.LCK")}),
             QStringList{QStringLiteral("writer.LCK")});
}

void TestClsSMTP::documentSent()
{
    SmtpPeer peer;
    QORLO_REQUIRE_PEER(peer.start(), peer.error());
    // A document always goes out on the client's default port, which these settings point at the peer.
    ShortMailTimeouts(peer.port());
    Mailbox box;
    for (const QString &name : {QStringLiteral("plain.xml"), QStringLiteral("html.xml")}) {
        clsSMTP document;
        document.Load(box.path(name));
        clsSendMail mail;
        MailEvents events(mail);
        mail.SetSMTPHostValidation(0);
        mail.SetSMTPHost(document.Server);
        mail.SetFrom(document.From);
        mail.SetSubject(document.Subject);
        mail.SetMessage(document.Body);
        mail.SetAttachment(
            document.Attach.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts).join(QLatin1Char(';')));
        if (!document.MsgHTML().isEmpty()) {
            mail.SetMessage(document.MsgHTML());
            mail.SetAsHTML(true);
        }
        mail.SetRecipient(document.To);
        mail.Send();
        QVERIFY2(events.succeeded(), qPrintable(events.failures.join(QString())));
    }

    QCOMPARE(peer.messages().size(), 2);
    const QJsonObject plain = ParseMessage(peer.messages().at(0));
    QCOMPARE(plain.value(QStringLiteral("subject")).toString(), QStringLiteral("Orders & returns"));
    QCOMPARE(Recipients(peer.messages().at(0)),
             QStringList({QStringLiteral("boss@example.com"), QStringLiteral("team@example.com")}));
    QCOMPARE(PartNames(plain),
             QStringList({QString(), QStringLiteral("orders.csv"), QStringLiteral("notes.txt")}));
    QCOMPARE(PartOf(plain, 0).value(QStringLiteral("text")).toString(),
             QStringLiteral("First line & more\nSecond line\n"));
    QCOMPARE(PartOf(plain, 2).value(QStringLiteral("size")).toInt(), 12);

    const QJsonObject html = ParseMessage(peer.messages().at(1));
    QCOMPARE(html.value(QStringLiteral("content_type")).toString(), QStringLiteral("multipart/related"));
    const QString page = PartOf(html, 0).value(QStringLiteral("text")).toString();
    QVERIFY(page.startsWith(QStringLiteral("<h1>Week 9</h1>\n<p>See below</p>\n<html>")));
    QVERIFY(page.contains(QStringLiteral("<img src=\"cid:chart.png\">")));
    QVERIFY(!page.contains(QStringLiteral("Plain text")));
    QCOMPARE(PartOf(html, 1).value(QStringLiteral("content_id")).toString(), QStringLiteral("<chart.png>"));
}

QORLO_TEST_MAIN(TestClsSMTP)
#include "tst_clssmtp.moc"
