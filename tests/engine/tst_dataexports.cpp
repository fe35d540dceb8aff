#include "EngineExports.h"
#include "EngineOracles.h"
#include "TestMain.h"

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

class TestDataExports : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void goldenFiles_data();
    void goldenFiles();
    void targetByFormatType();
    void failures();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    Application m_application;
    std::unique_ptr<Report> m_report;

    QString exportTo(int formatType, const QString &name)
    {
        m_report->ExportOptions().FormatType = formatType;
        m_report->ExportOptions().DiskFileName = m_dir->filePath(name);
        m_report->Export(false);
        return m_dir->filePath(name);
    }
};

void TestDataExports::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    MakeSalesDatabase(m_dir->filePath(u"sales.db"_s));
    const QString path =
        SalesReport(QDir(m_dir->path()), u"exports.rpt"_s,
                    u"SELECT id, order_date, region, customer, amount, paid FROM {Sales} ORDER BY id"_s,
                    uR"(<parameter name="Region" type="12"><default>North</default></parameter>
<layout>
  <column field="id" caption="No." width="30" align="right"/>
  <column field="order_date" caption="Date" width="70" format="dd-MMM-yyyy"/>
  <column field="customer" caption="Customer" width="120"/>
  <column field="amount" caption="Amount, EUR" width="60" align="right" format="#,##0.00"/>
  <column field="paid" caption="Paid" width="30"/>
</layout>
<groupSelection>id &lt;&gt; 2</groupSelection>)"_s);
    m_report = m_application.OpenReport(path);
}

void TestDataExports::goldenFiles_data()
{
    QTest::addColumn<int>("formatType");
    QTest::addColumn<QString>("golden");
    QTest::addColumn<bool>("schedulerCsv");
    QTest::newRow("record format") << 3 << u"records.txt"_s << false;
    QTest::newRow("csv as the scheduler sets it") << 5 << u"scheduler.csv"_s << true;
    QTest::newRow("csv engine defaults") << 5 << u"defaults.csv"_s << false;
    QTest::newRow("tab separated values") << 6 << u"values.tsv"_s << false;
    QTest::newRow("tab separated text") << 9 << u"text.tsv"_s << false;
    QTest::newRow("xml") << 37 << u"records.xml"_s << false;
    QTest::newRow("report with saved data") << 1 << u"saved.rpt"_s << false;
    QTest::newRow("report 7.0 with saved data") << 33 << u"saved.rpt"_s << false;
}

void TestDataExports::goldenFiles()
{
    QFETCH(int, formatType);
    QFETCH(QString, golden);
    QFETCH(bool, schedulerCsv);
    if (schedulerCsv) {
        ExportOptions &options = m_report->ExportOptions();
        options.UseReportDateFormat = true;
        options.UseReportNumberFormat = true;
        options.CharFieldDelimiter = u"|"_s;
        options.CharStringDelimiter = u"'"_s;
    }
    const QByteArray actual = EngineOracles::ReadBytes(exportTo(formatType, u"out"_s));
    QCOMPARE(actual, EngineOracles::GoldenBytes(u"engine/exports/"_s + golden, actual));
}

void TestDataExports::targetByFormatType()
{
    ExportOptions &options = m_report->ExportOptions();
    options.DiskFileName = m_dir->filePath(u"disk.out"_s);
    options.XMLFileName = m_dir->filePath(u"xml.out"_s);
    options.FormatType = XmlFormat;
    m_report->Export(false);
    QVERIFY(QFile::exists(options.XMLFileName));
    QVERIFY(!QFile::exists(options.DiskFileName));
    options.XMLFileName.clear();
    m_report->Export(false);
    QVERIFY(EngineOracles::ReadBytes(options.DiskFileName).startsWith("<?xml"));

    // The page formats, each by the file its type names.
    const struct
    {
        int type;
        QByteArray start;
    } paged[] = {{RichTextFormat, "{\\rtf1"},
                 {WordFormat, "{\\rtf1"},
                 {PdfFormat, "%PDF-"},
                 {TextFormat, ""},
                 {PaginatedTextFormat, ""}};
    for (const auto &format : paged) {
        const QByteArray file =
            EngineOracles::ReadBytes(exportTo(format.type, u"paged.%1"_s.arg(format.type)));
        QVERIFY2(file.startsWith(format.start), qPrintable(QString::number(format.type)));
        if (format.type != PdfFormat)
            QVERIFY2(file.contains("Acme Ltd") && file.contains("Page 1 of 1"), file.constData());
    }
    options.FormatType = DhtmlFormat;
    options.HTMLFileName = m_dir->filePath(u"page.html"_s);
    options.HTMLEnableSeparatedPages = true;
    options.HTMLHasPageNavigator = true;
    m_report->Export(false);
    QVERIFY(EngineOracles::ReadBytes(options.HTMLFileName).contains("O&#39;Brien") ||
            EngineOracles::ReadBytes(options.HTMLFileName).contains("O'Brien"));

    // The saved report reopens with the same records and the file's own definition.
    auto again = m_application.OpenReport(exportTo(CrystalReportFormat, u"again.rpt"_s));
    QVERIFY(again->HasSavedData());
    QCOMPARE(again->ReportTitle(), u"Fixture Sales"_s);
    again->ReadRecords();
    QCOMPARE(again->PrintingStatus().NumberOfRecordSelected(), 5);

    // A password never reaches a written report, whether the file or the log-on brought it.
    const QString withPassword = WriteReport(QDir(m_dir->path()), u"pw.rpt"_s, uR"(
<table name="Sales" location="sales" dll="sqlite"><property name="Database">sales.db</property>
<property name="Password">hunter2</property></table><query>SELECT 1 AS one</query>)"_s);
    auto secret = m_application.OpenReport(withPassword);
    secret->Database().Tables().Item(1).ConnectionProperties().Add(u"Password"_s, u"s3cret"_s);
    secret->ExportOptions().FormatType = Crystal7Format;
    secret->ExportOptions().DiskFileName = m_dir->filePath(u"pw-out.rpt"_s);
    secret->Export(false);
    const QByteArray written = EngineOracles::ReadBytes(secret->ExportOptions().DiskFileName);
    QVERIFY(written.contains("<property name=\"Database\">sales.db</property>"));
    QVERIFY(!written.contains("Password") && !written.contains("hunter2") && !written.contains("s3cret"));
}

void TestDataExports::failures()
{
    ExportOptions &options = m_report->ExportOptions();
    auto failure = [this] { return FailureOf([&] { m_report->Export(false); }).description; };
    options.FormatType = CharSeparatedFormat;
    QCOMPARE(failure(), u"No file name given for export format 5"_s);
    options.FormatType = HtmlFormat;
    options.DiskFileName = m_dir->filePath(u"x.html"_s);
    QCOMPARE(failure(),
             u"No file name given for export format 24"_s); // HTML goes to HTMLFileName
    options.FormatType = 99;
    QCOMPARE(failure(), u"Export format 99 is unknown"_s);
    options.FormatType = CharSeparatedFormat;
    options.DiskFileName = m_dir->filePath(u"no/such/folder/x.csv"_s);
    QVERIFY(failure().startsWith(u"Cannot write "_s + options.DiskFileName));
    options.DiskFileName = m_dir->filePath(u"x.csv"_s);
    options.DestinationType = 2;
    QCOMPARE(failure(), u"Export destination 2 is not a disk file (1)"_s);
}

QORLO_TEST_MAIN(TestDataExports)
#include "tst_dataexports.moc"
