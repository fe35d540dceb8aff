// A long report stops soon after the program asks: between the records it reads, between the records
// a data export writes and between the pages of a paginated export.

#include "Files.h"
#include "SalesReport.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"
#include "engine/StopCheck.h"

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <atomic>
#include <thread>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int Rows = 300000;

std::atomic<bool> g_stopAsked{false};
std::atomic<qint64> g_askedAt{0};

bool AskedToStop() noexcept
{
    return g_stopAsked.load();
}

} // namespace

class TestStopCheck : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void stopsWhileReadingRecords();
    void stopsBetweenRecordsAndPages_data();
    void stopsBetweenRecordsAndPages();
    void runsToTheEndUnasked();

private:
    std::unique_ptr<Report> open(int format);
    // Export() with a stop asked `delay` ms after it starts; the number of the error it ends with.
    int exportStoppedAfter(Report &report, int delay);

    QTemporaryDir m_dir;
    Application m_application;
    QElapsedTimer m_clock;
};

void TestStopCheck::initTestCase()
{
    QVERIFY(m_dir.isValid());
    const QString path = m_dir.filePath(u"sales.db"_s);
    TestSupport::MakeSalesDatabase(path);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"many"_s);
        db.setDatabaseName(path);
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY2(
            q.exec(u"WITH RECURSIVE n(i) AS (SELECT 7 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                   "INSERT INTO sales SELECT i, '2024-05-01', 'West', 'Customer ' || (i % 977), i % 500, 1 "
                   "FROM n"_s.arg(Rows)),
            qPrintable(q.lastError().text()));
    }
    QSqlDatabase::removeDatabase(u"many"_s);
    SetStopCheck(&AskedToStop);
    m_clock.start();
}

void TestStopCheck::cleanup()
{
    g_stopAsked = false;
}

std::unique_ptr<Report> TestStopCheck::open(int format)
{
    auto report = m_application.OpenReport(TestSupport::SalesReport(
        QDir(m_dir.path()), u"many.rpt"_s, u"SELECT id, region, customer, amount FROM {Sales} ORDER BY id"_s,
        u"<layout><column field=\"id\"/><column field=\"customer\"/><column field=\"amount\"/>"
        "<group field=\"region\"><subtotal field=\"amount\"/></group><grandTotal field=\"amount\"/></layout>"_s));
    report->ExportOptions().FormatType = format;
    report->ExportOptions().DiskFileName = m_dir.filePath(u"many.out"_s);
    return report;
}

int TestStopCheck::exportStoppedAfter(Report &report, int delay)
{
    std::thread asker([this, delay] {
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        g_askedAt = m_clock.elapsed();
        g_stopAsked = true;
    });
    int number = 0;
    try {
        report.Export(false);
    } catch (const EngineError &error) {
        number = error.number();
        qInfo("stopped %lld ms after the request", m_clock.elapsed() - g_askedAt.load());
    }
    asker.join();
    return number;
}

void TestStopCheck::stopsWhileReadingRecords()
{
    auto report = open(CharSeparatedFormat);
    g_stopAsked = true;
    QCOMPARE(TestSupport::ErrorOf<EngineError>([&] { report->ReadRecords(); }), int(EngineError::Stopped));
}

void TestStopCheck::stopsBetweenRecordsAndPages_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("records of a data export") << int(ExcelDataOnlyFormat);
    QTest::newRow("pages of a PDF") << int(PdfFormat);
    QTest::newRow("pages of text") << int(PaginatedTextFormat);
}

void TestStopCheck::stopsBetweenRecordsAndPages()
{
    QFETCH(int, format);
    auto report = open(format);
    report->ReadRecords();
    QCOMPARE(report->PrintingStatus().NumberOfRecordSelected(), Rows);
    QCOMPARE(exportStoppedAfter(*report, 300), int(EngineError::Stopped));
}

void TestStopCheck::runsToTheEndUnasked()
{
    auto report = open(CharSeparatedFormat);
    report->Export(false);
    // The records and the line of field names, each ended.
    QCOMPARE(TestSupport::ReadFile(report->ExportOptions().DiskFileName).count('\n'), qsizetype(Rows + 1));
}

QORLO_TEST_MAIN(TestStopCheck)
#include "tst_stopcheck.moc"
