#pragma once
// The table map window: the map's rows in a grid edited in place, with the tables of one item's report
// added when it opens; Save rewrites the whole map.

#include <QDialog>

class QorloGlobals;
class QTableWidget;

class frmTableMap : public QDialog
{
    Q_OBJECT
public:
    explicit frmTableMap(QorloGlobals &globals, QWidget *parent = nullptr);

    // A new window on the item's report, shown; it is deleted when closed.
    static frmTableMap *OpenTableMap(QorloGlobals &globals, QWidget *parent, const QString &reportID,
                                     const QString &file);
    // Adds a row for each table of the item's report to the map, then shows the whole map.
    void ShowItem(const QString &reportID, const QString &file);

private:
    void FillGrid();
    void mnuInsert_Click();
    void mnuDelete_Click();
    void mnuExamine_Click();
    void mnuSave_Click();

    QorloGlobals &m_globals;
    QTableWidget *fgTables = nullptr;
    QString m_reportID;
    QString m_file;
};
