#pragma once
// One report item from its opening to its delivery to disk, mail or printer.

struct RunContext;

// Runs the report item at the schedule's cursor. The outcome is in the run log and on the item.
void RunReport(RunContext &run);
