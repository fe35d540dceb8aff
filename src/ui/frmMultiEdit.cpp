// The multi-run editor's grid: cells, headings, the list of all parameters, and the commands and the
// save of the control file.
#include "frmMulti.h"

#include "MultiRunCells.h"

#include "core/CommonFile.h"
#include "core/TWReg.h"
#include "run/MultiRun.h"
#include "run/OutputNames.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QTableWidget>

#include <utility>

namespace {

const QString kAll = QStringLiteral("*ALL*");
const QString kTableMap = QStringLiteral("{$TableMap}");
const QString kCustom = QStringLiteral("Custom");
const QString kComment = QStringLiteral("Comment");

// Rows that write to a file can browse for its name.
bool Browses(const MultiRunRow &row)
{
    return !row.comment && !row.output.startsWith(QLatin1Char('E')) &&
           !row.output.startsWith(QLatin1Char('P'));
}

// The headings of columns 2 to 5 for an output.
QStringList HeadingsFor(const QString &output)
{
    switch (output.isEmpty() ? u'\0' : output.at(0).unicode()) {
    case u'E':
        return {QStringLiteral("Format"), QStringLiteral("EMail Address"), QStringLiteral("Msg Subject"), {}};
    case u'P': return {{}, QStringLiteral("Printer Name"), QStringLiteral("Copies"), {}};
    case u'D':
        return {
            QStringLiteral("Format"), QStringLiteral("Output Path\\File Name"), {}, QStringLiteral("...")};
    case u'B':
        return {QStringLiteral("Format"), QStringLiteral("Output Path\\File Name"), QStringLiteral("EMail"),
                QStringLiteral("...")};
    default: break;
    }
    return {{}, QStringLiteral("Destination"), {}, QStringLiteral("...")};
}

QString FileFilter(const QString &format)
{
    static const QList<std::pair<QLatin1String, QLatin1String>> filters = {
        {QLatin1String("Crystal Report"), QLatin1String("Crystal Report (*.rpt)")},
        {QLatin1String("Rich Text"), QLatin1String("Rich Text document (*.rtf)")},
        {QLatin1String("CSV File"), QLatin1String("CSV File (*.csv)")},
        {QLatin1String("MS Word doc"), QLatin1String("MS Word Document (*.doc)")},
        {QLatin1String("Acrobat File"), QLatin1String("Acrobat File (*.pdf)")},
        {QLatin1String("Text File"), QLatin1String("Text File (*.txt)")},
    };
    const QString all = QStringLiteral("All Files (*)");
    for (const auto &[name, filter] : filters) {
        if (name == format)
            return filter + QStringLiteral(";;") + all;
    }
    return all;
}

// The output word that a choice of the window's list gives a new row.
QString ChosenOutput(const QString &choice)
{
    return choice.startsWith(QLatin1String("Both")) ? QStringLiteral("Both") : choice;
}

} // namespace

QString frmMulti::Cell(int row, int column) const
{
    const QTableWidgetItem *cell = fgMulti->item(row, column);
    return cell ? cell->text() : QString();
}

void frmMulti::SetCell(int row, int column, const QString &text)
{
    QTableWidgetItem *cell = fgMulti->item(row, column);
    if (!cell) {
        cell = new QTableWidgetItem;
        fgMulti->setItem(row, column, cell);
    }
    cell->setText(text);
}

void frmMulti::AddGridRow(const MultiRunRow &row)
{
    const bool filling = std::exchange(m_filling, true);
    const int at = fgMulti->rowCount();
    fgMulti->insertRow(at);
    SetCell(at, colValue, row.value);
    SetCell(at, colOutput, row.output);
    SetCell(at, colFormat, row.format);
    SetCell(at, colDestination, row.destination);
    SetCell(at, colSubject, row.comment ? kComment : row.subject);
    RefreshRowCells(at);
    m_filling = filling;
}

MultiRunRow frmMulti::GridRow(int row) const
{
    const bool comment = Cell(row, colSubject) == kComment;
    return {comment,
            Cell(row, colValue),
            Cell(row, colOutput),
            Cell(row, colFormat),
            Cell(row, colDestination),
            comment ? QString() : Cell(row, colSubject)};
}

QList<MultiRunRow> frmMulti::GridRows() const
{
    QList<MultiRunRow> rows;
    for (int row = 0; row < fgMulti->rowCount(); ++row)
        rows.append(GridRow(row));
    return rows;
}

// A comment row is edited in column 0 alone; the browse cell is never edited.
void frmMulti::RefreshRowCells(int row)
{
    const bool filling = std::exchange(m_filling, true);
    const MultiRunRow shown = GridRow(row);
    SetCell(row, colBrowse, Browses(shown) ? QStringLiteral("...") : QString());
    for (int column = 0; column < ColumnCount; ++column) {
        const bool editable = column == colValue || (!shown.comment && column != colBrowse);
        QTableWidgetItem *cell = fgMulti->item(row, column);
        cell->setFlags(editable ? cell->flags() | Qt::ItemIsEditable : cell->flags() & ~Qt::ItemIsEditable);
    }
    m_filling = filling;
}

int frmMulti::SelectedRow() const
{
    const QList<QTableWidgetItem *> selected = fgMulti->selectedItems();
    return selected.isEmpty() ? -1 : selected.first()->row();
}

void frmMulti::SetHeadings(int row)
{
    const QString output = row >= 0 ? Cell(row, colOutput) : cmbOutput->currentText();
    fgMulti->setHorizontalHeaderLabels(QStringList{m_valueHeading, QStringLiteral("Output to")} +
                                       HeadingsFor(output));
}

void frmMulti::OnCellChanged(int row, int column)
{
    if (m_filling || column != colOutput)
        return;
    RefreshRowCells(row);
    if (Cell(row, colOutput).startsWith(QLatin1Char('D')))
        CompleteDestination(row);
    SetHeadings(row);
}

// A disk destination takes the extension of the row's format.
void frmMulti::CompleteDestination(int row)
{
    const QString destination = Cell(row, colDestination);
    if (destination.isEmpty())
        return;
    const QString fixed =
        OutputNames::FixFileExtension(destination, m_reportFile, Cell(row, colFormat), false);
    if (!fixed.isEmpty())
        SetCell(row, colDestination, fixed);
}

void frmMulti::OnCurrentRowChanged(int row)
{
    SetHeadings(row);
    if (AllParameters())
        ShowAllValues(row);
}

void frmMulti::OnParameterChanged()
{
    if (m_filling)
        return;
    if (cmbParameter->currentText() == kTableMap)
        m_valueHeading = QStringLiteral("Map");
    fgList->setVisible(AllParameters());
    ShowAllValues(fgMulti->currentRow());
    SetHeadings(fgMulti->currentRow());
}

// One list row for each parameter but "*ALL*", with its value in the line's {name}value list.
void frmMulti::ShowAllValues(int row)
{
    const bool filling = std::exchange(m_filling, true);
    const bool dataRow = row >= 0 && !GridRow(row).comment;
    fgList->setRowCount(0);
    for (int entry = 0; entry < cmbParameter->count(); ++entry) {
        const QString name = cmbParameter->itemText(entry);
        if (name == kAll)
            continue;
        const int at = fgList->rowCount();
        fgList->insertRow(at);
        auto *nameCell = new QTableWidgetItem(name);
        nameCell->setFlags(nameCell->flags() & ~Qt::ItemIsEditable);
        fgList->setItem(at, 0, nameCell);
        fgList->setItem(
            at, 1,
            new QTableWidgetItem(dataRow ? MultiRun::ValueAfterTag(name, Cell(row, colValue)) : QString()));
    }
    fgList->setEnabled(dataRow);
    m_filling = filling;
}

void frmMulti::StoreAllValues()
{
    const int row = fgMulti->currentRow();
    if (m_filling || !AllParameters() || row < 0 || GridRow(row).comment)
        return;
    QString value;
    for (int entry = 0; entry < fgList->rowCount(); ++entry) {
        const QString text = fgList->item(entry, 1) ? fgList->item(entry, 1)->text() : QString();
        if (!text.isEmpty())
            value += fgList->item(entry, 0)->text() + text;
    }
    SetCell(row, colValue, value);
}

void frmMulti::BrowseDestination(int row)
{
    const MultiRunRow shown = GridRow(row);
    if (!Browses(shown))
        return;
    const QString setting = QStringLiteral("Load Multi");
    QString folder = TWReg::ReadSetting(QStringLiteral("System"), setting, QString());
    if (folder.isEmpty())
        folder = CommonFile::FolderOf(shown.destination.isEmpty() ? m_reportFile : shown.destination);
    const QString name =
        m_globals.prompter.AskSaveFileName(QStringLiteral("Output File"), folder, FileFilter(shown.format));
    if (name.isEmpty())
        return;
    TWReg::SaveSetting(QStringLiteral("System"), setting, CommonFile::FolderOf(name));
    SetCell(row, colDestination, name);
}

void frmMulti::NewValue()
{
    m_cells->CommitOpenEditor();
    const QString output = cmbOutput->currentText();
    const QString format = cmbFormat->currentText();
    MultiRunRow row;
    row.output = output == kCustom ? QString() : ChosenOutput(output);
    row.format = format == kCustom ? QString() : format;
    AddGridRow(row);
    fgMulti->setCurrentCell(fgMulti->rowCount() - 1, colValue);
}

void frmMulti::NewComment()
{
    m_cells->CommitOpenEditor();
    MultiRunRow row;
    row.comment = true;
    AddGridRow(row);
    fgMulti->setCurrentCell(fgMulti->rowCount() - 1, colValue);
}

void frmMulti::CopyValue()
{
    const QString title = QStringLiteral("Copy Schedule Item");
    if (fgMulti->rowCount() == 0)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("No value to copy"));
    const int row = SelectedRow();
    if (row < 0)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("Please select a row to copy"));
    m_cells->CommitOpenEditor();
    AddGridRow(GridRow(row));
}

void frmMulti::DeleteValue()
{
    const QString title = QStringLiteral("Delete Multirun Item");
    if (fgMulti->rowCount() == 0)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("No Values to Delete"));
    const int row = SelectedRow();
    if (row < 0)
        return m_globals.prompter.ShowMessage(title, QStringLiteral("Please select a value to delete"));
    m_cells->CommitOpenEditor();
    fgMulti->removeRow(row);
}

// Ticking offers "{$TableMap}" as a parameter; unticking takes it away again.
void frmMulti::ToggleTableMap()
{
    if (mnuTableMap->isChecked()) {
        cmbParameter->addItem(kTableMap);
        if (cmbParameter->count() == 2)
            cmbParameter->addItem(kAll);
        else if (cmbParameter->count() == 1)
            cmbParameter->setCurrentIndex(0);
        return;
    }
    const int selected = cmbParameter->currentIndex();
    const int entry = cmbParameter->findText(kTableMap);
    if (entry < 0)
        return;
    m_filling = true;
    cmbParameter->removeItem(entry);
    m_filling = false;
    if (selected >= cmbParameter->count())
        cmbParameter->setCurrentIndex(cmbParameter->count() > 0 ? 0 : -1);
    OnParameterChanged();
}

// A bubble sort of whole rows, ascending and case-sensitive, on column 0 or 3.
void frmMulti::SortRows(int column)
{
    if (fgMulti->rowCount() < 2)
        return m_globals.prompter.ShowMessage(QStringLiteral("Sort Schedule"),
                                              QStringLiteral("No rows to sort"));
    m_cells->CommitOpenEditor();
    QList<MultiRunRow> rows = GridRows();
    const auto key = [column](const MultiRunRow &row) {
        return column == colValue ? row.value : row.destination;
    };
    for (qsizetype pass = rows.size() - 1; pass > 0; --pass) {
        for (qsizetype at = 0; at < pass; ++at) {
            if (key(rows.at(at + 1)) < key(rows.at(at)))
                rows.swapItemsAt(at, at + 1);
        }
    }
    m_filling = true;
    fgMulti->setRowCount(0);
    m_filling = false;
    for (const MultiRunRow &row : rows)
        AddGridRow(row);
}

void frmMulti::BrowseControlFile()
{
    const QString name = m_globals.prompter.AskOpenFileName(
        QStringLiteral("Control File"), CommonFile::FolderOf(m_controlFile),
        QStringLiteral("Multirun File (*.txt);;All Files (*)"));
    if (!name.isEmpty())
        LoadControlFile(name);
}

void frmMulti::SaveAs()
{
    const QString name =
        m_globals.prompter.AskSaveFileName(QStringLiteral("Save As"), CommonFile::FolderOf(m_controlFile),
                                           QStringLiteral("Multi run File (*.txt)"));
    if (name.isEmpty())
        return;
    m_controlFile = name;
    lControlFile->setText(name);
    Save();
}

// Warnings, not refusals: the operator may go on past each one.
bool frmMulti::Confirmed(const QList<MultiRunRow> &rows)
{
    for (const MultiRunWarning &warning : MultiRunControlFile::Check(rows)) {
        if (!m_globals.prompter.AskOkCancel(warning.title, warning.text))
            return false;
    }
    return true;
}

void frmMulti::Save()
{
    m_cells->CommitOpenEditor();
    const QList<MultiRunRow> rows = GridRows();
    if (!Confirmed(rows))
        return;
    MultiRunControlFile::Write(m_controlFile, MultiRunControlFile::Lines(cmbParameter->currentText(), rows));
    clsSchedule &schedule = m_globals.Schedule;
    schedule.Find(m_reportID);
    schedule.SetPrompt(m_controlFile);
    m_globals.SaveSchedule();
    accept();
}
