#pragma once
// The collection window: a collection item's name and its member reports in the order they run.

#include <QDialog>

class ItemWindows;
class QLabel;
class QLineEdit;
class QMenuBar;
class QTableWidget;

class frmPack : public QDialog
{
    Q_OBJECT
public:
    // The columns of fgTable; the hidden last one holds the member's row in the collection table.
    enum Column { colStep, colID, colName, colFile, colEntry, ColumnCount };

    explicit frmPack(ItemWindows &windows, QWidget *parent = nullptr);

    // Shows the collection at `position` of the schedule.
    void LoadForm(int position);
    // Adds a new collection item to the schedule, saves it and shows it.
    void NewCollection();
    // Shows the collection on show again, as the schedule now holds it.
    void Reload();

private:
    void BuildMenus(QMenuBar *menus);
    void SaveCollection();
    void ScheduleCollection();
    void SetDestination();
    void AddReport();
    void RemoveReport();
    void Move(int step);
    // The selected grid row, or -1 after telling the operator to select one.
    int SelectedRow();
    int EntryOf(int row) const;

    ItemWindows &m_windows;
    QString m_id;
    QLineEdit *txtPack = nullptr;
    QLabel *lPackID = nullptr;
    QLabel *lCollectionName = nullptr;
    QLineEdit *txtField = nullptr;
    QTableWidget *fgTable = nullptr;
};
