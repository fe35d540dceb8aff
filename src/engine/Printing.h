#pragma once
// Report::PrintOut: the report's pages printed on the selected (or default) printer.

#include <QtGlobal>

namespace Engine {

class Report;

// Raises EngineError when the job cannot be submitted; the job's state goes to PrintingStatus.Progress.
void PrintReport(Report &report, qint16 copies);

} // namespace Engine
