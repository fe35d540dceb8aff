#pragma once
// One schedule item from hand-over to its end: routing by File and Dest, and the logging of a result.

#include <QString>
#include <QtGlobal>

class QorloGlobals;

// Runs the item with this ReportID, marking it in ProcessingID and ProcessingName while it runs.
void RunScheduleItem(QorloGlobals &globals, const QString &reportID);
// Writes the run log entry of the running item, keeps it as the last result and ends the run state.
void LogResult(QorloGlobals &globals, double start, const QString &text, qint32 pages);
