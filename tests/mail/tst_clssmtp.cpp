#include "Files.h"
#include "SmtpPeer.h"
#include "TestMain.h"

#include "core/Ansi.h"
#include "core/WholeFile.h"
#include "core/XMLCode.h"
#include "mail/MailDocument.h"
#include "mail/clsSMTP.h"

#include <QDir>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

class TestClsSMTP : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void plainDocument();
    void htmlBodyAndFile();
    void bodyLinesJoined();
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
        const QDir source(DataFile(u"mail/documents"_s));
        for (const QString &name : source.entryList(QDir::Files))
            write(name, ReadFile(source.filePath(name)).replace("@FOLDER@", QFile::encodeName(dir.path())));
        write(u"chart.png"_s, QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(64, '\2'));
    }
    QString path(const QString &name) const { return dir.filePath(name); }
    void write(const QString &name, const QByteArray &bytes) const { WriteFile(path(name), bytes); }
    QStringList locks() const { return FileNames(dir.path(), {u"*.lck"_s}); }

    QTemporaryDir dir;
};

} // namespace

void TestClsSMTP::plainDocument()
{
    Mailbox box;
    clsSMTP document;
    document.Load(box.path(u"plain.xml"_s));
    QCOMPARE(document.DocType, u"QorloMAILDoc"_s);
    QCOMPARE(document.FilePath, box.path(u"plain.xml"_s));
    QCOMPARE(document.Server, u"127.0.0.1"_s);
    QCOMPARE(document.From, u"desk@example.com"_s);
    QCOMPARE(document.To, u"boss@example.com;team@example.com"_s);
    QCOMPARE(document.Subject, u"Orders & returns"_s);
    // The end tag on a line of its own ends the body with an empty line.
    QCOMPARE(document.Body, u"First line & more\r\nSecond line\r\n"_s);
    QCOMPARE(document.Attach, u"\r\n"_s + box.path(u"orders.csv"_s) + u"\r\n"_s + box.path(u"notes.txt"_s));
    QCOMPARE(document.SMTP_Port, qint16(2525));
    QVERIFY(document.Authentication);
    QCOMPARE(document.SMTPUser, u"desk"_s);
    QCOMPARE(document.SMTPPassword, u"plain<pw"_s);
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
    document.Load(box.path(u"html.xml"_s));
    QCOMPARE(document.HTMLFileText,
             u"<html><body>\r\n<p>Total: 1,234.50 and again 1,234.50 for $NAME$</p>\r\n"
             "<img src=\"chart.png\">\r\n</body></html>"_s);
    QCOMPARE(document.MsgHTML(), u"<h1>Week 9</h1>\r\n<p>See below</p>\r\n\r\n"_s + document.HTMLFileText);
    QCOMPARE(document.FindText, QString());

    // A named file that is missing leaves the HTML body alone.
    box.write(u"missing.xml"_s, "<QorloMAILDoc>\r\n<HTMLBody>Only this</HTMLBody>\r\n"
                                "<HTML-File>/nowhere/page.htm</HTML-File>\r\n");
    document.Load(box.path(u"missing.xml"_s));
    QCOMPARE(document.MsgHTML(), u"Only this"_s);
    document.SetMsgHTML(u"Set"_s);
    QCOMPARE(document.MsgHTML(), u"Set"_s);

    // A FIFO, a device or a file over 64 MB is no HTML file: it counts as missing instead of blocking
    // the reader for good or filling the memory.
    const QString fifo = box.path(u"page.fifo"_s);
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QFile large(box.path(u"large.htm"_s));
    QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(WholeFile::MaxSize + 1));
    large.close();
    for (const QString &page : {fifo, u"/dev/zero"_s, large.fileName()}) {
        box.write(u"odd.xml"_s, "<QorloMAILDoc>\r\n<HTMLBody>Only this</HTMLBody>\r\n<HTML-File>" +
                                    QFile::encodeName(page) + "</HTML-File>\r\n");
        document.Load(box.path(u"odd.xml"_s));
        QCOMPARE(document.MsgHTML(), u"Only this"_s);
    }
}

void TestClsSMTP::bodyLinesJoined()
{
    Mailbox box;
    box.write(u"lines.xml"_s, "<QorloMAILDoc>\r\n<Body>Line one\r\nLine two</Body>\r\n"
                              "<HTMLBody><p>one</p>\r\n\r\n<p>two</p></HTMLBody>\r\n");
    clsSMTP document;
    document.Load(box.path(u"lines.xml"_s));
    QCOMPARE(document.Body, u"Line one\r\nLine two"_s);
    QCOMPARE(document.MsgHTML(), u"<p>one</p>\r\n\r\n<p>two</p>"_s);
}

void TestClsSMTP::passwordsInFileOrder()
{
    Mailbox box;
    const QString coded = XMLCode::EncodeText(u"s3cret"_s);
    const QString line = u"<SMTPPassword>"_s + XMLCode::XMLEscape(coded) + u"</SMTPPassword>\r\n"_s;
    // Tags act in file order: before <Encryption> the password is decoded, as the setting is not "None" yet.
    box.write(u"early.xml"_s, Ansi::Encode(line + u"<Encryption>None</Encryption>\r\n"_s));
    box.write(u"late.xml"_s, Ansi::Encode(u"<Encryption>None</Encryption>\r\n"_s + line));
    clsSMTP document;
    document.Load(box.path(u"early.xml"_s));
    QCOMPARE(document.SMTPPassword, u"s3cret"_s);
    QCOMPARE(document.Encryption, u"None"_s);
    document.Load(box.path(u"late.xml"_s));
    QCOMPARE(document.SMTPPassword, coded);
}

void TestClsSMTP::locksAndBadDocuments()
{
    Mailbox box;
    clsSMTP document;
    document.Load(box.path(u"noroot.xml"_s));
    QCOMPARE(document.DocType, QString());
    QCOMPARE(document.To, u"boss@example.com"_s);
    document.Load(box.path(u"absent.xml"_s));
    QCOMPARE(document.To, QString());
    QCOMPARE(document.FilePath, QString());

    // Another writer's lock, in any case of its extension, holds the folder: nothing is read or removed.
    box.write(u"writer.LCK"_s, "busy");
    document.Load(box.path(u"plain.xml"_s));
    QCOMPARE(document.DocType, QString());
    QCOMPARE(QDir(box.dir.path()).entryList({u"*.LCK"_s}), QStringList{u"writer.LCK"_s});
    QFile::remove(box.path(u"writer.LCK"_s));

    // A read that fails removes its own lock all the same, so that later documents are not held up;
    // a lock of that naming left by an ended process goes at the next start.
    box.write(u"port.xml"_s, "<QorloMAILDoc>\r\n<SMTP-Port>99999</SMTP-Port>\r\n");
    QCOMPARE(ErrorOf([&] { document.Load(box.path(u"port.xml"_s)); }), 6);
    QVERIFY(box.locks().isEmpty());
    box.write(u"QorloMAIL0931.lck"_s, "left over");
    box.write(u"QorloMAILbusy.lck"_s, "another program's");
    clsSMTP::RemoveOwnLockFiles(box.dir.path());
    QCOMPARE(box.locks(), QStringList{u"QorloMAILbusy.lck"_s});
}

void TestClsSMTP::documentSent()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    // A document always goes out on the client's default port, which these settings point at the peer.
    ShortMailTimeouts(peer.port());
    Mailbox box;
    QVERIFY(ProcessMailDocument(box.dir.path(), box.path(u"plain.xml"_s)));
    QVERIFY(ProcessMailDocument(box.dir.path(), box.path(u"html.xml"_s)));
    QVERIFY(!ProcessMailDocument(box.dir.path(), box.path(u"noroot.xml"_s)));

    QCOMPARE(peer.messages().size(), 2);
    const QJsonObject plain = ParseMessage(peer.messages().at(0));
    QCOMPARE(plain.value(u"subject"_s).toString(), u"Orders & returns"_s);
    QCOMPARE(Recipients(peer.messages().at(0)), QStringList({u"boss@example.com"_s, u"team@example.com"_s}));
    QCOMPARE(PartNames(plain), QStringList({QString(), u"orders.csv"_s, u"notes.txt"_s}));
    QCOMPARE(PartOf(plain, 0).value(u"text"_s).toString(), u"First line & more\nSecond line\n\n"_s);
    QCOMPARE(PartOf(plain, 2).value(u"size"_s).toInt(), 12);

    const QJsonObject html = ParseMessage(peer.messages().at(1));
    QCOMPARE(html.value(u"content_type"_s).toString(), u"multipart/related"_s);
    const QString page = PartOf(html, 0).value(u"text"_s).toString();
    QVERIFY(page.startsWith(u"<h1>Week 9</h1>\n<p>See below</p>\n\n<html>"_s));
    QVERIFY(page.contains(u"<img src=\"cid:chart.png\">"_s));
    QVERIFY(!page.contains(u"Plain text"_s));
    QCOMPARE(PartOf(html, 1).value(u"content_id"_s).toString(), u"<chart.png>"_s);
    const QString log = Ansi::Decode(ReadFile(box.path(u"SMTP.Log"_s)));
    QVERIFY2(log.contains(u"Invalid XML document - cannot find QorloMAILDoc"_s), qPrintable(log));
}

QORLO_TEST_MAIN(TestClsSMTP)
#include "tst_clssmtp.moc"
