#pragma once
// The deliveries of one multi-run line that has read its records: to disk, by mail, to printers. Each
// logs its own entry, sends the line's notice or error mail and counts into the run's totals.

#include <QString>
#include <QtGlobal>

struct RunContext;

namespace MultiRun {

// One data line of the file, its quotes stripped.
struct Line
{
    QString parameter;
    QString value;
    QString destination;
    QString format;
    QString output;
    QString extra;
    // What names the line in log entries and mails.
    QString label;
    double start = 0;
};

// The counters of one multi-run.
struct Totals
{
    qint16 reports = 0;
    qint32 errors = 0;
    // Summed over the successful deliveries.
    qint32 pages = 0;
};

// Delivers the line by its destination with the trap armed, then logs off the servers and disarms the
// trap. A destination outside the known ones reads its data and delivers nothing.
void Deliver(RunContext &run, const Line &line, Totals &totals);

} // namespace MultiRun
