#pragma once
// Starting other programs without waiting: application items and the global process QorloGLOBAL.

#include <QString>
#include <QStringList>

struct RunContext;

// Starts the program; a program that cannot be started raises QorloError 5.
void StartProgram(const QString &program, const QStringList &arguments = {});
// Hands the command document `file` to the program named by the QorloGLOBAL setting, with the log
// entries of that hand-over; sets LastRun and saves the schedule when the program was started.
void RunGlobalProcess(RunContext &run, const QString &file);
