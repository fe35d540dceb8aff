#pragma once
// Report files written into a test's folder, and the small SQLite sales table that the report, run and
// mail tests share.

#include <QDir>
#include <QString>

namespace TestSupport {

// Writes a report file; `body` goes inside <report version="1">. Returns its path.
QString WriteReport(const QDir &dir, const QString &name, const QString &body);
// The rows every data test knows: id, order_date, region, customer, amount, paid.
void MakeSalesDatabase(const QString &path);
// A report over the fixture table in sales.db beside it, with the given extra elements.
QString SalesReport(const QDir &dir, const QString &name, const QString &query,
                    const QString &extra = QString());

} // namespace TestSupport
