#pragma once
// Renders streamed pages as RTF, which word processors open as a document of the same pages: one
// paragraph for each row of text with tab stops at the texts' places, lines and boxes as shapes.
// The Word export writes the same content.

#include "engine/page/PageModel.h"

#include <QHash>
#include <QStringList>
#include <memory>

class QSaveFile;
class QTemporaryFile;

namespace Engine {

class RtfPageSink : public PageSink
{
public:
    explicit RtfPageSink(const QString &fileName);
    ~RtfPageSink() override;

    void begin(const PageSetup &setup, int pageCount) override;
    void addPage(const Page &page) override;
    // Writes the file: the header with the fonts the pages used, then the pages.
    void end() override;

private:
    QString pageBody(const Page &page, bool firstPage);
    QString rowParagraph(const QList<const PageText *> &row, double gapAbove, double height,
                         const QString &lead);
    int fontIndex(const QString &family);
    int colorIndex(const QColor &color);
    QString header() const;

    QString m_fileName;
    PageSetup m_setup;
    QMarginsF m_margins;
    QStringList m_fonts;
    QHash<QString, int> m_fontIndex;
    QList<QRgb> m_colors;
    int m_pagesWritten = 0;
    // The body waits on disk until the font table, which comes first, is complete.
    std::unique_ptr<QTemporaryFile> m_body;
};

} // namespace Engine
