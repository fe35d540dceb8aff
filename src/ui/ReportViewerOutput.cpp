// The viewer's print and export commands: the printer dialog, then the engine's CUPS printing; a file
// dialog, then the engine's export of the chosen format.
#include "ReportViewer.h"

#include "engine/Codes.h"
#include "engine/EngineError.h"
#include "engine/Report.h"
#include "engine/page/CupsPrinter.h"

#include <QFileDialog>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QRegularExpression>

namespace {

struct ExportFormat
{
    QString filter;
    int formatType;
};

const QList<ExportFormat> &ExportFormats()
{
    static const QList<ExportFormat> formats{
        {QStringLiteral("PDF (*.pdf)"), Engine::PdfFormat},
        {QStringLiteral("Excel 97-2003 (*.xls)"), Engine::Excel80Format},
        {QStringLiteral("Excel 97-2003, data only (*.xls)"), Engine::ExcelDataOnlyFormat},
        {QStringLiteral("Word (*.doc)"), Engine::WordFormat},
        {QStringLiteral("Rich Text (*.rtf)"), Engine::RichTextFormat},
        {QStringLiteral("HTML (*.html)"), Engine::HtmlFormat},
        {QStringLiteral("Comma-separated values (*.csv)"), Engine::CharSeparatedFormat},
        {QStringLiteral("Tab-separated values (*.tsv)"), Engine::TabSeparatedValuesFormat},
        {QStringLiteral("Text (*.txt)"), Engine::TextFormat},
        {QStringLiteral("Paginated text (*.txt)"), Engine::PaginatedTextFormat},
        {QStringLiteral("Record format (*.rec)"), Engine::RecordFormat},
        {QStringLiteral("XML (*.xml)"), Engine::XmlFormat},
        {QStringLiteral("Report with data (*.rpt)"), Engine::CrystalReportFormat}};
    return formats;
}

} // namespace

void ReportViewer::ExportTo(int formatType, const QString &file)
{
    if (!m_report)
        return;
    Engine::ExportOptions &options = m_report->ExportOptions();
    options.DestinationType = Engine::DiskFileDestination;
    options.FormatType = formatType;
    options.DiskFileName = file;
    options.HTMLFileName = file;
    options.XMLFileName = file;
    m_report->Export(false);
}

void ReportViewer::PrintTo(const QString &printerName, qint16 copies, int orientation)
{
    if (!m_report)
        return;
    bool found = false;
    for (const Engine::PrinterInfo &printer : Engine::CupsPrinter::InstalledPrinters()) {
        if (printer.deviceName == printerName) {
            m_report->SelectPrinter(printer.driverName, printer.deviceName, printer.port);
            found = true;
        }
    }
    if (!found)
        throw Engine::EngineError(Engine::EngineError::PrintFailed,
                                  QStringLiteral("The printer %1 is not installed").arg(printerName));
    const int before = m_report->PaperOrientation();
    m_report->setPaperOrientation(orientation);
    try {
        m_report->PrintOut(false, copies);
    } catch (const Engine::EngineError &) {
        m_report->setPaperOrientation(before);
        throw;
    }
    m_report->setPaperOrientation(before);
}

void ReportViewer::PrintWithDialog()
{
    if (!m_report)
        return;
    QPrinter printer;
    printer.setPageOrientation(m_report->pageSetup().landscape ? QPageLayout::Landscape
                                                               : QPageLayout::Portrait);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const int orientation = printer.pageLayout().orientation() == QPageLayout::Landscape
                                ? Engine::LandscapeOrientation
                                : Engine::PortraitOrientation;
    try {
        PrintTo(printer.printerName(), qint16(qBound(1, printer.copyCount(), 999)), orientation);
        m_status->setText(QStringLiteral("Sent to %1").arg(printer.printerName()));
    } catch (const Engine::EngineError &error) {
        Q_EMIT Failed(error.description());
    }
}

void ReportViewer::ExportWithDialog()
{
    if (!m_report)
        return;
    QStringList filters;
    for (const ExportFormat &format : ExportFormats())
        filters.append(format.filter);
    QFileDialog dialog(this, QStringLiteral("Export Report"));
    dialog.setObjectName(QStringLiteral("dlgExport"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    // A name typed without an extension gets the one of the chosen format.
    const auto useSuffixOf = [&dialog](const QString &filter) {
        static const QRegularExpression extension(QStringLiteral("\\*\\.(\\w+)"));
        dialog.setDefaultSuffix(extension.match(filter).captured(1));
    };
    connect(&dialog, &QFileDialog::filterSelected, &dialog, useSuffixOf);
    useSuffixOf(filters.first());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    const QString file = dialog.selectedFiles().first();
    const qsizetype index = filters.indexOf(dialog.selectedNameFilter());
    try {
        ExportTo(ExportFormats().at(index < 0 ? 0 : index).formatType, file);
        m_status->setText(QStringLiteral("Exported to %1").arg(file));
    } catch (const Engine::EngineError &error) {
        Q_EMIT Failed(error.description());
    }
}
