#include "SmtpPeer.h"

#include "Files.h"
#include "core/TWReg.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

using namespace Qt::Literals::StringLiterals;

namespace TestSupport {

bool SmtpPeer::start(const QStringList &options)
{
    m_port = FreePort();
    return m_process.start(DebianPython(),
                           QStringList{PeerScript(u"smtp_server.py"_s), u"--port"_s, QString::number(m_port),
                                       u"--folder"_s, m_folder.path()} +
                               options,
                           u"READY"_s);
}

QStringList SmtpPeer::messages() const
{
    QStringList files = FileNames(m_folder.path(), {u"*.eml"_s});
    for (QString &file : files)
        file = m_folder.filePath(file);
    return files;
}

QJsonObject SmtpPeer::envelopeOf(const QString &message)
{
    return QJsonDocument::fromJson(ReadFile(message.chopped(4) + u".json"_s)).object();
}

QJsonObject ParseMessage(const QString &path)
{
    return QJsonDocument::fromJson(
               ProgramOutput(DebianPython(), {PeerScript(u"mail_parse.py"_s), path}, 30000))
        .object();
}

QJsonObject PartOf(const QJsonObject &parsed, int index)
{
    return parsed.value(u"parts"_s).toArray().at(index).toObject();
}

QStringList PartNames(const QJsonObject &parsed)
{
    QStringList names;
    for (const QJsonValue &part : parsed.value(u"parts"_s).toArray())
        names.append(part.toObject().value(u"filename"_s).toString());
    return names;
}

QStringList Recipients(const QString &message)
{
    return SmtpPeer::envelopeOf(message).value(u"rcpt_tos"_s).toVariant().toStringList();
}

void ShortMailTimeouts(quint16 remotePort)
{
    const QString program = u"QorloSendMail"_s;
    const QString section = u"Settings"_s;
    TWReg::SaveSetting(section, u"PersistentSettings"_s, u"1"_s, program);
    TWReg::SaveSetting(section, u"ConnectTimeout"_s, u"5"_s, program);
    TWReg::SaveSetting(section, u"MessageTimeout"_s, u"5"_s, program);
    TWReg::SaveSetting(section, u"ConnectRetry"_s, u"1"_s, program);
    TWReg::SaveSetting(section, u"RemotePort"_s, QString::number(remotePort), program);
}

} // namespace TestSupport
