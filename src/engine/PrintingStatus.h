#pragma once
// What a report knows after reading and printing: records selected, pages, and the state of its print job.

#include "engine/Codes.h"

#include <functional>

namespace Engine {

class PrintingStatus
{
public:
    int NumberOfRecordSelected() const { return m_recordsSelected; }
    // Counted by the paginator on first request, and the same for every paginated export of the run.
    int NumberOfPages() const { return m_pageCounter ? m_pageCounter() : 0; }
    int Progress() const { return m_progress; }

    void setRecordsSelected(int count) { m_recordsSelected = count; }
    void setPageCounter(std::function<int()> counter) { m_pageCounter = std::move(counter); }
    void setProgress(int progress) { m_progress = progress; }

private:
    int m_recordsSelected = 0;
    int m_progress = ProgressNotStarted;
    std::function<int()> m_pageCounter;
};

} // namespace Engine
