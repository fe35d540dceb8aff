// Formula fields, summaries in group headers and footers, groups chosen, sorted and cut to the first N by
// their summaries, records sorted by a formula field, running totals and record numbers: the demo
// database's own sums are the oracle.

#include "EngineExports.h"
#include "SalesReport.h"
#include "EngineOracles.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QRegularExpression>
#include <QSqlQuery>
#include <QTemporaryDir>

using namespace Engine;

namespace {

const QString Head = QStringLiteral(R"(<title>Regions by Sales</title>
<table name="Sales" location="sales" dll="sqlite"><property name="Database">demo.db</property></table>
<query>SELECT id, region, product, amount FROM {Sales} ORDER BY region, product, id</query>
<formula name="net">amount * 0.8</formula>
<formula name="label">region &amp; '/' &amp; {@code}</formula>
<formula name="code">upper(product)</formula>
<formula name="size">iif(amount &gt;= 1000, 'large', 'small')</formula>
<runningTotal name="cumulative" field="amount"/>
<runningTotal name="regionRunning" field="amount" reset="region"/>
)");

// The regions above 330,000, each with its two best products, the best region first.
const QString Chosen = QStringLiteral(R"xml(<layout>
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
</layout>)xml");

double Number(const QString &text)
{
    return QString(text).remove(QLatin1Char(',')).toDouble();
}

QList<QStringList> CsvRows(const QString &text)
{
    QList<QStringList> rows;
    for (const QString &line : text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts)) {
        QStringList cells;
        for (const QString &cell : line.split(QLatin1Char(',')))
            cells.append(QString(cell).remove(QLatin1Char('"')));
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
    QString exportReport(const QString &name, const QString &layout, int format);
    QString failure(const QString &body);
    // The regions and products as the report chooses them, by SQL: region, product, region's shown sum.
    QList<std::tuple<QString, QString, double>> chosenGroups();

    QTemporaryDir m_dir;
    Application m_application;
};

void TestFormulaFields::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(TestSupport::UseDemoDatabase(QDir(m_dir.path())));
}

QString TestFormulaFields::exportReport(const QString &name, const QString &layout, int format)
{
    const QString path =
        TestSupport::WriteReport(QDir(m_dir.path()), name + QStringLiteral(".rpt"), Head + layout);
    auto report = m_application.OpenReport(path);
    report->ExportOptions().FormatType = format;
    report->ExportOptions().DiskFileName = m_dir.filePath(QStringLiteral("%1.%2").arg(name).arg(format));
    report->ExportOptions().CharFieldDelimiter = QStringLiteral(",");
    report->ExportOptions().CharStringDelimiter = QStringLiteral("\"");
    report->Export(false);
    return EngineOracles::ReadUtf8(report->ExportOptions().DiskFileName);
}

QString TestFormulaFields::failure(const QString &body)
{
    try {
        exportReport(QStringLiteral("fault"), body, CharSeparatedFormat);
    } catch (const EngineError &error) {
        return error.description();
    }
    return QStringLiteral("(no failure)");
}

QList<std::tuple<QString, QString, double>> TestFormulaFields::chosenGroups()
{
    QSqlQuery query;
    query.exec(QStringLiteral(
        "WITH products AS (SELECT region, product, SUM(amount) AS total, ROW_NUMBER() OVER (PARTITION BY "
        "region "
        "ORDER BY SUM(amount) DESC) AS place FROM sales GROUP BY region, product), "
        "regions AS (SELECT region, SUM(amount) AS whole FROM sales GROUP BY region HAVING SUM(amount) > "
        "330000), "
        "shown AS (SELECT p.region, p.product, p.total, SUM(p.total) OVER (PARTITION BY p.region) AS "
        "regionTotal "
        "FROM products p JOIN regions r ON r.region = p.region WHERE p.place <= 2) "
        "SELECT region, product, regionTotal FROM shown ORDER BY regionTotal DESC, total DESC"));
    QList<std::tuple<QString, QString, double>> groups;
    while (query.next())
        groups.append({query.value(0).toString(), query.value(1).toString(), query.value(2).toDouble()});
    return groups;
}

void TestFormulaFields::recordsOfChosenGroups()
{
    const QList<QStringList> rows =
        CsvRows(exportReport(QStringLiteral("chosen"), Chosen, CharSeparatedFormat));
    QCOMPARE(rows.first(),
             (QStringList{QStringLiteral("Region"), QStringLiteral("product"), QStringLiteral("id"),
                          QStringLiteral("net"), QStringLiteral("label"), QStringLiteral("size"),
                          QStringLiteral("cumulative"), QStringLiteral("regionRunning"), QStringLiteral("#"),
                          QStringLiteral("No"), QStringLiteral("amount")}));
    const auto groups = chosenGroups();
    QCOMPARE(groups.size(), 6);
    int row = 1;
    double cumulative = 0;
    double regionRunning = 0;
    QString region;
    for (const auto &[groupRegion, product, regionTotal] : groups) {
        QSqlQuery records;
        QVERIFY(records.prepare(
            QStringLiteral("SELECT id, amount FROM sales WHERE region = ? AND product = ? ORDER BY id")));
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
            QCOMPARE(cells[4], region + QLatin1Char('/') + product.toUpper());
            QCOMPARE(cells[5], amount >= 1000 ? QStringLiteral("large") : QStringLiteral("small"));
            QVERIFY2(qAbs(Number(cells[6]) - cumulative) < 0.005, qPrintable(cells.join(QLatin1Char(','))));
            QVERIFY2(qAbs(Number(cells[7]) - regionRunning) < 0.005,
                     qPrintable(cells.join(QLatin1Char(','))));
            QCOMPARE(cells[8].toInt(), inGroup);
            QCOMPARE(cells[9].toInt(), row);
        }
    }
    QCOMPARE(rows.size(), row);
}

void TestFormulaFields::captionsAndFootersShowTheSummaries()
{
    const QString text = exportReport(QStringLiteral("chosen"), Chosen, PaginatedTextFormat);
    const auto groups = chosenGroups();
    double grand = 0;
    QString region;
    int productNumber = 0;
    for (const auto &[groupRegion, product, regionTotal] : groups) {
        QSqlQuery sums;
        QVERIFY(sums.prepare(QStringLiteral("SELECT SUM(amount), MAX(amount), COUNT(*) FROM sales "
                                            "WHERE region = ? AND product = ?")));
        sums.addBindValue(groupRegion);
        sums.addBindValue(product);
        QVERIFY(sums.exec() && sums.next());
        ++productNumber;
        if (groupRegion != region) {
            region = groupRegion;
            grand += regionTotal;
            QSqlQuery shown;
            QVERIFY(shown.prepare(QStringLiteral(
                "SELECT COUNT(*), AVG(amount * 0.8) FROM sales WHERE region = ? AND product IN "
                "(SELECT product FROM sales WHERE region = ? GROUP BY product ORDER BY SUM(amount) "
                "DESC LIMIT 2)")));
            shown.addBindValue(groupRegion);
            shown.addBindValue(groupRegion);
            QVERIFY(shown.exec() && shown.next());
            // The header knows its group's total before the group's records follow.
            const QString header =
                QStringLiteral("Region %1: %2 in %3 orders of 2 products")
                    .arg(groupRegion, QString::number(regionTotal, 'f', 2), shown.value(0).toString());
            QVERIFY2(text.contains(header + QStringLiteral("\r\n")), qPrintable(header));
            // The footer's label has a line of its own, as the count stands in the first column.
            const QStringList footer{shown.value(0).toString(),
                                     QString::number(shown.value(1).toDouble(), 'f', 2),
                                     QString::number(regionTotal, 'f', 2)};
            const qsizetype label = text.indexOf(groupRegion + QStringLiteral(" total\r\n"));
            QVERIFY2(label > 0, qPrintable(groupRegion));
            const QStringList after =
                text.mid(label).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts).mid(1, 1);
            QCOMPARE(after.value(0).simplified(), footer.join(QLatin1Char(' ')));
        }
        const QString caption =
            QStringLiteral("%1 (%2% of group %3)")
                .arg(product, QString::number(sums.value(0).toDouble() / regionTotal * 100, 'f', 1))
                .arg(productNumber);
        QVERIFY2(text.contains(caption + QStringLiteral("\r\n")), qPrintable(caption));
        QVERIFY(text.contains(
            QRegularExpression(QStringLiteral("Total %1\\s+%2\\r\\n")
                                   .arg(product, QString::number(sums.value(1).toDouble(), 'f', 2)))));
    }
    QVERIFY(text.contains(
        QRegularExpression(QStringLiteral("Grand total\\s+%1").arg(QString::number(grand, 'f', 2)))));
    QVERIFY(!text.contains(QLatin1String("Region North")));
}

void TestFormulaFields::recordsSortedByAFormulaField()
{
    // Within each product the largest net first; the groups keep the query's order.
    const QList<QStringList> rows = CsvRows(exportReport(QStringLiteral("sorted"), QStringLiteral(R"(<layout>
  <column field="id"/><column field="net"/>
  <group field="region"/><group field="product"/>
  <sort field="net" order="descending"/>
</layout>)"),
                                                         CharSeparatedFormat));
    QSqlQuery query(QStringLiteral("SELECT region, product, id, amount * 0.8 FROM sales "
                                   "ORDER BY region, product, amount DESC"));
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
    const QString report = m_dir.filePath(QStringLiteral("fault.rpt"));
    QCOMPARE(
        failure(QStringLiteral("<formula name=\"a\">{@b} + 1</formula><formula name=\"b\">a * 2</formula>")),
        QStringLiteral("Report %1: The formula fields refer to each other in a circle: a -> b -> a")
            .arg(report));
    QCOMPARE(
        failure(QStringLiteral(
            "<formula name=\"share\">amount / Sum(amount)</formula>"
            "<layout><column field=\"id\"/><group field=\"region\"/><grandTotal field=\"share\"/></layout>")),
        QStringLiteral("Report %1: The summary sum sums the formula field \"share\", which uses a summary, a "
                       "running total or a page's value")
            .arg(report));
    QVERIFY2(failure(QStringLiteral("<formula name=\"x\">Sum(amount, nosuch)</formula>"))
                 .endsWith(QStringLiteral("the report has no group of \"nosuch\"")),
             qPrintable(failure(QStringLiteral("<formula name=\"x\">Sum(amount, nosuch)</formula>"))));
    QCOMPARE(failure(QStringLiteral("<formula name=\"y\">{@nett} * 2</formula>")),
             QStringLiteral(
                 "Report %1: Formula field \"y\": position 1: unknown field \"{@nett}\"; the nearest are: "
                 "net, id, code")
                 .arg(report)
                 .replace(QLatin1String("\"{@nett}\""), QLatin1String("\"@nett\"")));

    // Each formula field is worked out inside the one that names it: a chain of them nests deep.
    const auto chainFrom = [](int first) -> QString {
        QString chain;
        for (int i = first; i < 5000; ++i)
            chain += QStringLiteral("<formula name=\"f%1\">{@f%2} + 1</formula>").arg(i).arg(i + 1);
        return chain +
               QStringLiteral("<formula name=\"f5000\">amount</formula><layout><column field=\"f%1\"/>"
                              "<group field=\"region\"/></layout>")
                   .arg(first);
    };
    const QString tooDeep = QStringLiteral(
        "Report %1: Formula field \"%2\": the formula fields it names nest more than 500 levels deep");
    QCOMPARE(failure(chainFrom(0)), tooDeep.arg(report, QStringLiteral("f0")));
    QCOMPARE(failure(chainFrom(4700)), tooDeep.arg(report, QStringLiteral("f4750")));
    // Within the bound the chain is worked out: the first record's amount plus one for each link.
    QSqlQuery first(QStringLiteral("SELECT region, amount FROM sales ORDER BY region, product, id LIMIT 1"));
    QVERIFY(first.next());
    QCOMPARE(
        exportReport(QStringLiteral("chain"), chainFrom(4800), CharSeparatedFormat).section(u'\n', 1, 1),
        QStringLiteral("\"%1\",%2\r").arg(first.value(0).toString()).arg(first.value(1).toDouble() + 200));
}

QORLO_TEST_MAIN(TestFormulaFields)
#include "tst_formulafields.moc"
