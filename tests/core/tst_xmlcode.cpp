#include "core/LineReader.h"
#include "core/XMLCode.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QFile>
#include <QSet>
#include <QTemporaryDir>

using namespace XMLCode;

class TestXMLCode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void headerAndLines();
    void openFailureAndAtomicReplace();
    void escapeRoundTrip();
    void tagValueQuirks();
    void longElements();
    void scrambling();
    void lockFile();
};

namespace {

QByteArray ReadAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Writes one element, reads the file back and returns the value of its element line.
QString RoundTrip(const QString &folder, const QString &value)
{
    const QString path = folder + QStringLiteral("/value.xml");
    OpenXML(path, QStringLiteral("Doc"));
    WriteElement(QStringLiteral("V"), value);
    CloseXML();
    LineReader reader(path);
    while (!reader.atEnd()) {
        QString line = reader.readLine();
        if (line.startsWith(QLatin1String("<V>")))
            return TagValue(line);
    }
    return QStringLiteral("<missing>");
}

QString Tag(const char *line)
{
    QString text = QString::fromLatin1(line);
    return TagValue(text);
}

} // namespace

void TestXMLCode::headerAndLines()
{
    QTemporaryDir dir;
    const FixedClock clock(QDateTime(QDate(2026, 3, 5), QTime(10, 0)));
    const ClockGuard guard(clock);
    const QString path = dir.filePath(QStringLiteral("Test.XML"));

    QCOMPARE(OpenXML(path, QStringLiteral("TestDoc"), QStringLiteral("a=\"1\"")), QString());
    QCOMPARE(WriteElement(QStringLiteral("Name"), QStringLiteral("caf\u00e9 \u00e9t\u00e9")),
             QStringLiteral("<Name>caf&#0233; &#0233;t\u00e9</Name>"));
    WriteElement(QStringLiteral("Pole"), QStringLiteral("\u0141\u00f3d\u017a \u0141"));
    WriteCDataElement(QStringLiteral("Sql"), QStringLiteral("a<b"));
    WriteOpenTag(QStringLiteral("Group"));
    WriteCloseTag(QStringLiteral("Group"));
    QCOMPARE(CloseXML(), QStringLiteral("XML File closed"));
    QCOMPARE(CloseXML(), QStringLiteral("XML already closed"));

    const QList<QByteArray> lines = ReadAll(path).split('\n');
    QCOMPARE(lines.size(), 15); // 14 lines, each ended by CR LF
    for (qsizetype i = 0; i + 1 < lines.size(); ++i)
        QVERIFY2(lines.at(i).endsWith('\r'), lines.at(i).constData());
    QCOMPARE(lines.at(0), QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\r"));
    QVERIFY(lines.at(1).startsWith("<!-- XML File Created by "));
    QVERIFY(lines.at(3).contains("2026"));
    QCOMPARE(lines.at(4),
             QByteArray("<!-- QorloMANAGER version 10.0 (" QT_STRINGIFY(QORLO_REVISION) ") -->\r"));
    QCOMPARE(lines.at(6), QByteArray("<!-- File " + path.toLocal8Bit() + " Created 05-Mar-2026-->\r"));
    QCOMPARE(lines.at(7), QByteArray("<TestDoc a=\"1\">\r"));
    // The last character of a value is written raw as a Windows-1252 byte, the others as references;
    // a last character the code page cannot hold is a reference too.
    QCOMPARE(lines.at(8), QByteArray("<Name>caf&#0233; &#0233;t\xe9</Name>\r"));
    QCOMPARE(lines.at(9), QByteArray("<Pole>&#0321;&#0243;d&#0378; &#0321;</Pole>\r"));
    QCOMPARE(lines.at(10), QByteArray("<Sql><![CDATA[a<b]]></Sql>\r"));
    QCOMPARE(lines.at(11), QByteArray("<Group>\r"));
    QCOMPARE(lines.at(13), QByteArray("</TestDoc>\r"));

    // Without an open file the calls only build text; an empty root name leaves out line 8.
    QCOMPARE(WriteOpenTag(QStringLiteral("G"), QStringLiteral("x=\"y\"")), QStringLiteral("<G x=\"y\">"));
    OpenXML(path, QString());
    CloseXML();
    QCOMPARE(ReadAll(path).count('\n'), 7);
}

void TestXMLCode::openFailureAndAtomicReplace()
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("no/such/folder/x.xml"));
    QVERIFY(OpenXML(missing, QStringLiteral("Doc")).startsWith(QLatin1String("Error Creating File: ")));
    QCOMPARE(WriteElement(QStringLiteral("A"), QStringLiteral("1")), QStringLiteral("<A>1</A>"));
    QCOMPARE(CloseXML(), QStringLiteral("XML already closed"));
    QVERIFY(!QFile::exists(missing));

    // The old file stays whole until the new one is closed.
    const QString path = dir.filePath(QStringLiteral("Keep.XML"));
    OpenXML(path, QStringLiteral("Doc"), QString(), FileAccess::OwnerOnly);
    WriteElement(QStringLiteral("A"), QStringLiteral("old"));
    CloseXML();
    QCOMPARE(QFile::permissions(path) & 0x0077, QFileDevice::Permissions()); // nothing for group, others
    QVERIFY(QFile::permissions(path).testFlag(QFileDevice::ReadOwner));
    const QByteArray before = ReadAll(path);
    OpenXML(path, QStringLiteral("Doc"), QString(), FileAccess::OwnerOnly);
    WriteElement(QStringLiteral("A"), QStringLiteral("new"));
    QCOMPARE(ReadAll(path), before);
    CloseXML();
    QVERIFY(ReadAll(path).contains("<A>new</A>"));
    QCOMPARE(QFile::permissions(path) & 0x0077, QFileDevice::Permissions());

    // A second open closes the first file without its root tag.
    const QString first = dir.filePath(QStringLiteral("First.XML"));
    OpenXML(first, QStringLiteral("Doc"));
    OpenXML(dir.filePath(QStringLiteral("Second.XML")), QStringLiteral("Doc"));
    CloseXML();
    QVERIFY(ReadAll(first).endsWith("<Doc>\r\n"));
}

void TestXMLCode::escapeRoundTrip()
{
    QTemporaryDir dir;
    const QStringList values = {
        QStringLiteral("a < b > c"),
        QStringLiteral("literal &amp; stays"),
        QStringLiteral("two\r\nlines"),
        QStringLiteral("it's \"quoted\""),
        QStringLiteral("\u20ac 100 and \u2122 and \u0160"),
        QStringLiteral("\u0141\u00f3d\u017a"),
        QStringLiteral("smile \U0001F600 end \U0001F600"),
        QStringLiteral("ends in \u00ff"),
        QString(),
    };
    for (const QString &value : values)
        QCOMPARE(RoundTrip(dir.path(), value), value);
    // A line end alone split the line: the value was cut, and an item's ID could become another's.
    const QString lone = QStringLiteral("lone\rreturn and lone\nfeed\n");
    QCOMPARE(RoundTrip(dir.path(), lone), lone);

    QCOMPARE(XMLEscape(QStringLiteral("a&b\r\nc")), QStringLiteral("a&amp;b&#0013;&#0010;c"));
    QCOMPARE(XMLEscape(QStringLiteral("\u00e9\u00e9")), QStringLiteral("&#0233;\u00e9"));
    QCOMPARE(XMLEscape(QStringLiteral("\u20ac")), QStringLiteral("\u20ac"));
    QCOMPARE(XMLEscape(QStringLiteral("x\u20ac!")), QStringLiteral("x&#0128;!"));
    QCOMPARE(XMLEscape(QStringLiteral("\u4e2d")), QStringLiteral("&#20013;"));
    QCOMPARE(XMLEscape(QStringLiteral("cr\ralone\n")), QStringLiteral("cr&#0013;alone&#0010;"));
    QCOMPARE(XMLEscape(QStringLiteral("<&'\">\r\n\u00e9")),
             QStringLiteral("&lt;&amp;&apos;&quot;&gt;&#0013;&#0010;\u00e9"));

    QCOMPARE(XMLCData(QStringLiteral("a<b\r\nc")), QStringLiteral("<![CDATA[a<b&#0013;&#0010;c]]>"));
    QCOMPARE(XMLCData(QStringLiteral("~x\r\ny")), QStringLiteral("<![CDATA[~x\r\ny]]>"));
    QCOMPARE(XMLCData(QStringLiteral("a&b\r\nc")), QStringLiteral("a&b\r\nc"));
}

void TestXMLCode::tagValueQuirks()
{
    QCOMPARE(Tag("<A>x[[--CRLF--]]y</A>"), QStringLiteral("x\r\ny"));
    // References of codes 128 to 159 read through Windows-1252.
    QCOMPARE(Tag("<A>&#0128;&#150;&#0233;&#8364;</A>"), QStringLiteral("\u20ac\u2013\u00e9\u20ac"));
    // An escaped "</" inside the value cuts it when read back.
    QCOMPARE(Tag("<A>a&lt;/b</A>"), QStringLiteral("a"));
    QCOMPARE(Tag("<A><![CDATA[a<b]]></A>"), QStringLiteral("a<b"));
    QCOMPARE(Tag("<A>xy<![CDATA[abc]]></A>"), QStringLiteral("A[a"));
    QCOMPARE(Tag("<A>]]>x<![CDATA[</A>"), QString());
    QCOMPARE(Tag("no tag here"), QString());
    QCOMPARE(Tag("<A>rest of line"), QStringLiteral("rest of line"));
    QCOMPARE(Tag("<A attr=\"1\">v</B>"), QStringLiteral("v"));
    // A decoded ampersand can start a new reference.
    QCOMPARE(Tag("<A>&#38;#65;</A>"), QStringLiteral("A"));

    // A "&#" without ";" stops decoding references for the line, the named ones still go.
    QString line = QStringLiteral("<A>&#0065;x &amp; &#65 &#66</A>");
    QCOMPARE(TagValue(line), QStringLiteral("Ax & &#65 &#66"));
    QCOMPARE(line, QStringLiteral("<A>Ax & &#65 &#66</A>"));
    QCOMPARE(Tag("<A>&#abc;&#99999999;</A>"), QString(QChar(0)) + QChar(QChar::ReplacementCharacter));
    // Named entities are read once, after the references: a decoded "&" starts one, "&amp;" does not.
    QCOMPARE(Tag("<A>&amp;lt; &#38;gt; &quot;&apos;&gt&lt;</A>"), QStringLiteral("&lt; > \"'&gt<"));

    // Reading without decoding the line in place gives the same values and leaves the line alone.
    for (const char *text : {"<A>plain</A>", "<A>a&amp;b&#0013;&#0010;c</A>", "<A>x[[--CRLF--]]y</A>",
                             "<A><![CDATA[a<b]]></A>", "<A>no end", "no tag"}) {
        QString decoded = QString::fromLatin1(text);
        const QString original = decoded;
        QCOMPARE(ReadTagValue(original), TagValue(decoded));
        QCOMPARE(LineTag(QStringView(original)).toString(), LineTag(original));
    }
}

void TestXMLCode::longElements()
{
    QCOMPARE(WriteLongElement(QStringLiteral("Body"), QStringLiteral("a\r\nb")),
             QStringLiteral("<Body>a&#0013;&#0010;b\r\n</Body>"));

    LineReader written =
        LineReader::FromText(QStringLiteral("<Body>a&#0013;&#0010;b&lt;\r\n</Body>\r\n<Next>1</Next>"));
    QString line = written.readLine();
    TagValue(line);
    QCOMPARE(ReadLongElement(written, line, QStringLiteral("</Body>")), QStringLiteral("a\r\nb<"));
    QCOMPARE(written.readLine(), QStringLiteral("<Next>1</Next>"));

    // Older files: continuation lines are taken undecoded, the last one adds its text before the end tag.
    LineReader old = LineReader::FromText(QStringLiteral("<Body>one\r\ntwo &amp;\r\nthree</Body>\r\n<X>"));
    line = old.readLine();
    TagValue(line);
    QCOMPARE(ReadLongElement(old, line, QStringLiteral("</Body>")), QStringLiteral("one\r\ntwo &amp;three"));
    QCOMPARE(old.readLine(), QStringLiteral("<X>"));

    LineReader single = LineReader::FromText(QString());
    QCOMPARE(ReadLongElement(single, QStringLiteral("<Body>x</Body>"), QStringLiteral("</Body>")),
             QStringLiteral("x"));

    LineReader truncated = LineReader::FromText(QStringLiteral("more"));
    QCOMPARE(ReadLongElement(truncated, QStringLiteral("<Body>start"), QStringLiteral("</Body>")),
             QStringLiteral("start\r\nmore"));
}

void TestXMLCode::scrambling()
{
    QCOMPARE(DecodeText(QStringLiteral("Cd!ex")), QStringLiteral("ab"));
    QCOMPARE(DecodeText(QString()), QString());
    QCOMPARE(DecodeText(QStringLiteral("C")), QString());
    // A position whose code is k or lower is skipped.
    QCOMPARE(DecodeText(QStringLiteral("C\u0002!d!")), QStringLiteral("a"));

    const QStringList clear = {QStringLiteral("secret"), QStringLiteral("p\u00e4ss \u20ac~"),
                               QStringLiteral("\u0141\u00ff"), QString()};
    QSet<QString> codings;
    for (int round = 0; round < 20; ++round) {
        for (const QString &text : clear) {
            const QString coded = EncodeText(text);
            QCOMPARE(coded.size(), 1 + 2 * text.size());
            QVERIFY(coded.at(0) >= QLatin1Char('@') && coded.at(0) <= QLatin1Char('L'));
            QCOMPARE(DecodeText(coded), text);
            codings.insert(coded);
        }
    }
    // The same clear text codes differently from save to save.
    QVERIFY(codings.size() > 40);

    // A scrambled "<" next to a noise "/" would cut the value when read back: it never happens.
    const QString digits = QStringLiteral("0123456789");
    for (int round = 0; round < 2000; ++round) {
        QString line = WriteElement(QStringLiteral("SMTPPassword"), EncodeText(digits));
        QCOMPARE(DecodeText(TagValue(line)), digits);
    }
}

void TestXMLCode::lockFile()
{
    QTemporaryDir dir;
    const FixedClock clock(QDateTime(QDate(2026, 11, 21), QTime(8, 0)));
    const ClockGuard guard(clock);
    const QString path = dir.filePath(QStringLiteral("job.lck"));
    CreateLockFile(path);
    QCOMPARE(ReadAll(path), QByteArray("Lock File Created : 21-Nov-2026\r\n"));
    CreateLockFile(dir.filePath(QStringLiteral("missing/job.lck"))); // swallowed
}

QORLO_TEST_MAIN(TestXMLCode)
#include "tst_xmlcode.moc"
