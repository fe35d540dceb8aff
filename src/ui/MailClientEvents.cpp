#include "MailClientEvents.h"

#include "scheduler/Prompter.h"
#include "mail/SmtpLog.h"
#include "mail/clsSendMail.h"

namespace {

const QString kMessageTitle = QStringLiteral("SMTP Message");

} // namespace

MailClientEvents::MailClientEvents(Prompter &prompter, const QString &appPath)
    : m_prompter(prompter), m_appPath(appPath), m_sendMail(std::make_unique<clsSendMail>())
{
    clsSendMail &mail = *m_sendMail;
    connect(&mail, &clsSendMail::Status, this, &MailClientEvents::poSendMail_Status);
    connect(&mail, &clsSendMail::SendFailed, this, &MailClientEvents::poSendMail_SendFailed);
    connect(&mail, &clsSendMail::SendSuccesful, this, &MailClientEvents::poSendMail_SendSuccesful);
    mail.SetSMTPHostValidation(0);
    mail.SetEmailAddressValidation(1);
    mail.SetDelimiter(QStringLiteral(";"));
}

MailClientEvents::~MailClientEvents() = default;

void MailClientEvents::poSendMail_Status(const QString &text)
{
    SmtpLog::AddSmtpLog(text);
}

void MailClientEvents::poSendMail_SendFailed(const QString &text)
{
    m_prompter.ShowMessage(kMessageTitle, QStringLiteral("Send Failed\r\n") + text);
    SmtpLog::AddSmtpLog(QStringLiteral("Send Failed - ") + text);
    SmtpLog::FlushSmtpLog(m_appPath);
}

void MailClientEvents::poSendMail_SendSuccesful()
{
    m_prompter.ShowMessage(kMessageTitle, QStringLiteral("Message Sent"));
    SmtpLog::AddSmtpLog(QStringLiteral("Message sent to ") + m_sendMail->Recipient());
    SmtpLog::FlushSmtpLog(m_appPath);
}
