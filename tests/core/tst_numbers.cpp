#include "core/Ansi.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "TestMain.h"

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
    QCOMPARE(NumericPrefix(QStringLiteral("  42abc")), 42.0);
    QCOMPARE(NumericPrefix(QStringLiteral("-3.5e2x")), -350.0);
    QCOMPARE(NumericPrefix(QStringLiteral("1e")), 1.0);
    QCOMPARE(NumericPrefix(QStringLiteral(".5")), 0.5);
    QCOMPARE(NumericPrefix(QStringLiteral("abc")), 0.0);
    QCOMPARE(NumericPrefix(QString()), 0.0);
    QVERIFY(IsNumeric(QStringLiteral(" 12 ")));
    QVERIFY(IsNumeric(QStringLiteral("-1.5E+3")));
    QVERIFY(!IsNumeric(QString()));
    QVERIFY(!IsNumeric(QStringLiteral("12a")));
    QVERIFY(!IsNumeric(QStringLiteral("-")));
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
        QCOMPARE(e.runTimeText(), QStringLiteral("Run-time error '6': Overflow"));
    }
    QVERIFY_THROWS_EXCEPTION(QorloError, ToInt32(2147483648.0));
    try {
        TextToInt16(QStringLiteral("abc"));
        QFAIL("text is no number");
    } catch (const QorloError &e) {
        QCOMPARE(e.number(), 13);
    }
    QCOMPARE(TextToInt16(QStringLiteral(" 7 ")), qint16(7));
}

void TestNumbers::formats()
{
    QCOMPARE(FormatHash(0), QString());
    QCOMPARE(FormatHash(25), QStringLiteral("25"));
    QCOMPARE(FormatZeros(7, 2), QStringLiteral("07"));
    QCOMPARE(FormatZeros(233, 4), QStringLiteral("0233"));
    QCOMPARE(FormatZeros(12345, 4), QStringLiteral("12345"));
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
    QCOMPARE(Ansi::Encode(QStringLiteral("a\u0100b")), QByteArray("a?b"));
}

void TestNumbers::lineEnds()
{
    LineReader reader = LineReader::FromText(QStringLiteral("one\r\ntwo\rthree\nfour\r\n\r\nsix"));
    QStringList lines;
    while (!reader.atEnd())
        lines << reader.readLine();
    QCOMPARE(lines, (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three"),
                                 QStringLiteral("four"), QString(), QStringLiteral("six")}));
    QVERIFY(!LineReader(QStringLiteral("/nonexistent/file")).isOpen());
}

QORLO_TEST_MAIN(TestNumbers)
#include "tst_numbers.moc"
