#include "FailureRecords.h"

#include "QorloGlobals.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/QorloError.h"
#include "core/StopRequest.h"
#include "run/ErrorTrap.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <cstdio>

namespace {

void PrintError(const QString &line)
{
    QTextStream(stderr) << line << Qt::endl;
}

// One step of a record. A step that fails does not keep the next from being tried; the error that
// ends the process stays the one being recorded.
void Attempt(const std::function<void()> &step)
{
    try {
        step();
    } catch (...) {
        PrintError(QStringLiteral("Could not record the failure: ") + CaughtError().runTimeText());
    }
}

void LogNow(QorloGlobals &globals, const QString &id, const QString &text)
{
    const double now = Now();
    WriteLogEntry(globals.Log, id, now, now, QString(), text, 0);
}

} // namespace

void RecordFailure(const std::function<void()> &work, const std::function<void(const QorloError &)> &record)
{
    try {
        work();
    } catch (const StopRequested &) {
        throw;
    } catch (...) {
        const QorloError error = CaughtError();
        record(error);
        throw error;
    }
}

void HoldItem(QorloGlobals &globals, const QString &reportID, const QorloError &error)
{
    QString name;
    Attempt([&] {
        clsSchedule &schedule = globals.Schedule;
        schedule.Find(reportID);
        if (schedule.NoMatch())
            return;
        name = schedule.Name();
        schedule.SetSchedule(QStringLiteral("N"));
        schedule.SetNextRun(QString());
        globals.SaveSchedule();
    });
    Attempt([&] {
        LogNow(globals, reportID,
               name + QStringLiteral(": ") + error.runTimeText() + QStringLiteral(" - item put On Hold"));
    });
}

void SetAsideCommandFile(QorloGlobals &globals, const QString &file, const QString &logTag,
                         const QorloError &error)
{
    const QString name = CommonFile::FileNameOnly(file);
    Attempt([&] {
        const QString failed = CommonFile::JoinPath(CommonFile::FolderOf(file), QStringLiteral("Failed"));
        QDir().mkdir(failed);
        QFile::setPermissions(failed, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        // rename() replaces an older file of the same name.
        if (std::rename(QFile::encodeName(file).constData(),
                        QFile::encodeName(CommonFile::JoinPath(failed, name)).constData()) != 0)
            QFile::remove(file);
    });
    Attempt([&] {
        LogNow(globals, logTag,
               QStringLiteral("Command file ") + name + QStringLiteral(" moved to Failed: ") +
                   error.runTimeText());
    });
}

void NotifyOperator(QorloGlobals &globals, const QString &logTag, const QString &text)
{
    PrintError(logTag + QStringLiteral(": ") + text);
    Attempt([&] { LogNow(globals, logTag, text); });
}
