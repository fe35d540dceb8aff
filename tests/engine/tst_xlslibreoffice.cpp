#include "engine/xls/XlsSheetSeries.h"
#include "engine/xls/XlsWorkbook.h"
#include "Files.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"

#include <QDateTime>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

// A second reader: LibreOffice opens the workbooks and saves what it sees.
class TestXlsLibreOffice : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void readsValuesAndTheFormula();
    void readsLargeSharedStringTables();

private:
    QString text(const QString &name) const { return QString::fromUtf8(ReadFile(m_dir.filePath(name))); }

    QTemporaryDir m_dir;
    QString m_sales;
    QString m_large;
};

// Every test reads the same two workbooks, converted by one call each for speed.
void TestXlsLibreOffice::initTestCase()
{
    QORLO_REQUIRE_PEER(!LibreOffice().isEmpty(), u"soffice (libreoffice-calc-nogui)"_s);

    XlsWorkbook sales;
    XlsSheet &sheet = sales.addSheet(u"Sales"_s);
    const QStringList headings{u"Item"_s, u"Amount"_s, u"Date"_s};
    for (int c = 0; c < headings.size(); ++c)
        sheet.writeText(0, c, headings[c], sales.headingStyle());
    const XlsStyle money = sales.addStyle(u"#,##0.00"_s);
    const QStringList items{u"Café"_s, u"Ωmega 漢字"_s, u"Quote \"x\""_s};
    const double amounts[] = {1234.5, -7.25, 100};
    for (int r = 0; r < items.size(); ++r) {
        sheet.writeText(r + 1, 0, items[r]);
        sheet.writeNumber(r + 1, 1, amounts[r], money);
        sheet.writeDate(r + 1, 2, QDateTime(QDate(2024, 2, 27 + r), QTime(9, 30)));
    }
    sheet.writeText(4, 0, u"Total"_s, sales.headingStyle());
    sheet.writeAggregate(4, 1, XlsAggregate::Sum, {1, 3, 1, 1}, 1327.25, money);
    sheet.setColumnWidth(0, 25);
    sales.addSheet(u"Notes ✓"_s).writeText(1, 1, u"second sheet"_s);
    m_sales = m_dir.filePath(u"sales.xls"_s);
    QVERIFY(sales.save(m_sales));

    XlsWorkbook large;
    XlsSheetSeries rows(large, u"Part"_s);
    for (int i = 0; i < 66000; ++i) {
        const XlsRowPlace place = rows.appendRow();
        place.sheet->writeText(place.row, 0, u"näme %1 ✓"_s.arg(i));
        place.sheet->writeNumber(place.row, 1, i * 0.25);
    }
    m_large = m_dir.filePath(u"large.xls"_s);
    QVERIFY(large.save(m_large));
    // UTF-8, a header line, cells as shown, every sheet to its own file
    QVERIFY(ConvertWithLibreOffice(
        {m_sales, m_large},
        u"csv:Text - txt - csv (StarCalc):44,34,76,1,,1033,false,false,true,false,false,-1"_s, m_dir.path()));
    QVERIFY(ConvertWithLibreOffice({m_sales}, u"fods"_s, m_dir.path()));
}

void TestXlsLibreOffice::readsValuesAndTheFormula()
{
    QCOMPARE(text(u"sales-Sales.csv"_s), u"Item,Amount,Date\n"
                                         "Café,\"1,234.50\",27-Feb-2024\n"
                                         "Ωmega 漢字,-7.25,28-Feb-2024\n"
                                         "\"Quote \"\"x\"\"\",100.00,29-Feb-2024\n"
                                         "Total,\"1,327.25\",\n"_s);
    QCOMPARE(text(u"sales-Notes ✓.csv"_s), u",\n,second sheet\n"_s);
    QVERIFY(text(u"sales.fods"_s).contains(u"table:formula=\"of:=SUM([.B2:.B4])\""_s));
}

void TestXlsLibreOffice::readsLargeSharedStringTables()
{
    const QStringList first = text(u"large-Part1.csv"_s).split(u'\n', Qt::SkipEmptyParts);
    const QStringList second = text(u"large-Part2.csv"_s).split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(first.size(), 65536);
    QCOMPARE(second.size(), 66000 - 65536);
    QCOMPARE(first.first(), u"näme 0 ✓,0"_s);
    QCOMPARE(first.at(40001), u"näme 40001 ✓,10000.25"_s);
    QCOMPARE(second.last(), u"näme 65999 ✓,16499.75"_s);
}

QORLO_TEST_MAIN(TestXlsLibreOffice)
#include "tst_xlslibreoffice.moc"
