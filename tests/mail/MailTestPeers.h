#pragma once
// What the mail tests share: the SMTP peer with its recorded messages, the reader of a recorded message,
// and a log of the signals a clsSendMail raised.

#include "Peers.h"
#include "mail/clsSendMail.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class SmtpPeer
{
public:
    // Starts tests/peers/smtp_server.py on a free port with the given options.
    bool start(const QStringList &options = {})
    {
        m_port = TestSupport::FreePort();
        const QStringList arguments =
            QStringList{TestSupport::PeerScript(QStringLiteral("smtp_server.py")), QStringLiteral("--port"),
                        QString::number(m_port), QStringLiteral("--folder"), m_folder.path()} +
            options;
        return m_process.start(TestSupport::DebianPython(), arguments, QStringLiteral("READY"));
    }
    QString error() const { return m_process.error(); }
    quint16 port() const { return m_port; }
    QString folder() const { return m_folder.path(); }
    // The recorded messages, oldest first.
    QStringList messages() const
    {
        QStringList files =
            QDir(m_folder.path()).entryList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name);
        for (QString &file : files)
            file = m_folder.filePath(file);
        return files;
    }
    // The envelope recorded beside a message: mail_from, rcpt_tos, helo, login, tls, and the client's
    // command lines up to DATA.
    static QJsonObject envelopeOf(const QString &message)
    {
        QFile file(message.chopped(4) + QStringLiteral(".json"));
        file.open(QIODevice::ReadOnly);
        return QJsonDocument::fromJson(file.readAll()).object();
    }

private:
    QTemporaryDir m_folder;
    TestSupport::PeerProcess m_process;
    quint16 m_port = 0;
};

// The message as Python's email package reads it (tests/peers/mail_parse.py).
inline QJsonObject ParseMessage(const QString &path)
{
    QProcess reader;
    reader.start(TestSupport::DebianPython(),
                 {TestSupport::PeerScript(QStringLiteral("mail_parse.py")), path});
    reader.waitForFinished(30000);
    return QJsonDocument::fromJson(reader.readAllStandardOutput()).object();
}

inline QByteArray ReadAll(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

// Every signal of one clsSendMail, in order.
class MailEvents : public QObject
{
public:
    explicit MailEvents(clsSendMail &mail)
    {
        connect(&mail, &clsSendMail::SendSuccesful, this,
                [this] { events.append(QStringLiteral("SendSuccesful")); });
        connect(&mail, &clsSendMail::SendFailed, this, [this](const QString &text) {
            events.append(QStringLiteral("SendFailed"));
            failures.append(text);
        });
        connect(&mail, &clsSendMail::Status, this, [this](const QString &text) { statuses.append(text); });
        connect(&mail, &clsSendMail::Progress, this, [this](int percent) { progress.append(percent); });
    }
    bool succeeded() const { return events == QStringList{QStringLiteral("SendSuccesful")}; }

    QStringList events;
    QStringList failures;
    QStringList statuses;
    QList<int> progress;
};

// A client aimed at the local peer with short time-outs, from reports@ to boss@example.com.
inline void AimAt(clsSendMail &mail, quint16 port, int timeoutSeconds = 5)
{
    mail.SetFrom(QStringLiteral("reports@example.com"));
    mail.SetRecipient(QStringLiteral("boss@example.com"));
    mail.SetSMTPHostValidation(0);
    mail.SetSMTPHost(QStringLiteral("127.0.0.1"));
    mail.SetSMTPPort(port);
    mail.SetConnectTimeout(timeoutSeconds);
    mail.SetMessageTimeout(timeoutSeconds);
    mail.SetConnectRetry(1);
}
