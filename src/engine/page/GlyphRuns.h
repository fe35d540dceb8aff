#pragma once
// Texts that the report font draws alone, gathered by font and baseline into one run of glyphs each:
// drawn without shaping them again, and as one text object for a whole row of a page.

#include "engine/page/PageFonts.h"

#include <QHash>
#include <QList>
#include <QPointF>
#include <vector>

class QPainter;

namespace Engine {

class GlyphRuns
{
public:
    // Takes the text, placed as drawText would place it in its box; false when it needs Qt's own
    // drawing: characters from other fonts, or more width than its box has.
    bool add(const PageText &text);
    // Draws the runs gathered since the last call.
    void draw(QPainter &painter);

    // Texts of one font, baseline and colour share a run.
    struct RunKey
    {
        PageFont font;
        double baseline = 0;
        QRgb color = 0;

        bool operator==(const RunKey &) const = default;
    };

private:
    struct Run
    {
        QRawFont font;
        QColor color;
        double baseline = 0;
        QList<quint32> glyphs;
        QList<QPointF> positions;
    };

    std::vector<Run> m_runs;
    QHash<RunKey, size_t> m_index;
};

} // namespace Engine
