#pragma once
// Pictures placed into boxes of a page: a logo, a record's photo, a chart.

#include "engine/ReportDefinition.h"

namespace Engine {

// The picture as large as `box` allows with its own proportions, centred in it; nothing for a null image.
QList<PagePicture> Fitted(const QImage &image, const QRectF &box);
// A field's PNG or JPEG bytes; a null image for a null value or bytes that are no picture.
QImage PictureOf(const QVariant &value);
// The box of a picture object on a band `width` wide, by its alignment; `top` from the band's top.
QRectF PictureBox(const SectionObject &picture, double left, double width, double top);

} // namespace Engine
