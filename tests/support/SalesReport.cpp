#include "SalesReport.h"

#include "Files.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::Literals::StringLiterals;

namespace TestSupport {

QString WriteReport(const QDir &dir, const QString &name, const QString &body)
{
    return WriteFile(dir.filePath(name),
                     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<report version=\"1\">\n" + body.toUtf8() +
                         "\n</report>\n");
}

void MakeSalesDatabase(const QString &path)
{
    const QString name = u"fixture-"_s + path;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(path);
        if (!db.open())
            qFatal("cannot create %s", qPrintable(path));
        QSqlQuery q(db);
        const char *statements[] = {
            "CREATE TABLE sales (id INTEGER, order_date DATE, region TEXT, customer TEXT, amount DOUBLE, "
            "paid BOOLEAN)",
            "INSERT INTO sales VALUES (1, '2024-01-05', 'North', 'Acme Ltd', 120.5, 1)",
            "INSERT INTO sales VALUES (2, '2024-01-20', 'South', 'Bolt; Nut', 80, 0)",
            "INSERT INTO sales VALUES (3, '2024-02-02', 'North', 'O''Brien \"Tools\"', 1500.25, 1)",
            "INSERT INTO sales VALUES (4, '2024-02-14', 'East', 'Delta', NULL, 0)",
            "INSERT INTO sales VALUES (5, '2024-03-01', 'South', 'Echo', 2200, 1)",
            "INSERT INTO sales VALUES (6, '2024-03-09', 'North', 'x''); DROP TABLE sales; --', 10, 1)"};
        for (const char *statement : statements) {
            if (!q.exec(QString::fromLatin1(statement)))
                qFatal("%s: %s", statement, qPrintable(q.lastError().text()));
        }
    }
    QSqlDatabase::removeDatabase(name);
}

QString SalesReport(const QDir &dir, const QString &name, const QString &query, const QString &extra)
{
    return WriteReport(dir, name,
                       u"<title>Fixture Sales</title>\n"
                       "<table name=\"Sales\" location=\"sales\" dll=\"sqlite\">"
                       "<property name=\"Database\">sales.db</property></table>\n<query>"_s +
                           query.toHtmlEscaped() + u"</query>\n"_s + extra);
}

} // namespace TestSupport
