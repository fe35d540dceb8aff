#pragma once
// What a report run keeps process-wide (runs never overlap, so there is one of each), and the objects
// of the program a run works with.

#include "run/ErrorTrap.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QString>
#include <array>
#include <functional>
#include <memory>

class clsConnect;
class clsLog;
class clsMap;
class clsSchedule;

// One server a run logged on to, logged off at its end.
struct LogOffEntry
{
    QString server;
    QString database;
    QString dllName;
};

struct RunState
{
    // Entries sit at 1 to LogOffCount; the arrays end at index 100, one more entry is a bounds failure.
    static constexpr int LogOffUpperBound = 100;

    // Made new for each run; the report is released before the application that opened it.
    std::unique_ptr<Engine::Application> application;
    std::unique_ptr<Engine::Report> report;
    // Left by LogOnReport: empty when every table connected.
    QString ConnectError;
    // The extension of the export format set last.
    QString OutputExtension;
    qint32 LogOffCount = 0;
    std::array<LogOffEntry, LogOffUpperBound + 1> LogOffList;
    // "DBPrint" writes the connection listing of each report to Connect.txt; nothing sets it.
    QString ConnectDiagnostic;
    ErrorTrap trap;
};

// The program's objects as a run sees them, and the front's hooks it calls.
struct RunContext
{
    clsSchedule &schedule;
    clsLog &log;
    clsConnect &connections;
    clsMap &tableMap;
    RunState &state;
    QString appPath;
    // Rewrites the status page of the schedule.
    std::function<void()> saveWeb;
    // A message box with the warning icon.
    std::function<void(const QString &title, const QString &text)> warn;
};
