// The sections of a report file's layout: conditions that hide them, looks that conditions give, and
// the objects they hold.
#include "engine/ReportFile.h"
#include "engine/Summary.h"

#include <QDir>
#include <QFileInfo>

namespace Engine {

Qt::Alignment ReportFile::alignment()
{
    const QString align = attribute("align");
    if (align.isEmpty() || align == QLatin1String("left"))
        return Qt::AlignLeft;
    if (align == QLatin1String("right"))
        return Qt::AlignRight;
    if (align == QLatin1String("center"))
        return Qt::AlignHCenter;
    fail(QStringLiteral("align \"%1\" is not left, right or center").arg(align));
}

// "#RRGGBB" or a colour name such as "darkred"; an invalid colour when the attribute is missing.
QColor ReportFile::color(const char *name)
{
    const QString text = attribute(name);
    if (text.isEmpty())
        return QColor();
    const QColor parsed = QColor::fromString(text);
    if (!parsed.isValid())
        fail(QStringLiteral("%1 \"%2\" is not a colour such as #C00000 or darkred")
                 .arg(QLatin1String(name), text));
    return parsed;
}

StyleRule ReportFile::readStyle()
{
    StyleRule style;
    style.condition = attribute("condition");
    if (m_xml.attributes().hasAttribute(QLatin1String("bold")))
        style.bold = flagAttribute("bold");
    if (m_xml.attributes().hasAttribute(QLatin1String("italic")))
        style.italic = flagAttribute("italic");
    style.color = color("color");
    style.background = color("background");
    m_xml.skipCurrentElement();
    return style;
}

SectionObject ReportFile::readText()
{
    SectionObject object;
    object.kind = SectionObject::Text;
    object.alignment = alignment();
    object.bold = flagAttribute("bold");
    object.fontSize = numberAttribute("size", 0);
    object.text = text();
    return object;
}

// A file's picture is read with the report, so that a missing logo stops the report before it runs.
SectionObject ReportFile::readPicture()
{
    SectionObject object;
    object.kind = SectionObject::Picture;
    object.alignment = alignment();
    object.field = attribute("field");
    const QString file = attribute("file");
    if (file.isEmpty() == object.field.isEmpty())
        fail(QStringLiteral("a <picture> takes either a file or a field"));
    object.width = numberAttribute("width", 72);
    object.height = numberAttribute("height", 72);
    if (object.width <= 0 || object.height <= 0)
        fail(QStringLiteral("a <picture> needs a width and a height above 0"));
    if (!file.isEmpty()) {
        const QString path = QFileInfo(m_fileName).dir().filePath(file);
        if (!object.image.load(path))
            fail(QStringLiteral("the picture file %1 cannot be read as PNG or JPEG").arg(path));
    }
    m_xml.skipCurrentElement();
    return object;
}

SectionObject ReportFile::readChart()
{
    static const QList<std::pair<QLatin1String, ChartType>> types = {
        {QLatin1String("bar"), ChartType::Bar},
        {QLatin1String("stackedbar"), ChartType::StackedBar},
        {QLatin1String("line"), ChartType::Line},
        {QLatin1String("pie"), ChartType::Pie}};
    SectionObject object;
    object.kind = SectionObject::Chart;
    object.alignment = alignment();
    const QString type = attribute("type");
    const auto found = std::find_if(types.begin(), types.end(), [&](const auto &t) {
        return type.compare(t.first, Qt::CaseInsensitive) == 0;
    });
    if (!type.isEmpty() && found == types.end())
        fail(QStringLiteral("chart type \"%1\" is not bar, stackedbar, line or pie").arg(type));
    object.chart.type = type.isEmpty() ? ChartType::Bar : found->second;
    object.chart.group = attribute("group", true);
    object.chart.series = attribute("series");
    object.chart.value = attribute("value", true);
    object.text = attribute("title");
    object.width = numberAttribute("width", 360);
    object.height = numberAttribute("height", 200);
    if (object.width < 72 || object.height < 72)
        fail(QStringLiteral("a <chart> needs a width and a height of 72 points or more"));
    m_xml.skipCurrentElement();
    return object;
}

SectionObject ReportFile::readCrosstab()
{
    SectionObject object;
    object.kind = SectionObject::Crosstab;
    CrosstabDefinition &crosstab = object.crosstab;
    crosstab.rows = attribute("rows", true);
    crosstab.columns = attribute("columns", true);
    crosstab.field = attribute("field", true);
    crosstab.function = summaryFunction(crosstab.function);
    if (SummaryFunctionNamed(crosstab.function) == SummaryFunction::PercentOfSum)
        fail(QStringLiteral("a <crosstab> sums, counts, averages or finds the least or greatest value"));
    crosstab.format = attribute("format");
    crosstab.cellWidth = numberAttribute("cellWidth", crosstab.cellWidth);
    if (crosstab.cellWidth < 12)
        fail(QStringLiteral("cellWidth of a <crosstab> is below 12 points"));
    m_xml.skipCurrentElement();
    return object;
}

QString ReportFile::readMixed(const std::function<void()> &readChild)
{
    QString loose;
    while (!m_xml.atEnd()) {
        m_xml.readNext();
        if (m_xml.isEndElement())
            break;
        if (m_xml.isCharacters())
            loose += m_xml.text();
        else if (m_xml.isStartElement())
            readChild();
    }
    if (m_xml.hasError())
        fail(xmlFault());
    return loose.trimmed();
}

// A section's text outside any element is a text of its own, so that <noData>No orders.</noData> reads
// as it is written.
void ReportFile::readSection(SectionDefinition &section)
{
    section.suppress = attribute("suppress");
    const QString loose = readMixed([&] {
        if (m_xml.name() == QLatin1String("style"))
            section.styles.append(readStyle());
        else if (m_xml.name() == QLatin1String("text"))
            section.objects.append(readText());
        else if (m_xml.name() == QLatin1String("picture"))
            section.objects.append(readPicture());
        else if (m_xml.name() == QLatin1String("chart"))
            section.objects.append(readChart());
        else if (m_xml.name() == QLatin1String("crosstab"))
            section.objects.append(readCrosstab());
        else
            unknownElement();
    });
    if (!loose.isEmpty()) {
        SectionObject text;
        text.text = loose;
        section.objects.prepend(text);
    }
}

} // namespace Engine
