#include "StatusPages.h"

#include "clsLog.h"
#include "core/Ansi.h"
#include "core/Clock.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "store/clsSchedule.h"

#include <QSaveFile>

namespace {

const QString kBreak = QStringLiteral("</br>");
const QString kParagraphEnd = QStringLiteral("</p>");

// The page's text as Windows-1252 bytes; a character the code page cannot hold becomes a numeric
// character reference, which a browser shows as that character.
QByteArray PageBytes(const QString &text)
{
    QString held;
    held.reserve(text.size());
    for (const char32_t code : text.toUcs4()) {
        if (code > 0xFFFF || Ansi::Code(QChar(char16_t(code))) < 0)
            held += QStringLiteral("&#") + QString::number(quint32(code)) + QLatin1Char(';');
        else
            held += QChar(char16_t(code));
    }
    return Ansi::Encode(held);
}

// Text from items, reports, the log or errors as the page shows it: its own markup is escaped, so a
// name cannot add markup or script to the page.
QString Html(const QString &text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    escaped.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    escaped.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    escaped.replace(QLatin1Char('"'), QLatin1String("&quot;"));
    return escaped;
}

// Replaces AppPath/Web/name whole with the lines, each ended by CR LF.
void WritePage(const QString &appPath, const QString &name, const QStringList &lines)
{
    QSaveFile file(CommonFile::JoinPath(appPath, QStringLiteral("Web/") + name));
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(PageBytes(lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")));
    file.commit();
}

QString PageTitle(const char *subject)
{
    return Html(CommonFile::ComputerName()) + QLatin1String(subject);
}

// The first finish date that logstat.htm shows, by WebLogSetting; the comparison is exact.
double FirstLogDate(const QString &setting)
{
    const double today = Today();
    if (setting == QLatin1String("This Week"))
        return today - Weekday(today) + 1;
    if (setting == QLatin1String("Last 7 Days"))
        return today - 7;
    return today;
}

QString LogCell(const QString &content)
{
    return QStringLiteral("<td width=\"15%\"><font size=\"2\" face=\"Arial\">") + content +
           QStringLiteral("</font></td>");
}

QString WideLogCell(const QString &content)
{
    return QStringLiteral("<td width=\"35%\"><font size=\"2\" face=\"Arial\">") + content +
           QStringLiteral("</font></td>");
}

void AppendLogRows(const clsLog &log, QStringList &lines)
{
    const double first = FirstLogDate(log.WebLogSetting);
    for (int row = 0; row < log.Count(); ++row) {
        const std::optional<double> finish = DayDate::Parse(log.CellAt(row, clsLog::ColFinish));
        if (!finish || *finish < first)
            continue;
        lines << QStringLiteral("<tr>") << LogCell(Html(log.CellAt(row, clsLog::ColLogDate)))
              << LogCell(Html(log.CellAt(row, clsLog::ColFinish)))
              << WideLogCell(Html(log.CellAt(row, clsLog::ColReportID)))
              << WideLogCell(Html(log.CellAt(row, clsLog::ColText))) << QStringLiteral("</tr>");
    }
}

void AppendScheduleState(const clsSchedule &schedule, bool shutdown, QStringList &lines)
{
    lines << QStringLiteral("Live Status as at ") + FormatDateTime(Now()) + kBreak
          << QStringLiteral("QorloMANAGER started at ") + FormatDateTime(schedule.StartedAt) + kBreak;
    if (shutdown)
        lines << QStringLiteral("QorloMANAGER shutdown at ") + FormatDateTime(Now()) + kBreak;
    lines << (schedule.Active ? QStringLiteral("The schedule is currently active</br>")
                              : QStringLiteral("The schedule is currently stopped</br>"));
    if (!schedule.StartTime.isEmpty())
        lines << QStringLiteral("The Schedule has a timer set to start processing schedule items at ") +
                     Html(schedule.StartTime) + kBreak;
    if (!schedule.StopTime.isEmpty())
        lines << QStringLiteral("The Schedule has a timer set to stop processing schedule items at ") +
                     Html(schedule.StopTime) + kBreak;
    lines << QStringLiteral("</br>QorloMANAGER has ") + QString::number(schedule.Count()) +
                 QStringLiteral(" reports in the schedule</p>");
}

void AppendReports(const clsSchedule &schedule, double nextRun, QStringList &lines)
{
    if (!schedule.LastReport.isEmpty())
        lines << QStringLiteral("Most recent report was ") + Html(schedule.LastReport) +
                     QStringLiteral("(Report ID=") + Html(schedule.LastReportID) + QStringLiteral(")</br>")
              << QStringLiteral("processed at ") + FormatDateTime(schedule.LastReportDate) + kBreak
              << QStringLiteral("<i>") + Html(schedule.LastReportMsg) + QStringLiteral("</i></p>");
    if (!schedule.ProcessingName.isEmpty())
        lines << QStringLiteral("Currently Processing (") + Html(schedule.ProcessingID) +
                     QStringLiteral("): ") + Html(schedule.ProcessingName) + kParagraphEnd;
    lines << QStringLiteral("The next report will run at ") + FormatDateTime(nextRun) + kParagraphEnd;
}

void AppendBackup(const clsSchedule &schedule, QStringList &lines)
{
    lines << QStringLiteral("Schedule Backup set to ") + Html(schedule.BackupFrequency) + kBreak;
    if (schedule.BackupFrequency == QLatin1String("Never"))
        return;
    if (!schedule.BackupPrevious.isEmpty())
        lines << QStringLiteral("Previous Backup performed on ") + Html(schedule.BackupPrevious) + kBreak;
    if (!schedule.BackupPreviousFile.isEmpty())
        lines << QStringLiteral("Schedule saved to file ") + Html(schedule.BackupPreviousFile) + kBreak;
    lines << QStringLiteral("Next Backup planned for ") + FormatDateTime(schedule.BackupDate) + kParagraphEnd;
}

} // namespace

QString WebTableCell(const QString &text, const QString &width, const QString &link)
{
    const QString font = QStringLiteral("<b><font face=\"Arial\" size=\"2\" color=\"#FFFFFF\">") + text +
                         QStringLiteral("</font></b>");
    if (link.isEmpty())
        return QStringLiteral("<td width=\"") + width + QStringLiteral("\"> <p align=\"left\">") + font +
               QStringLiteral("</td>");
    return QStringLiteral("<td width=\"") + width + QStringLiteral("\"><a href=\"") + link +
           QStringLiteral("\"> <p align=\"center\">") + font + QStringLiteral("</a></td>");
}

QString WebPageHeader(const QString &title)
{
    const QString cell = QStringLiteral("20%");
    return QStringLiteral("<table width=\"100%\" bgcolor=\"#6699FF\"> <tr><td width=\"100%\">") +
           QStringLiteral("<b><font face=\"Arial\" size=\"6\" color=\"#FFFFFF\">") + title +
           QStringLiteral("</font></b></td></tr></table>") +
           QStringLiteral("<table width=\"100%\" bgcolor=\"#6699FF\"><tr>") +
           WebTableCell(QStringLiteral("Status"), cell, QStringLiteral("livestat.htm")) +
           WebTableCell(QStringLiteral("Log"), cell, QStringLiteral("logstat.htm")) + WebTableCell({}, cell) +
           WebTableCell({}, cell) +
           WebTableCell(QStringLiteral("Server"), cell, QStringLiteral("server.htm")) +
           QStringLiteral("</tr></font></b></table>");
}

QStringList LiveStatusLines(const clsSchedule &schedule, bool shutdown, double nextRun,
                            const QStringList &notes)
{
    QStringList lines{QStringLiteral("<html>"), WebPageHeader(PageTitle(": Current QorloMANAGER Status")),
                      QStringLiteral("<p><font face=\"Arial\" size=\"2\">"),
                      QStringLiteral("<b>Server Status</b></br>")};
    AppendScheduleState(schedule, shutdown, lines);
    AppendReports(schedule, nextRun, lines);
    AppendBackup(schedule, lines);
    for (const QString &note : notes)
        lines << Html(note) + kBreak;
    lines << QStringLiteral("</font></p>")
          << QStringLiteral("<hr><font size=\"1\" face=\"Arial\">QorloMANAGER ") +
                 QString::number(DayDate::Year(Now())) + QStringLiteral("</font></p>")
          << QStringLiteral("</html>");
    return lines;
}

QStringList LogStatusLines(const clsLog &log)
{
    const QString bar = QStringLiteral("15%"), wide = QStringLiteral("35%");
    QStringList lines{
        QStringLiteral("<html>"),
        WebPageHeader(PageTitle(": QorloMANAGER Log")),
        QStringLiteral("<p><font face=\"Arial\" size=\"2\">"),
        QStringLiteral("<b>QorloMANAGER log as at ") + FormatDateTime(Now()) + QStringLiteral(" (Display=") +
            Html(log.WebLogSetting) + QStringLiteral(")</b></br>"),
        QStringLiteral("<p>"),
        QStringLiteral("<table width=\"100%\" bgcolor=\"#000000\"><tr>") +
            WebTableCell(QStringLiteral("Start"), bar) + WebTableCell(QStringLiteral("Finish"), bar) +
            WebTableCell(QStringLiteral("Report"), wide) + WebTableCell(QStringLiteral("Message"), wide) +
            QStringLiteral("</tr></font></b></table>"),
        QStringLiteral("<table width=\"100%\">")};
    AppendLogRows(log, lines);
    lines << QStringLiteral("</table></p>") << QStringLiteral("</font></p>") << QStringLiteral("</html>");
    return lines;
}

void SaveWeb(const clsSchedule &schedule, bool shutdown, double nextRun, const QStringList &notes)
{
    WritePage(schedule.AppPath, QStringLiteral("livestat.htm"),
              LiveStatusLines(schedule, shutdown, nextRun, notes));
}

void SaveLogWeb(const clsLog &log)
{
    WritePage(log.AppPath(), QStringLiteral("logstat.htm"), LogStatusLines(log));
}

void InstallLogWebPage(clsLog &log)
{
    log.SetWebPageWriter(SaveLogWeb);
}
