#include "CupsPeer.h"
#include "Readers.h"
#include "TestPrompter.h"
#include "TestMain.h"

#include "engine/Application.h"
#include "engine/Codes.h"
#include "engine/EngineError.h"
#include "engine/Report.h"
#include "scheduler/QorloGlobals.h"
#include "ui/ReportViewer.h"
#include "ui/frmCrystal.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

class TestViewerPrint : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void printsTheViewersPages();

private:
    QTemporaryDir m_dir;
    TestSupport::PeerProcess m_cups;
    QString m_printed;
};

void TestViewerPrint::initTestCase()
{
    QORLO_START_CUPS_PEER(m_cups, m_dir, m_printed);
}

// The viewer's print command goes to the CUPS printer by name, with the pages the window shows.
void TestViewerPrint::printsTheViewersPages()
{
    TestSupport::TestPrompter prompter;
    QorloGlobals globals(m_dir.path(), prompter);
    frmCrystal *window =
        frmCrystal::ViewFile(globals, QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-by-region.rpt"));
    QVERIFY(window);
    ReportViewer &viewer = window->Viewer();
    const int pages = viewer.Pages().pageCount();
    QVERIFY(pages > 1);
    viewer.PrintTo(u"PeerPDFFile"_s, 2, Engine::LandscapeOrientation);
    QCOMPARE(window->Report()->PrintingStatus().Progress(), int(Engine::ProgressCompleted));
    // Two copies of the report laid out across the paper; the window keeps its own orientation.
    Engine::Application application;
    auto across = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-by-region.rpt"));
    across->setPaperOrientation(Engine::LandscapeOrientation);
    across->ReadRecords();
    const int landscapePages = across->PrintingStatus().NumberOfPages();
    QVERIFY(landscapePages != pages);
    QCOMPARE(TestSupport::PdfPages(m_printed), 2 * landscapePages);
    QCOMPARE(window->Report()->PaperOrientation(), int(Engine::DefaultPaperOrientation));

    int error = 0;
    try {
        viewer.PrintTo(u"NoSuchPrinter"_s, 1, Engine::PortraitOrientation);
    } catch (const Engine::EngineError &failure) {
        error = failure.number();
        QVERIFY(failure.description().contains(u"NoSuchPrinter"_s));
    }
    QCOMPARE(error, int(Engine::EngineError::PrintFailed));
    window->close();
}

QORLO_TEST_MAIN(TestViewerPrint)
#include "tst_viewerprint.moc"
