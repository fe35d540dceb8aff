#include "engine/StopCheck.h"

#include "engine/EngineError.h"

#include <atomic>

namespace Engine {

namespace {

std::atomic<StopAsked> g_asked{nullptr};

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
}

} // namespace Engine
