#include "frmTableMap.h"

#include "HandlerErrors.h"

#include "run/ReportConnections.h"
#include "scheduler/QorloGlobals.h"

#include <QHeaderView>
#include <QMenuBar>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kColumnTwips[] = {500, 4500, 4500};

} // namespace

frmTableMap::frmTableMap(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmTableMap"));
    setWindowTitle(QStringLiteral("Table Mapping"));
    fgTables = new QTableWidget(0, 3, this);
    fgTables->setObjectName(QStringLiteral("fgTables"));
    fgTables->setHorizontalHeaderLabels(
        {QStringLiteral("Report"), QStringLiteral("Database"), QStringLiteral("New Database")});
    fgTables->verticalHeader()->hide();
    for (int column = 0; column < 3; ++column)
        fgTables->setColumnWidth(column, kColumnTwips[column] / kTwipsPerPixel);
    fgTables->setEditTriggers(QAbstractItemView::AllEditTriggers);

    auto *bar = new QMenuBar(this);
    QMenu *map = bar->addMenu(QStringLiteral("&Map"));
    const auto add = [&](const char *name, const QString &caption, auto slot) {
        QAction *entry = map->addAction(caption);
        entry->setObjectName(QLatin1String(name));
        connect(entry, &QAction::triggered, this,
                [this, slot] { RunHandler(m_globals.prompter, [&] { slot(); }); });
    };
    add("mnuInsert", QStringLiteral("&Insert Map"), [this] { mnuInsert_Click(); });
    add("mnuDelete", QStringLiteral("&Delete Map"), [this] { mnuDelete_Click(); });
    add("mnuExamine", QStringLiteral("&Examine Report"), [this] { mnuExamine_Click(); });
    add("mnuSave", QStringLiteral("&Save"), [this] { mnuSave_Click(); });
    map->addSeparator();
    add("mnuExit", QStringLiteral("E&xit"), [this] { close(); });

    auto *layout = new QVBoxLayout(this);
    layout->setMenuBar(bar);
    layout->addWidget(fgTables);
    resize(680, 320);
}

frmTableMap *frmTableMap::OpenTableMap(QorloGlobals &globals, QWidget *parent, const QString &reportID,
                                       const QString &file)
{
    auto *window = new frmTableMap(globals, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->ShowItem(reportID, file);
    window->open();
    return window;
}

void frmTableMap::ShowItem(const QString &reportID, const QString &file)
{
    m_reportID = reportID;
    m_file = file;
    RunHandler(m_globals.prompter, [&] { ReportBinding::ExamineReport(m_globals.TableMap, reportID, file); });
    FillGrid();
}

void frmTableMap::FillGrid()
{
    clsMap &map = m_globals.TableMap;
    fgTables->setRowCount(map.Count());
    for (int row = 0; row < map.Count(); ++row) {
        map.Locate(qint16(row));
        const QString cells[] = {map.ReportID(), map.OriginalTable(), map.NewTable()};
        for (int column = 0; column < 3; ++column)
            fgTables->setItem(row, column, new QTableWidgetItem(cells[column]));
    }
}

void frmTableMap::mnuInsert_Click()
{
    const int row = fgTables->rowCount();
    fgTables->insertRow(row);
    for (int column = 0; column < 3; ++column)
        fgTables->setItem(row, column, new QTableWidgetItem);
    fgTables->setCurrentCell(row, 0);
}

void frmTableMap::mnuDelete_Click()
{
    if (fgTables->currentRow() >= 0)
        fgTables->removeRow(fgTables->currentRow());
}

void frmTableMap::mnuExamine_Click()
{
    ReportBinding::ExamineReport(m_globals.TableMap, m_reportID, m_file);
    FillGrid();
}

// The map is built afresh and replaces the one in use only when every row fitted.
void frmTableMap::mnuSave_Click()
{
    // A cell still being edited counts with its new text.
    if (QWidget *editor = fgTables->indexWidget(fgTables->currentIndex()))
        QMetaObject::invokeMethod(fgTables, "commitData", Qt::DirectConnection, Q_ARG(QWidget *, editor));
    clsMap map(m_globals.AppPath);
    for (int row = 0; row < fgTables->rowCount(); ++row) {
        map.AddNew();
        map.SetReportID(fgTables->item(row, 0)->text());
        map.SetOriginalTable(fgTables->item(row, 1)->text());
        map.SetNewTable(fgTables->item(row, 2)->text());
    }
    map.Save();
    m_globals.TableMap = map;
}
