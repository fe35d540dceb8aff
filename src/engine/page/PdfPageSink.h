#pragma once
// Renders streamed pages into one PDF file with embedded fonts and selectable text.

#include "engine/page/PageModel.h"

#include <memory>

class QPainter;
class QPdfWriter;
class QSaveFile;

namespace Engine {

class PdfPageSink : public PageSink
{
public:
    explicit PdfPageSink(const QString &fileName);
    ~PdfPageSink() override;

    void begin(const PageSetup &setup, int pageCount) override;
    void addPage(const Page &page) override;
    // Writes the file; it appears only when every page was written.
    void end() override;

private:
    void close();

    QString m_fileName;
    std::unique_ptr<QSaveFile> m_file;
    std::unique_ptr<QPdfWriter> m_writer;
    std::unique_ptr<QPainter> m_painter;
    bool m_pageOpen = false;
};

} // namespace Engine
