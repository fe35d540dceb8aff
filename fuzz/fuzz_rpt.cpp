// A report file as the engine opens it. Depends on the engine's interface: rerun and adapt it when the
// engine changes.
#include "FuzzSupport.h"

#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzz::StartApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = Fuzz::WriteInput(QStringLiteral("report.rpt"), data, size);
    Engine::Application application;
    try {
        std::unique_ptr<Engine::Report> report = application.OpenReport(path);
        report->ReportTitle();
        report->HasSavedData();
        report->ParameterFields().Count();
        report->Database().Tables().Count();
    } catch (const Engine::EngineError &) {
    }
    return 0;
}
