#pragma once
// Renders streamed pages as monospaced text: positions snap to a grid of characters per inch and
// lines per page; paginated text starts each page after the first with a form feed.

#include "engine/TextEncoding.h"
#include "engine/page/PageModel.h"

#include <QStringList>
#include <memory>

class QSaveFile;

namespace Engine {

// From ExportOptions: CharactersPerInch (0 when UseDefaultCPI), NumberOfLinesPerPage; page breaks
// for paginated text (format 10), none for text (format 8).
struct TextPageOptions
{
    int charactersPerInch = 0; // 0: DefaultCharactersPerInch
    int linesPerPage = 0;      // 0: as many lines as the page holds at six lines an inch
    bool pageBreaks = true;    // false: plain text, the pages one after another
    TextEncoding encoding = TextEncoding::Windows1252;
};

class TextPageSink : public PageSink
{
public:
    static constexpr int DefaultCharactersPerInch = 12;

    TextPageSink(const QString &fileName, const TextPageOptions &options);
    ~TextPageSink() override;

    void begin(const PageSetup &setup, int pageCount) override;
    void addPage(const Page &page) override;
    // Writes the file; it appears only when every page was written.
    void end() override;

private:
    QStringList pageLines(const Page &page) const;
    int rowOf(double y) const;
    void write(const QString &text);

    QString m_fileName;
    TextPageOptions m_options;
    double m_columnWidth = 6;
    double m_lineHeight = 12;
    int m_linesPerPage = 70;
    int m_lastColumn = 80;
    int m_pagesWritten = 0;
    std::unique_ptr<QSaveFile> m_file;
};

} // namespace Engine
