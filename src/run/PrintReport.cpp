#include "PrintReport.h"

#include "LogResult.h"
#include "RunState.h"

#include "core/Clock.h"
#include "engine/Report.h"
#include "engine/page/CupsPrinter.h"
#include "store/clsSchedule.h"

#include "core/StopRequest.h"

#include <QDeadlineTimer>
#include <QThread>

namespace {

int PaperOrientationOf(const QString &printerOrient)
{
    if (printerOrient == QLatin1StringView("Portrait"))
        return Engine::PortraitOrientation;
    if (printerOrient == QLatin1StringView("Landscape"))
        return Engine::LandscapeOrientation;
    return Engine::DefaultPaperOrientation; // the report's own setting
}

bool JobEnded(int progress)
{
    return progress == Engine::ProgressHalted || progress == Engine::ProgressCompleted ||
           progress == Engine::ProgressFailed;
}

// On the printer the report has (selected or the engine's default).
void PrintOut(RunContext &run, Engine::Report &report, qint16 copies)
{
    report.setPaperOrientation(PaperOrientationOf(run.schedule.PrinterOrient()));
    run.state.trap.Guard([&] { report.PrintOut(false, copies); });
    WaitForPrinting(report);
}

} // namespace

void PrintReport(RunContext &run, Engine::Report &report, const QString &printerName, qint16 copies)
{
    // An empty name never means the default printer, also on a machine that has none.
    const QString defaultPrinter = Engine::CupsPrinter::DefaultPrinterName();
    if (!defaultPrinter.isEmpty() && printerName == defaultPrinter) {
        PrintOut(run, report, copies);
        return;
    }
    const QList<Engine::PrinterInfo> printers = Engine::CupsPrinter::InstalledPrinters();
    if (printers.isEmpty()) {
        LogResult(run, Now(), QStringLiteral("ERROR: Could not print to ") + printerName, 0);
        return;
    }
    for (const Engine::PrinterInfo &printer : printers) {
        if (printer.deviceName == printerName) {
            run.state.trap.Guard(
                [&] { report.SelectPrinter(printer.driverName, printer.deviceName, printer.port); });
            PrintOut(run, report, copies);
            return;
        }
    }
    LogResult(run, Now(), QStringLiteral("ERROR: Could not find printer=") + printerName, 0);
}

void WaitForPrinting(Engine::Report &report)
{
    // The engine follows the job itself, so Progress normally has ended already; the limit keeps a job
    // the engine left in progress from holding the scheduler for ever.
    const QDeadlineTimer limit(Engine::CupsPrinter::DefaultWaitLimitMs);
    while (!JobEnded(report.PrintingStatus().Progress()) && !limit.hasExpired()) {
        StopRequest::Check();
        QThread::msleep(Engine::CupsPrinter::PollIntervalMs);
    }
    for (int sleep = 0; sleep < PrintSettleSleeps; ++sleep)
        QThread::msleep(PrintSettleSleepMs);
}
