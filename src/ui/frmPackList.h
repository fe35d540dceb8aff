#pragma once
// The picker that adds reports to a collection: the schedule's items but collections, filtered, each
// row marked or unmarked by a click.

#include <QDialog>

class ItemWindows;
class QActionGroup;
class QMenuBar;
class QTableWidget;

class frmPackList : public QDialog
{
    Q_OBJECT
public:
    explicit frmPackList(ItemWindows &windows, QWidget *parent = nullptr);

    // Lists the items for the collection `collectionID`, all of them.
    void SetCollection(const QString &collectionID);
    // Lists the items that pass `filter`: "All" (or empty), "Scheduled", "Unscheduled", "Collected".
    void ShowItems(const QString &filter);
    bool IsMarked(int row) const;

private:
    void BuildMenus(QMenuBar *menus);
    void ToggleMark(int row);
    void SetMark(int row, bool marked);
    void AddToCollection();

    ItemWindows &m_windows;
    QString m_collectionID;
    QString m_filter;
    QTableWidget *fgList = nullptr;
    QActionGroup *m_views = nullptr;
};
