#include "MailText.h"

#include "OutputNames.h"
#include "core/CommonFile.h"
#include "core/LineReader.h"
#include "core/WholeFile.h"
#include "engine/Report.h"
#include "engine/ValueFormat.h"

namespace OutputNames {

namespace {

// ", " before every value, dropped from the front only when the whole is longer than 3 characters:
// a single value of one character keeps it.
QString CurrentValues(const Engine::ParameterFieldDefinition &parameter)
{
    QString values;
    for (int n = 1; n <= parameter.NumberOfCurrentValues(); ++n)
        values += QStringLiteral(", ") + Engine::PlainText(parameter.GetNthCurrentValue(n));
    return values.size() > 3 ? values.mid(2) : values;
}

void ReplaceFirstCollectionCode(QString &text)
{
    const QString &collection = CurrentCollection();
    if (collection.isEmpty())
        return;
    const qsizetype at = text.indexOf(QLatin1String("%c"), 0, Qt::CaseInsensitive);
    if (at >= 0)
        text.replace(at, 2, collection);
}

} // namespace

QString ExpandMailText(const QString &text, const Engine::Report *report, const QString &appPath)
{
    if (!report)
        return text;
    QString result = text;
    ReplaceFirstCollectionCode(result);
    if (result.contains(QLatin1String("{$")))
        result = ReadTextIfFile(result, appPath);
    const auto &parameters = report->ParameterFields();
    for (int n = 1; n <= parameters.Count(); ++n) {
        const Engine::ParameterFieldDefinition &parameter = parameters.Item(n);
        const QString tag = QStringLiteral("{?") + parameter.ParameterFieldName() + QLatin1Char('}');
        if (result.contains(tag))
            result.replace(tag, CurrentValues(parameter));
    }
    return result;
}

QString ReadTextIfFile(const QString &text, const QString &appPath)
{
    if (text.toLower() != QLatin1String("{$subject.txt}"))
        return text;
    const QString path = CommonFile::JoinPath(appPath, QStringLiteral("Subject.txt"));
    if (!WholeFile::IsWholeFile(path))
        return text;
    LineReader reader(path);
    return reader.atEnd() ? text : reader.readLine();
}

} // namespace OutputNames
