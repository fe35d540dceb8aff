// The status pages livestat.htm and logstat.htm, compared line by line with hand-written pages.
#include "TestClocks.h"
#include "TestMain.h"
#include "core/Ansi.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "log/StatusPages.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

// Wednesday 18 March 2026, 15:45.
const QDateTime kNow(QDate(2026, 3, 18), QTime(15, 45));

QStringList ExpectedLines(const char *name)
{
    QFile file(TestSupport::DataFile(QStringLiteral("log/web/") + QLatin1String(name)));
    if (!file.open(QIODevice::ReadOnly))
        return {QStringLiteral("missing fixture")};
    QString text = QString::fromUtf8(file.readAll());
    text.replace(QStringLiteral("{COMPUTER}"), CommonFile::ComputerName());
    QStringList lines = text.split(QLatin1Char('\n'));
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// The page's lines; every line must end with CR LF.
QStringList PageLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {QStringLiteral("missing page")};
    const QByteArray bytes = file.readAll();
    if (!bytes.endsWith("\r\n") || bytes.count('\n') != bytes.count("\r\n"))
        return {QStringLiteral("line ends are not CR LF")};
    QStringList lines = Ansi::Decode(bytes).split(QStringLiteral("\r\n"));
    lines.removeLast();
    return lines;
}

void AddRow(clsLog &log, const char *id, double start, double finish, const char *text)
{
    log.AddNew();
    log.SetReportID(QLatin1String(id));
    log.SetLogDate(start);
    if (finish != 0)
        log.SetFinishDate(finish);
    log.SetLogText(QLatin1String(text));
}

// The ReportIDs in the rows of a log page.
QStringList ShownIDs(const QStringList &page)
{
    QStringList ids;
    for (qsizetype i = 0; i + 3 < page.size(); ++i) {
        if (page[i] == QLatin1String("<tr>"))
            ids.append(page[i + 3].section(QLatin1Char('>'), 2).section(QLatin1Char('<'), 0, 0));
    }
    return ids;
}

} // namespace

class TestStatusPages : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_clock.set(kNow);
        QVERIFY(QDir(m_app.path()).mkpath(QStringLiteral("Web")));
    }
    void liveActive();
    void liveStopped();
    void logPage();
    void pageText();

private:
    QString Page(const char *name) const
    {
        return m_app.path() + QStringLiteral("/Web/") + QLatin1String(name);
    }
    QTemporaryDir m_app;
    FixedClock m_clock{kNow};
    ClockGuard m_guard{m_clock};
};

void TestStatusPages::liveActive()
{
    clsSchedule schedule(m_app.path());
    schedule.StartedAt = D(2026, 3, 18, 8, 0);
    schedule.Active = true;
    schedule.StopTime = QStringLiteral("18-Mar-2026 22:00:00");
    for (int i = 0; i < 3; ++i)
        schedule.AddNew();
    schedule.LastReport = QStringLiteral("Daily Sales");
    schedule.LastReportID = QStringLiteral("7");
    schedule.LastReportDate = D(2026, 3, 18, 15, 30);
    schedule.LastReportMsg = QStringLiteral("Report completed");
    schedule.ProcessingID = QStringLiteral("9");
    schedule.ProcessingName = QStringLiteral("Stock Levels");
    schedule.BackupPrevious = QStringLiteral("18-Mar-2026 08:00");
    schedule.BackupPreviousFile = QStringLiteral("/srv/qorlo/Backup/Qorlo20260318.xml");
    schedule.BackupDate = D(2026, 3, 19, 8, 0);

    SaveWeb(schedule, false, D(2026, 3, 18, 16, 0));
    QCOMPARE(PageLines(Page("livestat.htm")), ExpectedLines("livestat-active.htm"));
    QVERIFY(!QFile::exists(Page("logstat.htm")));
}

void TestStatusPages::liveStopped()
{
    clsSchedule schedule(m_app.path());
    schedule.StartedAt = D(2026, 3, 18, 8, 0);
    schedule.StartTime = QStringLiteral("19-Mar-2026 06:00:00");
    schedule.BackupFrequency = QStringLiteral("Never");
    schedule.BackupPrevious = QStringLiteral("18-Mar-2026 08:00"); // not shown for "Never"

    SaveWeb(schedule, true, D(2026, 3, 19));
    const QStringList expected = ExpectedLines("livestat-stopped.htm");
    QCOMPARE(PageLines(Page("livestat.htm")), expected);

    // Without shutdown exactly the one line goes.
    SaveWeb(schedule, false, D(2026, 3, 19));
    QStringList withoutShutdown = expected;
    withoutShutdown.removeAll(QStringLiteral("QorloMANAGER shutdown at 18-Mar-2026 15:45</br>"));
    QCOMPARE(PageLines(Page("livestat.htm")), withoutShutdown);
    QCOMPARE(withoutShutdown.size(), expected.size() - 1);

    // A missing Web folder: nothing written, nothing reported.
    QVERIFY(QDir(m_app.path() + QStringLiteral("/Web")).removeRecursively());
    SaveWeb(schedule, false, D(2026, 3, 19));
    QVERIFY(!QFile::exists(Page("livestat.htm")));
}

void TestStatusPages::logPage()
{
    clsLog log(m_app.path());
    log.DeleteLogDate = D(2027, 1, 1); // no retention in this test
    log.WebLogSetting = QStringLiteral("Last 7 Days");
    AddRow(log, "12", D(2026, 3, 10, 8, 0), D(2026, 3, 10, 8, 5), "Before the week");
    AddRow(log, "13", D(2026, 3, 11, 7, 0), D(2026, 3, 11, 7, 10), "Last 7 days edge");
    AddRow(log, "14", D(2026, 3, 14, 23, 50), D(2026, 3, 15, 0, 2), "Finished on Sunday");
    AddRow(log, "15", D(2026, 3, 18, 9, 0), 0, "Still running");
    AddRow(log, "DEL", D(2026, 3, 18, 9, 30), D(2026, 3, 18, 9, 31), "Removed row");
    AddRow(log, "16", D(2026, 3, 18, 10, 0), D(2026, 3, 18, 10, 20), "Sales & Co");

    // The log's own save writes the page once the writer is installed.
    log.Save();
    QVERIFY(!QFile::exists(Page("logstat.htm")));
    InstallLogWebPage(log);
    log.Save();
    QCOMPARE(PageLines(Page("logstat.htm")), ExpectedLines("logstat-last7days.htm"));

    const auto shown = [&log](const char *setting) {
        log.WebLogSetting = QLatin1String(setting);
        return ShownIDs(LogStatusLines(log)).join(QLatin1Char(' '));
    };
    QCOMPARE(shown("This Week"), QStringLiteral("14 DEL 16"));
    QCOMPARE(shown("Today"), QStringLiteral("DEL 16"));
    // The dialog's spellings and an empty setting show today's rows only.
    QCOMPARE(shown("Last 7 days"), QStringLiteral("DEL 16"));
    QCOMPARE(shown("This week"), QStringLiteral("DEL 16"));
    QCOMPARE(shown(""), QStringLiteral("DEL 16"));
    QVERIFY(LogStatusLines(log).contains(
        QStringLiteral("<b>QorloMANAGER log as at 18-Mar-2026 15:45 (Display=)</b></br>")));

    // "This Week" on a Sunday: that day's rows only.
    m_clock.set(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
    log.Clear();
    AddRow(log, "17", D(2026, 3, 14, 22, 0), D(2026, 3, 14, 23, 55), "Saturday");
    AddRow(log, "14", D(2026, 3, 14, 23, 50), D(2026, 3, 15, 0, 2), "Sunday");
    QCOMPARE(shown("This Week"), QStringLiteral("14"));
}

void TestStatusPages::pageText()
{
    clsSchedule schedule(m_app.path());
    // Windows-1252 characters as their bytes; others as numeric references the browser resolves.
    schedule.LastReport = QStringLiteral("Caf\u00e9 \u20ac");
    schedule.LastReportMsg = QStringLiteral("\u03a9 ") + QString::fromUcs4(U"\U0001F600");
    SaveWeb(schedule, false, D(2026, 3, 19));
    QFile file(Page("livestat.htm"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QVERIFY(bytes.contains("Most recent report was Caf\xe9 \x80(Report ID=)</br>\r\n"));
    QVERIFY(bytes.contains("<i>&#937; &#128512;</i></p>\r\n"));
}

QORLO_TEST_MAIN(TestStatusPages)
#include "tst_statuspages.moc"
