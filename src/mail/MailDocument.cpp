#include "MailDocument.h"

#include "mail/SmtpLog.h"
#include "mail/clsSMTP.h"
#include "mail/clsSendMail.h"

using namespace SmtpLog;

namespace {

// The mail client's events go to the SMTP log of the document.
void LogEvents(clsSendMail &mail, const QString &appPath)
{
    QObject::connect(&mail, &clsSendMail::SendFailed, &mail, [appPath](const QString &explanation) {
        AddSmtpLog(QStringLiteral("Send Failed - ") + explanation);
        FlushSmtpLog(appPath);
    });
    QObject::connect(&mail, &clsSendMail::SendSuccesful, &mail, [&mail, appPath] {
        AddSmtpLog(QStringLiteral("Message sent to ") + mail.Recipient());
        FlushSmtpLog(appPath);
    });
    QObject::connect(&mail, &clsSendMail::Status, &mail, [](const QString &text) { AddSmtpLog(text); });
}

void AddAttachments(clsSendMail &mail, const QString &attach)
{
    // The document's list starts with a line end, which gives an empty first part.
    QStringList paths = attach.split(QStringLiteral("\r\n"));
    paths.removeAll(QString());
    mail.SetAttachment(paths.join(mail.Delimiter()));
}

} // namespace

bool ProcessMailDocument(const QString &appPath, const QString &filePath)
{
    clsSMTP document;
    document.Load(filePath);
    if (document.DocType != QLatin1String("QorloMAILDoc")) {
        AddSmtpLog(QStringLiteral("Invalid XML document - cannot find QorloMAILDoc"));
        FlushSmtpLog(appPath);
        return false;
    }
    AddSmtpLog(QStringLiteral("Valid XML document"));
    FlushSmtpLog(appPath);

    clsSendMail poSendMail;
    LogEvents(poSendMail, appPath);
    poSendMail.SetSMTPHostValidation(0);
    poSendMail.SetEmailAddressValidation(1);
    poSendMail.SetDelimiter(QStringLiteral(";"));
    poSendMail.SetSMTPHost(document.Server);
    poSendMail.SetFrom(document.From);
    poSendMail.SetSubject(document.Subject);
    if (!document.Body.isEmpty())
        poSendMail.SetMessage(document.Body);
    if (!document.Attach.isEmpty())
        AddAttachments(poSendMail, document.Attach);
    const QString html = document.MsgHTML();
    if (!html.isEmpty()) {
        poSendMail.SetMessage(html);
        poSendMail.SetAsHTML(true);
    }
    poSendMail.SetRecipient(document.To);
    poSendMail.Send();
    AddSmtpLog(document.Subject + QStringLiteral(" message sent to ") + document.To);
    FlushSmtpLog(appPath);
    return true;
}
