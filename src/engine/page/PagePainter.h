#pragma once
// Draws one page of the model with a painter whose unit is one point on a device of 72 dots per inch,
// so that the PDF, the printout and a viewer's screen show the same drawing.

#include "engine/page/PageModel.h"

class QPainter;

namespace Engine {

void PaintPage(QPainter &painter, const Page &page);

} // namespace Engine
