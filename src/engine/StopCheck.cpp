#include "engine/StopCheck.h"

#include "engine/EngineError.h"

#include <QElapsedTimer>

#include <atomic>

namespace Engine {

namespace {

std::atomic<StopAsked> g_asked{nullptr};

// The hooks of the work under way on this thread, the innermost last, and when one was last called.
thread_local InterruptionHook *t_hook = nullptr;
thread_local QElapsedTimer t_sinceHook;

constexpr qint64 kHookIntervalMs = 20;

} // namespace

void SetStopCheck(StopAsked asked) noexcept
{
    g_asked.store(asked);
}

void CheckStop()
{
    const StopAsked asked = g_asked.load(std::memory_order_relaxed);
    if (asked && asked())
        throw EngineError(EngineError::Stopped, QStringLiteral("The report was stopped before it was done"));
    if (t_hook && t_sinceHook.hasExpired(kHookIntervalMs)) {
        // A hook that pumps events may install hooks of its own meanwhile; they end before it returns.
        t_hook->m_hook();
        t_sinceHook.start();
    }
}

InterruptionHook::InterruptionHook(std::function<void()> hook) : m_hook(std::move(hook)), m_previous(t_hook)
{
    t_hook = this;
    t_sinceHook.start();
}

InterruptionHook::~InterruptionHook()
{
    t_hook = m_previous;
}

} // namespace Engine
