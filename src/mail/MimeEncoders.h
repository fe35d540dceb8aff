#pragma once
// The encoders of the mail client: base64 with 76-character lines, uuencode lines, encoded header words,
// and the dot stuffing and line folding of a message text.

#include <QByteArray>
#include <QString>

namespace MimeEncoders {

// The 64 base64 characters followed by "=".
inline constexpr char kBase64Table[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";

// Base64 in lines of 76 characters; the output always ends with CR LF.
QByteArray EncodeBase64Bytes(const QByteArray &bytes);
// The Windows-1252 bytes of the text in base64; empty text gives empty text.
QString EncodeBase64String(const QString &text);
// Any character outside the table makes the whole result empty.
QString DecodeBase64String(const QString &text);
// One uuencoded line of at most 63 characters; longer input gives empty text.
QByteArray UuEncodeLine(const QByteArray &bytes);
// Text with a character above code 126 becomes base64 words of 42 characters each.
QString EncodeHeaderText(const QString &text, bool quote);
// Dot stuffing and folding of lines longer than 998 characters.
QString PrepareMessageText(const QString &text);
// True when a character, as a Windows-1252 code, lies above 126 (or outside the code page).
bool HasEightBit(const QString &text);

} // namespace MimeEncoders
