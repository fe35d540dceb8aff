#include "DeskSettings.h"

#include "core/TWReg.h"

#include <QUrl>

namespace DeskSettings {

namespace {

const QString kFileType = QStringLiteral("File Type");
const QString kSystem = QStringLiteral("System");
const QString kKnowledgebase = QStringLiteral("Knowledgebase");

} // namespace

const QList<FileKind> &FileKinds()
{
    static const QList<FileKind> kinds = {
        {"rpt", true, "Crystal Report", "*.rpt"},      {"txt", false, "Text File", "*.rtf *.txt"},
        {"web", false, "Web Document", "*.htm *.jpg"}, {"xls", false, "MS Excel", "*.xls"},
        {"dbf", false, "xBase Table", "*.dbf"},        {"db", false, "Paradox Table", "*.db"}};
    return kinds;
}

bool Offered(const FileKind &kind)
{
    const QString fallback = kind.offeredByDefault ? QStringLiteral("Yes") : QStringLiteral("No");
    return TWReg::ReadSetting(kFileType, QLatin1String(kind.setting), fallback) == QLatin1String("Yes");
}

void SetOffered(const FileKind &kind, bool offered)
{
    TWReg::SaveSetting(kFileType, QLatin1String(kind.setting),
                       offered ? QStringLiteral("Yes") : QStringLiteral("No"));
}

QString BrowseFilter()
{
    QStringList filters;
    for (const FileKind &kind : FileKinds()) {
        if (Offered(kind))
            filters.append(QLatin1String(kind.name) + QStringLiteral(" (") + QLatin1String(kind.patterns) +
                           QLatin1Char(')'));
    }
    return filters.join(QStringLiteral(";;"));
}

QString KnowledgebaseHost()
{
    return TWReg::ReadSetting(kSystem, kKnowledgebase, QStringLiteral(QORLO_KNOWLEDGEBASE));
}

void SetKnowledgebaseHost(const QString &host)
{
    TWReg::SaveSetting(kSystem, kKnowledgebase, host);
}

QUrl KnowledgebasePage()
{
    return QUrl(KnowledgebaseHost() + QStringLiteral("/qiss/getfaq.asp?id=270"));
}

} // namespace DeskSettings
