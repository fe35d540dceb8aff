// The scheduler without windows, for servers: message boxes become lines on standard error and
// questions take fixed answers.
#include "core/AppFolder.h"
#include "core/QorloError.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/SingleInstance.h"
#include "scheduler/StartUp.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <csignal>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

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

int g_signalPipe[2] = {-1, -1};

void OnSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(g_signalPipe[1], &byte, 1);
}

// SIGTERM and SIGINT close the scheduler as closing its window would, once the event loop sees them.
void CloseOnSignals(QorloGlobals &globals)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [&globals] {
        CloseMainWindow(globals, false);
        QCoreApplication::exit(0);
    });
    std::signal(SIGTERM, OnSignal);
    std::signal(SIGINT, OnSignal);
}

} // namespace

int main(int argc, char **argv)
{
    // The report engine draws pages with QPainter, which needs a GUI application even without a screen.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    StderrPrompter prompter;
    try {
        const QString executable = QCoreApplication::applicationFilePath();
        QorloGlobals globals(AppFolder::Enter(executable), prompter);
        SingleInstance instance;
        Dispatcher dispatcher(globals);
        if (!StartUp(globals, instance, dispatcher, executable))
            return 1;
        CloseOnSignals(globals);
        return app.exec();
    } catch (const QorloError &error) {
        prompter.FatalError(error);
    }
    return 1;
}
