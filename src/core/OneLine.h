#pragma once
// Texts bound for one-line elements (run-log entries, status lines) must not hold line ends: a line end
// in such a value splits its line in the file, and the next read loses the second half.

#include <QString>

// Each line end (CR LF, CR or LF) becomes one blank.
QString OneLine(const QString &text);
