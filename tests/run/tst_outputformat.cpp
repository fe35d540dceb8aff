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

using namespace Qt::Literals::StringLiterals;

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
    MakeSalesDatabase(m_data.filePath(u"sales.db"_s));
    m_reportFile = SalesReport(
        QDir(m_data.path()), u"sales.rpt"_s, u"SELECT id, customer, amount FROM {Sales} ORDER BY id"_s,
        u"<layout><column field=\"id\" caption=\"No\" width=\"40\"/>"
        "<column field=\"customer\" caption=\"Customer\" width=\"200\"/>"
        "<column field=\"amount\" caption=\"Amount\" width=\"90\" format=\"#,##0.00\"/>"
        "</layout>"_s);
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
    const QString rpt = u"rpt"_s;
    const QString txt = u"txt"_s;
    QTest::newRow("crystal") << u"Crystal Report"_s << 1 << rpt;
    QTest::newRow("empty") << QString() << 1 << rpt;
    QTest::newRow("worksheet") << u"EXCEL WORKSHEET"_s << 29 << u"xls"_s;
    QTest::newRow("data") << u"Excel Data"_s << 38 << u"xls"_s;
    QTest::newRow("rtf") << u"Rich Text"_s << 4 << u"rtf"_s;
    QTest::newRow("tab text") << u"Tab Separated Text"_s << 9 << txt;
    QTest::newRow("csv") << u"csv file"_s << 5 << u"csv"_s;
    QTest::newRow("html") << u"HTML Document"_s << 24 << u"html"_s;
    QTest::newRow("dhtml") << u"DHTML Document"_s << 32 << u"html"_s;
    QTest::newRow("word") << u"MS Word doc"_s << 14 << u"doc"_s;
    QTest::newRow("xml") << u"XML Document"_s << 37 << u"xml"_s;
    QTest::newRow("tab values") << u"Tab Separated Values"_s << 6 << txt;
    QTest::newRow("pdf") << u"Acrobat File"_s << 31 << u"pdf"_s;
    QTest::newRow("text") << u"Text File"_s << 8 << QString();
    QTest::newRow("paginated") << u"Paginated Text"_s << 10 << txt;
    QTest::newRow("record") << u"Record Format"_s << 3 << txt;
    QTest::newRow("unknown") << u"Lotus 1-2-3"_s << 1 << rpt;
    QTest::newRow("blank in front") << u" CSV File"_s << 1 << rpt;
}

void TestOutputFormat::formatTable()
{
    QFETCH(QString, name);
    QFETCH(int, formatType);
    QFETCH(QString, extension);
    m_report->ExportOptions().FormatType = PdfFormat;
    m_objects->state.OutputExtension = u"left from before"_s;
    SetOutputFormat(m_objects->run, *m_report, name);
    QCOMPARE(m_report->ExportOptions().FormatType, formatType);
    QCOMPARE(m_objects->state.OutputExtension, extension);
}

// Excel-Format and Crystal-Format are compared exactly; only the two Extended types set the tabular options.
void TestOutputFormat::excelAndCrystalSettings()
{
    const QList<std::tuple<QString, int, bool>> excel = {
        {u"Excel 8.0"_s, 29, false},          {u"Excel 8.0 Extended"_s, 30, true},
        {u"Excel 7.0"_s, 27, false},          {u"Excel 7.0 Extended"_s, 28, true},
        {u"excel 7.0 extended"_s, 29, false}, {QString(), 29, false}};
    for (const auto &[setting, formatType, tabular] : excel) {
        m_objects->schedule.Excel_Format = setting;
        ExportOptions &options = m_report->ExportOptions();
        options = ExportOptions();
        options.ExcelUseWorksheetFunctions = true;
        options.ExcelUseConstantColumnWidth = true;
        SetOutputFormat(m_objects->run, *m_report, u"Excel Worksheet"_s);
        QCOMPARE(options.FormatType, formatType);
        QCOMPARE(options.ExcelTabHasColumnHeadings, tabular);
        QCOMPARE(options.ExcelUseWorksheetFunctions, !tabular);
        QCOMPARE(options.ExcelUseConstantColumnWidth, !tabular);
        QCOMPARE(options.ExcelAreaType, tabular ? 4 : 0);
    }

    // Excel Data is data only whatever the setting says.
    m_objects->schedule.Excel_Format = u"Excel 7.0 Extended"_s;
    m_report->ExportOptions() = ExportOptions();
    SetOutputFormat(m_objects->run, *m_report, u"excel data"_s);
    QCOMPARE(m_report->ExportOptions().FormatType, int(ExcelDataOnlyFormat));
    QVERIFY(!m_report->ExportOptions().ExcelTabHasColumnHeadings);

    m_objects->schedule.Crystal_Format = u"Crystal Reports 7.0"_s;
    for (const QString &name : {u"Crystal Report"_s, QString()}) {
        SetOutputFormat(m_objects->run, *m_report, name);
        QCOMPARE(m_report->ExportOptions().FormatType, int(Crystal7Format));
    }
    // An unknown name is always type 1, and the setting is compared exactly.
    SetOutputFormat(m_objects->run, *m_report, u"Lotus 1-2-3"_s);
    QCOMPARE(m_report->ExportOptions().FormatType, int(CrystalReportFormat));
    m_objects->schedule.Crystal_Format = u"crystal reports 7.0"_s;
    SetOutputFormat(m_objects->run, *m_report, u"Crystal Report"_s);
    QCOMPARE(m_report->ExportOptions().FormatType, int(CrystalReportFormat));
}

void TestOutputFormat::separatedAndTextOptions()
{
    ExportOptions &options = m_report->ExportOptions();
    SetOutputFormat(m_objects->run, *m_report, u"CSV File"_s);
    QCOMPARE(options.CharFieldDelimiter, u"|"_s);
    QCOMPARE(options.CharStringDelimiter, u"'"_s);
    QVERIFY(options.UseReportDateFormat);
    QVERIFY(options.UseReportNumberFormat);

    for (const QString &name : {u"Text File"_s, u"Paginated Text"_s}) {
        options = ExportOptions();
        options.UseDefaultCPI = false;
        options.NumberOfLinesPerPage = 33;
        m_objects->schedule.Text_FormatCPI.clear();
        m_objects->schedule.Text_FormatPage.clear();
        SetOutputFormat(m_objects->run, *m_report, name);
        QVERIFY(options.UseDefaultCPI);
        QCOMPARE(options.NumberOfLinesPerPage, qint16(33)); // an empty setting leaves the lines alone

        m_objects->schedule.Text_FormatCPI = u"15"_s;
        m_objects->schedule.Text_FormatPage = u"60"_s;
        SetOutputFormat(m_objects->run, *m_report, name);
        QVERIFY(!options.UseDefaultCPI);
        QCOMPARE(options.CharactersPerInch, 15);
        QCOMPARE(options.NumberOfLinesPerPage, qint16(60));
    }

    // Settings that are no numbers unwind: the step runs with the trap off.
    m_objects->schedule.Text_FormatCPI = u"ten"_s;
    QCOMPARE(ErrorOf([&] { SetOutputFormat(m_objects->run, *m_report, u"Text File"_s); }),
             int(QorloError::TypeMismatch));
    m_objects->schedule.Text_FormatCPI.clear();
    m_objects->schedule.Text_FormatPage = u"40000"_s;
    QCOMPARE(ErrorOf([&] { SetOutputFormat(m_objects->run, *m_report, u"Paginated Text"_s); }),
             int(QorloError::Overflow));
}

void TestOutputFormat::htmlFileNames()
{
    const FixedClock clock(QDateTime(QDate(2031, 7, 4), QTime(9, 30)));
    const ClockGuard guard(clock);
    const ExportOptions &options = m_report->ExportOptions();

    // An empty Location is the shared default page, not the item's own default path.
    SetOutputFormat(m_objects->run, *m_report, u"HTML Document"_s);
    QCOMPARE(options.HTMLFileName, m_objects->appPath + u"/Output/default.html"_s);
    QVERIFY(QFileInfo(appFile(u"Output"_s)).isDir());
    QVERIFY(options.HTMLEnableSeparatedPages);
    QVERIFY(options.HTMLHasPageNavigator);

    const QList<QPair<QString, QString>> names = {{u"web/report.htm"_s, u"web/report.html"_s},
                                                  {u"web/report.HTML"_s, u"web/report.html"_s},
                                                  {u"web/%z/%M-page"_s, u"web/2031/07-page.html"_s},
                                                  {u"web/page.html"_s, u"web/page.html"_s}};
    for (const auto &[location, expected] : names) {
        m_objects->schedule.SetLocation(appFile(location));
        SetOutputFormat(m_objects->run, *m_report, u"DHTML Document"_s);
        QCOMPARE(options.FormatType, int(DhtmlFormat));
        QCOMPARE(options.HTMLFileName, appFile(expected));
        QVERIFY2(QFileInfo(appFile(expected)).dir().exists(), qPrintable(expected));
    }

    const QList<QPair<QString, bool>> pages = {
        {u"One Page"_s, false}, {u"one page"_s, true}, {u"Separate Pages"_s, true}};
    for (const auto &[setting, separated] : pages) {
        m_objects->schedule.SetHTMLPages(setting);
        SetOutputFormat(m_objects->run, *m_report, u"html document"_s);
        QCOMPARE(options.HTMLEnableSeparatedPages, separated);
        QCOMPARE(options.HTMLHasPageNavigator, separated);
    }

    // A folder that cannot be made unwinds, whatever the delivery.
    WriteFile(appFile(u"blocker"_s), QByteArray());
    m_objects->schedule.SetLocation(appFile(u"blocker/sub/page.html"_s));
    QVERIFY_THROWS_EXCEPTION(QorloError, SetOutputFormat(m_objects->run, *m_report, u"HTML Document"_s));
}

// The CSV settings give "|" between fields and "'" around strings in the file the engine writes.
void TestOutputFormat::exportsWithChosenSettings()
{
    SetOutputFormat(m_objects->run, *m_report, u"CSV File"_s);
    ExportOptions &options = m_report->ExportOptions();
    options.DiskFileName = appFile(u"sales."_s + m_objects->state.OutputExtension);
    m_report->Export(false);

    const QStringList lines = QString::fromUtf8(ReadFile(appFile(u"sales.csv"_s))).split(u"\r\n"_s);
    QCOMPARE(lines.value(0), u"'No'|'Customer'|'Amount'"_s);
    QCOMPARE(lines.value(1), u"1|'Acme Ltd'|120.50"_s);
    QCOMPARE(lines.value(3), u"3|'O''Brien \"Tools\"'|1,500.25"_s);
    QCOMPARE(lines.value(4), u"4|'Delta'|"_s);
}

QORLO_TEST_MAIN(TestOutputFormat)
#include "tst_outputformat.moc"
