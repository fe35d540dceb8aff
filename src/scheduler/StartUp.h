#pragma once
// Start-up and shutdown of the scheduler: state files, family settings, single instance, working
// folders, the main window's load step and the two doors out.

#include <QString>

class Dispatcher;
class QorloGlobals;
class SingleInstance;

// The start-up steps after the global objects exist, ending with the timer running. False when
// another instance holds the application folder: the caller ends the process.
bool StartUp(QorloGlobals &globals, SingleInstance &instance, Dispatcher &dispatcher,
             const QString &executablePath);
// The family's shared settings: the program's path always, the scheduler election and its folders
// when no other program holds it.
void RegisterApplication(const QString &appPath, const QString &executablePath);
// The core part of the main window's load step: the "Previously active" question, caption, grid.
void LoadMainWindow(QorloGlobals &globals);

// The Exit menu entry; false when the operator cancels. The front then ends the process.
bool ExitFromMenu(QorloGlobals &globals, bool otherWindowsOpen);
// Closing the main window; false when the operator refuses the close. Either way the front unloads
// its other windows, and the status page says that the program shut down.
bool CloseMainWindow(QorloGlobals &globals, bool otherWindowsOpen);
