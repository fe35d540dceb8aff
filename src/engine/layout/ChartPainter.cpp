#include "engine/layout/ChartPainter.h"

#include "engine/page/PageFonts.h"

#include <QLocale>
#include <QPainter>
#include <cmath>

namespace Engine {

namespace {

constexpr double Scale = 2; // pixels a point: 144 dots an inch

QColor SeriesColor(qsizetype index)
{
    static const QList<QColor> colors = {QColor(0x1f, 0x4e, 0x79), QColor(0xc5, 0x5a, 0x11),
                                         QColor(0x38, 0x76, 0x1d), QColor(0x7f, 0x60, 0x00),
                                         QColor(0x70, 0x30, 0xa0), QColor(0x00, 0x80, 0x80),
                                         QColor(0xa6, 0x1c, 0x3c), QColor(0x59, 0x59, 0x59)};
    return colors[index % colors.size()];
}

// A round step for the value axis: 1, 2 or 5 times a power of ten, about five of them to the top.
double AxisStep(double top)
{
    if (top <= 0)
        return 1;
    const double raw = top / 5;
    const double power = std::pow(10, std::floor(std::log10(raw)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (raw <= factor * power)
            return factor * power;
    }
    return 10 * power;
}

QString AxisNumber(double value)
{
    return QLocale(QLocale::English).toString(value, 'f', std::abs(value - std::round(value)) < 1e-9 ? 0 : 1);
}

class ChartCanvas
{
public:
    ChartCanvas(const ChartData &data, ChartType type, QPainter &painter, const QSizeF &size)
        : m_data(data), m_type(type), m_painter(painter), m_size(size)
    {
        PageFont font;
        font.pointSize = 7;
        m_painter.setFont(ToQFont(font));
        m_line = m_painter.fontMetrics().height();
    }

    void draw();

private:
    QStringList legendNames() const { return m_type == ChartType::Pie ? m_data.categories : m_data.series; }
    QRectF drawLegend(const QRectF &area);
    void drawAxes(const QRectF &plot, double top, double step);
    void drawBars(const QRectF &plot, double top);
    void drawLines(const QRectF &plot, double top);
    void drawPie(const QRectF &area);
    double stackTop(qsizetype category) const;

    const ChartData &m_data;
    ChartType m_type;
    QPainter &m_painter;
    QSizeF m_size;
    double m_line = 10;
};

void ChartCanvas::draw()
{
    QRectF area(QPointF(4, 4), m_size - QSizeF(8, 8));
    if (!m_data.title.isEmpty()) {
        QFont title = m_painter.font();
        title.setBold(true);
        title.setPointSizeF(title.pointSizeF() * 1.3);
        m_painter.save();
        m_painter.setFont(title);
        m_painter.drawText(QRectF(area.left(), area.top(), area.width(), m_line * 1.5), Qt::AlignCenter,
                           m_data.title);
        m_painter.restore();
        area.setTop(area.top() + m_line * 1.6);
    }
    area = drawLegend(area);
    if (m_type == ChartType::Pie)
        return drawPie(area);
    double top = 0;
    double bottom = 0;
    for (qsizetype c = 0; c < m_data.categories.size(); ++c) {
        for (const QList<double> &series : m_data.values) {
            top = std::max(top, m_type == ChartType::StackedBar ? stackTop(c) : series.value(c));
            bottom = std::min(bottom, series.value(c));
        }
    }
    const double step = AxisStep(top - bottom);
    top = std::ceil(top / step) * step;
    double labelWidth = 0;
    for (double v = 0; v <= top + step / 2; v += step)
        labelWidth = std::max(labelWidth, m_painter.fontMetrics().horizontalAdvance(AxisNumber(v)) + 4.0);
    const QRectF plot(area.left() + labelWidth, area.top() + m_line / 2, area.width() - labelWidth,
                      area.height() - m_line * 1.8);
    drawAxes(plot, top, step);
    if (m_type == ChartType::Line)
        drawLines(plot, top);
    else
        drawBars(plot, top);
}

// The legend down the right side; what is left for the drawing.
QRectF ChartCanvas::drawLegend(const QRectF &area)
{
    const QStringList names = legendNames();
    if (names.isEmpty())
        return area;
    double width = 0;
    for (const QString &name : names)
        width = std::max(width, double(m_painter.fontMetrics().horizontalAdvance(name)));
    width = std::min(width + m_line * 1.6, area.width() / 3);
    const double left = area.right() - width;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const double y = area.top() + i * m_line * 1.2;
        if (y + m_line > area.bottom())
            break;
        m_painter.fillRect(QRectF(left, y + m_line * 0.2, m_line * 0.8, m_line * 0.6), SeriesColor(i));
        m_painter.setPen(Qt::black);
        m_painter.drawText(QRectF(left + m_line, y, width - m_line, m_line), Qt::AlignLeft | Qt::AlignVCenter,
                           m_painter.fontMetrics().elidedText(names[i], Qt::ElideRight, int(width - m_line)));
    }
    return QRectF(area.left(), area.top(), area.width() - width - m_line / 2, area.height());
}

void ChartCanvas::drawAxes(const QRectF &plot, double top, double step)
{
    m_painter.setPen(QPen(Qt::gray, 0.3));
    for (double v = 0; v <= top + step / 2; v += step) {
        const double y = plot.bottom() - v / top * plot.height();
        m_painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        m_painter.setPen(Qt::black);
        m_painter.drawText(QRectF(0, y - m_line / 2, plot.left() - 3, m_line),
                           Qt::AlignRight | Qt::AlignVCenter, AxisNumber(v));
        m_painter.setPen(QPen(Qt::gray, 0.3));
    }
    m_painter.setPen(QPen(Qt::black, 0.6));
    m_painter.drawLine(plot.bottomLeft(), plot.bottomRight());
    m_painter.drawLine(plot.bottomLeft(), plot.topLeft());
    const qsizetype count = m_data.categories.size();
    const double slot = count > 0 ? plot.width() / double(count) : plot.width();
    for (qsizetype c = 0; c < count; ++c) {
        const QRectF label(plot.left() + c * slot, plot.bottom() + 2, slot, m_line);
        m_painter.drawText(
            label, Qt::AlignHCenter | Qt::AlignTop,
            m_painter.fontMetrics().elidedText(m_data.categories[c], Qt::ElideRight, int(slot)));
    }
}

double ChartCanvas::stackTop(qsizetype category) const
{
    double sum = 0;
    for (const QList<double> &series : m_data.values)
        sum += std::max(0.0, series.value(category));
    return sum;
}

void ChartCanvas::drawBars(const QRectF &plot, double top)
{
    const qsizetype count = m_data.categories.size();
    if (count == 0 || top <= 0)
        return;
    const double slot = plot.width() / double(count);
    const qsizetype seriesCount = std::max<qsizetype>(1, m_data.values.size());
    const bool stacked = m_type == ChartType::StackedBar;
    const double barWidth = slot * 0.7 / double(stacked ? 1 : seriesCount);
    m_painter.setPen(Qt::NoPen);
    for (qsizetype c = 0; c < count; ++c) {
        double base = 0;
        for (qsizetype s = 0; s < m_data.values.size(); ++s) {
            const double value = std::max(0.0, m_data.values[s].value(c));
            const double x = plot.left() + c * slot + slot * 0.15 + (stacked ? 0 : s * barWidth);
            const double height = value / top * plot.height();
            m_painter.setBrush(SeriesColor(s));
            m_painter.drawRect(QRectF(x, plot.bottom() - base - height, barWidth, height));
            if (stacked)
                base += height;
        }
    }
}

void ChartCanvas::drawLines(const QRectF &plot, double top)
{
    const qsizetype count = m_data.categories.size();
    if (count == 0 || top <= 0)
        return;
    const double slot = plot.width() / double(count);
    for (qsizetype s = 0; s < m_data.values.size(); ++s) {
        QPolygonF points;
        for (qsizetype c = 0; c < count; ++c)
            points.append(QPointF(plot.left() + (c + 0.5) * slot,
                                  plot.bottom() - m_data.values[s].value(c) / top * plot.height()));
        m_painter.setPen(QPen(SeriesColor(s), 1.5));
        m_painter.drawPolyline(points);
        m_painter.setBrush(SeriesColor(s));
        for (const QPointF &point : points)
            m_painter.drawEllipse(point, 1.8, 1.8);
    }
}

// Slices by category, of the values of all series together.
void ChartCanvas::drawPie(const QRectF &area)
{
    QList<double> slices(m_data.categories.size(), 0.0);
    double whole = 0;
    for (const QList<double> &series : m_data.values) {
        for (qsizetype c = 0; c < slices.size(); ++c) {
            slices[c] += std::max(0.0, series.value(c));
            whole += std::max(0.0, series.value(c));
        }
    }
    if (whole <= 0)
        return;
    const double side = std::min(area.width(), area.height());
    QRectF circle(0, 0, side, side);
    circle.moveCenter(area.center());
    m_painter.setPen(QPen(Qt::white, 0.8));
    int start = 90 * 16;
    for (qsizetype c = 0; c < slices.size(); ++c) {
        const int span = int(std::lround(-slices[c] / whole * 360 * 16));
        m_painter.setBrush(SeriesColor(c));
        m_painter.drawPie(circle, start, span);
        start += span;
    }
}

} // namespace

QImage PaintChart(const ChartData &data, ChartType type, const QSizeF &size)
{
    QImage image((size * Scale).toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    // 72 dots an inch for the painter's fonts, so that after the scale a unit is a point, fonts included.
    image.setDotsPerMeterX(int(std::lround(72 / 0.0254)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(Scale, Scale);
    ChartCanvas(data, type, painter, size).draw();
    return image;
}

} // namespace Engine
