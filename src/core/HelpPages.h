#pragma once
// The help pages installed with the program, brought into the application folder's Help folder.

#include <QString>

namespace HelpPages {

// Where an installed program keeps its help pages: PREFIX/share/qorlomanager/help for PREFIX/bin/program.
QString InstalledFolder(const QString &executablePath);
// Copies each page below `source` (subfolders too) that `helpFolder` lacks or holds in another
// version (another modification time). Pages that only the Help folder has stay. A missing source
// copies nothing.
void Refresh(const QString &source, const QString &helpFolder);

} // namespace HelpPages
