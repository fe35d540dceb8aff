#pragma once
// The server settings that the program's own messages go out with, as the schedule keeps them.

#include <QString>

class clsSendMail;

struct SmtpSettings
{
    QString server;
    QString from;
    qint32 port = 25;
    QString encryption = QStringLiteral("None");
    QString authentication; // exactly "Yes" logs on with user and password
    QString user;
    QString password;

    // Port, encryption and the log-on, on a client about to send; host and sender are the caller's.
    void ApplyTo(clsSendMail &mail) const;
};
