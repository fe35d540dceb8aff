#include "GridSort.h"

#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/Numbers.h"

#include <numeric>

namespace GridSort {

QString SortKey(int column, const QString &text)
{
    if (column == 0)
        return Numbers::FormatZeros(qint64(Numbers::RoundEven(Numbers::NumericPrefix(text))), 8);
    if (column == 1 || column == 5) {
        const double date = DayDate::Parse(text).value_or(Today());
        return DayDate::ToDateTime(date).toString(QStringLiteral("yyyy/MM/dd HH:mm"));
    }
    return text;
}

QList<int> ExchangeOrder(const QStringList &keys)
{
    QList<int> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    // The exchange sort is not stable; rows with equal keys end where its swaps leave them.
    for (qsizetype first = 0; first + 1 < order.size(); ++first) {
        for (qsizetype second = first + 1; second < order.size(); ++second) {
            if (keys.at(order.at(first)) > keys.at(order.at(second)))
                std::swap(order[first], order[second]);
        }
    }
    return order;
}

} // namespace GridSort
