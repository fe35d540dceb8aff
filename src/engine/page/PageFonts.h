#pragma once
// The Qt fonts of the page model's fonts, and their measures in points.

#include "engine/page/PageModel.h"

#include <QFont>
#include <QFontMetricsF>

namespace Engine {

// The font with fallback families after it, so that characters the report font lacks (Chinese, for
// instance) come from an installed font that has them instead of printing as empty boxes.
QFont ToQFont(const PageFont &font);
// The family list of ToQFont, for writers that name fonts themselves (HTML).
QStringList FontFamilies(const PageFont &font);
// Measures of the font in points (one point a device unit, as the PDF is drawn); kept per font.
const QFontMetricsF &MetricsOf(const PageFont &font);

} // namespace Engine
