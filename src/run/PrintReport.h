#pragma once
// Printing the open report on one printer, by name, and waiting until the engine is done with the job.

#include <QString>
#include <QtGlobal>

struct RunContext;

namespace Engine {
class Report;
}

// How long the spooler gets after the engine reports the end of a job, in sleeps of a second: the run's
// next step (often the release of the report) would otherwise cut the job off.
inline constexpr int PrintSettleSleeps = 3;
inline constexpr unsigned long PrintSettleSleepMs = 1000;

// Prints `copies` copies with the orientation of the item at the schedule's cursor. A printer that is
// not installed is logged as the item's result; a failing engine call goes through the run's trap.
void PrintReport(RunContext &run, Engine::Report &report, const QString &printerName, qint16 copies);
// Returns once the print job has halted, completed or failed (or the wait has reached its limit), and
// the spooler has had its settle time. Blocks the thread throughout.
void WaitForPrinting(Engine::Report &report);
