#pragma once
// A hook the engine calls between records and between pages, so that a window can keep its events
// flowing during a long report and stop it: the hook raises EngineError::Halted to end the work.

#include <functional>

namespace Engine {

// Calls the hook installed last, if any.
void PollInterruption();

// Installs a hook for its lifetime and restores the one before it.
class InterruptionHook
{
public:
    explicit InterruptionHook(std::function<void()> hook);
    ~InterruptionHook();
    InterruptionHook(const InterruptionHook &) = delete;
    InterruptionHook &operator=(const InterruptionHook &) = delete;

private:
    friend void PollInterruption();

    std::function<void()> m_hook;
    InterruptionHook *m_previous;
};

} // namespace Engine
