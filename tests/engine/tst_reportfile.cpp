#include "EngineFixtures.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"
#include "engine/ReportFile.h"

#include <QTemporaryDir>
#include <sys/stat.h>

using namespace Engine;
using EngineFixtures::WriteReport;

class TestReportFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsEveryFeature();
    void objectModel();
    void badFilesNameLineAndFault_data();
    void badFilesNameLineAndFault();
    void notRegularFiles();
    void tooManyGroups();
    void subreportFiles();
    void parameterValuesAndTypes();

private:
    QString failureOf(const QString &path)
    {
        try {
            ReportFile::Read(path);
        } catch (const EngineError &error) {
            return error.description();
        }
        return QString();
    }
};

void TestReportFile::readsEveryFeature()
{
    const ReportDefinition report =
        ReportFile::Read(QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-by-region.rpt"));
    QCOMPARE(report.title, QStringLiteral("Sales by Region and Product"));
    QCOMPARE(report.tables.size(), 1);
    QCOMPARE(report.tables[0].location, QStringLiteral("sales"));
    QCOMPARE(report.tables[0].dllName, QStringLiteral("sqlite"));
    QCOMPARE(report.tables[0].properties[0].name, QStringLiteral("Database"));
    QVERIFY(report.query.contains(QLatin1String("{Sales}")));
    QCOMPARE(report.layout.columns.size(), 4);
    QCOMPARE(report.layout.columns[2].alignment, Qt::AlignRight);
    QCOMPARE(report.layout.columns[3].format, QStringLiteral("#,##0.00"));
    QCOMPARE(report.layout.groups.size(), 2);
    QVERIFY(report.layout.groups[0].newPage);
    QCOMPARE(report.layout.groups[0].subtotals.size(), 2);
    QCOMPARE(report.layout.grandTotals[1].field, QStringLiteral("amount"));
    QVERIFY(!report.savedData);

    QTemporaryDir dir;
    const QString path = WriteReport(QDir(dir.path()), QStringLiteral("saved.rpt"), QStringLiteral(R"(
  <alert name="Big">amount &gt; 100</alert>
  <groupSelection>region = 'North'</groupSelection>
  <layout><page size="Letter" orientation="landscape" margins="10 20 30 40"/></layout>
  <savedData>
    <field name="region" type="12"/><field name="amount" type="7"/><field name="day" type="10"/>
    <row><v>North</v><v>12.5</v><v>2024-02-29</v></row>
    <row><v>South</v><v null="true"/><v>2024-03-01</v></row>
  </savedData>)"));
    const ReportDefinition saved = ReportFile::Read(path);
    QCOMPARE(saved.alerts.size(), 1);
    QCOMPARE(saved.alerts[0].condition, QStringLiteral("amount > 100"));
    QCOMPARE(saved.groupSelection, QStringLiteral("region = 'North'"));
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
    QCOMPARE(report->ReportTitle(), QStringLiteral("Sales of Chosen Regions in a Period"));
    QCOMPARE(&report->Application(), &application);
    QCOMPARE(report->Database().Tables().Count(), 1);
    DatabaseTable &table = report->Database().Tables().Item(1);
    QCOMPARE(table.Name(), QStringLiteral("Sales"));
    table.setLocation(QStringLiteral("sales_2024"));
    QCOMPARE(table.Location(), QStringLiteral("sales_2024"));
    table.ConnectionProperties().Add(QStringLiteral("Password"), QStringLiteral("secret"));
    QCOMPARE(table.ConnectionProperties().Count(), 2);
    QCOMPARE(table.ConnectionProperties().Item(2).Value().toString(), QStringLiteral("secret"));
    QCOMPARE(report->ParameterFields().Count(), 3);
    QCOMPARE(report->ParameterFields().Item(1).Name(), QStringLiteral("{?Regions}"));
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
            QCOMPARE(sub.ReportTitle(), QStringLiteral("Sales per Product"));
            QCOMPARE(&sub, &static_cast<SubreportObject &>(object).OpenSubreport());
        }
    }
    QCOMPARE(subreports, 1);
}

void TestReportFile::badFilesNameLineAndFault_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("expected");
    QTest::newRow("unknown element") << QStringLiteral(
                                            "<title>x</title>\n<layout>\n<colum field=\"a\"/></layout>")
                                     << QStringLiteral("line 5: unknown element <colum>");
    QTest::newRow("missing attribute") << QStringLiteral("<table location=\"x\" dll=\"sqlite\"/>")
                                       << QStringLiteral("line 3: <table> needs the attribute name");
    QTest::newRow("bad driver") << QStringLiteral("<table name=\"T\" dll=\"oracle\"/>")
                                << QStringLiteral("dll \"oracle\" of table T is not sqlite, psql or odbc");
    QTest::newRow("bad value type") << QStringLiteral("<parameter name=\"P\" type=\"13\"/>")
                                    << QStringLiteral(
                                           "type 13 of parameter P is not one of 7, 8, 9, 10, 11, 12, 16");
    QTest::newRow("bad width") << QStringLiteral("<layout><column field=\"a\" width=\"wide\"/></layout>")
                               << QStringLiteral("width \"wide\" of <column> is not a number");
    QTest::newRow("saved row too long")
        << QStringLiteral("<savedData><field name=\"a\" type=\"12\"/><row><v>1</v><v>2</v></row></savedData>")
        << QStringLiteral("a saved row has more values than the 1 saved fields");
    QTest::newRow("bad page") << QStringLiteral("<layout><page size=\"B7\"/></layout>")
                              << QStringLiteral("page size \"B7\" is not A3, A4, A5, Letter or Legal");
}

void TestReportFile::badFilesNameLineAndFault()
{
    QFETCH(QString, body);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const QString path = WriteReport(QDir(dir.path()), QStringLiteral("bad.rpt"), body);
    const QString failure = failureOf(path);
    QVERIFY2(
        failure.startsWith(QStringLiteral("Cannot open report file ") + path + QStringLiteral(": line ")),
        qPrintable(failure));
    QVERIFY2(failure.contains(expected), qPrintable(failure));

    QFile truncated(dir.filePath(QStringLiteral("truncated.rpt")));
    QVERIFY(truncated.open(QIODevice::WriteOnly));
    truncated.write("<?xml version=\"1.0\"?>\n<report version=\"1\">\n<title>Half</title>\n<layout>\n<column "
                    "field=\"a\"");
    truncated.close();
    QVERIFY(failureOf(truncated.fileName())
                .startsWith(QStringLiteral("Cannot open report file ") + truncated.fileName() +
                            QStringLiteral(": line ")));
    QVERIFY(failureOf(dir.filePath(QStringLiteral("none.rpt"))).contains(QLatin1String("does not exist")));
    QFile newer(dir.filePath(QStringLiteral("newer.rpt")));
    QVERIFY(newer.open(QIODevice::WriteOnly));
    newer.write("<report version=\"7\"/>");
    newer.close();
    QVERIFY(
        failureOf(newer.fileName()).contains(QLatin1String("version 7 is newer than this engine reads (1)")));
    const QString formula = WriteReport(QDir(dir.path()), QStringLiteral("formula.rpt"),
                                        QStringLiteral("<alert name=\"Big\">amount &gt;&gt; 5</alert>"));
    try {
        Application().OpenReport(formula);
        QFAIL("a faulty alert must not open");
    } catch (const EngineError &error) {
        QCOMPARE(error.description(),
                 QStringLiteral("Cannot open report file ") + formula +
                     QStringLiteral(": Formula alert \"Big\": position 9: unexpected \">\""));
    }
    try {
        Application().OpenReport(path);
        QFAIL("a bad file must not open");
    } catch (const EngineError &error) {
        QCOMPARE(error.number(), int(EngineError::BadReportFile));
    }
}

// A FIFO blocked the program for good.
void TestReportFile::notRegularFiles()
{
    QTemporaryDir dir;
    const QString fifo = dir.filePath(QStringLiteral("fifo.rpt"));
    QVERIFY(mkfifo(QFile::encodeName(fifo).constData(), 0600) == 0);
    const QString linked = dir.filePath(QStringLiteral("zero.rpt"));
    QVERIFY(QFile::link(QStringLiteral("/dev/zero"), linked));
    for (const QString &path : {fifo, linked, dir.path(), QStringLiteral("/dev/null")}) {
        try {
            Application().OpenReport(path);
            QFAIL("only a regular file is a report");
        } catch (const EngineError &error) {
            QCOMPARE(error.number(), int(EngineError::FileNotFound));
            QCOMPARE(error.description(),
                     QStringLiteral("Cannot open report file %1: it is not a regular file").arg(path));
        }
    }
}

// Each group level nests the walk of the records once more: 50,000 of them overflowed the stack.
void TestReportFile::tooManyGroups()
{
    QTemporaryDir dir;
    EngineFixtures::MakeSalesDatabase(dir.filePath(QStringLiteral("sales.db")));
    Application application;
    const auto exportGroups = [&](int count) {
        const QString path = EngineFixtures::SalesReport(
            QDir(dir.path()), QStringLiteral("groups.rpt"), QStringLiteral("SELECT id, region FROM {Sales}"),
            QStringLiteral("<layout>") + QStringLiteral("<group field=\"region\"/>").repeated(count) +
                QStringLiteral("</layout>"));
        auto report = application.OpenReport(path);
        report->ExportOptions().FormatType = PdfFormat;
        report->ExportOptions().DiskFileName = dir.filePath(QStringLiteral("groups.pdf"));
        report->Export(false);
    };
    exportGroups(100);
    try {
        exportGroups(50000);
        QFAIL("50,000 groups must not open");
    } catch (const EngineError &error) {
        QCOMPARE(error.number(), int(EngineError::BadReportFile));
        QVERIFY2(error.description().endsWith(QLatin1String("line 6: a layout has at most 100 groups")),
                 qPrintable(error.description()));
    }
}

void TestReportFile::subreportFiles()
{
    QTemporaryDir dir;
    const QDir folder(dir.path());
    WriteReport(folder, QStringLiteral("child.rpt"), QStringLiteral("<title>Child</title>"));
    const QString parent = WriteReport(folder, QStringLiteral("parent.rpt"), QStringLiteral(R"(
<subreport name="FromFile" file="child.rpt"><link parameter="A" source="B"/></subreport>
<subreport name="Inline"><report version="1"><title>Inner</title></report></subreport>)"));
    const ReportDefinition report = ReportFile::Read(parent);
    QCOMPARE(report.subreports.size(), 2);
    QCOMPARE(report.subreports[0].report->title, QStringLiteral("Child"));
    QCOMPARE(report.subreports[0].links[0].source, QStringLiteral("B"));
    QCOMPARE(report.subreports[1].report->title, QStringLiteral("Inner"));

    const QString missing =
        WriteReport(folder, QStringLiteral("missing.rpt"),
                    QStringLiteral("<title>x</title>\n<subreport name=\"S\" file=\"gone.rpt\"/>"));
    const QString failure = failureOf(missing);
    QVERIFY2(failure.contains(QLatin1String("line 4: sub-report file")) &&
                 failure.contains(QLatin1String("gone.rpt does not exist")),
             qPrintable(failure));

    // A file that names itself must end, not recurse for ever.
    const QString loop = WriteReport(folder, QStringLiteral("loop.rpt"),
                                     QStringLiteral("<subreport name=\"S\" file=\"loop.rpt\"/>"));
    QVERIFY(failureOf(loop).contains(QLatin1String("nested deeper than")));
}

void TestReportFile::parameterValuesAndTypes()
{
    QTemporaryDir dir;
    const QString path = WriteReport(QDir(dir.path()), QStringLiteral("p.rpt"), QStringLiteral(R"(
<parameter name="{?Num}" type="7"><value>12.5</value></parameter>
<parameter name="Money" type="8"/>
<parameter name="Flag" type="9"/>
<parameter name="Day" type="10"/>
<parameter name="At" type="11"/>
<parameter name="Names" type="12" multiple="true"><default>a</default></parameter>
<parameter name="Moment" type="16"/>
<parameter name="One" type="12"/>)"));
    Application application;
    auto report = application.OpenReport(path);
    auto &fields = report->ParameterFields();
    QCOMPARE(fields.Item(1).Name(), QStringLiteral("{?Num}"));
    QCOMPARE(fields.Item(1).ParameterFieldName(), QStringLiteral("Num"));
    QCOMPARE(fields.Item(1).GetNthCurrentValue(1), QVariant(12.5));
    fields.Item(2).AddCurrentValue(QStringLiteral("3.25"));
    QCOMPARE(fields.Item(2).GetNthCurrentValue(1), QVariant(3.25));
    QVERIFY_THROWS_EXCEPTION(EngineError, fields.Item(2).AddCurrentValue(QStringLiteral("lots")));
    fields.Item(3).AddCurrentValue(true);
    QCOMPARE(fields.Item(3).GetNthCurrentValue(1), QVariant(true));
    fields.Item(4).AddCurrentValue(45351.0); // a day count: 29 February 2024
    QCOMPARE(fields.Item(4).GetNthCurrentValue(1), QVariant(QDate(2024, 2, 29)));
    fields.Item(5).AddCurrentValue(QStringLiteral("13:45:00"));
    QCOMPARE(fields.Item(5).GetNthCurrentValue(1), QVariant(QTime(13, 45)));
    QCOMPARE(fields.Item(6).boundValues(), QVariantList{QStringLiteral("a")});
    fields.Item(6).AddCurrentValue(QStringLiteral("x"));
    fields.Item(6).AddCurrentValue(QStringLiteral("y"));
    QCOMPARE(fields.Item(6).NumberOfCurrentValues(), 2);
    QCOMPARE(fields.Item(6).boundValues(), (QVariantList{QStringLiteral("x"), QStringLiteral("y")}));
    fields.Item(6).ClearCurrentValueAndRange();
    QCOMPARE(fields.Item(6).NumberOfCurrentValues(), 0);
    fields.Item(7).AddCurrentValue(45351.75);
    QCOMPARE(fields.Item(7).GetNthCurrentValue(1), QVariant(QDateTime(QDate(2024, 2, 29), QTime(18, 0))));
    fields.Item(8).AddCurrentValue(QStringLiteral("first"));
    fields.Item(8).AddCurrentValue(QStringLiteral("second"));
    QCOMPARE(fields.Item(8).NumberOfCurrentValues(), 1); // a single-valued field keeps the last
    QCOMPARE(fields.Item(8).GetNthCurrentValue(1), QVariant(QStringLiteral("second")));
    QVERIFY_THROWS_EXCEPTION(EngineError, fields.Item(8).GetNthCurrentValue(2));
}

QORLO_TEST_MAIN(TestReportFile)
#include "tst_reportfile.moc"
