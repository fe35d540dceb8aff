#include "core/Ansi.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "Files.h"
#include "TestMain.h"

using namespace Qt::Literals::StringLiterals;

using namespace Numbers;

class TestNumbers : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void prefixAndNumericTest();
    void evenRoundingAndOverflow();
    void formats();
    void windows1252RoundTrip();
    void lineEnds();
};

void TestNumbers::prefixAndNumericTest()
{
    QCOMPARE(NumericPrefix(u"  42abc"_s), 42.0);
    QCOMPARE(NumericPrefix(u"-3.5e2x"_s), -350.0);
    QCOMPARE(NumericPrefix(u"1e"_s), 1.0);
    QCOMPARE(NumericPrefix(u".5"_s), 0.5);
    QCOMPARE(NumericPrefix(u"abc"_s), 0.0);
    QCOMPARE(NumericPrefix(QString()), 0.0);
    QVERIFY(IsNumeric(u" 12 "_s));
    QVERIFY(IsNumeric(u"-1.5E+3"_s));
    QVERIFY(!IsNumeric(QString()));
    QVERIFY(!IsNumeric(u"12a"_s));
    QVERIFY(!IsNumeric(u"-"_s));
}

void TestNumbers::evenRoundingAndOverflow()
{
    QCOMPARE(RoundEven(2.5), 2.0);
    QCOMPARE(RoundEven(3.5), 4.0);
    QCOMPARE(RoundEven(-2.5), -2.0);
    QCOMPARE(ToInt16(32767.4), qint16(32767));
    QCOMPARE(ToInt16(-32768), qint16(-32768));
    QCOMPARE(ToInt32(2147483647.0), 2147483647);
    try {
        ToInt16(32767.5);
        QFAIL("32767.5 rounds to 32768, past 16 bits");
    } catch (const QorloError &e) {
        QCOMPARE(e.number(), 6);
        QCOMPARE(e.runTimeText(), u"Run-time error '6': Overflow"_s);
    }
    QVERIFY_THROWS_EXCEPTION(QorloError, ToInt32(2147483648.0));
    QCOMPARE(TestSupport::ErrorOf([] { TextToInt16(u"abc"_s); }), 13);
    QCOMPARE(TextToInt16(u" 7 "_s), qint16(7));
}

void TestNumbers::formats()
{
    QCOMPARE(FormatHash(0), QString());
    QCOMPARE(FormatHash(25), u"25"_s);
    QCOMPARE(FormatZeros(7, 2), u"07"_s);
    QCOMPARE(FormatZeros(233, 4), u"0233"_s);
    QCOMPARE(FormatZeros(12345, 4), u"12345"_s);
}

void TestNumbers::windows1252RoundTrip()
{
    QCOMPARE(Ansi::Code(QChar(0x20AC)), 0x80);
    QCOMPARE(Ansi::Code(QChar(0x00E9)), 0xE9);
    QCOMPARE(Ansi::Code(QChar(0x0081)), 0x81);
    QCOMPARE(Ansi::Code(QChar(0x0100)), -1);
    QCOMPARE(Ansi::Char(0x9F), QChar(0x0178));
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(char(b));
    QCOMPARE(Ansi::Encode(Ansi::Decode(all)), all);
    QCOMPARE(Ansi::Encode(u"a\u0100b"_s), QByteArray("a?b"));
}

void TestNumbers::lineEnds()
{
    LineReader reader = LineReader::FromText(u"one\r\ntwo\rthree\nfour\r\n\r\nsix"_s);
    QStringList lines;
    while (!reader.atEnd())
        lines << reader.readLine();
    QCOMPARE(lines, (QStringList{u"one"_s, u"two"_s, u"three"_s, u"four"_s, QString(), u"six"_s}));
    QVERIFY(!LineReader(u"/nonexistent/file"_s).isOpen());
}

QORLO_TEST_MAIN(TestNumbers)
#include "tst_numbers.moc"
