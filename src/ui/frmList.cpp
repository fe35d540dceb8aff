#include "frmList.h"

#include "HandlerErrors.h"
#include "NamedControls.h"

#include "core/Ansi.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/LineReader.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "scheduler/PrinterNames.h"
#include "scheduler/QorloGlobals.h"

#include <QActionGroup>
#include <QComboBox>
#include <QDateEdit>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QSaveFile>
#include <QScrollBar>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

const QString kFilter = QStringLiteral("List Files (*.lst);;All Files (*)");

// "00" to the last number, two digits each.
QComboBox *NumberList(QWidget *parent, const char *name, int count)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QLatin1String(name));
    for (int number = 0; number < count; ++number)
        list->addItem(Numbers::FormatZeros(number, 2));
    return list;
}

QString Unquoted(const QString &line)
{
    if (line.size() >= 2 && line.startsWith(QLatin1Char('"')) && line.endsWith(QLatin1Char('"')))
        return line.mid(1, line.size() - 2);
    return line;
}

} // namespace

frmList::frmList(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmList"));
    setWindowTitle(QStringLiteral("List File Editor"));
    fgList = new QTableWidget(0, 1, this);
    fgList->setObjectName(QStringLiteral("fgList"));
    fgList->setHorizontalHeaderLabels({QStringLiteral("Entry")});
    fgList->horizontalHeader()->setStretchLastSection(true);
    fgList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fgList->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(fgList, &QTableWidget::currentCellChanged, this, &frmList::ShowEditor);
    connect(fgList->verticalScrollBar(), &QScrollBar::valueChanged, this, &frmList::PlaceEditor);
    fgList->viewport()->installEventFilter(this);
    lblFile = new QLabel(this);
    lblFile->setObjectName(QStringLiteral("lblFile"));
    BuildEditors();

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblFile);
    layout->addWidget(fgList);
    BuildMenus();
    layout->setMenuBar(findChild<QMenuBar *>());
    resize(420, 460);
    SetKind(Std);
}

frmList *frmList::OpenList(QorloGlobals &globals, QWidget *parent, const QString &kind, const QString &file)
{
    auto *list = new frmList(globals, parent);
    list->setAttribute(Qt::WA_DeleteOnClose);
    list->ClearForm(kind);
    list->LoadFile(file);
    list->open();
    return list;
}

void frmList::BuildMenus()
{
    auto *bar = new QMenuBar(this);
    const auto add = [this](QMenu *menu, const char *name, const QString &caption, auto slot) {
        QAction *entry = menu->addAction(caption);
        entry->setObjectName(QLatin1String(name));
        connect(entry, &QAction::triggered, this,
                [this, slot] { RunHandler(m_globals.prompter, [&] { slot(); }); });
        return entry;
    };
    QMenu *file = bar->addMenu(QStringLiteral("&File"));
    add(file, "mnuNew", QStringLiteral("&New"), [this] { mnuNew_Click(); });
    add(file, "mnuOpen", QStringLiteral("&Open"), [this] { mnuOpen_Click(); });
    add(file, "mnuSave", QStringLiteral("&Save"), [this] { mnuSave_Click(); });
    add(file, "mnuSaveAs", QStringLiteral("Save &As"), [this] { mnuSaveAs_Click(); });
    file->addSeparator();
    add(file, "mnuExit", QStringLiteral("E&xit"), [this] { close(); });
    QMenu *edit = bar->addMenu(QStringLiteral("&Edit"));
    add(edit, "mnuNewLine", QStringLiteral("New &Line"), [this] { AddRow(fgList->rowCount()); });
    add(edit, "mnuInsertLine", QStringLiteral("&Insert Line"), [this] { mnuInsertLine_Click(); });
    add(edit, "mnuDeleteLine", QStringLiteral("&Delete Line"), [this] { mnuDeleteLine_Click(); });
    QMenu *format = bar->addMenu(QStringLiteral("F&ormat"));
    auto *kinds = new QActionGroup(this);
    for (QAction *entry : {AddKind(format, "mnuStd", QStringLiteral("Standard List"), Std),
                           AddKind(format, "mnuDate", QStringLiteral("Date List"), Date),
                           AddKind(format, "mnuDateTime", QStringLiteral("DateTime List"), DateTime),
                           AddKind(format, "mnuPrinter", QStringLiteral("Printer List"), Printer)})
        kinds->addAction(entry);
}

QAction *frmList::AddKind(QMenu *menu, const char *name, const QString &caption, const QString &kind)
{
    QAction *entry = menu->addAction(caption);
    entry->setObjectName(QLatin1String(name));
    entry->setCheckable(true);
    entry->setData(kind);
    connect(entry, &QAction::triggered, this, [this, kind] { SetKind(kind); });
    m_kindEntries.append(entry);
    return entry;
}

void frmList::BuildEditors()
{
    QWidget *cells = fgList->viewport();
    txtEdit = NamedLine(cells, "txtEdit");
    txtEdit->installEventFilter(this);
    connect(txtEdit, &QLineEdit::textEdited, this, &frmList::WriteCell);
    dtList = NamedDatePicker(cells, "dtList");
    connect(dtList, &QDateEdit::dateChanged, this, &frmList::WriteDateCell);
    cmbHours = NumberList(cells, "cmbHours", 24);
    cmbMins = NumberList(cells, "cmbMins", 60);
    connect(cmbHours, &QComboBox::currentIndexChanged, this, &frmList::WriteDateCell);
    connect(cmbMins, &QComboBox::currentIndexChanged, this, &frmList::WriteDateCell);
    cmbPrinter = NamedList(cells, "cmbPrinter", {});
    connect(cmbPrinter, &QComboBox::textActivated, this, &frmList::WriteCell);
    for (QWidget *control : Editors())
        control->hide();
}

QList<QWidget *> frmList::Editors() const
{
    return {txtEdit, dtList, cmbHours, cmbMins, cmbPrinter};
}

QList<QWidget *> frmList::KindEditors() const
{
    if (m_kind == Date)
        return {dtList};
    if (m_kind == DateTime)
        return {dtList, cmbHours, cmbMins};
    if (m_kind == Printer)
        return {cmbPrinter};
    return {txtEdit};
}

void frmList::ClearForm(const QString &kind)
{
    mnuNew_Click();
    SetKind(kind);
}

void frmList::SetKind(const QString &kind)
{
    m_kind = kind;
    for (QAction *entry : std::as_const(m_kindEntries))
        entry->setChecked(entry->data().toString() == kind);
    if (kind == Printer)
        LoadPrinters();
    ShowEditor();
}

void frmList::LoadPrinters()
{
    cmbPrinter->clear();
    const QStringList printers = InstalledPrinterNames();
    if (printers.isEmpty())
        m_globals.prompter.ShowMessage(QStringLiteral("Load Printers"),
                                       QStringLiteral("No Printers configured"));
    cmbPrinter->addItems(printers);
}

void frmList::LoadFile(const QString &path)
{
    if (path.isEmpty())
        return;
    // A list that does not exist yet is made by the first save.
    const QString file = CommonFile::CompletePath(m_globals.AppPath, path);
    LineReader reader(file);
    while (!reader.atEnd()) {
        const int row = fgList->rowCount();
        fgList->insertRow(row);
        fgList->setItem(row, 0, new QTableWidgetItem(Unquoted(reader.readLine())));
    }
    ShowFileName(file);
    fgList->setCurrentCell(fgList->rowCount() > 0 ? 0 : -1, 0);
}

void frmList::ShowFileName(const QString &path)
{
    m_fileName = path;
    lblFile->setText(path);
}

void frmList::ShowEditor()
{
    for (QWidget *control : Editors())
        control->hide();
    const int row = fgList->currentRow();
    if (row < 0)
        return;
    const QString text = fgList->item(row, 0)->text();
    m_filling = true;
    txtEdit->setText(text);
    const std::optional<double> moment = DayDate::Parse(text);
    const double shown = moment.value_or(DayDate::FromDate(QDate::currentDate()));
    dtList->setDate(DayDate::ToDate(shown));
    cmbHours->setCurrentIndex(DayDate::Hour(shown));
    cmbMins->setCurrentIndex(DayDate::Minute(shown));
    cmbPrinter->setCurrentIndex(cmbPrinter->findText(text));
    m_filling = false;
    PlaceEditor();
    const QList<QWidget *> editors = KindEditors();
    for (QWidget *control : editors)
        control->show();
    editors.first()->setFocus();
}

void frmList::PlaceEditor()
{
    const int row = fgList->currentRow();
    if (row < 0)
        return;
    // The first control takes what the others, at their natural widths, leave of the cell.
    QRect cell = fgList->visualItemRect(fgList->item(row, 0));
    const QList<QWidget *> editors = KindEditors();
    int right = cell.right() + 1;
    for (qsizetype index = editors.size() - 1; index > 0; --index) {
        const int width = editors.at(index)->sizeHint().width();
        editors.at(index)->setGeometry(right - width, cell.top(), width, cell.height());
        right -= width;
    }
    editors.first()->setGeometry(cell.left(), cell.top(), right - cell.left(), cell.height());
}

void frmList::WriteCell(const QString &text)
{
    const int row = fgList->currentRow();
    if (!m_filling && row >= 0)
        fgList->item(row, 0)->setText(text);
}

// A date as "DD-Mon-YYYY", with " HH:MM" behind it for a date-and-time list.
void frmList::WriteDateCell()
{
    QString text = FormatDate(DayDate::FromDate(dtList->date()));
    if (m_kind == DateTime)
        text += QLatin1Char(' ') + cmbHours->currentText() + QLatin1Char(':') + cmbMins->currentText();
    WriteCell(text);
}

bool frmList::eventFilter(QObject *watched, QEvent *event)
{
    // The column takes the new width after the resize has been handled.
    if (watched == fgList->viewport() && event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(this, &frmList::PlaceEditor, Qt::QueuedConnection);
    if (watched == txtEdit && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const int step = key == Qt::Key_Up ? -1 : key == Qt::Key_Down || key == Qt::Key_Return ? 1 : 0;
        const int row = fgList->currentRow() + step;
        if (step != 0 && row >= 0 && row < fgList->rowCount())
            fgList->setCurrentCell(row, 0);
        return step != 0;
    }
    return QDialog::eventFilter(watched, event);
}

void frmList::AddRow(int row)
{
    fgList->insertRow(row);
    fgList->setItem(row, 0, new QTableWidgetItem);
    fgList->setCurrentCell(row, 0);
    ShowEditor();
}

void frmList::mnuInsertLine_Click()
{
    AddRow(qMax(fgList->currentRow(), 0));
}

void frmList::mnuDeleteLine_Click()
{
    const int row = fgList->currentRow();
    if (row < 0)
        return;
    fgList->removeRow(row);
    ShowEditor();
}

void frmList::mnuNew_Click()
{
    fgList->setRowCount(0);
    ShowFileName(QString());
    ShowEditor();
}

void frmList::mnuOpen_Click()
{
    const QString file = m_globals.prompter.AskOpenFileName(windowTitle(), m_globals.AppPath, kFilter);
    if (file.isEmpty())
        return;
    fgList->setRowCount(0);
    LoadFile(file);
}

void frmList::mnuSave_Click()
{
    if (m_fileName.isEmpty())
        return mnuSaveAs_Click();
    SaveTo(m_fileName);
}

void frmList::mnuSaveAs_Click()
{
    const QString start = m_fileName.isEmpty() ? m_globals.AppPath : m_fileName;
    const QString file = m_globals.prompter.AskSaveFileName(windowTitle(), start, kFilter);
    if (!file.isEmpty())
        SaveTo(file);
}

// The file is replaced whole; each row is one line, as it stands.
void frmList::SaveTo(const QString &path)
{
    QString text;
    for (int row = 0; row < fgList->rowCount(); ++row)
        text += fgList->item(row, 0)->text() + QStringLiteral("\r\n");
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw QorloError(QorloError::PathFileAccess);
    file.write(Ansi::Encode(text));
    if (!file.commit())
        throw QorloError(QorloError::PathFileAccess);
    ShowFileName(path);
}
