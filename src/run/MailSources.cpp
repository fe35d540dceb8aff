#include "MailSources.h"

#include "core/Clock.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"

namespace MailSources {

SmtpSettings ServerSettings(const clsSchedule &schedule)
{
    return {schedule.SMTP_Server,        schedule.SMTP_From, schedule.SMTP_Port,   schedule.SMTP_Encryption,
            schedule.SMTPAuthentication, schedule.SMTPUser,  schedule.SMTPPassword};
}

AddressList::Sources ListSources(const clsSchedule &schedule, clsLog &log)
{
    QStringList domains;
    for (int index = 0; index < clsSchedule::DomainCount; ++index)
        domains.append(schedule.Domain(index));
    return {schedule.AppPath, domains, [&schedule, &log](const QString &text) {
                WriteLogEntry(log, schedule.ProcessingID, Now(), Now(), QString(), text, 0);
            }};
}

} // namespace MailSources
