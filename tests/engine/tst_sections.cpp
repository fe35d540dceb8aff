// Sections and columns under conditions: hidden records, fields, group headers and footers, texts in
// report and group sections, the no-data section, and the looks conditions give, as the PDF, HTML and
// RTF show them.

#include "EngineExports.h"
#include "EngineOracles.h"
#include "Readers.h"
#include "TestMain.h"

#include <QRegularExpression>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString Hidden = uR"(<layout>
  <column field="id" width="40"/>
  <column field="customer" width="150" suppress="not paid"/>
  <column field="amount" width="80" format="0.00" align="right"/>
  <reportHeader><text align="center" bold="true" size="14">Orders of {Count(id)} customers</text></reportHeader>
  <group field="region" caption="Region {value}">
    <header suppress="Count(id) = 1"/>
    <footer suppress="region = 'South'"><text>{value} has {Count(id)} orders</text></footer>
    <subtotal field="amount"/>
  </group>
  <details suppress="amount = 10"/>
  <noData>No orders.</noData>
  <reportFooter>End of report</reportFooter>
</layout>)"_s;

const QString Looks = uR"(<layout>
  <column field="id" width="40"/>
  <column field="customer" width="150"/>
  <column field="amount" width="80" format="0.00" align="right">
    <style condition="not paid" background="#FFFF00"/>
  </column>
  <details><style condition="amount &gt;= 1000" bold="true" color="#C00000"/></details>
</layout>)"_s;

} // namespace

class TestSections : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void conditionsHideRecordsFieldsAndSections();
    void noDataSectionStandsForTheRecords();
    void conditionsGiveTheirLooksInEveryFormat();
    void faultsNameTheCondition();

private:
    QString exportReport(const QString &name, const QString &where, const QString &layout, int format)
    {
        const QString path = TestSupport::SalesReport(
            QDir(m_reports.dir.path()), name + u".rpt"_s,
            u"SELECT id, region, customer, amount, paid FROM {Sales} %1 ORDER BY region, id"_s.arg(where),
            layout);
        return TestSupport::ExportBeside(m_reports.application, path, format);
    }

    TestSupport::ReportFolder m_reports;
};

void TestSections::initTestCase()
{
    TestSupport::MakeSalesDatabase(m_reports.path(u"sales.db"_s));
}

void TestSections::conditionsHideRecordsFieldsAndSections()
{
    const QString text =
        EngineOracles::ReadUtf8(exportReport(u"hidden"_s, QString(), Hidden, PaginatedTextFormat));
    QVERIFY2(text.contains(u"Orders of 6 customers"_s), qPrintable(text));
    // East has one order: its header is hidden, its footer not.
    QVERIFY(!text.contains(u"Region East"_s));
    QVERIFY(text.contains(u"East has 1 orders"_s));
    QVERIFY(text.contains(u"Region North"_s) && text.contains(u"Region South"_s));
    // The hidden record still counts in its group's totals.
    QVERIFY(text.contains(u"North has 3 orders"_s));
    QVERIFY(text.contains(QRegularExpression(u"Total North\\s+1630.75"_s)));
    QVERIFY(!text.contains(QRegularExpression(u"\\n\\s*6\\s"_s)));
    // South's footer, totals and text, is hidden whole.
    QVERIFY(!text.contains(u"South has"_s) && !text.contains(u"Total South"_s));
    // The unpaid order keeps its line, without its customer.
    QVERIFY(text.contains(QRegularExpression(u"\\n\\s*2\\s+80.00"_s)));
    QVERIFY(!text.contains(u"Bolt; Nut"_s) && text.contains(u"Acme Ltd"_s));
    QVERIFY(!text.contains(u"No orders."_s));
    QVERIFY(text.indexOf(u"End of report"_s) > text.indexOf(u"East has 1 orders"_s));
}

void TestSections::noDataSectionStandsForTheRecords()
{
    const QString pdf = exportReport(u"empty"_s, u"WHERE amount > 1e9"_s, Hidden, PdfFormat);
    const QString text = TestSupport::PdfText(pdf);
    QVERIFY2(text.contains(u"Orders of 0 customers"_s), qPrintable(text));
    QVERIFY(text.indexOf(u"No orders."_s) > text.indexOf(u"Orders of 0"_s));
    QVERIFY(text.indexOf(u"End of report"_s) > text.indexOf(u"No orders."_s));
    QVERIFY(!text.contains(u"Region"_s));
}

void TestSections::conditionsGiveTheirLooksInEveryFormat()
{
    const QColor red(0xC0, 0, 0);
    const QColor yellow(0xFF, 0xFF, 0);
    const QImage page = EngineOracles::FirstPageImage(exportReport(u"looks"_s, QString(), Looks, PdfFormat),
                                                      m_reports.dir.path(), 100);
    QVERIFY(!page.isNull());
    QVERIFY(EngineOracles::PixelsNear(page, red) > 20);     // 1500.25 and 2200.00 with their lines
    QVERIFY(EngineOracles::PixelsNear(page, yellow) > 200); // behind the amounts of the three unpaid orders
    QCOMPARE(EngineOracles::PixelsNear(
                 EngineOracles::FirstPageImage(exportReport(u"plain"_s, QString(), Hidden, PdfFormat),
                                               m_reports.dir.path(), 100),
                 red),
             0);

    const QString html = EngineOracles::ReadUtf8(exportReport(u"looks"_s, QString(), Looks, HtmlFormat));
    const QRegularExpression redClass(
        u"td\\.(\\w+)\\{font:bold [^}]*text-align:right[^}]*color:#c00000\\}"_s);
    const QRegularExpressionMatch found = redClass.match(html);
    QVERIFY(found.hasMatch());
    QVERIFY(html.contains(u"class=\"%1\">2200.00<"_s.arg(found.captured(1))));
    QVERIFY(!html.contains(u"class=\"%1\">120.50<"_s.arg(found.captured(1))));
    QVERIFY(html.contains(u"background-color:#ffff00"_s));

    const QString rtf = EngineOracles::ReadUtf8(exportReport(u"looks"_s, QString(), Looks, RichTextFormat));
    QVERIFY2(rtf.contains(u"{\\colortbl;\\red192\\green0\\blue0;"_s), qPrintable(rtf.left(600)));
    QVERIFY(rtf.contains(QRegularExpression(u"\\\\b\\\\cf1 1500.25\\}"_s)));
    QVERIFY(rtf.contains(QRegularExpression(u"\\\\chcbpat\\d 80.00\\}"_s)));
}

void TestSections::faultsNameTheCondition()
{
    const QStringList faults[] = {
        {u"<details suppress=\"amont &gt; 1\"/>"_s,
         u"suppress condition of details: position 1: unknown field \"amont\"; the nearest are: amount"_s},
        {u"<column field=\"id\"><style color=\"reddish\"/></column>"_s,
         u"color \"reddish\" is not a colour such as #C00000 or darkred"_s},
        {u"<reportHeader><box/></reportHeader>"_s, u"unknown element <box>"_s}};
    for (const QStringList &fault : faults) {
        const QString failure = TestSupport::FailureOf([&] {
                                    exportReport(u"fault"_s, QString(),
                                                 u"<layout>%1</layout>"_s.arg(fault[0]), PaginatedTextFormat);
                                }).description;
        QVERIFY2(failure.contains(fault[1]), qPrintable(failure));
    }
}

QORLO_TEST_MAIN(TestSections)
#include "tst_sections.moc"
