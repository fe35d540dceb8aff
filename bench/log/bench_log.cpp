// Times one WriteLogEntry on a log file of 9999 recent rows, the largest log that does not overflow.

#include "core/Clock.h"
#include "log/clsLog.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

constexpr int kRows = 9999;
constexpr int kRounds = 15;

void FillLog(clsLog &log)
{
    const double start = Now() - 5;
    for (int row = 0; row < kRows; ++row) {
        log.AddNew();
        log.SetReportID(QString::number(row % 400 + 1));
        log.SetLogDate(start + row * 0.0004);
        log.SetFinishDate(start + row * 0.0004 + 0.0001);
        log.SetNextDate(QStringLiteral("28-Nov-2026 06:00"));
        // Every other text holds characters the file stores as references.
        log.SetLogText(
            row % 2 ? QStringLiteral("Report sent to sales@example.com, 3 attachments \u00e9")
                    : QStringLiteral("R\u00e9sum\u00e9 & totals sent to \"Sales\" <sales@example.com>"));
        log.SetPages(row % 50);
    }
    log.ApplyStartDefaults();
    log.DeleteLogDate = Now() + 7; // the retention check is part of the timed save only when due
    log.Save();
}

// The processor time of this process, which other load on the machine does not inflate.
double CpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir folder;
    clsLog log(folder.path());
    FillLog(log);
    const QString seed = folder.filePath(QStringLiteral("seed.XML"));
    QFile::copy(log.FileName(), seed);

    QList<double> times, cpuTimes;
    for (int round = 0; round < kRounds; ++round) {
        QFile::remove(log.FileName());
        QFile::copy(seed, log.FileName());
        QElapsedTimer timer;
        const double cpuStart = CpuMs();
        timer.start();
        WriteLogEntry(log, QStringLiteral("17"), Now(), Now(), QString(), QStringLiteral("Bench entry"), 2);
        times.append(timer.nsecsElapsed() / 1e6);
        cpuTimes.append(CpuMs() - cpuStart);
    }
    std::sort(times.begin(), times.end());
    std::sort(cpuTimes.begin(), cpuTimes.end());

    // Where the time goes: the read and the write of the whole file.
    double phase = CpuMs();
    log.Clear();
    log.Load(log.FileName());
    const double loadMs = CpuMs() - phase;
    phase = CpuMs();
    log.Save();
    const double saveMs = CpuMs() - phase;
    std::printf("WriteLogEntry on %d rows (%lld bytes): min %.1f ms, median %.1f ms, max %.1f ms "
                "(target under 60 ms); processor time median %.1f ms, of which load %.1f ms, save %.1f ms\n",
                kRows, static_cast<long long>(QFile(seed).size()), times.first(), times.at(times.size() / 2),
                times.last(), cpuTimes.at(cpuTimes.size() / 2), loadMs, saveMs);
    return 0;
}
