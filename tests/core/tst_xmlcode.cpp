#include "core/Ansi.h"
#include "core/LineReader.h"
#include "core/XMLCode.h"
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QFile>
#include <QSet>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace XMLCode;

class TestXMLCode : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void headerAndLines();
    void openFailureAndAtomicReplace();
    void escapeRoundTrip();
    void tagValueQuirks();
    void referencesInOnePass();
    void longElements();
    void scrambling();
    void lockFile();
};

using TestSupport::ReadFile;

namespace {

// Writes one element, reads the file back and returns the value of its element line.
QString RoundTrip(const QString &folder, const QString &value)
{
    const QString path = folder + u"/value.xml"_s;
    OpenXML(path, u"Doc"_s);
    WriteElement(u"V"_s, value);
    CloseXML();
    LineReader reader(path);
    while (!reader.atEnd()) {
        QString line = reader.readLine();
        if (line.startsWith(u"<V>"_s))
            return TagValue(line);
    }
    return u"<missing>"_s;
}

QString Tag(const char *line)
{
    QString text = QString::fromLatin1(line);
    return TagValue(text);
}

// The character of the code text between "&#" and ";": its leading digits, none giving 0.
QString ReferenceChar(QStringView code)
{
    qint64 number = 0;
    for (qsizetype i = 0; i < code.size() && code.at(i).isDigit() && number <= 0x10FFFF; ++i)
        number = number * 10 + code.at(i).digitValue();
    if (number > 0x10FFFF)
        return QString(QChar(QChar::ReplacementCharacter));
    if (number <= 255)
        return QString(Ansi::Char(int(number)));
    const char32_t point = char32_t(number);
    return QString::fromUcs4(&point, 1);
}

// The numeric references of a line decoded as the file format tells it: the first "&#" and the next
// ";" after it are replaced, again and again, until no "&#" is left or none has a ";" after it.
QString DecodedByTheRule(QString line)
{
    for (;;) {
        const qsizetype start = line.indexOf(u"&#"_s);
        const qsizetype end = start < 0 ? -1 : line.indexOf(u';', start + 2);
        if (end < 0)
            return line;
        line.replace(start, end - start + 1,
                     ReferenceChar(QStringView(line).mid(start + 2, end - start - 2)));
    }
}

} // namespace

void TestXMLCode::headerAndLines()
{
    QTemporaryDir dir;
    const FixedClock clock(QDateTime(QDate(2026, 3, 5), QTime(10, 0)));
    const ClockGuard guard(clock);
    const QString path = dir.filePath(u"Test.XML"_s);

    QCOMPARE(OpenXML(path, u"TestDoc"_s, u"a=\"1\""_s), QString());
    QCOMPARE(WriteElement(u"Name"_s, u"caf\u00e9 \u00e9t\u00e9"_s),
             u"<Name>caf&#0233; &#0233;t\u00e9</Name>"_s);
    WriteElement(u"Pole"_s, u"\u0141\u00f3d\u017a \u0141"_s);
    WriteCDataElement(u"Sql"_s, u"a<b"_s);
    WriteOpenTag(u"Group"_s);
    WriteCloseTag(u"Group"_s);
    QCOMPARE(CloseXML(), u"XML File closed"_s);
    QCOMPARE(CloseXML(), u"XML already closed"_s);

    const QList<QByteArray> lines = ReadFile(path).split('\n');
    QCOMPARE(lines.size(), 15); // 14 lines, each ended by CR LF
    for (qsizetype i = 0; i + 1 < lines.size(); ++i)
        QVERIFY2(lines.at(i).endsWith('\r'), lines.at(i).constData());
    QCOMPARE(lines.at(0), QByteArray("<?xml version=\"1.0\" encoding=\"utf-8\"?>\r"));
    QVERIFY(lines.at(1).startsWith("<!-- XML File Created by "));
    QVERIFY(lines.at(3).contains("2026"));
    QCOMPARE(lines.at(4), QByteArray("<!-- QorloMANAGER version 10.0 (1) -->\r"));
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
    QCOMPARE(WriteOpenTag(u"G"_s, u"x=\"y\""_s), u"<G x=\"y\">"_s);
    OpenXML(path, QString());
    CloseXML();
    QCOMPARE(ReadFile(path).count('\n'), 7);
}

void TestXMLCode::openFailureAndAtomicReplace()
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(u"no/such/folder/x.xml"_s);
    QVERIFY(OpenXML(missing, u"Doc"_s).startsWith(u"Error Creating File: "_s));
    QCOMPARE(WriteElement(u"A"_s, u"1"_s), u"<A>1</A>"_s);
    QCOMPARE(CloseXML(), u"XML already closed"_s);
    QVERIFY(!QFile::exists(missing));

    // The old file stays whole until the new one is closed.
    const QString path = dir.filePath(u"Keep.XML"_s);
    OpenXML(path, u"Doc"_s, QString(), FileAccess::OwnerOnly);
    WriteElement(u"A"_s, u"old"_s);
    CloseXML();
    QCOMPARE(QFile::permissions(path) & 0x0077, QFileDevice::Permissions()); // nothing for group, others
    QVERIFY(QFile::permissions(path).testFlag(QFileDevice::ReadOwner));
    const QByteArray before = ReadFile(path);
    OpenXML(path, u"Doc"_s, QString(), FileAccess::OwnerOnly);
    WriteElement(u"A"_s, u"new"_s);
    QCOMPARE(ReadFile(path), before);
    CloseXML();
    QVERIFY(ReadFile(path).contains("<A>new</A>"));
    QCOMPARE(QFile::permissions(path) & 0x0077, QFileDevice::Permissions());

    // A second open closes the first file without its root tag.
    const QString first = dir.filePath(u"First.XML"_s);
    OpenXML(first, u"Doc"_s);
    OpenXML(dir.filePath(u"Second.XML"_s), u"Doc"_s);
    CloseXML();
    QVERIFY(ReadFile(first).endsWith("<Doc>\r\n"));
}

void TestXMLCode::escapeRoundTrip()
{
    QTemporaryDir dir;
    const QStringList values = {
        u"a < b > c"_s,
        u"literal &amp; stays"_s,
        u"two\r\nlines"_s,
        u"it's \"quoted\""_s,
        u"\u20ac 100 and \u2122 and \u0160"_s,
        u"\u0141\u00f3d\u017a"_s,
        u"smile \U0001F600 end \U0001F600"_s,
        u"ends in \u00ff"_s,
        QString(),
    };
    for (const QString &value : values)
        QCOMPARE(RoundTrip(dir.path(), value), value);
    // A line end alone split the line: the value was cut, and an item's ID could become another's.
    const QString lone = u"lone\rreturn and lone\nfeed\n"_s;
    QCOMPARE(RoundTrip(dir.path(), lone), lone);

    QCOMPARE(XMLEscape(u"a&b\r\nc"_s), u"a&amp;b&#0013;&#0010;c"_s);
    QCOMPARE(XMLEscape(u"\u00e9\u00e9"_s), u"&#0233;\u00e9"_s);
    QCOMPARE(XMLEscape(u"\u20ac"_s), u"\u20ac"_s);
    QCOMPARE(XMLEscape(u"x\u20ac!"_s), u"x&#0128;!"_s);
    QCOMPARE(XMLEscape(u"\u4e2d"_s), u"&#20013;"_s);
    QCOMPARE(XMLEscape(u"cr\ralone\n"_s), u"cr&#0013;alone&#0010;"_s);
    QCOMPARE(XMLEscape(u"<&'\">\r\n\u00e9"_s), u"&lt;&amp;&apos;&quot;&gt;&#0013;&#0010;\u00e9"_s);

    QCOMPARE(XMLCData(u"a<b\r\nc"_s), u"<![CDATA[a<b&#0013;&#0010;c]]>"_s);
    QCOMPARE(XMLCData(u"~x\r\ny"_s), u"<![CDATA[~x\r\ny]]>"_s);
    QCOMPARE(XMLCData(u"a&b\r\nc"_s), u"a&b\r\nc"_s);
}

void TestXMLCode::tagValueQuirks()
{
    QCOMPARE(Tag("<A>x[[--CRLF--]]y</A>"), u"x\r\ny"_s);
    // References of codes 128 to 159 read through Windows-1252.
    QCOMPARE(Tag("<A>&#0128;&#150;&#0233;&#8364;</A>"), u"\u20ac\u2013\u00e9\u20ac"_s);
    // An escaped "</" inside the value cuts it when read back.
    QCOMPARE(Tag("<A>a&lt;/b</A>"), u"a"_s);
    QCOMPARE(Tag("<A><![CDATA[a<b]]></A>"), u"a<b"_s);
    QCOMPARE(Tag("<A>xy<![CDATA[abc]]></A>"), u"A[a"_s);
    QCOMPARE(Tag("<A>]]>x<![CDATA[</A>"), QString());
    QCOMPARE(Tag("no tag here"), QString());
    QCOMPARE(Tag("<A>rest of line"), u"rest of line"_s);
    QCOMPARE(Tag("<A attr=\"1\">v</B>"), u"v"_s);
    // A decoded ampersand can start a new reference.
    QCOMPARE(Tag("<A>&#38;#65;</A>"), u"A"_s);

    // A "&#" without ";" stops decoding references for the line, the named ones still go.
    QString line = u"<A>&#0065;x &amp; &#65 &#66</A>"_s;
    QCOMPARE(TagValue(line), u"Ax & &#65 &#66"_s);
    QCOMPARE(line, u"<A>Ax & &#65 &#66</A>"_s);
    QCOMPARE(Tag("<A>&#abc;&#99999999;</A>"), QString(QChar(0)) + QChar(QChar::ReplacementCharacter));
    // Named entities are read once, after the references: a decoded "&" starts one, "&amp;" does not.
    QCOMPARE(Tag("<A>&amp;lt; &#38;gt; &quot;&apos;&gt&lt;</A>"), u"&lt; > \"'&gt<"_s);

    // Reading without decoding the line in place gives the same values and leaves the line alone.
    for (const char *text : {"<A>plain</A>", "<A>a&amp;b&#0013;&#0010;c</A>", "<A>x[[--CRLF--]]y</A>",
                             "<A><![CDATA[a<b]]></A>", "<A>no end", "no tag"}) {
        QString decoded = QString::fromLatin1(text);
        const QString original = decoded;
        QCOMPARE(ReadTagValue(original), TagValue(decoded));
        QCOMPARE(LineTag(QStringView(original)).toString(), LineTag(original));
    }
}

// The one-pass decoding gives what replacing the first reference again and again gives, chains of
// decoded "&" and "#" included; and it is linear, so a line of millions of references reads at once.
void TestXMLCode::referencesInOnePass()
{
    // Characters from which references, decoded "&", "#" and ";" and unterminated ones arise, but no
    // named entity and no line-break mark.
    const QString alphabet = u"&&##;;35689x"_s;
    const QByteArray random = TestSupport::RandomBytes(200 * 40);
    for (int sample = 0; sample < 200; ++sample) {
        QString value;
        for (int i = 0; i < 40; ++i)
            value += alphabet.at(quint8(random.at(sample * 40 + i)) % alphabet.size());
        QString line = u"<A>"_s + value + u"</A>"_s;
        const QString expected = DecodedByTheRule(line);
        QCOMPARE(TagValue(line), expected.mid(3, expected.size() - 7));
    }
    QCOMPARE(Tag("<A>&#38;#38;#65;</A>"), u"A"_s);
    QCOMPARE(Tag("<A>&&#35;65;&#38;&#35;66;</A>"), u"AB"_s);

    // 16 million characters of references, and of line breaks in their escaped form.
    QString references = u"<A>"_s + u"&#0065;&#38;#66;"_s.repeated(1'000'000) + u"</A>"_s;
    QCOMPARE(TagValue(references), u"AB"_s.repeated(1'000'000));
    QString breaks = u"<A>"_s + u"&#0013;&#0010;"_s.repeated(1'200'000) + u"</A>"_s;
    QCOMPARE(TagValue(breaks), u"\r\n"_s.repeated(1'200'000));
}

void TestXMLCode::longElements()
{
    QCOMPARE(WriteLongElement(u"Body"_s, u"a\r\nb"_s), u"<Body>a&#0013;&#0010;b\r\n</Body>"_s);

    LineReader written = LineReader::FromText(u"<Body>a&#0013;&#0010;b&lt;\r\n</Body>\r\n<Next>1</Next>"_s);
    QString line = written.readLine();
    TagValue(line);
    QCOMPARE(ReadLongElement(written, line, u"</Body>"_s), u"a\r\nb<"_s);
    QCOMPARE(written.readLine(), u"<Next>1</Next>"_s);

    // Older files: continuation lines are taken undecoded, the last one adds its text before the end tag.
    LineReader old = LineReader::FromText(u"<Body>one\r\ntwo &amp;\r\nthree</Body>\r\n<X>"_s);
    line = old.readLine();
    TagValue(line);
    QCOMPARE(ReadLongElement(old, line, u"</Body>"_s), u"one\r\ntwo &amp;three"_s);
    QCOMPARE(old.readLine(), u"<X>"_s);

    LineReader single = LineReader::FromText(QString());
    QCOMPARE(ReadLongElement(single, u"<Body>x</Body>"_s, u"</Body>"_s), u"x"_s);

    LineReader truncated = LineReader::FromText(u"more"_s);
    QCOMPARE(ReadLongElement(truncated, u"<Body>start"_s, u"</Body>"_s), u"start\r\nmore"_s);
}

void TestXMLCode::scrambling()
{
    QCOMPARE(DecodeText(u"Cd!ex"_s), u"ab"_s);
    QCOMPARE(DecodeText(QString()), QString());
    QCOMPARE(DecodeText(u"C"_s), QString());
    // A position whose code is k or lower is skipped.
    QCOMPARE(DecodeText(u"C\u0002!d!"_s), u"a"_s);

    const QStringList clear = {u"secret"_s, u"p\u00e4ss \u20ac~"_s, u"\u0141\u00ff"_s, QString()};
    QSet<QString> codings;
    for (int round = 0; round < 20; ++round) {
        for (const QString &text : clear) {
            const QString coded = EncodeText(text);
            QCOMPARE(coded.size(), 1 + 2 * text.size());
            QVERIFY(coded.at(0) >= u'@' && coded.at(0) <= u'L');
            QCOMPARE(DecodeText(coded), text);
            codings.insert(coded);
        }
    }
    // The same clear text codes differently from save to save.
    QVERIFY(codings.size() > 40);

    // A scrambled "<" next to a noise "/" would cut the value when read back: it never happens.
    const QString digits = u"0123456789"_s;
    for (int round = 0; round < 2000; ++round) {
        QString line = WriteElement(u"SMTPPassword"_s, EncodeText(digits));
        QCOMPARE(DecodeText(TagValue(line)), digits);
    }
}

void TestXMLCode::lockFile()
{
    QTemporaryDir dir;
    const FixedClock clock(QDateTime(QDate(2026, 11, 21), QTime(8, 0)));
    const ClockGuard guard(clock);
    const QString path = dir.filePath(u"job.lck"_s);
    CreateLockFile(path);
    QCOMPARE(ReadFile(path), QByteArray("Lock File Created : 21-Nov-2026\r\n"));
    CreateLockFile(dir.filePath(u"missing/job.lck"_s)); // swallowed
}

QORLO_TEST_MAIN(TestXMLCode)
#include "tst_xmlcode.moc"
