#pragma once
// What the tick leaves behind when an error that ends the process arises while it works on one item or
// one command file: the failure in the run log and its cause set aside, so that the next start does
// not meet the same error again.

#include <QString>

#include <functional>

class QorloError;
class QorloGlobals;

// Runs `work`. When it fails (a requested stop is no failure), `record` gets the error first; the
// error then goes on, as a QorloError, to end the process.
void RecordFailure(const std::function<void()> &work, const std::function<void(const QorloError &)> &record);

// Puts the item On Hold (not scheduled, no next run) and saves the schedule; the run log says why.
void HoldItem(QorloGlobals &globals, const QString &reportID, const QorloError &error);
// Moves the command file to Failed/ in its folder; the run log says why, under the folder's tag.
void SetAsideCommandFile(QorloGlobals &globals, const QString &file, const QString &logTag,
                         const QorloError &error);
// A line on standard error and an entry of the run log under `logTag`, for what the operator must
// hear of although no run went wrong.
void NotifyOperator(QorloGlobals &globals, const QString &logTag, const QString &text);
