#pragma once
// The command folders Remote and Mail: files dropped there by other programs, acted on once each tick.

#include <QString>

class QorloGlobals;

// Remote with the log tag "REMOTE", then Mail with "MAIL", both below the application folder.
void PollCommandFolders(QorloGlobals &globals);
// Merges every *.xml of the folder into the running schedule, unless a *.lck lies there.
void ProcessRemoteFolder(QorloGlobals &globals, const QString &path, const QString &logTag);
// Sends every *.xml mail document of the folder, unless a *.lck lies there.
void ProcessMailFolder(QorloGlobals &globals, const QString &path, const QString &logTag);
