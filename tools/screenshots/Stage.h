#pragma once
// What the windows are photographed on: a copy of the demo application folder with its global objects,
// a collection of two of its reports, the main window and the item windows over them.

#include "TestPrompter.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"
#include "ui/ItemWindows.h"
#include "ui/frmMain.h"

#include <QDir>
#include <QTemporaryDir>

struct Stage
{
    Stage();

    // The item's place in the schedule, with the cursor on it and its row selected in the main window.
    int Select(const QString &reportID);

    // Named so that paths on show read as an application folder's.
    QTemporaryDir folder{QDir::tempPath() + QStringLiteral("/QorloMANAGER-XXXXXX")};
    // Boxes and questions are answered Yes without being shown.
    TestSupport::TestPrompter prompter{true};
    QorloGlobals globals{folder.path(), prompter};
    Dispatcher dispatcher{globals};
    frmMain main{globals, dispatcher};
    ItemWindows items{globals, &dispatcher, &main};
    // The ReportID of the collection the stage adds.
    QString collection;
};
