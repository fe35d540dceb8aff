// Where a report's sub-reports stand, and how one reads its records with the values it is linked to.
#include "engine/EngineError.h"
#include "engine/Report.h"

namespace Engine {

namespace {

// The section a sub-report stands in; raises EngineError when it names a group the layout lacks.
QString SectionOf(const SubreportDefinition &subreport, const ReportDefinition &report)
{
    if (subreport.section == QLatin1String("reportHeader"))
        return QStringLiteral("ReportHeader");
    if (subreport.section == QLatin1String("reportFooter"))
        return QStringLiteral("ReportFooter");
    const QList<GroupDefinition> &groups = report.layout.groups;
    for (int level = 0; level < groups.size(); ++level) {
        if (groups[level].field.compare(subreport.group, Qt::CaseInsensitive) == 0)
            return (subreport.section == QLatin1String("header") ? QStringLiteral("GroupHeader%1")
                                                                 : QStringLiteral("GroupFooter%1"))
                .arg(level + 1);
    }
    throw EngineError(
        EngineError::BadReportFile,
        QStringLiteral("The sub-report \"%1\" of %2 stands in the %3 of the group of \"%4\", which "
                       "the layout does not have")
            .arg(subreport.name, report.fileName, subreport.section, subreport.group));
}

} // namespace

void Report::placeSubreports()
{
    for (const SubreportDefinition &subreport : m_definition.subreports) {
        const QString name = SectionOf(subreport, m_definition);
        for (Section &section : m_sections) {
            if (section.Name() == name)
                section.ReportObjects().append(std::make_unique<SubreportObject>(subreport, m_application));
        }
    }
}

QList<SubreportObject *> Report::subreportsIn(const QString &section) const
{
    QList<SubreportObject *> found;
    for (const Section &candidate : m_sections) {
        if (candidate.Name() != section)
            continue;
        for (ReportObject &object : candidate.ReportObjects()) {
            if (object.Kind() == SubreportObjectKind)
                found.append(static_cast<SubreportObject *>(&object));
        }
    }
    return found;
}

void Report::readSubreport(SubreportObject &object,
                           const std::function<QVariant(const QString &field)> &fieldValue) const
{
    Report &subreport = object.OpenSubreport();
    for (const SubreportLink &link : object.definition().links) {
        for (ParameterFieldDefinition &parameter : subreport.ParameterFields()) {
            if (parameter.ParameterFieldName().compare(link.parameter, Qt::CaseInsensitive) != 0)
                continue;
            parameter.ClearCurrentValueAndRange();
            const QVariantList values = link.field.isEmpty()
                                            ? parameterValues(link.source)
                                            : QVariantList{fieldValue ? fieldValue(link.field) : QVariant()};
            for (const QVariant &value : values)
                parameter.AddCurrentValue(value);
        }
    }
    subreport.ReadRecords();
}

} // namespace Engine
