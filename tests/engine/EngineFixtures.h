#pragma once
// Shared pieces of the engine tests: report files written into a test's folder and a small SQLite sales
// table.

#include "engine/Application.h"
#include "engine/Report.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QTest>

namespace EngineFixtures {

// Writes a report file; `body` goes inside <report version="1">.
inline QString WriteReport(const QDir &dir, const QString &name, const QString &body)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("cannot write %s", qPrintable(path));
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<report version=\"1\">\n");
    file.write(body.toUtf8());
    file.write("\n</report>\n");
    return path;
}

// The rows every data test knows: id, order_date, region, customer, amount, paid.
inline void MakeSalesDatabase(const QString &path)
{
    const QString name = QStringLiteral("fixture-") + path;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
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

// A copy of the demo database in `dir`, open as the default connection so that a test can ask it what
// a report should show; false when it cannot be copied or opened.
inline bool UseDemoDatabase(const QDir &dir)
{
    const QString copy = dir.filePath(QStringLiteral("demo.db"));
    if (!QFile::copy(QStringLiteral(QORLO_SOURCE_DIR "/demo/demo.db"), copy))
        return false;
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(copy);
    return db.open();
}

// A report over the fixture table with the given extra elements.
inline QString SalesReport(const QDir &dir, const QString &name, const QString &query,
                           const QString &extra = QString())
{
    return WriteReport(dir, name,
                       QStringLiteral("<title>Fixture Sales</title>\n"
                                      "<table name=\"Sales\" location=\"sales\" dll=\"sqlite\">"
                                      "<property name=\"Database\">sales.db</property></table>\n<query>") +
                           query.toHtmlEscaped() + QStringLiteral("</query>\n") + extra);
}

// Opens a report file and exports it in `format` beside it, as NAME.FORMAT; the file written.
inline QString ExportBeside(Engine::Application &application, const QString &report, int format)
{
    const QFileInfo info(report);
    const QString target =
        info.dir().filePath(QStringLiteral("%1.%2").arg(info.completeBaseName()).arg(format));
    auto opened = application.OpenReport(report);
    Engine::ExportOptions &options = opened->ExportOptions();
    options.FormatType = format;
    options.DiskFileName = target;
    options.HTMLFileName = target;
    opened->Export(false);
    return target;
}

} // namespace EngineFixtures
