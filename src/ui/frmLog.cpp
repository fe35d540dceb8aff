#include "frmLog.h"

#include "HandlerErrors.h"
#include "frmLogSetting.h"

#include "core/Clock.h"
#include "core/Numbers.h"
#include "core/TWReg.h"
#include "log/LogExport.h"
#include "log/LogFilter.h"
#include "scheduler/QorloGlobals.h"

#include <QAbstractTableModel>
#include <QActionGroup>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QHeaderView>
#include <QMenuBar>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QString kSection = QStringLiteral("LogForm");
constexpr int kTwipsPerPixel = 15;
constexpr int kColumnCount = 5;

// The columns: heading, width key and start width in twips.
struct ColumnSetting
{
    const char *heading;
    const char *key;
    int twips;
};
constexpr ColumnSetting kColumns[kColumnCount] = {{"ID", "ColID", 1980},
                                                  {"Start", "ColStart", 1980},
                                                  {"Finish", "ColStop", 1980},
                                                  {"Description", "ColDesc", 3000},
                                                  {"Pages", "ColPages", 980}};

const char *const kFilterCaptions[LogFilter::FilterCount] = {"All Reports", "Current Report", "Today",
                                                             "Yesterday",   "This Week",      "Prior 7 days"};

qint32 Setting(const char *key, qint32 fallback)
{
    return TWReg::ReadSettingNumber(kSection, QLatin1String(key), fallback);
}

void SaveSetting(const char *key, qint32 value)
{
    TWReg::SaveSettingNumber(kSection, QLatin1String(key), value);
}

QString FileStamp(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() ? file.lastModified().toString(Qt::ISODateWithMs) + QLatin1Char('/') +
                               QString::number(file.size())
                         : QString();
}

} // namespace

// The texts of the shown rows, copied at each fill so that the grid never reads a log that is being
// rewritten.
class LogRowsModel : public QAbstractTableModel
{
public:
    using Row = std::array<QString, kColumnCount>;

    explicit LogRowsModel(QObject *parent) : QAbstractTableModel(parent) {}

    void SetRows(QList<Row> rows)
    {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
    }
    int rowCount(const QModelIndex &parent) const override
    {
        return parent.isValid() ? 0 : int(m_rows.size());
    }
    int columnCount(const QModelIndex &parent) const override { return parent.isValid() ? 0 : kColumnCount; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::DisplayRole || !index.isValid())
            return QVariant();
        return m_rows.at(index.row()).at(size_t(index.column()));
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return QAbstractTableModel::headerData(section, orientation, role);
        return QLatin1String(kColumns[section].heading);
    }

private:
    QList<Row> m_rows;
};

frmLog::frmLog(QorloGlobals &globals, QWidget *parent) : QDialog(parent), m_globals(globals)
{
    setObjectName(QStringLiteral("frmLog"));
    setWindowTitle(QStringLiteral("Report Log"));
    m_rows = new LogRowsModel(this);
    fgView = new QTableView(this);
    fgView->setObjectName(QStringLiteral("fgView"));
    fgView->setModel(m_rows);
    fgView->verticalHeader()->hide();
    fgView->setSelectionBehavior(QAbstractItemView::SelectRows);
    fgView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Rows of one height spare the view from measuring each of thousands of rows.
    fgView->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    fgView->horizontalHeader()->setStretchLastSection(false);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(fgView);
    BuildMenus();
    m_watcher = new QFileSystemWatcher(this);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &frmLog::LogFileChanged);
    connect(m_watcher, &QFileSystemWatcher::fileChanged, this, &frmLog::LogFileChanged);
}

frmLog::~frmLog() = default;

QAction *frmLog::AddEntry(QMenu *menu, const char *name, const QString &caption, std::function<void()> action)
{
    QAction *entry = menu->addAction(caption);
    entry->setObjectName(QLatin1String(name));
    connect(entry, &QAction::triggered, this,
            [this, action = std::move(action)] { RunHandler(m_globals.prompter, action); });
    return entry;
}

void frmLog::BuildMenus()
{
    auto *bar = new QMenuBar(this);
    QMenu *file = bar->addMenu(QStringLiteral("&File"));
    AddEntry(file, "mnuClear", QStringLiteral("&Clear"), [this] { mnuClear_Click(); });
    AddEntry(file, "mnuExport", QStringLiteral("&Export"), [this] { mnuExport_Click(); });
    AddEntry(file, "mnuSettings", QStringLiteral("Se&ttings"), [this] { mnuSettings_Click(); });
    AddEntry(file, "mnuSave", QStringLiteral("&Save"), [this] { mnuSave_Click(); });
    AddEntry(file, "mnuRefresh", QStringLiteral("&Refresh"), [this] { mnuRefresh_Click(); });
    file->addSeparator();
    AddEntry(file, "mnuExit", QStringLiteral("E&xit"), [this] { close(); });

    QMenu *filter = bar->addMenu(QStringLiteral("F&ilter"));
    auto *filters = new QActionGroup(this);
    for (qint16 number = 0; number < LogFilter::FilterCount; ++number) {
        const QByteArray name = "mnuFilter" + QByteArray::number(number);
        QAction *entry = AddEntry(filter, name.constData(), QLatin1String(kFilterCaptions[number]),
                                  [this, number] { ViewLog(number); });
        entry->setCheckable(true);
        filters->addAction(entry);
        m_filterEntries[size_t(number)] = entry;
    }

    // Sorting is not offered: the log shows its rows in the order they were written.
    QMenu *sort = bar->addMenu(QStringLiteral("S&ort"));
    for (const auto &[name, caption] :
         {std::pair{"mnuSortAsc", "Ascending Date"}, {"mnuSortDesc", "Descending Date"}}) {
        QAction *entry = sort->addAction(QLatin1String(caption));
        entry->setObjectName(QLatin1String(name));
        entry->setEnabled(false);
    }
    layout()->setMenuBar(bar);
}

// A window already open only comes to the front, as the operator left it.
void frmLog::ShowLog()
{
    if (!isVisible()) {
        ApplyMeasures();
        ViewLog(qint16(Setting("Filter", LogFilter::AllReports)));
        WatchLogFile();
        show();
    }
    raise();
    activateWindow();
}

void frmLog::ApplyMeasures()
{
    move(Setting("Left", 3210) / kTwipsPerPixel, Setting("Top", 840) / kTwipsPerPixel);
    resize(Setting("Width", 5370) / kTwipsPerPixel, Setting("Height", 2520) / kTwipsPerPixel);
    for (int column = 0; column < kColumnCount; ++column)
        fgView->setColumnWidth(column,
                               Setting(kColumns[column].key, kColumns[column].twips) / kTwipsPerPixel);
    if (TWReg::ReadSetting(kSection, QStringLiteral("State"), QStringLiteral("Normal")) ==
        QLatin1String("Max"))
        setWindowState(Qt::WindowMaximized);
}

void frmLog::SaveMeasures()
{
    const bool maximised = isMaximized();
    TWReg::SaveSetting(kSection, QStringLiteral("State"),
                       maximised ? QStringLiteral("Max") : QStringLiteral("Normal"));
    // The measures of a maximised window are not its own.
    if (!maximised) {
        SaveSetting("Top", y() * kTwipsPerPixel);
        SaveSetting("Left", x() * kTwipsPerPixel);
        SaveSetting("Width", width() * kTwipsPerPixel);
        SaveSetting("Height", height() * kTwipsPerPixel);
    }
    for (int column = 0; column < kColumnCount; ++column)
        SaveSetting(kColumns[column].key, fgView->columnWidth(column) * kTwipsPerPixel);
}

void frmLog::hideEvent(QHideEvent *event)
{
    SaveMeasures();
    m_watcher->removePaths(m_watcher->files() + m_watcher->directories());
    QDialog::hideEvent(event);
}

void frmLog::ViewLog(qint16 filter)
{
    const qint16 known =
        filter >= 0 && filter < LogFilter::FilterCount ? filter : qint16(LogFilter::AllReports);
    m_filter = known;
    TWReg::SaveSettingNumber(kSection, QStringLiteral("Filter"), known);
    m_filterEntries[size_t(known)]->setChecked(true);
    FillGrid(true);
}

void frmLog::FillGrid(bool tellEmpty)
{
    const clsLog &log = m_globals.Log;
    m_shownStamp = FileStamp(log.FileName());
    if (log.Count() == 0) {
        m_rows->SetRows({});
        if (tellEmpty)
            m_globals.prompter.ShowMessage(QStringLiteral("Empty log File"),
                                           QStringLiteral("No Entries in Log"));
        return;
    }
    QList<LogRowsModel::Row> rows;
    const QList<int> shown = LogFilter::Rows(log, m_filter, m_globals.Schedule.ReportID(), Today());
    rows.reserve(shown.size());
    for (int row : shown) {
        const QString pages = log.CellAt(row, clsLog::ColPages);
        rows.append({log.CellAt(row, clsLog::ColReportID), log.CellAt(row, clsLog::ColLogDate),
                     log.CellAt(row, clsLog::ColFinish), log.CellAt(row, clsLog::ColText),
                     Numbers::NumericPrefix(pages) > 0 ? pages : QString()});
    }
    m_rows->SetRows(std::move(rows));
}

// The folder is watched as well as the file: a save replaces the file, which ends the watch on it.
void frmLog::WatchLogFile()
{
    const QString file = m_globals.Log.FileName();
    if (!m_watcher->directories().contains(m_globals.AppPath))
        m_watcher->addPath(m_globals.AppPath);
    if (QFileInfo::exists(file) && !m_watcher->files().contains(file))
        m_watcher->addPath(file);
}

void frmLog::LogFileChanged()
{
    WatchLogFile();
    if (FileStamp(m_globals.Log.FileName()) != m_shownStamp)
        FillGrid(false);
}

void frmLog::mnuClear_Click()
{
    if (!m_globals.prompter.AskYesNo(QStringLiteral("Clear Log"),
                                     QStringLiteral("Confirm that you want to delete all log entries")))
        return;
    m_globals.Log.Clear();
    m_globals.Log.Save();
    FillGrid(false);
}

void frmLog::mnuExport_Click()
{
    m_globals.prompter.ShowMessage(LogExport::Title(), LogExport::ExportLogCsv(m_globals.Log));
}

void frmLog::mnuSettings_Click()
{
    auto *settings = new frmLogSetting(m_globals, this);
    settings->setAttribute(Qt::WA_DeleteOnClose);
    connect(settings, &QDialog::accepted, this, [this] { FillGrid(false); });
    settings->open();
}

void frmLog::mnuSave_Click()
{
    m_globals.Log.Save();
    FillGrid(true);
}

void frmLog::mnuRefresh_Click()
{
    clsLog &log = m_globals.Log;
    log.Clear();
    log.Load(log.FileName());
    FillGrid(true);
}
