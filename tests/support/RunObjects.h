#pragma once
// The program's objects that a report run works with, over an application folder of their own, and
// the run's context on them, which records its warning boxes.

#include "AppObjects.h"
#include "SalesReport.h"
#include "connect/clsConnect.h"
#include "connect/clsMap.h"
#include "core/AppFolder.h"
#include "run/RunState.h"

namespace TestSupport {

struct RunObjects : AppObjects
{
    // Working folders, a mail server on the port, and item 7 "Sales" on sales.rpt with the fixture
    // sales table in sales.db.
    void addSalesItem(quint16 smtpPort)
    {
        AppFolder::MakeWorkingFolders(appPath);
        AppObjects::addSalesItem(smtpPort);
        MakeSalesDatabase(path(QStringLiteral("sales.db")));
    }
    // A stored value of the parameter `name` of item `reportID`.
    void storeParameter(const QString &reportID, const QString &name, const QString &value)
    {
        schedule.ParmAddNew();
        schedule.SetParmReportID(reportID);
        schedule.SetParmName(name);
        schedule.SetParmValue(value);
    }

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

} // namespace TestSupport
