#include "engine/ReportFile.h"

#include "engine/Codes.h"
#include "engine/EngineError.h"
#include "engine/Summary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPageSize>

namespace Engine {

namespace {

constexpr int MaxSubreportDepth = 4;
// Each group level nests the walks of the records once more.
constexpr int MaxGroups = 100;

bool IsKnownValueType(int type)
{
    return type == NumberField || type == CurrencyField || type == BooleanField || type == DateField ||
           type == TimeField || type == StringField || type == DateTimeField;
}

} // namespace

ReportDefinition ReportFile::Read(const QString &fileName)
{
    return ReportFile(fileName, 0).readFile();
}

ReportFile::ReportFile(QString fileName, int depth) : m_fileName(std::move(fileName)), m_depth(depth) {}

ReportDefinition ReportFile::readFile()
{
    QFile file(m_fileName);
    if (!file.exists())
        throw EngineError(
            EngineError::FileNotFound,
            QStringLiteral("Cannot open report file %1: the file does not exist").arg(m_fileName));
    // A FIFO would block the reading for good, a device never end.
    if (!QFileInfo(m_fileName).isFile())
        throw EngineError(
            EngineError::FileNotFound,
            QStringLiteral("Cannot open report file %1: it is not a regular file").arg(m_fileName));
    if (!file.open(QIODevice::ReadOnly))
        throw EngineError(
            EngineError::FileNotFound,
            QStringLiteral("Cannot open report file %1: %2").arg(m_fileName, file.errorString()));
    m_xml.setDevice(&file);
    while (m_xml.readNext() != QXmlStreamReader::StartElement) {
        if (m_xml.atEnd())
            fail(m_xml.hasError() ? xmlFault() : QStringLiteral("the file holds no <report> element"));
    }
    ReportDefinition report = readReport();
    while (!m_xml.atEnd())
        m_xml.readNext();
    if (m_xml.hasError() && m_xml.error() != QXmlStreamReader::PrematureEndOfDocumentError)
        fail(xmlFault());
    return report;
}

ReportDefinition ReportFile::readReport()
{
    if (m_xml.name() != QLatin1String("report"))
        fail(QStringLiteral("expected <report>, found <%1>").arg(m_xml.name()));
    ReportDefinition report;
    report.fileName = m_fileName;
    const QString version = attribute("version", true);
    bool ok = false;
    report.version = version.toInt(&ok);
    if (!ok || report.version < 1)
        fail(QStringLiteral("version \"%1\" is not a whole number above 0").arg(version));
    if (report.version > Version)
        fail(QStringLiteral("version %1 is newer than this engine reads (%2)")
                 .arg(report.version)
                 .arg(Version));
    while (m_xml.readNextStartElement())
        readChild(report);
    if (m_xml.hasError())
        fail(xmlFault());
    return report;
}

void ReportFile::readChild(ReportDefinition &report)
{
    const auto name = m_xml.name();
    if (name == QLatin1String("title"))
        report.title = text();
    else if (name == QLatin1String("table"))
        report.tables.append(readTable());
    else if (name == QLatin1String("parameter"))
        report.parameters.append(readParameter());
    else if (name == QLatin1String("query"))
        report.query = text();
    else if (name == QLatin1String("layout"))
        readLayout(report.layout);
    else if (name == QLatin1String("subreport"))
        report.subreports.append(readSubreport());
    else if (name == QLatin1String("alert")) {
        AlertDefinition alert{attribute("name", true), QString()};
        alert.condition = text();
        report.alerts.append(alert);
    } else if (name == QLatin1String("groupSelection"))
        report.groupSelection = text();
    else if (name == QLatin1String("savedData"))
        report.savedData = readSavedData();
    else if (name == QLatin1String("export"))
        report.textEncoding = readExport();
    else if (name == QLatin1String("formula")) {
        FormulaFieldDefinition formula{attribute("name", true), QString()};
        formula.text = text();
        report.formulas.append(formula);
    } else if (name == QLatin1String("runningTotal"))
        report.runningTotals.append(readRunningTotal());
    else
        unknownElement();
}

TableDefinition ReportFile::readTable()
{
    TableDefinition table;
    table.name = attribute("name", true);
    table.location = attribute("location");
    if (table.location.isEmpty())
        table.location = table.name;
    table.dllName = attribute("dll", true);
    if (table.dllName != QLatin1String("sqlite") && table.dllName != QLatin1String("psql") &&
        table.dllName != QLatin1String("odbc"))
        fail(QStringLiteral("dll \"%1\" of table %2 is not sqlite, psql or odbc")
                 .arg(table.dllName, table.name));
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() != QLatin1String("property"))
            unknownElement();
        PropertyDefinition property{attribute("name", true), QString()};
        property.value = text();
        table.properties.append(property);
    }
    return table;
}

ParameterDefinition ReportFile::readParameter()
{
    ParameterDefinition parameter;
    parameter.name = attribute("name", true);
    if (parameter.name.startsWith(QLatin1String("{?")) && parameter.name.endsWith(QLatin1Char('}')))
        parameter.name = parameter.name.mid(2, parameter.name.size() - 3);
    parameter.valueType = int(numberAttribute("type", StringField));
    if (!IsKnownValueType(parameter.valueType))
        fail(QStringLiteral("type %1 of parameter %2 is not one of 7, 8, 9, 10, 11, 12, 16")
                 .arg(parameter.valueType)
                 .arg(parameter.name));
    parameter.prompt = attribute("prompt");
    parameter.multiple = flagAttribute("multiple");
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("default"))
            parameter.defaultValues.append(text());
        else if (m_xml.name() == QLatin1String("value"))
            parameter.currentValues.append(text());
        else
            unknownElement();
    }
    return parameter;
}

void ReportFile::readLayout(LayoutDefinition &layout)
{
    while (m_xml.readNextStartElement()) {
        const auto name = m_xml.name();
        if (name == QLatin1String("page"))
            readPage(layout);
        else if (name == QLatin1String("pageHeader"))
            layout.pageHeader = readMixed([&] {
                if (m_xml.name() != QLatin1String("picture"))
                    unknownElement();
                layout.pageHeaderPictures.append(readPicture());
                if (layout.pageHeaderPictures.last().image.isNull())
                    fail(QStringLiteral("a picture in the page header comes from a file"));
            });
        else if (name == QLatin1String("pageFooter"))
            layout.pageFooter = text();
        else if (name == QLatin1String("column"))
            layout.columns.append(readColumn());
        else if (name == QLatin1String("group")) {
            if (layout.groups.size() == MaxGroups)
                fail(QStringLiteral("a layout has at most %1 groups").arg(MaxGroups));
            layout.groups.append(readGroup());
        } else if (name == QLatin1String("sort")) {
            layout.sorts.append(SortDefinition{attribute("field", true), descending()});
            m_xml.skipCurrentElement();
        } else if (name == QLatin1String("reportHeader"))
            readSection(layout.reportHeader);
        else if (name == QLatin1String("details"))
            readSection(layout.details);
        else if (name == QLatin1String("reportFooter"))
            readSection(layout.reportFooter);
        else if (name == QLatin1String("noData"))
            readSection(layout.noData);
        else if (name == QLatin1String("grandTotal")) {
            layout.grandTotals.append(readSummary());
            m_xml.skipCurrentElement();
        } else
            unknownElement();
    }
}

void ReportFile::readPage(LayoutDefinition &layout)
{
    layout.pageSetInFile = true;
    const QString size = attribute("size");
    if (!size.isEmpty()) {
        static const QList<std::pair<QLatin1String, QPageSize::PageSizeId>> sizes = {
            {QLatin1String("A4"), QPageSize::A4},
            {QLatin1String("A3"), QPageSize::A3},
            {QLatin1String("A5"), QPageSize::A5},
            {QLatin1String("Letter"), QPageSize::Letter},
            {QLatin1String("Legal"), QPageSize::Legal}};
        auto found = std::find_if(sizes.begin(), sizes.end(), [&](const auto &s) { return s.first == size; });
        if (found == sizes.end())
            fail(QStringLiteral("page size \"%1\" is not A3, A4, A5, Letter or Legal").arg(size));
        layout.page.size = QPageSize(found->second).size(QPageSize::Point);
    }
    const QString orientation = attribute("orientation");
    if (orientation == QLatin1String("landscape"))
        layout.page.landscape = true;
    else if (!orientation.isEmpty() && orientation != QLatin1String("portrait"))
        fail(QStringLiteral("orientation \"%1\" is not portrait or landscape").arg(orientation));
    const QString margins = attribute("margins");
    if (!margins.isEmpty()) {
        const QStringList parts = margins.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        QList<double> values;
        for (const QString &part : parts) {
            bool ok = false;
            values.append(part.toDouble(&ok));
            if (!ok)
                fail(QStringLiteral("margin \"%1\" is not a number").arg(part));
        }
        if (values.size() != 4)
            fail(QStringLiteral("margins need four numbers: left top right bottom"));
        layout.page.margins = QMarginsF(values[0], values[1], values[2], values[3]);
    }
    layout.fontSize = numberAttribute("fontSize", layout.fontSize);
    m_xml.skipCurrentElement();
}

ColumnDefinition ReportFile::readColumn()
{
    ColumnDefinition column;
    column.field = attribute("field", true);
    column.caption =
        m_xml.attributes().hasAttribute(QLatin1String("caption")) ? attribute("caption") : column.field;
    column.width = numberAttribute("width", column.width);
    column.alignment = alignment();
    column.format = attribute("format");
    column.wrap = flagAttribute("wrap");
    column.suppress = attribute("suppress");
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() != QLatin1String("style"))
            unknownElement();
        column.styles.append(readStyle());
    }
    return column;
}

GroupDefinition ReportFile::readGroup()
{
    GroupDefinition group;
    group.field = attribute("field", true);
    group.caption = attribute("caption");
    if (group.caption.isEmpty())
        group.caption = QStringLiteral("{value}");
    group.newPage = flagAttribute("newPage");
    group.keepTogether = flagAttribute("keepTogether");
    if (m_xml.attributes().hasAttribute(QLatin1String("footer")))
        group.footer = attribute("footer");
    group.selection = attribute("select");
    group.sortBy = attribute("sort");
    group.descending = descending();
    group.top = int(numberAttribute("top", 0));
    if (group.top < 0)
        fail(QStringLiteral("top %1 of group %2 is below 0").arg(group.top).arg(group.field));
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("header")) {
            readSection(group.header);
        } else if (m_xml.name() == QLatin1String("footer")) {
            readSection(group.footerSection);
        } else if (m_xml.name() == QLatin1String("subtotal")) {
            group.subtotals.append(readSummary());
            m_xml.skipCurrentElement();
        } else {
            unknownElement();
        }
    }
    return group;
}

SummaryDefinition ReportFile::readSummary()
{
    SummaryDefinition summary;
    summary.field = attribute("field", true);
    summary.function = summaryFunction(summary.function);
    return summary;
}

QString ReportFile::summaryFunction(const QString &fallback)
{
    const QString function = attribute("function");
    if (function.isEmpty())
        return fallback;
    if (!SummaryFunctionNamed(function))
        fail(QStringLiteral("function \"%1\" is not sum, count, distinctcount, average, minimum, maximum or "
                            "percentofsum")
                 .arg(function));
    return function.toLower();
}

bool ReportFile::descending()
{
    const QString order = attribute("order");
    if (!order.isEmpty() && order != QLatin1String("ascending") && order != QLatin1String("descending"))
        fail(QStringLiteral("order \"%1\" is not ascending or descending").arg(order));
    return order == QLatin1String("descending");
}

RunningTotalDefinition ReportFile::readRunningTotal()
{
    RunningTotalDefinition total;
    total.name = attribute("name", true);
    total.field = attribute("field", true);
    total.function = summaryFunction(total.function);
    total.reset = attribute("reset");
    if (total.reset == QLatin1String("never"))
        total.reset.clear();
    m_xml.skipCurrentElement();
    return total;
}

TextEncoding ReportFile::readExport()
{
    const QString encoding = attribute("encoding").toLower();
    m_xml.skipCurrentElement();
    if (encoding == QLatin1String("utf-8"))
        return TextEncoding::Utf8;
    if (encoding.isEmpty() || encoding == QLatin1String("windows-1252"))
        return TextEncoding::Windows1252;
    fail(QStringLiteral("encoding \"%1\" is not utf-8 or windows-1252").arg(encoding));
}

SubreportDefinition ReportFile::readSubreport()
{
    SubreportDefinition subreport;
    subreport.name = attribute("name", true);
    subreport.fileName = attribute("file");
    if (m_xml.attributes().hasAttribute(QLatin1String("section")))
        subreport.section = attribute("section");
    subreport.group = attribute("group");
    static const QStringList sections = {QStringLiteral("reportHeader"), QStringLiteral("reportFooter"),
                                         QStringLiteral("header"), QStringLiteral("footer")};
    if (!sections.contains(subreport.section))
        fail(QStringLiteral(
                 "section \"%1\" of sub-report %2 is not reportHeader, reportFooter, header or footer")
                 .arg(subreport.section, subreport.name));
    if (subreport.group.isEmpty() != subreport.section.startsWith(QLatin1String("report")))
        fail(
            QStringLiteral("sub-report %1 names a group exactly when it stands in a group's header or footer")
                .arg(subreport.name));
    const qint64 line = m_xml.lineNumber();
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("link")) {
            SubreportLink link{attribute("parameter", true), attribute("source"), attribute("field")};
            if (link.source.isEmpty() == link.field.isEmpty())
                fail(QStringLiteral("a <link> takes either a source parameter or a field"));
            subreport.links.append(link);
            m_xml.skipCurrentElement();
        } else if (m_xml.name() == QLatin1String("report") && subreport.fileName.isEmpty()) {
            subreport.report = std::make_shared<ReportDefinition>(readReport());
        } else
            unknownElement();
    }
    if (m_depth >= MaxSubreportDepth)
        fail(QStringLiteral("sub-report %1 is nested deeper than %2 levels")
                 .arg(subreport.name)
                 .arg(MaxSubreportDepth));
    if (!subreport.fileName.isEmpty()) {
        const QString path = QFileInfo(m_fileName).dir().filePath(subreport.fileName);
        if (!QFileInfo::exists(path))
            throw EngineError(
                EngineError::FileNotFound,
                QStringLiteral("Cannot open report file %1: line %2: sub-report file %3 does not exist")
                    .arg(m_fileName)
                    .arg(line)
                    .arg(path));
        subreport.report = std::make_shared<ReportDefinition>(ReportFile(path, m_depth + 1).readFile());
    }
    if (!subreport.report)
        fail(
            QStringLiteral("sub-report %1 needs a file attribute or an inline <report>").arg(subreport.name));
    return subreport;
}

RecordStore ReportFile::readSavedData()
{
    RecordStore store;
    QStringList names;
    QList<int> types;
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("field")) {
            names.append(attribute("name", true));
            types.append(int(numberAttribute("type", StringField)));
            m_xml.skipCurrentElement();
            continue;
        }
        if (m_xml.name() != QLatin1String("row"))
            unknownElement();
        if (store.fieldNames().isEmpty())
            store.setFields(names, types);
        RecordStore::Row row;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != QLatin1String("v"))
                unknownElement();
            if (row.size() >= types.size())
                fail(
                    QStringLiteral("a saved row has more values than the %1 saved fields").arg(types.size()));
            const bool null = flagAttribute("null");
            const QString value = text();
            row.append(null ? QVariant() : RecordStore::fromText(value, types[row.size()]));
        }
        if (row.size() != types.size())
            fail(QStringLiteral("a saved row has %1 values for %2 saved fields")
                     .arg(row.size())
                     .arg(types.size()));
        store.append(std::move(row));
    }
    if (store.fieldNames().isEmpty())
        store.setFields(names, types);
    return store;
}

QString ReportFile::attribute(const char *name, bool required)
{
    const QLatin1String key(name);
    if (required && !m_xml.attributes().hasAttribute(key))
        fail(QStringLiteral("<%1> needs the attribute %2").arg(m_xml.name(), key));
    return m_xml.attributes().value(key).toString();
}

double ReportFile::numberAttribute(const char *name, double fallback)
{
    const QString value = attribute(name);
    if (value.isEmpty())
        return fallback;
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok)
        fail(QStringLiteral("%1 \"%2\" of <%3> is not a number")
                 .arg(QLatin1String(name), value, m_xml.name()));
    return number;
}

bool ReportFile::flagAttribute(const char *name)
{
    const QString value = attribute(name).toLower();
    return value == QLatin1String("true") || value == QLatin1String("yes") || value == QLatin1String("1");
}

QString ReportFile::text()
{
    const QString value = m_xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
    if (m_xml.hasError())
        fail(xmlFault());
    return value;
}

// The reader's fault; where the file ends or closes another element first, the element left open,
// which is what its author has to look for.
QString ReportFile::xmlFault() const
{
    const QString reason = m_xml.errorString();
    const bool unclosed = m_xml.error() == QXmlStreamReader::PrematureEndOfDocumentError ||
                          reason.contains(QLatin1String("mismatch"), Qt::CaseInsensitive);
    QFile file(m_fileName);
    if (!unclosed || !file.open(QIODevice::ReadOnly))
        return reason;
    QXmlStreamReader again(&file);
    QList<std::pair<QString, qint64>> open;
    while (!again.atEnd() && !again.hasError()) {
        again.readNext();
        if (again.isStartElement())
            open.append({again.name().toString(), again.lineNumber()});
        else if (again.isEndElement() && !open.isEmpty())
            open.removeLast();
    }
    if (open.isEmpty())
        return reason;
    return QStringLiteral("the element <%1> opened on line %2 is not closed (%3)")
        .arg(open.last().first)
        .arg(open.last().second)
        .arg(reason);
}

void ReportFile::fail(const QString &what)
{
    throw EngineError(EngineError::BadReportFile, QStringLiteral("Cannot open report file %1: line %2: %3")
                                                      .arg(m_fileName)
                                                      .arg(m_xml.lineNumber())
                                                      .arg(what));
}

void ReportFile::unknownElement()
{
    fail(QStringLiteral("unknown element <%1>").arg(m_xml.name()));
}

} // namespace Engine
