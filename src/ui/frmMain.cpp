#include "frmMain.h"

#include "GridSort.h"
#include "frmCrystal.h"
#include "frmAdv.h"
#include "frmBackup.h"
#include "frmDomain.h"
#include "frmSMTP.h"
#include "frmSendMail.h"
#include "frmTextView.h"
#include "frmSetTimer.h"

#include "core/Numbers.h"
#include "core/QorloError.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/StartUp.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QTableWidget>
#include <QWindow>

namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kIdColumnTwips = 600;
// Entering a cell paints it cyan, leaving it paints it white.
constexpr int kCurrentCellColour = 16776960;

// Colours are numbers with red in the low byte and blue in the high one.
QColor ColourOf(int colour)
{
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

qint32 Twips(int pixels)
{
    return pixels * kTwipsPerPixel;
}
int Pixels(qint32 twips)
{
    return twips / kTwipsPerPixel;
}

// The viewer settings' widths of columns 1 to 5.
qint32 clsViewer::*const kColumnWidths[] = {&clsViewer::Viewer_ColDate, &clsViewer::Viewer_ColDesc,
                                            &clsViewer::Viewer_ColFile, &clsViewer::Viewer_ColDest,
                                            &clsViewer::Viewer_ColRun};

// A message box is no form: coming back from one is not coming back to the front.
bool IsForm(const QWidget *window)
{
    return !qobject_cast<const QMessageBox *>(window) && window->windowType() != Qt::Popup;
}

} // namespace

frmMain::frmMain(QorloGlobals &globals, Dispatcher &dispatcher, QWidget *parent)
    : QMainWindow(parent), m_globals(globals), m_dispatcher(dispatcher)
{
    setObjectName(QStringLiteral("frmMain"));
    BuildGrid();
    BuildMenus();
    m_globals.SetView(*this);
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &frmMain::OnFocusWindowChanged);
}

void frmMain::BuildGrid()
{
    m_grid = new QTableWidget(0, ColumnCount, this);
    m_grid->setObjectName(QStringLiteral("fgView"));
    m_grid->setHorizontalHeaderLabels({QStringLiteral("ID"), QStringLiteral("Next Run"),
                                       QStringLiteral("Description"), QStringLiteral("File Name"),
                                       QStringLiteral("Destination"), QStringLiteral("Previous Run")});
    m_grid->verticalHeader()->hide();
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setColumnWidth(0, Pixels(kIdColumnTwips));
    connect(m_grid, &QTableWidget::currentCellChanged, this, &frmMain::OnCurrentCellChanged);
    setCentralWidget(m_grid);
}

QAction *frmMain::AddAction(QMenu *menu, const char *name, const QString &caption,
                            std::function<void()> action)
{
    QAction *entry = menu->addAction(caption);
    entry->setObjectName(QLatin1String(name));
    connect(entry, &QAction::triggered, this, [this, action = std::move(action)] { Guarded(action); });
    return entry;
}

void frmMain::BuildMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    AddAction(file, "mnuSaveSchedule", QStringLiteral("&Save"), [this] { m_globals.SaveSchedule(); });
    file->addSeparator();
    AddAction(file, "mnuExit", QStringLiteral("E&xit"), [this] { Exit(); });

    QMenu *schedule = menuBar()->addMenu(QStringLiteral("S&chedule"));
    m_start = AddAction(schedule, "mnuStartSchedule", QStringLiteral("Start Schedule"),
                        [this] { m_dispatcher.StartSchedule(); });
    m_stop = AddAction(schedule, "mnuStopSchedule", QStringLiteral("Stop Schedule"),
                       [this] { m_dispatcher.StopSchedule(); });
    AddAction(schedule, "mnuRunNow", QStringLiteral("&Run Report Now"),
              [this] { m_dispatcher.RunNow(SelectedRow()); });
    schedule->addSeparator();
    AddAction(schedule, "mnuNewReport", QStringLiteral("&Insert Item into Schedule"),
              [this] { InsertItem(); });
    AddAction(schedule, "mnuNewFolder", QStringLiteral("Insert Report &Folder into Schedule"),
              [this] { InsertFolder(); });
    AddModifyCommand(schedule);
    AddAction(schedule, "mnuDuplicate", QStringLiteral("D&uplicate"), [this] { DuplicateItem(); });
    QAction *remove =
        AddAction(schedule, "mnuDeleteReport", QStringLiteral("&Delete"), [this] { DeleteItems(); });
    remove->setShortcut(QKeySequence::Delete);
    schedule->addSeparator();
    m_autoRun = AddAction(schedule, "mnuAutoRun", QStringLiteral("AutoRun"), [this] { ToggleAutoRun(); });
    m_autoRun->setCheckable(true);
    schedule->addSeparator();
    AddAction(schedule, "mnuBackup", QStringLiteral("Backup"), [this] { OpenBackupSettings(); });
    AddAction(schedule, "mnuAdvance", QStringLiteral("Advance the schedule"), [this] { OpenAdvance(); });
    AddAction(schedule, "mnuSetTimer", QStringLiteral("Set Schedule Start/Finish"),
              [this] { OpenScheduleTimers(); });

    QMenu *sort = menuBar()->addMenu(QStringLiteral("S&ort"));
    const char *const sortNames[] = {"mnuSortOrig", "mnuSortDate", "mnuSortDesc",
                                     "mnuSortFile", "mnuSortDest", "mnuSortPrev"};
    const QString sortCaptions[] = {QStringLiteral("&Original Order"), QStringLiteral("&Next Run"),
                                    QStringLiteral("&Description"),    QStringLiteral("&File Name"),
                                    QStringLiteral("D&estination"),    QStringLiteral("&Previous Run")};
    for (int column = 0; column < ColumnCount; ++column)
        AddAction(sort, sortNames[column], sortCaptions[column], [this, column] { SortBy(column); });

    QMenu *settings = menuBar()->addMenu(QStringLiteral("Se&ttings"));
    AddAction(settings, "mnuSMTPSettings", QStringLiteral("&SMTP Server"), [this] { OpenMailSettings(); });
    AddAction(settings, "mnuDomains", QStringLiteral("Domain Shortcuts"), [this] { OpenDomainShortcuts(); });
    m_encryptDB = AddAction(settings, "mnuEncryptDB", QStringLiteral("Encrypt DB Password"),
                            [this] { ToggleEncryptDB(); });
    m_encryptDB->setCheckable(true);

    QMenu *view = menuBar()->addMenu(QStringLiteral("&View"));
    AddAction(view, "mnuViewSMTP", QStringLiteral("View SMTP log"), [this] { ViewSmtpLog(); });
    AddAction(view, "mnuBrowse", QStringLiteral("&View Report Now"), [this] {
        frmCrystal::ViewFile(m_globals, m_globals.prompter.AskOpenFileName(
                                            QStringLiteral("View Report Now"), m_globals.AppPath,
                                            QStringLiteral("Crystal Report (*.rpt)")));
    });

    QMenu *help = menuBar()->addMenu(QStringLiteral("&Help"));
    AddAction(help, "mnuOnLineHelp", QStringLiteral("Send Help Message"), [this] { OpenHelpMessage(); });
}

void frmMain::Guarded(const std::function<void()> &command)
{
    try {
        command();
    } catch (const QorloError &error) {
        m_globals.prompter.FatalError(error);
    }
}

void frmMain::ApplyViewerSettings()
{
    const clsViewer &viewer = m_globals.Viewer;
    for (int column = 1; column < ColumnCount; ++column)
        m_grid->setColumnWidth(column, Pixels(viewer.*kColumnWidths[column - 1]));
    m_autoRun->setChecked(m_globals.Schedule.AutoRun);
    m_encryptDB->setChecked(m_globals.Connections.EncodeOptions == QLatin1String("Yes"));

    move(Pixels(viewer.Viewer_Left), Pixels(viewer.Viewer_Top));
    resize(Pixels(viewer.Viewer_Width), Pixels(viewer.Viewer_Height));
    // "Full" and not "Max" restores a maximised window: one left maximised comes back normal.
    if (viewer.Viewer_State == QLatin1String("Min"))
        setWindowState(Qt::WindowMinimized);
    else if (viewer.Viewer_State == QLatin1String("Full"))
        setWindowState(Qt::WindowMaximized);

    // A sort column that names no column of the grid leaves it unsorted.
    const double sortColumn = Numbers::RoundEven(Numbers::NumericPrefix(viewer.SortCol));
    if (!viewer.SortCol.isEmpty() && sortColumn >= 0 && sortColumn < ColumnCount) {
        m_sortColumn = qint16(sortColumn);
        SortBy(m_sortColumn);
    }
    m_loaded = true;
}

void frmMain::ViewTable()
{
    clsSchedule &schedule = m_globals.Schedule;
    m_grid->setRowCount(0);
    m_grid->setRowCount(schedule.Count());
    for (int row = 0; row < schedule.Count(); ++row) {
        schedule.SetPosition(row);
        WriteCells(row + 1);
    }
    RebuildSortIndex();
}

void frmMain::RefreshRow(int row)
{
    if (row < 1 || row >= Rows())
        return;
    clsSchedule &schedule = m_globals.Schedule;
    schedule.Find(RowReportID(row));
    if (!schedule.NoMatch())
        WriteCells(row);
}

// The six cells of a grid row from the item at the schedule's cursor.
void frmMain::WriteCells(int gridRow)
{
    clsSchedule &schedule = m_globals.Schedule;
    SetCell(gridRow, 0, schedule.ReportID());
    SetCell(gridRow, 1, schedule.NextRun());
    SetCell(gridRow, 2, schedule.Name());
    SetCell(gridRow, 3, schedule.File());
    SetCell(gridRow, 4, schedule.DestName());
    SetCell(gridRow, 5, schedule.LastRun());
}

// Rewriting a cell keeps its colour.
void frmMain::SetCell(int gridRow, int column, const QString &text)
{
    QTableWidgetItem *cell = m_grid->item(gridRow - 1, column);
    if (!cell) {
        cell = new QTableWidgetItem;
        cell->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        m_grid->setItem(gridRow - 1, column, cell);
    }
    cell->setText(text);
}

void frmMain::SortBy(int column)
{
    if (Rows() < 2 || column < 0 || column >= ColumnCount)
        return;
    m_sortColumn = qint16(column);
    QList<QStringList> rows;
    QStringList keys;
    for (int tableRow = 0; tableRow < m_grid->rowCount(); ++tableRow) {
        QStringList texts;
        for (int cell = 0; cell < ColumnCount; ++cell)
            texts.append(m_grid->item(tableRow, cell)->text());
        keys.append(GridSort::SortKey(column, texts.at(column)));
        rows.append(texts);
    }
    // Only the texts move, as the rows change places cell by cell; colours stay on their rows.
    const QList<int> order = GridSort::ExchangeOrder(keys);
    for (int tableRow = 0; tableRow < order.size(); ++tableRow) {
        for (int cell = 0; cell < ColumnCount; ++cell)
            m_grid->item(tableRow, cell)->setText(rows.at(order.at(tableRow)).at(cell));
    }
    RebuildSortIndex();
}

// The item editor's next and previous follow the grid's order.
void frmMain::RebuildSortIndex()
{
    QStringList ids;
    for (int row = 1; row < Rows(); ++row)
        ids.append(RowReportID(row));
    m_globals.Schedule.LoadSortIndexArray(ids.join(QLatin1Char('|')));
}

void frmMain::SetSchedule(int colour, int row)
{
    // Painting moves no selection here, so the cell handlers need no guard.
    if (row < 1 || row >= Rows())
        return;
    for (int column = 1; column < ColumnCount; ++column)
        PaintCell(row - 1, column, colour);
    // A long run gives the event loop no chance: show the colour now.
    m_grid->viewport()->repaint();
}

void frmMain::PaintCell(int tableRow, int column, int colour)
{
    if (QTableWidgetItem *cell = m_grid->item(tableRow, column))
        cell->setBackground(ColourOf(colour));
}

void frmMain::OnCurrentCellChanged(int row, int column, int previousRow, int previousColumn)
{
    PaintCell(previousRow, previousColumn, NormalColour);
    PaintCell(row, column, kCurrentCellColour);
}

int frmMain::Rows() const
{
    return m_grid->rowCount() + 1;
}

QString frmMain::RowReportID(int row) const
{
    const QTableWidgetItem *cell = row >= 1 ? m_grid->item(row - 1, 0) : nullptr;
    return cell ? cell->text() : QString();
}

int frmMain::SelectedRow() const
{
    return m_grid->currentRow() + 1;
}

int frmMain::SelectedColumn() const
{
    return qMax(m_grid->currentColumn(), 0);
}

void frmMain::SetSelectedRow(int row)
{
    m_grid->setCurrentCell(row - 1, SelectedColumn());
}

void frmMain::SetSelectedColumn(int column)
{
    if (m_grid->currentRow() >= 0)
        m_grid->setCurrentCell(m_grid->currentRow(), column);
}

void frmMain::SetCaption(const QString &caption)
{
    setWindowTitle(caption);
}

void frmMain::SetStartStopMenu(bool startEnabled, bool stopEnabled)
{
    m_start->setEnabled(startEnabled);
    m_stop->setEnabled(stopEnabled);
}

void frmMain::SetStatusText(const QString &text)
{
    statusBar()->showMessage(text);
}

void frmMain::ShowWindow()
{
    ApplyViewerSettings();
    show();
}

template <typename Window> void frmMain::OpenSettingsWindow(Window *&window)
{
    if (!window)
        window = new Window(m_globals, this);
    window->LoadSettings();
    window->open();
}

void frmMain::OpenMailSettings()
{
    OpenSettingsWindow(m_smtp);
}

void frmMain::OpenDomainShortcuts()
{
    OpenSettingsWindow(m_domains);
}

void frmMain::OpenBackupSettings()
{
    OpenSettingsWindow(m_backup);
}

void frmMain::OpenAdvance()
{
    m_dispatcher.StopForAdvance();
    OpenSettingsWindow(m_advance);
}

void frmMain::OpenScheduleTimers()
{
    OpenSettingsWindow(m_timers);
}

// A message to the maker's support mailbox; not while a run is on, as the mail client is in use.
void frmMain::OpenHelpMessage()
{
    if (!m_globals.Schedule.ProcessingID.isEmpty())
        return m_globals.prompter.ShowMessage(QStringLiteral("QorloMANAGER"),
                                              QStringLiteral("Please wait until report finished processing"));
    if (!m_helpMessage)
        m_helpMessage = new frmSendMail(m_globals, this);
    m_helpMessage->ClearMessage();
    m_helpMessage->open();
}

void frmMain::ViewSmtpLog()
{
    if (!m_textView)
        m_textView = new frmTextView(this);
    m_textView->ShowFile(m_globals.PathOf(QStringLiteral("SMTP.Log")));
    m_textView->open();
}

void frmMain::ToggleAutoRun()
{
    m_globals.Schedule.AutoRun = !m_globals.Schedule.AutoRun;
    m_autoRun->setChecked(m_globals.Schedule.AutoRun);
}

void frmMain::ToggleEncryptDB()
{
    clsConnect &connections = m_globals.Connections;
    const bool encode = connections.EncodeOptions != QLatin1String("Yes");
    connections.EncodeOptions = encode ? QStringLiteral("Yes") : QStringLiteral("No");
    connections.Save();
    m_encryptDB->setChecked(encode);
}

void frmMain::StoreWindowState()
{
    clsViewer &viewer = m_globals.Viewer;
    viewer.Viewer_State = isMinimized()   ? QStringLiteral("Min")
                          : isMaximized() ? QStringLiteral("Max")
                                          : QStringLiteral("Normal");
    // The measures of a minimised or maximised window are not its own: keep the normal ones.
    if (viewer.Viewer_State == QLatin1String("Normal")) {
        viewer.Viewer_Left = Twips(x());
        viewer.Viewer_Top = Twips(y());
        viewer.Viewer_Width = Twips(width());
        viewer.Viewer_Height = Twips(height());
    }
    for (int column = 1; column < ColumnCount; ++column)
        viewer.*kColumnWidths[column - 1] = Twips(m_grid->columnWidth(column));
    viewer.SortCol = QString::number(m_sortColumn);
}

void frmMain::SaveWindowState()
{
    StoreWindowState();
    m_globals.Viewer.Save();
}

void frmMain::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (m_loaded && event->oldSize().isValid())
        SaveWindowState();
}

void frmMain::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (m_loaded && event->type() == QEvent::WindowStateChange)
        SaveWindowState();
}

// Coming back to the front from another form of this program refreshes the grid and restarts a
// schedule that an editor stopped.
void frmMain::OnFocusWindowChanged(QWindow *window)
{
    QWindow *before = m_lastFocusWindow;
    m_lastFocusWindow = window;
    if (!m_loaded || !before || window != windowHandle())
        return;
    for (const QWidget *other : QApplication::topLevelWidgets()) {
        if (other != this && other->windowHandle() == before && IsForm(other)) {
            Guarded([this] { m_dispatcher.MainWindowInFront(); });
            return;
        }
    }
}

bool frmMain::OtherWindowsOpen() const
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (window != this && window->isVisible())
            return true;
    }
    return false;
}

void frmMain::CloseOtherWindows()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window != this && window->isVisible())
            window->close();
    }
}

void frmMain::Exit()
{
    StoreWindowState();
    if (ExitFromMenu(m_globals, OtherWindowsOpen()))
        Q_EMIT ExitRequested();
}

// Refusing the close still unloads the other windows, and the status page says shutdown either way.
void frmMain::closeEvent(QCloseEvent *event)
{
    bool close = true;
    Guarded([&] { close = CloseMainWindow(m_globals, OtherWindowsOpen()); });
    CloseOtherWindows();
    if (close)
        event->accept();
    else
        event->ignore();
}
