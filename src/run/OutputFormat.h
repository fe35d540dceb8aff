#pragma once
// The export settings of the open report for a format name of a schedule item or a multi-run line.

#include <QString>

struct RunContext;

namespace Engine {
class Report;
}

// Sets FormatType and the options that go with the format `name` (compared in small letters; an unknown
// name exports a report file), and run.state.OutputExtension. The two HTML formats take their file name
// from the Location of the item at the schedule's cursor and make its folders; a failure unwinds.
void SetOutputFormat(RunContext &run, Engine::Report &report, const QString &name);
// The Excel export type chosen by the schedule's Excel-Format setting.
void SetExcelFormat(RunContext &run, Engine::Report &report);
// The report-file export type chosen by the schedule's Crystal-Format setting.
void SetCrystalFormat(RunContext &run, Engine::Report &report);
