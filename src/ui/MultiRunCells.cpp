#include "MultiRunCells.h"

#include "frmMulti.h"

#include "scheduler/PrinterNames.h"

#include <QComboBox>
#include <QLineEdit>

namespace {

QWidget *Named(QWidget *editor, const char *name)
{
    editor->setObjectName(QLatin1String(name));
    return editor;
}

QComboBox *List(QWidget *parent, const QStringList &choices)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QStringLiteral("cmbMulti"));
    list->addItems(choices);
    return list;
}

QStringList PrinterChoices()
{
    return QStringList{QStringLiteral("No Printer")} + InstalledPrinterNames();
}

// The output of the row, as column 1 holds it.
QString OutputOf(const QModelIndex &index)
{
    return index.siblingAtColumn(frmMulti::colOutput).data().toString();
}

} // namespace

MultiRunCells::MultiRunCells(frmMulti &window) : QStyledItemDelegate(&window), m_window(window) {}

QWidget *MultiRunCells::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                     const QModelIndex &index) const
{
    QWidget *editor = nullptr;
    switch (index.column()) {
    case frmMulti::colValue:
        // A line for all parameters is edited in the list of parameters below the grid.
        if (!m_window.AllParameters())
            editor = Named(new QLineEdit(parent), "txtEdit");
        break;
    case frmMulti::colOutput:
        editor = List(parent, {QStringLiteral("EMail"), QStringLiteral("Printer"),
                               QStringLiteral("Disk File"), QStringLiteral("Both (Disk/EMail)")});
        break;
    case frmMulti::colFormat: editor = List(parent, frmMulti::FormatChoices()); break;
    case frmMulti::colDestination:
        if (OutputOf(index).startsWith(QLatin1Char('P')))
            editor = List(parent, PrinterChoices());
        else
            editor = Named(new QLineEdit(parent), "txtMEdit");
        break;
    case frmMulti::colSubject: editor = Named(new QLineEdit(parent), "txtMEdit"); break;
    default: break;
    }
    m_open = editor;
    return editor;
}

void MultiRunCells::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QString text = index.data().toString();
    if (auto *line = qobject_cast<QLineEdit *>(editor))
        return line->setText(text);
    auto *list = qobject_cast<QComboBox *>(editor);
    // A letter as read selects the output it stands for.
    int found = list->findText(text);
    for (int entry = 0; entry < list->count() && found < 0 && !text.isEmpty(); ++entry) {
        if (list->itemText(entry).startsWith(text.left(1)))
            found = entry;
    }
    list->setCurrentIndex(found);
}

void MultiRunCells::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    QString text;
    if (auto *line = qobject_cast<QLineEdit *>(editor))
        text = line->text();
    else
        text = qobject_cast<QComboBox *>(editor)->currentText();
    // The list's long form of "Both" is the grid's "Both".
    if (index.column() == frmMulti::colOutput && text.startsWith(QLatin1String("Both")))
        text = QStringLiteral("Both");
    model->setData(index, text);
}

void MultiRunCells::CommitOpenEditor()
{
    if (!m_open)
        return;
    QWidget *editor = m_open;
    m_open = nullptr;
    Q_EMIT commitData(editor);
    Q_EMIT closeEditor(editor);
}
