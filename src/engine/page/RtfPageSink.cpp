#include "engine/page/RtfPageSink.h"

#include "engine/page/PageGeometry.h"
#include "engine/page/RtfMarkup.h"

#include <QSaveFile>
#include <QTemporaryFile>
#include <algorithm>
#include <cmath>
#include <map>

namespace Engine {

using namespace RtfMarkup;

namespace {

// Word processors refuse to print closer to the edge than this; texts within it move in.
constexpr double MaxMargin = 18;

double Anchor(const PageText &text)
{
    if (text.alignment & Qt::AlignRight)
        return Finite(text.box.right());
    if (text.alignment & Qt::AlignHCenter)
        return Finite(text.box.center().x());
    return Finite(text.box.left());
}

QString TabKind(const PageText &text)
{
    if (text.alignment & Qt::AlignRight)
        return QStringLiteral("\\tqr");
    if (text.alignment & Qt::AlignHCenter)
        return QStringLiteral("\\tqc");
    return QString();
}

} // namespace

RtfPageSink::RtfPageSink(const QString &fileName) : m_fileName(fileName) {}

RtfPageSink::~RtfPageSink() = default;

void RtfPageSink::begin(const PageSetup &setup, int)
{
    m_setup = setup;
    const QMarginsF &m = setup.margins;
    m_margins = QMarginsF(std::min(m.left(), MaxMargin), std::min(m.top(), MaxMargin),
                          std::min(m.right(), MaxMargin), std::min(m.bottom(), MaxMargin));
    m_pagesWritten = 0;
    m_fonts.clear();
    m_fontIndex.clear();
    m_colors.clear();
    fontIndex(PageFont().family);
    m_body = std::make_unique<QTemporaryFile>();
    if (!m_body->open()) {
        setError(
            QStringLiteral("Cannot write %1: no temporary file: %2").arg(m_fileName, m_body->errorString()));
        m_body.reset();
    }
}

void RtfPageSink::addPage(const Page &page)
{
    if (!m_body)
        return;
    if (m_body->write(pageBody(page, m_pagesWritten == 0).toLatin1()) < 0) {
        setError(QStringLiteral("Cannot write %1: %2").arg(m_fileName, m_body->errorString()));
        m_body.reset();
        return;
    }
    ++m_pagesWritten;
}

void RtfPageSink::end()
{
    if (!m_body)
        return;
    QSaveFile file(m_fileName);
    bool written = file.open(QIODevice::WriteOnly) && file.write(header().toLatin1()) >= 0 && m_body->seek(0);
    while (written && !m_body->atEnd()) {
        const QByteArray chunk = m_body->read(1 << 20);
        written = !chunk.isEmpty() && file.write(chunk) == chunk.size();
    }
    written = written && file.write("}\r\n") >= 0 && file.commit();
    if (!written)
        setError(QStringLiteral("Cannot write %1: %2").arg(m_fileName, file.errorString()));
    m_body.reset();
}

// Rows of text go down the page as paragraphs whose space above keeps each row at its place; the
// first paragraph starts the page and carries the page's shapes.
QString RtfPageSink::pageBody(const Page &page, bool firstPage)
{
    QString lead = firstPage ? QString() : QStringLiteral("\\pagebb");
    QString shapes;
    int order = 0;
    for (const PageBox &box : page.boxes)
        shapes += BoxShape(box, ++order);
    for (const PageLine &line : page.lines)
        shapes += LineShape(line, ++order);
    for (const PagePicture &picture : page.pictures)
        shapes += PictureShape(picture, ++order);

    std::map<double, QList<const PageText *>> rows;
    for (const PageText &text : page.texts)
        if (!text.text.isEmpty())
            rows[std::round(Finite(text.box.top()) * 2) / 2].append(&text);

    QString body;
    double cursor = m_margins.top();
    for (const auto &[top, row] : rows) {
        double height = 0;
        for (const PageText *text : row)
            height = std::max({height, Finite(text->box.height()), Finite(text->font.pointSize)});
        const double gap = std::max(0.0, top - cursor);
        body += rowParagraph(row, gap, height, lead + QLatin1Char(' ') + shapes);
        lead.clear();
        shapes.clear();
        cursor += gap + height;
    }
    if (rows.empty())
        body += QStringLiteral("\\pard\\plain%1 %2\\par\r\n").arg(lead, shapes);
    return body;
}

// One row: a tab stop at each text's anchor (left edge, right edge or centre by its alignment).
QString RtfPageSink::rowParagraph(const QList<const PageText *> &row, double gapAbove, double height,
                                  const QString &lead)
{
    QList<const PageText *> texts = row;
    std::stable_sort(texts.begin(), texts.end(),
                     [](const PageText *a, const PageText *b) { return Anchor(*a) < Anchor(*b); });
    QString stops;
    QString content;
    int lastStop = 0;
    for (const PageText *text : texts) {
        const int stop = Twips(Anchor(*text) - m_margins.left());
        if (stop > lastStop) {
            stops += TabKind(*text) + QStringLiteral("\\tx") + QString::number(stop);
            content += QStringLiteral("\\tab ");
            lastStop = stop;
        } else if (!content.isEmpty()) {
            content += QLatin1Char(' '); // no room for a stop: the text follows the one before
        }
        const PageFont &font = text->font;
        QString colors;
        if (text->color != Qt::black)
            colors += QStringLiteral("\\cf%1").arg(colorIndex(text->color));
        if (text->background.isValid())
            colors += QStringLiteral("\\chcbpat%1").arg(colorIndex(text->background));
        content += QStringLiteral("{\\f%1\\fs%2%3%4%5 %6}")
                       .arg(fontIndex(font.family))
                       .arg(std::clamp(std::lround(Finite(font.pointSize) * 2), 2L, 3276L))
                       .arg(font.bold ? QStringLiteral("\\b") : QString(),
                            font.italic ? QStringLiteral("\\i") : QString(), colors, Escaped(text->text));
    }
    return QStringLiteral("\\pard\\plain\\sb%1\\sa0\\sl-%2\\slmult0%3%4%5\\par\r\n")
        .arg(Twips(gapAbove))
        .arg(Twips(height))
        .arg(stops, lead, content);
}

// Colours are numbered from 1 in the colour table; 0 is the reader's own text colour.
int RtfPageSink::colorIndex(const QColor &color)
{
    const qsizetype found = m_colors.indexOf(color.rgb());
    if (found >= 0)
        return int(found) + 1;
    m_colors.append(color.rgb());
    return int(m_colors.size());
}

int RtfPageSink::fontIndex(const QString &family)
{
    const auto found = m_fontIndex.constFind(family);
    if (found != m_fontIndex.constEnd())
        return *found;
    m_fonts.append(family);
    return m_fontIndex[family] = int(m_fonts.size()) - 1;
}

QString RtfPageSink::header() const
{
    QString fonts;
    for (int i = 0; i < m_fonts.size(); ++i)
        fonts += QStringLiteral("{\\f%1\\fnil\\fcharset0 %2;}").arg(i).arg(Escaped(m_fonts[i]));
    const QSizeF paper = m_setup.orientedSize();
    const QString page = QStringLiteral("\\paperw%1\\paperh%2\\margl%3\\margr%4\\margt%5\\margb%6")
                             .arg(Twips(paper.width()))
                             .arg(Twips(paper.height()))
                             .arg(Twips(m_margins.left()))
                             .arg(Twips(m_margins.right()))
                             .arg(Twips(m_margins.top()))
                             .arg(Twips(m_margins.bottom()));
    const QString section =
        QStringLiteral("\\sectd\\pgwsxn%1\\pghsxn%2\\marglsxn%3\\margrsxn%4\\margtsxn%5\\margbsxn%6")
            .arg(Twips(paper.width()))
            .arg(Twips(paper.height()))
            .arg(Twips(m_margins.left()))
            .arg(Twips(m_margins.right()))
            .arg(Twips(m_margins.top()))
            .arg(Twips(m_margins.bottom()));
    const QString landscape = m_setup.landscape ? QStringLiteral("\\landscape") : QString();
    QString colors;
    for (const QRgb color : m_colors)
        colors +=
            QStringLiteral("\\red%1\\green%2\\blue%3;").arg(qRed(color)).arg(qGreen(color)).arg(qBlue(color));
    if (!colors.isEmpty())
        colors = QStringLiteral("{\\colortbl;%1}\r\n").arg(colors);
    return QStringLiteral(
               "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\r\n{\\fonttbl%1}\r\n%2{\\info{\\title %3}}\r\n"
               "%4%5\\deftab720\r\n%6%7\r\n")
        .arg(fonts, colors, Escaped(m_setup.title), page, landscape, section,
             m_setup.landscape ? QStringLiteral("\\lndscpsxn") : QString());
}

} // namespace Engine
