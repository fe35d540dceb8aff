#pragma once
// Other programs as oracles for the files the program writes: poppler-utils for PDF, xlrd for Excel
// workbooks, LibreOffice for word-processor and spreadsheet files.

#include <QSizeF>
#include <QString>
#include <QStringList>

namespace TestSupport {

// pdfinfo, pdftotext and pdffonts.
bool PopplerInstalled();
// What pdfinfo says about the file.
QString PdfInfo(const QString &file);
int PdfPages(const QString &file);
// The rotation of the first page, in degrees.
int PdfRotation(const QString &file);
// The size of the first page in points; empty when pdfinfo does not tell it.
QSizeF PdfPageSize(const QString &file);
// Whether two sizes agree within half a point, the rounding a word processor's own units bring.
bool SameSize(const QSizeF &a, const QSizeF &b);
// The text of one page (0: all of them), with the physical layout kept when `layout` is set.
QString PdfText(const QString &file, int page = 0, bool layout = false);
// What pdffonts lists: one line a font after two heading lines.
QString PdfFonts(const QString &file);

// Python's xlrd, through tests/peers/xls_dump.py.
bool XlrdInstalled();
struct XlsDump
{
    bool ok = false;
    // What xlrd complained about; a test treats any complaint as a fault.
    QString problem;
    QStringList lines;
};
XlsDump DumpXls(const QString &file, const QStringList &options = {});

// The path of soffice; empty when LibreOffice is not installed.
QString LibreOffice();
// Converts the files into `format` (an extension, or one with filter options) in `outDir`, with a profile
// of its own; true when LibreOffice ended without an error.
bool ConvertWithLibreOffice(const QStringList &files, const QString &format, const QString &outDir);

} // namespace TestSupport
