#include "engine/page/HtmlPageSink.h"

#include "engine/page/HtmlPageMarkup.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>

namespace Engine {

using namespace HtmlPageMarkup;

HtmlPageSink::HtmlPageSink(const QString &fileName, const HtmlPageOptions &options)
    : m_fileName(fileName), m_options(options)
{
}

HtmlPageSink::~HtmlPageSink() = default;

QString HtmlPageSink::PageFileName(const QString &fileName, int number)
{
    if (number <= 1)
        return fileName;
    const QFileInfo info(fileName);
    const QString suffix = info.suffix().isEmpty() ? QString() : QLatin1Char('.') + info.suffix();
    const QString base = fileName.left(fileName.size() - suffix.size());
    return base + QString::number(number) + suffix;
}

void HtmlPageSink::begin(const PageSetup &setup, int pageCount)
{
    m_setup = setup;
    m_pageCount = pageCount;
    m_pagesWritten = 0;
    if (!m_options.separatePages && openFile(m_fileName))
        write(DocumentHead(setup.title));
}

void HtmlPageSink::addPage(const Page &page)
{
    const int number = m_pagesWritten + 1;
    if (m_options.separatePages) {
        if (failed() || !openFile(PageFileName(m_fileName, number)))
            return;
        write(DocumentHead(m_setup.title));
        if (m_options.pageNavigator)
            write(navigator(number));
    }
    if (!m_file)
        return;
    write(PageBlock(page, m_setup.orientedSize(), m_styles));
    ++m_pagesWritten;
    if (m_options.separatePages) {
        write(DocumentTail());
        commitFile();
    }
}

void HtmlPageSink::end()
{
    // A report without pages still leaves its file, so that the export is never silently missing.
    if (m_options.separatePages && m_pagesWritten == 0 && !failed() && openFile(m_fileName))
        write(DocumentHead(m_setup.title));
    if (!m_file)
        return;
    write(DocumentTail());
    commitFile();
}

bool HtmlPageSink::openFile(const QString &name)
{
    m_styles = HtmlPageMarkup::StyleSheet();
    m_file = std::make_unique<QSaveFile>(name);
    if (m_file->open(QIODevice::WriteOnly))
        return true;
    setError(QStringLiteral("Cannot write %1: %2").arg(name, m_file->errorString()));
    m_file.reset();
    return false;
}

bool HtmlPageSink::commitFile()
{
    if (!m_file)
        return false;
    const bool done = m_file->commit();
    if (!done)
        setError(QStringLiteral("Cannot write %1: %2").arg(m_file->fileName(), m_file->errorString()));
    m_file.reset();
    return done;
}

void HtmlPageSink::write(const QString &html)
{
    if (m_file && m_file->write(html.toUtf8()) < 0) {
        setError(QStringLiteral("Cannot write %1: %2").arg(m_file->fileName(), m_file->errorString()));
        m_file.reset();
    }
}

// Links to the neighbouring page files; a link that would lead to the page itself is plain text.
QString HtmlPageSink::navigator(int number) const
{
    const int last = qMax(m_pageCount, number);
    const auto item = [&](const QString &caption, int target) {
        if (target == number || target < 1 || target > last)
            return QStringLiteral("<span>%1</span>").arg(caption);
        const QString href = QString::fromLatin1(
            QUrl::toPercentEncoding(QFileInfo(PageFileName(m_fileName, target)).fileName()));
        return QStringLiteral("<a href=\"%1\">%2</a>").arg(href, caption);
    };
    return QStringLiteral("<div class=\"navigator\">") + item(QStringLiteral("First"), 1) +
           item(QStringLiteral("Previous"), number - 1) + item(QStringLiteral("Next"), number + 1) +
           item(QStringLiteral("Last"), last) +
           QStringLiteral("<span>Page %1 of %2</span></div>\n").arg(number).arg(last);
}

} // namespace Engine
