#include "engine/Interruption.h"

namespace Engine {

namespace {

// The engine runs on one thread; the innermost hook is the one of the work under way.
InterruptionHook *g_current = nullptr;

} // namespace

InterruptionHook::InterruptionHook(std::function<void()> hook)
    : m_hook(std::move(hook)), m_previous(g_current)
{
    g_current = this;
}

InterruptionHook::~InterruptionHook()
{
    g_current = m_previous;
}

void PollInterruption()
{
    if (g_current) {
        // A hook that pumps events may install hooks of its own meanwhile; they end before it returns.
        g_current->m_hook();
    }
}

} // namespace Engine
