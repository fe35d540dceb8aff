#include "CupsPeer.h"
#include "Readers.h"
#include "RunObjects.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "run/PrintReport.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace Engine;
using namespace TestSupport;

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
    PeerProcess m_cups;
    QString m_printed;
    std::unique_ptr<RunObjects> m_objects;
    Application m_engine;
    std::unique_ptr<Report> m_report;
};

namespace {

const QString Printer = u"PeerPDFFile"_s;
const QString ItemName = u"Sales list"_s;

bool RunTool(const QString &name, const QStringList &arguments)
{
    return RunProgram(FindProgram(name), arguments, nullptr, 30000);
}

} // namespace

void TestPrintReport::initTestCase()
{
    QORLO_START_CUPS_PEER(m_cups, m_dir, m_printed);
    m_objects = std::make_unique<RunObjects>();
    const QString app = m_dir.path();

    MakeSalesDatabase(m_dir.filePath(u"sales.db"_s));
    const QString report =
        SalesReport(QDir(app), u"sales.rpt"_s, u"SELECT id, customer, amount FROM {Sales} ORDER BY id"_s,
                    u"<layout><column field=\"customer\" caption=\"Customer\" width=\"200\"/>"
                    "<column field=\"amount\" caption=\"Amount\" width=\"90\"/></layout>"_s);
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

    m_objects->schedule.SetPrinterOrient(u"Landscape"_s);
    // The print settles for three seconds before the run goes on.
    QElapsedTimer clock;
    clock.start();
    PrintReport(m_objects->run, *m_report, Printer, 2);
    QVERIFY2(clock.elapsed() >= 3000, "no settle time");
    QVERIFY2(!m_objects->state.trap.IsSet(), qPrintable(m_objects->state.trap.Description()));
    QCOMPARE(m_report->PrintingStatus().Progress(), int(ProgressCompleted));
    QCOMPARE(m_report->PaperOrientation(), int(LandscapeOrientation));
    QCOMPARE(PdfPages(m_printed), 2 * pages);
    const int rotation = PdfRotation(m_printed);
    QVERIFY2(rotation == 90 || rotation == 270, qPrintable(QString::number(rotation)));

    // Only the exact words choose an orientation; anything else leaves it to the report.
    m_objects->schedule.SetPrinterOrient(u"landscape"_s);
    PrintReport(m_objects->run, *m_report, Printer, 1);
    QCOMPARE(m_report->PaperOrientation(), int(DefaultPaperOrientation));
    QCOMPARE(PdfPages(m_printed), pages);
    QCOMPARE(PdfRotation(m_printed), 0);
    QCOMPARE(logCount(), 0); // a print that worked is logged by the caller
}

// Names are compared exactly, so neither another case nor the empty name finds a printer, and nothing
// is printed.
void TestPrintReport::missingPrinterIsLogged()
{
    for (const QString &name : {u"NoSuchPrinter"_s, u"peerpdffile"_s, QString()}) {
        m_objects->startItem();
        PrintReport(m_objects->run, *m_report, name, 1);
        const QString text = u"ERROR: Could not find printer="_s + name;
        QCOMPARE(lastLogEntry(), m_objects->schedule.ReportID() + u"|"_s + ItemName + u": "_s + text);
        QCOMPARE(m_objects->schedule.LastReportMsg, text);
        QVERIFY(!QFileInfo::exists(m_printed));
        QVERIFY(!m_objects->state.trap.IsSet());
    }
}

void TestPrintReport::noPrintersInstalled()
{
    const QByteArray peerServer = qgetenv("CUPS_SERVER");
    NoPrintServer();
    m_objects->startItem();
    PrintReport(m_objects->run, *m_report, Printer, 1);
    UsePrintServer(peerServer);
    QVERIFY(lastLogEntry().endsWith(u"|"_s + ItemName + u": ERROR: Could not print to "_s + Printer));
    QVERIFY(!QFileInfo::exists(m_printed));
}

// A printer that refuses jobs makes PrintOut fail: with the trap armed that is the run's error state and
// no log entry; with the trap off it unwinds.
void TestPrintReport::engineFailureGoesToTrap()
{
    QVERIFY(RunTool(u"cupsreject"_s, {Printer}));
    const int entries = logCount();
    PrintReport(m_objects->run, *m_report, Printer, 1);
    const bool armedFailed = m_objects->state.trap.IsSet();
    const int code = m_objects->state.trap.Code();
    m_objects->state.trap.Disarm();
    const int unwound = ErrorOf([&] { PrintReport(m_objects->run, *m_report, Printer, 1); });
    QVERIFY(RunTool(u"cupsaccept"_s, {Printer}));
    QVERIFY(armedFailed);
    QCOMPARE(code, int(EngineError::PrintFailed));
    QCOMPARE(unwound, int(EngineError::PrintFailed));
    QCOMPARE(logCount(), entries);
    QCOMPARE(m_report->PrintingStatus().Progress(), int(ProgressFailed));
}

QORLO_TEST_MAIN(TestPrintReport)
#include "tst_printreport.moc"
