#pragma once
// One page of a report drawn from the engine's page model with QPainter, at a zoom of its own or fitted
// to the window's width or to the whole page, with the texts of a search marked.

#include <QImage>
#include <QList>
#include <QRectF>
#include <QScrollArea>

namespace Engine {
class ReportPages;
}

class ReportPageView : public QScrollArea
{
    Q_OBJECT
public:
    enum class Fit { None, Width, Page };
    static constexpr int MinimumZoom = 50;
    static constexpr int MaximumZoom = 400;

    explicit ReportPageView(QWidget *parent = nullptr);

    // The pages to show; none clears the view.
    void setPages(const Engine::ReportPages *pages);
    // Shows an arrived page from its top, or from `y` points down when positive; marks stay if the page
    // is the one shown.
    void showPage(int number, double y = 0);
    int currentPage() const { return m_page; }
    // A zoom in percent (bounded to 50 to 400) ends fitting.
    void setZoomPercent(int percent);
    void setFit(Fit fit);
    Fit fit() const { return m_fit; }
    // The zoom in effect, in percent, fitted or not.
    int zoomPercent() const;
    // Boxes of the shown page, in points, to mark.
    void setMarks(const QList<QRectF> &boxes);
    // The page as it is drawn on the screen.
    const QImage &image() const { return m_image; }

Q_SIGNALS:
    void pageShown(int number);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    double scale() const;
    void redraw();

    const Engine::ReportPages *m_pages = nullptr;
    int m_page = 0;
    Fit m_fit = Fit::Width;
    int m_zoom = 100;
    QList<QRectF> m_marks;
    QImage m_image;
    class PageCanvas *m_canvas;
};
