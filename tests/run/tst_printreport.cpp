#include "../engine/CupsPeerFixture.h"
#include "../engine/EngineFixtures.h"
#include "Peers.h"
#include "TestMain.h"

#include "connect/clsConnect.h"
#include "connect/clsMap.h"
#include "core/QorloError.h"
#include "log/clsLog.h"
#include "run/PrintReport.h"
#include "run/RunState.h"
#include "run/engine/Application.h"
#include "run/engine/EngineError.h"
#include "run/engine/Report.h"
#include "store/clsSchedule.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
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
    // Page count and rotation of the first page of the last job the printer wrote.
    QPair<int, int> printedPagesAndRotation() const;
    // The run log's last entry: ID and text; the number of entries.
    QStringList lastLogEntry() const;
    int logCount() const;
    void runItem();

    QTemporaryDir m_dir;
    TestSupport::PeerProcess m_cups;
    QString m_pdfinfo;
    QString m_printed;
    std::unique_ptr<clsSchedule> m_schedule;
    std::unique_ptr<clsLog> m_log;
    std::unique_ptr<clsConnect> m_connections;
    std::unique_ptr<clsMap> m_tableMap;
    RunState m_state;
    std::unique_ptr<RunContext> m_run;
    Application m_engine;
    std::unique_ptr<Report> m_report;
};

namespace {

const QString Printer = QStringLiteral("PeerPDFFile");
const QString ItemName = QStringLiteral("Sales list");

bool RunTool(const QString &name, const QStringList &arguments)
{
    QProcess tool;
    tool.start(TestSupport::FindProgram(name), arguments);
    return tool.waitForFinished(30000) && tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0;
}

} // namespace

void TestPrintReport::initTestCase()
{
    m_pdfinfo = TestSupport::FindProgram(QStringLiteral("pdfinfo"));
    QORLO_REQUIRE_PEER(TestSupport::CupsPeerInstalled(),
                       QStringLiteral("cups, cups-filters and poppler-utils"));
    QVERIFY(m_dir.isValid());
    m_printed = TestSupport::StartCupsPeer(m_cups, m_dir);
    QVERIFY2(!m_printed.isEmpty(), qPrintable(m_cups.error()));

    const QString app = m_dir.path();
    m_schedule = std::make_unique<clsSchedule>(app);
    m_log = std::make_unique<clsLog>(app);
    m_connections = std::make_unique<clsConnect>(app);
    m_tableMap = std::make_unique<clsMap>(app);
    m_run = std::make_unique<RunContext>(
        RunContext{*m_schedule, *m_log, *m_connections, *m_tableMap, m_state, app, [] {}, {}});

    EngineFixtures::MakeSalesDatabase(m_dir.filePath(QStringLiteral("sales.db")));
    const QString report = EngineFixtures::SalesReport(
        QDir(app), QStringLiteral("sales.rpt"),
        QStringLiteral("SELECT id, customer, amount FROM {Sales} ORDER BY id"),
        QStringLiteral("<layout><column field=\"customer\" caption=\"Customer\" width=\"200\"/>"
                       "<column field=\"amount\" caption=\"Amount\" width=\"90\"/></layout>"));
    m_schedule->AddNew();
    m_schedule->SetName(ItemName);
    m_schedule->SetFile(report);
    m_report = m_engine.OpenReport(report);
    m_report->ReadRecords();
}

void TestPrintReport::init()
{
    m_state.trap.Arm();
    QFile::remove(m_printed);
}

QPair<int, int> TestPrintReport::printedPagesAndRotation() const
{
    QProcess info;
    info.start(m_pdfinfo, {m_printed});
    info.waitForFinished(30000);
    const QString text = QString::fromUtf8(info.readAllStandardOutput());
    return {QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)")).match(text).captured(1).toInt(),
            QRegularExpression(QStringLiteral("Page rot:\\s+(\\d+)")).match(text).captured(1).toInt()};
}

QStringList TestPrintReport::lastLogEntry() const
{
    clsLog log(m_dir.path());
    log.Load(log.FileName());
    const int last = log.Count() - 1;
    return {log.CellAt(last, clsLog::ColReportID), log.CellAt(last, clsLog::ColText)};
}

int TestPrintReport::logCount() const
{
    clsLog log(m_dir.path());
    log.Load(log.FileName());
    return log.Count();
}

// The run state as the dispatcher leaves it for the running item.
void TestPrintReport::runItem()
{
    m_schedule->ProcessingID = m_schedule->ReportID();
    m_schedule->ProcessingName = ItemName;
}

void TestPrintReport::printsOnNamedPrinter()
{
    const int pages = m_report->PrintingStatus().NumberOfPages();
    QVERIFY(pages > 0);

    m_schedule->SetPrinterOrient(QStringLiteral("Landscape"));
    QElapsedTimer clock;
    clock.start();
    PrintReport(*m_run, *m_report, Printer, 2);
    QVERIFY2(clock.elapsed() >= PrintSettleSleeps * qint64(PrintSettleSleepMs), "no settle time");
    QVERIFY2(!m_state.trap.IsSet(), qPrintable(m_state.trap.Description()));
    QCOMPARE(m_report->PrintingStatus().Progress(), int(ProgressCompleted));
    QCOMPARE(m_report->PaperOrientation(), int(LandscapeOrientation));
    const auto [printed, rotation] = printedPagesAndRotation();
    QCOMPARE(printed, 2 * pages);
    QVERIFY2(rotation == 90 || rotation == 270, qPrintable(QString::number(rotation)));

    // Only the exact words choose an orientation; anything else leaves it to the report.
    m_schedule->SetPrinterOrient(QStringLiteral("landscape"));
    PrintReport(*m_run, *m_report, Printer, 1);
    QCOMPARE(m_report->PaperOrientation(), int(DefaultPaperOrientation));
    QCOMPARE(printedPagesAndRotation(), qMakePair(pages, 0));
    QCOMPARE(logCount(), 0); // a print that worked is logged by the caller
}

// Names are compared exactly, so neither another case nor the empty name finds a printer, and nothing
// is printed or waited for.
void TestPrintReport::missingPrinterIsLogged()
{
    for (const QString &name : {QStringLiteral("NoSuchPrinter"), QStringLiteral("peerpdffile"), QString()}) {
        runItem();
        QElapsedTimer clock;
        clock.start();
        PrintReport(*m_run, *m_report, name, 1);
        QVERIFY(clock.elapsed() < PrintSettleSleeps * qint64(PrintSettleSleepMs));
        const QString text = QStringLiteral("ERROR: Could not find printer=") + name;
        QCOMPARE(lastLogEntry(),
                 (QStringList{m_schedule->ReportID(), ItemName + QStringLiteral(": ") + text}));
        QCOMPARE(m_schedule->LastReportMsg, text);
        QVERIFY(!QFileInfo::exists(m_printed));
        QVERIFY(!m_state.trap.IsSet());
    }
}

void TestPrintReport::noPrintersInstalled()
{
    const QByteArray peerServer = qgetenv("CUPS_SERVER");
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(TestSupport::FreePort()));
    cupsSetServer(nullptr); // libcups reads the variable again
    runItem();
    PrintReport(*m_run, *m_report, Printer, 1);
    qputenv("CUPS_SERVER", peerServer);
    cupsSetServer(nullptr);
    QCOMPARE(lastLogEntry().value(1), ItemName + QStringLiteral(": ERROR: Could not print to ") + Printer);
    QVERIFY(!QFileInfo::exists(m_printed));
}

// A printer that refuses jobs makes PrintOut fail: with the trap armed that is the run's error state and
// no log entry; with the trap off it unwinds.
void TestPrintReport::engineFailureGoesToTrap()
{
    QVERIFY(RunTool(QStringLiteral("cupsreject"), {Printer}));
    const int entries = logCount();
    PrintReport(*m_run, *m_report, Printer, 1);
    const bool armedFailed = m_state.trap.IsSet();
    const int code = m_state.trap.Code();
    m_state.trap.Disarm();
    bool unwound = false;
    try {
        PrintReport(*m_run, *m_report, Printer, 1);
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
