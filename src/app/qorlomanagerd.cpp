// The scheduler without windows, for servers: message boxes become lines on standard error and
// questions take fixed answers.
#include "core/AppFolder.h"
#include "core/QorloError.h"
#include "run/ErrorTrap.h"
#include "scheduler/CatchingApplication.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/ShutdownSignals.h"
#include "scheduler/SingleInstance.h"
#include "scheduler/StartUp.h"

#include <QGuiApplication>
#include <QTextStream>

#include <cstdlib>

namespace {

// Every box is one line "TITLE: TEXT"; every question is answered Yes or OK (see the README).
class StderrPrompter : public Prompter
{
public:
    void ShowMessage(const QString &title, const QString &text, Icon) override { Print(title, text); }
    bool AskYesNo(const QString &title, const QString &text) override
    {
        Print(title, text + QStringLiteral(" [Yes]"));
        return true;
    }
    bool AskOkCancel(const QString &title, const QString &text) override
    {
        Print(title, text + QStringLiteral(" [OK]"));
        return true;
    }
    void FatalError(const QorloError &error) override
    {
        QTextStream(stderr) << error.runTimeText() << Qt::endl;
        std::exit(1);
    }

private:
    static void Print(const QString &title, QString text)
    {
        text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
        QTextStream(stderr) << title << ": " << text << Qt::endl;
    }
};

} // namespace

int main(int argc, char **argv)
{
    // The report engine draws pages with QPainter, which needs a GUI application even without a screen.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    StderrPrompter prompter;
    CatchingApplication<QGuiApplication> app(argc, argv, prompter);
    try {
        const QString executable = QCoreApplication::applicationFilePath();
        QorloGlobals globals(AppFolder::Enter(executable), prompter);
        SingleInstance instance;
        Dispatcher dispatcher(globals);
        if (!StartUp(globals, instance, dispatcher, executable))
            return 1;
        // SIGTERM and SIGINT close the scheduler as closing its window would, once a running report
        // has stopped and the event loop has ended.
        CloseOnSignals([] { QCoreApplication::exit(0); });
        const int status = app.exec();
        CloseMainWindow(globals, false);
        return status;
    } catch (...) {
        prompter.FatalError(CaughtError());
    }
    return 1;
}
