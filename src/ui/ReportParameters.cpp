#include "ReportParameters.h"

#include "engine/Application.h"
#include "engine/Report.h"
#include "run/ErrorTrap.h"

namespace {

QStringList DefaultsOf(const Engine::ReportDefinition &definition, const QString &name)
{
    for (const Engine::ParameterDefinition &parameter : definition.parameters) {
        if (parameter.name == name)
            return parameter.defaultValues;
    }
    return {};
}

} // namespace

QList<ReportParameter> ReadReportParameters(const QString &file)
{
    QList<ReportParameter> parameters;
    ErrorTrap unwinding;
    unwinding.Guard([&] {
        Engine::Application application;
        const std::unique_ptr<Engine::Report> report = application.OpenReport(file);
        for (const Engine::ParameterFieldDefinition &field : report->ParameterFields()) {
            parameters.append({field.ParameterFieldName(), field.ValueType(), field.Prompt(),
                               field.EnableMultipleValues(),
                               DefaultsOf(report->definition(), field.ParameterFieldName())});
        }
    });
    return parameters;
}
