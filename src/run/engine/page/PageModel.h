#pragma once
// The page model: what one printed page holds, in points from the page's top-left corner. The
// paginator streams pages into a sink twice: a measuring pass counts them ("Page N of M"), the
// drawing pass hands each one to the sink that renders it (PDF, printing, HTML, RTF, text).

#include <QColor>
#include <QList>
#include <QMarginsF>
#include <QRectF>
#include <QSizeF>
#include <QString>

namespace Engine {

struct PageFont
{
    QString family = QStringLiteral("Liberation Sans");
    double pointSize = 9;
    bool bold = false;
    bool italic = false;
};

struct PageText
{
    QRectF box;
    QString text;
    PageFont font;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
};

struct PageLine
{
    QPointF from;
    QPointF to;
    double width = 0.5;
};

struct PageBox
{
    QRectF rect;
    double lineWidth = 0.5;
    QColor fill = Qt::transparent;
};

struct Page
{
    int number = 0; // 1-based
    QList<PageText> texts;
    QList<PageLine> lines;
    QList<PageBox> boxes;
};

struct PageSetup
{
    QSizeF size{595.28, 841.89}; // A4 portrait, in points
    bool landscape = false;
    QMarginsF margins{36, 36, 36, 36};
    QString title;
};

class PageSink
{
public:
    virtual ~PageSink() = default;
    virtual void begin(const PageSetup &setup, int pageCount) = 0;
    virtual void addPage(const Page &page) = 0;
    virtual void end() = 0;
};

} // namespace Engine
