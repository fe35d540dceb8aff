// Sub-reports in place: one in the report header, one in each region's footer that shows that region's
// largest orders through a link by field, in the PDF, HTML and RTF, checked against SQL.

#include "EngineExports.h"
#include "EngineOracles.h"
#include "Readers.h"
#include "TestMain.h"

#include <QMap>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QXmlStreamReader>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString Table =
    uR"(<table name="Sales" location="sales" dll="sqlite"><property name="Database">demo.db</property></table>)"_s;

const QString Main = uR"(<title>Regions</title>
%1
<query>SELECT region, product, SUM(amount) AS total FROM {Sales} GROUP BY region, product ORDER BY region, product</query>
<layout>
  <column field="product" width="120"/><column field="total" width="100" format="0.00" align="right"/>
  <group field="region" caption="Region {value}"><subtotal field="total"/></group>
</layout>
<subreport name="Largest" file="largest.rpt" section="footer" group="region">
  <link parameter="Region" field="region"/>
</subreport>
<subreport name="Count" section="reportHeader">
  <report version="1">
    <title>Orders in all</title>
    %1
    <query>SELECT COUNT(*) AS orders FROM {Sales}</query>
  </report>
</subreport>)"_s;

const QString Largest = uR"(<title>Largest orders</title>
%1
<parameter name="Region" type="12"/>
<query>SELECT id, customer, amount FROM {Sales} WHERE region = {?Region} ORDER BY amount DESC, id LIMIT 3</query>
<layout>
  <column field="id" width="50"/><column field="customer" width="150"/>
  <column field="amount" width="80" format="0.00" align="right"/>
</layout>)"_s;

} // namespace

class TestSubreportsInPlace : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void eachRegionShowsItsOwnOrders_data();
    void eachRegionShowsItsOwnOrders();
    void separatedValuesHoldEachSubreport();
    void workbookHasASheetForEachSubreport();
    void xmlAndRecordFormatHoldEachSubreport();
    void faultsNameTheSubreport();

private:
    // The report of `main` exported in `format`, as its reader sees the text.
    QString exportReport(const QString &main, int format);

    TestSupport::ReportFolder m_reports;
};

void TestSubreportsInPlace::initTestCase()
{
    QVERIFY(TestSupport::UseDemoDatabase(QDir(m_reports.dir.path())));
    TestSupport::WriteReport(QDir(m_reports.dir.path()), u"largest.rpt"_s, Largest.arg(Table));
}

QString TestSubreportsInPlace::exportReport(const QString &main, int format)
{
    const QString target = m_reports.exportReport(u"regions"_s, main, format);
    if (format == PdfFormat)
        return TestSupport::PdfText(target);
    if (format != RichTextFormat)
        return EngineOracles::ReadUtf8(target);
    const QString out = m_reports.path(u"converted"_s);
    if (!TestSupport::ConvertWithLibreOffice({target}, u"txt:Text"_s, out))
        return u"(LibreOffice did not convert %1)"_s.arg(target);
    return EngineOracles::ReadUtf8(QDir(out).filePath(u"regions.txt"_s));
}

void TestSubreportsInPlace::eachRegionShowsItsOwnOrders_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("pdf") << int(PdfFormat);
    QTest::newRow("html") << int(HtmlFormat);
    QTest::newRow("rtf") << int(RichTextFormat);
}

void TestSubreportsInPlace::eachRegionShowsItsOwnOrders()
{
    QFETCH(int, format);
    const QString text = exportReport(Main.arg(Table), format);
    QSqlQuery count(u"SELECT COUNT(*) FROM sales"_s);
    QVERIFY(count.next());
    // The report header's sub-report comes before the first region.
    const qsizetype orders = text.indexOf(u"Orders in all"_s);
    QVERIFY2(orders >= 0, qPrintable(text.left(2000)));
    QVERIFY(text.indexOf(count.value(0).toString(), orders) > orders);
    QVERIFY(text.indexOf(u"Region "_s) > orders);

    QSqlQuery regions(u"SELECT DISTINCT region FROM sales ORDER BY region"_s);
    qsizetype at = orders;
    while (regions.next()) {
        const QString region = regions.value(0).toString();
        const qsizetype header = text.indexOf(u"Region "_s + region, at);
        const qsizetype title = text.indexOf(u"Largest orders"_s, header);
        QVERIFY2(header > at && title > header, qPrintable(region));
        const qsizetype next = text.indexOf(u"Region "_s, title);
        const QString part = text.mid(title, next < 0 ? -1 : next - title);
        QSqlQuery largest;
        QVERIFY(largest.prepare(u"SELECT id FROM sales ORDER BY region <> ?, amount DESC, id LIMIT 6"_s));
        largest.addBindValue(region);
        QVERIFY(largest.exec());
        for (int row = 0; largest.next(); ++row) {
            // The region's own three largest orders, and not the largest of the others.
            const QRegularExpression id(u"(?<![\\d.])%1(?![\\d.])"_s.arg(largest.value(0).toInt()));
            QVERIFY2(part.contains(id) == (row < 3), qPrintable(region + u": "_s + id.pattern()));
        }
        at = title;
    }
}

void TestSubreportsInPlace::separatedValuesHoldEachSubreport()
{
    // Tab-separated text: the main report's records, then a section a sub-report, a region's sub-report
    // once for each region, each under a heading line and its own captions.
    const QStringList lines = exportReport(Main.arg(Table), TabSeparatedTextFormat).split(u"\r\n"_s);
    QSqlQuery mainRows(u"SELECT COUNT(DISTINCT region || product) FROM sales"_s);
    QVERIFY(mainRows.next());
    int at = 1 + mainRows.value(0).toInt();
    QSqlQuery count(u"SELECT COUNT(*) FROM sales"_s);
    QVERIFY(count.next());
    QCOMPARE(lines.mid(at, 4),
             (QStringList{QString(), u"Orders in all"_s, u"orders"_s, count.value(0).toString()}));
    at += 4;
    QSqlQuery regions(u"SELECT DISTINCT region FROM sales ORDER BY region"_s);
    while (regions.next()) {
        const QString region = regions.value(0).toString();
        QCOMPARE(lines.mid(at, 3),
                 (QStringList{QString(), u"Largest orders: "_s + region, u"id\tcustomer\tamount"_s}));
        at += 3;
        QSqlQuery largest;
        QVERIFY(largest.prepare(u"SELECT id FROM sales WHERE region = ? ORDER BY amount DESC, id LIMIT 3"_s));
        largest.addBindValue(region);
        QVERIFY(largest.exec());
        while (largest.next())
            QCOMPARE(lines.value(at++).section(u'\t', 0, 0), largest.value(0).toString());
    }
    QCOMPARE(lines.mid(at), QStringList{QString()});
}

void TestSubreportsInPlace::workbookHasASheetForEachSubreport()
{
    const QString dump =
        EngineOracles::XlsCells(m_reports.exportReport(u"regions"_s, Main.arg(Table), Excel80Format));
    // The first column of each sheet as xlrd reads it, by sheet name.
    QMap<QString, QStringList> firstColumns;
    QStringList order;
    static const QRegularExpression sheet(u"^sheet \"(\\w+)\""_s);
    static const QRegularExpression cell(u"^A\\d+ (?:text \"(.*)\"|number ([\\d.]+))"_s);
    for (const QString &line : dump.split(u'\n')) {
        if (const auto match = sheet.match(line); match.hasMatch())
            order.append(match.captured(1));
        else if (const auto found = cell.match(line); found.hasMatch() && !order.isEmpty())
            firstColumns[order.last()].append(found.captured(2).isEmpty()
                                                  ? found.captured(1)
                                                  : QString::number(found.captured(2).toDouble()));
    }
    QCOMPARE(order, (QStringList{u"Sheet1"_s, u"Count1"_s, u"Largest1"_s}));
    QSqlQuery count(u"SELECT COUNT(*) FROM sales"_s);
    QVERIFY(count.next());
    QCOMPARE(firstColumns[u"Count1"_s], (QStringList{u"orders"_s, count.value(0).toString()}));
    QStringList expected{u"id"_s};
    QSqlQuery largest(
        u"SELECT region, id FROM (SELECT *, ROW_NUMBER() OVER (PARTITION BY region ORDER BY amount "
        "DESC, id) AS place FROM sales) WHERE place <= 3 ORDER BY region, place"_s);
    while (largest.next()) {
        const QString heading = u"Largest orders: "_s + largest.value(0).toString();
        if (!expected.contains(heading))
            expected.append(heading);
        expected.append(largest.value(1).toString());
    }
    QCOMPARE(firstColumns[u"Largest1"_s], expected);
}

void TestSubreportsInPlace::xmlAndRecordFormatHoldEachSubreport()
{
    QSqlQuery count(u"SELECT COUNT(*) FROM sales"_s);
    QVERIFY(count.next());
    // Each sub-report as "name|group|records|first values", in the order of the file.
    QStringList expected{u"Count||1|"_s + count.value(0).toString()};
    QStringList recordLines{QString(), u"Orders in all"_s, count.value(0).toString()};
    QSqlQuery largest(
        u"SELECT region, group_concat(id) FROM (SELECT region, id FROM (SELECT *, ROW_NUMBER() OVER "
        "(PARTITION BY region ORDER BY amount DESC, id) AS place FROM sales) WHERE place <= 3 "
        "ORDER BY region, place) GROUP BY region ORDER BY region"_s);
    while (largest.next()) {
        const QString region = largest.value(0).toString();
        const QStringList ids = largest.value(1).toString().split(u',');
        expected.append(u"Largest|%1|%2|%3"_s.arg(region).arg(ids.size()).arg(ids.join(u',')));
        recordLines << QString() << u"Largest orders: "_s + region << ids;
    }

    QXmlStreamReader xml(exportReport(Main.arg(Table), XmlFormat));
    QStringList found;
    QStringList firstValues;
    bool inSubreport = false;
    bool recordStarts = false;
    while (!xml.atEnd()) {
        xml.readNext();
        const bool subreport = xml.name() == u"Subreport"_s;
        if (xml.isStartElement() && subreport) {
            const QXmlStreamAttributes at = xml.attributes();
            found.append(
                u"%1|%2|%3|"_s.arg(at.value(u"Name"_s), at.value(u"Group"_s), at.value(u"Records"_s)));
            firstValues.clear();
            inSubreport = true;
        } else if (xml.isEndElement() && subreport) {
            found.last() += firstValues.join(u',');
            inSubreport = false;
        } else if (xml.isStartElement() && xml.name() == u"Record"_s) {
            recordStarts = true;
        } else if (xml.isStartElement() && xml.name() == u"Value"_s && inSubreport && recordStarts) {
            firstValues.append(xml.readElementText());
            recordStarts = false;
        }
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(found, expected);

    // Record format: the main report's lines, then a section a sub-report.
    QStringList lines = exportReport(Main.arg(Table), RecordFormat).split(u"\r\n"_s);
    QSqlQuery mainRows(u"SELECT COUNT(DISTINCT region || product) FROM sales"_s);
    QVERIFY(mainRows.next());
    lines = lines.mid(mainRows.value(0).toInt());
    // Headings whole, records by their first value.
    for (QString &line : lines) {
        line = line.simplified();
        if (!line.isEmpty() && line.front().isDigit())
            line = line.section(u' ', 0, 0);
    }
    QCOMPARE(lines, recordLines << QString());
}

void TestSubreportsInPlace::faultsNameTheSubreport()
{
    const auto failure = [&](const QString &from, const QString &to) {
        return TestSupport::FailureOf([&] { exportReport(Main.arg(Table).replace(from, to), PdfFormat); })
            .description;
    };
    const QString link =
        failure(u"parameter=\"Region\" field=\"region\""_s, u"parameter=\"Region\" field=\"regoin\""_s);
    QVERIFY2(link.contains(u"names the field \"regoin\", which the query does not return; the nearest are: "
                           "region"_s),
             qPrintable(link));
    const QString group = failure(u"footer\" group=\"region\""_s, u"footer\" group=\"product\""_s);
    QVERIFY2(
        group.endsWith(u"The sub-report \"Largest\" of %1 stands in the footer of the group of "
                       "\"product\", which the layout does not have"_s.arg(m_reports.path(u"regions.rpt"_s))),
        qPrintable(group));
}

QORLO_TEST_MAIN(TestSubreportsInPlace)
#include "tst_subreportsinplace.moc"
