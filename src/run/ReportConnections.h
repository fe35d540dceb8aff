#pragma once
// What the connection and table map windows ask of a report file outside a run: its connections
// learned into the connection list, its table locations examined into the table map, a connection
// tested, and its connection details for the support mailbox.

#include <QString>

class clsMap;
struct RunContext;

namespace ReportBinding {

// Logs the report on as a run does, with a run state of its own so that a run in progress is not
// disturbed: every connection the list lacks is added to it with an empty password and saved. Returns
// how many rows the list gained. A report that cannot be opened raises QorloError with the engine's
// number and description.
int LearnConnections(const RunContext &program, const QString &file, const QString &reportID);

// One table map row for each table of the report, mapping its location to itself. An empty name or a
// missing file adds nothing; a report that cannot be opened raises QorloError.
void ExamineReport(clsMap &map, const QString &reportID, const QString &file);

// Really connects with the driver ("sqlite", "psql", "odbc"), server, database, user and password;
// empty when the connection opened, else the driver's message. A relative SQLite file is taken in
// `baseFolder`.
QString TestConnection(const QString &dll, const QString &server, const QString &database,
                       const QString &user, const QString &password, const QString &baseFolder);

// DescribeConnections of the report file; raises QorloError when the report cannot be opened.
QString ConnectionDetails(const QString &file);

} // namespace ReportBinding
