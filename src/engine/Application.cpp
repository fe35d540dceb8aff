#include "engine/Application.h"

#include "engine/EngineError.h"
#include "engine/Report.h"
#include "engine/ReportFile.h"

namespace Engine {

Application::Application() = default;
Application::~Application() = default;

std::unique_ptr<Report> Application::OpenReport(const QString &fileName)
{
    ReportDefinition definition = ReportFile::Read(fileName);
    try {
        return std::make_unique<Report>(this, std::move(definition));
    } catch (const EngineError &error) {
        // Formulas are read when the report is built: say which file holds the faulty one.
        throw EngineError(
            error.number(),
            QStringLiteral("Cannot open report file %1: %2").arg(fileName, error.description()));
    }
}

void Application::LogOffServer(const QString &dllName, const QString &serverName, const QString &databaseName)
{
    if (!m_logOns.remove(key(dllName, serverName, databaseName)))
        throw EngineError(EngineError::NotLoggedOn,
                          QStringLiteral("Not logged on to server \"%1\", database \"%2\" (%3)")
                              .arg(serverName, databaseName, dllName));
}

void Application::noteLogOn(const QString &dllName, const QString &serverName, const QString &databaseName)
{
    m_logOns.insert(key(dllName, serverName, databaseName));
}

QString Application::key(const QString &dllName, const QString &serverName, const QString &databaseName)
{
    return dllName + QChar(0) + serverName + QChar(0) + databaseName;
}

} // namespace Engine
