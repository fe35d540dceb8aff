#include "engine/page/PrintPageSink.h"

#include "engine/Codes.h"

namespace Engine {

namespace {

QString JobFile(const QTemporaryDir &folder)
{
    return folder.filePath(QStringLiteral("job.pdf"));
}

} // namespace

PrintPageSink::PrintPageSink(const CupsPrinter &printer, int copies, int paperOrientation, int waitLimitMs)
    : m_printer(printer), m_copies(copies), m_orientation(paperOrientation), m_waitLimitMs(waitLimitMs),
      m_progress(ProgressNotStarted)
{
}

PrintPageSink::~PrintPageSink() = default;

void PrintPageSink::begin(const PageSetup &setup, int pageCount)
{
    m_title = setup.title;
    if (!m_folder.isValid()) {
        setError(QStringLiteral("Cannot print: no temporary folder: %1").arg(m_folder.errorString()));
        return;
    }
    m_pdf = std::make_unique<PdfPageSink>(JobFile(m_folder));
    m_pdf->begin(setup, pageCount);
}

void PrintPageSink::addPage(const Page &page)
{
    if (m_pdf)
        m_pdf->addPage(page);
}

void PrintPageSink::end()
{
    if (!m_pdf)
        return;
    m_pdf->end();
    if (m_pdf->failed()) {
        setError(m_pdf->errorString());
        m_progress = ProgressFailed;
        return;
    }
    m_jobId = m_printer.submit(JobFile(m_folder), m_copies, m_orientation, m_title);
    if (m_jobId == 0) {
        setError(m_printer.errorString());
        m_progress = ProgressFailed;
        return;
    }
    // A job that fails in the spooler is told by the progress alone, as the caller expects.
    m_progress = m_printer.waitForJob(m_jobId, m_waitLimitMs);
}

} // namespace Engine
