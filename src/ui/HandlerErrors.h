#pragma once
// A failure that a window's own handler raises shows its run-time error box and ends that handler
// only: the window stays open and the program and its schedule run on.

#include "core/QorloError.h"
#include "scheduler/Prompter.h"

// Runs the handler; false when it failed and the box was shown.
template <typename Handler> bool RunHandler(Prompter &prompter, Handler &&handler)
{
    try {
        handler();
        return true;
    } catch (const QorloError &error) {
        prompter.ShowMessage(QStringLiteral("QorloMANAGER"), error.runTimeText(), Prompter::Icon::Critical);
        return false;
    }
}
