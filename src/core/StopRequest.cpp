#include "StopRequest.h"

#include <atomic>

namespace StopRequest {

namespace {

// Lock-free, so that a signal handler may set it; one for the whole process, as signals are.
std::atomic<bool> g_requested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

} // namespace

void Request() noexcept
{
    g_requested.store(true);
}

bool Requested() noexcept
{
    return g_requested.load();
}

void Clear() noexcept
{
    g_requested.store(false);
}

void Check()
{
    if (Requested())
        throw StopRequested();
}

} // namespace StopRequest
