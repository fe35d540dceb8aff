// To photograph another window, add one line to the list in Shots(): its object name and how to open it
// on the stage. Windows made as `new Window(globals, parent)` and filled by LoadSettings() need only
// Settings<Window>.
#include "Shots.h"

#include "Stage.h"

#include "ui/frmAbout.h"
#include "ui/frmAdv.h"
#include "ui/frmBackup.h"
#include "ui/frmAlert10.h"
#include "ui/frmBusinessCal.h"
#include "ui/frmCrystal.h"
#include "ui/frmConnect.h"
#include "ui/frmDates.h"
#include "ui/frmDomain.h"
#include "ui/frmFind.h"
#include "ui/frmFormat.h"
#include "ui/frmList.h"
#include "ui/frmLog.h"
#include "ui/frmLogSetting.h"
#include "ui/frmMulti.h"
#include "ui/frmPList.h"
#include "ui/frmPack.h"
#include "ui/frmPackList.h"
#include "ui/frmSMTP.h"
#include "ui/frmSchedule.h"
#include "ui/frmSendMail.h"
#include "ui/frmSetTimer.h"
#include "ui/frmSettings.h"
#include "ui/frmTableMap.h"
#include "ui/frmTextView.h"

#include <QComboBox>
#include <QTableWidget>

namespace {

template <class Window> QWidget *Settings(Stage &stage)
{
    auto *window = new Window(stage.globals, &stage.main);
    window->LoadSettings();
    window->open();
    return window;
}

// Two log-ons of the kinds the guide describes, the PostgreSQL one on show.
QWidget *Connections(Stage &stage)
{
    clsConnect &connections = stage.globals.Connections;
    const auto add = [&](const char *driver, const char *server, const char *database, const char *user) {
        connections.AddNew();
        connections.SetDLL(QLatin1String(driver));
        connections.SetServer(QLatin1String(server));
        connections.SetDatabase(QLatin1String(database));
        connections.SetUser(QLatin1String(user));
        connections.SetPassword(QStringLiteral("secret"));
    };
    add("psql", "db.example.com", "sales", "reports");
    add("odbc", "SalesWarehouse", "sales", "reports");
    return Settings<frmConnect>(stage);
}

QWidget *MainWindow(Stage &stage)
{
    stage.Select(QStringLiteral("3"));
    return &stage.main;
}

QWidget *ItemEditor(Stage &stage)
{
    stage.Select(QStringLiteral("4"));
    stage.items.OpenEditor(&stage.main);
    return &stage.items.Editor();
}

// The dynamic last day on show.
QWidget *Parameters(Stage &stage)
{
    stage.items.OpenParameters(stage.Select(QStringLiteral("4")), &stage.main);
    frmPList &window = stage.items.Parameters();
    window.findChild<QTableWidget *>(QStringLiteral("fgPList"))->setCurrentCell(2, 1);
    return &window;
}

QWidget *MultiRun(Stage &stage)
{
    stage.Select(QStringLiteral("4"));
    stage.items.OpenMultiRun(&stage.main);
    return &stage.items.MultiRun();
}

QWidget *Collection(Stage &stage)
{
    stage.items.OpenCollection(stage.Select(stage.collection), &stage.main);
    return &stage.items.Collection();
}

// One report marked to be added.
QWidget *CollectionPicker(Stage &stage)
{
    stage.items.OpenCollectionPicker(stage.collection, &stage.main);
    frmPackList &window = stage.items.CollectionPicker();
    Q_EMIT window.findChild<QTableWidget *>(QStringLiteral("fgList"))->cellClicked(1, 0);
    return &window;
}

QWidget *HelpMessage(Stage &stage)
{
    auto *window = new frmSendMail(stage.globals, &stage.main);
    window->ClearMessage();
    window->open();
    return window;
}

QWidget *TextView(Stage &stage)
{
    auto *window = new frmTextView(&stage.main);
    window->ShowFile(stage.globals.PathOf(QStringLiteral("regions.txt")));
    window->open();
    return window;
}

QWidget *About(Stage &stage)
{
    auto *window = new frmAbout(&stage.main);
    window->open();
    return window;
}

QWidget *FindReplace(Stage &stage)
{
    auto *window = new frmFind(stage.globals, &stage.main);
    window->open();
    return window;
}

// The demo's region list, as the list file editor opens it.
QWidget *ListFile(Stage &stage)
{
    return frmList::OpenList(stage.globals, &stage.main, frmList::Std,
                             stage.globals.PathOf(QStringLiteral("regions.txt")));
}

// The run log after the stage's start.
QWidget *RunLog(Stage &stage)
{
    auto *window = new frmLog(stage.globals, &stage.main);
    window->ShowLog();
    return window;
}

// The tables of the parameter report.
QWidget *TableMap(Stage &stage)
{
    stage.Select(QStringLiteral("4"));
    return frmTableMap::OpenTableMap(stage.globals, &stage.main, QStringLiteral("4"),
                                     stage.globals.Schedule.File());
}

// The grouped demo report with its group tree.
QWidget *Viewer(Stage &stage)
{
    return frmCrystal::ViewFile(stage.globals, stage.globals.PathOf(QStringLiteral("sales-by-region.rpt")));
}

// The alerts of the demo's large orders, the first one chosen.
QWidget *Alerts(Stage &stage)
{
    frmCrystal *viewer =
        frmCrystal::ViewFile(stage.globals, stage.globals.PathOf(QStringLiteral("large-orders-alert.rpt")));
    frmAlert10 *alerts = viewer->AlertWindow();
    alerts->findChild<QComboBox *>(QStringLiteral("cmbAlert"))->setCurrentIndex(1);
    return alerts;
}

} // namespace

const QList<Shot> &Shots()
{
    static const QList<Shot> shots = {
        {"frmMain", MainWindow},
        {"frmSchedule", ItemEditor},
        {"frmPList", Parameters},
        {"frmMulti", MultiRun},
        {"frmPack", Collection},
        {"frmPackList", CollectionPicker},
        {"frmSMTP", Settings<frmSMTP>},
        {"frmDomain", Settings<frmDomain>},
        {"frmBackup", Settings<frmBackup>},
        {"frmAdv", Settings<frmAdv>},
        {"frmSetTimer", Settings<frmSetTimer>},
        {"frmSettings", Settings<frmSettings>},
        {"frmSendMail", HelpMessage},
        {"frmTextView", TextView},
        {"frmAbout", About},
        {"frmBusinessCal", Settings<frmBusinessCal>},
        {"frmDates", Settings<frmDates>},
        {"frmFormat", Settings<frmFormat>},
        {"frmList", ListFile},
        {"frmFind", FindReplace},
        {"frmLog", RunLog},
        {"frmLogSetting", Settings<frmLogSetting>},
        {"frmConnect", Connections},
        {"frmTableMap", TableMap},
        {"frmCrystal", Viewer},
        {"frmAlert10", Alerts},
    };
    return shots;
}
