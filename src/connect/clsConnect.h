#pragma once
// The database log-ons that reports run with, kept in Connect.XML with scrambled passwords.

#include <QString>
#include <array>

class clsConnect
{
public:
    // Rows 0 to 150.
    static constexpr int UpperBound = 150;

    explicit clsConnect(const QString &appPath);

    // Cursor on a new row at the end; its cells keep what they held, the caller sets them. A 152nd row
    // is not counted, and touching its cells raises the subscript error.
    void AddNew();
    void Clear() { m_count = 0; }
    // Removes a row of 0 to Count - 1 by moving the rows below up; the cursor stays.
    void Delete(qint16 row);
    qint16 Count() const { return m_count; }
    qint16 Cursor() const { return m_cursor; }
    void Locate(qint16 row) { m_cursor = row; }

    // The first row for this driver (a row with an empty driver serves every one), server and
    // database: the cursor goes there. No match puts the cursor at -1.
    bool Find(const QString &dll, const QString &server, const QString &database);
    // As Find, and the user must match too.
    bool FindExt(const QString &dll, const QString &server, const QString &database, const QString &user);

    // Cells of the row at the cursor; a cursor outside the table raises the subscript error.
    QString DLL() const { return Cell(ColDLL); }
    void SetDLL(const QString &value) { Cell(ColDLL) = value; }
    QString Server() const { return Cell(ColServer); }
    void SetServer(const QString &value) { Cell(ColServer) = value; }
    QString Database() const { return Cell(ColDatabase); }
    void SetDatabase(const QString &value) { Cell(ColDatabase) = value; }
    QString User() const { return Cell(ColUser); }
    void SetUser(const QString &value) { Cell(ColUser) = value; }
    QString Password() const { return Cell(ColPassword); }
    void SetPassword(const QString &value) { Cell(ColPassword) = value; }

    // Empties the list and reads the file if it exists; Connection_File becomes `path` either way.
    void Load(const QString &path);
    // Writes Connection_File (or Connect.XML in the application folder), readable by the owner only.
    void Save();

    QString Connection_File;
    QString Connection_Password; // the lock of the connection editor, clear in memory
    QString EncodeOptions = QStringLiteral("Yes");
    QString UserOption = QStringLiteral("No");
    bool CaseSensitive = true;

private:
    enum Column { ColDLL, ColServer, ColDatabase, ColUser, ColPassword, ColSpare, ColumnCount };
    using Row = std::array<QString, ColumnCount>;

    QString &Cell(Column column);
    const QString &Cell(Column column) const;
    bool Matches(const Row &row, const QString &dll, const QString &server, const QString &database) const;
    bool Same(const QString &a, const QString &b) const;
    void ReadTags(QString &line);
    void WriteSettings() const;
    void WriteRow(const Row &row) const;

    QString m_appPath;
    std::array<Row, UpperBound + 1> m_rows;
    qint16 m_count = 0;
    qint16 m_cursor = 0;
};
