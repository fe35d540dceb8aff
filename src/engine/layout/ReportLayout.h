#pragma once
// Turns the groups and records of one report into bands for the page builder.

#include "engine/GroupWalk.h"
#include "engine/ReportContext.h"
#include "engine/RunningTotals.h"
#include "engine/layout/ColumnSet.h"
#include "engine/layout/PageBuilder.h"

namespace Engine {

class ReportLayout : public GroupVisitor
{
public:
    ReportLayout(const Report &report, PageBuilder &builder);

    // `heading`: a title above the report; `gap`: a blank line first, which sets a sub-report apart
    // from what stands above it.
    void walk(const QString &heading, bool gap);
    // The height of the bands that walk() would place under `heading` after a gap; nothing is placed.
    double measure(const QString &heading);

    void groupHeader(const GroupNode &group, bool first) override;
    void detail(const RecordStore::Row &row, const GroupNode &group, int position) override;
    void groupFooter(const GroupNode &group) override;
    void grandTotal(const GroupNode &root) override;

private:
    void walkBands(const QString &heading, bool gap);
    void emit(const Band &band);
    void enterGroup(const GroupNode &group);
    double groupHeight(const GroupNode &group);
    bool footerFollows(const GroupNode *group) const;
    Band textBand(const QString &text, bool bold, double grow, bool needsCaptions) const;
    Band detailBand() const;
    Band totalsBand(const QString &label, int level) const;
    void appendSection(Band &band, const SectionRules &rules, const SectionDefinition &section,
                       const GroupNode &node);
    void emitFollowing();
    QImage picture(const SectionRules &rules, size_t index, const SectionObject &object,
                   const GroupNode &node, const QSizeF &size) const;
    void emitSection(const SectionRules &rules, const SectionDefinition &section);
    bool hasFooter(int level) const;
    void placeSubreports(const QString &section, const GroupNode &node);

    const Report &m_report;
    const LayoutDefinition &m_layout;
    const ReportFormulas &m_formulas;
    PageBuilder &m_builder;
    ColumnSet m_columns;
    bool m_wraps; // a column wraps, so a record's height depends on its texts
    ReportContext m_context;
    RunningTotals m_running;
    std::vector<Band> m_following;
    double *m_measured = nullptr; // while measuring a group: its height so far, and nothing is placed
};

} // namespace Engine
