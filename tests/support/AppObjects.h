#pragma once
// An application folder of one test with its schedule and run log, items added in one call, and the
// run log read back as text.

#include "Files.h"
#include "core/Ansi.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"

#include <QTemporaryDir>

namespace TestSupport {

struct ItemFields
{
    QString id;
    QString name;
    QString file;
    QString frequency = QStringLiteral("D");
    QString times = QStringLiteral("1");
    QString nextRun;
};

// A new item on disk destination, scheduled when it has a next run; the cursor stays on it.
inline void AddItem(clsSchedule &schedule, const ItemFields &item)
{
    schedule.AddNew();
    if (!item.id.isEmpty())
        schedule.SetReportID(item.id);
    schedule.SetName(item.name);
    schedule.SetFile(item.file);
    schedule.SetSchedule(item.nextRun.isEmpty() ? QStringLiteral("N") : QStringLiteral("Y"));
    schedule.SetFrequency(item.frequency);
    schedule.SetFreqTimes(item.times);
    schedule.SetDest(QStringLiteral("D"));
    schedule.SetNextRun(item.nextRun);
}

// A new row of the log; a finish of 0 leaves it empty.
inline void AddLogRow(clsLog &log, const QString &id, double start, double finish, const QString &text,
                      qint32 pages = 0)
{
    log.AddNew();
    log.SetReportID(id);
    log.SetLogDate(start);
    log.SetFinishDate(finish);
    log.SetLogText(text);
    log.SetPages(pages);
}

// The given columns of every row of the log, joined by `separator`.
inline QStringList LogEntries(const clsLog &log,
                              const QList<clsLog::Column> &columns = {clsLog::ColReportID, clsLog::ColText},
                              const QString &separator = QStringLiteral("|"))
{
    QStringList entries;
    for (int row = 0; row < log.Count(); ++row) {
        QStringList cells;
        for (clsLog::Column column : columns)
            cells.append(log.CellAt(row, column));
        entries.append(cells.join(separator));
    }
    return entries;
}

// The same of the log file of the application folder.
inline QStringList SavedLogEntries(const QString &appPath,
                                   const QList<clsLog::Column> &columns = {clsLog::ColReportID,
                                                                           clsLog::ColText},
                                   const QString &separator = QStringLiteral("|"))
{
    clsLog saved(appPath);
    saved.Load(saved.FileName());
    return LogEntries(saved, columns, separator);
}

struct AppObjects
{
    AppObjects() = default;
    AppObjects(const AppObjects &) = delete;
    AppObjects &operator=(const AppObjects &) = delete;

    QString path(const QString &name) const { return folder.filePath(name); }
    QString writeFile(const QString &name, const QByteArray &bytes) const
    {
        return WriteFile(path(name), bytes);
    }
    // "ID|text" of each entry of the run log file.
    QStringList logEntries() const { return SavedLogEntries(appPath); }
    QString smtpLog() const { return Ansi::Decode(ReadFile(path(QStringLiteral("SMTP.Log")))); }
    // Mail goes to a server on the port, from scheduler@example.com; item 7 "Sales" on sales.rpt is added
    // and stays at the cursor.
    void addSalesItem(quint16 smtpPort)
    {
        schedule.SMTP_Server = QStringLiteral("127.0.0.1");
        schedule.SMTP_From = QStringLiteral("scheduler@example.com");
        schedule.SMTP_Port = smtpPort;
        schedule.SMTPDelay = 0;
        schedule.AddNew();
        schedule.SetReportID(QStringLiteral("7"));
        schedule.SetName(QStringLiteral("Sales"));
        schedule.SetFile(path(QStringLiteral("sales.rpt")));
    }
    // The state the dispatcher leaves for the item at the cursor when it hands it over.
    void startItem()
    {
        schedule.ProcessingID = schedule.ReportID();
        schedule.ProcessingName = schedule.Name();
    }

    QTemporaryDir folder;
    QString appPath = folder.path();
    clsSchedule schedule{appPath};
    clsLog log{appPath};
};

// An application folder whose schedule mails through the port, with item 7 "Sales" at the cursor,
// running and next due on 02-Mar-2026 06:00.
struct MailApp : AppObjects
{
    explicit MailApp(quint16 smtpPort)
    {
        addSalesItem(smtpPort);
        schedule.SetNextRun(QStringLiteral("02-Mar-2026 06:00"));
        startItem();
    }
    // "ID|text|next" of each entry of the run log file.
    QStringList logEntries() const
    {
        return SavedLogEntries(appPath, {clsLog::ColReportID, clsLog::ColText, clsLog::ColNextDate});
    }
};

} // namespace TestSupport
