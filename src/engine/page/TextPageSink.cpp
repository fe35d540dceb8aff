#include "engine/page/TextPageSink.h"

#include "engine/page/PageGeometry.h"

#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <map>

namespace Engine {

namespace {

constexpr double PointsPerInch = 72;
constexpr double DefaultLineHeight = 12; // six lines an inch
const QString LineEnd = QStringLiteral("\r\n");

// A text cell on the grid: one line of text, which never holds a line break or a tab.
QString OneLine(QString text)
{
    for (QChar &c : text)
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QLatin1Char('\t'))
            c = QLatin1Char(' ');
    return text;
}

// A grid position of a length in points; a place off the page (or no number at all) goes to its
// nearest edge rather than making a line of millions of blanks.
int GridIndex(double points, double step, int last)
{
    const double index = points / step;
    return std::isfinite(index) ? int(std::clamp(std::floor(index + 0.5), 0.0, double(last))) : 0;
}

// The column where the text starts when it keeps its alignment in the box.
int StartColumn(const PageText &text, int length, double columnWidth, int lastColumn)
{
    const Qt::Alignment horizontal = text.alignment & Qt::AlignHorizontal_Mask;
    if (horizontal & Qt::AlignRight)
        return GridIndex(text.box.right(), columnWidth, lastColumn) - length;
    if (horizontal & Qt::AlignHCenter)
        return GridIndex(text.box.center().x() - length * columnWidth / 2, columnWidth, lastColumn);
    return GridIndex(text.box.left(), columnWidth, lastColumn);
}

// Writes each text at its column; a text that would run into the one before it moves right
// behind it, so that no character is overwritten.
QString LayOutRow(QList<const PageText *> texts, double columnWidth, int lastColumn)
{
    std::stable_sort(texts.begin(), texts.end(), [](const PageText *a, const PageText *b) {
        return Finite(a->box.left()) < Finite(b->box.left());
    });
    QString line;
    for (const PageText *text : texts) {
        const QString cell = OneLine(text->text);
        const int earliest = line.isEmpty() ? 0 : line.size() + 1;
        const int start = std::max(StartColumn(*text, int(cell.size()), columnWidth, lastColumn), earliest);
        line += QString(start - line.size(), QLatin1Char(' ')) + cell;
    }
    return line;
}

} // namespace

TextPageSink::TextPageSink(const QString &fileName, const TextPageOptions &options)
    : m_fileName(fileName), m_options(options)
{
}

TextPageSink::~TextPageSink() = default;

void TextPageSink::begin(const PageSetup &setup, int)
{
    const int cpi = m_options.charactersPerInch > 0 ? m_options.charactersPerInch : DefaultCharactersPerInch;
    m_columnWidth = PointsPerInch / cpi;
    const double height = setup.orientedSize().height();
    m_linesPerPage =
        m_options.linesPerPage > 0 ? m_options.linesPerPage : std::max(1, int(height / DefaultLineHeight));
    m_lineHeight = height / m_linesPerPage;
    m_lastColumn = std::max(1, int(setup.orientedSize().width() / m_columnWidth));
    m_pagesWritten = 0;
    m_file = std::make_unique<QSaveFile>(m_fileName);
    if (!m_file->open(QIODevice::WriteOnly)) {
        setError(QStringLiteral("Cannot write %1: %2").arg(m_fileName, m_file->errorString()));
        m_file.reset();
        return;
    }
    m_file->write(FileStart(m_options.encoding));
}

void TextPageSink::addPage(const Page &page)
{
    if (!m_file)
        return;
    QString text;
    if (m_options.pageBreaks && m_pagesWritten > 0)
        text += QLatin1Char('\f');
    for (const QString &line : pageLines(page))
        text += line + LineEnd;
    write(text);
    ++m_pagesWritten;
}

void TextPageSink::end()
{
    if (!m_file)
        return;
    if (!m_file->commit())
        setError(QStringLiteral("Cannot write %1: %2").arg(m_fileName, m_file->errorString()));
    m_file.reset();
}

int TextPageSink::rowOf(double y) const
{
    return GridIndex(y - m_lineHeight / 2, m_lineHeight, m_linesPerPage - 1);
}

// Texts that share a vertical position form one row. Rows keep their order: a row that would fall
// on the line of the row above goes to the next line, so a crowded page grows longer instead of
// mixing two rows into one.
QStringList TextPageSink::pageLines(const Page &page) const
{
    std::map<double, QList<const PageText *>> rows;
    for (const PageText &text : page.texts)
        if (!text.text.isEmpty())
            rows[std::round(Finite(text.box.center().y()) * 2) / 2].append(&text);

    QStringList lines;
    for (const auto &[y, texts] : rows) {
        const int row = std::max(rowOf(y), int(lines.size()));
        while (lines.size() < row)
            lines.append(QString());
        lines.append(LayOutRow(texts, m_columnWidth, m_lastColumn));
    }
    return lines;
}

void TextPageSink::write(const QString &text)
{
    if (m_file->write(Encoded(text, m_options.encoding)) < 0) {
        setError(QStringLiteral("Cannot write %1: %2").arg(m_fileName, m_file->errorString()));
        m_file.reset();
    }
}

} // namespace Engine
