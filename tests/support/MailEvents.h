#pragma once
// Every signal of one mail client, in order, and the client aimed at a local peer.

#include "mail/clsSendMail.h"

#include <QObject>
#include <QStringList>

namespace TestSupport {

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

} // namespace TestSupport
