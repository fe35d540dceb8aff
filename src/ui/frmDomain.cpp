#include "frmDomain.h"

#include "DialogButtons.h"
#include "TabOrder.h"

#include "scheduler/QorloGlobals.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableWidget>
#include <QVBoxLayout>
#include <utility>

namespace {

constexpr int kDomainColumn = 1;

} // namespace

frmDomain::frmDomain(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmDomain"));
    setWindowTitle(QStringLiteral("Domain Shortcuts"));
    BuildGrid();

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *save = AddButton(buttons, "cmdSave", QStringLiteral("&Save"), [this] { cmdSave_Click(); });
    QPushButton *exit = AddExitButton(buttons, this);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_grid);
    layout->addWidget(buttons);
    SetTabOrder({m_grid, save, exit});
    LoadSettings();
}

void frmDomain::BuildGrid()
{
    m_grid = new QTableWidget(clsSchedule::DomainCount, 2, this);
    m_grid->setObjectName(QStringLiteral("fgDomain"));
    m_grid->setHorizontalHeaderLabels({QStringLiteral("Shortcut"), QStringLiteral("Domain")});
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    // The grid's own editor would bypass the box; Tab moves between the window's controls.
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setTabKeyNavigation(false);
    for (int row = 0; row < clsSchedule::DomainCount; ++row) {
        // The shortcut column is fixed: the cursor never enters it.
        auto *shortcut = new QTableWidgetItem(QLatin1Char('@') + QString::number(row));
        shortcut->setFlags(Qt::NoItemFlags);
        shortcut->setBackground(palette().button());
        shortcut->setForeground(palette().buttonText());
        m_grid->setItem(row, 0, shortcut);
        m_grid->setItem(row, kDomainColumn, new QTableWidgetItem);
    }
    // All ten shortcuts show without scrolling.
    m_grid->setMinimumHeight(m_grid->horizontalHeader()->sizeHint().height() +
                             clsSchedule::DomainCount * m_grid->verticalHeader()->defaultSectionSize() +
                             2 * m_grid->frameWidth());
    m_grid->setMinimumWidth(360);

    // All ten rows in view, without a scroll bar.
    m_grid->setMinimumHeight(m_grid->horizontalHeader()->sizeHint().height() +
                             m_grid->verticalHeader()->length() + 2 * m_grid->frameWidth());
    m_grid->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    m_edit = new QLineEdit(m_grid->viewport());
    m_edit->setObjectName(QStringLiteral("txtEdit"));
    m_edit->hide();
    m_grid->installEventFilter(this);
    m_edit->installEventFilter(this);
    connect(m_grid, &QTableWidget::currentCellChanged, this, &frmDomain::StoreEdit);
    connect(m_grid, &QTableWidget::cellDoubleClicked, this, &frmDomain::OpenEditWithCell);
}

void frmDomain::LoadSettings()
{
    DropEdit();
    for (int row = 0; row < clsSchedule::DomainCount; ++row)
        m_grid->item(row, kDomainColumn)->setText(m_globals.Schedule.Domain(row));
    m_grid->setCurrentCell(0, kDomainColumn);
}

bool frmDomain::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_grid && event->type() == QEvent::FocusIn)
        StoreEdit();
    // Keys the open box leaves unused reach the grid as well; they must not reopen it.
    if (watched == m_grid && event->type() == QEvent::KeyPress && m_editRow < 0)
        return fgDomain_KeyPress(static_cast<QKeyEvent &>(*event));
    if (watched == m_edit && event->type() == QEvent::KeyPress)
        return txtEdit_KeyDown(static_cast<QKeyEvent &>(*event));
    return QDialog::eventFilter(watched, event);
}

// A printable key starts the cell over with that character; space and the control keys edit its text.
bool frmDomain::fgDomain_KeyPress(const QKeyEvent &key)
{
    const QString text = key.text();
    if (text.size() != 1 || key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab)
        return false;
    const QChar typed = text.front();
    if (typed == QLatin1Char(' ') || typed.unicode() < 0x20)
        OpenEditWithCell();
    else if (typed.isPrint())
        OpenEdit(text);
    else
        return false;
    return true;
}

bool frmDomain::txtEdit_KeyDown(const QKeyEvent &key)
{
    switch (key.key()) {
    case Qt::Key_Escape: DropEdit(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: ReturnToGrid(); return true;
    case Qt::Key_Up:
    case Qt::Key_Down: {
        const int row = m_editRow + (key.key() == Qt::Key_Up ? -1 : 1);
        ReturnToGrid();
        if (row >= 0 && row < m_grid->rowCount())
            m_grid->setCurrentCell(row, kDomainColumn);
        return true;
    }
    default: return false;
    }
}

void frmDomain::OpenEdit(const QString &text)
{
    const int row = m_grid->currentRow();
    if (row < 0)
        return;
    m_editRow = row;
    m_edit->setGeometry(m_grid->visualItemRect(m_grid->item(row, kDomainColumn)));
    m_edit->setText(text);
    m_edit->setCursorPosition(text.size());
    m_edit->show();
    m_edit->setFocus();
}

void frmDomain::OpenEditWithCell()
{
    OpenEdit(CellText(m_grid->currentRow()));
}

void frmDomain::StoreEdit()
{
    if (m_editRow < 0)
        return;
    m_grid->item(std::exchange(m_editRow, -1), kDomainColumn)->setText(m_edit->text());
    m_edit->hide();
}

// The row is forgotten before the grid takes the focus, whose arrival would store the box.
void frmDomain::DropEdit()
{
    m_editRow = -1;
    m_grid->setFocus();
    m_edit->hide();
}

// The focus goes back first, so that hiding the box does not pass it on to the next control.
void frmDomain::ReturnToGrid()
{
    m_grid->setFocus();
    StoreEdit();
}

QString frmDomain::CellText(int row) const
{
    return row < 0 ? QString() : m_grid->item(row, kDomainColumn)->text();
}

void frmDomain::cmdSave_Click()
{
    StoreEdit();
    for (int row = 0; row < clsSchedule::DomainCount; ++row)
        m_globals.Schedule.SaveDomain(row, CellText(row));
    m_globals.SaveSchedule();
    accept();
}
