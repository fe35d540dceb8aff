#pragma once
// Export of the run log to QorloLog.csv in the application folder.

#include <QString>

class clsLog;

namespace LogExport {

// The title of the message that reports the export's outcome.
QString Title();
// Writes the CSV file and returns the message to show: "No log entries to display" for an empty log,
// else the file name + " created". Rows 0 to Count are written, one past the last row in use.
// A file that cannot be written raises the path/file access error.
QString ExportLogCsv(const clsLog &log);

} // namespace LogExport
