#pragma once
// The table map: text replacements that move a report's table locations, kept in TableMap.XML.

#include <QString>
#include <QStringList>
#include <array>

class clsMap
{
public:
    // Rows 0 to 100.
    static constexpr int UpperBound = 100;

    explicit clsMap(const QString &appPath);

    // Cursor on a new row at the end; its cells keep what they held, the caller sets them. A 102nd row
    // is not counted, and touching its cells raises the subscript error.
    void AddNew();
    void Clear();
    qint16 Count() const { return m_count; }
    qint16 Cursor() const { return m_cursor; }
    void Locate(qint16 row) { m_cursor = row; }

    // Cells of the row at the cursor; a cursor outside the table raises the subscript error.
    QString ReportID() const { return Cell(ColReportID); }
    void SetReportID(const QString &value) { Cell(ColReportID) = value; }
    QString OriginalTable() const { return Cell(ColOriginal); }
    void SetOriginalTable(const QString &value) { Cell(ColOriginal) = value; }
    QString NewTable() const { return Cell(ColNew); }
    void SetNewTable(const QString &value) { Cell(ColNew) = value; }

    // Adds the rows of the file, if it exists, to the list.
    void Load(const QString &path);
    // Writes TableMap.XML in the application folder.
    void Save();

    // Applies every row for this report (or for every report) in order, first occurrence only, to a
    // table's location, server and database. True when some row's text occurred in the location:
    // the caller then writes the location back to the table.
    bool ApplyTableMap(QString &location, const QString &reportID, QString &server, QString &database) const;
    // One row for each table location of a report, each mapping the location to itself; the caller
    // reads the locations from the report. Rows already present are not looked for.
    void ExamineTables(const QString &reportID, const QStringList &locations);

private:
    enum Column { ColReportID, ColOriginal, ColNew, ColumnCount };
    using Row = std::array<QString, ColumnCount>;

    QString &Cell(Column column);
    const QString &Cell(Column column) const;
    void ReadTags(QString &line);

    QString m_appPath;
    std::array<Row, UpperBound + 1> m_rows;
    qint16 m_count = 0;
    qint16 m_cursor = -1;
};
