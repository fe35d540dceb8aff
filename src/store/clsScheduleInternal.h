#pragma once
// Helpers shared by the clsSchedule sources only.

#include "core/Numbers.h"

#include <QString>

namespace ScheduleInternal {

// Numbers::NumericPrefix, with plain digits (the usual IDs and counts) read without the general parser.
inline double FastValue(const QString &text)
{
    if (text.isEmpty())
        return 0;
    if (text.size() <= 9) {
        int value = 0;
        for (const QChar c : text) {
            const char16_t u = c.unicode();
            if (u < u'0' || u > u'9')
                return Numbers::NumericPrefix(text);
            value = value * 10 + (u - u'0');
        }
        return value;
    }
    return Numbers::NumericPrefix(text);
}

} // namespace ScheduleInternal
