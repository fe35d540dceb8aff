#pragma once
// An Excel 97-2003 workbook (BIFF8 records in a compound file), written sheet by sheet, cell by cell.

#include "engine/xls/XlsSharedStrings.h"
#include "engine/xls/XlsSheet.h"
#include "engine/xls/XlsStyles.h"

#include <QString>
#include <QTemporaryFile>
#include <memory>
#include <vector>

class QIODevice;

namespace Engine {

class XlsWorkbook
{
public:
    XlsWorkbook();
    ~XlsWorkbook();
    XlsWorkbook(const XlsWorkbook &) = delete;
    XlsWorkbook &operator=(const XlsWorkbook &) = delete;

    // A new sheet at the end. A name a sheet cannot carry (empty, longer than 31 characters, one of
    // : \ / ? * [ ], or taken) is made into one it can: XlsSheet::name() tells which.
    XlsSheet &addSheet(const QString &name);
    int sheetCount() const { return int(m_sheets.size()); }
    XlsSheet &sheet(int index) { return *m_sheets.at(index); }

    // See XlsStyles::add.
    XlsStyle addStyle(const QString &numberFormat, bool bold = false);
    // "dd-mmm-yyyy", what XlsSheet::writeDate uses.
    XlsStyle dateStyle() const { return m_dateStyle; }
    // "dd-mmm-yyyy hh:mm:ss", for moments that carry a time of day.
    XlsStyle dateTimeStyle() const { return m_dateTimeStyle; }
    // Bold "General", for column headings.
    XlsStyle headingStyle() const { return m_headingStyle; }

    // A finished sheet's cells go to a temporary file until the workbook is written, so that a workbook
    // of many full sheets does not hold them all in memory. Throws EngineError when they cannot.
    void parkSheet(XlsSheet &sheet);

    // Writes the file whole or not at all (a failed save leaves any earlier file as it was).
    // A workbook without sheets gets one empty "Sheet1", as every workbook needs a sheet.
    bool save(const QString &path);
    bool write(QIODevice &out);
    QString errorString() const { return m_error; }

private:
    QString usableSheetName(const QString &wanted) const;
    bool nameTaken(const QString &name) const;
    QByteArray globals(QList<qsizetype> &sheetOffsetFields) const;

    XlsSharedStrings m_strings;
    XlsStyles m_styles;
    XlsStyle m_dateStyle;
    XlsStyle m_dateTimeStyle;
    XlsStyle m_headingStyle;
    std::vector<std::unique_ptr<XlsSheet>> m_sheets;
    QTemporaryFile m_spool;
    QString m_error;
};

} // namespace Engine
