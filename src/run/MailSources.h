#pragma once
// The schedule and the run log as the mail code takes them: server settings and address-list sources.

#include "mail/AddressList.h"
#include "mail/SmtpSettings.h"

class clsLog;
class clsSchedule;

namespace MailSources {

// The schedule's server settings, as every mail of the program goes out with them.
SmtpSettings ServerSettings(const clsSchedule &schedule);

// The application folder and domain shortcuts of the schedule; a missing list file is written in `log`
// against the item being processed at that moment.
AddressList::Sources ListSources(const clsSchedule &schedule, clsLog &log);

} // namespace MailSources
