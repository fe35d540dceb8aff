#include "SmtpPeer.h"

#include "Files.h"
#include "core/TWReg.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

namespace TestSupport {

bool SmtpPeer::start(const QStringList &options)
{
    m_port = FreePort();
    return m_process.start(DebianPython(),
                           QStringList{PeerScript(QStringLiteral("smtp_server.py")), QStringLiteral("--port"),
                                       QString::number(m_port), QStringLiteral("--folder"), m_folder.path()} +
                               options,
                           QStringLiteral("READY"));
}

QStringList SmtpPeer::messages() const
{
    QStringList files = FileNames(m_folder.path(), {QStringLiteral("*.eml")});
    for (QString &file : files)
        file = m_folder.filePath(file);
    return files;
}

QJsonObject SmtpPeer::envelopeOf(const QString &message)
{
    return QJsonDocument::fromJson(ReadFile(message.chopped(4) + QStringLiteral(".json"))).object();
}

QJsonObject ParseMessage(const QString &path)
{
    return QJsonDocument::fromJson(
               ProgramOutput(DebianPython(), {PeerScript(QStringLiteral("mail_parse.py")), path}, 30000))
        .object();
}

QJsonObject PartOf(const QJsonObject &parsed, int index)
{
    return parsed.value(QStringLiteral("parts")).toArray().at(index).toObject();
}

QStringList PartNames(const QJsonObject &parsed)
{
    QStringList names;
    for (const QJsonValue &part : parsed.value(QStringLiteral("parts")).toArray())
        names.append(part.toObject().value(QStringLiteral("filename")).toString());
    return names;
}

QStringList Recipients(const QString &message)
{
    return SmtpPeer::envelopeOf(message).value(QStringLiteral("rcpt_tos")).toVariant().toStringList();
}

void ShortMailTimeouts(quint16 remotePort)
{
    const QString program = QStringLiteral("QorloSendMail");
    const QString section = QStringLiteral("Settings");
    TWReg::SaveSetting(section, QStringLiteral("PersistentSettings"), QStringLiteral("1"), program);
    TWReg::SaveSetting(section, QStringLiteral("ConnectTimeout"), QStringLiteral("5"), program);
    TWReg::SaveSetting(section, QStringLiteral("MessageTimeout"), QStringLiteral("5"), program);
    TWReg::SaveSetting(section, QStringLiteral("ConnectRetry"), QStringLiteral("1"), program);
    TWReg::SaveSetting(section, QStringLiteral("RemotePort"), QString::number(remotePort), program);
}

} // namespace TestSupport
