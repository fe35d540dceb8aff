#include "engine/Paginator.h"

#include "engine/Report.h"
#include "engine/layout/PageBuilder.h"
#include "engine/layout/ReportLayout.h"

namespace Engine {

namespace {

void WalkSubreports(const Report &report, PageBuilder &builder)
{
    for (const Section &section : report.Sections()) {
        for (ReportObject &object : section.ReportObjects()) {
            if (object.Kind() != SubreportObjectKind)
                continue;
            Report &subreport = static_cast<SubreportObject &>(object).OpenSubreport();
            if (!subreport.hasRecords())
                continue;
            const QString heading =
                subreport.ReportTitle().isEmpty() ? object.Name() : subreport.ReportTitle();
            ReportLayout(subreport, builder).walk(heading, true);
        }
    }
}

} // namespace

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
    WalkSubreports(m_report, builder);
    return builder.finish();
}

} // namespace Engine
