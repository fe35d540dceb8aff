#pragma once
// Lays a report out on pages ("Page N of M" counted in a measuring pass) and streams them into a PageSink.

#include "engine/page/PageModel.h"

namespace Engine {

class Report;

class Paginator
{
public:
    // The report must have read its records.
    explicit Paginator(const Report &report);

    // The measuring pass alone.
    int countPages();
    // The measuring pass, then begin, every page, and end on the sink.
    void render(PageSink &sink);

private:
    int run(PageSink *sink, int totalPages);

    const Report &m_report;
};

} // namespace Engine
