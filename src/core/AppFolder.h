#pragma once
// Where the program keeps its state files and working folders.

#include <QString>
#include <QStringList>

namespace AppFolder {

// /usr, /bin, /sbin and the folders below them.
bool IsSystemFolder(const QString &folder);
// The executable's folder when it is writable and not a system folder, else ~/.local/share/QorloMANAGER.
QString Resolve(const QString &executablePath);
// The working folders below the application folder, in the order they are made.
QStringList WorkingFolderNames();
// Makes each missing working folder; the command folders are made readable by the owner only.
void MakeWorkingFolders(const QString &appPath);
// The application folder of this process: the folder named by the environment variable QORLO_APP_FOLDER
// (made when missing), else Resolve(). It becomes the working folder, so that relative names in the
// schedule mean files in it however the program was started.
QString Enter(const QString &executablePath);

} // namespace AppFolder
