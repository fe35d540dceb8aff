#pragma once
// The command folders Remote and Mail: files dropped there by other programs, acted on once each tick.

#include <QString>

class QorloGlobals;

// Makes both command folders owner-only, as at every start; a folder that cannot be made so, or that
// another user owns, is not read, which is said once on standard error, in the run log and on the
// status page (QorloGlobals::RefusedCommandFolders).
void CheckCommandFolders(QorloGlobals &globals);
// Remote with the log tag "REMOTE", then Mail with "MAIL", both below the application folder.
void PollCommandFolders(QorloGlobals &globals);
// Applies every *.xml of the folder to the running schedule, one file at a time (apply, save the
// schedule, log, delete), unless a *.lck lies there.
void ProcessRemoteFolder(QorloGlobals &globals, const QString &path, const QString &logTag);
// Sends every *.xml mail document of the folder, unless a *.lck lies there.
void ProcessMailFolder(QorloGlobals &globals, const QString &path, const QString &logTag);
