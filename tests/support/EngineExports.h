#pragma once
// Engine tests' shortcuts: the demo database as the default connection, a report exported beside its
// file, a folder of such reports, and the engine error a call raises.

#include "SalesReport.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QString>
#include <QTemporaryDir>

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

// A test's own folder of report files, each exported beside itself.
struct ReportFolder
{
    QTemporaryDir dir;
    Engine::Application application;

    QString path(const QString &name) const { return dir.filePath(name); }
    // Writes NAME.rpt with `body` and exports it in `format`; the file written.
    QString exportReport(const QString &name, const QString &body, int format)
    {
        return ExportBeside(application, WriteReport(QDir(dir.path()), name + QStringLiteral(".rpt"), body),
                            format);
    }
};

// The engine error a call raises: its number (0 for none) and description.
struct EngineFailure
{
    int number = 0;
    QString description = QStringLiteral("(no failure)");
};

template <class Call> EngineFailure FailureOf(Call &&call)
{
    try {
        call();
    } catch (const Engine::EngineError &error) {
        return {error.number(), error.description()};
    }
    return {};
}

} // namespace TestSupport
