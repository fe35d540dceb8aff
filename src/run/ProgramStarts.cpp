#include "ProgramStarts.h"

#include "RunState.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "core/TWReg.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"

#include <QFileInfo>
#include <QProcess>

void StartProgram(const QString &program, const QStringList &arguments)
{
    // A name that is a file of the working folder (the application folder) means that file, as a
    // name without a folder does everywhere in the schedule; only other names are looked up in PATH.
    const QFileInfo file(program);
    const QString path = file.isFile() ? file.absoluteFilePath() : program;
    if (!QProcess::startDetached(path, arguments))
        throw QorloError(QorloError::InvalidCall);
}

void RunGlobalProcess(RunContext &run, const QString &file)
{
    clsSchedule &schedule = run.schedule;
    const QString app = TWReg::ReadApplicationValue(QStringLiteral("QorloGLOBAL"));
    const double now = Now();
    if (app.isEmpty()) {
        WriteLogEntry(
            run.log, schedule.ProcessingID, now, now, QString(),
            QStringLiteral("Error: Cannot run procedure until QorloGLOBAL application setting is entered"),
            0);
        return;
    }
    if (!QFileInfo::exists(app)) {
        WriteLogEntry(run.log, schedule.ProcessingID, now, now, QString(),
                      QStringLiteral("Error: Cannot find QorloGLOBAL application=") + app, 0);
        return;
    }
    WriteLogEntry(run.log, schedule.ProcessingID, now, now, schedule.NextRun(),
                  QStringLiteral("QorloGLOBAL: ") + file, 0);
    // The program's path is quoted when it holds a blank, the document's is not: a document path with
    // blanks reaches the program as several arguments.
    const QString program = app.contains(QLatin1Char(' ')) ? QLatin1Char('"') + app + QLatin1Char('"') : app;
    const QString commandLine = program + QLatin1Char(' ') + file;
    QStringList words = QProcess::splitCommand(commandLine);
    const QString executable = words.takeFirst();
    StartProgram(executable, words);
    schedule.SetLastRun(FormatDateTime(Now()));
    schedule.Save(CommonFile::JoinPath(run.appPath, QStringLiteral("Qorlo.XML")));
}
