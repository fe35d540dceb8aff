#pragma once
// Engine tests' shortcuts: the demo database as the default connection, and a report exported beside
// its file.

#include "engine/Application.h"
#include "engine/Report.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QString>

namespace TestSupport {

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

} // namespace TestSupport
