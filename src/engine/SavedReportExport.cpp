// Report export (types 1 and 33): the report file copied token by token, passwords and old saved data
// left out, the records of this run added as saved data.
#include "engine/DataExports.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Engine {

namespace {

void WriteSavedData(QXmlStreamWriter &xml, const RecordStore &records)
{
    xml.writeStartElement(QStringLiteral("savedData"));
    for (int i = 0; i < records.fieldNames().size(); ++i) {
        xml.writeEmptyElement(QStringLiteral("field"));
        xml.writeAttribute(QStringLiteral("name"), records.fieldNames()[i]);
        xml.writeAttribute(QStringLiteral("type"), QString::number(records.fieldTypes()[i]));
    }
    for (int r = 0; r < records.count(); ++r) {
        xml.writeStartElement(QStringLiteral("row"));
        for (const QVariant &value : records.row(r)) {
            if (value.isNull()) {
                xml.writeEmptyElement(QStringLiteral("v"));
                xml.writeAttribute(QStringLiteral("null"), QStringLiteral("true"));
            } else {
                xml.writeTextElement(QStringLiteral("v"), RecordStore::toText(value));
            }
        }
        xml.writeEndElement();
    }
    xml.writeEndElement();
}

bool IsLeftOut(const QXmlStreamReader &in, int depth)
{
    if (in.name() == QLatin1String("savedData") && depth == 1)
        return true;
    return in.name() == QLatin1String("property") &&
           in.attributes().value(QLatin1String("name")) == QLatin1String("Password");
}

} // namespace

void WriteSavedReport(const Report &report, const QString &fileName)
{
    QFile source(report.definition().fileName);
    if (!source.open(QIODevice::ReadOnly))
        throw EngineError(
            EngineError::FileNotFound,
            QStringLiteral("Cannot read report file %1: %2").arg(source.fileName(), source.errorString()));
    const QByteArray original = source.readAll();
    QXmlStreamReader in(original);
    QByteArray bytes;
    QXmlStreamWriter out(&bytes);
    int depth = 0;
    while (!in.atEnd()) {
        in.readNext();
        if (in.isStartElement() && IsLeftOut(in, depth)) {
            in.skipCurrentElement();
            continue;
        }
        if (in.isStartElement())
            ++depth;
        if (in.isEndElement() && --depth == 0)
            WriteSavedData(out, report.records());
        out.writeCurrentToken(in);
    }
    if (in.hasError())
        throw EngineError(EngineError::BadReportFile,
                          QStringLiteral("Cannot read report file %1: line %2: %3")
                              .arg(source.fileName())
                              .arg(in.lineNumber())
                              .arg(in.errorString()));
    ExportFile file(fileName);
    file.write(bytes);
    file.commit();
}

} // namespace Engine
