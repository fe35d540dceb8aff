#pragma once
// A multi-run: one report run once for each line of a text file, each line with its own parameter value,
// export format and destination.

#include <QString>
#include <QVariant>

class clsSchedule;
struct RunContext;

namespace Engine {
class Report;
}

// Runs the multi-run file `fileName` for the item at the schedule's cursor, whose File is the report.
// Lines are "Parameter,Value,Destination,Format,Output,Extra"; empty lines and "//" comments are skipped.
// A failing report open or read unwinds out of the run as a QorloError.
void RunMultiRun(RunContext &run, const QString &fileName);

namespace MultiRun {

// A trimmed line of 3 characters or more that begins with "//"; "//" alone is a bad line, not a comment.
bool IsComment(const QString &line);
// A field that starts and ends with a double quote loses both; nothing else is trimmed.
QString StripQuotes(const QString &field);

// The text behind `tag` (case-sensitive) up to the next "{" or the end; empty when the tag is missing.
QString ValueAfterTag(const QString &tag, const QString &text);

// The value of a line's text for a parameter of engine type `valueType`, unchecked: numbers (7, 8) are
// the numeric prefix, booleans (9) true only for "True", dates (10, 16) go through EvaluateDate, strings
// (12) stay as they are; any other type gives an empty value.
QVariant ParameterValue(clsSchedule &schedule, const QString &text, int valueType);

// "old=new": in the Location of each table of the report that holds `old` in any case, its first
// occurrence becomes `new`. An expression without "=" changes nothing.
void ApplyTableExpression(Engine::Report &report, const QString &expression);

// appPath + "/Multirun/MR-nnnnn/", made when missing and emptied of its files when present. Raises
// QorloError when the folder cannot be made or a file in it cannot be deleted.
QString MultiRunFolder(const QString &appPath, qint16 counter);

// The copies a printer line's Extra asks for: its numeric prefix rounded to even, at least 1. A number
// beyond 16 bits raises the overflow error.
qint16 PrintCopies(const QString &extra);

} // namespace MultiRun
