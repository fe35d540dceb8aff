#include "engine/Printing.h"

#include "engine/EngineError.h"
#include "engine/Paginator.h"
#include "engine/Report.h"
#include "engine/page/PrintPageSink.h"

namespace Engine {

void PrintReport(Report &report, qint16 copies)
{
    // The job is the PDF of the same pagination, so its pages match NumberOfPages.
    PrintPageSink sink(report.printer(), copies, report.PaperOrientation());
    report.PrintingStatus().setProgress(ProgressInProgress);
    Paginator(report).render(sink);
    report.PrintingStatus().setProgress(sink.failed() ? int(ProgressFailed) : sink.progress());
    if (sink.failed())
        throw EngineError(EngineError::PrintFailed, sink.errorString());
}

} // namespace Engine
