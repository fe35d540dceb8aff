#pragma once
// The Qt fonts of the page model's fonts, and their measures in points.

#include "engine/page/PageModel.h"

#include <QFont>
#include <QFontMetricsF>
#include <QRawFont>
#include <array>

namespace Engine {

// The font with fallback families after it, so that characters the report font lacks (Chinese, for
// instance) come from an installed font that has them instead of printing as empty boxes.
QFont ToQFont(const PageFont &font);
// The family list of ToQFont, for writers that name fonts themselves (HTML).
QStringList FontFamilies(const PageFont &font);
// Measures of the font in points (one point a device unit, as the PDF is drawn); kept per font.
const QFontMetricsF &MetricsOf(const PageFont &font);

// How the report font itself draws the first 256 characters, in points: most report texts need nothing
// else, and placing their glyphs from these tables spares shaping every cell of a long report.
struct LatinGlyphs
{
    QRawFont font;
    std::array<quint32, 256> glyph{}; // 0: the font lacks the character
    std::array<double, 256> advance{};

    // The glyphs of the text and its width without kerning; false when a character is not in the tables.
    bool lookUp(QStringView text, QList<quint32> *glyphs, double &width) const;
};
const LatinGlyphs &LatinGlyphsOf(const PageFont &font);

} // namespace Engine
