#include "EngineExports.h"
#include "Files.h"
#include "TestMain.h"
#include "engine/ReportFile.h"

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

class TestReportFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsEveryFeature();
    void objectModel();
    void badFilesNameLineAndFault_data();
    void badFilesNameLineAndFault();
    void truncatedMissingAndNewerFiles();
    void notRegularFiles();
    void tooManyGroups();
    void subreportFiles();
    void parameterValuesAndTypes();

private:
    static QString failureOf(const QString &path)
    {
        return FailureOf([&] { ReportFile::Read(path); }).description;
    }
};

void TestReportFile::readsEveryFeature()
{
    const ReportDefinition report =
        ReportFile::Read(QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-by-region.rpt"));
    QCOMPARE(report.title, u"Sales by Region and Product"_s);
    QCOMPARE(report.tables.size(), 1);
    QCOMPARE(report.tables[0].location, u"sales"_s);
    QCOMPARE(report.tables[0].dllName, u"sqlite"_s);
    QCOMPARE(report.tables[0].properties[0].name, u"Database"_s);
    QVERIFY(report.query.contains(u"{Sales}"_s));
    QCOMPARE(report.layout.columns.size(), 4);
    QCOMPARE(report.layout.columns[2].alignment, Qt::AlignRight);
    QCOMPARE(report.layout.columns[3].format, u"#,##0.00"_s);
    QCOMPARE(report.layout.groups.size(), 2);
    QVERIFY(report.layout.groups[0].newPage);
    QCOMPARE(report.layout.groups[0].subtotals.size(), 2);
    QCOMPARE(report.layout.grandTotals[1].field, u"amount"_s);
    QVERIFY(!report.savedData);

    QTemporaryDir dir;
    const QString path = WriteReport(QDir(dir.path()), u"saved.rpt"_s, uR"(
  <alert name="Big">amount &gt; 100</alert>
  <groupSelection>region = 'North'</groupSelection>
  <layout><page size="Letter" orientation="landscape" margins="10 20 30 40"/></layout>
  <savedData>
    <field name="region" type="12"/><field name="amount" type="7"/><field name="day" type="10"/>
    <row><v>North</v><v>12.5</v><v>2024-02-29</v></row>
    <row><v>South</v><v null="true"/><v>2024-03-01</v></row>
  </savedData>)"_s);
    const ReportDefinition saved = ReportFile::Read(path);
    QCOMPARE(saved.alerts.size(), 1);
    QCOMPARE(saved.alerts[0].condition, u"amount > 100"_s);
    QCOMPARE(saved.groupSelection, u"region = 'North'"_s);
    QVERIFY(saved.layout.page.landscape);
    QCOMPARE(saved.layout.page.size.toSize(), QSize(612, 792));
    QCOMPARE(saved.layout.page.margins, QMarginsF(10, 20, 30, 40));
    QVERIFY(saved.savedData);
    QCOMPARE(saved.savedData->count(), 2);
    QCOMPARE(saved.savedData->row(0)[1], QVariant(12.5));
    QCOMPARE(saved.savedData->row(0)[2], QVariant(QDate(2024, 2, 29)));
    QVERIFY(saved.savedData->row(1)[1].isNull());
}

void TestReportFile::objectModel()
{
    Application application;
    auto report = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-parameters.rpt"));
    QCOMPARE(report->ReportTitle(), u"Sales of Chosen Regions in a Period"_s);
    QCOMPARE(&report->Application(), &application);
    QCOMPARE(report->Database().Tables().Count(), 1);
    DatabaseTable &table = report->Database().Tables().Item(1);
    QCOMPARE(table.Name(), u"Sales"_s);
    table.setLocation(u"sales_2024"_s);
    QCOMPARE(table.Location(), u"sales_2024"_s);
    table.ConnectionProperties().Add(u"Password"_s, u"secret"_s);
    QCOMPARE(table.ConnectionProperties().Count(), 2);
    QCOMPARE(table.ConnectionProperties().Item(2).Value().toString(), u"secret"_s);
    QCOMPARE(report->ParameterFields().Count(), 3);
    QCOMPARE(report->ParameterFields().Item(1).Name(), u"{?Regions}"_s);
    QCOMPARE(report->ParameterFields().Item(2).ValueType(), int(DateField));
    QVERIFY_THROWS_EXCEPTION(EngineError, report->ParameterFields().Item(4));
    QVERIFY_THROWS_EXCEPTION(EngineError, report->ParameterFields().Item(0));
    QVERIFY(!report->HasSavedData());
    QCOMPARE(report->PrintingStatus().Progress(), int(ProgressNotStarted));
    QCOMPARE(report->PaperOrientation(), int(DefaultPaperOrientation));
    QCOMPARE(report->ExportOptions().FormatType, int(CrystalReportFormat));

    auto withSub = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/regions-with-summary.rpt"));
    int subreports = 0;
    for (Section &section : withSub->Sections()) {
        for (ReportObject &object : section.ReportObjects()) {
            if (object.Kind() != SubreportObjectKind)
                continue;
            ++subreports;
            Report &sub = static_cast<SubreportObject &>(object).OpenSubreport();
            QCOMPARE(sub.ReportTitle(), u"Sales per Product"_s);
            QCOMPARE(&sub, &static_cast<SubreportObject &>(object).OpenSubreport());
        }
    }
    QCOMPARE(subreports, 1);
}

void TestReportFile::badFilesNameLineAndFault_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("expected");
    QTest::newRow("unknown element") << u"<title>x</title>\n<layout>\n<colum field=\"a\"/></layout>"_s
                                     << u"line 5: unknown element <colum>"_s;
    QTest::newRow("missing attribute")
        << u"<table location=\"x\" dll=\"sqlite\"/>"_s << u"line 3: <table> needs the attribute name"_s;
    QTest::newRow("bad driver") << u"<table name=\"T\" dll=\"oracle\"/>"_s
                                << u"dll \"oracle\" of table T is not sqlite, psql or odbc"_s;
    QTest::newRow("bad value type") << u"<parameter name=\"P\" type=\"13\"/>"_s
                                    << u"type 13 of parameter P is not one of 7, 8, 9, 10, 11, 12, 16"_s;
    QTest::newRow("bad width") << u"<layout><column field=\"a\" width=\"wide\"/></layout>"_s
                               << u"width \"wide\" of <column> is not a number"_s;
    QTest::newRow("saved row too long")
        << u"<savedData><field name=\"a\" type=\"12\"/><row><v>1</v><v>2</v></row></savedData>"_s
        << u"a saved row has more values than the 1 saved fields"_s;
    QTest::newRow("bad page") << u"<layout><page size=\"B7\"/></layout>"_s
                              << u"page size \"B7\" is not A3, A4, A5, Letter or Legal"_s;
}

void TestReportFile::badFilesNameLineAndFault()
{
    QFETCH(QString, body);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const QString path = WriteReport(QDir(dir.path()), u"bad.rpt"_s, body);
    const EngineFailure failure = FailureOf([&] { Application().OpenReport(path); });
    QCOMPARE(failure.number, int(EngineError::BadReportFile));
    QVERIFY2(failure.description.startsWith(u"Cannot open report file "_s + path + u": line "_s),
             qPrintable(failure.description));
    QVERIFY2(failure.description.contains(expected), qPrintable(failure.description));
}

void TestReportFile::truncatedMissingAndNewerFiles()
{
    QTemporaryDir dir;
    const QString truncated =
        WriteFile(dir.filePath(u"truncated.rpt"_s),
                  "<?xml version=\"1.0\"?>\n<report version=\"1\">\n<title>Half</title>\n"
                  "<layout>\n<column field=\"a\"");
    QVERIFY(failureOf(truncated).startsWith(u"Cannot open report file "_s + truncated + u": line "_s));
    QVERIFY(failureOf(dir.filePath(u"none.rpt"_s)).contains(u"does not exist"_s));
    const QString newer = WriteFile(dir.filePath(u"newer.rpt"_s), "<report version=\"7\"/>");
    QVERIFY(failureOf(newer).contains(u"version 7 is newer than this engine reads (1)"_s));
    const QString formula =
        WriteReport(QDir(dir.path()), u"formula.rpt"_s, u"<alert name=\"Big\">amount &gt;&gt; 5</alert>"_s);
    QCOMPARE(FailureOf([&] { Application().OpenReport(formula); }).description,
             u"Cannot open report file "_s + formula +
                 u": Formula alert \"Big\": position 9: unexpected \">\""_s);
}

// A FIFO blocked the program for good.
void TestReportFile::notRegularFiles()
{
    QTemporaryDir dir;
    const QString fifo = dir.filePath(u"fifo.rpt"_s);
    QVERIFY(mkfifo(QFile::encodeName(fifo).constData(), 0600) == 0);
    const QString linked = dir.filePath(u"zero.rpt"_s);
    QVERIFY(QFile::link(u"/dev/zero"_s, linked));
    for (const QString &path : {fifo, linked, dir.path(), u"/dev/null"_s}) {
        const EngineFailure failure = FailureOf([&] { Application().OpenReport(path); });
        QCOMPARE(failure.number, int(EngineError::FileNotFound));
        QCOMPARE(failure.description, u"Cannot open report file %1: it is not a regular file"_s.arg(path));
    }
}

// Each group level nests the walk of the records once more: 50,000 of them overflowed the stack.
void TestReportFile::tooManyGroups()
{
    ReportFolder reports;
    MakeSalesDatabase(reports.path(u"sales.db"_s));
    const auto exportGroups = [&](int count) {
        return FailureOf([&] {
            ExportBeside(
                reports.application,
                SalesReport(QDir(reports.dir.path()), u"groups.rpt"_s, u"SELECT id, region FROM {Sales}"_s,
                            u"<layout>%1</layout>"_s.arg(u"<group field=\"region\"/>"_s.repeated(count))),
                PdfFormat);
        });
    };
    QCOMPARE(exportGroups(100).description, u"(no failure)"_s);
    const EngineFailure failure = exportGroups(50000);
    QCOMPARE(failure.number, int(EngineError::BadReportFile));
    QVERIFY2(failure.description.endsWith(u"line 6: a layout has at most 100 groups"_s),
             qPrintable(failure.description));
}

void TestReportFile::subreportFiles()
{
    QTemporaryDir dir;
    const QDir folder(dir.path());
    WriteReport(folder, u"child.rpt"_s, u"<title>Child</title>"_s);
    const QString parent = WriteReport(folder, u"parent.rpt"_s, uR"(
<subreport name="FromFile" file="child.rpt"><link parameter="A" source="B"/></subreport>
<subreport name="Inline"><report version="1"><title>Inner</title></report></subreport>)"_s);
    const ReportDefinition report = ReportFile::Read(parent);
    QCOMPARE(report.subreports.size(), 2);
    QCOMPARE(report.subreports[0].report->title, u"Child"_s);
    QCOMPARE(report.subreports[0].links[0].source, u"B"_s);
    QCOMPARE(report.subreports[1].report->title, u"Inner"_s);

    const QString missing = WriteReport(folder, u"missing.rpt"_s,
                                        u"<title>x</title>\n<subreport name=\"S\" file=\"gone.rpt\"/>"_s);
    const QString failure = failureOf(missing);
    QVERIFY2(failure.contains(u"line 4: sub-report file"_s) && failure.contains(u"gone.rpt does not exist"_s),
             qPrintable(failure));

    // A file that names itself must end, not recurse for ever.
    const QString loop = WriteReport(folder, u"loop.rpt"_s, u"<subreport name=\"S\" file=\"loop.rpt\"/>"_s);
    QVERIFY(failureOf(loop).contains(u"nested deeper than"_s));
}

void TestReportFile::parameterValuesAndTypes()
{
    QTemporaryDir dir;
    const QString path = WriteReport(QDir(dir.path()), u"p.rpt"_s, uR"(
<parameter name="{?Num}" type="7"><value>12.5</value></parameter>
<parameter name="Money" type="8"/>
<parameter name="Flag" type="9"/>
<parameter name="Day" type="10"/>
<parameter name="At" type="11"/>
<parameter name="Names" type="12" multiple="true"><default>a</default></parameter>
<parameter name="Moment" type="16"/>
<parameter name="One" type="12"/>)"_s);
    Application application;
    auto report = application.OpenReport(path);
    auto &fields = report->ParameterFields();
    QCOMPARE(fields.Item(1).Name(), u"{?Num}"_s);
    QCOMPARE(fields.Item(1).ParameterFieldName(), u"Num"_s);
    QCOMPARE(fields.Item(1).GetNthCurrentValue(1), QVariant(12.5));
    fields.Item(2).AddCurrentValue(u"3.25"_s);
    QCOMPARE(fields.Item(2).GetNthCurrentValue(1), QVariant(3.25));
    QVERIFY_THROWS_EXCEPTION(EngineError, fields.Item(2).AddCurrentValue(u"lots"_s));
    fields.Item(3).AddCurrentValue(true);
    QCOMPARE(fields.Item(3).GetNthCurrentValue(1), QVariant(true));
    fields.Item(4).AddCurrentValue(45351.0); // a day count: 29 February 2024
    QCOMPARE(fields.Item(4).GetNthCurrentValue(1), QVariant(QDate(2024, 2, 29)));
    fields.Item(5).AddCurrentValue(u"13:45:00"_s);
    QCOMPARE(fields.Item(5).GetNthCurrentValue(1), QVariant(QTime(13, 45)));
    QCOMPARE(fields.Item(6).boundValues(), QVariantList{u"a"_s});
    fields.Item(6).AddCurrentValue(u"x"_s);
    fields.Item(6).AddCurrentValue(u"y"_s);
    QCOMPARE(fields.Item(6).NumberOfCurrentValues(), 2);
    QCOMPARE(fields.Item(6).boundValues(), (QVariantList{u"x"_s, u"y"_s}));
    fields.Item(6).ClearCurrentValueAndRange();
    QCOMPARE(fields.Item(6).NumberOfCurrentValues(), 0);
    fields.Item(7).AddCurrentValue(45351.75);
    QCOMPARE(fields.Item(7).GetNthCurrentValue(1), QVariant(QDateTime(QDate(2024, 2, 29), QTime(18, 0))));
    fields.Item(8).AddCurrentValue(u"first"_s);
    fields.Item(8).AddCurrentValue(u"second"_s);
    QCOMPARE(fields.Item(8).NumberOfCurrentValues(), 1); // a single-valued field keeps the last
    QCOMPARE(fields.Item(8).GetNthCurrentValue(1), QVariant(u"second"_s));
    QVERIFY_THROWS_EXCEPTION(EngineError, fields.Item(8).GetNthCurrentValue(2));
}

QORLO_TEST_MAIN(TestReportFile)
#include "tst_reportfile.moc"
