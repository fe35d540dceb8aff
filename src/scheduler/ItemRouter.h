#pragma once
// One schedule item from hand-over to its end: routing by File and Dest.

#include <QString>
#include <QtGlobal>

class QorloGlobals;

// Runs the item with this ReportID, marking it in ProcessingID and ProcessingName while it runs. A run
// told to stop (SIGTERM) ends with the log entry "Run stopped at shutdown".
void RunScheduleItem(QorloGlobals &globals, const QString &reportID);
