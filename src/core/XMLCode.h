#pragma once
// The line-oriented XML writer and tag reader shared by every state file, and the password scrambling.
// One file is written at a time, process-wide. Each writing call prints its line when a file is open
// and returns the line (without its CR LF) in any case, so callers can also build text with it.

#include "core/LineReader.h"

#include <QString>

namespace XMLCode {

enum class FileAccess {
    Normal,
    OwnerOnly, // files that hold passwords
};

// Starts a new file: the 8-line header and the root element's opening line (left out for an empty
// root name). The file replaces the old one atomically at CloseXML. Returns "" or
// "Error Creating File: " + reason.
QString OpenXML(const QString &path, const QString &rootName, const QString &attributes = QString(),
                FileAccess access = FileAccess::Normal);
// Writes the closing root tag and puts the file in place: "XML File closed" or "XML already closed".
QString CloseXML();

QString WriteElement(const QString &tag, const QString &value);
// Opening tag and value, then the closing tag on a line of its own.
QString WriteLongElement(const QString &tag, const QString &value);
QString WriteCDataElement(const QString &tag, const QString &value);
QString WriteOpenTag(const QString &tag, const QString &attributes = QString());
QString WriteCloseTag(const QString &tag);

QString XMLEscape(const QString &value);
QString XMLCData(const QString &value);

// The tag of a state-file line: the text up to and including the first ">", so attributes count
// and case matters; empty for a line without ">", which readers ignore.
QString LineTag(const QString &line);
QStringView LineTag(QStringView line);
// Decodes the line in place and returns the value of its element.
QString TagValue(QString &line);
// The same value, leaving the line as it is; a line without escapes is read without a copy.
QString ReadTagValue(QStringView line);
// Whether the text in front of a long element's end tag, on a later line, follows the value directly
// (state files) or after CR LF like every line before it (mail documents).
enum class EndLine {
    Attached,
    Joined,
};

// The value of a long element whose first (already decoded) line is `line`, reading further lines.
QString ReadLongElement(LineReader &file, const QString &line, const QString &endTag,
                        EndLine endLine = EndLine::Attached);

QString EncodeText(const QString &clear);
QString DecodeText(const QString &coded);

// Creates the file with the one line "Lock File Created : dd-MMM-yyyy"; errors are swallowed.
void CreateLockFile(const QString &path);

} // namespace XMLCode
