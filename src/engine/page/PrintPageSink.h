#pragma once
// Prints streamed pages: renders them to a temporary PDF, then hands that to CUPS with copies and
// orientation and follows the job until it ends.

#include "engine/page/CupsPrinter.h"
#include "engine/page/PdfPageSink.h"

#include <QTemporaryDir>
#include <memory>

namespace Engine {

class PrintPageSink : public PageSink
{
public:
    // `printer` names the destination (see CupsPrinter::select); the paper orientation code is
    // 0 for the document's own, 1 portrait, 2 landscape.
    PrintPageSink(const CupsPrinter &printer, int copies, int paperOrientation,
                  int waitLimitMs = CupsPrinter::DefaultWaitLimitMs);
    ~PrintPageSink() override;

    void begin(const PageSetup &setup, int pageCount) override;
    void addPage(const Page &page) override;
    // Submits the document and waits for the job; errorString() tells a job that could not start.
    void end() override;

    int jobId() const { return m_jobId; }
    // The engine's Progress code of the job: not started, then completed, failed or halted.
    int progress() const { return m_progress; }

private:
    CupsPrinter m_printer;
    int m_copies;
    int m_orientation;
    int m_waitLimitMs;
    QString m_title;
    QTemporaryDir m_folder;
    std::unique_ptr<PdfPageSink> m_pdf;
    int m_jobId = 0;
    int m_progress;
};

} // namespace Engine
