#include "CupsPeerFixture.h"
#include "Peers.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QFileInfo>
#include <QTemporaryDir>

using namespace Engine;

class TestReportPrintOut : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void printsEveryPageAndCopy();
    void unknownPrinterFails();

private:
    int printedPages() const { return TestSupport::PrintedPagesAndRotation(m_printed).first; }

    QTemporaryDir m_dir;
    TestSupport::PeerProcess m_cups;
    QString m_printed;
    Application m_application;
};

void TestReportPrintOut::initTestCase()
{
    QORLO_START_CUPS_PEER(m_cups, m_dir, m_printed);
}

void TestReportPrintOut::printsEveryPageAndCopy()
{
    auto report = m_application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-parameters.rpt"));
    report->ParameterFields().Item(3).AddCurrentValue(QStringLiteral("2024-05-31"));
    report->SelectPrinter(QStringLiteral("Generic PDF Printer"), QStringLiteral("PeerPDFFile"), QString());
    report->setPaperOrientation(PortraitOrientation);
    report->PrintOut(false, 2);
    QCOMPARE(report->PrintingStatus().Progress(), int(ProgressCompleted));
    const int pages = report->PrintingStatus().NumberOfPages();
    QVERIFY(pages > 1);
    QCOMPARE(printedPages(), 2 * pages);
}

void TestReportPrintOut::unknownPrinterFails()
{
    auto report = m_application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/region-summary.rpt"));
    report->ParameterFields().Item(1).AddCurrentValue(QStringLiteral("North"));
    report->SelectPrinter(QString(), QStringLiteral("NoSuchPrinter"), QString());
    try {
        report->PrintOut(false, 1);
        QFAIL("a printer that does not exist cannot print");
    } catch (const EngineError &error) {
        QCOMPARE(error.number(), int(EngineError::PrintFailed));
        QVERIFY(!error.description().isEmpty());
    }
    QCOMPARE(report->PrintingStatus().Progress(), int(ProgressFailed));
}

QORLO_TEST_MAIN(TestReportPrintOut)
#include "tst_reportprintout.moc"
