// A query whose values do not fit in memory ends the engine's work with std::bad_alloc or the
// engine's own error, which the program reports as run-time errors; nothing aborts the process.

#include "SalesReport.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QTemporaryDir>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

// How the child's export ended.
enum Outcome { Finished = 10, OutOfMemory = 11, EngineFault = 12, OtherException = 13 };

// The address space the process has now, in bytes.
rlim_t AddressSpace()
{
    QFile status(u"/proc/self/statm"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    return rlim_t(status.readAll().split(' ').value(0).toLongLong()) * rlim_t(sysconf(_SC_PAGESIZE));
}

[[noreturn]] void ExportWithin(const QString &reportFile, rlim_t spare)
{
    const rlimit limit{AddressSpace() + spare, RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &limit);
    Outcome outcome = Finished;
    try {
        Application application;
        auto report = application.OpenReport(reportFile);
        report->ExportOptions().FormatType = CharSeparatedFormat;
        report->ExportOptions().DiskFileName = reportFile + u".csv"_s;
        report->Export(false);
    } catch (const std::bad_alloc &) {
        outcome = OutOfMemory;
    } catch (const EngineError &) {
        outcome = EngineFault;
    } catch (...) {
        outcome = OtherException;
    }
    _exit(outcome);
}

} // namespace

class TestOutOfMemory : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void hugeBlobsAreAnError();
};

void TestOutOfMemory::hugeBlobsAreAnError()
{
#if defined(__SANITIZE_ADDRESS__)
    QSKIP("the address sanitizer reserves more address space than the limit leaves");
#endif
    QTemporaryDir dir;
    TestSupport::MakeSalesDatabase(dir.filePath(u"sales.db"_s));
    // Three values of 400 MB each, with 600 MB to spare.
    const QString report =
        TestSupport::SalesReport(QDir(dir.path()), u"blobs.rpt"_s,
                                 u"SELECT id, zeroblob(400000000) AS picture FROM {Sales} WHERE id <= 3"_s);
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0)
        ExportWithin(report, rlim_t(600) << 20);
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY2(WIFEXITED(status), qPrintable(u"ended by signal %1"_s.arg(WTERMSIG(status))));
    const int outcome = WEXITSTATUS(status);
    QVERIFY2(outcome == OutOfMemory || outcome == EngineFault, qPrintable(QString::number(outcome)));
}

QORLO_TEST_MAIN(TestOutOfMemory)
#include "tst_outofmemory.moc"
