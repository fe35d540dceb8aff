#include "engine/Report.h"

#include "engine/Application.h"
#include "engine/DatabaseConnection.h"
#include "engine/Export.h"
#include "engine/NearestNames.h"
#include "engine/Paginator.h"
#include "engine/Printing.h"
#include "engine/Query.h"
#include "engine/StopCheck.h"

#include <QFileInfo>

namespace Engine {

Report::Report(Engine::Application *application, ReportDefinition definition)
    : m_application(application), m_definition(std::move(definition)),
      m_baseFolder(QFileInfo(m_definition.fileName).absolutePath()),
      m_groupSelection(Formula::Parse(QStringLiteral("group selection"), m_definition.groupSelection)),
      m_savedData(m_definition.savedData)
{
    m_definition.savedData.reset(); // the live copy is m_savedData
    for (const TableDefinition &table : m_definition.tables)
        m_database.Tables().append(std::make_unique<DatabaseTable>(table, m_application, m_baseFolder));
    for (const ParameterDefinition &parameter : m_definition.parameters)
        m_parameters.append(std::make_unique<ParameterFieldDefinition>(parameter));
    for (const AlertDefinition &alert : m_definition.alerts)
        m_alerts.append(std::make_unique<ReportAlert>(alert.name, alert.condition));
    buildSections();
    m_status.setPageCounter([this] { return countPages(); });
}

Report::~Report() = default;

void Report::buildSections()
{
    auto add = [this](const QString &name) -> Section & {
        return m_sections.append(std::make_unique<Section>(name));
    };
    add(QStringLiteral("ReportHeader"))
        .ReportObjects()
        .append(std::make_unique<ReportObject>(TextObject, QStringLiteral("Title")));
    Section &pageHeader = add(QStringLiteral("PageHeader"));
    for (const ColumnDefinition &column : m_definition.layout.columns)
        pageHeader.ReportObjects().append(std::make_unique<ReportObject>(TextObject, column.caption));
    for (int i = 0; i < m_definition.layout.groups.size(); ++i)
        add(QStringLiteral("GroupHeader%1").arg(i + 1))
            .ReportObjects()
            .append(std::make_unique<ReportObject>(FieldObject, m_definition.layout.groups[i].field));
    Section &details = add(QStringLiteral("Details"));
    for (const ColumnDefinition &column : m_definition.layout.columns)
        details.ReportObjects().append(std::make_unique<ReportObject>(FieldObject, column.field));
    for (int i = int(m_definition.layout.groups.size()); i > 0; --i) {
        Section &footer = add(QStringLiteral("GroupFooter%1").arg(i));
        for (const SummaryDefinition &total : m_definition.layout.groups[i - 1].subtotals)
            footer.ReportObjects().append(std::make_unique<ReportObject>(FieldObject, total.field));
    }
    Section &reportFooter = add(QStringLiteral("ReportFooter"));
    for (const SummaryDefinition &total : m_definition.layout.grandTotals)
        reportFooter.ReportObjects().append(std::make_unique<ReportObject>(FieldObject, total.field));
    add(QStringLiteral("PageFooter"))
        .ReportObjects()
        .append(std::make_unique<ReportObject>(TextObject, QStringLiteral("PageNumber")));
    placeSubreports();
}

const GroupTree &Report::groups() const
{
    if (!m_groups)
        m_groups = std::make_unique<GroupTree>(m_records, *m_formulas, m_selected);
    return *m_groups;
}

void Report::DiscardSavedData()
{
    m_savedData.reset();
    m_recordsRead = false;
    m_records.clear();
    m_selected.clear();
    m_groups.reset();
    m_formulas.reset();
    m_status.setRecordsSelected(0);
}

void Report::ReadRecords()
{
    m_recordsRead = false;
    m_pageCount = -1;
    m_status.setProgress(ProgressInProgress);
    try {
        if (m_savedData)
            m_records = *m_savedData;
        else
            readFromDatabase();
        checkLayoutFields();
        m_formulas = makeFormulas();
        m_formulas->setPrintDate(m_printDate);
        m_recordsRead = true;
        applySelection();
        readSubreports();
    } catch (const EngineError &error) {
        m_status.setProgress(error.number() == EngineError::Stopped ? ProgressHalted : ProgressFailed);
        throw;
    }
    m_status.setProgress(ProgressCompleted);
}

void Report::readFromDatabase()
{
    if (m_database.Tables().Count() == 0)
        throw EngineError(
            EngineError::DatabaseError,
            QStringLiteral("The report %1 has no table to read from").arg(m_definition.fileName));
    if (m_definition.query.trimmed().isEmpty())
        throw EngineError(EngineError::DatabaseError,
                          QStringLiteral("The report %1 has no query").arg(m_definition.fileName));
    DatabaseTable &first = m_database.Tables().Item(1);
    const BoundQuery bound = BindQuery(
        m_definition.query,
        [this](const QString &name) -> std::optional<QString> {
            for (const DatabaseTable &table : m_database.Tables()) {
                if (table.Name().compare(name, Qt::CaseInsensitive) == 0)
                    return table.Location();
            }
            return std::nullopt;
        },
        [this](const QString &name) -> std::optional<QVariantList> {
            for (const ParameterFieldDefinition &parameter : m_parameters) {
                if (parameter.ParameterFieldName().compare(name, Qt::CaseInsensitive) == 0)
                    return parameter.boundValues();
            }
            return std::nullopt;
        });
    DatabaseConnection connection(first.DllName(), first.ConnectionProperties(), m_baseFolder);
    connection.open();
    m_application->noteLogOn(first.DllName(), DatabaseConnection::serverOf(first.ConnectionProperties()),
                             DatabaseConnection::databaseOf(first.ConnectionProperties()));
    ReadQuery(connection, bound, m_records);
}

// Every name the layout shows or groups by is a field of the query, a formula field or a running total.
void Report::checkLayoutFields() const
{
    const LayoutDefinition &layout = m_definition.layout;
    QStringList fields;
    for (const ColumnDefinition &column : layout.columns)
        fields.append(column.field);
    for (const GroupDefinition &group : layout.groups) {
        fields.append(group.field);
        for (const SummaryDefinition &subtotal : group.subtotals)
            fields.append(subtotal.field);
    }
    for (const SummaryDefinition &total : layout.grandTotals)
        fields.append(total.field);
    for (const SortDefinition &sort : layout.sorts)
        fields.append(sort.field);
    for (const SubreportDefinition &subreport : m_definition.subreports) {
        for (const SubreportLink &link : subreport.links) {
            if (!link.field.isEmpty())
                fields.append(link.field);
        }
    }
    QStringList known = m_records.fieldNames();
    for (const FormulaFieldDefinition &formula : m_definition.formulas)
        known.append(formula.name);
    for (const RunningTotalDefinition &total : m_definition.runningTotals)
        known.append(total.name);
    for (const QString &field : fields) {
        if (m_records.fieldIndex(field) < 0 && !known.contains(field, Qt::CaseInsensitive) &&
            !ReportFormulas::IsSpecialName(field))
            throw EngineError(
                EngineError::BadReportFile,
                QStringLiteral("The layout of %1 names the field \"%2\", which the query does not return")
                        .arg(m_definition.fileName, field) +
                    NearestNamesNote(field, known));
    }
}

// Sub-reports in a group's sections read their records where they stand, once for each group.
void Report::readSubreports()
{
    for (const QString &section : {QStringLiteral("ReportHeader"), QStringLiteral("ReportFooter")}) {
        for (SubreportObject *object : subreportsIn(section))
            readSubreport(*object);
    }
}

QVariantList Report::parameterValues(const QString &name) const
{
    for (const ParameterFieldDefinition &parameter : m_parameters) {
        if (parameter.ParameterFieldName().compare(name, Qt::CaseInsensitive) == 0)
            return parameter.boundValues();
    }
    return {};
}

void Report::setGroupSelectionFormula(const QString &formula)
{
    Formula parsed = Formula::Parse(QStringLiteral("group selection"), formula);
    if (m_recordsRead)
        bindFormula(parsed);
    m_groupSelection = std::move(parsed);
    if (m_recordsRead)
        applySelection();
}

std::unique_ptr<ReportFormulas> Report::makeFormulas() const
{
    try {
        return std::make_unique<ReportFormulas>(
            m_definition, m_records, [this](const QString &name) { return parameterValues(name); });
    } catch (const EngineError &error) {
        throw EngineError(error.number(),
                          QStringLiteral("Report %1: %2").arg(m_definition.fileName, error.description()));
    }
}

// A formula that names what the records lack fails with the report's name, for the report's author.
void Report::bindFormula(Formula &formula) const
{
    try {
        formula.bind(m_records.fieldNames(), [this](const QString &name) { return parameterValues(name); });
    } catch (const EngineError &error) {
        throw EngineError(error.number(),
                          QStringLiteral("Report %1: %2").arg(m_definition.fileName, error.description()));
    }
}

void Report::applySelection()
{
    bindFormula(m_groupSelection);
    for (ReportAlert &alert : m_alerts)
        bindFormula(alert.formula());
    m_selected.clear();
    m_selected.reserve(m_records.count());
    // Without a formula no record needs reading here.
    for (int i = 0; i < m_records.count(); ++i) {
        CheckStop();
        if (m_groupSelection.isEmpty() || m_groupSelection.test(m_records.row(i)))
            m_selected.append(i);
    }
    for (ReportAlert &alert : m_alerts)
        alert.evaluate(m_records, m_selected);
    m_groups.reset();
    m_status.setRecordsSelected(int(m_selected.size()));
    m_pageCount = -1;
}

PageSetup Report::pageSetup() const
{
    PageSetup setup = m_definition.layout.page;
    setup.title = m_definition.title;
    if (m_paperOrientation == PortraitOrientation)
        setup.landscape = false;
    else if (m_paperOrientation == LandscapeOrientation)
        setup.landscape = true;
    return setup;
}

int Report::countPages()
{
    if (!m_recordsRead)
        return 0;
    if (m_pageCount < 0)
        m_pageCount = Paginator(*this).countPages();
    return m_pageCount;
}

void Report::Export(bool)
{
    if (!m_recordsRead)
        ReadRecords();
    ExportReport(*this);
}

void Report::PrintOut(bool, qint16 numberOfCopies)
{
    if (!m_recordsRead)
        ReadRecords();
    PrintReport(*this, numberOfCopies);
}

void Report::setPrintDate(QDate date)
{
    m_printDate = date;
    if (m_formulas)
        m_formulas->setPrintDate(date);
}

void Report::SelectPrinter(const QString &driverName, const QString &deviceName, const QString &portName)
{
    m_printer.select(driverName, deviceName, portName);
}

} // namespace Engine
