#pragma once
// The numeric codes of the engine's object model, as the scheduler compares them.

namespace Engine {

// ParameterFieldDefinition::ValueType
enum ValueTypeCode : int {
    NumberField = 7,
    CurrencyField = 8,
    BooleanField = 9,
    DateField = 10,
    TimeField = 11,
    StringField = 12,
    DateTimeField = 16
};

// ExportOptions::FormatType
enum FormatTypeCode : int {
    CrystalReportFormat = 1,
    RecordFormat = 3,
    RichTextFormat = 4,
    CharSeparatedFormat = 5,
    TabSeparatedValuesFormat = 6,
    TextFormat = 8,
    TabSeparatedTextFormat = 9,
    PaginatedTextFormat = 10,
    WordFormat = 14,
    HtmlFormat = 24,
    Excel70Format = 27,
    Excel70TabularFormat = 28,
    Excel80Format = 29,
    Excel80TabularFormat = 30,
    PdfFormat = 31,
    DhtmlFormat = 32,
    Crystal7Format = 33,
    XmlFormat = 37,
    ExcelDataOnlyFormat = 38
};

// ExportOptions::DestinationType
enum DestinationTypeCode : int { DiskFileDestination = 1 };

// ReportObject::Kind
enum ObjectKindCode : int {
    FieldObject = 1,
    TextObject = 2,
    LineObject = 3,
    BoxObject = 4,
    SubreportObjectKind = 5
};

// PrintingStatus::Progress
enum ProgressCode : int {
    ProgressNotStarted = 1,
    ProgressInProgress = 2,
    ProgressCompleted = 3,
    ProgressFailed = 4,
    ProgressHalted = 5
};

// Report::PaperOrientation
enum PaperOrientationCode : int {
    DefaultPaperOrientation = 0,
    PortraitOrientation = 1,
    LandscapeOrientation = 2
};

} // namespace Engine
