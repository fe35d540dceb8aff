#pragma once
// The page model: what one printed page holds, in points from the page's top-left corner. The
// paginator streams pages into a sink twice: a measuring pass counts them ("Page N of M"), the
// drawing pass hands each one to the sink that renders it (PDF, printing, HTML, RTF, text).

#include <QColor>
#include <QImage>
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

    bool operator==(const PageFont &) const = default;
};

struct PageText
{
    QRectF box;
    QString text;
    PageFont font;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    QColor color = Qt::black;
    QColor background = {}; // invalid: none, the page shows through
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

// A picture drawn into its box, which has the picture's own proportions.
struct PagePicture
{
    QRectF box;
    QImage image;
};

// Where a group starts, for the group tree of a viewer: its level (0 the outermost) and caption.
struct PageAnchor
{
    int level = 0;
    QString caption;
    double y = 0;
};

struct Page
{
    int number = 0; // 1-based
    QList<PageText> texts;
    QList<PageLine> lines;
    QList<PageBox> boxes;
    QList<PagePicture> pictures;
    QList<PageAnchor> anchors; // groups that start on this page, in order
};

struct PageSetup
{
    QSizeF size{595.28, 841.89}; // A4 portrait, in points
    bool landscape = false;
    QMarginsF margins{36, 36, 36, 36};
    QString title;

    // The page as the reader sees it: `size` is the paper, and landscape puts its long side across.
    QSizeF orientedSize() const
    {
        const double shortSide = qMin(size.width(), size.height());
        const double longSide = qMax(size.width(), size.height());
        return landscape ? QSizeF(longSide, shortSide) : QSizeF(shortSide, longSide);
    }
};

class PageSink
{
public:
    virtual ~PageSink() = default;
    virtual void begin(const PageSetup &setup, int pageCount) = 0;
    virtual void addPage(const Page &page) = 0;
    virtual void end() = 0;

    // Empty while all went well, else why the output is missing or incomplete. A sink that failed
    // ignores the pages that follow; the caller checks this after end().
    QString errorString() const { return m_error; }
    bool failed() const { return !m_error.isEmpty(); }

protected:
    // Keeps the first failure: later ones are its consequences.
    void setError(const QString &error)
    {
        if (m_error.isEmpty())
            m_error = error;
    }

private:
    QString m_error;
};

} // namespace Engine
