// Opens the run log viewer on a log of 10,000 rows and prints how long the opening took, from the log
// in memory to the grid drawn, with the load of the file, a date filter and the refill after a new
// entry beside it.

#include "core/Clock.h"
#include "core/QorloError.h"
#include "log/clsLog.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "ui/frmLog.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QTableView>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

namespace {

constexpr int kRows = 10000;
constexpr int kRounds = 7;

// The viewer's boxes would wait for an operator: a bench has none.
class SilentPrompter : public Prompter
{
public:
    void ShowMessage(const QString &, const QString &, Icon) override {}
    bool AskYesNo(const QString &, const QString &) override { return false; }
    bool AskOkCancel(const QString &, const QString &) override { return false; }
    void FatalError(const QorloError &) override {}
};

// A log of a busy month: four hundred items, two runs an hour.
void WriteLog(clsLog &log)
{
    const double start = Now() - 30;
    log.Clear();
    for (int row = 0; row < kRows; ++row) {
        log.AddNew();
        log.SetReportID(QString::number(row % 400 + 1));
        log.SetLogDate(start + row * 30.0 / kRows);
        log.SetFinishDate(start + row * 30.0 / kRows + 0.001);
        log.SetLogText(
            QStringLiteral("Monthly sales by region: Successful output to /srv/reports/Output/sales-%1.pdf")
                .arg(row));
        log.SetPages(row % 40);
    }
    log.ApplyStartDefaults();
    log.DeleteLogDate = Now() + 7;
    log.Save();
}

// Milliseconds of `step`, the events it leaves behind (the painting of the grid) included.
double Timed(const std::function<void()> &step)
{
    QElapsedTimer timer;
    timer.start();
    step();
    QApplication::processEvents();
    return timer.nsecsElapsed() / 1e6;
}

QString Figures(QList<double> times)
{
    std::sort(times.begin(), times.end());
    return QStringLiteral("min %1 ms, median %2 ms, max %3 ms")
        .arg(times.first(), 0, 'f', 1)
        .arg(times.at(times.size() / 2), 0, 'f', 1)
        .arg(times.last(), 0, 'f', 1);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.filePath(QStringLiteral("config"))));
    SilentPrompter prompter;
    QorloGlobals globals(folder.path(), prompter);
    WriteLog(globals.Log);

    QList<double> loads, opens, filters, entries;
    for (int round = 0; round < kRounds; ++round) {
        loads.append(Timed([&] {
            globals.Log.Clear();
            globals.Log.Load(globals.Log.FileName());
        }));
        std::unique_ptr<frmLog> window;
        opens.append(Timed([&] {
            window = std::make_unique<frmLog>(globals);
            window->ShowLog();
        }));
        frmLog &viewer = *window;
        const int shown = viewer.findChild<QTableView *>(QStringLiteral("fgView"))->model()->rowCount();
        if (shown != kRows) {
            std::fprintf(stderr, "the viewer shows %d rows, not %d\n", shown, kRows);
            return 1;
        }
        filters.append(Timed([&] { viewer.findChild<QAction *>(QStringLiteral("mnuFilter5"))->trigger(); }));
        viewer.ViewLog(0);
        // A run's entry: the file is read and written whole, then the open viewer refills itself.
        entries.append(Timed([&] {
            WriteLogEntry(globals.Log, QStringLiteral("7"), Now(), Now(), QString(), QStringLiteral("Bench"),
                          1);
            while (viewer.findChild<QTableView *>()->model()->rowCount() == kRows)
                QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        }));
        viewer.close();
        WriteLog(globals.Log);
    }
    std::printf("Run log viewer on %d rows, %d rounds:\n", kRows, kRounds);
    std::printf("  open (window made, grid filled and drawn): %s (target under 1000 ms)\n",
                qPrintable(Figures(opens)));
    std::printf("  load of QorloLog.XML:                      %s\n", qPrintable(Figures(loads)));
    std::printf("  filter \"Prior 7 days\":                     %s\n", qPrintable(Figures(filters)));
    std::printf("  a run's entry written and shown:           %s\n", qPrintable(Figures(entries)));
    return 0;
}
