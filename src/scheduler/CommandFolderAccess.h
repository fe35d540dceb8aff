#pragma once
// Who may command the scheduler: only the user it runs as. A command folder that others can write to
// would let them start programs as that user.

#include <QString>

// Makes the folder owner-only when it is not. Empty when it may be read (also when it does not exist:
// there is nothing to read), else why not.
QString SecureCommandFolder(const QString &path);
// What the run log, standard error and the status page say of a folder that is not read.
QString RefusalNote(const QString &path, const QString &reason);
