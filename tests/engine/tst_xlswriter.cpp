#include "engine/EngineError.h"
#include "engine/xls/CompoundFile.h"
#include "engine/xls/XlsRk.h"
#include "engine/xls/XlsSheetSeries.h"
#include "engine/xls/XlsWorkbook.h"
#include "Files.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstring>

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
    QORLO_REQUIRE_PEER(XlrdInstalled(), QStringLiteral("python3-xlrd"));
    XlsWorkbook book;
    XlsSheet &sheet = book.addSheet(QStringLiteral("Cells"));
    const QStringList headings{QStringLiteral("Text"), QStringLiteral("Number"), QStringLiteral("Date"),
                               QStringLiteral("Other")};
    for (int c = 0; c < headings.size(); ++c)
        sheet.writeText(0, c, headings[c], book.headingStyle());
    const QStringList texts{QStringLiteral("Café crème"),
                            QStringLiteral("Grüße, Ørsted"),
                            QStringLiteral("Ωmega ✓ 漢字"),
                            QStringLiteral("smile 😀"),
                            QString(),
                            QStringLiteral("line\nbreak \"quoted\""),
                            QStringLiteral("price €5")};
    for (int r = 0; r < texts.size(); ++r)
        sheet.writeText(r + 1, 0, texts[r]);
    const double numbers[] = {42, -7, 0.1, 12.34, -0.5, 1234567.891, 536870911, 536870912, 1e300, -1e-300};
    for (int r = 0; r < int(std::size(numbers)); ++r)
        sheet.writeNumber(r + 1, 1, numbers[r]);
    const XlsStyle twoPlaces = book.addStyle(QStringLiteral("#,##0.00"));
    QCOMPARE(book.addStyle(QStringLiteral("#,##0.00")), twoPlaces);
    sheet.writeNumber(11, 1, 3, twoPlaces);
    sheet.writeNumber(12, 1, 1234.5, book.addStyle(QStringLiteral("#,##0.00"), true));
    sheet.writeNumber(13, 1, 0.25, book.addStyle(QStringLiteral("0%")));
    sheet.writeDate(1, 2, QDateTime(QDate(2024, 2, 29), QTime(13, 45)));
    sheet.writeDate(2, 2, QDateTime(QDate(1900, 3, 1), QTime(0, 0)));
    sheet.writeDate(3, 2, 36526.75);
    sheet.writeNumber(4, 2, 45000.5, book.addStyle(QStringLiteral("yyyy-mm-dd hh:mm")));
    sheet.writeDate(5, 2, QDateTime());
    sheet.writeBool(1, 3, true);
    sheet.writeBool(2, 3, false);
    sheet.writeNumber(3, 3, qQNaN());
    sheet.writeNumber(4, 3, -qInf());
    sheet.writeBlank(5, 3, book.headingStyle());
    sheet.writeText(6, 3, QStringLiteral("before"));
    sheet.writeText(6, 3, QStringLiteral("after"));

    const XlsDump dump = DumpXls(saved(book, QStringLiteral("cells.xls")));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines,
             QString::fromUtf8(ReadFile(DataFile(QStringLiteral("engine/xls/cells.expected.txt"))))
                 .split(QLatin1Char('\n'), Qt::SkipEmptyParts));
}

void TestXlsWriter::formulasAndSheetNames()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), QStringLiteral("python3-xlrd"));
    XlsWorkbook book;
    XlsSheet &orders = book.addSheet(QStringLiteral("Orders"));
    for (int r = 0; r < 3; ++r)
        orders.writeNumber(r, 0, 10.5 * (r + 1));
    orders.writeAggregate(3, 0, XlsAggregate::Sum, {0, 2, 0, 0}, 63,
                          book.addStyle(QStringLiteral("0.00"), true));
    orders.writeAggregate(4, 0, XlsAggregate::Average, {0, 2, 0, 0}, 21);
    orders.writeAggregate(5, 0, XlsAggregate::Max, {0, 2, 0, 0}, qQNaN());
    QCOMPARE(book.addSheet(QStringLiteral("orders")).name(), QStringLiteral("orders (2)"));
    QCOMPARE(book.addSheet(QStringLiteral("a/b:c*?[x]\\")).name(), QStringLiteral("a_b_c___x__"));
    const QString longName = QStringLiteral("A name far longer than thirty-one characters");
    QCOMPARE(book.addSheet(longName).name(), longName.left(31));
    QCOMPARE(book.addSheet(longName).name(), longName.left(27) + QStringLiteral(" (2)"));
    QCOMPARE(book.addSheet(QStringLiteral("'  ")).name(), QStringLiteral("Sheet6"));
    QCOMPARE(book.addSheet(QStringLiteral("Ünïcödé Σ")).name(), QStringLiteral("Ünïcödé Σ"));
    QCOMPARE(book.addSheet(QString(30, QLatin1Char('x')) + QStringLiteral("😀")).name(),
             QString(30, QLatin1Char('x')));
    for (int i = 1; i < book.sheetCount(); ++i)
        book.sheet(i).writeText(i, i, QStringLiteral("on ") + book.sheet(i).name());

    const XlsDump dump = DumpXls(saved(book, QStringLiteral("formulas.xls")));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    const QStringList expected{
        QStringLiteral("sheet \"Orders\" rows=6 cols=1"),
        QStringLiteral("A1 number 10.5"),
        QStringLiteral("A2 number 21.0"),
        QStringLiteral("A3 number 31.5"),
        QStringLiteral("A4 number 63.0 fmt=\"0.00\" bold"),
        QStringLiteral("A5 number 21.0"),
        QStringLiteral("A6 error #NUM!"),
        QStringLiteral("sheet \"orders (2)\" rows=2 cols=2"),
        QStringLiteral("B2 text \"on orders (2)\""),
        QStringLiteral("sheet \"a_b_c___x__\" rows=3 cols=3"),
        QStringLiteral("C3 text \"on a_b_c___x__\""),
        QStringLiteral("sheet \"A name far longer than thirty-o\" rows=4 cols=4"),
        QStringLiteral("D4 text \"on A name far longer than thirty-o\""),
        QStringLiteral("sheet \"A name far longer than thir (2)\" rows=5 cols=5"),
        QStringLiteral("E5 text \"on A name far longer than thir (2)\""),
        QStringLiteral("sheet \"Sheet6\" rows=6 cols=6"),
        QStringLiteral("F6 text \"on Sheet6\""),
        QStringLiteral("sheet \"Ünïcödé Σ\" rows=7 cols=7"),
        QStringLiteral("G7 text \"on Ünïcödé Σ\""),
        QStringLiteral("sheet \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\" rows=8 cols=8"),
        QStringLiteral("H8 text \"on xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\""),
    };
    QCOMPARE(dump.lines, expected);
}

void TestXlsWriter::longSharedStringTable()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), QStringLiteral("python3-xlrd"));
    // Enough text for many CONTINUE records, with one- and two-byte strings crossing their borders.
    QStringList texts;
    for (int i = 0; i < 3000; ++i)
        texts << (i % 3 == 0 ? QStringLiteral("Zeile %1 – ä").arg(i)
                             : QStringLiteral("row %1 ").arg(i).repeated(i % 7 + 1));
    texts << QString(30000, QChar(0x0416)) << QString(XlsSheet::MaxTextLength, QLatin1Char('x'))
          << QStringLiteral("😀").repeated(5000);
    XlsWorkbook book;
    XlsSheet &sheet = book.addSheet(QStringLiteral("Strings"));
    for (int i = 0; i < texts.size(); ++i) {
        sheet.writeText(i, 0, texts[i]);
        sheet.writeText(i, 1, texts[(i * 7) % texts.size()]); // every text used twice
    }

    const XlsDump dump = DumpXls(saved(book, QStringLiteral("strings.xls")));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines.size(), 1 + 2 * texts.size());
    for (int i = 0; i < texts.size(); ++i) {
        const QString row = QString::number(i + 1);
        const QString first = dump.lines[1 + 2 * i];
        const QString second = dump.lines[2 + 2 * i];
        QVERIFY2(first.startsWith(QStringLiteral("A") + row + QStringLiteral(" text \"")), qPrintable(first));
        QCOMPARE(first.mid(first.indexOf(QLatin1Char('"')) + 1).chopped(1), texts[i]);
        QCOMPARE(second.mid(second.indexOf(QLatin1Char('"')) + 1).chopped(1), texts[(i * 7) % texts.size()]);
    }
}

void TestXlsWriter::spillToSecondSheet()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), QStringLiteral("python3-xlrd"));
    XlsWorkbook book;
    XlsSheetSeries series(book, QStringLiteral("Sheet"));
    series.setHeadings({QStringLiteral("Row"), QStringLiteral("Label")});
    series.setColumnWidth(1, 30);
    const int total = 70000;
    for (int i = 0; i < total; ++i) {
        const XlsRowPlace place = series.appendRow();
        // Hundredths take the short RK form, unless i * 0.01 misses i / 100 in the last bit.
        place.sheet->writeNumber(place.row, 0, i * 0.01);
        place.sheet->writeText(place.row, 1, QStringLiteral("item %1").arg(i));
    }
    QCOMPARE(series.sheets().size(), 2);

    const XlsDump dump = DumpXls(saved(book, QStringLiteral("spill.xls")));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    const int perSheet = XlsSheet::MaxRows - 1;
    QCOMPARE(dump.lines.size(), 2 * 3 + 2 * total);
    int line = 0;
    int next = 0;
    for (const QString &name : {QStringLiteral("Sheet1"), QStringLiteral("Sheet2")}) {
        const int rows = std::min(perSheet, total - next);
        QCOMPARE(dump.lines[line++], QStringLiteral("sheet \"%1\" rows=%2 cols=2").arg(name).arg(rows + 1));
        QCOMPARE(dump.lines[line++], QStringLiteral("A1 text \"Row\" bold"));
        QCOMPARE(dump.lines[line++], QStringLiteral("B1 text \"Label\" bold"));
        for (int r = 2; r <= rows + 1; ++r, ++next) {
            const QString number = dump.lines[line++];
            const QString prefix = QStringLiteral("A%1 number ").arg(r);
            QVERIFY2(number.startsWith(prefix), qPrintable(number));
            QVERIFY2(SameBits(number.mid(prefix.size()).toDouble(), next * 0.01), qPrintable(number));
            QCOMPARE(dump.lines[line++], QStringLiteral("B%1 text \"item %2\"").arg(r).arg(next));
        }
    }
    QCOMPARE(next, total);
}

void TestXlsWriter::emptyWorkbook()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), QStringLiteral("python3-xlrd"));
    XlsWorkbook empty;
    const QString path = saved(empty, QStringLiteral("empty.xls"));
    XlsDump dump = DumpXls(path);
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines, QStringList{QStringLiteral("sheet \"Sheet1\" rows=0 cols=0")});
    // Padded to the shortest stream kept out of the mini stream: header, 8 stream sectors, directory, table.
    dump = DumpXls(path, {QStringLiteral("--stream")});
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QVERIFY2(dump.lines.value(0).startsWith(QStringLiteral("4096 ")), qPrintable(dump.lines.value(0)));
    QCOMPARE(QFileInfo(path).size(), 512 * 11);

    XlsWorkbook onlyWidths;
    onlyWidths.addSheet(QStringLiteral("Blank")).setColumnWidth(255, 300);
    dump = DumpXls(saved(onlyWidths, QStringLiteral("widths.xls")));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines, QStringList{QStringLiteral("sheet \"Blank\" rows=0 cols=0")});
}

void TestXlsWriter::compoundFileOfAnySize()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), QStringLiteral("python3-xlrd"));
    // Sizes around sector ends and past the 109 table sectors the header can list (one and two extra
    // index sectors).
    for (const qint64 size : {4096ll, 4097ll, 512ll * 127 * 128, 7300000ll, 16500000ll}) {
        QByteArray stream(size, Qt::Uninitialized);
        QRandomGenerator random(RandomSeed() + quint32(size));
        for (char &byte : stream)
            byte = char(random.bounded(256));
        QFile file(m_dir.filePath(QStringLiteral("stream-%1.cfb").arg(size)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArrayView all(stream);
        QVERIFY(CompoundFile::Write(file, QStringLiteral("Workbook"), {all.first(1000), all.sliced(1000)}));
        file.close();
        QCOMPARE(file.size() % 512, 0);
        const XlsDump dump = DumpXls(file.fileName(), {QStringLiteral("--stream")});
        QVERIFY2(dump.ok, qPrintable(dump.problem));
        const QByteArray sha = QCryptographicHash::hash(stream, QCryptographicHash::Sha256).toHex();
        QCOMPARE(dump.lines.value(0), QStringLiteral("%1 %2").arg(size).arg(QString::fromLatin1(sha)));
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
    XlsSheet &sheet = book.addSheet(QStringLiteral("Data"));
    sheet.writeNumber(0, 0, 1);
    auto refused = [](auto write, int number) {
        try {
            write();
        } catch (const EngineError &e) {
            return e.number() == number && !e.description().isEmpty();
        }
        return false;
    };
    QVERIFY(refused([&] { sheet.writeNumber(XlsSheet::MaxRows, 0, 2); }, EngineError::SubscriptOutOfRange));
    QVERIFY(refused([&] { sheet.writeText(5, XlsSheet::MaxColumns, QStringLiteral("x")); },
                    EngineError::SubscriptOutOfRange));
    QVERIFY(refused([&] { sheet.writeBool(-1, 0, true); }, EngineError::SubscriptOutOfRange));
    QVERIFY(refused(
        [&] {
            sheet.writeAggregate(5, 0, XlsAggregate::Sum, {3, 1, 0, 0}, 0);
        },
        EngineError::SubscriptOutOfRange));
    QVERIFY(refused([&] { sheet.writeText(5, 0, QString(XlsSheet::MaxTextLength + 1, QLatin1Char('y'))); },
                    EngineError::ExportFailed));
    QVERIFY(refused([&] { book.addStyle(QString(256, QLatin1Char('0'))); }, EngineError::ExportFailed));
    XlsWorkbook other;
    for (const QString &format : {QStringLiteral("0.0"), QStringLiteral("0.000"), QStringLiteral("0.0000")})
        other.addStyle(format);
    QVERIFY(refused([&] { sheet.writeNumber(1, 0, 1, other.addStyle(QStringLiteral("0.00000"))); },
                    EngineError::SubscriptOutOfRange));
    QCOMPARE(sheet.rowCount(), 1);

    QVERIFY(!book.save(m_dir.filePath(QStringLiteral("missing/folder/book.xls"))));
    QVERIFY(!book.errorString().isEmpty());
    QBuffer full;
    QVERIFY(full.open(QIODevice::ReadOnly)); // a device that takes no bytes
    QVERIFY(!book.write(full));

    QORLO_REQUIRE_PEER(XlrdInstalled(), QStringLiteral("python3-xlrd"));
    const XlsDump dump = DumpXls(saved(book, QStringLiteral("survivor.xls")));
    QVERIFY2(dump.ok, qPrintable(dump.problem));
    QCOMPARE(dump.lines,
             (QStringList{QStringLiteral("sheet \"Data\" rows=1 cols=1"), QStringLiteral("A1 number 1.0")}));
}

QORLO_TEST_MAIN(TestXlsWriter)
#include "tst_xlswriter.moc"
