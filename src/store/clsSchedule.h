#pragma once
// The one Schedule: settings, schedule items, their parameters and collection members.
//
// Conventions of this class:
// - Item columns are properties at the shared cursor: a column X reads with X() and writes with SetX(v).
//   With the cursor at -1 they raise QorloError(OutOfRange) (error 9), except that ReportID() and File()
//   read empty, Name() moves the cursor to row 0 first, and SetPageCount() does nothing.
// - Parameter columns work the same on the parameter cursor, collection columns on the collection cursor.
// - Settings are public fields named after their file tag, a hyphen becoming an underscore.
// - Overflow of a 16/32-bit field raises error 6, text that must be a number or a date raises error 13.
// Calendar operations (NextReportRun, SaveNextTime, BusinessEndToday), backup/advance and SaveWeb are
// free functions elsewhere that take a clsSchedule&.

#include <QHash>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <array>
#include <functional>
#include <vector>

class LineReader;

class clsSchedule
{
public:
    // Table limits: row numbers 0 .. MaxX - 1.
    static constexpr int MaxItems = 2001;
    static constexpr int MaxParms = 3001;
    static constexpr int MaxCollections = 2001;
    static constexpr int ItemColumnCount = 41;
    static constexpr int ParmColumnCount = 7;
    static constexpr int DomainCount = 10;

    // Item columns in their order; the numbers of ChangePreview/ChangeBulk.
    enum Column {
        colReportID = 0,
        colName,
        colFile,
        colSchedule,
        colFrequency,
        colFreqTimes,
        colDest,
        colLocation,
        colOutputFormat,
        colPrompt,
        colPrinter,
        colEmail,
        colGroup,
        colSelFormula,
        colNextRun,
        colPrinterCopies,
        colNoRecords,
        colEMailAttach,
        colHTMLPages,
        colPrinterOrient,
        colDateStamp,
        colLastRun,
        colCustomCalendarFile,
        colPageCount,
        colRptToCC,
        colRptToBCC,
        colRptSubject,
        colRptMessage,
        colRptFrom,
        colNotifyTo,
        colNotifyMsg,
        colErrorTo,
        colErrorMsg,
        colReportDescription,
        colRetainData,
        colCollectionName,
        colMultiRunLineSuccessTo,
        colMultiRunLineSuccessMsg,
        colMultiRunLineErrorTo,
        colMultiRunLineErrorMsg,
        colMailAttach,
    };

    // Parameter columns; column 4 is read and written by nothing.
    enum ParmColumn {
        parmReportID = 0,
        parmName,
        parmValueType,
        parmValue,
        parmUnused,
        parmPrompt,
        parmMulti,
    };

    struct HourMinute
    {
        qint16 Hour = 0;
        qint16 Minute = 0;
        bool operator==(const HourMinute &) const = default;
    };

    // Sets the defaults that stand before anything is loaded: AppPath is
    // `appPath`, FileName is appPath + "/Qorlo.XML", StartedAt is now, BackupDate is now minus one day.
    explicit clsSchedule(const QString &appPath);
    ~clsSchedule();
    clsSchedule(const clsSchedule &) = delete;
    clsSchedule &operator=(const clsSchedule &) = delete;

    // ---------------------------------------------------------------- settings (public fields)
    QString FileName;
    QString AppPath;
    QString Application;
    QString SMTP_Server;
    QString SMTP_From;
    qint32 SMTP_Port = 25;
    QString SMTP_StdMessage;
    qint16 SMTPDelay = 2;
    QString SMTPMethod;
    QString SMTPApplication;
    QString SMTPAuthentication;
    QString SMTPUser;
    QString SMTPPassword; // clear text in memory, scrambled in the file
    // Mail encryption: "None", "STARTTLS" or "TLS"; the element is written only when not "None".
    QString SMTP_Encryption = QStringLiteral("None");
    QString TestMessageTo;
    QString Excel_Format;
    QString Text_FormatCPI;
    QString Text_FormatPage;
    QString Crystal_Format;
    bool Active = false; // file tag Schedule_State
    QString LastReportID;
    QString LastReport;
    double LastReportDate = 0;
    QString LastReportMsg;
    bool AutoRun = false;
    QString Business_Week;
    QString Business_Month;
    QString Holiday_List = QStringLiteral("holiday.lst");
    HourMinute BusinessHour_Start{9, 0};
    HourMinute BusinessHour_End{17, 0};
    qint16 BusinessHour_Schedule = 0;
    qint16 Today_Adjust = 0;
    qint16 Week_Start = 0;
    qint16 Month_Length = 0;
    double Period_One = 0;
    double Year_Start = 0;
    QString StartTime;
    QString StopTime;
    double BackupDate = 0;
    QString BackupFrequency = QStringLiteral("Daily");
    QString BackupPrevious;
    QString BackupPreviousFile;
    qint16 BackupPurge = 30;
    QString BackupLastPurge;
    QString BackupManualDate;
    QString BackupManualFile;
    // In memory only.
    QString ParmError;
    QString ProcessingID;
    QString ProcessingName;
    qint16 NextItemIndex = 0; // row found by NextReportRun
    double StartedAt = 0;
    bool SaveSuspended = false; // while true, Save does nothing
    // The machine's printers, asked at each Save for the file's printer list; the scheduler sets it.
    std::function<QStringList()> PrinterNames;

    // ---------------------------------------------------------------- item cursor
    int Count() const { return m_count; }
    int Position() const { return m_position; }
    // A row 0..Count-1 becomes the cursor and clears NoMatch; anything else gives -1 and sets NoMatch.
    void SetPosition(int row);
    bool NoMatch() const { return m_noMatch; }
    bool Found() const { return m_found; }
    // Linear search from row 0, exact text; moves the cursor and sets NoMatch/Found.
    void Find(const QString &reportID);
    // The same search without moving the cursor or touching the flags.
    bool Confirm(const QString &reportID) const;
    // Walk in the order of the sort index (set by the main window).
    void MoveFirst();
    void MoveLast();
    void MoveNext(const QString &reportID);
    void MovePrior(const QString &reportID);
    QString GetSortIndexArray(int index) const;   // out-of-range index: error 9
    void LoadSortIndexArray(const QString &text); // split at "|"
    int SortIndexCount() const { return int(m_sortIndex.size()); }

    // ---------------------------------------------------------------- item columns at the cursor
    QString ReportID() const; // empty at cursor -1
    void SetReportID(const QString &value);
    QString Name(); // at cursor -1 moves the cursor to row 0; empty gives FileBaseName(File)
    void SetName(const QString &value);
    QString File() const; // empty at cursor -1
    void SetFile(const QString &value);
    QString Schedule() const;
    void SetSchedule(const QString &value);
    QString Frequency() const;
    void SetFrequency(const QString &value);
    QString FreqTimes() const;
    void SetFreqTimes(const QString &value);
    QString Dest(); // empty reads (and stores) "D"
    void SetDest(const QString &value);
    QString Location() const; // empty reads AppPath + "/Output/" + base name + "." + extension of File
    void SetLocation(const QString &value);
    QString OutputFormat() const;
    void SetOutputFormat(const QString &value);
    QString Prompt() const;
    void SetPrompt(const QString &value);
    QString Printer() const;
    void SetPrinter(const QString &value);
    QString Email() const;
    void SetEmail(const QString &value);
    QString Group() const;
    void SetGroup(const QString &value);
    QString SelFormula() const;
    void SetSelFormula(const QString &value);
    QString NextRun() const;
    void SetNextRun(const QString &value);
    qint16 PrinterCopies() const;        // 16-bit, never below 1
    void SetPrinterCopies(qint16 value); // format "#": 0 stores empty
    QString NoRecords() const;
    void SetNoRecords(const QString &value);
    QString EMailAttach() const;
    void SetEMailAttach(const QString &value);
    QString HTMLPages() const;
    void SetHTMLPages(const QString &value);
    QString PrinterOrient() const;
    void SetPrinterOrient(const QString &value);
    QString DateStamp() const;
    void SetDateStamp(const QString &value);
    QString LastRun() const;
    void SetLastRun(const QString &value);
    QString CustomCalendarFile() const;
    void SetCustomCalendarFile(const QString &value);
    qint16 PageCount() const;
    void SetPageCount(qint16 value); // does nothing at cursor -1
    QString RptToCC() const;
    void SetRptToCC(const QString &value);
    QString RptToBCC() const;
    void SetRptToBCC(const QString &value);
    QString RptSubject() const;
    void SetRptSubject(const QString &value);
    QString RptMessage() const;
    void SetRptMessage(const QString &value);
    QString RptFrom() const;
    void SetRptFrom(const QString &value);
    QString NotifyTo() const;
    void SetNotifyTo(const QString &value);
    QString NotifyMsg() const;
    void SetNotifyMsg(const QString &value);
    QString ErrorTo() const;
    void SetErrorTo(const QString &value);
    QString ErrorMsg() const;
    void SetErrorMsg(const QString &value);
    QString ReportDescription() const;
    void SetReportDescription(const QString &value);
    QString RetainData() const;
    void SetRetainData(const QString &value);
    QString CollectionName() const;
    void SetCollectionName(const QString &value);
    QString MultiRunLineSuccessTo() const;
    void SetMultiRunLineSuccessTo(const QString &value);
    QString MultiRunLineSuccessMsg() const;
    void SetMultiRunLineSuccessMsg(const QString &value);
    QString MultiRunLineErrorTo() const;
    void SetMultiRunLineErrorTo(const QString &value);
    QString MultiRunLineErrorMsg() const;
    void SetMultiRunLineErrorMsg(const QString &value);
    QString MailAttach() const;
    void SetMailAttach(const QString &value);

    // "Disk", "EMail", "Printer", "MultiRun" or "Unknown" by Dest.
    QString DestDesc();
    // Empty for a collection; else Email / "MultiRun" / Location / Printer / empty by Dest.
    QString DestName();

    // The stored text of a column at the cursor, without the rules of the properties (error 9 at -1).
    QString Field(int column) const;
    void SetField(int column, const QString &value);
    // The stored text of any row, no cursor involved; a row outside 0..MaxItems-1 or a column outside
    // 0..40 raises error 9. Rows past Count read as what they hold (normally blank).
    QString Cell(int row, int column) const;
    // The file tag of a column ("ReportName" for colName); empty for colPageCount.
    static QString ColumnTag(int column);

    // ---------------------------------------------------------------- whole-table operations
    void AddNew();    // 2002nd row: error 9
    void Duplicate(); // the row at the cursor, columns 1..40, to a new last row with a new ReportID
    void Delete(const QString &reportID); // also ParmRemove; the cursor is not adjusted
    // Adds every *.rpt of FolderOf(path) (directory order), Schedule "N", FreqTimes "1", Frequency "W".
    void AddFolder2Schedule(const QString &path);
    qint32 NextReportID() const;
    qint32 ActiveCount() const; // rows whose NextRun is a date
    void Clear();               // items and collections; parameters and settings stay
    QStringList NotifyEmailList() const;

    // Bulk edit over rows 0..Count-1; matchCase "N" compares in lower case (and ChangeBulk writes the
    // lower-case copy back). A column outside 0..40 raises error 9.
    qint16 ChangePreview(int column, const QString &search, const QString &matchCase) const;
    qint16 ChangeBulk(int column, const QString &search, const QString &replacement,
                      const QString &matchCase);

    // ---------------------------------------------------------------- parameters
    // The parameter and collection cursors start on row 0; a cursor outside the table raises error 9.
    void ParmAddNew(); // 3002nd row: error 9
    int ParmCount() const { return m_parmCount; }
    int ParmPosition() const { return m_parmPosition; }
    void ParmLocate(int row);
    QString ParmReportID() const;
    void SetParmReportID(const QString &value);
    QString ParmName() const;
    void SetParmName(const QString &value);
    QString ParmValueType() const;
    void SetParmValueType(const QString &value);
    QString ParmValue() const;
    void SetParmValue(const QString &value);
    QString ParmPrompt() const;
    void SetParmPrompt(const QString &value);
    QString ParmMulti() const;
    void SetParmMulti(const QString &value);
    QString ParmCell(int row, int column) const; // any row, no cursor; error 9 outside the table
    void ParmDuplicate(const QString &oldID, const QString &newID);
    void ParmRemove(const QString &reportID);
    qint16 ParmReportCount(const QString &reportID) const;
    void ParmUpdate(const QString &reportID, const QString &name, const QString &valueType,
                    const QString &value, const QString &prompt);
    void SetCollectionParm(const QString &sourceID, const QString &targetID);

    // ---------------------------------------------------------------- collections
    void NewCollectionItem(); // 2002nd row: error 9
    int CollectionCount() const { return m_collCount; }
    int CollectionPosition() const { return m_collPosition; }
    void SetCollectionPosition(int row);
    QString CollectionID() const;
    void SetCollectionID(const QString &value);
    QString CollectionItem() const;
    void SetCollectionItem(const QString &value);
    void CollectionDeleteRow(int row);
    void CollectionSwap(int a, int b);
    QString CollectionReport() const; // raw Name of the member, or "Missing"
    QString CollectionFile() const;   // File of the member, or "Lost Report"
    QString CollectionNextRun(const QString &reportID) const;
    QString CollectionDescription(const QString &reportID) const;
    void CollectionSetReport(); // member's Schedule becomes "C" unless it is "Y"

    // ---------------------------------------------------------------- domains
    QString Domain(int number) const; // outside 0..9: error 9
    void SaveDomain(int number, const QString &text);

    // ---------------------------------------------------------------- the schedule file
    // Merges the file into the present state; an empty path or a missing file does nothing. Returns
    // the number of lines whose tag the schedule knows: 0 for a file that yields no item and no setting.
    int Load(const QString &path);
    // One line of a schedule document; `line` is decoded in place. Long elements read further lines
    // from the file of the running Load (none outside a Load).
    void ReadTags(QString &line);
    // Rewrites the whole file (owner-only); nothing while SaveSuspended. The cursor is kept.
    void Save(const QString &path);
    // "10.0 (N)".
    static QString ApplicationVersion();

private:
    using ItemRow = std::array<QString, ItemColumnCount>;
    using ParmRow = std::array<QString, ParmColumnCount>;
    struct CollectionRow
    {
        QString id;
        QString item;
    };

    QString &itemAt(int column); // at the cursor, error 9 at -1
    const QString &itemAt(int column) const;
    QString &parmAt(int column);
    const QString &parmAt(int column) const;
    CollectionRow &collAt();
    const CollectionRow &collAt() const;
    int findRow(const QString &reportID) const;   // -1 if none
    int memberRow(const QString &reportID) const; // scans one row past Count
    void reportIDChanged(int row, const QString &oldValue, const QString &newValue);
    void invalidateIndex();
    void appendRow();
    void readTag(int code, QString &line);

    // The tables grow as rows are used (up to their limits); a row past the end reads blank.
    template <class Table> static void Ensure(Table &table, int row)
    {
        if (size_t(row) >= table.size())
            table.resize(size_t(row) + 1);
    }

    std::vector<ItemRow> m_items;
    std::vector<ParmRow> m_parms;
    std::vector<CollectionRow> m_colls;
    std::array<QString, DomainCount> m_domains;
    QStringList m_sortIndex;
    int m_count = 0;
    int m_position = -1;
    bool m_noMatch = true;
    bool m_found = false;
    int m_parmCount = 0;
    int m_parmPosition = 0; // row 0 until a row is added, as the original's cursors start
    int m_collCount = 0;
    int m_collPosition = 0;
    LineReader *m_reader = nullptr; // the file of the running Load
    int m_knownLines = 0;           // lines with a known tag, counted for Load

    // Caches that keep Find and NextReportID cheap on large schedules; they follow every change of
    // column 0 and of Count.
    mutable QHash<QString, int> m_firstRow;
    mutable bool m_indexValid = false;
    mutable double m_maxID = 0;
    mutable bool m_maxValid = false;
};
