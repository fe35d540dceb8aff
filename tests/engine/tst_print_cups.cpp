// Printing through CUPS to a private server: the printer list, jobs and their ends, the page sink
// and a whole report.
#include "engine/Codes.h"
#include "engine/page/CupsPrinter.h"
#include "engine/page/PdfPageSink.h"
#include "engine/page/PrintPageSink.h"
#include "CupsPeer.h"
#include "EngineExports.h"
#include "Files.h"
#include "PageSample.h"
#include "Readers.h"
#include "TestMain.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

class TestPrintCups : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void printerList();
    void twoCopiesLandscape();
    void printPageSink();
    void reportPrintsEveryPageAndCopy();
    void reportOnUnknownPrinterFails();
    void failures();

private:
    QTemporaryDir m_dir;
    PeerProcess m_cups;
    QString m_printed; // the file the printer writes each job to
};

namespace {

const QString Printer = u"PeerPDFFile"_s;

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
    QVERIFY2(printers[0].driverName.contains(u"PDF Printer"_s), qPrintable(printers[0].driverName));
    QCOMPARE(printers[0].port, u"file:"_s + m_printed);
    // The peer has no default printer.
    QCOMPARE(CupsPrinter::DefaultPrinterName(), QString());
}

void TestPrintCups::twoCopiesLandscape()
{
    const QString pdf = m_dir.filePath(u"wide.pdf"_s);
    PdfPageSink sink(pdf);
    PageSample::Render(sink, PageSample::Setup(true), 2);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));

    CupsPrinter printer;
    const PrinterInfo info = CupsPrinter::InstalledPrinters().value(0);
    printer.select(info.driverName, info.deviceName, info.port);
    QCOMPARE(printer.selected().port, info.port);
    const int job = printer.submit(pdf, 2, LandscapeOrientation, u"Sales"_s);
    QVERIFY2(job > 0, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(job, 60000), int(ProgressCompleted));

    // Two copies of two pages, turned on the printer's paper.
    QCOMPARE(PdfPages(pdf), 2);
    QCOMPARE(PdfRotation(pdf), 0);
    QCOMPARE(PdfPages(m_printed), 4);
    const int rotation = PdfRotation(m_printed);
    QVERIFY2(rotation == 90 || rotation == 270, qPrintable(QString::number(rotation)));

    // The same document in portrait, once: nothing turned.
    const int portrait = printer.submit(pdf, 1, PortraitOrientation, u"Sales"_s);
    QVERIFY2(portrait > job, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(portrait, 60000), int(ProgressCompleted));
    QCOMPARE(PdfPages(m_printed), 2);
    QCOMPARE(PdfRotation(m_printed), 0);
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
    QCOMPARE(PdfPages(m_printed), 3);
    QCOMPARE(PdfRotation(m_printed), 0);

    printer.select(QString(), u"NoSuchPrinter"_s, QString());
    PrintPageSink lost(printer, 1, DefaultPaperOrientation, 5000);
    PageSample::Render(lost, PageSample::Setup(false), 1);
    QVERIFY(lost.failed());
    QVERIFY2(lost.errorString().startsWith(u"Cannot print to NoSuchPrinter: "_s),
             qPrintable(lost.errorString()));
    QCOMPARE(lost.progress(), int(ProgressFailed));
    QCOMPARE(lost.jobId(), 0);
}

void TestPrintCups::reportPrintsEveryPageAndCopy()
{
    Application application;
    auto report = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-parameters.rpt"));
    report->ParameterFields().Item(3).AddCurrentValue(u"2024-05-31"_s);
    report->SelectPrinter(u"Generic PDF Printer"_s, Printer, QString());
    report->setPaperOrientation(PortraitOrientation);
    report->PrintOut(false, 2);
    QCOMPARE(report->PrintingStatus().Progress(), int(ProgressCompleted));
    const int pages = report->PrintingStatus().NumberOfPages();
    QVERIFY(pages > 1);
    QCOMPARE(PdfPages(m_printed), 2 * pages);
}

void TestPrintCups::reportOnUnknownPrinterFails()
{
    Application application;
    auto report = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/region-summary.rpt"));
    report->ParameterFields().Item(1).AddCurrentValue(u"North"_s);
    report->SelectPrinter(QString(), u"NoSuchPrinter"_s, QString());
    const EngineFailure failure = FailureOf([&] { report->PrintOut(false, 1); });
    QCOMPARE(failure.number, int(EngineError::PrintFailed));
    QVERIFY(!failure.description.isEmpty());
    QCOMPARE(report->PrintingStatus().Progress(), int(ProgressFailed));
}

// Last, as it leaves the printer stopped.
void TestPrintCups::failures()
{
    const QString pdf = m_dir.filePath(u"one.pdf"_s);
    PdfPageSink sink(pdf);
    PageSample::Render(sink, PageSample::Setup(false), 1);

    CupsPrinter printer;
    printer.select(QString(), u"NoSuchPrinter"_s, QString());
    QCOMPARE(printer.submit(pdf, 1, PortraitOrientation, u"Sales"_s), 0);
    QVERIFY2(printer.errorString().startsWith(u"Cannot print to NoSuchPrinter: "_s),
             qPrintable(printer.errorString()));

    // No printer selected and no default printer.
    CupsPrinter unselected;
    QCOMPARE(unselected.submit(pdf, 1, 0, u"Sales"_s), 0);
    QCOMPARE(unselected.errorString(), u"No printer selected and no default printer"_s);

    printer.select(QString(), Printer, QString());
    QCOMPARE(printer.submit(m_dir.filePath(u"missing.pdf"_s), 1, 0, QString()), 0);
    QVERIFY(printer.errorString().startsWith(u"Cannot read "_s));

    // A job the server does not know ends the wait at once as failed.
    QCOMPARE(printer.waitForJob(987654, 5000), int(ProgressFailed));
    QVERIFY2(printer.errorString().startsWith(u"Cannot follow print job 987654"_s),
             qPrintable(printer.errorString()));

    // A document the printer's filter cannot read halts the job.
    const QString broken = WriteFile(m_dir.filePath(u"broken.pdf"_s),
                                     "%PDF-1.4\n1 0 obj << /Type /Catalog /Pages 9 0 R >> endobj\n%%EOF\n");
    const int halted = printer.submit(broken, 1, 0, u"Broken"_s);
    QVERIFY2(halted > 0, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(halted, 60000), int(ProgressHalted));

    // On a stopped printer a job waits; the wait gives up at its limit.
    QVERIFY(RunProgram(FindProgram(u"cupsdisable"_s), {Printer}));
    const int waiting = printer.submit(pdf, 1, 0, u"Waiting"_s);
    QVERIFY2(waiting > 0, qPrintable(printer.errorString()));
    QCOMPARE(printer.waitForJob(waiting, 300), int(ProgressFailed));
    QCOMPARE(printer.errorString(), u"Print job %1 did not end within 0.3 s"_s.arg(waiting));
}

QORLO_TEST_MAIN(TestPrintCups)
#include "tst_print_cups.moc"
