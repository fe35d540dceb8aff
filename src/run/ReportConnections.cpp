#include "ReportConnections.h"

#include "ReportBinding.h"
#include "RunState.h"

#include "connect/clsConnect.h"
#include "connect/clsMap.h"
#include "engine/DatabaseConnection.h"
#include "engine/EngineError.h"

#include <QFileInfo>

namespace ReportBinding {

namespace {

// The report opened by an application of its own; engine failures come out as QorloError.
struct OpenedReport
{
    explicit OpenedReport(const QString &file)
    {
        ErrorTrap trap;
        trap.Guard([&] { report = application->OpenReport(file); });
    }

    std::unique_ptr<Engine::Application> application = std::make_unique<Engine::Application>();
    std::unique_ptr<Engine::Report> report;
};

} // namespace

int LearnConnections(const RunContext &program, const QString &file, const QString &reportID)
{
    RunState state;
    OpenedReport opened(file);
    state.application = std::move(opened.application);
    state.report = std::move(opened.report);
    RunContext run{program.schedule, program.log,     program.connections, program.tableMap, state,
                   program.appPath,  program.saveWeb, program.warn};
    const int before = run.connections.Count();
    LogOnReport(run, *state.report, reportID);
    LogOffServers(run);
    state.report.reset();
    return run.connections.Count() - before;
}

void ExamineReport(clsMap &map, const QString &reportID, const QString &file)
{
    if (file.isEmpty() || !QFileInfo::exists(file))
        return;
    OpenedReport opened(file);
    QStringList locations;
    for (const Engine::DatabaseTable &table : opened.report->Database().Tables())
        locations.append(table.Location());
    map.ExamineTables(reportID, locations);
}

QString TestConnection(const QString &dll, const QString &server, const QString &database,
                       const QString &user, const QString &password, const QString &baseFolder)
{
    Engine::ConnectionProperties properties;
    properties.Add(QStringLiteral("Server"), server);
    properties.Add(QStringLiteral("Database"), database);
    properties.Add(QStringLiteral("User ID"), user);
    properties.Add(QStringLiteral("Password"), password);
    try {
        Engine::DatabaseConnection connection(dll, properties, baseFolder);
        connection.open();
        return QString();
    } catch (const Engine::EngineError &error) {
        return error.description();
    }
}

QString ConnectionDetails(const QString &file)
{
    OpenedReport opened(file);
    return DescribeConnections(*opened.report);
}

} // namespace ReportBinding
