#pragma once
// What the window tests share: an application folder with its global objects behind a test prompter,
// the schedule as its file holds it, and controls found by their object names.

#include "TestPrompter.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/ScheduleView.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
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

inline void Trigger(const QObject *window, const char *name)
{
    Child<QAction>(window, name)->trigger();
}

// The texts of a grid's column, top to bottom.
inline QStringList ColumnTexts(const QAbstractItemView *grid, int column = 0)
{
    QStringList texts;
    for (int row = 0; row < grid->model()->rowCount(); ++row)
        texts.append(grid->model()->index(row, column).data().toString());
    return texts;
}

// The entries of a list, in order.
inline QStringList ItemTexts(const QComboBox *list)
{
    QStringList texts;
    for (int entry = 0; entry < list->count(); ++entry)
        texts.append(list->itemText(entry));
    return texts;
}

// The ReportIDs of the grid's rows, top to bottom.
inline QStringList RowIDs(const ScheduleView &view)
{
    QStringList ids;
    for (int row = 1; row < view.Rows(); ++row)
        ids.append(view.RowReportID(row));
    return ids;
}

inline void SelectItem(ScheduleView &view, const QString &reportID)
{
    view.SetSelectedRow(int(RowIDs(view).indexOf(reportID)) + 1);
}

// Calls `act` on the modal dialog that a command is about to open and wait for, once it shows (within 10
// seconds). Call it before the command. A dialog that `act` leaves open is rejected, so that the test
// goes on and fails on what the dialog did not do.
inline void WhenDialogShows(const std::function<void(QDialog &)> &act)
{
    auto *poll = new QTimer;
    auto tries = std::make_shared<int>(0);
    QObject::connect(poll, &QTimer::timeout, [poll, tries, act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog && ++*tries < 500)
            return;
        poll->stop();
        poll->deleteLater();
        if (!dialog)
            return;
        act(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    poll->start(20);
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
