#include "engine/page/GlyphRuns.h"

#include <QGlyphRun>
#include <QPainter>
#include <cmath>

namespace Engine {

// Found by argument-dependent lookup from the index of runs.
size_t qHash(const GlyphRuns::RunKey &key, size_t seed = 0)
{
    const PageFont &font = key.font;
    return qHashMulti(seed, font.family, font.pointSize, font.bold, font.italic, key.baseline, key.color);
}

bool GlyphRuns::add(const PageText &text)
{
    const LatinGlyphs &latin = LatinGlyphsOf(text.font);
    double width = 0;
    if (!latin.lookUp(text.text, nullptr, width) || width > text.box.width())
        return false;
    double x = text.box.left();
    if (text.alignment & Qt::AlignRight)
        x = text.box.right() - width;
    else if (text.alignment & Qt::AlignHCenter)
        x = text.box.center().x() - width / 2;
    const double ascent = latin.font.ascent();
    const double descent = latin.font.descent();
    double baseline = text.box.top() + (text.box.height() - ascent - descent) / 2 + ascent;
    if (text.alignment & Qt::AlignTop)
        baseline = text.box.top() + ascent;
    else if (text.alignment & Qt::AlignBottom)
        baseline = text.box.bottom() - descent;
    // Texts of one row share a baseline to within rounding.
    const double row = std::round(baseline * 1000) / 1000;
    const RunKey key{text.font, row, text.color.rgba()};
    auto found = m_index.constFind(key);
    if (found == m_index.constEnd()) {
        found = m_index.insert(key, m_runs.size());
        m_runs.push_back(Run{latin.font, text.color, row, {}, {}});
    }
    Run &run = m_runs[*found];
    for (const QChar c : text.text) {
        run.glyphs.append(latin.glyph[c.unicode()]);
        run.positions.append(QPointF(x, 0));
        x += latin.advance[c.unicode()];
    }
    return true;
}

void GlyphRuns::draw(QPainter &painter)
{
    for (const Run &run : m_runs) {
        painter.setPen(run.color);
        QGlyphRun glyphs;
        glyphs.setRawFont(run.font);
        glyphs.setGlyphIndexes(run.glyphs);
        glyphs.setPositions(run.positions);
        painter.drawGlyphRun(QPointF(0, run.baseline), glyphs);
    }
    m_runs.clear();
    m_index.clear();
}

} // namespace Engine
