#include "engine/xls/XlsSheetSeries.h"
#include "engine/xls/XlsWorkbook.h"
#include "Files.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"

#include <QDateTime>
#include <QTemporaryDir>

using namespace Engine;
using namespace TestSupport;

// A second reader: LibreOffice opens the workbooks and saves what it sees.
class TestXlsLibreOffice : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void readsValuesAsShown();
    void keepsTheFormula();
    void readsLargeSharedStringTables();

private:
    bool convert(const QStringList &files, const QString &format)
    {
        return ConvertWithLibreOffice(files, format, m_dir.path());
    }
    QString text(const QString &name) const { return QString::fromUtf8(ReadFile(m_dir.filePath(name))); }

    QTemporaryDir m_dir;
    QString m_sales;
    QString m_large;
};

// Every test reads the same two workbooks, converted by one call each for speed.
void TestXlsLibreOffice::initTestCase()
{
    QORLO_REQUIRE_PEER(!LibreOffice().isEmpty(), QStringLiteral("soffice (libreoffice-calc-nogui)"));

    XlsWorkbook sales;
    XlsSheet &sheet = sales.addSheet(QStringLiteral("Sales"));
    const QStringList headings{QStringLiteral("Item"), QStringLiteral("Amount"), QStringLiteral("Date")};
    for (int c = 0; c < headings.size(); ++c)
        sheet.writeText(0, c, headings[c], sales.headingStyle());
    const XlsStyle money = sales.addStyle(QStringLiteral("#,##0.00"));
    const QStringList items{QStringLiteral("Café"), QStringLiteral("Ωmega 漢字"),
                            QStringLiteral("Quote \"x\"")};
    const double amounts[] = {1234.5, -7.25, 100};
    for (int r = 0; r < items.size(); ++r) {
        sheet.writeText(r + 1, 0, items[r]);
        sheet.writeNumber(r + 1, 1, amounts[r], money);
        sheet.writeDate(r + 1, 2, QDateTime(QDate(2024, 2, 27 + r), QTime(9, 30)));
    }
    sheet.writeText(4, 0, QStringLiteral("Total"), sales.headingStyle());
    sheet.writeAggregate(4, 1, XlsAggregate::Sum, {1, 3, 1, 1}, 1327.25, money);
    sheet.setColumnWidth(0, 25);
    sales.addSheet(QStringLiteral("Notes ✓")).writeText(1, 1, QStringLiteral("second sheet"));
    m_sales = m_dir.filePath(QStringLiteral("sales.xls"));
    QVERIFY(sales.save(m_sales));

    XlsWorkbook large;
    XlsSheetSeries rows(large, QStringLiteral("Part"));
    for (int i = 0; i < 66000; ++i) {
        const XlsRowPlace place = rows.appendRow();
        place.sheet->writeText(place.row, 0, QStringLiteral("näme %1 ✓").arg(i));
        place.sheet->writeNumber(place.row, 1, i * 0.25);
    }
    m_large = m_dir.filePath(QStringLiteral("large.xls"));
    QVERIFY(large.save(m_large));
    // UTF-8, a header line, cells as shown, every sheet to its own file
    QVERIFY(convert(
        {m_sales, m_large},
        QStringLiteral("csv:Text - txt - csv (StarCalc):44,34,76,1,,1033,false,false,true,false,false,-1")));
    QVERIFY(convert({m_sales}, QStringLiteral("fods")));
}

void TestXlsLibreOffice::readsValuesAsShown()
{
    QCOMPARE(text(QStringLiteral("sales-Sales.csv")),
             QStringLiteral("Item,Amount,Date\n"
                            "Café,\"1,234.50\",27-Feb-2024\n"
                            "Ωmega 漢字,-7.25,28-Feb-2024\n"
                            "\"Quote \"\"x\"\"\",100.00,29-Feb-2024\n"
                            "Total,\"1,327.25\",\n"));
    QCOMPARE(text(QStringLiteral("sales-Notes ✓.csv")), QStringLiteral(",\n,second sheet\n"));
}

void TestXlsLibreOffice::keepsTheFormula()
{
    QVERIFY(
        text(QStringLiteral("sales.fods")).contains(QStringLiteral("table:formula=\"of:=SUM([.B2:.B4])\"")));
}

void TestXlsLibreOffice::readsLargeSharedStringTables()
{
    const QStringList first =
        text(QStringLiteral("large-Part1.csv")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QStringList second =
        text(QStringLiteral("large-Part2.csv")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(first.size(), 65536);
    QCOMPARE(second.size(), 66000 - 65536);
    QCOMPARE(first.first(), QStringLiteral("näme 0 ✓,0"));
    QCOMPARE(first.at(40001), QStringLiteral("näme 40001 ✓,10000.25"));
    QCOMPARE(second.last(), QStringLiteral("näme 65999 ✓,16499.75"));
}

QORLO_TEST_MAIN(TestXlsLibreOffice)
#include "tst_xlslibreoffice.moc"
