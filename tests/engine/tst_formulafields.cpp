// Formula fields, summaries in group headers and footers, groups chosen, sorted and cut to the first N by
// their summaries, records sorted by a formula field, running totals and record numbers: the demo
// database's own sums are the oracle.

#include "EngineExports.h"
#include "EngineOracles.h"
#include "TestMain.h"

#include <QRegularExpression>
#include <QSqlQuery>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString Head = uR"(<title>Regions by Sales</title>
<table name="Sales" location="sales" dll="sqlite"><property name="Database">demo.db</property></table>
<query>SELECT id, region, product, amount FROM {Sales} ORDER BY region, product, id</query>
<formula name="net">amount * 0.8</formula>
<formula name="label">region &amp; '/' &amp; {@code}</formula>
<formula name="code">upper(product)</formula>
<formula name="size">iif(amount &gt;= 1000, 'large', 'small')</formula>
<runningTotal name="cumulative" field="amount"/>
<runningTotal name="regionRunning" field="amount" reset="region"/>
)"_s;

// The regions above 330,000, each with its two best products, the best region first.
const QString Chosen = uR"xml(<layout>
  <column field="id" width="40"/>
  <column field="net" width="60" format="0.00" align="right"/>
  <column field="label" width="110"/>
  <column field="size" width="40"/>
  <column field="cumulative" width="70" format="0.00" align="right"/>
  <column field="regionRunning" width="70" format="0.00" align="right"/>
  <column field="GroupRecordNumber" caption="#" width="30" align="right"/>
  <column field="RecordNumber" caption="No" width="40" align="right"/>
  <column field="amount" width="60" format="0.00" align="right"/>
  <group field="region" caption="Region {value}: {Sum(amount):0.00} in {Count(id)} orders of {DistinctCount(product)} products"
         select="Sum(amount) &gt; 330000" sort="Sum(amount)" order="descending" footer="{value} total">
    <subtotal field="id" function="count"/>
    <subtotal field="net" function="average"/>
    <subtotal field="amount"/>
  </group>
  <group field="product" caption="{value} ({PercentOfSum(amount):0.0}% of group {GroupNumber})"
         sort="Sum(amount)" order="descending" top="2">
    <subtotal field="amount" function="maximum"/>
  </group>
  <grandTotal field="amount"/>
</layout>)xml"_s;

double Number(const QString &text)
{
    return QString(text).remove(u',').toDouble();
}

QList<QStringList> CsvRows(const QString &text)
{
    QList<QStringList> rows;
    for (const QString &line : text.split(u"\r\n"_s, Qt::SkipEmptyParts)) {
        QStringList cells;
        for (const QString &cell : line.split(u','))
            cells.append(QString(cell).remove(u'"'));
        rows.append(cells);
    }
    return rows;
}

} // namespace

class TestFormulaFields : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void recordsOfChosenGroups();
    void captionsAndFootersShowTheSummaries();
    void recordsSortedByAFormulaField();
    void faultsNameTheFormula();

private:
    // The file NAME exported in `format`, comma-separated values with quoted texts for CSV.
    QString exportReport(const QString &name, const QString &layout, int format)
    {
        return EngineOracles::ReadUtf8(m_reports.exportReport(name, Head + layout, format));
    }
    QString failure(const QString &body);
    // The regions and products as the report chooses them, by SQL: region, product, region's shown sum.
    QList<std::tuple<QString, QString, double>> chosenGroups();

    TestSupport::ReportFolder m_reports;
};

void TestFormulaFields::initTestCase()
{
    QVERIFY(TestSupport::UseDemoDatabase(QDir(m_reports.dir.path())));
}

QString TestFormulaFields::failure(const QString &body)
{
    return TestSupport::FailureOf([&] { exportReport(u"fault"_s, body, CharSeparatedFormat); }).description;
}

QList<std::tuple<QString, QString, double>> TestFormulaFields::chosenGroups()
{
    QSqlQuery query;
    query.exec(
        u"WITH products AS (SELECT region, product, SUM(amount) AS total, ROW_NUMBER() OVER "
        "(PARTITION BY region ORDER BY SUM(amount) DESC) AS place FROM sales GROUP BY region, product), "
        "regions AS (SELECT region FROM sales GROUP BY region HAVING SUM(amount) > 330000), "
        "shown AS (SELECT p.region, p.product, p.total, SUM(p.total) OVER (PARTITION BY p.region) AS "
        "regionTotal FROM products p JOIN regions r ON r.region = p.region WHERE p.place <= 2) "
        "SELECT region, product, regionTotal FROM shown ORDER BY regionTotal DESC, total DESC"_s);
    QList<std::tuple<QString, QString, double>> groups;
    while (query.next())
        groups.append({query.value(0).toString(), query.value(1).toString(), query.value(2).toDouble()});
    return groups;
}

void TestFormulaFields::recordsOfChosenGroups()
{
    const QList<QStringList> rows = CsvRows(exportReport(u"chosen"_s, Chosen, CharSeparatedFormat));
    QCOMPARE(rows.first(), (QStringList{u"Region"_s, u"product"_s, u"id"_s, u"net"_s, u"label"_s, u"size"_s,
                                        u"cumulative"_s, u"regionRunning"_s, u"#"_s, u"No"_s, u"amount"_s}));
    const auto groups = chosenGroups();
    QCOMPARE(groups.size(), 6);
    int row = 1;
    double cumulative = 0;
    double regionRunning = 0;
    QString region;
    for (const auto &[groupRegion, product, regionTotal] : groups) {
        QSqlQuery records;
        QVERIFY(
            records.prepare(u"SELECT id, amount FROM sales WHERE region = ? AND product = ? ORDER BY id"_s));
        records.addBindValue(groupRegion);
        records.addBindValue(product);
        QVERIFY(records.exec());
        regionRunning = groupRegion == region ? regionRunning : 0;
        region = groupRegion;
        for (int inGroup = 1; records.next(); ++inGroup, ++row) {
            const double amount = records.value(1).toDouble();
            cumulative += amount;
            regionRunning += amount;
            const QStringList &cells = rows.value(row);
            QCOMPARE(cells.mid(0, 3), (QStringList{region, product, records.value(0).toString()}));
            QCOMPARE(Number(cells[3]), amount * 0.8);
            QCOMPARE(cells[4], region + u'/' + product.toUpper());
            QCOMPARE(cells[5], amount >= 1000 ? u"large"_s : u"small"_s);
            QVERIFY2(qAbs(Number(cells[6]) - cumulative) < 0.005, qPrintable(cells.join(u',')));
            QVERIFY2(qAbs(Number(cells[7]) - regionRunning) < 0.005, qPrintable(cells.join(u',')));
            QCOMPARE(cells[8].toInt(), inGroup);
            QCOMPARE(cells[9].toInt(), row);
        }
    }
    QCOMPARE(rows.size(), row);
}

void TestFormulaFields::captionsAndFootersShowTheSummaries()
{
    const QString text = exportReport(u"chosen"_s, Chosen, PaginatedTextFormat);
    const auto groups = chosenGroups();
    double grand = 0;
    QString region;
    int productNumber = 0;
    for (const auto &[groupRegion, product, regionTotal] : groups) {
        QSqlQuery sums;
        QVERIFY(sums.prepare(u"SELECT SUM(amount), MAX(amount), COUNT(*) FROM sales "
                             "WHERE region = ? AND product = ?"_s));
        sums.addBindValue(groupRegion);
        sums.addBindValue(product);
        QVERIFY(sums.exec() && sums.next());
        ++productNumber;
        if (groupRegion != region) {
            region = groupRegion;
            grand += regionTotal;
            QSqlQuery shown;
            QVERIFY(shown.prepare(
                u"SELECT COUNT(*), AVG(amount * 0.8) FROM sales WHERE region = ? AND product IN "
                "(SELECT product FROM sales WHERE region = ? GROUP BY product ORDER BY SUM(amount) "
                "DESC LIMIT 2)"_s));
            shown.addBindValue(groupRegion);
            shown.addBindValue(groupRegion);
            QVERIFY(shown.exec() && shown.next());
            // The header knows its group's total before the group's records follow.
            const QString header = u"Region %1: %2 in %3 orders of 2 products"_s.arg(
                groupRegion, QString::number(regionTotal, 'f', 2), shown.value(0).toString());
            QVERIFY2(text.contains(header + u"\r\n"_s), qPrintable(header));
            // The footer's label has a line of its own, as the count stands in the first column.
            const QStringList footer{shown.value(0).toString(),
                                     QString::number(shown.value(1).toDouble(), 'f', 2),
                                     QString::number(regionTotal, 'f', 2)};
            const qsizetype label = text.indexOf(groupRegion + u" total\r\n"_s);
            QVERIFY2(label > 0, qPrintable(groupRegion));
            const QStringList after = text.mid(label).split(u"\r\n"_s, Qt::SkipEmptyParts).mid(1, 1);
            QCOMPARE(after.value(0).simplified(), footer.join(u' '));
        }
        const QString caption =
            u"%1 (%2% of group %3)"_s
                .arg(product, QString::number(sums.value(0).toDouble() / regionTotal * 100, 'f', 1))
                .arg(productNumber);
        QVERIFY2(text.contains(caption + u"\r\n"_s), qPrintable(caption));
        QVERIFY(text.contains(QRegularExpression(
            u"Total %1\\s+%2\\r\\n"_s.arg(product, QString::number(sums.value(1).toDouble(), 'f', 2)))));
    }
    QVERIFY(text.contains(QRegularExpression(u"Grand total\\s+%1"_s.arg(QString::number(grand, 'f', 2)))));
    QVERIFY(!text.contains(u"Region North"_s));
}

void TestFormulaFields::recordsSortedByAFormulaField()
{
    // Within each product the largest net first; the groups keep the query's order.
    const QList<QStringList> rows = CsvRows(exportReport(u"sorted"_s, uR"(<layout>
  <column field="id"/><column field="net"/>
  <group field="region"/><group field="product"/>
  <sort field="net" order="descending"/>
</layout>)"_s,
                                                         CharSeparatedFormat));
    QSqlQuery query(u"SELECT region, product, id, amount * 0.8 FROM sales "
                    "ORDER BY region, product, amount DESC"_s);
    int row = 1;
    while (query.next()) {
        const QStringList &cells = rows.value(row++);
        QCOMPARE(cells.mid(0, 2), (QStringList{query.value(0).toString(), query.value(1).toString()}));
        QCOMPARE(Number(cells[3]), query.value(3).toDouble());
    }
    QCOMPARE(row, 3001);
}

void TestFormulaFields::faultsNameTheFormula()
{
    const QString report = m_reports.path(u"fault.rpt"_s);
    QCOMPARE(failure(u"<formula name=\"a\">{@b} + 1</formula><formula name=\"b\">a * 2</formula>"_s),
             u"Report %1: The formula fields refer to each other in a circle: a -> b -> a"_s.arg(report));
    QCOMPARE(
        failure(
            u"<formula name=\"share\">amount / Sum(amount)</formula>"
            "<layout><column field=\"id\"/><group field=\"region\"/><grandTotal field=\"share\"/></layout>"_s),
        u"Report %1: The summary sum sums the formula field \"share\", which uses a summary, a "
        "running total or a page's value"_s.arg(report));
    const QString noGroup = failure(u"<formula name=\"x\">Sum(amount, nosuch)</formula>"_s);
    QVERIFY2(noGroup.endsWith(u"the report has no group of \"nosuch\""_s), qPrintable(noGroup));
    QCOMPARE(
        failure(u"<formula name=\"y\">{@nett} * 2</formula>"_s),
        u"Report %1: Formula field \"y\": position 1: unknown field \"@nett\"; the nearest are: net, id, "
        "code"_s.arg(report));

    // Each formula field is worked out inside the one that names it: a chain of them nests deep.
    const auto chainFrom = [](int first) -> QString {
        QString chain;
        for (int i = first; i < 5000; ++i)
            chain += u"<formula name=\"f%1\">{@f%2} + 1</formula>"_s.arg(i).arg(i + 1);
        return chain + u"<formula name=\"f5000\">amount</formula><layout><column field=\"f%1\"/>"
                       "<group field=\"region\"/></layout>"_s.arg(first);
    };
    const QString tooDeep =
        u"Report %1: Formula field \"%2\": the formula fields it names nest more than 500 levels deep"_s;
    QCOMPARE(failure(chainFrom(0)), tooDeep.arg(report, u"f0"_s));
    QCOMPARE(failure(chainFrom(4700)), tooDeep.arg(report, u"f4750"_s));
    // Within the bound the chain is worked out: the first record's amount plus one for each link.
    QSqlQuery first(u"SELECT region, amount FROM sales ORDER BY region, product, id LIMIT 1"_s);
    QVERIFY(first.next());
    QCOMPARE(exportReport(u"chain"_s, chainFrom(4800), CharSeparatedFormat).section(u'\n', 1, 1),
             u"\"%1\",%2\r"_s.arg(first.value(0).toString()).arg(first.value(1).toDouble() + 200));
}

QORLO_TEST_MAIN(TestFormulaFields)
#include "tst_formulafields.moc"
