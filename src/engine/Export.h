#pragma once
// Report::Export: picks the target file member by FormatType and writes the export of that type.

namespace Engine {

class Report;

// Raises EngineError when the options name no file, the type is unknown or the file cannot be written.
void ExportReport(Report &report);

} // namespace Engine
