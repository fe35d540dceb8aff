#pragma once
// The two static status pages in the Web folder: livestat.htm for the schedule, logstat.htm for the log.

#include <QString>
#include <QStringList>

class clsLog;
class clsSchedule;

// One cell of a header row; an empty `link` gives a left-aligned cell without a link.
QString WebTableCell(const QString &text, const QString &width, const QString &link = QString());
// The banner with `title` and the link bar, on one line.
QString WebPageHeader(const QString &title);

// The lines of livestat.htm. `nextRun` is NextReportRun() of the schedule, which the calendars give;
// `notes` are lines of their own after the backup's, such as command folders that are not read.
// Every text from items, reports, the log or errors is HTML-escaped.
QStringList LiveStatusLines(const clsSchedule &schedule, bool shutdown, double nextRun,
                            const QStringList &notes = {});
// The lines of logstat.htm, with the rows that WebLogSetting selects.
QStringList LogStatusLines(const clsLog &log);

// Rewrites AppPath/Web/livestat.htm; a page that cannot be written is passed over.
void SaveWeb(const clsSchedule &schedule, bool shutdown, double nextRun, const QStringList &notes = {});
// Rewrites AppPath/Web/logstat.htm; the writer that clsLog::SaveWeb calls.
void SaveLogWeb(const clsLog &log);
// Makes SaveLogWeb the log's web page writer.
void InstallLogWebPage(clsLog &log);
