#include "CupsPeer.h"
#include "Files.h"
#include "Readers.h"
#include "TestPrompter.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "engine/Application.h"
#include "engine/Codes.h"
#include "engine/EngineError.h"
#include "engine/Report.h"
#include "scheduler/QorloGlobals.h"
#include "ui/ReportViewer.h"
#include "ui/frmCrystal.h"

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPrintDialog>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

class TestViewerPrint : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void printsTheViewersPages();
    void printAndExportDialogs();

private:
    // The demo's sales report in a viewer window.
    frmCrystal *viewSalesReport()
    {
        return frmCrystal::ViewFile(m_globals, QStringLiteral(QORLO_SOURCE_DIR "/demo/sales-by-region.rpt"));
    }

    QTemporaryDir m_dir;
    TestSupport::PeerProcess m_cups;
    QString m_printed;
    TestSupport::TestPrompter m_prompter;
    QorloGlobals m_globals{m_dir.path(), m_prompter};
};

void TestViewerPrint::initTestCase()
{
    QORLO_START_CUPS_PEER(m_cups, m_dir, m_printed);
}

// The viewer's print command goes to the CUPS printer by name, with the pages the window shows.
void TestViewerPrint::printsTheViewersPages()
{
    frmCrystal *window = viewSalesReport();
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

// The Print and Export commands of the window through their dialogs, as an operator uses them.
void TestViewerPrint::printAndExportDialogs()
{
    frmCrystal *window = viewSalesReport();
    QVERIFY(window);
    ReportViewer &viewer = window->Viewer();
    const auto status = [&] { return TestSupport::Child<QLabel>(&viewer, "lblStatus")->text(); };
    QFile::remove(m_printed);

    // The printer chosen in the dialog gets the pages as the window shows them.
    bool printerListed = false;
    TestSupport::WhenDialogShows([&](QDialog &dialog) {
        for (QComboBox *list : dialog.findChildren<QComboBox *>()) {
            if (const int at = list->findText(u"PeerPDFFile"_s); at >= 0) {
                list->setCurrentIndex(at);
                printerListed = true;
            }
        }
        dialog.accept();
    });
    TestSupport::Trigger(&viewer, "actPrint");
    QVERIFY(printerListed);
    QCOMPARE(status(), u"Sent to PeerPDFFile"_s);
    QCOMPARE(TestSupport::PdfPages(m_printed), viewer.Pages().pageCount());

    // A name typed without an extension gets the chosen format's; the file holds that format.
    const QString typed = m_dir.filePath(u"sales"_s);
    QString shown;
    TestSupport::WhenDialogShows([&](QDialog &dialog) {
        shown = dialog.objectName();
        if (auto *files = qobject_cast<QFileDialog *>(&dialog)) {
            files->setDirectory(m_dir.path());
            // The format chosen from the list as a user does, with the keyboard.
            auto *formats = TestSupport::Child<QComboBox>(files, "fileTypeCombo");
            for (int i = 0; i < formats->count() && !formats->currentText().startsWith(u"Comma"_s); ++i)
                QTest::keyClick(formats, Qt::Key_Down);
            QTest::keyClicks(TestSupport::Child<QLineEdit>(files, "fileNameEdit"), u"sales"_s);
        }
        dialog.accept();
    });
    TestSupport::Trigger(&viewer, "actExport");
    QCOMPARE(shown, u"dlgExport"_s);
    QCOMPARE(status(), u"Exported to "_s + typed + u".csv"_s);
    QVERIFY(TestSupport::ReadFile(typed + u".csv"_s).startsWith("\"Region\""));

    // A dialog closed without a choice does nothing.
    TestSupport::WhenDialogShows([](QDialog &dialog) { dialog.reject(); });
    TestSupport::Trigger(&viewer, "actExport");
    QCOMPARE(status(), u"Exported to "_s + typed + u".csv"_s);
    window->close();
}

QORLO_TEST_MAIN(TestViewerPrint)
#include "tst_viewerprint.moc"
