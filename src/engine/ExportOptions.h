#pragma once
// The settings of an export: its type (FormatType codes in Codes.h), target file and per-format options.

#include "engine/Codes.h"

#include <QString>

namespace Engine {

struct ExportOptions
{
    int FormatType = CrystalReportFormat;
    int DestinationType = DiskFileDestination;
    QString DiskFileName;
    QString HTMLFileName;
    QString XMLFileName;
    bool HTMLEnableSeparatedPages = false;
    bool HTMLHasPageNavigator = false;
    bool UseReportDateFormat = false;
    bool UseReportNumberFormat = false;
    QString CharFieldDelimiter = QStringLiteral(",");
    QString CharStringDelimiter = QStringLiteral("\"");
    bool UseDefaultCPI = true;
    int CharactersPerInch = 12;
    qint16 NumberOfLinesPerPage = 0; // 0: as many as the page holds
    bool ExcelTabHasColumnHeadings = false;
    bool ExcelUseWorksheetFunctions = false;
    bool ExcelUseConstantColumnWidth = false;
    int ExcelAreaType = 0;
};

} // namespace Engine
