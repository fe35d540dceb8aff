#include "ReportPageView.h"

#include "engine/page/PagePainter.h"
#include "engine/page/ReportPages.h"

#include <QPainter>
#include <QScrollBar>

namespace {

constexpr double PointsPerInch = 72;
constexpr int PageMargin = 12; // grey space around the page
// 72 dots per inch in dots per metre: a point of the model is a pixel of the image before scaling, and
// fonts in points keep their size.
constexpr int PointDotsPerMeter = 2835;

} // namespace

// Shows the drawn page on grey, centred.
class PageCanvas : public QWidget
{
public:
    explicit PageCanvas(const QImage &image, QWidget *parent) : QWidget(parent), m_image(image)
    {
        setAutoFillBackground(true);
        setBackgroundRole(QPalette::Dark);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        if (m_image.isNull())
            return;
        QPainter painter(this);
        const QPoint corner((width() - m_image.width()) / 2, PageMargin);
        painter.fillRect(QRect(corner + QPoint(3, 3), m_image.size()), Qt::black);
        painter.drawImage(corner, m_image);
    }

private:
    const QImage &m_image;
};

ReportPageView::ReportPageView(QWidget *parent) : QScrollArea(parent), m_canvas(new PageCanvas(m_image, this))
{
    setObjectName(QStringLiteral("pageView"));
    setWidget(m_canvas);
    setWidgetResizable(false);
    setBackgroundRole(QPalette::Dark);
    setAlignment(Qt::AlignHCenter | Qt::AlignTop);
}

void ReportPageView::setPages(const Engine::ReportPages *pages)
{
    m_pages = pages;
    m_page = 0;
    m_marks.clear();
    redraw();
}

void ReportPageView::showPage(int number, double y)
{
    if (!m_pages || number < 1 || number > m_pages->pagesArrived())
        return;
    if (number != m_page)
        m_marks.clear();
    m_page = number;
    redraw();
    verticalScrollBar()->setValue(y > 0 ? int(y * scale()) : 0);
    Q_EMIT pageShown(number);
}

void ReportPageView::setZoomPercent(int percent)
{
    m_zoom = qBound(MinimumZoom, percent, MaximumZoom);
    m_fit = Fit::None;
    redraw();
}

void ReportPageView::setFit(Fit fit)
{
    m_fit = fit;
    redraw();
}

int ReportPageView::zoomPercent() const
{
    return qRound(scale() * PointsPerInch / logicalDpiX() * 100);
}

void ReportPageView::setMarks(const QList<QRectF> &boxes)
{
    m_marks = boxes;
    redraw();
}

void ReportPageView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    if (m_fit != Fit::None)
        redraw();
}

// Screen pixels per point.
double ReportPageView::scale() const
{
    const double atHundred = logicalDpiX() / PointsPerInch;
    if (!m_pages || m_fit == Fit::None)
        return atHundred * m_zoom / 100.0;
    const QSizeF page = m_pages->setup().orientedSize();
    const QSize room = maximumViewportSize() - QSize(2 * PageMargin, 2 * PageMargin);
    // A page fitted to the width is taller than the window: the vertical scroll bar takes its room.
    const double fitted = m_fit == Fit::Page
                              ? qMin(room.width() / page.width(), room.height() / page.height())
                              : (room.width() - verticalScrollBar()->sizeHint().width()) / page.width();
    const double lowest = atHundred * MinimumZoom / 100.0;
    const double highest = atHundred * MaximumZoom / 100.0;
    return qBound(lowest, fitted, highest);
}

void ReportPageView::redraw()
{
    if (!m_pages || m_page < 1) {
        m_image = QImage();
        m_canvas->resize(viewport()->size());
        m_canvas->update();
        return;
    }
    const double factor = scale();
    const QSizeF points = m_pages->setup().orientedSize();
    m_image = QImage((points * factor).toSize(), QImage::Format_RGB32);
    m_image.setDotsPerMeterX(PointDotsPerMeter);
    m_image.setDotsPerMeterY(PointDotsPerMeter);
    m_image.fill(Qt::white);
    QPainter painter(&m_image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.scale(factor, factor);
    Engine::PaintPage(painter, m_pages->page(m_page));
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    for (const QRectF &box : m_marks)
        painter.fillRect(box, QColor(255, 230, 0));
    painter.end();
    m_canvas->resize(qMax(m_image.width() + 2 * PageMargin, viewport()->width()),
                     m_image.height() + 2 * PageMargin);
    m_canvas->update();
}
