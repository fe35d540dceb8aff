#pragma once
// The three deliveries of a report run that has read its records: to disk, by mail, to printers.

#include "run/SMTPMail.h"

#include <QString>

struct RunContext;

namespace ReportDelivery {

// The run's own state that the deliveries read and leave behind.
struct Delivery
{
    double start = 0;
    // Set when the output would overwrite the open report: the export goes here first.
    QString tempFile;
};

void ToDisk(RunContext &run, Delivery &delivery);
void ByMail(RunContext &run, const Delivery &delivery);
void ToPrinters(RunContext &run, const Delivery &delivery);

// The item's own error mail text or, when it has none, "Error occured", the item and the reason.
QString ErrorMessage(RunContext &run, const QString &reason);
// What the mail senders read of the run: the schedule, the log and the open report.
SMTPMail::MailRun MailRunOf(RunContext &run);
// The error mail and the notice of the item at the cursor, under its ID and name.
void SendErrorMail(RunContext &run, const QString &to, const QString &message);
void SendNotifyMail(RunContext &run, const QString &to, const QString &message);

} // namespace ReportDelivery
