#include "engine/RecordWalk.h"

#include "engine/GroupWalk.h"
#include "engine/Report.h"
#include "engine/RunningTotals.h"
#include "engine/ValueFormat.h"

namespace Engine {

namespace {

class RecordVisitor : public GroupVisitor
{
public:
    RecordVisitor(const Report &report, const std::function<void(const ReportContext &)> &visit)
        : m_context(report.formulas(), report.ReportTitle()), m_running(report.formulas()), m_visit(visit)
    {
        m_context.setRunningTotals(&m_running.values());
    }

    void groupHeader(const GroupNode &group, bool) override { m_running.startGroup(group.level); }
    void detail(const RecordStore::Row &row, const GroupNode &group, int position) override
    {
        m_context.setRecord(row, position, &group);
        m_running.add(m_context);
        m_visit(m_context);
    }
    void groupFooter(const GroupNode &) override {}
    void grandTotal(const GroupNode &) override {}

private:
    ReportContext m_context;
    RunningTotals m_running;
    const std::function<void(const ReportContext &)> &m_visit;
};

} // namespace

void ForEachRecord(const Report &report, const std::function<void(const ReportContext &)> &visit)
{
    RecordVisitor visitor(report, visit);
    WalkGroups(report, visitor);
}

void ForEachSubreport(const Report &report,
                      const std::function<void(SubreportObject &object, const QString &group)> &visit)
{
    for (const Section &section : report.Sections()) {
        const QList<SubreportObject *> subreports = report.subreportsIn(section.Name());
        const bool inGroup = section.Name().startsWith(QLatin1String("Group"));
        const int level = section.Name().mid(11).toInt() - 1; // GroupHeaderN, GroupFooterN
        for (SubreportObject *object : subreports) {
            if (!inGroup) {
                visit(*object, QString());
                continue;
            }
            ForEachGroup(report, level, [&](const ReportContext &context) {
                report.readSubreport(*object, [&](const QString &field) {
                    const std::optional<NameRef> ref = report.formulas().resolve(field);
                    return ref ? context.valueOf(*ref) : QVariant();
                });
                visit(*object, PlainText(context.valueOf(NameRef{NameRef::Special, NameRef::Value})));
            });
        }
    }
}

void ForEachGroup(const Report &report, int level, const std::function<void(const ReportContext &)> &visit)
{
    std::vector<const GroupNode *> groups;
    GroupsOfLevel(report.groups().root(), level, groups);
    ReportContext context(report.formulas(), report.ReportTitle());
    for (const GroupNode *group : groups) {
        context.setGroup(*group, report.records().row(report.groups().order()[group->first]));
        visit(context);
    }
}

} // namespace Engine
