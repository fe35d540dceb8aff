#pragma once
// Messages to the maker's support mailbox, through the schedule's own mail server and sender.

#include <QString>
#include <QStringList>

class QorloGlobals;

namespace SupportMail {

// True, after the box that says so, while a run is on: the mail client is the run's then.
bool RefusedDuringRun(QorloGlobals &globals);
// Sends the message with the files attached; the SMTP log starts with `logTitle`, and the outcome is
// shown in a box.
void Send(QorloGlobals &globals, const QString &logTitle, const QString &subject, const QString &text,
          const QStringList &attachments = {});

} // namespace SupportMail
