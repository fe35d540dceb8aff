#pragma once
// The run log: a fixed table of run entries with a cursor, kept in QorloLog.XML with date-based retention.

#include <QString>
#include <array>
#include <functional>
#include <vector>

class clsLog
{
public:
    // Rows 0 to 10000.
    static constexpr int UpperBound = 10000;

    explicit clsLog(const QString &appPath);

    QString AppPath() const { return m_appPath; }
    QString FileName() const; // appPath + "/QorloLog.XML"

    // Appends a blank row and puts the cursor on it; a full table is emptied first.
    void AddNew();
    // Count 0, cursor -1; the cells keep their old text.
    void Clear();
    void Locate(qint16 row) { m_cursor = row; }
    qint16 Count() const { return m_count; }
    qint16 Cursor() const { return m_cursor; }
    // Marks the rows started on or before `cutoff` as "DEL" and appends a "LOG" row that says so.
    void Remove(double cutoff);

    // Adds the rows of the file to the table; a missing file adds nothing. A date that does not parse
    // raises the type mismatch error, a row value before any row the subscript error.
    void Load(const QString &path);
    // Retention when due, then QorloLog.XML, then the web log page.
    void Save();
    // Writes the web log page through the writer set with SetWebPageWriter; nothing while none is set.
    void SaveWeb();
    void SetWebPageWriter(std::function<void(const clsLog &)> writer) { m_webPageWriter = std::move(writer); }

    // The values set at every start-up, after the file has been read.
    void ApplyStartDefaults();

    // Cells of the row at the cursor; a cursor outside the table raises the subscript error.
    QString ReportID() const;
    void SetReportID(const QString &value);
    double LogDate() const;
    QString LogDateTxt() const;
    void SetLogDate(double value);
    double FinishDate() const;
    QString FinishDateTxt() const;
    void SetFinishDate(double value);
    QString NextDate() const;
    void SetNextDate(const QString &value);
    QString LogText() const;
    void SetLogText(const QString &value);
    qint32 Pages() const;
    QString PagesTxt() const;
    void SetPages(qint32 value);

    // Any row's cell, for readers that walk the table without moving the cursor.
    enum Column { ColReportID, ColLogDate, ColFinish, ColNextDate, ColText, ColPages, ColumnCount };
    QString CellAt(int row, Column column) const;

    qint32 RetainLog = 0;
    double DeleteLogDate = 0;
    QString CheckRetainLog;
    QString WebLogSetting;

private:
    using Row = std::array<QString, ColumnCount>;

    Row &RowAt(int row);
    const Row &RowAt(int row) const;
    void ReadTags(QStringView line);
    void SetDateCell(Column column, const QString &value);
    void ApplyRetention();
    void WriteRows() const;

    QString m_appPath;
    std::vector<Row> m_rows;
    qint16 m_count = 0;
    qint16 m_cursor = -1;
    std::function<void(const clsLog &)> m_webPageWriter;
};

// The one writer of run entries: re-reads the log file, appends the entry and saves.
void WriteLogEntry(clsLog &log, const QString &id, double start, double finish, const QString &next,
                   const QString &text, qint32 pages);
