#pragma once
// The control file of a multi-run item as its editor sees it: rows of value, output, format,
// destination and subject, or comments, under one parameter; read, checked and written.

#include <QList>
#include <QString>

struct MultiRunRow
{
    bool comment = false;
    // The comment's text on a comment row.
    QString value;
    QString output;
    QString format;
    QString destination;
    QString subject;
};

struct MultiRunControl
{
    // The parameter of the file's first data line.
    QString parameter;
    QList<MultiRunRow> rows;
};

// A warning of the editor's check: the box's title and its text, which names the line.
struct MultiRunWarning
{
    QString title;
    QString text;
};

namespace MultiRunControlFile {

// The control file proposed for a report: beside it, named after it with "-mr.txt". A report named
// without a folder lies in the application folder.
QString DefaultName(const QString &appPath, const QString &reportFile);

// The output word of a letter as the file holds it: "E" EMail, "D" Disk File, "P" Printer, "B" Both;
// any other text stays as it is.
QString OutputWord(const QString &code);

// Each line that begins with "//" is a comment row with the text behind; any other is split at "," and
// each field loses its quotes. A missing file gives no rows.
MultiRunControl Read(const QString &path);

// The warnings of the rows, in order of the rows and of the tests; comment rows have none.
QList<MultiRunWarning> Check(const QList<MultiRunRow> &rows);

// The lines of the file: "//" and the text for a comment, else six quoted fields joined by ",": the
// parameter, the value, the output's first letter, format, destination and subject.
QStringList Lines(const QString &parameter, const QList<MultiRunRow> &rows);

// Replaces the file with the lines (Windows-1252, CR LF); raises the path error (75) when it cannot.
void Write(const QString &path, const QStringList &lines);

} // namespace MultiRunControlFile
