#pragma once
// The mails of a run: the report itself, notices of success and error, the no-data mail, and the
// pause after each message.

#include <QString>

class clsLog;
class clsSchedule;

namespace Engine {
class Report;
}

namespace SMTPMail {

// What the senders read of the running program: the schedule with its cursor on the running item,
// the run log, and the report open for the run (null when none, which leaves mail text unsubstituted).
struct MailRun
{
    clsSchedule &schedule;
    clsLog &log;
    const Engine::Report *report = nullptr;
};

// Mails the staged export `outputFile`: in the body or attached by the item's EMailAttach and the
// report's export format, with the existing files of the ";" list `extraFiles` attached.
void SendReportMail(const MailRun &run, const QString &to, const QString &outputFile, const QString &subject,
                    const QString &extraFiles = QString());
// Both go to the item's NotifyTo; `to` only switches them on.
void SendNotifyMail(const MailRun &run, const QString &to, const QString &message, const QString &id,
                    const QString &name);
void SendErrorMail(const MailRun &run, const QString &to, const QString &message, const QString &id,
                   const QString &name);
// Acts on the item's NoRecords choice and writes its run log entry.
void SendNoDataMail(const MailRun &run);
// Sleeps SMTPDelay seconds; the milliseconds are 16-bit, so 33 seconds or more raise the overflow (6).
void MailPause(const clsSchedule &schedule);

} // namespace SMTPMail
