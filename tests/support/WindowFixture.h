#pragma once
// What the window tests share: an application folder with its global objects behind a test prompter,
// the schedule as its file holds it, and controls found by their object names.

#include "TestPrompter.h"
#include "scheduler/QorloGlobals.h"

#include <QAbstractButton>
#include <QTemporaryDir>
#include <memory>

namespace TestSupport {

// The control called `name` below `window`; a missing control ends the test program.
template <class Control = QWidget> Control *Child(const QObject *window, const char *name)
{
    auto *control = window->findChild<Control *>(QLatin1String(name));
    if (!control)
        qFatal("no control %s", name);
    return control;
}

inline void Click(const QObject *window, const char *name)
{
    Child<QAbstractButton>(window, name)->click();
}

struct GlobalsFixture
{
    QString path(const QString &name) const { return dir.filePath(name); }
    // The schedule as its file holds it.
    std::unique_ptr<clsSchedule> saved() const
    {
        auto file = std::make_unique<clsSchedule>(dir.path());
        file->Load(path(QStringLiteral("Qorlo.XML")));
        return file;
    }

    QTemporaryDir dir;
    TestPrompter prompter;
    QorloGlobals globals{dir.path(), prompter};
    clsSchedule &schedule = globals.Schedule;
};

} // namespace TestSupport
