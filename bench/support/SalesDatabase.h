#pragma once
// The benchmarks' sales table: `rows` orders in four regions over a year, in an SQLite file.

#include <QDate>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

namespace BenchData {

// False when the file cannot be written.
inline bool MakeDatabase(const QString &path, int rows)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(path);
    if (!db.open())
        return false;
    QSqlQuery q(db);
    q.exec(QStringLiteral("CREATE TABLE sales (id INTEGER, order_date DATE, region TEXT, customer TEXT, "
                          "quantity INTEGER, amount DOUBLE)"));
    db.transaction();
    q.prepare(QStringLiteral("INSERT INTO sales VALUES (?, ?, ?, ?, ?, ?)"));
    const QStringList regions{QStringLiteral("North"), QStringLiteral("South"), QStringLiteral("East"),
                              QStringLiteral("West")};
    const QDate start(2024, 1, 1);
    for (int i = 1; i <= rows; ++i) {
        q.addBindValue(i);
        q.addBindValue(start.addDays(i % 366).toString(Qt::ISODate));
        q.addBindValue(regions[i % 4]);
        q.addBindValue(QStringLiteral("Customer \"%1\", Ltd").arg(i % 997));
        q.addBindValue(1 + i % 40);
        q.addBindValue((i % 10000) / 4.0);
        if (!q.exec())
            return false;
    }
    const bool ok = db.commit();
    db.close();
    return ok;
}

} // namespace BenchData
