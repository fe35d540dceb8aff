#pragma once
// The in-cell editors of the multi-run grid: a line for the value, lists for the output, the format and
// a printer's name, a line for the destination and the subject.

#include <QPointer>
#include <QStyledItemDelegate>

class frmMulti;

class MultiRunCells : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit MultiRunCells(frmMulti &window);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

    // Puts the text of the editor that is open into its cell and closes it.
    void CommitOpenEditor();

private:
    frmMulti &m_window;
    mutable QPointer<QWidget> m_open;
};
