#pragma once
// Reading the values of a list file (.lst) as the calendar rules need them.

#include <QString>
#include <QStringList>

namespace DynDates {

// Every value of the file in order: a comma or a line end ends a value, blanks round a value are
// dropped and a value in double quotes loses its quotes (a comma inside them is kept). A missing
// file gives no values.
QStringList ReadListValues(const QString &path);

} // namespace DynDates
