// XML export (type 37): fields with their value types, then each record.
#include "engine/DataExports.h"
#include "engine/Report.h"

#include <QBuffer>
#include <QXmlStreamWriter>

namespace Engine {

void WriteXmlRecords(const Report &report, const QString &fileName)
{
    const RecordStore &records = report.records();
    // The writer fills a buffer that goes to the file in pieces; emptying it must also rewind it.
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter xml(&buffer);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("Report"));
    xml.writeAttribute(QStringLiteral("Title"), report.ReportTitle());
    xml.writeAttribute(QStringLiteral("Records"), QString::number(report.printOrder().size()));
    xml.writeStartElement(QStringLiteral("Fields"));
    for (int i = 0; i < records.fieldNames().size(); ++i) {
        xml.writeEmptyElement(QStringLiteral("Field"));
        xml.writeAttribute(QStringLiteral("Name"), records.fieldNames()[i]);
        xml.writeAttribute(QStringLiteral("Type"), QString::number(records.fieldTypes()[i]));
    }
    xml.writeEndElement();
    ExportFile file(fileName);
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
        if (bytes.size() > 1 << 16) {
            file.write(bytes);
            bytes.clear();
            buffer.seek(0);
        }
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    file.write(bytes);
    file.commit();
}

} // namespace Engine
