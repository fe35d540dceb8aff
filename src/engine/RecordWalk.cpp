#include "engine/RecordWalk.h"

#include "engine/GroupWalk.h"
#include "engine/Report.h"
#include "engine/RunningTotals.h"

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

} // namespace Engine
