#include "ReportViewer.h"

#include "ReportPageView.h"
#include "TabOrder.h"

#include "engine/EngineError.h"
#include "engine/Paginator.h"
#include "engine/Report.h"
#include "engine/StopCheck.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>

namespace {

// How often the page number and progress follow the pages laid out.
constexpr qint64 PositionIntervalMs = 30;

const QString FitWidth = QStringLiteral("Fit Width");
const QString FitPage = QStringLiteral("Fit Page");

template <typename Widget> Widget *Named(Widget *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace

ReportViewer::ReportViewer(QWidget *parent)
    : QWidget(parent), m_view(new ReportPageView(this)), m_tree(Named(new QTreeWidget(this), "groupTree")),
      m_splitter(new QSplitter(this)), m_status(Named(new QLabel(this), "lblStatus")),
      m_progress(Named(new QProgressBar(this), "prgLoad")),
      m_cancel(Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel"))
{
    auto *bar = new QToolBar(this);
    BuildToolBar(bar);
    m_tree->setHeaderHidden(true);
    connect(m_tree, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item) { OnGroupChosen(item); });
    m_splitter->addWidget(m_tree);
    m_splitter->addWidget(m_view);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setSizes({200, 800});
    SetTabOrder({m_pageNumber, m_zoom, m_search, m_tree, m_view});
    connect(m_view, &ReportPageView::pageShown, this, [this] { ShowPosition(); });
    connect(m_cancel, &QPushButton::clicked, this, [this] { Cancel(); });

    auto *statusRow = new QHBoxLayout;
    statusRow->addWidget(m_status, 1);
    statusRow->addWidget(m_progress);
    statusRow->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    layout->addWidget(m_splitter, 1);
    layout->addLayout(statusRow);
    m_pages.setPageAdded([this](int number) { OnPageAdded(number); });
    SetBusy(false);
}

ReportViewer::~ReportViewer() = default;

void ReportViewer::BuildToolBar(QToolBar *bar)
{
    const auto add = [this, bar](const char *name, const QString &caption, auto slot) {
        QAction *action = bar->addAction(caption, this, slot);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    m_groupTreeAction =
        add("actGroupTree", QStringLiteral("Group Tree"), [this](bool on) { SetGroupTreeShown(on); });
    m_groupTreeAction->setCheckable(true);
    m_groupTreeAction->setChecked(true);
    bar->addSeparator();
    add("actFirst", QStringLiteral("|<"), [this] { FirstPage(); })->setToolTip(QStringLiteral("First page"));
    add("actPrevious", QStringLiteral("<"), [this] {
        PreviousPage();
    })->setToolTip(QStringLiteral("Previous page"));
    m_pageNumber = Named(new QSpinBox(bar), "spnPage");
    m_pageNumber->setKeyboardTracking(false);
    m_pageNumber->setAccessibleName(QStringLiteral("Page"));
    connect(m_pageNumber, &QSpinBox::valueChanged, this, [this](int number) {
        if (number != CurrentPage())
            GoToPage(number);
    });
    bar->addWidget(m_pageNumber);
    m_pageCount = Named(new QLabel(bar), "lblPageCount");
    bar->addWidget(m_pageCount);
    add("actNext", QStringLiteral(">"), [this] { NextPage(); })->setToolTip(QStringLiteral("Next page"));
    add("actLast", QStringLiteral(">|"), [this] { LastPage(); })->setToolTip(QStringLiteral("Last page"));
    bar->addSeparator();
    m_zoom = Named(new QComboBox(bar), "cmbZoom");
    m_zoom->setEditable(true);
    m_zoom->setAccessibleName(QStringLiteral("Zoom"));
    m_zoom->addItems({FitWidth, FitPage, QStringLiteral("50%"), QStringLiteral("75%"), QStringLiteral("100%"),
                      QStringLiteral("150%"), QStringLiteral("200%"), QStringLiteral("300%"),
                      QStringLiteral("400%")});
    connect(m_zoom, &QComboBox::textActivated, this, [this](const QString &text) { OnZoomChosen(text); });
    bar->addWidget(m_zoom);
    bar->addSeparator();
    m_dataActions = {add("actRefresh", QStringLiteral("Refresh"), [this] { Refresh(); }),
                     add("actPrint", QStringLiteral("Print..."), [this] { PrintWithDialog(); }),
                     add("actExport", QStringLiteral("Export..."), [this] { ExportWithDialog(); })};
    bar->addSeparator();
    m_search = Named(new QLineEdit(bar), "txtSearch");
    m_search->setPlaceholderText(QStringLiteral("Find text"));
    m_search->setAccessibleName(m_search->placeholderText());
    m_search->setMaximumWidth(200);
    connect(m_search, &QLineEdit::returnPressed, this, [this] { SearchFromField(); });
    bar->addWidget(m_search);
    add("actFind", QStringLiteral("Find Next"), [this] { SearchFromField(); });
}

void ReportViewer::setReportSource(Engine::Report *report)
{
    m_report = report;
    m_view->setPages(nullptr);
    m_tree->clear();
}

void ReportViewer::ViewReport()
{
    Start(!m_report || !m_report->hasRecords());
}

void ReportViewer::Refresh()
{
    if (m_report)
        m_report->DiscardSavedData();
    Start(true);
}

void ReportViewer::Redraw()
{
    Start(false);
}

// The progress reads "in progress" from here on, so that a wait for the end does not end at once.
void ReportViewer::Start(bool readRecords)
{
    if (!m_report || m_busy)
        return;
    m_report->PrintingStatus().setProgress(Engine::ProgressInProgress);
    SetBusy(true);
    QTimer::singleShot(0, this, [this, readRecords] { Load(readRecords); });
}

void ReportViewer::Load(bool readRecords)
{
    m_error.clear();
    m_cancelled = false;
    m_view->setPages(nullptr);
    m_tree->clear();
    m_status->setText(readRecords ? QStringLiteral("Reading records...")
                                  : QStringLiteral("Laying out pages..."));
    m_sincePosition.start();
    Engine::PrintingStatus &status = m_report->PrintingStatus();
    try {
        Engine::InterruptionHook hook([this] { Poll(); });
        if (readRecords)
            m_report->ReadRecords();
        status.setProgress(Engine::ProgressInProgress);
        Engine::Paginator(*m_report).render(m_pages);
        status.setProgress(Engine::ProgressCompleted);
    } catch (const Engine::EngineError &error) {
        const bool halted = error.number() == Engine::EngineError::Stopped;
        status.setProgress(halted ? Engine::ProgressHalted : Engine::ProgressFailed);
        if (!halted)
            m_error = error.description();
    }
    SetBusy(false);
    FillGroupTree();
    ShowPosition();
    if (!m_error.isEmpty())
        Q_EMIT Failed(m_error);
    Q_EMIT Finished();
}

// The engine calls this every few records or pages, no more often than it must.
void ReportViewer::Poll()
{
    QCoreApplication::processEvents();
    if (m_cancelled)
        throw Engine::EngineError(Engine::EngineError::Stopped, QStringLiteral("The report was cancelled"));
}

void ReportViewer::Cancel()
{
    if (m_busy)
        m_cancelled = true;
}

// The first page is shown as soon as it is laid out; the others follow in the page count.
void ReportViewer::OnPageAdded(int number)
{
    if (number == 1) {
        m_view->setPages(&m_pages);
        m_view->showPage(1);
        m_progress->setRange(0, m_pages.pageCount());
        QCoreApplication::processEvents();
        m_sincePosition.start();
    }
    m_progress->setValue(number);
    if (m_sincePosition.elapsed() >= PositionIntervalMs) {
        ShowPosition();
        m_sincePosition.start();
    }
}

int ReportViewer::CurrentPage() const
{
    return m_view->currentPage();
}

void ReportViewer::GoToPage(int number, double y)
{
    m_view->showPage(number, y);
}

void ReportViewer::FirstPage()
{
    GoToPage(1);
}

void ReportViewer::PreviousPage()
{
    GoToPage(CurrentPage() - 1);
}

void ReportViewer::NextPage()
{
    GoToPage(CurrentPage() + 1);
}

void ReportViewer::LastPage()
{
    GoToPage(m_pages.pagesArrived());
}

bool ReportViewer::GroupTreeShown() const
{
    return m_groupTreeAction->isChecked();
}

// A report without groups leaves the room of its empty tree to the page.
void ReportViewer::SetGroupTreeShown(bool shown)
{
    m_groupTreeAction->setChecked(shown);
    m_tree->setVisible(shown && m_tree->topLevelItemCount() > 0);
}

// The groups nest by level: each goes under the last group one level up.
void ReportViewer::FillGroupTree()
{
    m_tree->clear();
    QList<QTreeWidgetItem *> open;
    for (const Engine::ReportPages::Group &group : m_pages.groups()) {
        const int level = qMin(group.level, int(open.size()));
        open.resize(level);
        auto *item = open.isEmpty() ? new QTreeWidgetItem(m_tree) : new QTreeWidgetItem(open.last());
        item->setText(0, group.caption);
        item->setData(0, Qt::UserRole, group.page);
        item->setData(0, Qt::UserRole + 1, group.y);
        open.append(item);
    }
    SetGroupTreeShown(GroupTreeShown());
}

void ReportViewer::OnGroupChosen(QTreeWidgetItem *item)
{
    GoToPage(item->data(0, Qt::UserRole).toInt(), item->data(0, Qt::UserRole + 1).toDouble());
}

void ReportViewer::OnZoomChosen(const QString &text)
{
    if (text == FitWidth)
        return m_view->setFit(ReportPageView::Fit::Width);
    if (text == FitPage)
        return m_view->setFit(ReportPageView::Fit::Page);
    bool number = false;
    const int percent = QString(text).remove(QLatin1Char('%')).trimmed().toInt(&number);
    if (number)
        m_view->setZoomPercent(percent);
    m_zoom->setEditText(QString::number(m_view->zoomPercent()) + QLatin1Char('%'));
}

bool ReportViewer::FindText(const QString &text)
{
    const int from = text.compare(m_lastSearch, Qt::CaseInsensitive) == 0 ? CurrentPage() + 1 : CurrentPage();
    m_lastSearch = text;
    const int page = m_pages.findText(text, from);
    if (page == 0) {
        m_status->setText(QStringLiteral("\"%1\" is not in the report").arg(text));
        return false;
    }
    GoToPage(page);
    m_view->setMarks(m_pages.textBoxes(page, text));
    return true;
}

void ReportViewer::SearchFromField()
{
    FindText(m_search->text());
}

void ReportViewer::ShowPosition()
{
    const int arrived = m_pages.pagesArrived();
    m_pageNumber->setRange(arrived > 0 ? 1 : 0, arrived);
    m_pageNumber->setValue(CurrentPage());
    const QString total =
        m_pages.complete() || !m_busy ? QString::number(arrived) : QStringLiteral("%1+").arg(arrived);
    m_pageCount->setText(QStringLiteral(" of ") + total + QLatin1Char(' '));
    if (!m_busy && m_report) {
        const Engine::PrintingStatus &status = m_report->PrintingStatus();
        m_status->setText(status.Progress() == Engine::ProgressHalted
                              ? QStringLiteral("Cancelled")
                              : QStringLiteral("Records: %1").arg(status.NumberOfRecordSelected()));
    }
}

void ReportViewer::SetBusy(bool busy)
{
    m_busy = busy;
    m_progress->setVisible(busy);
    m_progress->setRange(0, 0);
    m_cancel->setVisible(busy);
    for (QAction *action : std::as_const(m_dataActions))
        action->setEnabled(!busy);
}
