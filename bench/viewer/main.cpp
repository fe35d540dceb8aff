// Opens the report viewer on a report of 100,000 SQLite rows and prints the time to its first page
// (target: under 2 seconds), to the end of the layout, the longest pause of the window's events while
// it loads, and the time of each page forward (target: under 50 ms), with the peak memory.
//
// bench_viewer [--rows N]

#include "engine/Application.h"
#include "engine/Codes.h"
#include "engine/Report.h"
#include "support/SalesDatabase.h"
#include "ui/ReportPageView.h"
#include "ui/ReportViewer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <numeric>
#include <cstdio>
#include <sys/resource.h>

namespace {

constexpr int PagesForward = 200;

bool WriteReport(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(R"(<?xml version="1.0" encoding="UTF-8"?>
<report version="1">
  <title>Viewer benchmark</title>
  <table name="Sales" location="sales" dll="sqlite"><property name="Database">bench.db</property></table>
  <query>SELECT id, order_date, region, customer, quantity, amount FROM {Sales} ORDER BY region, id</query>
  <layout>
    <pageFooter>Page {PageNumber} of {TotalPages}</pageFooter>
    <column field="id" caption="Order" width="50" align="right"/>
    <column field="order_date" caption="Date" width="70" format="dd-MMM-yyyy"/>
    <column field="customer" caption="Customer" width="160"/>
    <column field="quantity" caption="Qty" width="40" align="right"/>
    <column field="amount" caption="Amount" width="80" align="right" format="#,##0.00"/>
    <group field="region" caption="Region: {value}"><subtotal field="amount"/></group>
    <grandTotal field="amount"/>
  </layout>
</report>
)");
    return true;
}

long PeakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const qsizetype rowsAt = arguments.indexOf(QStringLiteral("--rows"));
    const int rows = rowsAt > 0 && rowsAt + 1 < arguments.size() ? arguments[rowsAt + 1].toInt() : 100000;
    QTemporaryDir folder;
    if (!BenchData::MakeDatabase(folder.filePath(QStringLiteral("bench.db")), rows) ||
        !WriteReport(folder.filePath(QStringLiteral("bench.rpt")))) {
        std::fprintf(stderr, "cannot write the benchmark's database or report\n");
        return 1;
    }

    Engine::Application application;
    auto report = application.OpenReport(folder.filePath(QStringLiteral("bench.rpt")));
    ReportViewer viewer;
    viewer.resize(1200, 900);
    viewer.show();
    viewer.setReportSource(report.get());

    // A timer of the window's event loop: the longest gap between its ticks is the longest pause.
    QElapsedTimer clock;
    qint64 lastTick = 0;
    qint64 longestPause = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longestPause = std::max(longestPause, clock.elapsed() - lastTick);
        lastTick = clock.elapsed();
    });
    qint64 firstPage = -1;
    QObject::connect(&viewer.PageView(), &ReportPageView::pageShown, [&] {
        if (firstPage < 0)
            firstPage = clock.elapsed();
    });
    clock.start();
    ticker.start(10);
    viewer.ViewReport();
    while (report->PrintingStatus().Progress() == Engine::ProgressInProgress)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const qint64 laidOut = clock.elapsed();
    ticker.stop();
    if (!viewer.ErrorText().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(viewer.ErrorText()));
        return 1;
    }

    QList<double> steps;
    for (int i = 0; i < PagesForward && viewer.CurrentPage() < viewer.Pages().pageCount(); ++i) {
        QElapsedTimer step;
        step.start();
        viewer.NextPage();
        viewer.PageView().viewport()->repaint();
        steps.append(step.nsecsElapsed() / 1e6);
    }
    std::sort(steps.begin(), steps.end());
    const double mean =
        std::accumulate(steps.begin(), steps.end(), 0.0) / std::max<qsizetype>(1, steps.size());

    std::printf("viewer: %d rows, %d pages\n", rows, viewer.Pages().pageCount());
    std::printf("first page shown: %.2f s (target < 2 s)\n", firstPage / 1000.0);
    std::printf("all pages laid out: %.2f s; longest pause of the event loop meanwhile: %lld ms\n",
                laidOut / 1000.0, static_cast<long long>(longestPause));
    std::printf("page forward, %lld pages: mean %.1f ms, median %.1f ms, slowest %.1f ms (target < 50 ms)\n",
                static_cast<long long>(steps.size()), mean, steps.isEmpty() ? 0.0 : steps[steps.size() / 2],
                steps.isEmpty() ? 0.0 : steps.last());
    std::printf("peak memory: %ld MB\n", PeakMegabytes());
    return 0;
}
