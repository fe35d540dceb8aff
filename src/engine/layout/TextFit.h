#pragma once
// Fits a text into the width of its box: cut with "…" at the end, or wrapped into lines.

#include "engine/page/PageModel.h"

#include <QStringList>

namespace Engine {

// The text when it fits, else as much of it as fits followed by "…".
QString Elided(const QString &text, const PageFont &font, double width);
// The text in lines that fit, broken between words where it can and within a word where it must;
// line breaks in the text are kept. At least one line.
QStringList Wrapped(const QString &text, const PageFont &font, double width);

} // namespace Engine
