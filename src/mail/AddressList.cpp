#include "AddressList.h"

#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "core/WholeFile.h"

namespace AddressList {

namespace {

QString Unquoted(const QString &line)
{
    const QLatin1Char quote('"');
    if (line.size() >= 2 && line.startsWith(quote) && line.endsWith(quote))
        return line.mid(1, line.size() - 2);
    return line;
}

// The file's lines joined by ";", without blank lines and without lines that already occur (as text,
// not as whole entries) in `text` or among the lines taken before.
QString CollectLines(const QString &path, const QString &text)
{
    QString collected;
    LineReader reader(path);
    while (!reader.atEnd()) {
        const QString line = Unquoted(reader.readLine());
        if (line.trimmed().isEmpty() || text.contains(line) || collected.contains(line))
            continue;
        collected += QLatin1Char(';') + line;
    }
    return collected.mid(1);
}

} // namespace

QString ExpandAddressList(const QString &text, const Sources &sources)
{
    return ExpandDomainShortcuts(ExpandListFiles(text, sources), sources.domains);
}

QString ExpandListFiles(const QString &text, const Sources &sources)
{
    QString result = text;
    QStringList used;
    QStringList missing;
    // Everything before `from` is final: expanded lines, or references to files that are missing.
    qsizetype from = 0;
    for (;;) {
        const qsizetype open = result.indexOf(QLatin1Char('<'), from);
        const qsizetype close = open < 0 ? -1 : result.indexOf(QLatin1Char('>'), open + 1);
        if (close < 0)
            return result;
        const QString path =
            CommonFile::CompletePath(sources.appPath, result.mid(open + 1, close - open - 1));
        if (!WholeFile::IsWholeFile(path)) {
            // Logged once per expansion; going past the reference is what keeps this from looping.
            if (!missing.contains(path)) {
                missing.append(path);
                if (sources.logMissing)
                    sources.logMissing(QStringLiteral("Cannot find list file: ") + path);
            }
            from = close + 1;
            continue;
        }
        if (used.contains(path))
            return result; // a list that names itself, directly or through others
        used.append(path);
        result = result.left(open) + CollectLines(path, result) + result.mid(close + 1);
        from = open; // the lines just put in may name further lists
    }
}

QString ExpandDomainShortcuts(const QString &text, const QStringList &domains)
{
    QString result = text;
    for (qsizetype index = 0; index < domains.size(); ++index) {
        const QString &domain = domains.at(index);
        if (!domain.isEmpty())
            result.replace(QLatin1Char('@') + QString::number(index), QLatin1Char('@') + domain);
    }
    return result;
}

} // namespace AddressList
