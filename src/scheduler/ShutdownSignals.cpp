#include "ShutdownSignals.h"

#include "core/StopRequest.h"
#include "engine/StopCheck.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// The handler's way to the event loop: one byte a signal. One pair for the process, as signals are.
int g_signalPipe[2] = {-1, -1};

void OnSignal(int)
{
    StopRequest::Request();
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(g_signalPipe[1], &byte, 1);
}

} // namespace

void CloseOnSignals(const std::function<void()> &close)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [close] {
        char byte;
        [[maybe_unused]] const auto read = ::read(g_signalPipe[0], &byte, 1);
        close();
    });
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    // A report that is running when the signal comes stops between its records or pages.
    Engine::SetStopCheck(&StopRequest::Requested);
}
