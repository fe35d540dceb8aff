#include "Files.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;

class TestPaginator : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void groupsTotalsAndPageNumbers();
    void orientationAndEmptyReport();
    void subreportFollowsTheMainReport();
    void pdfHasTheSamePages();

private:
    QTemporaryDir m_dir;
    Application m_application;

    std::unique_ptr<Report> demo(const QString &name)
    {
        return m_application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/") + name);
    }
    QStringList paginatedText(Report &report)
    {
        report.ExportOptions().FormatType = PaginatedTextFormat;
        report.ExportOptions().DiskFileName = m_dir.filePath(u"pages.txt"_s);
        report.Export(false);
        return QString::fromUtf8(TestSupport::ReadFile(report.ExportOptions().DiskFileName)).split(u'\f');
    }
};

void TestPaginator::groupsTotalsAndPageNumbers()
{
    auto report = demo(u"sales-by-region.rpt"_s);
    const QStringList pages = paginatedText(*report);
    const int count = report->PrintingStatus().NumberOfPages();
    QVERIFY(count > 20);
    QCOMPARE(pages.size(), count);
    QVERIFY(pages.first().contains(u"Sales by Region and Product"_s));
    QVERIFY(pages.first().contains(u"Region: East"_s));
    QVERIFY(pages.first().contains(u"Product: Doohickey"_s));
    QVERIFY(pages.first().contains(u"Customer"_s));
    // Each region starts a page of its own, and every page repeats the column captions.
    for (const char *region : {"North", "South", "West"}) {
        const QString header = u"Region: "_s + QLatin1String(region);
        const auto page =
            std::find_if(pages.begin(), pages.end(), [&](const QString &p) { return p.contains(header); });
        QVERIFY2(page != pages.end(), region);
        QVERIFY(!page->contains(u"Total East"_s));
        QVERIFY(page->contains(u"Amount"_s));
    }
    // The footers and totals of every page are compared with the database in tst_demogolden.
    QVERIFY(pages.last().contains(QRegularExpression(u"Grand total\\s.*1,364,680\\.50"_s)));
    QVERIFY(pages.join(QString()).contains(u"01-Jan-2024"_s));
}

void TestPaginator::orientationAndEmptyReport()
{
    auto report = demo(u"large-orders-alert.rpt"_s);
    report->ReadRecords();
    const int portrait = report->PrintingStatus().NumberOfPages();
    report->setPaperOrientation(LandscapeOrientation);
    const int landscape = report->PrintingStatus().NumberOfPages();
    QVERIFY2(landscape > portrait, qPrintable(u"%1 vs %2"_s.arg(landscape).arg(portrait)));
    QCOMPARE(paginatedText(*report).size(), landscape);
    report->setPaperOrientation(PortraitOrientation);
    QCOMPARE(report->PrintingStatus().NumberOfPages(), portrait);

    report->setGroupSelectionFormula(u"id < 0"_s);
    QCOMPARE(report->PrintingStatus().NumberOfPages(), 1);
    const QStringList pages = paginatedText(*report);
    QCOMPARE(pages.size(), 1);
    QVERIFY(pages[0].contains(u"Orders with Alerts"_s));
    QVERIFY(pages[0].contains(u"Page 1 of 1"_s));
}

void TestPaginator::subreportFollowsTheMainReport()
{
    auto report = demo(u"regions-with-summary.rpt"_s);
    const QString all = paginatedText(*report).join(QString());
    const qsizetype managers = all.indexOf(u"Dan Evans"_s);
    const qsizetype summary = all.indexOf(u"Sales per Product"_s);
    QVERIFY(managers > 0);
    QVERIFY(summary > managers);
    QVERIFY(all.indexOf(u"Sprocket"_s, summary) > summary);
    QVERIFY(all.contains(QRegularExpression(u"Grand total\\s.*1,364,680\\.50"_s)));
}

void TestPaginator::pdfHasTheSamePages()
{
    QORLO_REQUIRE_PEER(TestSupport::PopplerInstalled(), u"poppler-utils"_s);
    auto report = demo(u"sales-parameters.rpt"_s);
    report->ParameterFields().Item(1).AddCurrentValue(u"West"_s);
    report->ParameterFields().Item(3).AddCurrentValue(u"2024-06-30"_s);
    report->ExportOptions().FormatType = PdfFormat;
    report->ExportOptions().DiskFileName = m_dir.filePath(u"report.pdf"_s);
    report->Export(false);
    const int pages = report->PrintingStatus().NumberOfPages();
    QVERIFY(pages > 1);
    QCOMPARE(TestSupport::PdfPages(report->ExportOptions().DiskFileName), pages);
    const QString content = TestSupport::PdfText(report->ExportOptions().DiskFileName, 0, true);
    QVERIFY(content.contains(u"Page %1 of %1"_s.arg(pages)));
    QVERIFY(content.contains(u"Sales of Chosen Regions in a Period"_s));
    QVERIFY(content.contains(u"West"_s));
    QVERIFY(!content.contains(u"North"_s));
    QVERIFY(content.contains(u"30-Jun-2024"_s) || content.contains(u"28-Jun-2024"_s));
    QVERIFY(!content.contains(u"Jul-2024"_s));
}

QORLO_TEST_MAIN(TestPaginator)
#include "tst_paginator.moc"
