#include "engine/Paginator.h"

#include "engine/Report.h"
#include "engine/layout/PageBuilder.h"
#include "engine/layout/ReportLayout.h"

namespace Engine {

Paginator::Paginator(const Report &report) : m_report(report) {}

int Paginator::countPages()
{
    return run(nullptr, 0);
}

void Paginator::render(PageSink &sink)
{
    const int total = countPages();
    sink.begin(m_report.pageSetup(), total);
    run(&sink, total);
    sink.end();
}

int Paginator::run(PageSink *sink, int totalPages)
{
    PageBuilder builder(m_report, sink, totalPages);
    ReportLayout(m_report, builder).walk(m_report.ReportTitle(), false);
    return builder.finish();
}

} // namespace Engine
