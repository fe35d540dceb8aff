#pragma once
// A small orders table for engine tests, with the texts that exports must get right: Polish and
// Chinese names, quotes, ampersands, long notes, and moments with a time of day.

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

namespace EngineData {

inline const QString ChineseName = QStringLiteral("陳志明");

// orders(id, region, city, customer, note, amount, ordered_at): 37 northern orders (they fill an A5
// page), 90 southern ones, 5 western ones; cities and customers in turn; every second note long.
// False when the file cannot be written.
inline bool MakeOrders(const QString &path)
{
    const QString name = QStringLiteral("orders-") + path;
    bool done = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        QSqlQuery q(db);
        done = db.open() &&
               q.exec(QStringLiteral("CREATE TABLE orders (id INTEGER, region TEXT, city TEXT, "
                                     "customer TEXT, note TEXT, amount DOUBLE, ordered_at DATETIME)")) &&
               q.prepare(QStringLiteral("INSERT INTO orders VALUES (?, ?, ?, ?, ?, ?, ?)"));
        const QStringList cities{QStringLiteral("Gdańsk"), QStringLiteral("Kraków"), QStringLiteral("Łódź")};
        const QStringList customers{QStringLiteral("Acme Ltd"), ChineseName,
                                    QStringLiteral("Łukasz Wiśniewski"), QStringLiteral("O'Brien & Sons"),
                                    QStringLiteral("Zeta Trading")};
        const QDateTime start(QDate(2024, 3, 1), QTime(8, 0));
        for (int i = 1; done && i <= 132; ++i) {
            q.addBindValue(i);
            q.addBindValue(i <= 37    ? QStringLiteral("North")
                           : i <= 127 ? QStringLiteral("South")
                                      : QStringLiteral("West"));
            q.addBindValue(cities[i % 3]);
            q.addBindValue(customers[i % 5]);
            q.addBindValue(i % 2 == 0
                               ? QStringLiteral("Deliver to the back entrance, ring twice and wait for "
                                                "the porter to open the gate")
                               : QStringLiteral("Front door"));
            q.addBindValue(i * 12.5);
            q.addBindValue(
                start.addSecs(i * 7 * 3600 + 30 * 60).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
            done = q.exec();
            if (!done)
                qWarning("%s", qPrintable(q.lastError().text()));
        }
    }
    QSqlDatabase::removeDatabase(name);
    return done;
}

} // namespace EngineData
