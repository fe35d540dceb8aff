#pragma once
// The engine's entry object: opens report files and logs off the database servers a run used.

#include <QSet>
#include <QString>
#include <memory>

namespace Engine {

class Report;

class Application
{
public:
    Application();
    ~Application();

    // Reads the report file; raises EngineError when it cannot. The report must not outlive this object.
    std::unique_ptr<Report> OpenReport(const QString &fileName);
    // Forgets a log-on made by a connection test or a read; raises EngineError when there was none.
    void LogOffServer(const QString &dllName, const QString &serverName, const QString &databaseName);

    void noteLogOn(const QString &dllName, const QString &serverName, const QString &databaseName);

private:
    static QString key(const QString &dllName, const QString &serverName, const QString &databaseName);

    QSet<QString> m_logOns;
};

} // namespace Engine
