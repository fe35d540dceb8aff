#pragma once
// The three deliveries of a report run that has read its records: to disk, by mail, to printers.

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

// The error mail text of an item without its own: "Error occured", the item and the reason.
QString DefaultErrorMessage(RunContext &run, const QString &reason);

} // namespace ReportDelivery
