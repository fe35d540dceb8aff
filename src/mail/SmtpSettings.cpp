#include "SmtpSettings.h"

#include "clsSendMail.h"

void SmtpSettings::ApplyTo(clsSendMail &mail) const
{
    mail.SetSMTPPort(port);
    mail.SetEncryption(encryption);
    if (authentication == QLatin1String("Yes")) {
        mail.SetUseAuthentication(true);
        mail.SetUsername(user);
        mail.SetPassword(password);
    }
}
