#pragma once
// The log-on of a table's server and database as the connection list holds it, and values read from a
// driver's connection string.

#include <QString>

class clsConnect;
struct RunContext;

namespace ReportBinding {

// The list's user for the connection, or empty. With UserOption "No" the user takes no part in the
// search.
QString FindUser(clsConnect &connections, const QString &dll, const QString &server, const QString &database,
                 const QString &user);

// The list's password for the connection, which is queued for log-off at the end of the run; a log-off
// list already full raises the subscript error. A connection the list lacks is added to it with an empty
// password and saved, so the user can fill the password in, and the result is empty.
QString FindPassword(RunContext &run, const QString &dll, const QString &server, const QString &database,
                     const QString &user);

// The text behind `key` (e.g. "Server=") up to the next ";" or the end; empty when the key is missing.
QString ConnectionStringValue(const QString &connectionString, const QString &key);

} // namespace ReportBinding
