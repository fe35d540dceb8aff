#include "MultiRunControl.h"

#include "core/Ansi.h"
#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "core/QorloError.h"
#include "run/MultiRun.h"

#include <QSaveFile>

namespace MultiRunControlFile {

namespace {

QString Quoted(const QString &field)
{
    return QLatin1Char('"') + field + QLatin1Char('"');
}

QString LineText(int row)
{
    return QStringLiteral(" on line ") + QString::number(row);
}

void CheckRow(const MultiRunRow &row, int number, QList<MultiRunWarning> &warnings)
{
    const auto warn = [&](const char *title, const char *problem) {
        warnings.append({QLatin1String(title), QLatin1String(problem) + LineText(number)});
    };
    const QString &output = row.output;
    if (output.isEmpty()) {
        warn("Warning - invalid destination", "Missing value");
    } else if (output == QLatin1String("E") || output == QLatin1String("EMail")) {
        if (row.destination.isEmpty())
            warn("Warning - empty value or destination", "Missing value");
        if (!row.destination.contains(QLatin1Char('@')))
            warn("Warning - invalid email address", "Invalid value");
    } else if (output == QLatin1String("B") || output == QLatin1String("Both")) {
        if (row.destination.isEmpty())
            warn("Warning - blank file name", "Missing value");
        if (row.destination.contains(QLatin1Char('@')))
            warn("Warning - invalid disk file name", "Invalid value");
        if (row.subject.isEmpty())
            warn("Warning - blank email address", "Missing value");
        if (!row.subject.contains(QLatin1Char('@')))
            warn("Warning - invalid email address", "Invalid value");
    }
}

} // namespace

QString DefaultName(const QString &appPath, const QString &reportFile)
{
    const QString report = CommonFile::CompletePath(appPath, reportFile);
    return CommonFile::JoinPath(CommonFile::FolderOf(report),
                                CommonFile::FileBaseName(report) + QStringLiteral("-mr.txt"));
}

QString OutputWord(const QString &code)
{
    if (code == QLatin1String("E"))
        return QStringLiteral("EMail");
    if (code == QLatin1String("D"))
        return QStringLiteral("Disk File");
    if (code == QLatin1String("P"))
        return QStringLiteral("Printer");
    if (code == QLatin1String("B"))
        return QStringLiteral("Both");
    return code;
}

MultiRunControl Read(const QString &path)
{
    MultiRunControl control;
    LineReader reader(path);
    while (!reader.atEnd()) {
        const QString line = reader.readLine().trimmed();
        if (line.isEmpty())
            continue;
        if (line.startsWith(QLatin1String("//"))) {
            control.rows.append({true, line.mid(2), {}, {}, {}, {}});
            continue;
        }
        QStringList fields = line.split(QLatin1Char(','));
        for (QString &field : fields)
            field = MultiRun::StripQuotes(field);
        while (fields.size() < 6)
            fields.append(QString());
        if (control.parameter.isEmpty())
            control.parameter = fields.at(0);
        control.rows.append(
            {false, fields.at(1), OutputWord(fields.at(2)), fields.at(3), fields.at(4), fields.at(5)});
    }
    return control;
}

QList<MultiRunWarning> Check(const QList<MultiRunRow> &rows)
{
    QList<MultiRunWarning> warnings;
    for (int index = 0; index < rows.size(); ++index) {
        if (!rows.at(index).comment)
            CheckRow(rows.at(index), index + 1, warnings);
    }
    return warnings;
}

QStringList Lines(const QString &parameter, const QList<MultiRunRow> &rows)
{
    QStringList lines;
    for (const MultiRunRow &row : rows) {
        if (row.comment) {
            lines.append(QStringLiteral("//") + row.value);
            continue;
        }
        const QStringList fields{parameter,  row.value,       row.output.left(1),
                                 row.format, row.destination, row.subject};
        QStringList quoted;
        for (const QString &field : fields)
            quoted.append(Quoted(field));
        lines.append(quoted.join(QLatin1Char(',')));
    }
    return lines;
}

void Write(const QString &path, const QStringList &lines)
{
    QSaveFile file(path);
    QByteArray bytes;
    for (const QString &line : lines)
        bytes += Ansi::Encode(line) + "\r\n";
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw QorloError(QorloError::PathFileAccess);
}

} // namespace MultiRunControlFile
