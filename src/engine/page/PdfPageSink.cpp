#include "engine/page/PdfPageSink.h"

#include "engine/page/GlyphRuns.h"
#include "engine/page/PageFonts.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>

namespace Engine {

namespace {

// One device unit is one point, so the model's coordinates go to the painter unchanged.
constexpr int PointsPerInch = 72;

QPageLayout LayoutOf(const PageSetup &setup)
{
    const QSizeF paper = setup.orientedSize();
    // The size is given in its reading orientation, so QPageSize sees portrait paper turned over.
    const QPageSize pageSize(setup.landscape ? paper.transposed() : paper, QPageSize::Point);
    QPageLayout layout(pageSize, setup.landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
                       setup.margins, QPageLayout::Point);
    // The model places everything from the paper's corner, margins included.
    layout.setMode(QPageLayout::FullPageMode);
    return layout;
}

} // namespace

PdfPageSink::PdfPageSink(const QString &fileName) : m_fileName(fileName) {}

PdfPageSink::~PdfPageSink()
{
    close();
}

void PdfPageSink::begin(const PageSetup &setup, int)
{
    m_file = std::make_unique<QSaveFile>(m_fileName);
    if (!m_file->open(QIODevice::WriteOnly)) {
        setError(QStringLiteral("Cannot write %1: %2").arg(m_fileName, m_file->errorString()));
        m_file.reset();
        return;
    }
    m_writer = std::make_unique<QPdfWriter>(m_file.get());
    m_writer->setResolution(PointsPerInch);
    m_writer->setTitle(setup.title);
    m_writer->setCreator(QStringLiteral("QorloMANAGER"));
    m_writer->setPageLayout(LayoutOf(setup));
    m_painter = std::make_unique<QPainter>();
    if (!m_painter->begin(m_writer.get())) {
        setError(QStringLiteral("Cannot start the PDF document %1").arg(m_fileName));
        close();
        return;
    }
    m_painter->setFont(ToQFont(m_font));
}

void PdfPageSink::addPage(const Page &page)
{
    if (!m_painter)
        return;
    if (m_pageOpen && !m_writer->newPage()) {
        setError(QStringLiteral("Cannot add page %1 to %2").arg(page.number).arg(m_fileName));
        close();
        return;
    }
    m_pageOpen = true;
    drawBoxes(page);
    // Charts and logos keep their sharp edges and flat colours, which JPEG would blur.
    m_painter->setRenderHint(QPainter::LosslessImageRendering);
    for (const PagePicture &picture : page.pictures)
        m_painter->drawImage(picture.box, picture.image);
    drawLines(page);
    drawTexts(page);
}

void PdfPageSink::end()
{
    if (!m_painter)
        return;
    m_painter->end();
    m_painter.reset();
    m_writer.reset();
    if (!m_file->commit())
        setError(QStringLiteral("Cannot write %1: %2").arg(m_fileName, m_file->errorString()));
    m_file.reset();
}

void PdfPageSink::drawBoxes(const Page &page)
{
    for (const PageBox &box : page.boxes) {
        if (box.lineWidth > 0)
            m_painter->setPen(QPen(Qt::black, box.lineWidth));
        else
            m_painter->setPen(Qt::NoPen);
        m_painter->setBrush(box.fill.alpha() > 0 ? QBrush(box.fill) : QBrush(Qt::NoBrush));
        m_painter->drawRect(box.rect);
    }
}

void PdfPageSink::drawLines(const Page &page)
{
    for (const PageLine &line : page.lines) {
        m_painter->setPen(QPen(Qt::black, line.width));
        m_painter->drawLine(line.from, line.to);
    }
}

void PdfPageSink::drawTexts(const Page &page)
{
    for (const PageText &text : page.texts) {
        if (text.background.isValid())
            m_painter->fillRect(text.box, text.background);
    }
    GlyphRuns runs;
    for (const PageText &text : page.texts) {
        if (text.text.isEmpty() || runs.add(text))
            continue;
        useFont(text.font);
        m_painter->setPen(text.color);
        // Qt clips only the text that overflows its box, as a printed field is cut at its width.
        m_painter->drawText(text.box, int(text.alignment), text.text);
    }
    runs.draw(*m_painter);
}

void PdfPageSink::useFont(const PageFont &font)
{
    if (font == m_font)
        return;
    m_font = font;
    m_painter->setFont(ToQFont(font));
}

// Drops a half-written document: QSaveFile discards it unless end() committed it.
void PdfPageSink::close()
{
    if (m_painter && m_painter->isActive())
        m_painter->end();
    m_painter.reset();
    m_writer.reset();
    m_file.reset();
}

} // namespace Engine
