#pragma once
// Renders streamed pages as HTML, each page a table of its rows of text: one file holding every page,
// or one file a page (the file name, then the name with the page number) with links between the pages.

#include "engine/page/HtmlPageMarkup.h"
#include "engine/page/PageModel.h"

#include <memory>

class QSaveFile;

namespace Engine {

// From ExportOptions: HTMLEnableSeparatedPages and HTMLHasPageNavigator.
struct HtmlPageOptions
{
    bool separatePages = false;
    bool pageNavigator = false; // separate pages only: links to the first, previous, next and last page
};

class HtmlPageSink : public PageSink
{
public:
    HtmlPageSink(const QString &fileName, const HtmlPageOptions &options);
    ~HtmlPageSink() override;

    // The file of page `number` (1-based) of a separate-pages export: "report.html", "report2.html"...
    static QString PageFileName(const QString &fileName, int number);

    void begin(const PageSetup &setup, int pageCount) override;
    void addPage(const Page &page) override;
    // Finishes the last file; each file appears only when it was written whole.
    void end() override;

private:
    bool openFile(const QString &name);
    bool commitFile();
    void write(const QString &html);
    QString navigator(int number) const;

    QString m_fileName;
    HtmlPageOptions m_options;
    PageSetup m_setup;
    int m_pageCount = 0;
    int m_pagesWritten = 0;
    std::unique_ptr<QSaveFile> m_file;
    HtmlPageMarkup::StyleSheet m_styles; // of the file being written
};

} // namespace Engine
