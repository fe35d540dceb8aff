#include "CupsPeerFixture.h"
#include "../engine/EngineFixtures.h"
#include "../engine/tst_page_sample.h"
#include "Peers.h"
#include "RunObjects.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "run/PrintReport.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cups/cups.h>

using namespace Engine;

class TestPrintReport : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void printsOnNamedPrinter();
    void missingPrinterIsLogged();
    void noPrintersInstalled();
    void engineFailureGoesToTrap();

private:
    QString lastLogEntry() const { return m_objects->logEntries().value(logCount() - 1); }
    int logCount() const { return int(m_objects->logEntries().size()); }

    QTemporaryDir m_dir;
    TestSupport::PeerProcess m_cups;
    QString m_printed;
    std::unique_ptr<RunObjects> m_objects;
    Application m_engine;
    std::unique_ptr<Report> m_report;
};

namespace {

const QString Printer = QStringLiteral("PeerPDFFile");
const QString ItemName = QStringLiteral("Sales list");

bool RunTool(const QString &name, const QStringList &arguments)
{
    return PageSample::Run(TestSupport::FindProgram(name), arguments, nullptr, 30000);
}

} // namespace

void TestPrintReport::initTestCase()
{
    QORLO_START_CUPS_PEER(m_cups, m_dir, m_printed);
    m_objects = std::make_unique<RunObjects>();
    const QString app = m_dir.path();

    EngineFixtures::MakeSalesDatabase(m_dir.filePath(QStringLiteral("sales.db")));
    const QString report = EngineFixtures::SalesReport(
        QDir(app), QStringLiteral("sales.rpt"),
        QStringLiteral("SELECT id, customer, amount FROM {Sales} ORDER BY id"),
        QStringLiteral("<layout><column field=\"customer\" caption=\"Customer\" width=\"200\"/>"
                       "<column field=\"amount\" caption=\"Amount\" width=\"90\"/></layout>"));
    m_objects->schedule.AddNew();
    m_objects->schedule.SetName(ItemName);
    m_objects->schedule.SetFile(report);
    m_report = m_engine.OpenReport(report);
    m_report->ReadRecords();
}

void TestPrintReport::init()
{
    m_objects->state.trap.Arm();
    QFile::remove(m_printed);
}

void TestPrintReport::printsOnNamedPrinter()
{
    const int pages = m_report->PrintingStatus().NumberOfPages();
    QVERIFY(pages > 0);

    m_objects->schedule.SetPrinterOrient(QStringLiteral("Landscape"));
    QElapsedTimer clock;
    clock.start();
    PrintReport(m_objects->run, *m_report, Printer, 2);
    QVERIFY2(clock.elapsed() >= PrintSettleSleeps * qint64(PrintSettleSleepMs), "no settle time");
    QVERIFY2(!m_objects->state.trap.IsSet(), qPrintable(m_objects->state.trap.Description()));
    QCOMPARE(m_report->PrintingStatus().Progress(), int(ProgressCompleted));
    QCOMPARE(m_report->PaperOrientation(), int(LandscapeOrientation));
    const auto [printed, rotation] = TestSupport::PrintedPagesAndRotation(m_printed);
    QCOMPARE(printed, 2 * pages);
    QVERIFY2(rotation == 90 || rotation == 270, qPrintable(QString::number(rotation)));

    // Only the exact words choose an orientation; anything else leaves it to the report.
    m_objects->schedule.SetPrinterOrient(QStringLiteral("landscape"));
    PrintReport(m_objects->run, *m_report, Printer, 1);
    QCOMPARE(m_report->PaperOrientation(), int(DefaultPaperOrientation));
    QCOMPARE(TestSupport::PrintedPagesAndRotation(m_printed), qMakePair(pages, 0));
    QCOMPARE(logCount(), 0); // a print that worked is logged by the caller
}

// Names are compared exactly, so neither another case nor the empty name finds a printer, and nothing
// is printed or waited for.
void TestPrintReport::missingPrinterIsLogged()
{
    for (const QString &name : {QStringLiteral("NoSuchPrinter"), QStringLiteral("peerpdffile"), QString()}) {
        m_objects->startItem();
        QElapsedTimer clock;
        clock.start();
        PrintReport(m_objects->run, *m_report, name, 1);
        QVERIFY(clock.elapsed() < PrintSettleSleeps * qint64(PrintSettleSleepMs));
        const QString text = QStringLiteral("ERROR: Could not find printer=") + name;
        QCOMPARE(lastLogEntry(), m_objects->schedule.ReportID() + QStringLiteral("|") + ItemName +
                                     QStringLiteral(": ") + text);
        QCOMPARE(m_objects->schedule.LastReportMsg, text);
        QVERIFY(!QFileInfo::exists(m_printed));
        QVERIFY(!m_objects->state.trap.IsSet());
    }
}

void TestPrintReport::noPrintersInstalled()
{
    const QByteArray peerServer = qgetenv("CUPS_SERVER");
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(TestSupport::FreePort()));
    cupsSetServer(nullptr); // libcups reads the variable again
    m_objects->startItem();
    PrintReport(m_objects->run, *m_report, Printer, 1);
    qputenv("CUPS_SERVER", peerServer);
    cupsSetServer(nullptr);
    QVERIFY(lastLogEntry().endsWith(QStringLiteral("|") + ItemName +
                                    QStringLiteral(": ERROR: Could not print to ") + Printer));
    QVERIFY(!QFileInfo::exists(m_printed));
}

// A printer that refuses jobs makes PrintOut fail: with the trap armed that is the run's error state and
// no log entry; with the trap off it unwinds.
void TestPrintReport::engineFailureGoesToTrap()
{
    QVERIFY(RunTool(QStringLiteral("cupsreject"), {Printer}));
    const int entries = logCount();
    PrintReport(m_objects->run, *m_report, Printer, 1);
    const bool armedFailed = m_objects->state.trap.IsSet();
    const int code = m_objects->state.trap.Code();
    m_objects->state.trap.Disarm();
    bool unwound = false;
    try {
        PrintReport(m_objects->run, *m_report, Printer, 1);
    } catch (const QorloError &error) {
        unwound = error.number() == EngineError::PrintFailed;
    }
    QVERIFY(RunTool(QStringLiteral("cupsaccept"), {Printer}));
    QVERIFY(armedFailed);
    QCOMPARE(code, int(EngineError::PrintFailed));
    QVERIFY(unwound);
    QCOMPARE(logCount(), entries);
    QCOMPARE(m_report->PrintingStatus().Progress(), int(ProgressFailed));
}

QORLO_TEST_MAIN(TestPrintReport)
#include "tst_printreport.moc"
