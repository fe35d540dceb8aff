#pragma once
// Binds an open report to the schedule: the item's stored parameters, the log-on of every table from the
// connection list and the table map, the log-off at the end of a run, and what is read of a report file
// outside a run.

#include <QString>

class clsMap;
struct RunContext;

namespace Engine {
class DatabaseTable;
class Report;
} // namespace Engine

namespace ReportBinding {

// Adds the stored parameters of the item at the cursor to the run's open report, without clearing what
// the fields hold. `excludeName` "{?Name}" leaves that parameter out, "*ALL*" every one. A number that is
// not numeric sets the schedule's ParmError and the others still apply. A failing engine call ends it:
// with the trap off it unwinds as a QorloError, with the trap armed it is recorded there.
void SetParameters(RunContext &run, const QString &excludeName);

// Carries server, database, user and password into every table of the report and of its sub-reports,
// testing each connection. The first table that cannot connect is named in ConnectError and ends the
// whole log-on; a sub-report's failure is also shown as a warning. Failures unwind as with SetParameters.
void LogOnReport(RunContext &run, Engine::Report &report, const QString &reportID);

// Logs off every server of the log-off list through the open report's application and empties the list;
// a failing log-off is ignored.
void LogOffServers(RunContext &run);

// Applies the table map's rows for this report to the table's Location and to `server` and `database`.
void ApplyTableMap(const clsMap &map, Engine::DatabaseTable &table, const QString &reportID, QString &server,
                   QString &database);

// The title of a report file; empty for no name or a missing file, "Cannot Load Report Title" when the
// file does not open.
QString ReportTitle(const QString &file);

// Every table of the report with its connection properties, passwords left out; lines end in CR LF.
QString DescribeConnections(Engine::Report &report);

} // namespace ReportBinding
