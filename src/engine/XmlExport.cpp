// XML export (type 37): fields with their value types, then each record; each sub-report after them as
// an element of its own that holds the same for its records.
#include "engine/DataExports.h"
#include "engine/RecordWalk.h"
#include "engine/Report.h"

#include <QBuffer>
#include <QXmlStreamWriter>

namespace Engine {

namespace {

// The writer fills a buffer that goes to the file in pieces; emptying it must also rewind it.
class XmlOutput
{
public:
    explicit XmlOutput(const QString &fileName) : m_file(fileName)
    {
        m_buffer.open(QIODevice::WriteOnly);
        xml.setDevice(&m_buffer);
        xml.setAutoFormatting(true);
    }

    void flushWhenLarge()
    {
        if (m_bytes.size() > 1 << 16)
            flush();
    }

    void commit()
    {
        flush();
        m_file.commit();
    }

    QXmlStreamWriter xml;

private:
    void flush()
    {
        m_file.write(m_bytes);
        m_bytes.clear();
        m_buffer.seek(0);
    }

    QByteArray m_bytes;
    QBuffer m_buffer{&m_bytes};
    ExportFile m_file;
};

void WriteRecords(const Report &report, XmlOutput &out)
{
    QXmlStreamWriter &xml = out.xml;
    const RecordStore &records = report.records();
    xml.writeAttribute(QStringLiteral("Title"), report.ReportTitle());
    xml.writeAttribute(QStringLiteral("Records"), QString::number(report.printOrder().size()));
    xml.writeStartElement(QStringLiteral("Fields"));
    for (int i = 0; i < records.fieldNames().size(); ++i) {
        xml.writeEmptyElement(QStringLiteral("Field"));
        xml.writeAttribute(QStringLiteral("Name"), records.fieldNames()[i]);
        xml.writeAttribute(QStringLiteral("Type"), QString::number(records.fieldTypes()[i]));
    }
    xml.writeEndElement();
    for (int row : report.printOrder()) {
        xml.writeStartElement(QStringLiteral("Record"));
        const RecordStore::Row &values = records.row(row);
        for (int i = 0; i < values.size(); ++i) {
            if (values[i].isNull()) {
                xml.writeEmptyElement(QStringLiteral("Value"));
                xml.writeAttribute(QStringLiteral("Name"), records.fieldNames()[i]);
                xml.writeAttribute(QStringLiteral("Null"), QStringLiteral("true"));
                continue;
            }
            xml.writeStartElement(QStringLiteral("Value"));
            xml.writeAttribute(QStringLiteral("Name"), records.fieldNames()[i]);
            xml.writeCharacters(RecordStore::toText(values[i]));
            xml.writeEndElement();
        }
        xml.writeEndElement();
        out.flushWhenLarge();
    }
}

// A sub-report in a group's section once for each group, named by the group's value.
void WriteSubreports(const Report &report, XmlOutput &out)
{
    ForEachSubreport(report, [&](SubreportObject &object, const QString &group) {
        const Report &subreport = object.OpenSubreport();
        if (!subreport.hasRecords())
            return;
        out.xml.writeStartElement(QStringLiteral("Subreport"));
        out.xml.writeAttribute(QStringLiteral("Name"), object.Name());
        if (!group.isEmpty())
            out.xml.writeAttribute(QStringLiteral("Group"), group);
        WriteRecords(subreport, out);
        WriteSubreports(subreport, out);
        out.xml.writeEndElement();
    });
}

} // namespace

void WriteXmlRecords(const Report &report, const QString &fileName)
{
    XmlOutput out(fileName);
    out.xml.writeStartDocument();
    out.xml.writeStartElement(QStringLiteral("Report"));
    WriteRecords(report, out);
    WriteSubreports(report, out);
    out.xml.writeEndElement();
    out.xml.writeEndDocument();
    out.commit();
}

} // namespace Engine
