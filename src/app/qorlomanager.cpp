// The desktop scheduler: the core's start-up with message boxes, then the main window.
#include "core/AppFolder.h"
#include "core/QorloError.h"
#include "core/StopRequest.h"
#include "run/ErrorTrap.h"
#include "scheduler/CatchingApplication.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/ShutdownSignals.h"
#include "scheduler/SingleInstance.h"
#include "scheduler/StartUp.h"
#include "ui/GuiPrompter.h"
#include "ui/frmMain.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char **argv)
{
    GuiPrompter prompter;
    CatchingApplication<QApplication> app(argc, argv, prompter);
    // The icon and desktop entry that the package installs.
    QGuiApplication::setDesktopFileName(QStringLiteral("qorlomanager"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("qorlomanager")));
    try {
        const QString executable = QCoreApplication::applicationFilePath();
        QorloGlobals globals(AppFolder::Enter(executable), prompter);
        SingleInstance instance;
        Dispatcher dispatcher(globals);
        frmMain window(globals, dispatcher);
        QObject::connect(&window, &frmMain::ExitRequested, &app, [] { QCoreApplication::exit(0); });
        if (!StartUp(globals, instance, dispatcher, executable))
            return 1;
        CloseOnSignals([] { QCoreApplication::exit(0); });
        // The process lives as long as its main window, shown by the start-up.
        const int status = app.exec();
        // A signal ends the event loop without closing the window, which would say so on the page.
        if (StopRequest::Requested())
            CloseMainWindow(globals, false);
        return status;
    } catch (...) {
        prompter.FatalError(CaughtError());
    }
    return 1;
}
