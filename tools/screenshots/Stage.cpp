#include "Stage.h"

#include "Files.h"
#include "core/AppFolder.h"

Stage::Stage()
{
    TestSupport::CopyFolder(QStringLiteral(QORLO_SOURCE_DIR "/demo"), folder.path());
    AppFolder::MakeWorkingFolders(folder.path());
    clsSchedule &schedule = globals.Schedule;
    schedule.Load(globals.PathOf(QStringLiteral("Qorlo.XML")));
    schedule.Active = false;
    // Stored values of the parameter report: a fixed first day and a dynamic last one.
    schedule.ParmUpdate(QStringLiteral("4"), QStringLiteral("From"), QStringLiteral("10"),
                        QStringLiteral("Date(2024,03,01)"), QStringLiteral("First order date"));
    schedule.ParmUpdate(QStringLiteral("4"), QStringLiteral("To"), QStringLiteral("10"),
                        QStringLiteral("Month.End.TY-1"), QStringLiteral("Last order date"));
    schedule.AddNew();
    collection = schedule.ReportID();
    schedule.SetName(QStringLiteral("Morning reports"));
    schedule.SetCollectionName(QStringLiteral("Morning reports"));
    schedule.SetFile(QStringLiteral("COLLECTION"));
    schedule.SetSchedule(QStringLiteral("Y"));
    schedule.SetFrequency(QStringLiteral("Day(s)"));
    schedule.SetFreqTimes(QStringLiteral("1"));
    schedule.SetNextRun(QStringLiteral("01-Jan-2026 07:00"));
    for (const char *member : {"3", "4"}) {
        schedule.NewCollectionItem();
        schedule.SetCollectionID(collection);
        schedule.SetCollectionItem(QLatin1String(member));
    }
    globals.Viewer.ApplyStartDefaults();
    main.ShowWindow();
    globals.ViewTable();
    globals.DisplayCaption();
}

int Stage::Select(const QString &reportID)
{
    for (int row = 1; row < main.Rows(); ++row) {
        if (main.RowReportID(row) == reportID)
            main.SetSelectedRow(row);
    }
    globals.Schedule.Find(reportID);
    return globals.Schedule.Position();
}
