#pragma once
// The program's objects that a report run works with, over an application folder of their own, and
// the run's context on them, which records its warning boxes.

#include "../engine/EngineFixtures.h"

#include "connect/clsConnect.h"
#include "connect/clsMap.h"
#include "core/AppFolder.h"
#include "log/clsLog.h"
#include "run/RunState.h"
#include "store/clsSchedule.h"

#include <QStringList>
#include <QTemporaryDir>

struct RunObjects
{
    RunObjects() = default;
    RunObjects(const RunObjects &) = delete;
    RunObjects &operator=(const RunObjects &) = delete;

    QString path(const QString &name) const { return folder.filePath(name); }
    // "ID|text" of each entry of the run log file.
    QStringList logEntries() const
    {
        clsLog saved(appPath);
        saved.Load(saved.FileName());
        QStringList entries;
        for (int row = 0; row < saved.Count(); ++row)
            entries.append(saved.CellAt(row, clsLog::ColReportID) + QLatin1Char('|') +
                           saved.CellAt(row, clsLog::ColText));
        return entries;
    }
    // Working folders, a mail server on the port, and item 7 "Sales" on the report file sales.rpt with
    // the fixture sales table in sales.db.
    void AddSalesItem(quint16 smtpPort)
    {
        AppFolder::MakeWorkingFolders(appPath);
        schedule.SMTP_Server = QStringLiteral("127.0.0.1");
        schedule.SMTP_From = QStringLiteral("scheduler@example.com");
        schedule.SMTP_Port = smtpPort;
        schedule.SMTPDelay = 0;
        schedule.AddNew();
        schedule.SetReportID(QStringLiteral("7"));
        schedule.SetName(QStringLiteral("Sales"));
        schedule.SetFile(path(QStringLiteral("sales.rpt")));
        EngineFixtures::MakeSalesDatabase(path(QStringLiteral("sales.db")));
    }
    // The state the dispatcher leaves for the item at the cursor when it hands it over.
    void startItem()
    {
        schedule.ProcessingID = schedule.ReportID();
        schedule.ProcessingName = schedule.Name();
    }

    QTemporaryDir folder;
    QString appPath = folder.path();
    clsSchedule schedule{appPath};
    clsLog log{appPath};
    clsConnect connections{appPath};
    clsMap tableMap{appPath};
    RunState state;
    // "TITLE: TEXT" of each warning box.
    QStringList warnings;
    RunContext run{schedule,
                   log,
                   connections,
                   tableMap,
                   state,
                   appPath,
                   [] {},
                   [this](const QString &title, const QString &text) {
                       warnings.append(title + QStringLiteral(": ") + text);
                   }};
};
