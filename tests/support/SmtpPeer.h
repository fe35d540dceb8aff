#pragma once
// The SMTP peer (tests/peers/smtp_server.py) with the messages it recorded, readers of a recorded
// message, and the mail client's settings that send mail documents to the peer.

#include "Peers.h"

#include <QJsonObject>
#include <QStringList>
#include <QTemporaryDir>

namespace TestSupport {

class SmtpPeer
{
public:
    // Starts the peer on a free port with smtp_server.py's options (--user, --refuse-rcpt, --delay, ...).
    bool start(const QStringList &options = {});
    QString error() const { return m_process.error(); }
    bool timedOut() const { return m_process.timedOut(); }
    quint16 port() const { return m_port; }
    // The recorded messages, oldest first.
    QStringList messages() const;
    // The envelope recorded beside a message: mail_from, rcpt_tos, helo, login, tls, and the client's
    // command lines up to DATA.
    static QJsonObject envelopeOf(const QString &message);

private:
    QTemporaryDir m_folder;
    PeerProcess m_process;
    quint16 m_port = 0;
};

// The message as Python's email package reads it (tests/peers/mail_parse.py).
QJsonObject ParseMessage(const QString &path);
QJsonObject PartOf(const QJsonObject &parsed, int index);
// The file names of the message's parts, the body's part giving an empty name.
QStringList PartNames(const QJsonObject &parsed);
// The envelope's recipients of a recorded message.
QStringList Recipients(const QString &message);

// Writes the mail client's own settings so that failures cost seconds and mail documents, which always
// go out on the client's default port, reach `remotePort`.
void ShortMailTimeouts(quint16 remotePort = 25);

} // namespace TestSupport
