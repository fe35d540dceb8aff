#pragma once
// What a report window shows of its report: the pages laid out by the engine and drawn on the screen,
// page navigation, zoom, a group tree that jumps to a group's first page, text search, refresh, print
// and export. Reading and laying out run from the event loop and keep it turning; they can be cancelled.

#include "engine/page/ReportPages.h"

#include <QElapsedTimer>
#include <QWidget>

namespace Engine {
class Report;
}

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QSplitter;
class QTreeWidget;
class QTreeWidgetItem;
class ReportPageView;

class ReportViewer : public QWidget
{
    Q_OBJECT
public:
    explicit ReportViewer(QWidget *parent = nullptr);
    ~ReportViewer() override;

    // The report to show; it must stay open while the viewer shows it. Null detaches it.
    void setReportSource(Engine::Report *report);
    // Reads the records unless they have been read, then lays out the pages. Returns at once: the work
    // runs from the event loop, and the report's PrintingStatus.Progress tells when it has ended.
    void ViewReport();
    // Reads the records again from the database, then lays out the pages.
    void Refresh();
    // Lays out the pages again from the records read, after a change of the group selection.
    void Redraw();
    // Stops the reading or laying out under way between records or pages.
    void Cancel();
    bool Busy() const { return m_busy; }
    // Why the last reading or laying out failed; empty when it did not.
    QString ErrorText() const { return m_error; }

    const Engine::ReportPages &Pages() const { return m_pages; }
    ReportPageView &PageView() const { return *m_view; }
    int CurrentPage() const;
    // Shows the page, from `y` points down when positive; pages that have not arrived are ignored.
    void GoToPage(int number, double y = 0);
    void FirstPage();
    void PreviousPage();
    void NextPage();
    void LastPage();
    // The tree is on the left while it is switched on and the report has groups.
    bool GroupTreeShown() const;
    void SetGroupTreeShown(bool shown);
    QTreeWidget &GroupTree() const { return *m_tree; }
    // Shows the next page, after the shown one and round to the first, that holds the text, with its
    // texts marked; false when no page holds it.
    bool FindText(const QString &text);
    // Writes the export of the engine's FormatType to the file; raises EngineError.
    void ExportTo(int formatType, const QString &file);
    // Prints through CUPS as scheduled printing does, on the printer of that name with the orientation
    // (the engine's PaperOrientation code); raises EngineError.
    void PrintTo(const QString &printerName, qint16 copies, int orientation);

Q_SIGNALS:
    // A reading or laying out has ended, laid out, failed or cancelled.
    void Finished();
    // It failed with this description (not sent when cancelled).
    void Failed(const QString &description);

private:
    void BuildToolBar(class QToolBar *bar);
    void Start(bool readRecords);
    void Load(bool readRecords);
    void Poll();
    void OnPageAdded(int number);
    void FillGroupTree();
    void OnGroupChosen(QTreeWidgetItem *item);
    void OnZoomChosen(const QString &text);
    void ShowPosition();
    void SetBusy(bool busy);
    // The commands of the tool bar with their dialogs.
    void PrintWithDialog();
    void ExportWithDialog();
    void SearchFromField();

    Engine::Report *m_report = nullptr;
    Engine::ReportPages m_pages;
    ReportPageView *m_view;
    QTreeWidget *m_tree;
    QSplitter *m_splitter;
    QSpinBox *m_pageNumber = nullptr;
    QLabel *m_pageCount = nullptr;
    QComboBox *m_zoom = nullptr;
    QLineEdit *m_search = nullptr;
    QAction *m_groupTreeAction = nullptr;
    QList<QAction *> m_dataActions; // refresh, print, export: not while busy
    QLabel *m_status;
    QProgressBar *m_progress;
    QPushButton *m_cancel;
    QString m_error;
    QString m_lastSearch;
    QElapsedTimer m_sincePosition;
    bool m_busy = false;
    bool m_cancelled = false;
};
