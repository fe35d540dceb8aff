#include "Files.h"
#include "Peers.h"
#include "Readers.h"
#include "SalesReport.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

class TestExcelExport : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void headingsAndGroupRows();
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
        const QString script = u"import sys, xlrd\n"
                               "book = xlrd.open_workbook(sys.argv[1])\n"
                               "for s in book.sheets():\n"
                               "    print(s.name, s.nrows)\n"
                               "    for r in [int(x) for x in sys.argv[2:] if int(x) < s.nrows]:\n"
                               "        print('|'.join('%d:%s' % (c.ctype, c.value) for c in s.row(r)))\n"_s;
        return QString::fromUtf8(ProgramOutput(DebianPython(), QStringList{u"-c"_s, script, file} + wanted))
            .split(u'\n', Qt::SkipEmptyParts);
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
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
}

// The totals and every record of the demo reports, typed, are compared with the database in
// tst_demogolden; here the headings and group rows.
void TestExcelExport::headingsAndGroupRows()
{
    const QStringList lines = readBack(exportDemo(Excel80Format, u"report.xls"_s), {0, 1, 2, 3});
    QVERIFY2(lines.size() == 5, qPrintable(lines.join(u'\n')));
    QVERIFY(lines[0].startsWith(u"Sheet1 "_s));
    // The group fields lead every row.
    QCOMPARE(lines[1], u"1:Region|1:Product|1:Date|1:Customer|1:Qty|1:Amount"_s);
    QCOMPARE(lines[2],
             u"1:Region: East|0:|0:|0:|0:|0:"_s); // xlrd pads a row to the sheet's width
    QCOMPARE(lines[3], u"1:Product: Doohickey|0:|0:|0:|0:|0:"_s);
    QVERIFY2(lines[4].startsWith(u"1:East|1:Doohickey|3:45292.0|1:Fox \"Retail\"|2:27.0|2:1485.0"_s),
             qPrintable(lines[4]));
}

void TestExcelExport::dataOnlyTypedCells()
{
    const QStringList lines = readBack(exportDemo(ExcelDataOnlyFormat, u"data.xls"_s), {0, 1, 3000});
    QVERIFY2(lines.size() == 4, qPrintable(lines.join(u'\n')));
    QCOMPARE(lines[0], u"Sheet1 3001"_s);
    QCOMPARE(lines[1], u"1:Region|1:Product|1:Date|1:Customer|1:Qty|1:Amount"_s);
    QVERIFY2(lines[2].startsWith(u"1:East|1:Doohickey|3:45292.0|1:Fox \"Retail\"|2:27.0|2:1485.0"_s),
             qPrintable(lines[2]));
    QVERIFY(lines[3].startsWith(u"1:West|1:Widget|3:"_s));
}

void TestExcelExport::rowsContinueOnFurtherSheets()
{
    const QDir folder(m_dir.path());
    MakeSalesDatabase(folder.filePath(u"sales.db"_s));
    const QString path = SalesReport(folder, u"many.rpt"_s,
                                     u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
                                     "FROM n WHERE i < 70000) SELECT i FROM n"_s);
    auto report = m_application.OpenReport(path);
    report->ExportOptions().FormatType = ExcelDataOnlyFormat;
    report->ExportOptions().DiskFileName = folder.filePath(u"many.xls"_s);
    report->Export(false);
    const QStringList lines = readBack(report->ExportOptions().DiskFileName, {65535});
    QVERIFY2(lines.size() == 3, qPrintable(lines.join(u'\n')));
    QCOMPARE(lines[0], u"Sheet1 65536"_s);
    QCOMPARE(lines[1], u"2:65535.0"_s);
    QCOMPARE(lines[2], u"Sheet2 4466"_s); // a heading and the remaining 4,465 rows
}

QORLO_TEST_MAIN(TestExcelExport)
#include "tst_excelexport.moc"
