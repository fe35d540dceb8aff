#include "engine/Codes.h"
#include "engine/page/CupsPrinter.h"
#include "engine/page/PdfPageSink.h"
#include "engine/page/PrintPageSink.h"
#include "CupsPeerFixture.h"
#include "Peers.h"
#include "TestMain.h"
#include "tst_page_sample.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

using namespace Engine;

class TestPrintCups : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void printerList();
    void twoCopiesLandscape();
    void printPageSink();
    void failures();

private:
    QTemporaryDir m_dir;
    TestSupport::PeerProcess m_cups;
    QString m_printed; // the file the printer writes each job to
};

namespace {

const QString Printer = QStringLiteral("PeerPDFFile");

} // namespace

void TestPrintCups::initTestCase()
{
    QORLO_START_CUPS_PEER(m_cups, m_dir, m_printed);
}

void TestPrintCups::printerList()
{
    QString error;
    const QList<PrinterInfo> printers = CupsPrinter::InstalledPrinters(&error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QCOMPARE(printers.size(), 1);
    QCOMPARE(printers[0].deviceName, Printer);
    QVERIFY2(printers[0].driverName.contains(QStringLiteral("PDF Printer")),
             qPrintable(printers[0].driverName));
    QCOMPARE(printers[0].port, QStringLiteral("file:") + m_printed);
    // The peer has no default printer.
    QCOMPARE(CupsPrinter::DefaultPrinterName(), QString());
}

void TestPrintCups::twoCopiesLandscape()
{
    const QString pdf = m_dir.filePath(QStringLiteral("wide.pdf"));
    PdfPageSink sink(pdf);
    PageSample::Render(sink, PageSample::Setup(true), 2);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));

    CupsPrinter printer;
    const PrinterInfo info = CupsPrinter::InstalledPrinters().value(0);
    printer.select(info.driverName, info.deviceName, info.port);
    QCOMPARE(printer.selected().port, info.port);
    const int job = printer.submit(pdf, 2, LandscapeOrientation, QStringLiteral("Sales"));
    QVERIFY2(job > 0, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(job, 60000), int(ProgressCompleted));

    // Two copies of two pages, turned on the printer's paper.
    QCOMPARE(TestSupport::PrintedPagesAndRotation(pdf), qMakePair(2, 0));
    const auto [pages, rotation] = TestSupport::PrintedPagesAndRotation(m_printed);
    QCOMPARE(pages, 4);
    QVERIFY2(rotation == 90 || rotation == 270, qPrintable(QString::number(rotation)));

    // The same document in portrait, once: nothing turned.
    const int portrait = printer.submit(pdf, 1, PortraitOrientation, QStringLiteral("Sales"));
    QVERIFY2(portrait > job, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(portrait, 60000), int(ProgressCompleted));
    QCOMPARE(TestSupport::PrintedPagesAndRotation(m_printed), qMakePair(2, 0));
}

void TestPrintCups::printPageSink()
{
    CupsPrinter printer;
    printer.select(QString(), Printer, QString());
    PrintPageSink sink(printer, 1, DefaultPaperOrientation, 60000);
    QCOMPARE(sink.progress(), int(ProgressNotStarted));
    PageSample::Render(sink, PageSample::Setup(false), 3);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));
    QVERIFY(sink.jobId() > 0);
    QCOMPARE(sink.progress(), int(ProgressCompleted));
    QCOMPARE(TestSupport::PrintedPagesAndRotation(m_printed), qMakePair(3, 0));

    printer.select(QString(), QStringLiteral("NoSuchPrinter"), QString());
    PrintPageSink lost(printer, 1, DefaultPaperOrientation, 5000);
    PageSample::Render(lost, PageSample::Setup(false), 1);
    QVERIFY(lost.failed());
    QVERIFY2(lost.errorString().startsWith(QStringLiteral("Cannot print to NoSuchPrinter: ")),
             qPrintable(lost.errorString()));
    QCOMPARE(lost.progress(), int(ProgressFailed));
    QCOMPARE(lost.jobId(), 0);
}

void TestPrintCups::failures()
{
    const QString pdf = m_dir.filePath(QStringLiteral("one.pdf"));
    PdfPageSink sink(pdf);
    PageSample::Render(sink, PageSample::Setup(false), 1);

    CupsPrinter printer;
    printer.select(QString(), QStringLiteral("NoSuchPrinter"), QString());
    QCOMPARE(printer.submit(pdf, 1, PortraitOrientation, QStringLiteral("Sales")), 0);
    QVERIFY2(printer.errorString().startsWith(QStringLiteral("Cannot print to NoSuchPrinter: ")),
             qPrintable(printer.errorString()));

    // No printer selected and no default printer.
    CupsPrinter unselected;
    QCOMPARE(unselected.submit(pdf, 1, 0, QStringLiteral("Sales")), 0);
    QCOMPARE(unselected.errorString(), QStringLiteral("No printer selected and no default printer"));

    printer.select(QString(), Printer, QString());
    QCOMPARE(printer.submit(m_dir.filePath(QStringLiteral("missing.pdf")), 1, 0, QString()), 0);
    QVERIFY(printer.errorString().startsWith(QStringLiteral("Cannot read ")));

    // A job the server does not know ends the wait at once as failed.
    QCOMPARE(printer.waitForJob(987654, 5000), int(ProgressFailed));
    QVERIFY2(printer.errorString().startsWith(QStringLiteral("Cannot follow print job 987654")),
             qPrintable(printer.errorString()));

    // A document the printer's filter cannot read halts the job.
    QFile broken(m_dir.filePath(QStringLiteral("broken.pdf")));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("%PDF-1.4\n1 0 obj << /Type /Catalog /Pages 9 0 R >> endobj\n%%EOF\n");
    broken.close();
    const int halted = printer.submit(broken.fileName(), 1, 0, QStringLiteral("Broken"));
    QVERIFY2(halted > 0, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(halted, 60000), int(ProgressHalted));

    // On a stopped printer a job waits; the wait gives up at its limit.
    const QString cupsdisable = TestSupport::FindProgram(QStringLiteral("cupsdisable"));
    QVERIFY(!cupsdisable.isEmpty());
    QVERIFY(PageSample::Run(cupsdisable, {Printer}));
    const int waiting = printer.submit(pdf, 1, 0, QStringLiteral("Waiting"));
    QVERIFY2(waiting > 0, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(waiting, 300), int(ProgressFailed));
    QCOMPARE(printer.errorString(), QStringLiteral("Print job %1 did not end within 0.3 s").arg(waiting));
}

QORLO_TEST_MAIN(TestPrintCups)
#include "tst_print_cups.moc"
