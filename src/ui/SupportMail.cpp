#include "SupportMail.h"

#include "MailClientEvents.h"

#include "mail/SmtpLog.h"
#include "mail/clsSendMail.h"
#include "run/MailSources.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

namespace SupportMail {

bool RefusedDuringRun(QorloGlobals &globals)
{
    if (globals.Schedule.ProcessingID.isEmpty())
        return false;
    globals.prompter.ShowMessage(QStringLiteral("QorloMANAGER"),
                                 QStringLiteral("Please wait until report finished processing"));
    return true;
}

// The server and sender are the schedule's, as for every mail of a run.
void Send(QorloGlobals &globals, const QString &logTitle, const QString &subject, const QString &text,
          const QStringList &attachments)
{
    SmtpLog::StartSmtpLog(logTitle);
    const SmtpSettings settings = MailSources::ServerSettings(globals.Schedule);
    MailClientEvents events(globals.prompter, globals.AppPath);
    clsSendMail &mail = events.poSendMail();
    mail.SetSMTPHost(settings.server);
    mail.SetFrom(settings.from);
    settings.ApplyTo(mail);
    mail.SetRecipient(QStringLiteral(QORLO_SUPPORT_MAILBOX));
    mail.SetSubject(subject);
    mail.SetMessage(text);
    if (!attachments.isEmpty())
        mail.SetAttachment(attachments.join(QLatin1Char(';')));
    mail.Send();
}

} // namespace SupportMail
