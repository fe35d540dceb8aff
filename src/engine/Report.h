#pragma once
// An open report: its tables, parameters and sections, the records of the run, and export and printing.

#include "engine/Collection.h"
#include "engine/DatabaseTable.h"
#include "engine/ExportOptions.h"
#include "engine/Formula.h"
#include "engine/GroupTree.h"
#include "engine/ReportFormulas.h"
#include "engine/ParameterFieldDefinition.h"
#include "engine/PrintingStatus.h"
#include "engine/RecordStore.h"
#include "engine/ReportAlert.h"
#include "engine/ReportDefinition.h"
#include "engine/ReportObject.h"
#include "engine/page/CupsPrinter.h"

namespace Engine {

class Application;

class Report
{
public:
    Report(Engine::Application *application, ReportDefinition definition);
    ~Report();
    Report(const Report &) = delete;
    Report &operator=(const Report &) = delete;

    Engine::Database &Database() { return m_database; }
    Collection<Section> &Sections() { return m_sections; }
    const Collection<Section> &Sections() const { return m_sections; }
    Collection<ParameterFieldDefinition> &ParameterFields() { return m_parameters; }
    const Collection<ParameterFieldDefinition> &ParameterFields() const { return m_parameters; }
    bool HasSavedData() const { return m_savedData.has_value(); }
    void DiscardSavedData();
    // Runs the query (or takes the saved data), then group selection and alerts; raises EngineError.
    void ReadRecords();
    Engine::PrintingStatus &PrintingStatus() { return m_status; }
    Engine::ExportOptions &ExportOptions() { return m_exportOptions; }
    const Engine::ExportOptions &ExportOptions() const { return m_exportOptions; }
    // Writes the file of ExportOptions; the records are read first if they have not been.
    void Export(bool promptUser);
    void PrintOut(bool promptUser, qint16 numberOfCopies);
    void SelectPrinter(const QString &driverName, const QString &deviceName, const QString &portName);
    int PaperOrientation() const { return m_paperOrientation; }
    void setPaperOrientation(int orientation)
    {
        m_paperOrientation = orientation;
        m_pageCount = -1;
    }
    QString ReportTitle() const { return m_definition.title; }
    Engine::Application &Application() const { return *m_application; }
    QString GroupSelectionFormula() const { return m_groupSelection.text(); }
    // Raises EngineError when the formula does not parse, or names a field the records lack.
    void setGroupSelectionFormula(const QString &formula);
    Collection<ReportAlert> &ReportAlerts() { return m_alerts; }
    // The date the report prints as its PrintDate; today when not valid.
    void setPrintDate(QDate date);
    // There are no engine dialogs to parent; kept for callers that pass their window.
    void SetDialogParentWindow(quintptr) {}

    const ReportDefinition &definition() const { return m_definition; }
    bool hasRecords() const { return m_recordsRead; }
    const RecordStore &records() const { return m_records; }
    // Record numbers that passed group selection, in order.
    const QList<int> &selectedRows() const { return m_selected; }
    // The selected records in print order, in their groups; made on first use.
    const GroupTree &groups() const;
    // The selected records in print order.
    const QList<int> &printOrder() const { return m_formulas->reorders() ? groups().order() : m_selected; }
    // The report's formulas and summaries, bound to the records read.
    const ReportFormulas &formulas() const { return *m_formulas; }
    CupsPrinter &printer() { return m_printer; }
    // The parameter's bound values, by plain name (any case); empty when there is no such parameter.
    QVariantList parameterValues(const QString &name) const;
    // The page setup after the orientation chosen for printing.
    PageSetup pageSetup() const;
    // The sub-reports that stand in a section ("ReportHeader", "GroupFooter2"...), in order.
    QList<SubreportObject *> subreportsIn(const QString &section) const;
    // Reads a sub-report's records after giving its linked parameters their values: the main report's
    // parameters, and `fieldValue` for the fields of the record where it stands.
    void readSubreport(SubreportObject &object,
                       const std::function<QVariant(const QString &field)> &fieldValue = {}) const;

private:
    void buildSections();
    void placeSubreports();
    void readFromDatabase();
    void checkLayoutFields() const;
    void readSubreports();
    void bindFormula(Formula &formula) const;
    std::unique_ptr<ReportFormulas> makeFormulas() const;
    void applySelection();
    int countPages();

    Engine::Application *m_application;
    ReportDefinition m_definition;
    QString m_baseFolder;
    Engine::Database m_database;
    Collection<ParameterFieldDefinition> m_parameters;
    Collection<Section> m_sections;
    Collection<ReportAlert> m_alerts;
    Formula m_groupSelection;
    std::optional<RecordStore> m_savedData;
    RecordStore m_records;
    bool m_recordsRead = false;
    QList<int> m_selected;
    std::unique_ptr<ReportFormulas> m_formulas;
    mutable std::unique_ptr<GroupTree> m_groups;
    Engine::PrintingStatus m_status;
    Engine::ExportOptions m_exportOptions;
    int m_paperOrientation = DefaultPaperOrientation;
    int m_pageCount = -1;
    QDate m_printDate;
    CupsPrinter m_printer;
};

} // namespace Engine
