#pragma once
// The windows the screenshot program photographs, each by the object name of its window.

#include <QList>
#include <functional>

class QWidget;
struct Stage;

struct Shot
{
    // The object name of the window, which names its PNG file.
    const char *name;
    // Opens the window on the stage, filled as an operator would see it, and returns it.
    std::function<QWidget *(Stage &)> open;
};

const QList<Shot> &Shots();
