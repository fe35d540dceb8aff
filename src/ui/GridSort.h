#pragma once
// The sort of the schedule grid: the key of a cell by its column and the order of the exchange sort.

#include <QList>
#include <QString>
#include <QStringList>

namespace GridSort {

// Column 0 the number as "00000000"; columns 1 and 5 the date as "yyyy/MM/dd HH:mm", today for a
// text that is not a date; every other column the text itself.
QString SortKey(int column, const QString &text);
// The row order that an exchange sort over all pairs gives: two rows change places when the key
// of the first is greater than that of the second by plain text comparison.
QList<int> ExchangeOrder(const QStringList &keys);

} // namespace GridSort
