#pragma once
// Short forms shared by the calendar tests: dates, texts, list files and the error a call raises.

#include "core/Ansi.h"
#include "core/DayDate.h"
#include "core/QorloError.h"

#include <QFile>
#include <QStringList>
#include <QTest>
#include <functional>

inline double D(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return DayDate::FromParts(year, month, day, hour, minute, second);
}

inline QString L(const char *text)
{
    return QString::fromLatin1(text);
}

// One entry a line, CR LF, Windows-1252.
inline void WriteListFile(const QString &path, const QStringList &lines)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    for (const QString &line : lines)
        file.write(Ansi::Encode(line + QStringLiteral("\r\n")));
}

// `count` consecutive days from `first`, as "DD-Mon-YYYY" lines.
inline QStringList ConsecutiveDays(double first, int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines.append(FormatDate(first + i));
    return lines;
}

// The number of the QorloError the call raises, 0 if none.
inline int ErrorOf(const std::function<void()> &call)
{
    try {
        call();
    } catch (const QorloError &error) {
        return error.number();
    }
    return 0;
}
