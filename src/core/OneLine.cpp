#include "OneLine.h"

QString OneLine(const QString &text)
{
    if (!text.contains(QLatin1Char('\r')) && !text.contains(QLatin1Char('\n')))
        return text;
    QString line = text;
    line.replace(QLatin1String("\r\n"), QLatin1String(" "));
    line.replace(QLatin1Char('\r'), QLatin1Char(' '));
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return line;
}
