#pragma once
// A long report stops when the program that runs it asks (at shutdown, say), and a window that shows it
// keeps its events flowing meanwhile: the engine calls CheckStop between records and between pages.

#include <functional>

namespace Engine {

// Whether the program wants the running report to stop. Called often, from the thread that runs the
// report: it must be cheap.
using StopAsked = bool (*)() noexcept;

// One for the whole process, as shutdown is; none (never stop) until it is set.
void SetStopCheck(StopAsked asked) noexcept;
// Raises EngineError::Stopped once the program asks to stop; otherwise calls the innermost
// InterruptionHook of this thread, at most about every 20 ms. A hook may raise Stopped itself.
void CheckStop();

// Installs a hook for its lifetime and restores the one before it.
class InterruptionHook
{
public:
    explicit InterruptionHook(std::function<void()> hook);
    ~InterruptionHook();
    InterruptionHook(const InterruptionHook &) = delete;
    InterruptionHook &operator=(const InterruptionHook &) = delete;

private:
    friend void CheckStop();

    std::function<void()> m_hook;
    InterruptionHook *m_previous;
};

} // namespace Engine
