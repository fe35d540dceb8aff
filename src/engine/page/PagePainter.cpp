#include "engine/page/PagePainter.h"

#include "engine/page/GlyphRuns.h"
#include "engine/page/PageFonts.h"

#include <QPainter>
#include <optional>

namespace Engine {

namespace {

void PaintBoxes(QPainter &painter, const Page &page)
{
    for (const PageBox &box : page.boxes) {
        if (box.lineWidth > 0)
            painter.setPen(QPen(Qt::black, box.lineWidth));
        else
            painter.setPen(Qt::NoPen);
        painter.setBrush(box.fill.alpha() > 0 ? QBrush(box.fill) : QBrush(Qt::NoBrush));
        painter.drawRect(box.rect);
    }
}

void PaintLines(QPainter &painter, const Page &page)
{
    for (const PageLine &line : page.lines) {
        painter.setPen(QPen(Qt::black, line.width));
        painter.drawLine(line.from, line.to);
    }
}

// Charts and logos keep their sharp edges and flat colours, which JPEG would blur.
void PaintPictures(QPainter &painter, const Page &page)
{
    painter.setRenderHint(QPainter::LosslessImageRendering);
    for (const PagePicture &picture : page.pictures)
        painter.drawImage(picture.box, picture.image);
}

void PaintTexts(QPainter &painter, const Page &page)
{
    for (const PageText &text : page.texts) {
        if (text.background.isValid())
            painter.fillRect(text.box, text.background);
    }
    GlyphRuns runs;
    // Switching fonts costs a lookup; neighbouring texts mostly share theirs.
    std::optional<PageFont> current;
    for (const PageText &text : page.texts) {
        if (text.text.isEmpty() || runs.add(text))
            continue;
        if (current != text.font) {
            current = text.font;
            painter.setFont(ToQFont(text.font));
        }
        painter.setPen(text.color);
        // Qt clips only the text that overflows its box, as a printed field is cut at its width.
        painter.drawText(text.box, int(text.alignment), text.text);
    }
    runs.draw(painter);
}

} // namespace

void PaintPage(QPainter &painter, const Page &page)
{
    PaintBoxes(painter, page);
    PaintPictures(painter, page);
    PaintLines(painter, page);
    PaintTexts(painter, page);
}

} // namespace Engine
