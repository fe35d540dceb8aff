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

} // namespace Ansi
