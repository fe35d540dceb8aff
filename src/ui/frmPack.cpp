#include "frmPack.h"

#include "DesktopOpen.h"
#include "ItemWindows.h"
#include "TabOrder.h"
#include "WindowHandler.h"

#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const QString kTitle = QStringLiteral("Report Collection");

} // namespace

frmPack::frmPack(ItemWindows &windows, QWidget *parent) : QDialog(parent), m_windows(windows)
{
    setObjectName(QStringLiteral("frmPack"));
    setWindowTitle(kTitle);
    txtPack = new QLineEdit(this);
    txtPack->setObjectName(QStringLiteral("txtPack"));
    lPackID = new QLabel(this);
    lPackID->setObjectName(QStringLiteral("lPackID"));
    lCollectionName = new QLabel(this);
    lCollectionName->setObjectName(QStringLiteral("lCollectionName"));
    txtField = new QLineEdit(this);
    txtField->setObjectName(QStringLiteral("txtField"));
    txtField->setReadOnly(true);
    fgTable = new QTableWidget(0, ColumnCount, this);
    fgTable->setObjectName(QStringLiteral("fgTable"));
    fgTable->setHorizontalHeaderLabels({QStringLiteral("Step"), QStringLiteral("ID"), QStringLiteral("Name"),
                                        QStringLiteral("File"), QString()});
    fgTable->setColumnHidden(colEntry, true);
    fgTable->verticalHeader()->hide();
    fgTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fgTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    fgTable->setSelectionMode(QAbstractItemView::SingleSelection);
    fgTable->setColumnWidth(colStep, 50);
    fgTable->setColumnWidth(colID, 50);
    fgTable->setColumnWidth(colName, 180);
    fgTable->horizontalHeader()->setStretchLastSection(true);
    connect(fgTable, &QTableWidget::currentCellChanged, this, [this](int row, int column) {
        const QTableWidgetItem *cell = fgTable->item(row, column);
        txtField->setText(cell ? cell->text() : QString());
    });

    auto *layout = new QVBoxLayout(this);
    auto *menus = new QMenuBar(this);
    layout->setMenuBar(menus);
    BuildMenus(menus);
    auto *fields = new QFormLayout;
    fields->addRow(QStringLiteral("&Name"), txtPack);
    fields->addRow(QStringLiteral("ID"), lPackID);
    fields->addRow(QStringLiteral("Collection Name"), lCollectionName);
    layout->addLayout(fields);
    layout->addWidget(fgTable, 1);
    auto *field = new QFormLayout;
    field->addRow(QStringLiteral("Field &Value"), txtField);
    layout->addLayout(field);
    resize(QSize(560, 360).expandedTo(minimumSizeHint()));
    SetTabOrder({txtPack, fgTable, txtField});
}

void frmPack::BuildMenus(QMenuBar *menus)
{
    const auto add = [this](QMenu *menu, const char *name, const QString &caption, auto command) {
        QAction *entry = menu->addAction(caption);
        entry->setObjectName(QLatin1String(name));
        connect(entry, &QAction::triggered, this,
                [this, command] { RunHandler(m_windows.globals.prompter, command); });
    };
    QMenu *collection = menus->addMenu(QStringLiteral("&Collection"));
    add(collection, "mnuNewCollection", QStringLiteral("&New"), [this] { NewCollection(); });
    add(collection, "mnuSaveCollection", QStringLiteral("&Save"), [this] { SaveCollection(); });
    add(collection, "mnuScheduleCollection", QStringLiteral("Set Schedule"),
        [this] { ScheduleCollection(); });
    collection->addSeparator();
    add(collection, "mnuExit", QStringLiteral("E&xit"), [this] { reject(); });
    QMenu *reports = menus->addMenu(QStringLiteral("&Reports"));
    add(reports, "mnuAddReport", QStringLiteral("&Add Report"), [this] { AddReport(); });
    add(reports, "mnuRemove", QStringLiteral("&Remove Report"), [this] { RemoveReport(); });
    add(reports, "mnuMoveUp", QStringLiteral("&Move Up"), [this] { Move(-1); });
    add(reports, "mnuMoveDown", QStringLiteral("Move &Down"), [this] { Move(1); });
    add(reports, "mnuSetDest", QStringLiteral("&Set Destination"), [this] { SetDestination(); });
    QMenu *help = menus->addMenu(QStringLiteral("&Help"));
    add(help, "mnuHelp", QStringLiteral("&Help"), [this] {
        OpenHelpPage(m_windows.globals.prompter, m_windows.globals.AppPath, QStringLiteral("collect.htm"));
    });
}

void frmPack::LoadForm(int position)
{
    clsSchedule &schedule = m_windows.globals.Schedule;
    schedule.SetPosition(position);
    m_id = schedule.ReportID();
    txtPack->setText(schedule.Name());
    lPackID->setText(m_id);
    lCollectionName->setText(schedule.CollectionName());
    txtField->clear();
    fgTable->setRowCount(0);
    int step = 0;
    for (int entry = 0; entry < schedule.CollectionCount(); ++entry) {
        schedule.SetCollectionPosition(entry);
        if (schedule.CollectionID() != m_id)
            continue;
        const QStringList cells{QString::number(++step), schedule.CollectionItem(),
                                schedule.CollectionReport(), schedule.CollectionFile(),
                                QString::number(entry)};
        const int row = fgTable->rowCount();
        fgTable->insertRow(row);
        for (int column = 0; column < ColumnCount; ++column)
            fgTable->setItem(row, column, new QTableWidgetItem(cells.at(column)));
    }
}

void frmPack::Reload()
{
    clsSchedule &schedule = m_windows.globals.Schedule;
    schedule.Find(m_id);
    LoadForm(schedule.Position());
}

void frmPack::NewCollection()
{
    QorloGlobals &globals = m_windows.globals;
    clsSchedule &schedule = globals.Schedule;
    schedule.AddNew();
    schedule.SetName(QStringLiteral("New Collection"));
    schedule.SetFile(QStringLiteral("COLLECTION"));
    schedule.SetSchedule(QStringLiteral("N"));
    schedule.SetFreqTimes(QStringLiteral("1"));
    schedule.SetFrequency(QStringLiteral("W"));
    globals.SaveSchedule();
    LoadForm(schedule.Position());
}

void frmPack::SaveCollection()
{
    clsSchedule &schedule = m_windows.globals.Schedule;
    schedule.Find(m_id);
    schedule.SetName(txtPack->text());
    schedule.SetCollectionName(txtPack->text());
    m_windows.globals.SaveSchedule();
    lCollectionName->setText(txtPack->text());
}

void frmPack::ScheduleCollection()
{
    m_windows.globals.Schedule.Find(m_id);
    m_windows.OpenEditor(this);
}

// The member's own item, so that its destination can be set.
void frmPack::SetDestination()
{
    const int row = SelectedRow();
    if (row < 0)
        return;
    m_windows.globals.Schedule.Find(fgTable->item(row, colID)->text());
    m_windows.OpenEditor(this);
}

void frmPack::AddReport()
{
    m_windows.OpenCollectionPicker(m_id, this);
}

// The member's own item stays in the schedule.
void frmPack::RemoveReport()
{
    const int row = SelectedRow();
    if (row < 0)
        return;
    if (!m_windows.globals.prompter.AskYesNo(
            kTitle, QStringLiteral("Confirm you wish to remove report from the Collection?")))
        return;
    m_windows.globals.Schedule.CollectionDeleteRow(EntryOf(row));
    Reload();
}

void frmPack::Move(int step)
{
    const int row = SelectedRow();
    const int neighbour = row + step;
    if (row < 0 || neighbour < 0 || neighbour >= fgTable->rowCount())
        return;
    m_windows.globals.Schedule.CollectionSwap(EntryOf(row), EntryOf(neighbour));
    Reload();
    fgTable->selectRow(neighbour);
}

int frmPack::SelectedRow()
{
    const QList<QTableWidgetItem *> selected = fgTable->selectedItems();
    if (!selected.isEmpty())
        return selected.first()->row();
    m_windows.globals.prompter.ShowMessage(kTitle, QStringLiteral("Please select a report from the list"));
    return -1;
}

int frmPack::EntryOf(int row) const
{
    return fgTable->item(row, colEntry)->text().toInt();
}
