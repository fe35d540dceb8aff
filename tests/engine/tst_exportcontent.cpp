// What the data exports carry: the group fields on every row, Windows-1252 or UTF-8 text, date and
// time cells in workbooks, and totals as worksheet formulas, read back by xlrd and LibreOffice.

#include "EngineData.h"
#include "EngineOracles.h"
#include "Readers.h"
#include "SalesReport.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;
using namespace EngineOracles;

namespace {

// Orders of the west and one southern order, by region and city, with an optional extra element.
QString Body(const QString &extra = QString())
{
    return uR"(<title>Orders by City</title>
<table name="Orders" location="orders" dll="sqlite"><property name="Database">orders.db</property></table>
<query>SELECT id, region, city, customer, amount, ordered_at FROM {Orders}
WHERE region = 'West' OR id = 127 ORDER BY region, city, id</query>
<layout>
  <column field="id" caption="No." width="40" align="right"/>
  <column field="customer" caption="Customer" width="150"/>
  <column field="ordered_at" caption="Ordered" width="100" format="dd-MMM-yyyy HH:mm"/>
  <column field="amount" caption="Amount" width="80" align="right" format="#,##0.00"/>
  <group field="region" caption="Region: {value}">
    <subtotal field="id" function="count"/>
    <subtotal field="amount"/>
  </group>
  <group field="city" caption="{value}">
    <subtotal field="id" function="count"/>
    <subtotal field="amount"/>
  </group>
  <grandTotal field="amount"/>
</layout>
)"_s + extra;
}

} // namespace

class TestExportContent : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void separatedValuesCarryGroupFieldsInWindows1252();
    void utf8WhenTheReportAsks();
    void workbookDateTimesAndFormulas();

private:
    QString exportTo(const QString &report, int format, const QString &name,
                     const std::function<void(ExportOptions &)> &options = {});

    QTemporaryDir m_dir;
    Application m_application;
};

void TestExportContent::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(EngineData::MakeOrders(m_dir.filePath(u"orders.db"_s)));
    const QDir dir(m_dir.path());
    TestSupport::WriteReport(dir, u"cities.rpt"_s, Body());
    TestSupport::WriteReport(dir, u"cities-utf8.rpt"_s, Body(u"<export encoding=\"utf-8\"/>"_s));
}

QString TestExportContent::exportTo(const QString &report, int format, const QString &name,
                                    const std::function<void(ExportOptions &)> &options)
{
    auto opened = m_application.OpenReport(m_dir.filePath(report));
    ExportOptions &settings = opened->ExportOptions();
    settings.FormatType = format;
    settings.DiskFileName = m_dir.filePath(name);
    if (options)
        options(settings);
    opened->Export(false);
    return settings.DiskFileName;
}

void TestExportContent::separatedValuesCarryGroupFieldsInWindows1252()
{
    const QByteArray csv = ReadBytes(exportTo(u"cities.rpt"_s, CharSeparatedFormat, u"c.csv"_s));
    const QList<QByteArray> lines = csv.split('\n');
    QCOMPARE(lines.value(0), QByteArray("\"Region\",\"city\",\"No.\",\"Customer\",\"Ordered\",\"Amount\"\r"));
    // Every row names its groups; Ł, ś and the Chinese name are not in Windows-1252 and become "?".
    QCOMPARE(
        lines.value(1),
        QByteArray("\"South\",\"Krak\xF3w\",127,\"?ukasz Wi?niewski\",\"2024-04-07 09:30:00\",1587.5\r"));
    QVERIFY2(csv.contains("\"West\",\"Krak\xF3w\",130,\"Acme Ltd\""), csv.constData());
    QVERIFY2(csv.contains("\"West\",\"?\xF3"
                          "d?\",131,\"???\""),
             csv.constData());
    QVERIFY(!csv.startsWith("\xEF\xBB\xBF"));

    // The text of the pages, too.
    const QByteArray text = ReadBytes(exportTo(u"cities.rpt"_s, TextFormat, u"t.txt"_s));
    QVERIFY2(text.contains("Krak\xF3w") && text.contains("???") && !text.contains("\xEF\xBB\xBF"),
             text.constData());
}

void TestExportContent::utf8WhenTheReportAsks()
{
    for (const int format :
         {CharSeparatedFormat, TabSeparatedTextFormat, TextFormat, PaginatedTextFormat, RecordFormat}) {
        const QByteArray file = ReadBytes(exportTo(u"cities-utf8.rpt"_s, format, u"u.%1"_s.arg(format)));
        QVERIFY2(file.startsWith("\xEF\xBB\xBF"), qPrintable(QString::number(format)));
        const QString text = QString::fromUtf8(file.mid(3));
        QVERIFY2(text.contains(EngineData::ChineseName) && text.contains(u"Łukasz Wiśniewski"_s),
                 qPrintable(text));
    }
}

void TestExportContent::workbookDateTimesAndFormulas()
{
    QORLO_REQUIRE_PEER(QFileInfo::exists(TestSupport::DebianPython()), u"python3-xlrd"_s);
    const QString xls =
        exportTo(u"cities.rpt"_s, Excel80TabularFormat, u"f.xls"_s, [](ExportOptions &options) {
            options.ExcelTabHasColumnHeadings = true;
            options.ExcelUseWorksheetFunctions = true;
        });
    const QString cells = XlsCells(xls);
    QCOMPARE(cells, Golden(u"engine/golden/exports/cities.30.xls.txt"_s, cells));
    // The time of day stays in the cell and its format.
    QVERIFY2(cells.contains(QRegularExpression(
                 u"E\\d+ date [\\d.]+ 2024-04-07 09:30:00 fmt=\"dd-mmm-yyyy hh:mm:ss\""_s)),
             qPrintable(cells));

    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(u"soffice"_s).isEmpty(),
                       u"LibreOffice (libreoffice-calc-nogui)"_s);
    const QString out = m_dir.filePath(u"converted"_s);
    QVERIFY(TestSupport::ConvertWithLibreOffice({xls}, u"fods"_s, out));
    const QString sheet = ReadUtf8(out + u"/f.fods"_s);
    QStringList formulas;
    const auto matches = QRegularExpression(u"table:formula=\"of:=([^\"]+)\""_s).globalMatch(sheet);
    for (auto it = matches; it.hasNext();)
        formulas.append(it.next().captured(1));
    // A city's totals over its records; a region's over its cities' totals; the grand total over the
    // regions' totals. Row 1 holds the captions.
    const QStringList expected{u"COUNT([.C4])"_s,
                               u"SUM([.F4])"_s, // South, Kraków
                               u"SUM([.C5])"_s,
                               u"SUM([.F5])"_s, // South
                               u"COUNT([.C9:.C10])"_s,
                               u"SUM([.F9:.F10])"_s, // West, Gdańsk
                               u"COUNT([.C13])"_s,
                               u"SUM([.F13])"_s, // West, Kraków
                               u"COUNT([.C16:.C17])"_s,
                               u"SUM([.F16:.F17])"_s, // West, Łódź
                               u"SUM([.C11];[.C14];[.C18])"_s,
                               u"SUM([.F11];[.F14];[.F18])"_s, // West
                               u"SUM([.F6];[.F19])"_s};        // grand total
    QCOMPARE(formulas, expected);
}

QORLO_TEST_MAIN(TestExportContent)
#include "tst_exportcontent.moc"
