#include "engine/ReportObject.h"

#include "engine/Report.h"

namespace Engine {

SubreportObject::SubreportObject(const SubreportDefinition &definition, Application *application)
    : ReportObject(SubreportObjectKind, definition.name), m_definition(definition), m_application(application)
{
}

SubreportObject::~SubreportObject() = default;

Report &SubreportObject::OpenSubreport()
{
    if (!m_report)
        m_report = std::make_unique<Report>(m_application, *m_definition.report);
    return *m_report;
}

QString SubreportObject::Heading()
{
    const QString title = OpenSubreport().ReportTitle();
    return title.isEmpty() ? Name() : title;
}

} // namespace Engine
