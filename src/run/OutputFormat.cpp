#include "OutputFormat.h"

#include "OutputNames.h"
#include "RunState.h"

#include "core/CommonFile.h"
#include "core/Numbers.h"
#include "engine/Report.h"
#include "store/clsSchedule.h"

#include <algorithm>
#include <array>

namespace {

// The program's major version: two export choices depend on it.
constexpr int MajorVersion = QORLO_VERSION_MAJOR;

// Format names with a fixed export type, in small letters, in the order they are compared.
struct FixedFormat
{
    QLatin1StringView name;
    int formatType;
    QLatin1StringView extension;
};

constexpr std::array<FixedFormat, 12> FixedFormats = {{
    {QLatin1StringView("rich text"), Engine::RichTextFormat, QLatin1StringView("rtf")},
    {QLatin1StringView("tab separated text"), Engine::TabSeparatedTextFormat, QLatin1StringView("txt")},
    {QLatin1StringView("csv file"), Engine::CharSeparatedFormat, QLatin1StringView("csv")},
    {QLatin1StringView("html document"), Engine::HtmlFormat, QLatin1StringView("html")},
    {QLatin1StringView("dhtml document"), Engine::DhtmlFormat, QLatin1StringView("html")},
    {QLatin1StringView("ms word doc"), Engine::WordFormat, QLatin1StringView("doc")},
    {QLatin1StringView("xml document"), Engine::XmlFormat, QLatin1StringView("xml")},
    {QLatin1StringView("tab separated values"), Engine::TabSeparatedValuesFormat, QLatin1StringView("txt")},
    {QLatin1StringView("acrobat file"), Engine::PdfFormat, QLatin1StringView("pdf")},
    // No extension: a staged mail copy keeps the extension of the report file.
    {QLatin1StringView("text file"), Engine::TextFormat, QLatin1StringView()},
    {QLatin1StringView("paginated text"), Engine::PaginatedTextFormat, QLatin1StringView("txt")},
    {QLatin1StringView("record format"), Engine::RecordFormat, QLatin1StringView("txt")},
}};

// The file has "|" between fields and "'" around strings, whatever the name "CSV" suggests.
void SetCharSeparatedOptions(Engine::ExportOptions &options)
{
    options.UseReportDateFormat = true;
    options.UseReportNumberFormat = true;
    options.CharFieldDelimiter = QStringLiteral("|");
    options.CharStringDelimiter = QStringLiteral("'");
}

// Runs for every delivery, so the folders of Location exist even for a mail or printer item.
void SetHtmlOptions(RunContext &run, Engine::ExportOptions &options, int formatType)
{
    // The stored text: an empty Location means the shared default page, not the item's default path.
    QString name = run.schedule.Field(clsSchedule::colLocation);
    if (name.isEmpty())
        name = CommonFile::JoinPath(run.appPath, QStringLiteral("Output/default.html"));
    if (CommonFile::FileExtension(name) != QLatin1StringView("html"))
        name = CommonFile::ChangeExtension(name, QStringLiteral("html"));
    options.FormatType = formatType;
    options.HTMLFileName = OutputNames::ExpandFileCodes(name);
    const bool separatedPages = run.schedule.HTMLPages() != QLatin1StringView("One Page");
    options.HTMLEnableSeparatedPages = separatedPages;
    options.HTMLHasPageNavigator = separatedPages;
}

void SetTextOptions(const clsSchedule &schedule, Engine::ExportOptions &options)
{
    if (schedule.Text_FormatCPI.isEmpty()) {
        options.UseDefaultCPI = true;
    } else {
        options.UseDefaultCPI = false;
        options.CharactersPerInch = Numbers::TextToInt32(schedule.Text_FormatCPI);
    }
    if (!schedule.Text_FormatPage.isEmpty())
        options.NumberOfLinesPerPage = Numbers::TextToInt16(schedule.Text_FormatPage);
}

void SetFixedFormat(RunContext &run, Engine::ExportOptions &options, int formatType)
{
    if (formatType == Engine::HtmlFormat || formatType == Engine::DhtmlFormat) {
        SetHtmlOptions(run, options, formatType);
        return;
    }
    options.FormatType = formatType;
    if (formatType == Engine::CharSeparatedFormat)
        SetCharSeparatedOptions(options);
    else if (formatType == Engine::TextFormat || formatType == Engine::PaginatedTextFormat)
        SetTextOptions(run.schedule, options);
}

} // namespace

void SetOutputFormat(RunContext &run, Engine::Report &report, const QString &name)
{
    const QString lower = name.toLower();
    QString extension;
    if (lower.isEmpty() || lower == QLatin1StringView("crystal report")) {
        SetCrystalFormat(run, report);
        extension = QStringLiteral("rpt");
    } else if (lower == QLatin1StringView("excel worksheet")) {
        SetExcelFormat(run, report);
        extension = QStringLiteral("xls");
    } else if (lower == QLatin1StringView("excel data")) {
        if (MajorVersion >= 10)
            report.ExportOptions().FormatType = Engine::ExcelDataOnlyFormat;
        else
            SetExcelFormat(run, report);
        extension = QStringLiteral("xls");
    } else {
        const auto fixed = std::find_if(FixedFormats.begin(), FixedFormats.end(),
                                        [&](const FixedFormat &format) { return format.name == lower; });
        if (fixed == FixedFormats.end()) {
            report.ExportOptions().FormatType = Engine::CrystalReportFormat;
            extension = QStringLiteral("rpt");
        } else {
            SetFixedFormat(run, report.ExportOptions(), fixed->formatType);
            extension = fixed->extension;
        }
    }
    run.state.OutputExtension = extension;
}

void SetExcelFormat(RunContext &run, Engine::Report &report)
{
    Engine::ExportOptions &options = report.ExportOptions();
    const QString &setting = run.schedule.Excel_Format;
    bool tabular = false;
    if (setting == QLatin1StringView("Excel 8.0 Extended")) {
        options.FormatType = Engine::Excel80TabularFormat;
        tabular = true;
    } else if (setting == QLatin1StringView("Excel 7.0")) {
        options.FormatType = Engine::Excel70Format;
    } else if (setting == QLatin1StringView("Excel 7.0 Extended")) {
        options.FormatType = Engine::Excel70TabularFormat;
        tabular = true;
    } else {
        options.FormatType = Engine::Excel80Format; // "Excel 8.0" and anything unknown
    }
    if (tabular) {
        options.ExcelTabHasColumnHeadings = true;
        options.ExcelUseWorksheetFunctions = false;
        options.ExcelUseConstantColumnWidth = false;
        options.ExcelAreaType = 4; // the detail area
    }
}

void SetCrystalFormat(RunContext &run, Engine::Report &report)
{
    int formatType = Engine::CrystalReportFormat;
    if (MajorVersion != 9 && run.schedule.Crystal_Format == QLatin1StringView("Crystal Reports 7.0"))
        formatType = Engine::Crystal7Format;
    report.ExportOptions().FormatType = formatType;
}
