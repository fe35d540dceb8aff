#pragma once
// The domain shortcuts window: a grid of the ten shortcuts, edited in a box laid over the cell.

#include <QDialog>

class QorloGlobals;
class QKeyEvent;
class QLineEdit;
class QTableWidget;

class frmDomain : public QDialog
{
    Q_OBJECT
public:
    explicit frmDomain(QorloGlobals &globals, QWidget *parent = nullptr);

    // The grid from the schedule's shortcuts, as each opening of the window shows them.
    void LoadSettings();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void BuildGrid();
    bool fgDomain_KeyPress(const QKeyEvent &key);
    bool txtEdit_KeyDown(const QKeyEvent &key);
    // Shows the box over the current cell with `text`, the caret at its end.
    void OpenEdit(const QString &text);
    void OpenEditWithCell();
    // The box's text into the cell it was opened on; nothing while the box is hidden.
    void StoreEdit();
    void DropEdit();
    void ReturnToGrid();
    QString CellText(int row) const;
    void cmdSave_Click();

    QorloGlobals &m_globals;
    QTableWidget *m_grid = nullptr;
    QLineEdit *m_edit = nullptr;
    // The row the box edits; -1 while it is hidden.
    int m_editRow = -1;
};
