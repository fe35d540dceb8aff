#pragma once
// The mail client of one message sent from a window, set up as the mail windows send and with their
// handlers of its events: the story goes to the SMTP log, the outcome to a box.

#include <QObject>
#include <QString>
#include <memory>

class Prompter;
class clsSendMail;

class MailClientEvents : public QObject
{
    Q_OBJECT
public:
    // A new client with no host check, checked addresses and ";" between the entries of a list; it is
    // released with this object.
    MailClientEvents(Prompter &prompter, const QString &appPath);
    ~MailClientEvents() override;

    clsSendMail &poSendMail() { return *m_sendMail; }

private:
    void poSendMail_Status(const QString &text);
    void poSendMail_SendFailed(const QString &text);
    void poSendMail_SendSuccesful();

    Prompter &m_prompter;
    const QString m_appPath;
    std::unique_ptr<clsSendMail> m_sendMail;
};
