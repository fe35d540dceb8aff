#pragma once
// Windows-1252 ("the ANSI code page"): the byte form of every file and of text on the wire.

#include <QByteArray>
#include <QString>

namespace Ansi {

// The Windows-1252 code of the character, or -1 when the code page cannot hold it.
int Code(QChar c);
// The character of a Windows-1252 code (0 to 255).
QChar Char(int code);
// Characters the code page cannot hold become `replacement`.
QByteArray Encode(const QString &text, char replacement = '?');
QString Decode(const QByteArray &bytes);
// A file's text: decoded by its byte-order mark (UTF-8, UTF-16 LE or BE) when it begins with one, as an
// editor may save it so, else Windows-1252.
QString DecodeFile(const QByteArray &bytes);

} // namespace Ansi
