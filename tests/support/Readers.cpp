#include "Readers.h"

#include "Files.h"
#include "Peers.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace TestSupport {

namespace {

QString Poppler(const char *tool)
{
    return FindProgram(QString::fromLatin1(tool));
}

int InfoNumber(const QString &file, const QString &field)
{
    return QRegularExpression(field + u":\\s+(\\d+)"_s).match(PdfInfo(file)).captured(1).toInt();
}

} // namespace

bool PopplerInstalled()
{
    return !Poppler("pdfinfo").isEmpty() && !Poppler("pdftotext").isEmpty() && !Poppler("pdffonts").isEmpty();
}

QString PdfInfo(const QString &file)
{
    return QString::fromUtf8(ProgramOutput(Poppler("pdfinfo"), {file}));
}

int PdfPages(const QString &file)
{
    return InfoNumber(file, u"Pages"_s);
}

int PdfRotation(const QString &file)
{
    return InfoNumber(file, u"Page rot"_s);
}

QSizeF PdfPageSize(const QString &file)
{
    const auto match = QRegularExpression(u"Page size:\\s+([\\d.]+) x ([\\d.]+) pts"_s).match(PdfInfo(file));
    return match.hasMatch() ? QSizeF(match.captured(1).toDouble(), match.captured(2).toDouble()) : QSizeF();
}

bool SameSize(const QSizeF &a, const QSizeF &b)
{
    return qAbs(a.width() - b.width()) < 0.5 && qAbs(a.height() - b.height()) < 0.5;
}

QString PdfText(const QString &file, int page, bool layout)
{
    QStringList arguments;
    if (layout)
        arguments.append(u"-layout"_s);
    if (page > 0)
        arguments += {u"-f"_s, QString::number(page), u"-l"_s, QString::number(page)};
    return QString::fromUtf8(ProgramOutput(Poppler("pdftotext"), arguments + QStringList{file, u"-"_s}));
}

QString PdfFonts(const QString &file)
{
    return QString::fromUtf8(ProgramOutput(Poppler("pdffonts"), {file}));
}

bool XlrdInstalled()
{
    static const bool installed = QProcess::execute(DebianPython(), {u"-c"_s, u"import xlrd"_s}) == 0;
    return installed;
}

XlsDump DumpXls(const QString &file, const QStringList &options)
{
    QProcess python;
    python.start(DebianPython(), QStringList{PeerScript(u"xls_dump.py"_s)} + options + QStringList{file});
    XlsDump dump;
    if (!python.waitForFinished(120000)) {
        dump.problem = u"xls_dump.py did not finish"_s;
        return dump;
    }
    dump.problem = QString::fromUtf8(python.readAllStandardError());
    dump.ok = python.exitCode() == 0 && dump.problem.isEmpty();
    dump.lines = QString::fromUtf8(python.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    return dump;
}

QString LibreOffice()
{
    return FindProgram(u"soffice"_s);
}

bool ConvertWithLibreOffice(const QStringList &files, const QString &format, const QString &outDir)
{
    // One profile for the calls of this process, which come one after another: calls that share a
    // profile fail or hang when they overlap, and a new profile costs seconds to set up.
    static const QTemporaryDir profile;
    const QStringList arguments =
        QStringList{u"-env:UserInstallation="_s + QUrl::fromLocalFile(profile.path()).toString(),
                    u"--headless"_s,
                    u"--convert-to"_s,
                    format,
                    u"--outdir"_s,
                    outDir} +
        files;
    return RunProgram(LibreOffice(), arguments, nullptr, 300000);
}

} // namespace TestSupport
