#include "OutputNames.h"

#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/QorloError.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>

#include <algorithm>

namespace OutputNames {

namespace {

// Month and day names are English whatever the machine's language, as in every stored date.
QString English(const QDateTime &moment, const char *format)
{
    return QLocale::c().toString(moment, QString::fromLatin1(format));
}

QDateTime MonthBefore(const QDateTime &moment)
{
    return DayDate::ToDateTime(DayDate::AddMonths(DayDate::FromDateTime(moment), -1));
}

struct PercentCode
{
    char letter;
    QString (*value)(const QDateTime &now);
};

// In the order of replacement; each code is replaced in small letters, then in capitals.
const PercentCode kPercentCodes[] = {
    {'a', [](const QDateTime &now) { return English(now, "MMMM"); }},
    {'b', [](const QDateTime &now) { return English(now, "MMM"); }},
    {'c', [](const QDateTime &) { return CurrentCollection(); }},
    {'d', [](const QDateTime &now) { return English(now, "dd-MMM-yyyy"); }},
    {'e', [](const QDateTime &now) { return English(now, "dd"); }},
    {'f', [](const QDateTime &now) { return English(now, "ddd"); }},
    {'h', [](const QDateTime &now) { return English(now, "HH"); }},
    {'m', [](const QDateTime &now) { return English(now, "MM"); }},
    {'n', [](const QDateTime &now) { return English(now, "yyyyMMddHHmmss"); }},
    {'p', [](const QDateTime &now) { return English(now, "yyyyMM"); }},
    {'q', [](const QDateTime &now) { return English(MonthBefore(now), "yyyyMM"); }},
    {'s', [](const QDateTime &now) { return English(now, "HHmmss"); }},
    {'t', [](const QDateTime &now) { return English(now, "HHmm"); }},
    {'u', [](const QDateTime &now) { return English(now, "dd_MMM_yyyy"); }},
    {'y', [](const QDateTime &now) { return English(now, "yyyyMMdd"); }},
    {'z', [](const QDateTime &now) { return English(now, "yyyy"); }},
};

void ReplacePercentCodes(QString &text)
{
    for (const PercentCode &code : kPercentCodes) {
        const QChar small = QLatin1Char(code.letter);
        for (const QChar letter : {small, small.toUpper()}) {
            const QString tag = QLatin1Char('%') + letter;
            // Every pass reads the clock anew, so a name made across midnight may mix two days.
            if (text.contains(tag))
                text.replace(tag, code.value(Clock::current().now()));
        }
    }
}

void MakeFolder(const QString &folder)
{
    if (QDir().mkdir(folder))
        return;
    const bool parentExists = QFileInfo(QFileInfo(folder).absolutePath()).isDir();
    throw QorloError(parentExists ? QorloError::PathFileAccess : QorloError::PathNotFound);
}

} // namespace

// One name for the whole process: the collection that is running, wherever its %c is expanded.
QString &CurrentCollection()
{
    static QString collection;
    return collection;
}

QString ExpandFileCodes(const QString &text)
{
    QString result = text;
    if (result.contains(QLatin1Char('%')))
        ReplacePercentCodes(result);
    MakeFolders(result);
    return result;
}

void MakeFolders(const QString &path)
{
    const QLatin1Char slash('/');
    QString root;
    QStringList pieces;
    if (path.startsWith(QLatin1String("//"))) {
        const qsizetype third = path.indexOf(slash, 2);
        const qsizetype fourth = third < 0 ? -1 : path.indexOf(slash, third + 1);
        if (fourth < 0)
            return; // no more than a server and a share: nothing below the root
        root = path.left(fourth);
        pieces = path.mid(fourth + 1).split(slash);
    } else {
        pieces = path.split(slash);
        root = pieces.takeFirst(); // empty for an absolute path, like a drive on the original platform
    }
    if (pieces.isEmpty())
        return;
    pieces.removeLast(); // the file name
    for (const QString &piece : pieces) {
        root += slash + piece;
        if (!QFileInfo::exists(root))
            MakeFolder(root);
    }
}

QString FixFileExtension(const QString &name, const QString &baseFile, const QString &format, bool force)
{
    static const QList<std::pair<QLatin1String, QLatin1String>> extensions = {
        {QLatin1String("Crystal Report"), QLatin1String("rpt")},
        {QLatin1String("Excel Worksheet"), QLatin1String("xls")},
        {QLatin1String("Excel Data"), QLatin1String("xls")},
        {QLatin1String("Rich Text"), QLatin1String("rtf")},
        {QLatin1String("HTML Document"), QLatin1String("html")},
        {QLatin1String("DHTML Document"), QLatin1String("html")},
        {QLatin1String("CSV File"), QLatin1String("csv")},
        {QLatin1String("MS Word doc"), QLatin1String("doc")},
        {QLatin1String("Acrobat File"), QLatin1String("pdf")},
    };
    QString result = name;
    if (!result.contains(QLatin1Char('/')) && !result.contains(QLatin1Char(':')))
        result = CommonFile::JoinPath(CommonFile::FolderOf(baseFile), result);
    const auto found = std::find_if(extensions.begin(), extensions.end(),
                                    [&](const auto &entry) { return entry.first == format; });
    if (found == extensions.end())
        return QString();
    if (force || !result.contains(QLatin1Char('.')))
        result = CommonFile::ChangeExtension(result, found->second);
    return result;
}

} // namespace OutputNames
