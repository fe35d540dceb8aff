#pragma once
// The run log entry of a result of the running item.

#include <QtGlobal>

struct RunContext;
class QString;

// Writes the entry of the running item, keeps it as the last result and ends the run state, so that a
// second result of the same run is written without an ID and its text begins with ": ".
void LogResult(RunContext &run, double start, const QString &text, qint32 pages);
