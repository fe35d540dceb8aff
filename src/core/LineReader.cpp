#include "LineReader.h"

#include "Ansi.h"
#include "WholeFile.h"

LineReader::LineReader(const QString &path)
{
    const std::optional<QByteArray> bytes = WholeFile::Read(path);
    if (!bytes)
        return;
    m_open = true;
    m_text = Ansi::DecodeFile(*bytes);
    split();
}

LineReader LineReader::FromText(const QString &text)
{
    LineReader reader;
    reader.m_open = true;
    reader.m_text = text;
    reader.split();
    return reader;
}

void LineReader::split()
{
    const QChar *data = m_text.constData();
    const qsizetype size = m_text.size();
    qsizetype start = 0;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = data[i].unicode();
        if (c != u'\r' && c != u'\n')
            continue;
        m_lines.append({start, i - start});
        if (c == u'\r' && i + 1 < size && data[i + 1] == u'\n')
            ++i;
        start = i + 1;
    }
    if (start < size)
        m_lines.append({start, size - start});
}

QStringView LineReader::readLineView()
{
    if (atEnd())
        return {};
    const Span line = m_lines.at(m_next++);
    return QStringView(m_text).mid(line.start, line.length);
}
