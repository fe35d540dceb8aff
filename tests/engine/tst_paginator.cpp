#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QRegularExpression>
#include <QTemporaryDir>

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
        report.ExportOptions().DiskFileName = m_dir.filePath(QStringLiteral("pages.txt"));
        report.Export(false);
        QFile file(report.ExportOptions().DiskFileName);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(QLatin1Char('\f'));
    }
};

void TestPaginator::groupsTotalsAndPageNumbers()
{
    auto report = demo(QStringLiteral("sales-by-region.rpt"));
    const QStringList pages = paginatedText(*report);
    const int count = report->PrintingStatus().NumberOfPages();
    QVERIFY(count > 20);
    QCOMPARE(pages.size(), count);
    for (int i = 0; i < count; ++i)
        QVERIFY2(pages[i].contains(QStringLiteral("Page %1 of %2").arg(i + 1).arg(count)),
                 qPrintable(pages[i]));
    QVERIFY(pages.first().contains(QLatin1String("Sales by Region and Product")));
    QVERIFY(pages.first().contains(QLatin1String("Region: East")));
    QVERIFY(pages.first().contains(QLatin1String("Product: Doohickey")));
    QVERIFY(pages.first().contains(QLatin1String("Customer")));
    // Each region starts a page of its own, and every page repeats the column captions.
    for (const char *region : {"North", "South", "West"}) {
        const QString header = QStringLiteral("Region: ") + QLatin1String(region);
        const auto page =
            std::find_if(pages.begin(), pages.end(), [&](const QString &p) { return p.contains(header); });
        QVERIFY2(page != pages.end(), region);
        QVERIFY(!page->contains(QLatin1String("Total East")));
        QVERIFY(page->contains(QLatin1String("Amount")));
    }
    // Totals as the database sums them (demo/make-demo-db.py is deterministic).
    const QString all = pages.join(QString());
    QVERIFY(all.contains(QRegularExpression(QStringLiteral("Total East\\s.*335,021\\.50"))));
    QVERIFY(all.contains(QRegularExpression(QStringLiteral("Total West\\s.*349,279\\.25"))));
    QVERIFY(pages.last().contains(QRegularExpression(QStringLiteral("Grand total\\s.*1,364,680\\.50"))));
    QVERIFY(all.contains(QLatin1String("01-Jan-2024")));
}

void TestPaginator::orientationAndEmptyReport()
{
    auto report = demo(QStringLiteral("large-orders-alert.rpt"));
    report->ReadRecords();
    const int portrait = report->PrintingStatus().NumberOfPages();
    report->setPaperOrientation(LandscapeOrientation);
    const int landscape = report->PrintingStatus().NumberOfPages();
    QVERIFY2(landscape > portrait, qPrintable(QStringLiteral("%1 vs %2").arg(landscape).arg(portrait)));
    QCOMPARE(paginatedText(*report).size(), landscape);
    report->setPaperOrientation(PortraitOrientation);
    QCOMPARE(report->PrintingStatus().NumberOfPages(), portrait);

    report->setGroupSelectionFormula(QStringLiteral("id < 0"));
    QCOMPARE(report->PrintingStatus().NumberOfPages(), 1);
    const QStringList pages = paginatedText(*report);
    QCOMPARE(pages.size(), 1);
    QVERIFY(pages[0].contains(QLatin1String("Orders with Alerts")));
    QVERIFY(pages[0].contains(QLatin1String("Page 1 of 1")));
}

void TestPaginator::subreportFollowsTheMainReport()
{
    auto report = demo(QStringLiteral("regions-with-summary.rpt"));
    const QString all = paginatedText(*report).join(QString());
    const qsizetype managers = all.indexOf(QLatin1String("Dan Evans"));
    const qsizetype summary = all.indexOf(QLatin1String("Sales per Product"));
    QVERIFY(managers > 0);
    QVERIFY(summary > managers);
    QVERIFY(all.indexOf(QLatin1String("Sprocket"), summary) > summary);
    QVERIFY(all.contains(QRegularExpression(QStringLiteral("Grand total\\s.*1,364,680\\.50"))));
}

void TestPaginator::pdfHasTheSamePages()
{
    QORLO_REQUIRE_PEER(TestSupport::PopplerInstalled(), QStringLiteral("poppler-utils"));
    auto report = demo(QStringLiteral("sales-parameters.rpt"));
    report->ParameterFields().Item(1).AddCurrentValue(QStringLiteral("West"));
    report->ParameterFields().Item(3).AddCurrentValue(QStringLiteral("2024-06-30"));
    report->ExportOptions().FormatType = PdfFormat;
    report->ExportOptions().DiskFileName = m_dir.filePath(QStringLiteral("report.pdf"));
    report->Export(false);
    const int pages = report->PrintingStatus().NumberOfPages();
    QVERIFY(pages > 1);
    QCOMPARE(TestSupport::PdfPages(report->ExportOptions().DiskFileName), pages);
    const QString content = TestSupport::PdfText(report->ExportOptions().DiskFileName, 0, true);
    QVERIFY(content.contains(QStringLiteral("Page %1 of %1").arg(pages)));
    QVERIFY(content.contains(QLatin1String("Sales of Chosen Regions in a Period")));
    QVERIFY(content.contains(QLatin1String("West")));
    QVERIFY(!content.contains(QLatin1String("North")));
    QVERIFY(content.contains(QLatin1String("30-Jun-2024")) || content.contains(QLatin1String("28-Jun-2024")));
    QVERIFY(!content.contains(QLatin1String("Jul-2024")));
}

QORLO_TEST_MAIN(TestPaginator)
#include "tst_paginator.moc"
