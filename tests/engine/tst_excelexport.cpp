#include "EngineFixtures.h"
#include "Peers.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QProcess>
#include <QTemporaryDir>

using namespace Engine;

class TestExcelExport : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void reportWithGroupsAndTotals();
    void dataOnlyTypedCells();
    void rowsContinueOnFurtherSheets();

private:
    QTemporaryDir m_dir;
    Application m_application;

    // Each sheet as "name rows", then each wanted row as "type:value|type:value" (xlrd's cell types).
    QStringList readBack(const QString &file, const QList<int> &rows)
    {
        QStringList wanted;
        for (int row : rows)
            wanted.append(QString::number(row));
        const QString script =
            QStringLiteral("import sys, xlrd\n"
                           "book = xlrd.open_workbook(sys.argv[1])\n"
                           "for s in book.sheets():\n"
                           "    print(s.name, s.nrows)\n"
                           "    for r in [int(x) for x in sys.argv[2:] if int(x) < s.nrows]:\n"
                           "        print('|'.join('%d:%s' % (c.ctype, c.value) for c in s.row(r)))\n");
        QProcess python;
        python.start(TestSupport::DebianPython(), QStringList{QStringLiteral("-c"), script, file} + wanted);
        if (!python.waitForFinished(60000) || python.exitCode() != 0)
            return {QString::fromUtf8(python.readAllStandardError())};
        return QString::fromUtf8(python.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    QString exportDemo(int formatType, const QString &name)
    {
        auto report = m_application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-by-region.rpt"));
        report->ExportOptions().FormatType = formatType;
        report->ExportOptions().DiskFileName = m_dir.filePath(name);
        report->Export(false);
        return report->ExportOptions().DiskFileName;
    }
};

void TestExcelExport::initTestCase()
{
    QProcess probe;
    probe.start(TestSupport::DebianPython(), {QStringLiteral("-c"), QStringLiteral("import xlrd")});
    QORLO_REQUIRE_PEER(probe.waitForFinished(30000) && probe.exitCode() == 0, QStringLiteral("python3-xlrd"));
}

void TestExcelExport::reportWithGroupsAndTotals()
{
    const QStringList lines = readBack(exportDemo(Excel80Format, QStringLiteral("report.xls")), {0, 1, 2, 3});
    QVERIFY2(lines.size() == 5, qPrintable(lines.join(QLatin1Char('\n'))));
    QVERIFY(lines[0].startsWith(QLatin1String("Sheet1 ")));
    // The group fields lead every row.
    QCOMPARE(lines[1], QStringLiteral("1:Region|1:Product|1:Date|1:Customer|1:Qty|1:Amount"));
    QCOMPARE(lines[2],
             QStringLiteral("1:Region: East|0:|0:|0:|0:|0:")); // xlrd pads a row to the sheet's width
    QCOMPARE(lines[3], QStringLiteral("1:Product: Doohickey|0:|0:|0:|0:|0:"));
    QVERIFY2(
        lines[4].startsWith(QLatin1String("1:East|1:Doohickey|3:45292.0|1:Fox \"Retail\"|2:27.0|2:1485.0")),
        qPrintable(lines[4]));

    // The totals rows hold the sums as numbers in their columns.
    const QStringList all = readBack(m_dir.filePath(QStringLiteral("report.xls")), [] {
        QList<int> rows;
        for (int r = 0; r < 3200; ++r)
            rows.append(r);
        return rows;
    }());
    auto amountOf = [&all](const QString &label) {
        for (const QString &line : all) {
            if (line.startsWith(QStringLiteral("1:") + label + QLatin1Char('|')))
                return line.section(QLatin1String("|2:"), 1);
        }
        return QString();
    };
    QCOMPARE(amountOf(QStringLiteral("Total East")).section(QLatin1Char('|'), 0, 0),
             QStringLiteral("15051.0"));
    QVERIFY(qFuzzyCompare(amountOf(QStringLiteral("Total East")).section(QLatin1String("|2:"), 1).toDouble(),
                          335021.5));
    QCOMPARE(amountOf(QStringLiteral("Grand total")).section(QLatin1Char('|'), 0, 0),
             QStringLiteral("62513.0"));
    QVERIFY(qFuzzyCompare(amountOf(QStringLiteral("Grand total")).section(QLatin1String("|2:"), 1).toDouble(),
                          1364680.5));
}

void TestExcelExport::dataOnlyTypedCells()
{
    const QStringList lines =
        readBack(exportDemo(ExcelDataOnlyFormat, QStringLiteral("data.xls")), {0, 1, 3000});
    QVERIFY2(lines.size() == 4, qPrintable(lines.join(QLatin1Char('\n'))));
    QCOMPARE(lines[0], QStringLiteral("Sheet1 3001"));
    QCOMPARE(lines[1], QStringLiteral("1:Region|1:Product|1:Date|1:Customer|1:Qty|1:Amount"));
    QVERIFY2(
        lines[2].startsWith(QLatin1String("1:East|1:Doohickey|3:45292.0|1:Fox \"Retail\"|2:27.0|2:1485.0")),
        qPrintable(lines[2]));
    QVERIFY(lines[3].startsWith(QLatin1String("1:West|1:Widget|3:")));
}

void TestExcelExport::rowsContinueOnFurtherSheets()
{
    const QDir folder(m_dir.path());
    EngineFixtures::MakeSalesDatabase(folder.filePath(QStringLiteral("sales.db")));
    const QString path =
        EngineFixtures::SalesReport(folder, QStringLiteral("many.rpt"),
                                    QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
                                                   "FROM n WHERE i < 70000) SELECT i FROM n"));
    auto report = m_application.OpenReport(path);
    report->ExportOptions().FormatType = ExcelDataOnlyFormat;
    report->ExportOptions().DiskFileName = folder.filePath(QStringLiteral("many.xls"));
    report->Export(false);
    const QStringList lines = readBack(report->ExportOptions().DiskFileName, {65535});
    QVERIFY2(lines.size() == 3, qPrintable(lines.join(QLatin1Char('\n'))));
    QCOMPARE(lines[0], QStringLiteral("Sheet1 65536"));
    QCOMPARE(lines[1], QStringLiteral("2:65535.0"));
    QCOMPARE(lines[2], QStringLiteral("Sheet2 4466")); // a heading and the remaining 4,465 rows
}

QORLO_TEST_MAIN(TestExcelExport)
#include "tst_excelexport.moc"
