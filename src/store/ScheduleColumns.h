#pragma once
// The item columns as the schedule file holds them. This one table drives the file's writer, its tag
// reader and clsSchedule::ColumnTag.

#include "clsSchedule.h"

#include <array>

namespace ScheduleColumns {

// The element form of a column.
enum class Form {
    Element,
    Long,        // the closing tag on a line of its own, read back up to it
    LongWritten, // written long, but read back as a plain element
};

// When a column's element is written; the order of the table is the order of the file, so the
// columns written always come first and those written only when set follow.
enum class Written {
    Always,
    WhenSet,    // left out when empty
    WhenCopies, // only when the text reads as a number of 1 or more
    Never,      // not in the file
};

struct ItemColumn
{
    clsSchedule::Column column;
    const char *tag; // without angle brackets; empty for a column never written
    Form form;
    Written written;
};

using enum clsSchedule::Column;
using enum Form;
using enum Written;

inline constexpr std::array<ItemColumn, clsSchedule::ItemColumnCount> Items = {{
    {colReportID, "ReportID", Element, Always},
    {colName, "ReportName", Element, Always},
    {colFile, "ReportFile", Element, Always},
    {colSchedule, "ReportSchedule", Element, Always},
    {colFrequency, "ReportFrequency", Element, Always},
    {colFreqTimes, "FreqTimes", Element, Always},
    {colDest, "ReportDest", Element, Always},
    {colLocation, "ReportLocation", Element, Always},
    {colOutputFormat, "ReportFormat", Element, Always},
    {colPrompt, "ReportPrompt", Element, Always},
    {colPrinter, "ReportPrinter", Element, Always},
    {colPrinterCopies, "PrinterCopies", Element, WhenCopies},
    {colPrinterOrient, "PrinterOrientation", Element, Always},
    {colEmail, "ReportEmail", Element, Always},
    {colGroup, "ReportGroup", Element, Always},
    {colSelFormula, "ReportSelectionFormula", Element, Always},
    {colNextRun, "NextRun", Element, Always},
    {colLastRun, "LastRun", Element, Always},
    {colNoRecords, "NoRecords", Element, Always},
    {colEMailAttach, "EMailAttach", Element, Always},
    {colHTMLPages, "HTMLPages", Element, Always},
    {colDateStamp, "EMailDateStamp", Element, Always},
    {colCustomCalendarFile, "Custom-Calendar-File", Element, WhenSet},
    {colRptToCC, "Report-ToCC", Element, WhenSet},
    {colRptToBCC, "Report-ToBCC", Element, WhenSet},
    {colRptSubject, "Report-Subject", Element, WhenSet},
    {colRptMessage, "Report-Message", Long, WhenSet},
    {colRptFrom, "Report-From", Element, WhenSet},
    {colNotifyTo, "Notify-To", Element, WhenSet},
    {colNotifyMsg, "Notify-Msg", Long, WhenSet},
    {colErrorTo, "Error-To", Element, WhenSet},
    {colErrorMsg, "Error-Msg", Long, WhenSet},
    {colReportDescription, "ReportDescription", Long, WhenSet},
    {colRetainData, "RetainData", Element, WhenSet},
    {colCollectionName, "CollectionName", Element, WhenSet},
    {colMultiRunLineSuccessTo, "MultiRunLineSuccessTo", Element, WhenSet},
    {colMultiRunLineSuccessMsg, "MultiRunLineSuccessMsg", Long, WhenSet},
    {colMultiRunLineErrorTo, "MultiRunLineErrorTo", Element, WhenSet},
    {colMultiRunLineErrorMsg, "MultiRunLineErrorMsg", Long, WhenSet},
    {colMailAttach, "MailAttach", LongWritten, WhenSet},
    {colPageCount, "", Element, Never},
}};

// Each column stands in the table exactly once.
consteval bool EachColumnOnce()
{
    std::array<int, clsSchedule::ItemColumnCount> seen{};
    for (const ItemColumn &item : Items)
        ++seen[size_t(item.column)];
    for (int count : seen) {
        if (count != 1)
            return false;
    }
    return true;
}
static_assert(EachColumnOnce());

inline constexpr auto RowOfColumn = [] {
    std::array<size_t, clsSchedule::ItemColumnCount> rows{};
    for (size_t row = 0; row < Items.size(); ++row)
        rows[size_t(Items[row].column)] = row;
    return rows;
}();

// The entry of a column 0..ItemColumnCount-1.
inline const ItemColumn &Of(int column)
{
    return Items[RowOfColumn[size_t(column)]];
}

} // namespace ScheduleColumns
