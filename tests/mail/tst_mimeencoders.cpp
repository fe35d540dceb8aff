#include "mail/MailAddress.h"
#include "mail/MimeEncoders.h"
#include "TestMain.h"

#include <QRandomGenerator>

using namespace MimeEncoders;

class TestMimeEncoders : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void base64LinesAndPadding();
    void base64Decoding();
    void uuencodeLines();
    void headerWords();
    void dotStuffingAndFolding();
    void addressAndDomainChecks();
};

void TestMimeEncoders::base64LinesAndPadding()
{
    QCOMPARE(EncodeBase64Bytes(QByteArray()), QByteArray("\r\n"));
    QCOMPARE(EncodeBase64Bytes("M"), QByteArray("TQ==\r\n"));
    QCOMPARE(EncodeBase64Bytes("Ma"), QByteArray("TWE=\r\n"));
    QRandomGenerator random(TestSupport::RandomSeed());
    for (const int size : {56, 57, 58, 114, 11400, 11401}) {
        QByteArray bytes(size, '\0');
        for (char &b : bytes)
            b = char(random.bounded(256));
        const QByteArray encoded = EncodeBase64Bytes(bytes);
        QVERIFY(encoded.endsWith("\r\n"));
        QVERIFY(!encoded.endsWith("\r\n\r\n"));
        // Every line but the last has 76 characters and ends in CR LF.
        const QList<QByteArray> lines = encoded.chopped(2).split('\n');
        for (qsizetype i = 0; i + 1 < lines.size(); ++i)
            QCOMPARE(lines.at(i), lines.at(i).left(76) + '\r');
        QVERIFY(lines.last().size() <= 76 && !lines.last().contains('\r'));
        QCOMPARE(QByteArray::fromBase64(QByteArray(encoded).replace("\r\n", "")), bytes);
    }
    QCOMPARE(EncodeBase64Bytes(QByteArray(11400, 'x')).count("\r\n"), 200);
    QCOMPARE(EncodeBase64String(QString()), QString());
    // Text goes out as Windows-1252 bytes.
    QCOMPARE(EncodeBase64String(QStringLiteral("\u00e9\u20ac")), QStringLiteral("6YA=\r\n"));
}

void TestMimeEncoders::base64Decoding()
{
    QCOMPARE(DecodeBase64String(QStringLiteral("VXNlcm5hbWU6")), QStringLiteral("Username:"));
    QCOMPARE(DecodeBase64String(QStringLiteral("UGFzc3dvcmQ6")), QStringLiteral("Password:"));
    QCOMPARE(DecodeBase64String(QStringLiteral("TWE=")), QStringLiteral("Ma"));
    QCOMPARE(DecodeBase64String(QStringLiteral("TQ==")), QStringLiteral("M"));
    QCOMPARE(DecodeBase64String(QStringLiteral("6YA=")), QStringLiteral("\u00e9\u20ac"));
    // One character outside the table spoils the whole text, case matters.
    QCOMPARE(DecodeBase64String(QStringLiteral("VXNl cm5h")), QString());
    QCOMPARE(DecodeBase64String(QStringLiteral("VXNlcm5hbWU6\r\n")), QString());
}

void TestMimeEncoders::uuencodeLines()
{
    QCOMPARE(UuEncodeLine("Cat"), QByteArray("#0V%T"));
    // A short last group gives one character more than its bytes, then the padding of this format.
    QCOMPARE(UuEncodeLine("C"), QByteArray("!0P=="));
    QCOMPARE(UuEncodeLine("Ca"), QByteArray("\"0V$="));
    QCOMPARE(UuEncodeLine(QByteArray(3, '\0')), QByteArray("#````"));
    QCOMPARE(UuEncodeLine(QByteArray(45, 'a')).size(), 61);
    QCOMPARE(UuEncodeLine(QByteArray(64, 'a')), QByteArray());
    QCOMPARE(UuEncodeLine(QByteArray(63, 'a')).left(1), QByteArray("_"));
}

void TestMimeEncoders::headerWords()
{
    QCOMPARE(EncodeHeaderText(QStringLiteral("Plain ~ text"), false), QStringLiteral("Plain ~ text"));
    QCOMPARE(EncodeHeaderText(QStringLiteral("Ann Lee"), true), QStringLiteral("\"Ann Lee\""));
    QCOMPARE(EncodeHeaderText(QStringLiteral("Zo\u00eb"), true), QStringLiteral("=?ISO-8859-1?B?Wm/r?="));
    // Code 127 counts as 8-bit.
    QVERIFY(EncodeHeaderText(QStringLiteral("a\u007f"), false).startsWith(QLatin1String("=?ISO-8859-1?B?")));
    const QString subject = QString(41, QLatin1Char('a')) + QStringLiteral("\u00fc") + QStringLiteral("tail");
    const QStringList words = EncodeHeaderText(subject, false).split(QStringLiteral("\r\n\t"));
    QCOMPARE(words.size(), 2);
    QCOMPARE(DecodeBase64String(words.at(0).mid(15).chopped(2)), subject.left(42));
    QCOMPARE(DecodeBase64String(words.at(1).mid(15).chopped(2)), QStringLiteral("tail"));
}

void TestMimeEncoders::dotStuffingAndFolding()
{
    QCOMPARE(PrepareMessageText(QString()), QString());
    QCOMPARE(PrepareMessageText(QStringLiteral(".\r\nend\r\n..x")), QStringLiteral("..\r\nend\r\n...x"));
    QCOMPARE(PrepareMessageText(QStringLiteral("a\r.b")), QStringLiteral("a\r..b"));
    // A lone LF is no line break: the dot after it stays.
    QCOMPARE(PrepareMessageText(QStringLiteral("a\n.b")), QStringLiteral("a\n.b"));
    const QString exact(998, QLatin1Char('x'));
    QCOMPARE(PrepareMessageText(exact), exact);
    const QString longer = QString(500, QLatin1Char('a')) + QLatin1Char(' ') + QString(498, QLatin1Char('b'));
    QCOMPARE(longer.size(), 999);
    QCOMPARE(PrepareMessageText(longer),
             QString(500, QLatin1Char('a')) + QStringLiteral(" \r\n") + QString(498, QLatin1Char('b')));
    // Without a blank the cut falls at 998; a continuation line starting with "." is not stuffed.
    const QString solid = QString(998, QLatin1Char('y')) + QStringLiteral(".z");
    QCOMPARE(PrepareMessageText(QStringLiteral("top\r\n") + solid),
             QStringLiteral("top\r\n") + QString(998, QLatin1Char('y')) + QStringLiteral("\r\n.z"));
    QCOMPARE(PrepareMessageText(QString(2000, QLatin1Char('q'))).split(QStringLiteral("\r\n")).size(), 3);
    QVERIFY(HasEightBit(QStringLiteral("caf\u00e9")));
    QVERIFY(HasEightBit(QStringLiteral("\u0100")));
    QVERIFY(!HasEightBit(QStringLiteral("plain ~")));
}

void TestMimeEncoders::addressAndDomainChecks()
{
    using namespace MailAddress;
    QVERIFY(IsValidEmailAddress(QStringLiteral("a@example.com")));
    QVERIFY(IsValidEmailAddress(QStringLiteral("@example.com")));
    QVERIFY(!IsValidEmailAddress(QStringLiteral("a@b@example.com")));
    QVERIFY(!IsValidEmailAddress(QStringLiteral("example.com")));
    QVERIFY(!IsValidDomain(QStringLiteral("localhost")));
    QVERIFY(!IsValidDomain(QStringLiteral("mail.example.test")));
    // The list is searched as one text: any run of its letters passes, one letter too.
    QVERIFY(IsValidDomain(QStringLiteral("host.m")));
    QVERIFY(IsValidDomain(QStringLiteral("host.useu")));
    QVERIFY(IsValidDomain(QStringLiteral(" 10.1.2.3 ")));
    QVERIFY(IsIPAddress(QStringLiteral("239.255.255.255")));
    QVERIFY(!IsIPAddress(QStringLiteral("240.1.1.1")));
    QVERIFY(!IsIPAddress(QStringLiteral("1.2.3.256")));
    QVERIFY(!IsIPAddress(QStringLiteral("1.2.3")));
    QVERIFY(!IsIPAddress(QStringLiteral("1.2.x.4")));
    QCOMPARE(SplitList(QString(), QStringLiteral(";")), QStringList());
    QCOMPARE(SplitList(QStringLiteral("a;;b"), QStringLiteral(";")).size(), 3);
    QCOMPARE(CleanAddressList({QStringLiteral(" a@x.com\r\n\t ")}), QStringList{QStringLiteral("a@x.com")});
}

QORLO_TEST_MAIN(TestMimeEncoders)
#include "tst_mimeencoders.moc"
