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
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('\r') && c != QLatin1Char('\n'))
            continue;
        m_lines.append(text.mid(start, i - start));
        if (c == QLatin1Char('\r') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('\n'))
            ++i;
        start = i + 1;
    }
    if (start < text.size())
        m_lines.append(text.mid(start));
}

QString LineReader::readLine()
{
    return atEnd() ? QString() : m_lines.at(m_next++);
}
