// A report run once for each line of a multi-run file, against real report files, SQLite data and the
// SMTP peer.
#include "CupsPeer.h"
#include "RunObjects.h"
#include "SmtpPeer.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "run/MultiRun.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QJsonArray>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace MultiRun;
using namespace TestSupport;
using namespace Qt::Literals::StringLiterals;

class TestMultiRun : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void helpers();
    void diskLines();
    void mailLines();
    void mailWithoutServerOrAddress();
    void runsThatEnd();
};

namespace {

// Item 7 "Sales", a multi-run over the fixture sales table and its copy "archive" with one more South
// row (Zulu) and one more North row (Yankee); a stored parameter {?Least} of 1000 applies wherever a line
// does not set it.
struct MultiApp : RunObjects
{
    explicit MultiApp(quint16 smtpPort = 25)
    {
        addSalesItem(smtpPort);
        schedule.SetDest(u"M"_s);
        storeParameter(u"7"_s, u"Least"_s, u"1000"_s);
        const QString db = path(u"sales.db"_s);
        {
            QSqlDatabase sql = QSqlDatabase::addDatabase(u"QSQLITE"_s, db);
            sql.setDatabaseName(db);
            QVERIFY(sql.open());
            QSqlQuery query(sql);
            QVERIFY(query.exec(u"CREATE TABLE archive AS SELECT * FROM sales"_s));
            QVERIFY(query.exec(u"INSERT INTO archive VALUES (7, '2024-04-01', 'South', 'Zulu', 500, 1)"_s));
            QVERIFY(
                query.exec(u"INSERT INTO archive VALUES (8, '2024-04-02', 'North', 'Yankee', 5000, 1)"_s));
        }
        QSqlDatabase::removeDatabase(db);
        writeReport(u"SELECT customer FROM {Sales} WHERE region IN ({?Region}) AND "
                    "COALESCE(amount, 0) >= {?Least} ORDER BY id"_s);
    }
    void writeReport(const QString &query)
    {
        SalesReport(QDir(appPath), u"sales.rpt"_s, query,
                    u"<parameter name=\"Region\" type=\"12\" multiple=\"true\">"
                    "<default>North</default></parameter>"
                    "<parameter name=\"Least\" type=\"7\"><default>0</default></parameter>"
                    "<layout><column field=\"customer\"/></layout>"_s);
    }
    // Writes the lines with CR LF; OUT stands for the output folder.
    QString writeLines(const QStringList &lines)
    {
        return writeFile(u"lines.txt"_s, lines.join(u"\r\n"_s).replace(u"OUT"_s, path(u"Output"_s)).toUtf8());
    }
    void runLines(const QStringList &lines)
    {
        startItem();
        RunMultiRun(run, writeLines(lines));
    }
    QString out(const QString &name) const { return path(u"Output/"_s + name); }
    QStringList entries() const
    {
        QStringList result = logEntries();
        return result.replaceInStrings(path(u"Output"_s), u"OUT"_s);
    }
    qint32 lastPages() const
    {
        clsLog saved(appPath);
        saved.Load(saved.FileName());
        return saved.CellAt(saved.Count() - 1, clsLog::ColPages).toInt();
    }
};

} // namespace

void TestMultiRun::initTestCase()
{
    // No print server: the printer list is empty.
    NoPrintServer();
}

void TestMultiRun::helpers()
{
    const QString all = u"{?Region}North{?Year}2006{$TableMap}old=new"_s;
    QCOMPARE(ValueAfterTag(u"{?Region}"_s, all), u"North"_s);
    QCOMPARE(ValueAfterTag(u"{$TableMap}"_s, all), u"old=new"_s);
    QCOMPARE(ValueAfterTag(u"{?region}"_s, all), QString());
    QCOMPARE(ValueAfterTag(u"{?Year}"_s, u"{?Year}"_s), QString());

    FixedClock clock(QDateTime(QDate(2026, 3, 31), QTime(6, 0)));
    ClockGuard guard(clock);
    MultiApp app;
    clsSchedule &schedule = app.schedule;
    QCOMPARE(ParameterValue(schedule, u" 12.5kg"_s, 7), QVariant(12.5));
    QCOMPARE(ParameterValue(schedule, u"many"_s, 8), QVariant(0.0));
    QCOMPARE(ParameterValue(schedule, u"True"_s, 9), QVariant(true));
    QCOMPARE(ParameterValue(schedule, u"Yes"_s, 9), QVariant(false));
    QCOMPARE(ParameterValue(schedule, u"2024-03-01"_s, 10).toDateTime(),
             QDateTime(QDate(2024, 3, 1), QTime(0, 0)));
    QCOMPARE(ParameterValue(schedule, QString(), 16).toDateTime().date(), QDate(2026, 3, 31));
    QCOMPARE(ParameterValue(schedule, u"North;South"_s, 12), QVariant(u"North;South"_s));
    QVERIFY(!ParameterValue(schedule, u"12:00"_s, 11).isValid());

    WriteReport(QDir(app.appPath), u"tables.rpt"_s,
                u"<title>T</title><table name=\"A\" location=\"dbo.SALES_2024\" dll=\"sqlite\"/>"
                "<table name=\"B\" location=\"orders\" dll=\"sqlite\"/><query>SELECT 1</query>"_s);
    Engine::Application engine;
    const auto report = engine.OpenReport(app.path(u"tables.rpt"_s));
    ApplyTableExpression(*report, u"sales"_s);
    QCOMPARE(report->Database().Tables().Item(1).Location(), u"dbo.SALES_2024"_s);
    ApplyTableExpression(*report, u"Sales=Archive=x"_s);
    QCOMPARE(report->Database().Tables().Item(1).Location(), u"dbo.Archive=x_2024"_s);
    QCOMPARE(report->Database().Tables().Item(2).Location(), u"orders"_s);

    QCOMPARE(PrintCopies(u"2.5"_s), qint16(2));
    QCOMPARE(PrintCopies(u"3.5"_s), qint16(4));
    QCOMPARE(PrintCopies(u"abc"_s), qint16(1));
    QCOMPARE(PrintCopies(u"-3"_s), qint16(1));
    QVERIFY_THROWS_EXCEPTION(QorloError, PrintCopies(u"40000"_s));

    // The folder is made, then emptied when used again.
    const QString folder = MultiRunFolder(app.appPath, 1);
    QCOMPARE(folder, app.path(u"Multirun/MR-00001/"_s));
    const QString stale = WriteFile(folder + u"old.csv"_s, "x");
    QCOMPARE(MultiRunFolder(app.appPath, 1), folder);
    QVERIFY(QDir(folder).exists() && !QFile::exists(stale));
}

// Comments, bad lines, parameter, "*ALL*", table map and unmatched lines to disk, a line without data or
// without a file name, and an unknown destination; then a printer line without any printer.
void TestMultiRun::diskLines()
{
    OffsetClock clock(QDateTime(QDate(2026, 3, 31), QTime(6, 0)));
    ClockGuard guard(clock);
    MultiApp app;
    app.runLines({u"// Branch figures"_s, QString(), u"   // indented"_s,
                  u"{?Region},North,South,D,CSV File,OUT/x.csv,"_s, u"//"_s,
                  u"{?Region},\"North;East\",D,CSV File,OUT/%z/%m/north.csv,ignored"_s,
                  u"*ALL*,{?Region}South{?Least}100{$TableMap}SALES=archive,Disk,CSV File,OUT/all.csv,"_s,
                  u"{?region},South,D,CSV File,OUT/lower.csv,"_s,
                  u"{$TableMap},sales=archive,D,CSV File,OUT/map.csv,"_s,
                  u"{?Region},Nowhere,D,CSV File,OUT/none.csv,"_s, u"{?Region},North,D,CSV File, ,"_s,
                  u"{?Region},North,X,CSV File,OUT/x.csv,"_s});
    QCOMPARE(app.entries(),
             (QStringList{
                 u"7|Cannot Process MultiRun Line={?Region},North,South,D,CSV File,OUT/x.csv,"_s,
                 u"7|Cannot Process MultiRun Line=//"_s,
                 u"7|Sales: Successful multirun output to OUT/2026/03/north.csv for {?Region} = North;East"_s,
                 u"7|Sales: Successful multirun output to OUT/all.csv for *ALL* = "
                 "{?Region}=South{?Least}=100{$TableMap}=SALES=archive"_s,
                 u"7|Sales: Successful multirun output to OUT/lower.csv for {?region} = South"_s,
                 u"7|Sales: Successful multirun output to OUT/map.csv for {$TableMap} = sales=archive"_s,
                 u"7|No Data in Report.  Invalid option selected="_s,
                 u"7|ERROR: (Sales) No file name specified on {?Region} = North"_s,
                 u"7|Sales: MultiRun Completed (7 reports and  3 errors)"_s}));
    // North and East from 1000 on; South from 100 on in the archive; the unmatched {?region} keeps North;
    // the table expression alone reads North from the archive.
    const QByteArray north = ReadFile(app.out(u"2026/03/north.csv"_s));
    QVERIFY(north.contains("Brien") && !north.contains("Acme") && !north.contains("Delta"));
    const QByteArray all = ReadFile(app.out(u"all.csv"_s));
    QVERIFY(all.contains("Echo") && all.contains("Zulu") && !all.contains("Bolt"));
    const QByteArray lower = ReadFile(app.out(u"lower.csv"_s));
    QVERIFY(lower.contains("Brien") && !lower.contains("Echo") && !lower.contains("Yankee"));
    const QByteArray map = ReadFile(app.out(u"map.csv"_s));
    QVERIFY(map.contains("Brien") && map.contains("Yankee") && !map.contains("Echo"));
    QVERIFY(!QFile::exists(app.out(u"none.csv"_s)) && !QFile::exists(app.out(u"x.csv"_s)));
    QCOMPARE(app.lastPages(), 4);
    QCOMPARE(app.schedule.LastReportMsg, u"MultiRun Completed (7 reports and  3 errors)"_s);
    QCOMPARE(app.schedule.LastRun().left(11), u"31-Mar-2026"_s);
    QVERIFY(QFile::exists(app.path(u"Qorlo.XML"_s)));
    QVERIFY(!app.state.report && !app.state.application && !app.state.trap.Armed());

    // The missing printer is logged as the item's result, which ends the run state of the later entries.
    MultiApp printed;
    printed.runLines({u"{?Region},North,P,CSV File,Front,2.5"_s});
    QCOMPARE(printed.entries(), (QStringList{u"7|Sales: ERROR: Could not print to Front"_s,
                                             u"|: Successful multirun print on Front for {?Region} = North"_s,
                                             u"|: MultiRun Completed (1 reports and  0 errors)"_s}));
}

// Two mail lines stage in MR-00001 and MR-00002; the line notices, the error of a bad line and the
// total go to the notice list; a missing file with ErrorTo "True" sends its error.
void TestMultiRun::mailLines()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start(), peer);
    ShortMailTimeouts(peer.port());
    MultiApp app(peer.port());
    app.schedule.SetRptSubject(u"Sales {?Region}"_s);
    app.schedule.SetNotifyTo(u"admin@example.com"_s);
    app.schedule.SetMultiRunLineSuccessTo(u"yes"_s);
    app.schedule.SetMultiRunLineSuccessMsg(u"Line done"_s);
    app.schedule.SetMultiRunLineErrorTo(u"yes"_s);
    app.schedule.SetErrorTo(u"1"_s);
    app.schedule.SetErrorMsg(u"Multi-run failed"_s);
    app.runLines({u"{?Region},North,South,E,CSV File,x,y"_s,
                  u"{?Region},North,E,CSV File,boss@example.com,Extra {?Region}"_s,
                  u"{?Region},South,B,CSV File,OUT/both.csv,branch@example.com"_s});
    QCOMPARE(app.entries(),
             (QStringList{u"7|Cannot Process MultiRun Line={?Region},North,South,E,CSV File,x,y"_s,
                          u"7|Sales: Successful multirun email to boss@example.com for {?Region} = North"_s,
                          u"7|Sales: Successful multirun output to OUT/both.csv for {?Region} = South"_s,
                          u"7|Sales: Successful multirun email to branch@example.com for {?Region} = South"_s,
                          u"7|Sales: MultiRun Completed (2 reports and  1 errors)"_s}));
    QVERIFY(QFile::exists(app.path(u"Multirun/MR-00001/sales.csv"_s)));
    QVERIFY(QFile::exists(app.path(u"Multirun/MR-00002/sales.csv"_s)));

    app.schedule.SetErrorTo(u"True"_s);
    app.startItem();
    RunMultiRun(app.run, app.path(u"none.txt"_s));

    QTRY_COMPARE_WITH_TIMEOUT(peer.messages().size(), 8, 30000);
    QStringList seen;
    for (const QString &message : peer.messages()) {
        const QJsonObject parsed = ParseMessage(message);
        const QString body = parsed.value(u"parts"_s).toArray().at(0).toObject().value(u"text"_s).toString();
        seen.append(Recipients(message).join(u';') + u" | "_s + parsed.value(u"subject"_s).toString() +
                    u" | "_s + PartNames(parsed).join(u';') + u" | "_s +
                    body.trimmed().remove(u'\r').replace(u'\n', u" / "_s));
    }
    const QString missing = app.path(u"none.txt"_s);
    // Subjects and texts pass the sender's {?Name} substitution with the values of the line's report.
    QCOMPARE(seen, (QStringList{
                       u"admin@example.com | Error Processing 7: Sales |  | "
                       "Cannot Process MultiRun Line=,North,South,E,CSV File,x,y"_s,
                       u"boss@example.com | Extra North | ;sales.csv | "_s,
                       u"admin@example.com | Completed Processing 7: Sales Multirun: North |  | Line done"_s,
                       u"admin@example.com | Completed Processing 7: Sales Multirun: South |  | Line done"_s,
                       u"branch@example.com | Sales South | ;sales.csv | "_s,
                       u"admin@example.com | Completed Processing 7: Sales Multirun: South |  | Line done"_s,
                       u"admin@example.com | Error Processing 7: Sales |  | "
                       "Multi-run failed / MultiRun Completed (2 reports and  1 errors)"_s,
                       u"admin@example.com | Error Processing 7: Sales |  | Cannot File Multirun File="_s +
                           missing}));
}

// Without a server or an address a mail line is an error of its own, logged twice.
void TestMultiRun::mailWithoutServerOrAddress()
{
    MultiApp serverless;
    serverless.schedule.SMTP_From.clear();
    serverless.runLines({u"{?Region},North,E,CSV File,boss@example.com,"_s});
    QCOMPARE(serverless.entries(), (QStringList{u"7|ERROR: No mail server or sender specified"_s,
                                                u"7|Sales: Error -  on {?Region} = North"_s,
                                                u"7|Sales: MultiRun Completed (1 reports and  1 errors)"_s}));
    QVERIFY(QFile::exists(serverless.path(u"Multirun/MR-00001/sales.csv"_s)));

    MultiApp unaddressed;
    unaddressed.runLines({u"{?Region},North,Both,CSV File,OUT/both.csv,"_s});
    QCOMPARE(
        unaddressed.entries(),
        (QStringList{u"7|Sales: Successful multirun output to OUT/both.csv for {?Region} = North"_s,
                     u"7|ERROR: No address to send email to"_s, u"7|Sales: Error -  on {?Region} = North"_s,
                     u"7|Sales: MultiRun Completed (1 reports and  1 errors)"_s}));
}

// A missing file, a missing report, a report that does not open on a comment line, and a failed read,
// which unwinds with the trap off and ends the run with an entry when an earlier run left it armed.
void TestMultiRun::runsThatEnd()
{
    MultiApp app;
    app.startItem();
    RunMultiRun(app.run, app.path(u"none.txt"_s));
    app.schedule.SetErrorTo(u"boss@example.com"_s);
    QVERIFY_THROWS_EXCEPTION(QorloError, RunMultiRun(app.run, app.path(u"none.txt"_s)));
    QCOMPARE(app.entries(), QStringList(2, u"7|Cannot File Multirun File="_s + app.path(u"none.txt"_s)));
    app.schedule.SetFile(app.path(u"gone.rpt"_s));
    app.runLines({u"{?Region},North,D,CSV File,OUT/x.csv,"_s});
    QCOMPARE(app.entries().size(), 2);
    QVERIFY(app.schedule.LastRun().isEmpty());

    MultiApp comments;
    comments.runLines({u"// only"_s, u"////"_s});
    QCOMPARE(comments.entries(), QStringList{u"7|Sales: MultiRun Completed (0 reports and  0 errors)"_s});
    WriteFile(comments.schedule.File(), "<report version=\"1\"><colum/></report>");
    comments.runLines({});
    QCOMPARE(comments.entries().size(), 2);
    QVERIFY_THROWS_EXCEPTION(QorloError, comments.runLines({u"// only"_s}));

    const QStringList failing{u"{?Region},North,D,CSV File,OUT/r.csv,"_s,
                              u"{?Region},South,D,CSV File,OUT/s.csv,"_s};
    MultiApp unread;
    unread.writeReport(u"SELEC customer FROM {Sales}"_s);
    QVERIFY_THROWS_EXCEPTION(QorloError, unread.runLines(failing));
    QVERIFY(unread.entries().isEmpty());
    unread.state.trap.Arm();
    unread.runLines(failing);
    QCOMPARE(unread.entries().size(), 1);
    QVERIFY(unread.entries().first().startsWith(u"7|Sales: ERROR: (503) "_s));
    QVERIFY(unread.entries().first().endsWith(u" for disk file OUT/r.csv"_s));
    QCOMPARE(unread.lastPages(), 503);
    QVERIFY(unread.schedule.LastRun().isEmpty() && !QFile::exists(unread.out(u"s.csv"_s)));
}

QORLO_TEST_MAIN(TestMultiRun)
#include "tst_multirun.moc"
