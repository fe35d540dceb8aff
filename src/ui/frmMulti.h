#pragma once
// The multi-run editor: the control file of the multi-run item at the schedule's cursor, one row for
// each run of the report, shown, checked and written back; the item's Prompt then names the file.

#include "MultiRunControl.h"

#include <QDialog>

class QorloGlobals;
class MultiRunCells;
class QAction;
class QComboBox;
class QLabel;
class QMenuBar;
class QPushButton;
class QTableWidget;
class QVBoxLayout;

class frmMulti : public QDialog
{
    Q_OBJECT
public:
    // The columns of fgMulti.
    enum Column { colValue, colOutput, colFormat, colDestination, colSubject, colBrowse, ColumnCount };

    explicit frmMulti(QorloGlobals &globals, QWidget *parent = nullptr);

    // Shows the item at the schedule's cursor with its control file, and the window where it was last.
    void LoadForm();

    // What the cell editors offer and need to know.
    static QStringList OutputChoices();
    static QStringList FormatChoices();
    bool AllParameters() const;

    void done(int result) override;

private:
    void BuildMenus(QMenuBar *menus);
    void BuildFields(QVBoxLayout *layout);
    void BuildGrids(QVBoxLayout *layout);
    void BuildButtons(QVBoxLayout *layout);
    void SetTabOrder();
    void LoadPlacement();
    void SavePlacement();
    void LoadParameters();
    void LoadControlFile(const QString &path);
    void SelectParameter(const QString &parameter);
    void ShowCommonChoice(QComboBox *list, const QStringList &values, bool byLetter);

    // The grid.
    void AddGridRow(const MultiRunRow &row);
    MultiRunRow GridRow(int row) const;
    QList<MultiRunRow> GridRows() const;
    void SetCell(int row, int column, const QString &text);
    QString Cell(int row, int column) const;
    void RefreshRowCells(int row);
    void SetHeadings(int row);
    // The selected row, -1 for none.
    int SelectedRow() const;
    void OnCellChanged(int row, int column);
    void OnCurrentRowChanged(int row);
    void OnParameterChanged();
    void ShowAllValues(int row);
    void StoreAllValues();
    void CompleteDestination(int row);
    void BrowseDestination(int row);

    // The commands.
    void NewValue();
    void NewComment();
    void CopyValue();
    void DeleteValue();
    void ToggleTableMap();
    void SortRows(int column);
    void BrowseControlFile();
    void SaveAs();
    void Save();
    bool Confirmed(const QList<MultiRunRow> &rows);

    QorloGlobals &m_globals;
    QString m_reportID;
    QString m_controlFile;
    // The heading of column 0: "Map" once "{$TableMap}" has been chosen, until the next load.
    QString m_valueHeading;
    QString m_reportFile;
    bool m_filling = false;

    QLabel *lName = nullptr;
    QLabel *lFile = nullptr;
    QLabel *lControlFile = nullptr;
    QPushButton *cmdBrowse = nullptr;
    QComboBox *cmbParameter = nullptr;
    QComboBox *cmbOutput = nullptr;
    QComboBox *cmbFormat = nullptr;
    QTableWidget *fgMulti = nullptr;
    QTableWidget *fgList = nullptr;
    MultiRunCells *m_cells = nullptr;
    QAction *mnuTableMap = nullptr;
    QPushButton *cmdNewValue = nullptr;
    QPushButton *cmdSave = nullptr;
    QPushButton *cmdExit = nullptr;
};
