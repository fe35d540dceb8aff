#pragma once
// A long report stops when the program that runs it asks (at shutdown, say): the engine asks between
// records and between pages, and ends the work with EngineError::Stopped.

namespace Engine {

// Whether the program wants the running report to stop. Called often, from the thread that runs the
// report: it must be cheap.
using StopAsked = bool (*)() noexcept;

// One for the whole process, as shutdown is; none (never stop) until it is set.
void SetStopCheck(StopAsked asked) noexcept;
// Raises EngineError::Stopped once the program asks to stop.
void CheckStop();

} // namespace Engine
