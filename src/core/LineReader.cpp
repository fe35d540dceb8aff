#include "LineReader.h"

#include "Ansi.h"

#include <QFile>

LineReader::LineReader(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    m_open = true;
    split(Ansi::Decode(file.readAll()));
}

LineReader LineReader::FromText(const QString &text)
{
    LineReader reader;
    reader.m_open = true;
    reader.split(text);
    return reader;
}

void LineReader::split(const QString &text)
{
    const QChar *data = text.constData();
    const qsizetype size = text.size();
    qsizetype start = 0;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = data[i].unicode();
        if (c != u'\r' && c != u'\n')
            continue;
        m_lines.append(QString(data + start, i - start));
        if (c == u'\r' && i + 1 < size && data[i + 1] == u'\n')
            ++i;
        start = i + 1;
    }
    if (start < size)
        m_lines.append(QString(data + start, size - start));
}

QString LineReader::readLine()
{
    return atEnd() ? QString() : m_lines.at(m_next++);
}
