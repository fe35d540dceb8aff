#pragma once
// How the text exports are written: Windows-1252, the code page the scheduler's files use (characters
// outside it become "?"), or UTF-8 with a byte-order mark when a report asks for it.

#include <QByteArray>
#include <QStringView>

namespace Engine {

enum class TextEncoding { Windows1252, Utf8 };

QByteArray Encoded(QStringView text, TextEncoding encoding);
// The same, added to the end of `out`.
void AppendEncoded(QByteArray &out, QStringView text, TextEncoding encoding);
// What a file in the encoding starts with: the UTF-8 byte-order mark, or nothing.
QByteArray FileStart(TextEncoding encoding);

} // namespace Engine
