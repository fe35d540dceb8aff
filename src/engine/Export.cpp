#include "engine/Export.h"

#include "engine/DataExports.h"
#include "engine/EngineError.h"
#include "engine/Paginator.h"
#include "engine/Report.h"
#include "engine/page/HtmlPageSink.h"
#include "engine/page/PdfPageSink.h"
#include "engine/page/RtfPageSink.h"
#include "engine/page/TextPageSink.h"

namespace Engine {

namespace {

QString TargetOf(const ExportOptions &options)
{
    switch (options.FormatType) {
    case HtmlFormat:
    case DhtmlFormat: return options.HTMLFileName;
    case XmlFormat: return options.XMLFileName.isEmpty() ? options.DiskFileName : options.XMLFileName;
    default: return options.DiskFileName;
    }
}

void RenderPages(const Report &report, PageSink &sink)
{
    Paginator(report).render(sink);
    if (sink.failed())
        throw EngineError(EngineError::ExportFailed, sink.errorString());
}

} // namespace

void ExportReport(Report &report)
{
    const ExportOptions &options = report.ExportOptions();
    if (options.DestinationType != DiskFileDestination)
        throw EngineError(
            EngineError::ExportFailed,
            QStringLiteral("Export destination %1 is not a disk file (1)").arg(options.DestinationType));
    const QString target = TargetOf(options);
    if (target.isEmpty())
        throw EngineError(EngineError::ExportFailed,
                          QStringLiteral("No file name given for export format %1").arg(options.FormatType));
    switch (options.FormatType) {
    case CrystalReportFormat:
    case Crystal7Format: return WriteSavedReport(report, target);
    case RecordFormat: return WriteRecordFormat(report, target);
    case CharSeparatedFormat:
    case TabSeparatedValuesFormat:
    case TabSeparatedTextFormat: return WriteSeparatedValues(report, options, target);
    case XmlFormat: return WriteXmlRecords(report, target);
    case Excel70Format:
    case Excel70TabularFormat:
    case Excel80Format:
    case Excel80TabularFormat:
    case ExcelDataOnlyFormat: return WriteExcelWorkbook(report, options, target);
    case RichTextFormat:
    case WordFormat: {
        RtfPageSink sink(target);
        return RenderPages(report, sink);
    }
    case TextFormat:
    case PaginatedTextFormat: {
        TextPageSink sink(target, {options.UseDefaultCPI ? 0 : options.CharactersPerInch,
                                   options.NumberOfLinesPerPage, options.FormatType == PaginatedTextFormat,
                                   report.definition().textEncoding});
        return RenderPages(report, sink);
    }
    case HtmlFormat:
    case DhtmlFormat: {
        HtmlPageSink sink(target, {options.HTMLEnableSeparatedPages, options.HTMLHasPageNavigator});
        return RenderPages(report, sink);
    }
    case PdfFormat: {
        PdfPageSink sink(target);
        return RenderPages(report, sink);
    }
    default:
        throw EngineError(EngineError::ExportFailed,
                          QStringLiteral("Export format %1 is unknown").arg(options.FormatType));
    }
}

} // namespace Engine
