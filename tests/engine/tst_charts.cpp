// Charts over groups' summaries, drawn into the pages as pictures: bars that stand as high as the
// database's own sums, stacks of the products within each region, a pie in each region's footer.

#include "EngineExports.h"
#include "EngineOracles.h"
#include "Files.h"
#include "TestMain.h"

#include <QSqlQuery>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString Head = uR"(<title>Charts</title>
<table name="Sales" location="sales" dll="sqlite"><property name="Database">demo.db</property></table>
<query>SELECT region, product, amount FROM {Sales} ORDER BY region, product</query>
)"_s;

const QColor FirstSeries(0x1f, 0x4e, 0x79);

// The chart alone on its page: the report's records go to the next page.
QString ChartLayout(const QString &chart)
{
    return uR"(<layout><column field="amount"/>
  <reportHeader>%1</reportHeader>
  <group field="region" newPage="true"/><group field="product"/>
</layout>)"_s.arg(chart);
}

bool Near(const QColor &a, const QColor &b)
{
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()) < 40;
}

// The heights of the bars of `color` from left to right: each run of columns that have the colour,
// measured by its tallest column.
QList<int> BarHeights(const QImage &page, const QColor &color)
{
    QList<int> heights;
    bool inBar = false;
    for (int x = 0; x < page.width(); ++x) {
        int height = 0;
        for (int y = 0; y < page.height(); ++y)
            height += Near(page.pixelColor(x, y), color) ? 1 : 0;
        if (height > 2 && !inBar)
            heights.append(0);
        inBar = height > 2;
        if (inBar)
            heights.last() = std::max(heights.last(), height);
    }
    return heights;
}

// The series of a chart, in its bars or lines and its legend: hues, 30 degrees apart, of at least
// `pixels` strongly coloured pixels. Edges that blend a colour with white keep its hue; those between
// two series cover little.
int SeriesHues(const QImage &page, int pixels)
{
    QList<int> counts(12, 0);
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            const QColor c = page.pixelColor(x, y).toHsv();
            if (c.hsvSaturation() > 100 && c.value() > 60)
                ++counts[c.hsvHue() / 30];
        }
    }
    return int(std::count_if(counts.begin(), counts.end(), [&](int n) { return n >= pixels; }));
}

} // namespace

class TestCharts : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void barsStandAsHighAsTheSums();
    void stacksAndPiesInGroupFooters();
    void faultsNameTheChart();

private:
    QString exportReport(const QString &name, const QString &layout, int format)
    {
        return m_reports.exportReport(name, Head + layout, format);
    }

    TestSupport::ReportFolder m_reports;
};

void TestCharts::initTestCase()
{
    QVERIFY(TestSupport::UseDemoDatabase(QDir(m_reports.dir.path())));
}

void TestCharts::barsStandAsHighAsTheSums()
{
    QSqlQuery query(u"SELECT SUM(amount) FROM sales GROUP BY region ORDER BY region"_s);
    QList<double> sums;
    while (query.next())
        sums.append(query.value(0).toDouble());
    QCOMPARE(sums.size(), 4);
    for (const QString &type : {u"bar"_s, u"stackedbar"_s}) {
        // Without series a stacked bar is a plain one.
        const QString pdf = exportReport(
            type,
            ChartLayout(u"<chart type=\"%1\" group=\"region\" value=\"Sum(amount)\" title=\"By region\" "
                        "width=\"500\" height=\"300\"/>"_s.arg(type)),
            PdfFormat);
        const QImage page = EngineOracles::FirstPageImage(pdf, m_reports.dir.path(), 100);
        const QList<int> heights = BarHeights(page, FirstSeries);
        QCOMPARE(heights.size(), sums.size());
        // The axis starts at 0, so heights keep the sums' proportions.
        const double scale = heights[0] / sums[0];
        for (int i = 1; i < sums.size(); ++i)
            QVERIFY2(std::abs(heights[i] - sums[i] * scale) <= 2,
                     qPrintable(u"%1: %2 against %3"_s.arg(type).arg(heights[i]).arg(sums[i] * scale)));
    }
    const QString lines = exportReport(
        u"line"_s,
        ChartLayout(u"<chart type=\"line\" group=\"region\" series=\"product\" value=\"Sum(amount)\"/>"_s),
        PdfFormat);
    QCOMPARE(SeriesHues(EngineOracles::FirstPageImage(lines, m_reports.dir.path(), 100), 30), 5);
}

void TestCharts::stacksAndPiesInGroupFooters()
{
    const QString layout = uR"xml(<layout><column field="product"/><column field="amount"/>
  <reportHeader>
    <chart type="stackedbar" group="region" series="product" value="Sum(amount)" width="500" height="300"/>
  </reportHeader>
  <group field="region" newPage="true">
    <footer><chart type="pie" group="product" value="Sum(amount)" title="Products of {value}"/></footer>
  </group>
  <group field="product"/>
</layout>)xml"_s;
    const QString pdf = exportReport(u"stacks"_s, layout, PdfFormat);
    // Stacks: as high as each region's sum, of five products each.
    const QImage page = EngineOracles::FirstPageImage(pdf, m_reports.dir.path(), 100);
    QCOMPARE(SeriesHues(page, 600), 5);
    // One stacked bar and a pie a region, each a picture of its own.
    const QString list = QString::fromUtf8(TestSupport::ProgramOutput(u"pdfimages"_s, {u"-list"_s, pdf}));
    const QStringList images = list.split(u'\n', Qt::SkipEmptyParts).mid(2);
    QCOMPARE(images.size(), 5);
    // Each region starts a page, so each pie stands on a later page than the one before.
    QList<int> pages;
    for (const QString &image : images)
        pages.append(image.simplified().section(u' ', 0, 0).toInt());
    QCOMPARE(pages.first(), 1);
    for (int i = 2; i < pages.size(); ++i)
        QVERIFY2(pages[i] > pages[i - 1], qPrintable(list));
    const QString html = EngineOracles::ReadUtf8(exportReport(u"stacks"_s, layout, HtmlFormat));
    QCOMPARE(html.count(u"<img "_s), 5);
}

void TestCharts::faultsNameTheChart()
{
    const struct
    {
        QString footer, reportHeader, message;
    } faults[] = {
        {u"<chart group=\"region\" value=\"Sum(amount)\"/>"_s, QString(),
         u"The chart of footer of group \"region\" draws the groups of \"region\", which are no "
         "groups below it; it may draw: product"_s},
        {QString(), u"<chart type=\"donut\" group=\"region\" value=\"Sum(amount)\"/>"_s,
         u"chart type \"donut\" is not bar, stackedbar, line or pie"_s},
        {QString(), u"<chart group=\"region\" value=\"Sum(amont)\"/>"_s, u"unknown field \"amont\""_s}};
    for (const auto &fault : faults) {
        const QString failure =
            TestSupport::FailureOf([&] {
                exportReport(
                    u"fault"_s,
                    uR"(<layout><group field="region"><footer>%1</footer></group><group field="product"/>
<reportHeader>%2</reportHeader></layout>)"_s.arg(fault.footer, fault.reportHeader),
                    PdfFormat);
            }).description;
        QVERIFY2(failure.contains(fault.message), qPrintable(failure));
    }
}

QORLO_TEST_MAIN(TestCharts)
#include "tst_charts.moc"
