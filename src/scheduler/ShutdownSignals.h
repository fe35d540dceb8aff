#pragma once
// SIGTERM and SIGINT: the stop request at once, so that a running report ends at its next check, and a
// close of the program once the event loop sees the signal.

#include <functional>

// Installs the handlers; `close` runs on the event loop of the calling thread after each signal.
void CloseOnSignals(const std::function<void()> &close);
