#include "engine/xls/CompoundFile.h"
#include "engine/xls/XlsRk.h"
#include "engine/xls/XlsSheetSeries.h"
#include "engine/xls/XlsWorkbook.h"
#include "EngineExports.h"
#include "Files.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstring>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

namespace {

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

class TestXlsWriter : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cellsAndStyles();
    void formulasAndSheetNames();
    void longSharedStringTable();
    void spillToSecondSheet();
    void emptyWorkbook();
    void compoundFileOfAnySize();
    void rkKeepsEveryBit();
    void badInputIsRefused();

private:
    QString saved(XlsWorkbook &book, const QString &name);
    QTemporaryDir m_dir;
};

QString TestXlsWriter::saved(XlsWorkbook &book, const QString &name)
{
    const QString path = m_dir.filePath(name);
    if (!book.save(path))
        qWarning("save failed: %s", qPrintable(book.errorString()));
    return path;
}

void TestXlsWriter::cellsAndStyles()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    XlsWorkbook book;
    XlsSheet &sheet = book.addSheet(u"Cells"_s);
    const QStringList headings{u"Text"_s, u"Number"_s, u"Date"_s, u"Other"_s};
    for (int c = 0; c < headings.size(); ++c)
        sheet.writeText(0, c, headings[c], book.headingStyle());
    const QStringList texts{u"Café crème"_s, u"Grüße, Ørsted"_s,          u"Ωmega ✓ 漢字"_s, u"smile 😀"_s,
                            QString(),       u"line\nbreak \"quoted\""_s, u"price €5"_s};
    for (int r = 0; r < texts.size(); ++r)
        sheet.writeText(r + 1, 0, texts[r]);
    const double numbers[] = {42, -7, 0.1, 12.34, -0.5, 1234567.891, 536870911, 536870912, 1e300, -1e-300};
    for (int r = 0; r < int(std::size(numbers)); ++r)
        sheet.writeNumber(r + 1, 1, numbers[r]);
    const XlsStyle twoPlaces = book.addStyle(u"#,##0.00"_s);
    QCOMPARE(book.addStyle(u"#,##0.00"_s), twoPlaces);
    sheet.writeNumber(11, 1, 3, twoPlaces);
    sheet.writeNumber(12, 1, 1234.5, book.addStyle(u"#,##0.00"_s, true));
    sheet.writeNumber(13, 1, 0.25, book.addStyle(u"0%"_s));
    sheet.writeDate(1, 2, QDateTime(QDate(2024, 2, 29), QTime(13, 45)));
    sheet.writeDate(2, 2, QDateTime(QDate(1900, 3, 1), QTime(0, 0)));
    sheet.writeDate(3, 2, 36526.75);
    sheet.writeNumber(4, 2, 45000.5, book.addStyle(u"yyyy-mm-dd hh:mm"_s));
    sheet.writeDate(5, 2, QDateTime());
    sheet.writeBool(1, 3, true);
    sheet.writeBool(2, 3, false);
    sheet.writeNumber(3, 3, qQNaN());
    sheet.writeNumber(4, 3, -qInf());
    sheet.writeBlank(5, 3, book.headingStyle());
    sheet.writeText(6, 3, u"before"_s);
    sheet.writeText(6, 3, u"after"_s);

    const XlsDump dump = DumpXls(saved(book, u"cells.xls"_s));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines, QString::fromUtf8(ReadFile(DataFile(u"engine/xls/cells.expected.txt"_s)))
                             .split(u'\n', Qt::SkipEmptyParts));
}

void TestXlsWriter::formulasAndSheetNames()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    XlsWorkbook book;
    XlsSheet &orders = book.addSheet(u"Orders"_s);
    for (int r = 0; r < 3; ++r)
        orders.writeNumber(r, 0, 10.5 * (r + 1));
    orders.writeAggregate(3, 0, XlsAggregate::Sum, {0, 2, 0, 0}, 63, book.addStyle(u"0.00"_s, true));
    orders.writeAggregate(4, 0, XlsAggregate::Average, {0, 2, 0, 0}, 21);
    orders.writeAggregate(5, 0, XlsAggregate::Max, {0, 2, 0, 0}, qQNaN());
    QCOMPARE(book.addSheet(u"orders"_s).name(), u"orders (2)"_s);
    QCOMPARE(book.addSheet(u"a/b:c*?[x]\\"_s).name(), u"a_b_c___x__"_s);
    const QString longName = u"A name far longer than thirty-one characters"_s;
    QCOMPARE(book.addSheet(longName).name(), longName.left(31));
    QCOMPARE(book.addSheet(longName).name(), longName.left(27) + u" (2)"_s);
    QCOMPARE(book.addSheet(u"'  "_s).name(), u"Sheet6"_s);
    QCOMPARE(book.addSheet(u"Ünïcödé Σ"_s).name(), u"Ünïcödé Σ"_s);
    QCOMPARE(book.addSheet(QString(30, u'x') + u"😀"_s).name(), QString(30, u'x'));
    for (int i = 1; i < book.sheetCount(); ++i)
        book.sheet(i).writeText(i, i, u"on "_s + book.sheet(i).name());

    const XlsDump dump = DumpXls(saved(book, u"formulas.xls"_s));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    const QStringList expected{
        u"sheet \"Orders\" rows=6 cols=1"_s,
        u"A1 number 10.5"_s,
        u"A2 number 21.0"_s,
        u"A3 number 31.5"_s,
        u"A4 number 63.0 fmt=\"0.00\" bold"_s,
        u"A5 number 21.0"_s,
        u"A6 error #NUM!"_s,
        u"sheet \"orders (2)\" rows=2 cols=2"_s,
        u"B2 text \"on orders (2)\""_s,
        u"sheet \"a_b_c___x__\" rows=3 cols=3"_s,
        u"C3 text \"on a_b_c___x__\""_s,
        u"sheet \"A name far longer than thirty-o\" rows=4 cols=4"_s,
        u"D4 text \"on A name far longer than thirty-o\""_s,
        u"sheet \"A name far longer than thir (2)\" rows=5 cols=5"_s,
        u"E5 text \"on A name far longer than thir (2)\""_s,
        u"sheet \"Sheet6\" rows=6 cols=6"_s,
        u"F6 text \"on Sheet6\""_s,
        u"sheet \"Ünïcödé Σ\" rows=7 cols=7"_s,
        u"G7 text \"on Ünïcödé Σ\""_s,
        u"sheet \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\" rows=8 cols=8"_s,
        u"H8 text \"on xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\""_s,
    };
    QCOMPARE(dump.lines, expected);
}

void TestXlsWriter::longSharedStringTable()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    // Enough text for many CONTINUE records, with one- and two-byte strings crossing their borders.
    QStringList texts;
    for (int i = 0; i < 3000; ++i)
        texts << (i % 3 == 0 ? u"Zeile %1 – ä"_s.arg(i) : u"row %1 "_s.arg(i).repeated(i % 7 + 1));
    texts << QString(30000, QChar(0x0416)) << QString(XlsSheet::MaxTextLength, u'x') << u"😀"_s.repeated(5000);
    XlsWorkbook book;
    XlsSheet &sheet = book.addSheet(u"Strings"_s);
    for (int i = 0; i < texts.size(); ++i) {
        sheet.writeText(i, 0, texts[i]);
        sheet.writeText(i, 1, texts[(i * 7) % texts.size()]); // every text used twice
    }

    const XlsDump dump = DumpXls(saved(book, u"strings.xls"_s));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines.size(), 1 + 2 * texts.size());
    for (int i = 0; i < texts.size(); ++i) {
        const QString row = QString::number(i + 1);
        const QString first = dump.lines[1 + 2 * i];
        const QString second = dump.lines[2 + 2 * i];
        QVERIFY2(first.startsWith(u"A"_s + row + u" text \""_s), qPrintable(first));
        QCOMPARE(first.mid(first.indexOf(u'"') + 1).chopped(1), texts[i]);
        QCOMPARE(second.mid(second.indexOf(u'"') + 1).chopped(1), texts[(i * 7) % texts.size()]);
    }
}

void TestXlsWriter::spillToSecondSheet()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    XlsWorkbook book;
    XlsSheetSeries series(book, u"Sheet"_s);
    series.setHeadings({u"Row"_s, u"Label"_s});
    series.setColumnWidth(1, 30);
    const int total = 70000;
    for (int i = 0; i < total; ++i) {
        const XlsRowPlace place = series.appendRow();
        // Hundredths take the short RK form, unless i * 0.01 misses i / 100 in the last bit.
        place.sheet->writeNumber(place.row, 0, i * 0.01);
        place.sheet->writeText(place.row, 1, u"item %1"_s.arg(i));
    }
    QCOMPARE(series.sheets().size(), 2);

    const XlsDump dump = DumpXls(saved(book, u"spill.xls"_s));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    const int perSheet = 65535;
    QCOMPARE(dump.lines.size(), 2 * 3 + 2 * total);
    int line = 0;
    int next = 0;
    for (const QString &name : {u"Sheet1"_s, u"Sheet2"_s}) {
        const int rows = std::min(perSheet, total - next);
        QCOMPARE(dump.lines[line++], u"sheet \"%1\" rows=%2 cols=2"_s.arg(name).arg(rows + 1));
        QCOMPARE(dump.lines[line++], u"A1 text \"Row\" bold"_s);
        QCOMPARE(dump.lines[line++], u"B1 text \"Label\" bold"_s);
        for (int r = 2; r <= rows + 1; ++r, ++next) {
            const QString number = dump.lines[line++];
            const QString prefix = u"A%1 number "_s.arg(r);
            QVERIFY2(number.startsWith(prefix), qPrintable(number));
            QVERIFY2(SameBits(number.mid(prefix.size()).toDouble(), next * 0.01), qPrintable(number));
            QCOMPARE(dump.lines[line++], u"B%1 text \"item %2\""_s.arg(r).arg(next));
        }
    }
    QCOMPARE(next, total);
}

void TestXlsWriter::emptyWorkbook()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    XlsWorkbook empty;
    const QString path = saved(empty, u"empty.xls"_s);
    XlsDump dump = DumpXls(path);
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines, QStringList{u"sheet \"Sheet1\" rows=0 cols=0"_s});
    // Padded to the shortest stream kept out of the mini stream: header, 8 stream sectors, directory, table.
    dump = DumpXls(path, {u"--stream"_s});
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QVERIFY2(dump.lines.value(0).startsWith(u"4096 "_s), qPrintable(dump.lines.value(0)));
    QCOMPARE(QFileInfo(path).size(), 512 * 11);

    XlsWorkbook onlyWidths;
    onlyWidths.addSheet(u"Blank"_s).setColumnWidth(255, 300);
    dump = DumpXls(saved(onlyWidths, u"widths.xls"_s));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines, QStringList{u"sheet \"Blank\" rows=0 cols=0"_s});
}

void TestXlsWriter::compoundFileOfAnySize()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    // Sizes around sector ends and past the 109 table sectors the header can list (one and two extra
    // index sectors).
    for (const qint64 size : {4096ll, 4097ll, 512ll * 127 * 128, 7300000ll, 16500000ll}) {
        const QByteArray stream = RandomBytes(size);
        QFile file(m_dir.filePath(u"stream-%1.cfb"_s.arg(size)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArrayView all(stream);
        QVERIFY(CompoundFile::Write(file, u"Workbook"_s, {all.first(1000), all.sliced(1000)}));
        file.close();
        QCOMPARE(file.size() % 512, 0);
        const XlsDump dump = DumpXls(file.fileName(), {u"--stream"_s});
        QVERIFY2(dump.ok, qPrintable(dump.problem));
        const QByteArray sha = QCryptographicHash::hash(stream, QCryptographicHash::Sha256).toHex();
        QCOMPARE(dump.lines.value(0), u"%1 %2"_s.arg(size).arg(QString::fromLatin1(sha)));
    }
}

void TestXlsWriter::rkKeepsEveryBit()
{
    // Whole numbers and hundredths take the short form; whatever takes it must read back unchanged.
    for (const double value :
         {0.0, -0.0, 42.0, -7.0, 0.1, 12.34, -0.5, 536870911.0, -536870912.0, 1099511627776.0})
        QVERIFY2(EncodeRk(value).has_value(), qPrintable(QString::number(value)));
    for (const double value : {0.123456, 1.0 / 3, 1e300, 536870912.5, qQNaN(), qInf()})
        QVERIFY2(!EncodeRk(value).has_value(), qPrintable(QString::number(value)));
    QRandomGenerator random(RandomSeed());
    for (int i = 0; i < 100000; ++i) {
        const double value = i % 2 ? random.bounded(2e6) - 1e6 : std::round(random.bounded(2e7) - 1e7) / 100;
        if (const auto rk = EncodeRk(value))
            QVERIFY2(SameBits(DecodeRk(*rk), value), qPrintable(QString::number(value, 'g', 17)));
    }
}

void TestXlsWriter::badInputIsRefused()
{
    XlsWorkbook book;
    XlsSheet &sheet = book.addSheet(u"Data"_s);
    sheet.writeNumber(0, 0, 1);
    auto refused = [](auto write, int number) {
        const EngineFailure failure = FailureOf(write);
        return failure.number == number && !failure.description.isEmpty();
    };
    QVERIFY(refused([&] { sheet.writeNumber(65536, 0, 2); }, EngineError::SubscriptOutOfRange));
    QVERIFY(refused([&] { sheet.writeText(5, 256, u"x"_s); }, EngineError::SubscriptOutOfRange));
    QVERIFY(refused([&] { sheet.writeBool(-1, 0, true); }, EngineError::SubscriptOutOfRange));
    QVERIFY(refused(
        [&] {
            sheet.writeAggregate(5, 0, XlsAggregate::Sum, {3, 1, 0, 0}, 0);
        },
        EngineError::SubscriptOutOfRange));
    QVERIFY(refused([&] { sheet.writeText(5, 0, QString(XlsSheet::MaxTextLength + 1, u'y')); },
                    EngineError::ExportFailed));
    QVERIFY(refused([&] { book.addStyle(QString(256, u'0')); }, EngineError::ExportFailed));
    XlsWorkbook other;
    for (const QString &format : {u"0.0"_s, u"0.000"_s, u"0.0000"_s})
        other.addStyle(format);
    QVERIFY(refused([&] { sheet.writeNumber(1, 0, 1, other.addStyle(u"0.00000"_s)); },
                    EngineError::SubscriptOutOfRange));
    QCOMPARE(sheet.rowCount(), 1);

    QVERIFY(!book.save(m_dir.filePath(u"missing/folder/book.xls"_s)));
    QVERIFY(!book.errorString().isEmpty());
    QBuffer full;
    QVERIFY(full.open(QIODevice::ReadOnly)); // a device that takes no bytes
    QVERIFY(!book.write(full));

    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    const XlsDump dump = DumpXls(saved(book, u"survivor.xls"_s));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines, (QStringList{u"sheet \"Data\" rows=1 cols=1"_s, u"A1 number 1.0"_s}));
}

QORLO_TEST_MAIN(TestXlsWriter)
#include "tst_xlswriter.moc"
