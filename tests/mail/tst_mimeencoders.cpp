#include "mail/MailAddress.h"
#include "mail/MimeEncoders.h"
#include "Files.h"
#include "TestMain.h"

using namespace Qt::Literals::StringLiterals;

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
    for (const int size : {56, 57, 58, 114, 11400, 11401}) {
        const QByteArray bytes = TestSupport::RandomBytes(size);
        const QByteArray encoded = EncodeBase64Bytes(bytes);
        QVERIFY(encoded.endsWith("\r\n"));
        QVERIFY(!encoded.endsWith("\r\n\r\n"));
        // Every line but the last has 76 characters and ends in CR LF: 11400 bytes make 200 full lines.
        const QList<QByteArray> lines = encoded.chopped(2).split('\n');
        for (qsizetype i = 0; i + 1 < lines.size(); ++i)
            QCOMPARE(lines.at(i), lines.at(i).left(76) + '\r');
        QVERIFY(lines.last().size() <= 76 && !lines.last().contains('\r'));
        QCOMPARE(QByteArray::fromBase64(QByteArray(encoded).replace("\r\n", "")), bytes);
    }
    QCOMPARE(EncodeBase64String(QString()), QString());
    // Text goes out as Windows-1252 bytes.
    QCOMPARE(EncodeBase64String(u"\u00e9\u20ac"_s), u"6YA=\r\n"_s);
}

void TestMimeEncoders::base64Decoding()
{
    QCOMPARE(DecodeBase64String(u"VXNlcm5hbWU6"_s), u"Username:"_s);
    QCOMPARE(DecodeBase64String(u"UGFzc3dvcmQ6"_s), u"Password:"_s);
    QCOMPARE(DecodeBase64String(u"TWE="_s), u"Ma"_s);
    QCOMPARE(DecodeBase64String(u"TQ=="_s), u"M"_s);
    QCOMPARE(DecodeBase64String(u"6YA="_s), u"\u00e9\u20ac"_s);
    // One character outside the table spoils the whole text, case matters.
    QCOMPARE(DecodeBase64String(u"VXNl cm5h"_s), QString());
    QCOMPARE(DecodeBase64String(u"VXNlcm5hbWU6\r\n"_s), QString());
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
    QCOMPARE(EncodeHeaderText(u"Plain ~ text"_s, false), u"Plain ~ text"_s);
    QCOMPARE(EncodeHeaderText(u"Ann Lee"_s, true), u"\"Ann Lee\""_s);
    QCOMPARE(EncodeHeaderText(u"Zo\u00eb"_s, true), u"=?ISO-8859-1?B?Wm/r?="_s);
    // Code 127 counts as 8-bit.
    QVERIFY(EncodeHeaderText(u"a\u007f"_s, false).startsWith(u"=?ISO-8859-1?B?"_s));
    const QString subject = QString(41, u'a') + u"\u00fc"_s + u"tail"_s;
    const QStringList words = EncodeHeaderText(subject, false).split(u"\r\n\t"_s);
    QCOMPARE(words.size(), 2);
    QCOMPARE(DecodeBase64String(words.at(0).mid(15).chopped(2)), subject.left(42));
    QCOMPARE(DecodeBase64String(words.at(1).mid(15).chopped(2)), u"tail"_s);
}

void TestMimeEncoders::dotStuffingAndFolding()
{
    QCOMPARE(PrepareMessageText(QString()), QString());
    QCOMPARE(PrepareMessageText(u".\r\nend\r\n..x"_s), u"..\r\nend\r\n...x"_s);
    QCOMPARE(PrepareMessageText(u"a\r.b"_s), u"a\r..b"_s);
    // A lone LF is no line break: the dot after it stays.
    QCOMPARE(PrepareMessageText(u"a\n.b"_s), u"a\n.b"_s);
    const QString exact(998, u'x');
    QCOMPARE(PrepareMessageText(exact), exact);
    const QString longer = QString(500, u'a') + u' ' + QString(498, u'b');
    QCOMPARE(longer.size(), 999);
    QCOMPARE(PrepareMessageText(longer), QString(500, u'a') + u" \r\n"_s + QString(498, u'b'));
    // Without a blank the cut falls at 998; a continuation line starting with "." is not stuffed.
    const QString solid = QString(998, u'y') + u".z"_s;
    QCOMPARE(PrepareMessageText(u"top\r\n"_s + solid), u"top\r\n"_s + QString(998, u'y') + u"\r\n.z"_s);
    QCOMPARE(PrepareMessageText(QString(2000, u'q')).split(u"\r\n"_s).size(), 3);
    QVERIFY(HasEightBit(u"caf\u00e9"_s));
    QVERIFY(HasEightBit(u"\u0100"_s));
    QVERIFY(!HasEightBit(u"plain ~"_s));
}

void TestMimeEncoders::addressAndDomainChecks()
{
    using namespace MailAddress;
    QVERIFY(IsValidEmailAddress(u"a@example.com"_s));
    QVERIFY(IsValidEmailAddress(u"@example.com"_s));
    QVERIFY(!IsValidEmailAddress(u"a@b@example.com"_s));
    QVERIFY(!IsValidEmailAddress(u"example.com"_s));
    QVERIFY(!IsValidDomain(u"localhost"_s));
    QVERIFY(!IsValidDomain(u"mail.example.test"_s));
    // The list is searched as one text: any run of its letters passes, one letter too.
    QVERIFY(IsValidDomain(u"host.m"_s));
    QVERIFY(IsValidDomain(u"host.useu"_s));
    QVERIFY(IsValidDomain(u" 10.1.2.3 "_s));
    QVERIFY(IsIPAddress(u"239.255.255.255"_s));
    QVERIFY(!IsIPAddress(u"240.1.1.1"_s));
    QVERIFY(!IsIPAddress(u"1.2.3.256"_s));
    QVERIFY(!IsIPAddress(u"1.2.3"_s));
    QVERIFY(!IsIPAddress(u"1.2.x.4"_s));
    QCOMPARE(SplitList(QString(), u";"_s), QStringList());
    QCOMPARE(SplitList(u"a;;b"_s, u";"_s).size(), 3);
    QCOMPARE(CleanAddressList({u" a@x.com\r\n\t "_s}), QStringList{u"a@x.com"_s});
}

QORLO_TEST_MAIN(TestMimeEncoders)
#include "tst_mimeencoders.moc"
