#pragma once
// The demo application folder in a test's own folder, loaded into the global objects, with the item
// windows over them: the item editor, the parameter and multi-run editors and the collection windows.

#include "Files.h"
#include "WindowFixture.h"
#include "core/AppFolder.h"
#include "ui/ItemWindows.h"

namespace TestSupport {

// Demo items, their files named in full: 1 and 2 programs, 3 "Sales by region" (sales-by-region.rpt, no
// parameters), 4 "Regional sales" (sales-parameters.rpt: Regions, a multiple string, and the dates From and
// To; a multi-run over regions.txt).
struct DemoWindows : GlobalsFixture
{
    DemoWindows()
    {
        CopyFolder(QStringLiteral(QORLO_SOURCE_DIR "/demo"), dir.path());
        AppFolder::MakeWorkingFolders(dir.path());
        schedule.Load(path(QStringLiteral("Qorlo.XML")));
        schedule.Active = false;
        // Runs find their files from the working folder: the items name them in full, as an insert does.
        for (int row = 0; row < schedule.Count(); ++row) {
            schedule.SetPosition(row);
            schedule.SetFile(path(schedule.File()));
            if (!schedule.Prompt().isEmpty())
                schedule.SetPrompt(path(schedule.Prompt()));
        }
    }
    // The item's place in the schedule, with the cursor on it.
    int select(const QString &reportID)
    {
        schedule.Find(reportID);
        return schedule.Position();
    }

    ItemWindows windows{globals, nullptr, nullptr};
};

} // namespace TestSupport
