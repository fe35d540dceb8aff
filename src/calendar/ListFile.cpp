#include "ListFile.h"

#include "core/LineReader.h"

namespace DynDates {

namespace {

qsizetype SkipBlanks(const QString &line, qsizetype pos)
{
    while (pos < line.size() && (line.at(pos) == QLatin1Char(' ') || line.at(pos) == QLatin1Char('\t')))
        ++pos;
    return pos;
}

qsizetype CommaOrEnd(const QString &line, qsizetype from)
{
    const qsizetype comma = line.indexOf(QLatin1Char(','), from);
    return comma < 0 ? line.size() : comma;
}

// The values of one line. Text between a closing quote and the next comma is dropped.
QStringList LineValues(const QString &line)
{
    QStringList values;
    qsizetype pos = 0;
    for (;;) {
        pos = SkipBlanks(line, pos);
        qsizetype end;
        if (pos < line.size() && line.at(pos) == QLatin1Char('"')) {
            qsizetype close = line.indexOf(QLatin1Char('"'), pos + 1);
            if (close < 0)
                close = line.size();
            values.append(line.mid(pos + 1, close - pos - 1));
            end = CommaOrEnd(line, close);
        } else {
            end = CommaOrEnd(line, pos);
            values.append(line.mid(pos, end - pos).trimmed());
        }
        if (end >= line.size())
            return values;
        pos = end + 1;
    }
}

} // namespace

QStringList ReadListValues(const QString &path)
{
    QStringList values;
    LineReader reader(path);
    while (!reader.atEnd())
        values.append(LineValues(reader.readLine()));
    return values;
}

} // namespace DynDates
