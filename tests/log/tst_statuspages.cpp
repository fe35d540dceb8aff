// The status pages livestat.htm and logstat.htm, compared line by line with hand-written pages.
#include "AppObjects.h"
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

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

namespace {

// Wednesday 18 March 2026, 15:45.
const QDateTime kNow(QDate(2026, 3, 18), QTime(15, 45));

QStringList ExpectedLines(const char *name)
{
    QString text = QString::fromUtf8(ReadFile(DataFile(u"log/web/"_s + QLatin1String(name))));
    text.replace(u"{COMPUTER}"_s, CommonFile::ComputerName());
    QStringList lines = text.split(u'\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// The page's lines; every line must end with CR LF.
QStringList PageLines(const QString &path)
{
    const QByteArray bytes = ReadFile(path);
    if (!bytes.endsWith("\r\n") || bytes.count('\n') != bytes.count("\r\n"))
        return {u"no page, or line ends that are not CR LF"_s};
    QStringList lines = Ansi::Decode(bytes).split(u"\r\n"_s);
    lines.removeLast();
    return lines;
}

// The ReportIDs in the rows of a log page.
QStringList ShownIDs(const QStringList &page)
{
    QStringList ids;
    for (qsizetype i = 0; i + 3 < page.size(); ++i) {
        if (page[i] == u"<tr>"_s)
            ids.append(page[i + 3].section(u'>', 2).section(u'<', 0, 0));
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
        QVERIFY(QDir(m_app.path()).mkpath(u"Web"_s));
    }
    void liveActive();
    void liveStopped();
    void logPage();
    void pageText();
    void hostileTexts();

private:
    QString Page(const char *name) const { return m_app.path() + u"/Web/"_s + QLatin1String(name); }
    QTemporaryDir m_app;
    FixedClock m_clock{kNow};
    ClockGuard m_guard{m_clock};
};

void TestStatusPages::liveActive()
{
    clsSchedule schedule(m_app.path());
    schedule.StartedAt = D(2026, 3, 18, 8, 0);
    schedule.Active = true;
    schedule.StopTime = u"18-Mar-2026 22:00:00"_s;
    for (int i = 0; i < 3; ++i)
        schedule.AddNew();
    schedule.LastReport = u"Daily Sales"_s;
    schedule.LastReportID = u"7"_s;
    schedule.LastReportDate = D(2026, 3, 18, 15, 30);
    schedule.LastReportMsg = u"Report completed"_s;
    schedule.ProcessingID = u"9"_s;
    schedule.ProcessingName = u"Stock Levels"_s;
    schedule.BackupPrevious = u"18-Mar-2026 08:00"_s;
    schedule.BackupPreviousFile = u"/srv/qorlo/Backup/Qorlo20260318.xml"_s;
    schedule.BackupDate = D(2026, 3, 19, 8, 0);

    SaveWeb(schedule, false, D(2026, 3, 18, 16, 0));
    QCOMPARE(PageLines(Page("livestat.htm")), ExpectedLines("livestat-active.htm"));
    QVERIFY(!QFile::exists(Page("logstat.htm")));
}

void TestStatusPages::liveStopped()
{
    clsSchedule schedule(m_app.path());
    schedule.StartedAt = D(2026, 3, 18, 8, 0);
    schedule.StartTime = u"19-Mar-2026 06:00:00"_s;
    schedule.BackupFrequency = u"Never"_s;
    schedule.BackupPrevious = u"18-Mar-2026 08:00"_s; // not shown for "Never"

    SaveWeb(schedule, true, D(2026, 3, 19));
    const QStringList expected = ExpectedLines("livestat-stopped.htm");
    QCOMPARE(PageLines(Page("livestat.htm")), expected);

    // Without shutdown exactly the one line goes.
    SaveWeb(schedule, false, D(2026, 3, 19));
    QStringList withoutShutdown = expected;
    withoutShutdown.removeAll(u"QorloMANAGER shutdown at 18-Mar-2026 15:45</br>"_s);
    QCOMPARE(PageLines(Page("livestat.htm")), withoutShutdown);
    QCOMPARE(withoutShutdown.size(), expected.size() - 1);

    // A missing Web folder: nothing written, nothing reported.
    QVERIFY(QDir(m_app.path() + u"/Web"_s).removeRecursively());
    SaveWeb(schedule, false, D(2026, 3, 19));
    QVERIFY(!QFile::exists(Page("livestat.htm")));
}

void TestStatusPages::logPage()
{
    clsLog log(m_app.path());
    log.DeleteLogDate = D(2027, 1, 1); // no retention in this test
    log.WebLogSetting = u"Last 7 Days"_s;
    AddLogRow(log, u"12"_s, D(2026, 3, 10, 8, 0), D(2026, 3, 10, 8, 5), u"Before the week"_s);
    AddLogRow(log, u"13"_s, D(2026, 3, 11, 7, 0), D(2026, 3, 11, 7, 10), u"Last 7 days edge"_s);
    AddLogRow(log, u"14"_s, D(2026, 3, 14, 23, 50), D(2026, 3, 15, 0, 2), u"Finished on Sunday"_s);
    AddLogRow(log, u"15"_s, D(2026, 3, 18, 9, 0), 0, u"Still running"_s);
    AddLogRow(log, u"DEL"_s, D(2026, 3, 18, 9, 30), D(2026, 3, 18, 9, 31), u"Removed row"_s);
    AddLogRow(log, u"16"_s, D(2026, 3, 18, 10, 0), D(2026, 3, 18, 10, 20), u"Sales & Co"_s);

    // The log's own save writes the page once the writer is installed.
    log.Save();
    QVERIFY(!QFile::exists(Page("logstat.htm")));
    InstallLogWebPage(log);
    log.Save();
    QCOMPARE(PageLines(Page("logstat.htm")), ExpectedLines("logstat-last7days.htm"));

    const auto shown = [&log](const char *setting) {
        log.WebLogSetting = QLatin1String(setting);
        return ShownIDs(LogStatusLines(log)).join(u' ');
    };
    QCOMPARE(shown("This Week"), u"14 DEL 16"_s);
    QCOMPARE(shown("Today"), u"DEL 16"_s);
    // The dialog's spellings and an empty setting show today's rows only.
    QCOMPARE(shown("Last 7 days"), u"DEL 16"_s);
    QCOMPARE(shown("This week"), u"DEL 16"_s);
    QCOMPARE(shown(""), u"DEL 16"_s);
    QVERIFY(
        LogStatusLines(log).contains(u"<b>QorloMANAGER log as at 18-Mar-2026 15:45 (Display=)</b></br>"_s));

    // "This Week" on a Sunday: that day's rows only.
    m_clock.set(QDateTime(QDate(2026, 3, 15), QTime(12, 0)));
    log.Clear();
    AddLogRow(log, u"17"_s, D(2026, 3, 14, 22, 0), D(2026, 3, 14, 23, 55), u"Saturday"_s);
    AddLogRow(log, u"14"_s, D(2026, 3, 14, 23, 50), D(2026, 3, 15, 0, 2), u"Sunday"_s);
    QCOMPARE(shown("This Week"), u"14"_s);
}

void TestStatusPages::pageText()
{
    clsSchedule schedule(m_app.path());
    // Windows-1252 characters as their bytes; others as numeric references the browser resolves.
    schedule.LastReport = u"Caf\u00e9 \u20ac"_s;
    schedule.LastReportMsg = u"\u03a9 "_s + QString::fromUcs4(U"\U0001F600");
    SaveWeb(schedule, false, D(2026, 3, 19));
    const QByteArray bytes = ReadFile(Page("livestat.htm"));
    QVERIFY(bytes.contains("Most recent report was Caf\xe9 \x80(Report ID=)</br>\r\n"));
    QVERIFY(bytes.contains("<i>&#937; &#128512;</i></p>\r\n"));
}

// Texts from items, reports, the log and errors cannot add markup to the pages: a script in an item
// name, quotes and ampersands in a message, a tag in a log entry all show as text.
void TestStatusPages::hostileTexts()
{
    clsSchedule schedule(m_app.path());
    schedule.LastReport = u"<script>alert('report')</script>"_s;
    schedule.LastReportID = u"7\"><b>"_s;
    schedule.LastReportMsg = u"ERROR: a < b & \"c\""_s;
    schedule.ProcessingID = u"9"_s;
    schedule.ProcessingName = u"<script src=x></script>"_s;
    schedule.StopTime = u"<i>soon</i>"_s;
    schedule.BackupPreviousFile = u"/srv/<x>.xml"_s;
    const QStringList live =
        LiveStatusLines(schedule, false, D(2026, 3, 19), {u"Command folder /a<b> is not read"_s});
    const QString page = live.join(u'\n');
    QVERIFY2(!page.contains(u"<script"_s) && !page.contains(u"<b>\""_s) && !page.contains(u"<x>"_s) &&
                 !page.contains(u"<i>soon"_s),
             qPrintable(page));
    QVERIFY(live.contains(u"Most recent report was &lt;script&gt;alert('report')&lt;/script&gt;"
                          u"(Report ID=7&quot;&gt;&lt;b&gt;)</br>"_s));
    QVERIFY(live.contains(u"<i>ERROR: a &lt; b &amp; &quot;c&quot;</i></p>"_s));
    QVERIFY(live.contains(u"Currently Processing (9): &lt;script src=x&gt;&lt;/script&gt;</p>"_s));
    QVERIFY(live.contains(u"Command folder /a&lt;b&gt; is not read</br>"_s));

    clsLog log(m_app.path());
    AddLogRow(log, u"<b>1</b>"_s, D(2026, 3, 18, 10, 0), D(2026, 3, 18, 10, 1),
              u"<img src=x onerror=alert(1)>"_s);
    log.WebLogSetting = u"<script>"_s;
    const QString logPage = LogStatusLines(log).join(u'\n');
    QVERIFY2(!logPage.contains(u"<img"_s) && !logPage.contains(u"<script"_s) && !logPage.contains(u"<b>1"_s),
             qPrintable(logPage));
    QVERIFY(logPage.contains(u"&lt;img src=x onerror=alert(1)&gt;"_s));
    QVERIFY(logPage.contains(u"(Display=&lt;script&gt;)"_s));
}

QORLO_TEST_MAIN(TestStatusPages)
#include "tst_statuspages.moc"
