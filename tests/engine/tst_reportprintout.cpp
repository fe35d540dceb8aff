#include "Peers.h"
#include "TestMain.h"
#include "run/engine/Application.h"
#include "run/engine/EngineError.h"
#include "run/engine/Report.h"

#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
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
    int printedPages()
    {
        QProcess info;
        info.start(m_pdfinfo, {m_printed});
        info.waitForFinished(30000);
        return QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)"))
            .match(QString::fromUtf8(info.readAllStandardOutput()))
            .captured(1)
            .toInt();
    }

    QTemporaryDir m_dir;
    TestSupport::PeerProcess m_cups;
    QString m_pdfinfo;
    QString m_printed;
    Application m_application;
};

void TestReportPrintOut::initTestCase()
{
    m_pdfinfo = TestSupport::FindProgram(QStringLiteral("pdfinfo"));
    QORLO_REQUIRE_PEER(
        !TestSupport::FindProgram(QStringLiteral("cupsd")).isEmpty() && !m_pdfinfo.isEmpty() &&
            QFileInfo::exists(QStringLiteral("/usr/share/ppd/cupsfilters/Generic-PDF_Printer-PDF.ppd")),
        QStringLiteral("cups, cups-filters and poppler-utils"));
    // The print filters run as the user lp and must pass through this folder.
    QFile::setPermissions(m_dir.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                            QFileDevice::ExeOwner | QFileDevice::ExeGroup |
                                            QFileDevice::ExeOther);
    const QString peerDir = m_dir.filePath(QStringLiteral("cups"));
    const quint16 port = TestSupport::FreePort();
    QVERIFY2(m_cups.start(
                 QStringLiteral("/bin/bash"),
                 {TestSupport::PeerScript(QStringLiteral("cups_peer.sh")), peerDir, QString::number(port)},
                 QStringLiteral("READY"), 30000),
             qPrintable(m_cups.error()));
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(port));
    m_printed = peerDir + QStringLiteral("/out/PeerPDFFile.pdf");
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
