#include "frmPackList.h"

#include "DesktopOpen.h"
#include "ItemWindows.h"
#include "WindowHandler.h"
#include "frmPack.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QActionGroup>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QShortcut>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

// Rows are marked by their colour alone: green marked, white not.
const QColor kMarked(0, 255, 0);
const QColor kUnmarked(255, 255, 255);

bool Passes(const QString &filter, const QString &state)
{
    if (filter == QLatin1String("Scheduled"))
        return state == QLatin1String("Y");
    if (filter == QLatin1String("Unscheduled"))
        return state != QLatin1String("Y");
    if (filter == QLatin1String("Collected"))
        return state == QLatin1String("C");
    return true;
}

} // namespace

frmPackList::frmPackList(ItemWindows &windows, QWidget *parent) : QDialog(parent), m_windows(windows)
{
    setObjectName(QStringLiteral("frmPackList"));
    setWindowTitle(QStringLiteral("Add Reports to Collection"));
    fgList = new QTableWidget(0, 3, this);
    fgList->setObjectName(QStringLiteral("fgList"));
    fgList->verticalHeader()->hide();
    fgList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fgList->setSelectionMode(QAbstractItemView::NoSelection);
    fgList->setColumnWidth(0, 50);
    fgList->setColumnWidth(1, 200);
    fgList->horizontalHeader()->setStretchLastSection(true);
    connect(fgList, &QTableWidget::cellClicked, this, [this](int row) { ToggleMark(row); });
    auto *space = new QShortcut(QKeySequence(Qt::Key_Space), fgList, nullptr, nullptr, Qt::WidgetShortcut);
    connect(space, &QShortcut::activated, this, [this] { ToggleMark(fgList->currentRow()); });

    auto *layout = new QVBoxLayout(this);
    auto *menus = new QMenuBar(this);
    layout->setMenuBar(menus);
    BuildMenus(menus);
    auto *hint = new QLabel(
        QStringLiteral(
            "Click the reports to add (Space marks the current one), then Collection, Add to Collection."),
        this);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    layout->addWidget(fgList);
    resize(QSize(520, 360).expandedTo(minimumSizeHint()));
}

void frmPackList::BuildMenus(QMenuBar *menus)
{
    QMenu *collection = menus->addMenu(QStringLiteral("&Collection"));
    QAction *add = collection->addAction(QStringLiteral("&Add to Collection"));
    add->setObjectName(QStringLiteral("mnuAddCollection"));
    connect(add, &QAction::triggered, this,
            [this] { RunHandler(m_windows.globals.prompter, [this] { AddToCollection(); }); });
    collection->addSeparator();
    QAction *exit = collection->addAction(QStringLiteral("&Exit"), this, [this] { reject(); });
    exit->setObjectName(QStringLiteral("mnuExit"));

    QMenu *view = menus->addMenu(QStringLiteral("&View"));
    m_views = new QActionGroup(this);
    const std::pair<const char *, const char *> filters[] = {{"mnuViewAll", "All"},
                                                             {"mnuViewScheduled", "Scheduled"},
                                                             {"mnuViewUnscheduled", "Unscheduled"},
                                                             {"mnuViewCollected", "Collected"}};
    for (const auto &[name, filter] : filters) {
        const QString text = QLatin1String(filter);
        QAction *entry = view->addAction(QLatin1Char('&') + text + QStringLiteral(" Reports"));
        entry->setObjectName(QLatin1String(name));
        entry->setCheckable(true);
        m_views->addAction(entry);
        connect(entry, &QAction::triggered, this, [this, text] { ShowItems(text); });
    }
    QMenu *help = menus->addMenu(QStringLiteral("&Help"));
    QAction *helpPage = help->addAction(QStringLiteral("&Help"), this, [this] {
        OpenHelpPage(m_windows.globals.prompter, m_windows.globals.AppPath, QStringLiteral("collecta.htm"));
    });
    helpPage->setObjectName(QStringLiteral("mnuHelp"));
}

void frmPackList::SetCollection(const QString &collectionID)
{
    m_collectionID = collectionID;
    m_views->actions().constFirst()->setChecked(true);
    ShowItems(QStringLiteral("All"));
}

// Collections are never listed, so that collections do not nest.
void frmPackList::ShowItems(const QString &filter)
{
    m_filter = filter;
    const clsSchedule &schedule = m_windows.globals.Schedule;
    fgList->setRowCount(0);
    fgList->setHorizontalHeaderLabels({QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("File")});
    for (int item = 0; item < schedule.Count(); ++item) {
        const QString file = schedule.Cell(item, clsSchedule::colFile);
        if (file == QLatin1String("COLLECTION") ||
            !Passes(filter, schedule.Cell(item, clsSchedule::colSchedule)))
            continue;
        const QStringList cells{schedule.Cell(item, clsSchedule::colReportID),
                                schedule.Cell(item, clsSchedule::colName), file};
        const int row = fgList->rowCount();
        fgList->insertRow(row);
        for (int column = 0; column < cells.size(); ++column)
            fgList->setItem(row, column, new QTableWidgetItem(cells.at(column)));
        SetMark(row, false);
    }
}

bool frmPackList::IsMarked(int row) const
{
    return fgList->item(row, 0)->background().color() == kMarked;
}

void frmPackList::ToggleMark(int row)
{
    if (row >= 0)
        SetMark(row, !IsMarked(row));
}

void frmPackList::SetMark(int row, bool marked)
{
    for (int column = 0; column < fgList->columnCount(); ++column)
        fgList->item(row, column)->setBackground(marked ? kMarked : kUnmarked);
}

// Confirming with nothing marked adds nothing, and still saves.
void frmPackList::AddToCollection()
{
    QorloGlobals &globals = m_windows.globals;
    clsSchedule &schedule = globals.Schedule;
    int count = 0;
    for (int row = 0; row < fgList->rowCount(); ++row)
        count += IsMarked(row) ? 1 : 0;
    if (!globals.prompter.AskYesNo(windowTitle(), QStringLiteral("Confirm you wish to load ") +
                                                      QString::number(count) +
                                                      QStringLiteral("\r\nreports into this collection")))
        return;
    for (int row = 0; row < fgList->rowCount(); ++row) {
        if (!IsMarked(row))
            continue;
        schedule.NewCollectionItem();
        schedule.SetCollectionID(m_collectionID);
        schedule.SetCollectionItem(fgList->item(row, 0)->text());
        schedule.CollectionSetReport();
        SetMark(row, false);
    }
    globals.SaveSchedule();
    m_windows.Collection().Reload();
}
