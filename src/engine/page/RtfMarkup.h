#pragma once
// RTF pieces of the page model: text escaping, lengths in twips, shapes for lines and boxes.

#include "engine/page/PageModel.h"

namespace Engine::RtfMarkup {

// Points to twips (twentieths of a point), RTF's unit of length.
int Twips(double points);
// Text as RTF: control characters escaped, everything beyond ASCII as \uN? escapes.
QString Escaped(const QString &text);
// A line or a box outline as a shape placed on the page, behind the text.
QString LineShape(const PageLine &line, int order);
QString BoxShape(const PageBox &box, int order);
// A picture as a shape in its box, its PNG inside.
QString PictureShape(const PagePicture &picture, int order);

} // namespace Engine::RtfMarkup
