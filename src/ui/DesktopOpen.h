#pragma once
// Files and pages handed to the desktop's own programs (browser, viewers, office programs).

#include <QString>

class Prompter;
class QUrl;

// Opens the address with the desktop's program for it; when the desktop has none, a box under
// `title` says so.
void OpenWithDesktop(Prompter &prompter, const QString &title, const QUrl &address);
// The help page of the application folder's Help folder.
void OpenHelpPage(Prompter &prompter, const QString &appPath, const QString &page);
