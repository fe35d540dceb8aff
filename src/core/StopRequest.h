#pragma once
// The request to stop that SIGTERM makes: long work checks it at safe points (the turns of its waits,
// between the steps of a run) and unwinds with StopRequested, so that the program can close in time.

// Not an error: the unwinding of work that was told to stop. Nothing records it as a failure.
struct StopRequested
{
};

namespace StopRequest {

// Safe to call from a signal handler.
void Request() noexcept;
bool Requested() noexcept;
// Forgets the request; for tests, which stop and go on in one process.
void Clear() noexcept;
// Throws StopRequested once a stop has been requested.
void Check();

} // namespace StopRequest
