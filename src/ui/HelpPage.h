#pragma once
// The help pages of the application folder's Help folder, opened in the desktop's browser.

#include <QString>

// Opens Help/`page` of the application folder.
void OpenHelpPage(const QString &appPath, const QString &page);
