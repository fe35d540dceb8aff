// Cross-tabs: the sums of each region and product with row and column totals, checked against SQL in
// the text of the pages; columns that do not fit across a page go on to the next one.

#include "EngineExports.h"
#include "Readers.h"
#include "TestMain.h"

#include <QRegularExpression>
#include <QSqlQuery>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString Head = uR"(<title>Cross</title>
<table name="Sales" location="sales" dll="sqlite"><property name="Database">demo.db</property></table>
<query>SELECT region, product, customer, amount FROM {Sales} ORDER BY region</query>
)"_s;

QString Number(double value)
{
    return QString::number(value, 'f', 2);
}

} // namespace

class TestCrosstab : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cellsAndTotalsMatchTheDatabase();
    void wideTablesGoOnToFurtherPages();
    void crosstabInAGroupFooterCountsItsGroup();
    void faultsNameTheCrosstab();

private:
    // The text of each page of the PDF, as pdftotext keeps its lines.
    QStringList pages(const QString &layout)
    {
        return TestSupport::PdfText(m_reports.exportReport(u"cross"_s, Head + layout, PdfFormat), 0, true)
            .split(u'\f');
    }

    TestSupport::ReportFolder m_reports;
};

void TestCrosstab::initTestCase()
{
    QVERIFY(TestSupport::UseDemoDatabase(QDir(m_reports.dir.path())));
}

void TestCrosstab::cellsAndTotalsMatchTheDatabase()
{
    const QStringList text = pages(uR"(<layout><column field="amount"/>
  <reportHeader><crosstab rows="region" columns="product" field="amount" format="0.00" cellWidth="75"/></reportHeader>
</layout>)"_s);
    const QStringList lines = text.first().split(u'\n');
    QSqlQuery products(u"SELECT DISTINCT product FROM sales ORDER BY product"_s);
    QStringList captions;
    while (products.next())
        captions.append(products.value(0).toString());
    const qsizetype head =
        lines.indexOf(QRegularExpression(u"^\\s*"_s + captions.join(u"\\s+"_s) + u"\\s+Total\\s*$"_s));
    QVERIFY2(head >= 0, qPrintable(text.first().left(1500)));
    QSqlQuery regions(u"SELECT region, SUM(amount) FROM sales GROUP BY region ORDER BY region"_s);
    int row = 1;
    while (regions.next()) {
        QStringList expected{regions.value(0).toString()};
        for (const QString &product : captions) {
            QSqlQuery cell;
            cell.prepare(u"SELECT SUM(amount) FROM sales WHERE region = ? AND product = ?"_s);
            cell.addBindValue(regions.value(0));
            cell.addBindValue(product);
            QVERIFY(cell.exec() && cell.next());
            expected.append(Number(cell.value(0).toDouble()));
        }
        expected.append(Number(regions.value(1).toDouble()));
        QCOMPARE(lines.value(head + row++).simplified(), expected.join(u' '));
    }
    QSqlQuery totals(u"SELECT product, SUM(amount) FROM sales GROUP BY product ORDER BY product"_s);
    QStringList expected{u"Total"_s};
    while (totals.next())
        expected.append(Number(totals.value(1).toDouble()));
    QSqlQuery all(u"SELECT SUM(amount) FROM sales"_s);
    QVERIFY(all.next());
    expected.append(Number(all.value(0).toDouble()));
    QCOMPARE(lines.value(head + row).simplified(), expected.join(u' '));
}

void TestCrosstab::wideTablesGoOnToFurtherPages()
{
    // Customers as columns: more than fit across, so later columns go on to later pages, each with the
    // regions again, and the row totals come last.
    const QStringList text = pages(uR"(<layout><column field="amount"/>
  <reportHeader><crosstab rows="region" columns="customer" field="amount" function="count" cellWidth="90"/></reportHeader>
</layout>)"_s);
    QSqlQuery customers(u"SELECT COUNT(DISTINCT customer) FROM sales"_s);
    QVERIFY(customers.next());
    const int perPage = int((595.28 - 72 - 40) / 90); // at most: the labels take a little
    QVERIFY(customers.value(0).toInt() > perPage);
    int withRegions = 0;
    for (const QString &page : text)
        withRegions += page.contains(u"West"_s) && page.contains(u"North"_s) ? 1 : 0;
    QVERIFY2(withRegions >= 2, qPrintable(text.join(u"\n=====\n"_s).left(3000)));
    QSqlQuery count(u"SELECT COUNT(*) FROM sales WHERE region = 'North'"_s);
    QVERIFY(count.next());
    const QString lastTablePage = text.value(withRegions - 1);
    QVERIFY(lastTablePage.contains(
        QRegularExpression(u"North\\s.*\\s"_s + count.value(0).toString() + u"\\n"_s)));
}

void TestCrosstab::crosstabInAGroupFooterCountsItsGroup()
{
    const QStringList text = pages(uR"(<layout><column field="amount"/>
  <group field="region" caption="Region {value}">
    <footer><crosstab rows="product" columns="region" field="customer" function="distinctcount"/></footer>
  </group>
</layout>)"_s);
    const QString all = text.join(u'\n');
    QSqlQuery expected(
        u"SELECT region, product, COUNT(DISTINCT customer) FROM sales GROUP BY region, product"_s);
    while (expected.next()) {
        const QRegularExpression line(u"\\n\\s*%1\\s+%2\\s+%2\\s*\\n"_s.arg(expected.value(1).toString(),
                                                                            expected.value(2).toString()));
        const qsizetype region = all.indexOf(u"Region "_s + expected.value(0).toString());
        QVERIFY2(all.indexOf(line, region) > region, qPrintable(line.pattern()));
    }
}

void TestCrosstab::faultsNameTheCrosstab()
{
    const QString unknown =
        TestSupport::FailureOf([&] {
            pages(
                uR"(<layout><reportFooter><crosstab rows="regoin" columns="product" field="amount"/></reportFooter></layout>)"_s);
        }).description;
    QVERIFY2(unknown.contains(u"The cross-tab of report footer names the field \"regoin\", which the report "
                              "does not have; the nearest are: region"_s),
             qPrintable(unknown));
    const QString inDetails =
        TestSupport::FailureOf([&] {
            pages(
                uR"(<layout><details><crosstab rows="region" columns="product" field="amount"/></details></layout>)"_s);
        }).description;
    QVERIFY2(inDetails.contains(u"charts and cross-tabs stand in a header or footer"_s),
             qPrintable(inDetails));
}

QORLO_TEST_MAIN(TestCrosstab)
#include "tst_crosstab.moc"
