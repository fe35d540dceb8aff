#pragma once
// Runs an event handler of a window. A failure it raises shows the run-time error box and ends that
// handler only: the window stays open, and the program and its schedule go on.

#include <functional>

class Prompter;

// True when the handler ran to its end.
bool RunHandler(Prompter &prompter, const std::function<void()> &handler);
