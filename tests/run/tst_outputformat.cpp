#include "SalesReport.h"
#include "RunObjects.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "run/OutputFormat.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <tuple>

using namespace TestSupport;

using namespace Engine;

class TestOutputFormat : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void formatTable_data();
    void formatTable();
    void excelAndCrystalSettings();
    void separatedAndTextOptions();
    void htmlFileNames();
    void exportsWithChosenSettings();

private:
    QString appFile(const QString &name) const { return m_objects->path(name); }

    QTemporaryDir m_data; // the report and its database
    QString m_reportFile;
    std::unique_ptr<RunObjects> m_objects;
    Application m_engine;
    std::unique_ptr<Report> m_report;
};

void TestOutputFormat::initTestCase()
{
    QVERIFY(m_data.isValid());
    MakeSalesDatabase(m_data.filePath(QStringLiteral("sales.db")));
    m_reportFile = SalesReport(
        QDir(m_data.path()), QStringLiteral("sales.rpt"),
        QStringLiteral("SELECT id, customer, amount FROM {Sales} ORDER BY id"),
        QStringLiteral("<layout><column field=\"id\" caption=\"No\" width=\"40\"/>"
                       "<column field=\"customer\" caption=\"Customer\" width=\"200\"/>"
                       "<column field=\"amount\" caption=\"Amount\" width=\"90\" format=\"#,##0.00\"/>"
                       "</layout>"));
}

// A fresh application folder with one item at the cursor and its report open.
void TestOutputFormat::init()
{
    m_report.reset();
    m_objects = std::make_unique<RunObjects>();
    m_objects->schedule.AddNew();
    m_objects->schedule.SetFile(m_reportFile);
    m_report = m_engine.OpenReport(m_reportFile);
}

void TestOutputFormat::formatTable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("formatType");
    QTest::addColumn<QString>("extension");
    const QString rpt = QStringLiteral("rpt");
    const QString txt = QStringLiteral("txt");
    QTest::newRow("crystal") << QStringLiteral("Crystal Report") << 1 << rpt;
    QTest::newRow("empty") << QString() << 1 << rpt;
    QTest::newRow("worksheet") << QStringLiteral("EXCEL WORKSHEET") << 29 << QStringLiteral("xls");
    QTest::newRow("data") << QStringLiteral("Excel Data") << 38 << QStringLiteral("xls");
    QTest::newRow("rtf") << QStringLiteral("Rich Text") << 4 << QStringLiteral("rtf");
    QTest::newRow("tab text") << QStringLiteral("Tab Separated Text") << 9 << txt;
    QTest::newRow("csv") << QStringLiteral("csv file") << 5 << QStringLiteral("csv");
    QTest::newRow("html") << QStringLiteral("HTML Document") << 24 << QStringLiteral("html");
    QTest::newRow("dhtml") << QStringLiteral("DHTML Document") << 32 << QStringLiteral("html");
    QTest::newRow("word") << QStringLiteral("MS Word doc") << 14 << QStringLiteral("doc");
    QTest::newRow("xml") << QStringLiteral("XML Document") << 37 << QStringLiteral("xml");
    QTest::newRow("tab values") << QStringLiteral("Tab Separated Values") << 6 << txt;
    QTest::newRow("pdf") << QStringLiteral("Acrobat File") << 31 << QStringLiteral("pdf");
    QTest::newRow("text") << QStringLiteral("Text File") << 8 << QString();
    QTest::newRow("paginated") << QStringLiteral("Paginated Text") << 10 << txt;
    QTest::newRow("record") << QStringLiteral("Record Format") << 3 << txt;
    QTest::newRow("unknown") << QStringLiteral("Lotus 1-2-3") << 1 << rpt;
    QTest::newRow("blank in front") << QStringLiteral(" CSV File") << 1 << rpt;
}

void TestOutputFormat::formatTable()
{
    QFETCH(QString, name);
    QFETCH(int, formatType);
    QFETCH(QString, extension);
    m_report->ExportOptions().FormatType = PdfFormat;
    m_objects->state.OutputExtension = QStringLiteral("left from before");
    SetOutputFormat(m_objects->run, *m_report, name);
    QCOMPARE(m_report->ExportOptions().FormatType, formatType);
    QCOMPARE(m_objects->state.OutputExtension, extension);
}

// Excel-Format and Crystal-Format are compared exactly; only the two Extended types set the tabular options.
void TestOutputFormat::excelAndCrystalSettings()
{
    const QList<std::tuple<QString, int, bool>> excel = {
        {QStringLiteral("Excel 8.0"), 29, false},          {QStringLiteral("Excel 8.0 Extended"), 30, true},
        {QStringLiteral("Excel 7.0"), 27, false},          {QStringLiteral("Excel 7.0 Extended"), 28, true},
        {QStringLiteral("excel 7.0 extended"), 29, false}, {QString(), 29, false}};
    for (const auto &[setting, formatType, tabular] : excel) {
        m_objects->schedule.Excel_Format = setting;
        ExportOptions &options = m_report->ExportOptions();
        options = ExportOptions();
        options.ExcelUseWorksheetFunctions = true;
        options.ExcelUseConstantColumnWidth = true;
        SetOutputFormat(m_objects->run, *m_report, QStringLiteral("Excel Worksheet"));
        QCOMPARE(options.FormatType, formatType);
        QCOMPARE(options.ExcelTabHasColumnHeadings, tabular);
        QCOMPARE(options.ExcelUseWorksheetFunctions, !tabular);
        QCOMPARE(options.ExcelUseConstantColumnWidth, !tabular);
        QCOMPARE(options.ExcelAreaType, tabular ? 4 : 0);
    }

    // Excel Data is data only whatever the setting says.
    m_objects->schedule.Excel_Format = QStringLiteral("Excel 7.0 Extended");
    m_report->ExportOptions() = ExportOptions();
    SetOutputFormat(m_objects->run, *m_report, QStringLiteral("excel data"));
    QCOMPARE(m_report->ExportOptions().FormatType, int(ExcelDataOnlyFormat));
    QVERIFY(!m_report->ExportOptions().ExcelTabHasColumnHeadings);

    m_objects->schedule.Crystal_Format = QStringLiteral("Crystal Reports 7.0");
    for (const QString &name : {QStringLiteral("Crystal Report"), QString()}) {
        SetOutputFormat(m_objects->run, *m_report, name);
        QCOMPARE(m_report->ExportOptions().FormatType, int(Crystal7Format));
    }
    // An unknown name is always type 1, and the setting is compared exactly.
    SetOutputFormat(m_objects->run, *m_report, QStringLiteral("Lotus 1-2-3"));
    QCOMPARE(m_report->ExportOptions().FormatType, int(CrystalReportFormat));
    m_objects->schedule.Crystal_Format = QStringLiteral("crystal reports 7.0");
    SetOutputFormat(m_objects->run, *m_report, QStringLiteral("Crystal Report"));
    QCOMPARE(m_report->ExportOptions().FormatType, int(CrystalReportFormat));
}

void TestOutputFormat::separatedAndTextOptions()
{
    ExportOptions &options = m_report->ExportOptions();
    SetOutputFormat(m_objects->run, *m_report, QStringLiteral("CSV File"));
    QCOMPARE(options.CharFieldDelimiter, QStringLiteral("|"));
    QCOMPARE(options.CharStringDelimiter, QStringLiteral("'"));
    QVERIFY(options.UseReportDateFormat);
    QVERIFY(options.UseReportNumberFormat);

    for (const QString &name : {QStringLiteral("Text File"), QStringLiteral("Paginated Text")}) {
        options = ExportOptions();
        options.UseDefaultCPI = false;
        options.NumberOfLinesPerPage = 33;
        m_objects->schedule.Text_FormatCPI.clear();
        m_objects->schedule.Text_FormatPage.clear();
        SetOutputFormat(m_objects->run, *m_report, name);
        QVERIFY(options.UseDefaultCPI);
        QCOMPARE(options.NumberOfLinesPerPage, qint16(33)); // an empty setting leaves the lines alone

        m_objects->schedule.Text_FormatCPI = QStringLiteral("15");
        m_objects->schedule.Text_FormatPage = QStringLiteral("60");
        SetOutputFormat(m_objects->run, *m_report, name);
        QVERIFY(!options.UseDefaultCPI);
        QCOMPARE(options.CharactersPerInch, 15);
        QCOMPARE(options.NumberOfLinesPerPage, qint16(60));
    }

    // Settings that are no numbers unwind: the step runs with the trap off.
    m_objects->schedule.Text_FormatCPI = QStringLiteral("ten");
    try {
        SetOutputFormat(m_objects->run, *m_report, QStringLiteral("Text File"));
        QFAIL("a CPI setting that is no number must fail");
    } catch (const QorloError &error) {
        QCOMPARE(error.number(), int(QorloError::TypeMismatch));
    }
    m_objects->schedule.Text_FormatCPI.clear();
    m_objects->schedule.Text_FormatPage = QStringLiteral("40000");
    try {
        SetOutputFormat(m_objects->run, *m_report, QStringLiteral("Paginated Text"));
        QFAIL("a line count beyond 16 bits must fail");
    } catch (const QorloError &error) {
        QCOMPARE(error.number(), int(QorloError::Overflow));
    }
}

void TestOutputFormat::htmlFileNames()
{
    const FixedClock clock(QDateTime(QDate(2031, 7, 4), QTime(9, 30)));
    const ClockGuard guard(clock);
    const ExportOptions &options = m_report->ExportOptions();

    // An empty Location is the shared default page, not the item's own default path.
    SetOutputFormat(m_objects->run, *m_report, QStringLiteral("HTML Document"));
    QCOMPARE(options.HTMLFileName, m_objects->appPath + QStringLiteral("/Output/default.html"));
    QVERIFY(QFileInfo(appFile(QStringLiteral("Output"))).isDir());
    QVERIFY(options.HTMLEnableSeparatedPages);
    QVERIFY(options.HTMLHasPageNavigator);

    const QList<QPair<QString, QString>> names = {
        {QStringLiteral("web/report.htm"), QStringLiteral("web/report.html")},
        {QStringLiteral("web/report.HTML"), QStringLiteral("web/report.html")},
        {QStringLiteral("web/%z/%M-page"), QStringLiteral("web/2031/07-page.html")},
        {QStringLiteral("web/page.html"), QStringLiteral("web/page.html")}};
    for (const auto &[location, expected] : names) {
        m_objects->schedule.SetLocation(appFile(location));
        SetOutputFormat(m_objects->run, *m_report, QStringLiteral("DHTML Document"));
        QCOMPARE(options.FormatType, int(DhtmlFormat));
        QCOMPARE(options.HTMLFileName, appFile(expected));
        QVERIFY2(QFileInfo(appFile(expected)).dir().exists(), qPrintable(expected));
    }

    const QList<QPair<QString, bool>> pages = {{QStringLiteral("One Page"), false},
                                               {QStringLiteral("one page"), true},
                                               {QStringLiteral("Separate Pages"), true}};
    for (const auto &[setting, separated] : pages) {
        m_objects->schedule.SetHTMLPages(setting);
        SetOutputFormat(m_objects->run, *m_report, QStringLiteral("html document"));
        QCOMPARE(options.HTMLEnableSeparatedPages, separated);
        QCOMPARE(options.HTMLHasPageNavigator, separated);
    }

    // A folder that cannot be made unwinds, whatever the delivery.
    QFile blocker(appFile(QStringLiteral("blocker")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    m_objects->schedule.SetLocation(appFile(QStringLiteral("blocker/sub/page.html")));
    QVERIFY_THROWS_EXCEPTION(QorloError,
                             SetOutputFormat(m_objects->run, *m_report, QStringLiteral("HTML Document")));
}

// The CSV settings give "|" between fields and "'" around strings in the file the engine writes.
void TestOutputFormat::exportsWithChosenSettings()
{
    SetOutputFormat(m_objects->run, *m_report, QStringLiteral("CSV File"));
    ExportOptions &options = m_report->ExportOptions();
    options.DiskFileName = appFile(QStringLiteral("sales.") + m_objects->state.OutputExtension);
    m_report->Export(false);

    QFile file(appFile(QStringLiteral("sales.csv")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"));
    QCOMPARE(lines.value(0), QStringLiteral("'No'|'Customer'|'Amount'"));
    QCOMPARE(lines.value(1), QStringLiteral("1|'Acme Ltd'|120.50"));
    QCOMPARE(lines.value(3), QStringLiteral("3|'O''Brien \"Tools\"'|1,500.25"));
    QCOMPARE(lines.value(4), QStringLiteral("4|'Delta'|"));
}

QORLO_TEST_MAIN(TestOutputFormat)
#include "tst_outputformat.moc"
