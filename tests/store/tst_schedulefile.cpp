// The schedule file Qorlo.XML: Save, Load, ReadTags, merging and bad input.
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "core/Ansi.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "core/XMLCode.h"
#include "store/clsSchedule.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace TestSupport;

namespace {

// The file's lines (CR LF ends each line, so the split leaves one empty tail that is dropped).
QStringList FileLines(const QString &path)
{
    QStringList lines = Ansi::Decode(ReadFile(path)).split(QStringLiteral("\r\n"));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// Drops the lines of the file that depend on the machine or on chance: the printers between
// <ServerPrinters> and </ServerPrinters>, and the scrambled password.
QStringList Stable(QStringList lines)
{
    QStringList out;
    bool printers = false;
    for (const QString &line : lines) {
        if (line == QLatin1String("</ServerPrinters>"))
            printers = false;
        if (printers)
            continue;
        if (line == QLatin1String("<ServerPrinters>"))
            printers = true;
        if (line.startsWith(QLatin1String("<SMTPPassword>")))
            continue;
        out << line;
    }
    return out;
}

const QString kMultiLine = QStringLiteral("Line one\r\nLine two\r\n\r\nLine four");
// Characters above 126: inside and at the end, in Windows-1252 (é, ñ, €) and outside it (Ω, 😀).
const QString kHigh = QStringLiteral("Caf\u00e9 cr\u00e8me \u20ac 5 \u2126 \u00f1");
const QString kHighOutside = QStringLiteral("Omega \u2126 and smile \U0001F600");
const QString kSpecial = QStringLiteral("a < b > c & \"d\" 'e' &amp; &lt; &#0065;");

// The schedule of schedule_expected.XML.
void FillExpected(clsSchedule &s)
{
    s.AutoRun = true;
    s.Active = true;
    s.StartTime = QStringLiteral("12-Mar-2024 06:00:00");
    s.SMTP_Server = QStringLiteral("mail.example.com");
    s.SMTP_Port = 0;
    s.SMTP_StdMessage = QStringLiteral("Regards\r\nReports desk");
    s.SMTPMethod = QStringLiteral("SMTP");
    s.SMTPAuthentication = QStringLiteral("Login");
    s.SMTPUser = QStringLiteral("reports");
    s.SMTPPassword = QStringLiteral("secret");
    s.Today_Adjust = -1;
    s.Month_Length = 28;
    s.Period_One = DayDate::FromParts(2023, 4, 1);
    s.Year_Start = DayDate::FromParts(1900, 6, 1); // year 1900: not written
    s.Text_FormatCPI = QStringLiteral("12");
    s.Business_Week = QStringLiteral("NYYYYYN");
    s.BusinessHour_Start = {8, 30};
    s.LastReportID = QStringLiteral("1");
    s.LastReport = QStringLiteral("Daily sales");
    s.LastReportDate = DayDate::FromParts(2024, 3, 10, 7, 0);
    s.LastReportMsg = QStringLiteral("Successful email to boss@example.com");

    s.AddNew();
    s.SetName(QStringLiteral("Daily sales"));
    s.SetFile(QStringLiteral("/r/sales.rpt"));
    s.SetSchedule(QStringLiteral("Y"));
    s.SetFrequency(QStringLiteral("Day(s)"));
    s.SetFreqTimes(QStringLiteral("1"));
    s.SetDest(QStringLiteral("E"));
    s.SetOutputFormat(QStringLiteral("Acrobat File"));
    s.SetEmail(QStringLiteral("boss@example.com"));
    s.SetNextRun(QStringLiteral("11-Mar-2024 07:00"));
    s.SetLastRun(QStringLiteral("10-Mar-2024 07:00"));
    s.SetNoRecords(QStringLiteral("No report is sent"));
    s.SetEMailAttach(QStringLiteral("Attached"));
    s.SetRptSubject(QStringLiteral("Sales & costs"));
    s.SetRptMessage(QStringLiteral("Hello\r\nWorld"));
    s.SetNotifyTo(QStringLiteral("admin@example.com"));
    s.SetPageCount(4); // never stored
    s.SetField(clsSchedule::colPrinterCopies, QStringLiteral("0"));

    s.AddNew();
    s.SetFile(QStringLiteral("/r/stock.rpt"));
    s.SetSchedule(QStringLiteral("C"));
    s.SetFrequency(QStringLiteral("W"));
    s.SetFreqTimes(QStringLiteral("1"));
    s.SetDest(QStringLiteral("P"));
    s.SetPrinter(QStringLiteral("PeerPDFFile"));
    s.SetPrinterCopies(2);
    s.SetPrinterOrient(QStringLiteral("Landscape"));
    s.SetGroup(QStringLiteral("Stock"));
    s.SetSelFormula(QStringLiteral("{Stock.Qty} < 10"));
    s.SetReportDescription(QStringLiteral("Low stock\r\nby warehouse"));
    s.SetRetainData(QStringLiteral("Yes"));
    s.SetMailAttach(QStringLiteral("/a/one.pdf\r\n/a/two.pdf"));

    s.AddNew();
    s.SetName(QStringLiteral("Month end"));
    s.SetFile(QStringLiteral("COLLECTION"));
    s.SetSchedule(QStringLiteral("Y"));
    s.SetFrequency(QStringLiteral("Month(s)"));
    s.SetFreqTimes(QStringLiteral("1"));
    s.SetNextRun(QStringLiteral("31-Mar-2024 22:00"));
    s.SetCollectionName(QStringLiteral("Month end"));

    s.ParmUpdate(QStringLiteral("1"), QStringLiteral("{?Region}"), QStringLiteral("12"),
                 QStringLiteral("North"), QStringLiteral("Which region?"));
    s.ParmUpdate(QStringLiteral("9"), QStringLiteral("{?Gone}"), QStringLiteral("12"), QStringLiteral("x"),
                 QString());
    s.ParmRemove(QStringLiteral("9")); // blank rows are skipped
    s.ParmUpdate(QStringLiteral("3"), QStringLiteral("{?Region}"), QStringLiteral("12"),
                 QStringLiteral("South"), QString());

    for (const char *item : {"2", "1"}) {
        s.NewCollectionItem();
        s.SetCollectionID(QStringLiteral("3"));
        s.SetCollectionItem(QString::fromLatin1(item));
    }
    s.NewCollectionItem(); // no CollectionID: not written
    s.SetCollectionItem(QStringLiteral("2"));

    s.SaveDomain(0, QStringLiteral("example.com"));
    s.SaveDomain(7, QStringLiteral("example.org"));
}

// Every column and setting filled, with the awkward characters.
void FillEverything(clsSchedule &s)
{
    s.Application = QStringLiteral("QorloMANAGER");
    s.SMTP_Server = QStringLiteral("smtp.example.com");
    s.SMTP_From = QStringLiteral("Reports <reports@example.com>");
    s.SMTP_Port = 2525;
    s.SMTP_StdMessage = kMultiLine + QStringLiteral("\r\n") + kHigh;
    s.SMTPDelay = 7;
    s.SMTPMethod = QStringLiteral("SMTP");
    s.SMTPApplication = QStringLiteral("Qorlo");
    s.SMTPAuthentication = QStringLiteral("Login");
    s.SMTPUser = QStringLiteral("us\u00e9r");
    s.SMTPPassword = QStringLiteral("Secr3t P\u00e4ssw\u00f6rd");
    s.SMTP_Encryption = QStringLiteral("STARTTLS");
    s.TestMessageTo = QStringLiteral("test@example.com");
    s.Excel_Format = QStringLiteral("Excel 8");
    s.Text_FormatCPI = QStringLiteral("12");
    s.Text_FormatPage = QStringLiteral("66");
    s.Crystal_Format = QStringLiteral("Crystal 9");
    s.Active = true;
    s.AutoRun = true;
    s.LastReportID = QStringLiteral("2");
    s.LastReport = QStringLiteral("Stock & more");
    s.LastReportDate = DayDate::FromParts(2024, 2, 29, 23, 59);
    s.LastReportMsg = QStringLiteral("Error - \u00e9chec");
    s.Business_Week = QStringLiteral("NYYYYYN");
    s.Business_Month = QStringLiteral("First");
    s.Holiday_List = QStringLiteral("/cal/h\u00f6liday.lst");
    s.BusinessHour_Start = {7, 5};
    s.BusinessHour_End = {18, 45};
    s.BusinessHour_Schedule = 3;
    s.Today_Adjust = -2;
    s.Week_Start = 2;
    s.Month_Length = 31;
    s.Period_One = DayDate::FromParts(2023, 4, 1, 6, 30);
    s.Year_Start = DayDate::FromParts(2024, 1, 1);
    s.StartTime = QStringLiteral("12-Mar-2024 06:00:00");
    s.StopTime = QStringLiteral("13-Mar-2024 18:00:00");
    // Written, never read back.
    s.BackupDate = DayDate::FromParts(2030, 1, 1, 3, 0);
    s.BackupFrequency = QStringLiteral("Weekly");
    s.BackupPrevious = QStringLiteral("01-Mar-2024 03:00");
    s.BackupPreviousFile = QStringLiteral("/app/Backup/Qorlo20240301.xml");
    s.BackupPurge = 12;
    s.BackupLastPurge = QStringLiteral("x");
    s.BackupManualDate = QStringLiteral("y");
    s.BackupManualFile = QStringLiteral("z");

    for (int item = 0; item < 3; ++item) {
        s.AddNew();
        for (int column = 1; column < clsSchedule::ItemColumnCount; ++column) {
            QString value;
            switch (column) {
            case clsSchedule::colPrinterCopies: value = QString::number(item + 1); break;
            case clsSchedule::colPageCount: continue;
            case clsSchedule::colRptMessage:
            case clsSchedule::colNotifyMsg:
            case clsSchedule::colReportDescription: value = kMultiLine + QString::number(item); break;
            case clsSchedule::colErrorMsg: value = kHigh; break;
            case clsSchedule::colMultiRunLineSuccessMsg: value = kHighOutside; break;
            case clsSchedule::colMultiRunLineErrorMsg:
                value = kSpecial + QStringLiteral("\r\n") + kHigh;
                break;
            case clsSchedule::colMailAttach: value = QStringLiteral("/a/1.pdf\r\n/a/2.pdf"); break;
            case clsSchedule::colSelFormula: value = kSpecial; break;
            case clsSchedule::colName: value = kHigh + QString::number(item); break;
            case clsSchedule::colRptSubject: value = kHighOutside; break;
            case clsSchedule::colNextRun: value = QStringLiteral("1%1-Mar-2024 08:00").arg(item); break;
            default:
                value = clsSchedule::ColumnTag(column) + QStringLiteral(" \u00e8 ") + QString::number(item);
            }
            s.SetField(column, value);
        }
    }
    for (int p = 0; p < 5; ++p) {
        s.ParmAddNew();
        s.SetParmReportID(QString::number(p % 3 + 1));
        s.SetParmName(QStringLiteral("{?P%1}").arg(p));
        s.SetParmValueType(QStringLiteral("12"));
        s.SetParmValue(p == 0 ? kSpecial : kHigh);
    }
    s.NewCollectionItem();
    s.SetCollectionID(QStringLiteral("1"));
    s.SetCollectionItem(QStringLiteral("2"));
    s.NewCollectionItem();
    s.SetCollectionID(QStringLiteral("1"));
    s.SetCollectionItem(QStringLiteral("3"));
    for (int d = 0; d < 10; d += 3)
        s.SaveDomain(d, QStringLiteral("d%1.example.com").arg(d));
}

} // namespace

class TestScheduleFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void saveMatchesExpectedFile();
    void roundTripEverything();
    void rawFileForm();
    void notReadBack();
    void saveRules();
    void handWrittenFile();
    void remoteMerge();
    void commandsAtCursor();
    void itemTagBeforeReportID();
    void dateTagThatIsNoDate();
    void truncatedFile();
    void binaryGarbage();
    void missingFile();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString &name) const { return m_dir->filePath(name); }
};

void TestScheduleFile::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void TestScheduleFile::cleanup()
{
    m_dir.reset();
}

void TestScheduleFile::saveMatchesExpectedFile()
{
    FixedClock clock(QDateTime(QDate(2024, 3, 10), QTime(14, 30)));
    ClockGuard guard(clock);
    clsSchedule s(m_dir->path());
    FillExpected(s);
    s.SetPosition(1);
    s.Save(path(QStringLiteral("Qorlo.XML")));
    QCOMPARE(s.Position(), 1); // the cursor is kept

    QStringList lines = FileLines(path(QStringLiteral("Qorlo.XML")));
    QVERIFY(lines.size() > 8);
    QCOMPARE(lines.at(0), QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>"));
    QVERIFY(lines.at(6).startsWith(QStringLiteral("<!-- File ") + path(QStringLiteral("Qorlo.XML"))));
    QVERIFY(lines.at(6).contains(QStringLiteral("10-Mar-2024")));
    QStringList body = Stable(lines.mid(7));
    const QStringList expected = Stable(FileLines(DataFile(QStringLiteral("store/schedule_expected.XML"))));
    for (qsizetype i = 0; i < qMin(body.size(), expected.size()); ++i)
        QCOMPARE(body.at(i), expected.at(i));
    QCOMPARE(body.size(), expected.size());

    QCOMPARE(clsSchedule::ApplicationVersion(), QStringLiteral("10.0 (1)"));

    // Owner-only.
    const QFileDevice::Permissions perms = QFileInfo(path(QStringLiteral("Qorlo.XML"))).permissions();
    QVERIFY(perms & QFileDevice::ReadOwner);
    QVERIFY(!(perms & (QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::WriteGroup |
                       QFileDevice::WriteOther)));
}

void TestScheduleFile::roundTripEverything()
{
    clsSchedule first(m_dir->path());
    FillEverything(first);
    const QString fileA = path(QStringLiteral("a/Qorlo.XML"));
    const QString fileB = path(QStringLiteral("b/Qorlo.XML"));
    QDir(m_dir->path()).mkpath(QStringLiteral("a"));
    QDir(m_dir->path()).mkpath(QStringLiteral("b"));
    first.Save(fileA);

    clsSchedule second(m_dir->path());
    second.Load(fileA);

    // Every column except PageCount; what else is read back shows in the file saved again.
    QCOMPARE(second.Count(), first.Count());
    for (int row = 0; row < first.Count(); ++row) {
        for (int column = 0; column < clsSchedule::ItemColumnCount; ++column) {
            if (column == clsSchedule::colPageCount)
                continue;
            QCOMPARE(second.Cell(row, column), first.Cell(row, column));
        }
    }
    // Saved again: the same file but for the header's date line and what isn't read back.
    second.Save(fileB);
    const QStringList a = FileLines(fileA);
    const QStringList b = FileLines(fileB);
    QCOMPARE(a.size(), b.size());
    QStringList differing;
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (a.at(i) == b.at(i))
            continue;
        const qsizetype close = a.at(i).indexOf(QLatin1Char('>'));
        differing << (i == 6 ? QStringLiteral("header line 7") : a.at(i).left(close + 1));
    }
    const QStringList allowed{
        QStringLiteral("header line 7"),        QStringLiteral("<SMTPPassword>"),
        QStringLiteral("<LastReportID>"),       QStringLiteral("<BackupDate>"),
        QStringLiteral("<BackupFrequency>"),    QStringLiteral("<BackupPrevious>"),
        QStringLiteral("<BackupPreviousFile>"), QStringLiteral("<BackupPurge>"),
        QStringLiteral("<BackupLastPurge>"),    QStringLiteral("<BackupManualDate>"),
        QStringLiteral("<BackupManualFile>"),
    };
    for (const QString &tag : differing)
        QVERIFY2(allowed.contains(tag), qPrintable(tag));
    QVERIFY(differing.contains(QStringLiteral("<BackupFrequency>")));
    QVERIFY(differing.contains(QStringLiteral("<LastReportID>")));

    // The password's noise differs from save to save; its text does not.
    clsSchedule third(m_dir->path());
    third.Load(fileB);
    QCOMPARE(third.SMTPPassword, first.SMTPPassword);
}

void TestScheduleFile::rawFileForm()
{
    clsSchedule s(m_dir->path());
    s.AddNew();
    s.SetName(kHigh);
    s.SetRptMessage(kMultiLine);
    s.SetSelFormula(kSpecial);
    s.SetRptSubject(kHighOutside);
    s.SetGroup(QStringLiteral("Gr\u00fc\u00dfe \u20ac"));
    s.Save(path(QStringLiteral("Qorlo.XML")));
    const QByteArray bytes = ReadFile(path(QStringLiteral("Qorlo.XML")));
    // CR LF everywhere, no lone LF.
    QCOMPARE(bytes.count("\r\n"), bytes.count('\n'));
    // é inside becomes a reference with four digits; ñ at the very end stays a raw byte.
    QVERIFY(bytes.contains("<ReportName>Caf&#0233; cr&#0232;me &#0128; 5 &#8486; \xF1</ReportName>\r\n"));
    QVERIFY(bytes.contains("<ReportGroup>Gr&#0252;&#0223;e \x80</ReportGroup>\r\n"));
    // Outside the code page even the last character is a reference.
    QVERIFY(bytes.contains("<Report-Subject>Omega &#8486; and smile &#128512;</Report-Subject>\r\n"));
    QVERIFY(bytes.contains("<ReportSelectionFormula>a &lt; b &gt; c &amp; &quot;d&quot; &apos;e&apos; "
                           "&amp;amp; &amp;lt; &amp;#0065;</ReportSelectionFormula>\r\n"));
    QVERIFY(bytes.contains("<Report-Message>Line one&#0013;&#0010;Line two&#0013;&#0010;&#0013;&#0010;"
                           "Line four\r\n</Report-Message>\r\n"));
    QVERIFY(bytes.endsWith("</DefaultDomains>\r\n</Schedule>\r\n"));

    clsSchedule back(m_dir->path());
    back.Load(path(QStringLiteral("Qorlo.XML")));
    back.SetPosition(0);
    QCOMPARE(back.Name(), kHigh);
    QCOMPARE(back.RptMessage(), kMultiLine);
    QCOMPARE(back.SelFormula(), kSpecial);
    QCOMPARE(back.RptSubject(), kHighOutside);
    QCOMPARE(back.Group(), QStringLiteral("Gr\u00fc\u00dfe \u20ac"));
}

void TestScheduleFile::notReadBack()
{
    FixedClock clock(QDateTime(QDate(2024, 3, 10), QTime(14, 30)));
    ClockGuard guard(clock);
    clsSchedule s(m_dir->path());
    s.BackupDate = DayDate::FromParts(2030, 1, 1);
    s.BackupFrequency = QStringLiteral("Weekly");
    s.BackupPurge = 9;
    s.BackupPrevious = QStringLiteral("p");
    s.BackupPreviousFile = QStringLiteral("pf");
    s.BackupLastPurge = QStringLiteral("lp");
    s.BackupManualDate = QStringLiteral("md");
    s.BackupManualFile = QStringLiteral("mf");
    s.LastReportID = QStringLiteral("5");
    s.LastReport = QStringLiteral("x");
    s.LastReportDate = DayDate::FromParts(2024, 1, 1);
    s.Save(path(QStringLiteral("Qorlo.XML")));
    const QByteArray bytes = ReadFile(path(QStringLiteral("Qorlo.XML")));
    QVERIFY(bytes.contains("<BackupFrequency>Weekly</BackupFrequency>"));
    QVERIFY(bytes.contains("<BackupDate>01-Jan-2030 00:00</BackupDate>"));
    QVERIFY(bytes.contains("<LastReportID>5</LastReportID>"));
    QVERIFY(bytes.contains("<ServerPrinters>\r\n"));

    clsSchedule back(m_dir->path());
    back.Load(path(QStringLiteral("Qorlo.XML")));
    QCOMPARE(back.BackupDate, DayDate::FromParts(2024, 3, 9, 14, 30));
    QCOMPARE(back.BackupFrequency, QStringLiteral("Daily"));
    QCOMPARE(back.BackupPurge, qint16(30));
    QCOMPARE(back.BackupPrevious, QString());
    QCOMPARE(back.BackupPreviousFile, QString());
    QCOMPARE(back.BackupLastPurge, QString());
    QCOMPARE(back.BackupManualDate, QString());
    QCOMPARE(back.BackupManualFile, QString());
    QCOMPARE(back.LastReportID, QString());
    QCOMPARE(back.LastReport, QStringLiteral("x"));
    QCOMPARE(back.LastReportDate, DayDate::FromParts(2024, 1, 1));

    // AutoRun False has no element: a file can turn it on, not off.
    QVERIFY(!bytes.contains("<AutoRun>"));
    back.AutoRun = true;
    back.Load(path(QStringLiteral("Qorlo.XML")));
    QCOMPARE(back.AutoRun, true);
}

void TestScheduleFile::saveRules()
{
    clsSchedule s(m_dir->path());
    s.SMTP_Port = 0;
    s.SMTPDelay = 0;
    s.Period_One = 0;
    s.Year_Start = DayDate::FromParts(1901, 1, 1);
    s.LastReport = QString(); // no LastReport group
    s.LastReportID = QStringLiteral("4");
    s.Save(path(QStringLiteral("Qorlo.XML")));
    QByteArray bytes = ReadFile(path(QStringLiteral("Qorlo.XML")));
    QVERIFY(bytes.contains("<SMTP-Port></SMTP-Port>"));
    QVERIFY(bytes.contains("<SMTPDelay></SMTPDelay>"));
    QVERIFY(!bytes.contains("<Period-One>"));
    QVERIFY(bytes.contains("<Year-Start>01-Jan-1901 00:00</Year-Start>"));
    QVERIFY(!bytes.contains("<LastReportID>"));
    QVERIFY(!bytes.contains("<SMTP-Server>"));
    QVERIFY(!bytes.contains("<SMTP-From>"));
    QVERIFY(!bytes.contains("<TestMessageTo>"));
    QVERIFY(!bytes.contains("<SMTP-Encryption>"));
    QVERIFY(!bytes.contains("<Collections>"));
    QVERIFY(bytes.contains("<Report_Parameters>\r\n</Report_Parameters>\r\n"));
    QVERIFY(bytes.contains("<DefaultDomains>\r\n</DefaultDomains>\r\n"));
    QVERIFY(bytes.contains("<Schedule_State>Stopped</Schedule_State>"));

    // SMTP-Port 0 reads as 0; SMTPDelay empty keeps the reader's default.
    clsSchedule back(m_dir->path());
    back.Load(path(QStringLiteral("Qorlo.XML")));
    QCOMPARE(back.SMTP_Port, 0);
    QCOMPARE(back.SMTPDelay, qint16(2));
    QCOMPARE(back.Year_Start, DayDate::FromParts(1901, 1, 1));

    // A LastReport without a date writes the original's zero date, which reads back.
    s.LastReport = QStringLiteral("r");
    s.LastReportDate = 0;
    s.Save(path(QStringLiteral("Qorlo.XML")));
    QVERIFY(ReadFile(path(QStringLiteral("Qorlo.XML")))
                .contains("<LastReportDate>30-Dec-1899 00:00</LastReportDate>"));
    clsSchedule zero(m_dir->path());
    zero.Load(path(QStringLiteral("Qorlo.XML")));
    QCOMPARE(zero.LastReportDate, 0.0);

    // SaveSuspended: nothing happens.
    s.SaveSuspended = true;
    s.Save(path(QStringLiteral("other.XML")));
    QVERIFY(!QFile::exists(path(QStringLiteral("other.XML"))));

    // A path that can't be written leaves nothing behind and raises nothing.
    s.SaveSuspended = false;
    s.Save(path(QStringLiteral("no/such/folder/Qorlo.XML")));
    QVERIFY(!QFile::exists(path(QStringLiteral("no/such/folder/Qorlo.XML"))));
}

void TestScheduleFile::handWrittenFile()
{
    clsSchedule s(m_dir->path());
    s.Load(DataFile(QStringLiteral("store/schedule_handwritten.XML")));
    QCOMPARE(s.Count(), 2);
    s.SetPosition(0);
    QCOMPARE(s.ReportID(), QStringLiteral("7"));
    QCOMPARE(s.Name(), QStringLiteral("Weekly"));
    QCOMPARE(s.File(), QStringLiteral("/r/weekly.rpt"));
    QCOMPARE(s.NextRun(), QStringLiteral("next Tuesday")); // kept as text
    // The second <ReportID>7 continued the first row.
    QCOMPARE(s.Frequency(), QStringLiteral("Week(s)"));
    QCOMPARE(s.FreqTimes(), QStringLiteral("2"));
    // Continuation lines of a long element are taken undecoded.
    QCOMPARE(s.ReportDescription(), QStringLiteral("First line\r\nsecond line &amp; more"));
    s.SetPosition(1);
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
    QCOMPARE(s.Name(), QStringLiteral("Daily"));
    QCOMPARE(s.Frequency(), QStringLiteral("Day(s)"));
    QCOMPARE(s.Field(clsSchedule::colPrinterCopies), QStringLiteral("3"));
    // The NextRun that is no date doesn't count.
    QCOMPARE(s.ActiveCount(), 1);

    QCOMPARE(s.ParmCount(), 1);
    s.ParmLocate(0);
    QCOMPARE(s.ParmReportID(), QStringLiteral("3"));
    QCOMPARE(s.ParmName(), QStringLiteral("{?Limit}"));
    QCOMPARE(s.ParmValueType(), QStringLiteral("7"));
    QCOMPARE(s.ParmValue(), QStringLiteral("x < y"));

    QCOMPARE(s.SMTP_Server, QStringLiteral("mail.example.com")); // leading blanks trimmed
    QCOMPARE(s.Active, true);
    QCOMPARE(s.SMTP_Port, 0); // the tag with an attribute is another tag; the empty one reads 0
    QCOMPARE(s.SMTPDelay, qint16(2));
    QCOMPARE(s.Text_FormatCPI, QString());
    QCOMPARE(s.Text_FormatPage, QStringLiteral("66"));
    QCOMPARE(s.BusinessHour_Start, (clsSchedule::HourMinute{9, 0}));
    QCOMPARE(s.BusinessHour_End, (clsSchedule::HourMinute{16, 45}));
    QCOMPARE(s.Week_Start, qint16(0));
    QCOMPARE(s.Month_Length, qint16(30));
    QCOMPARE(s.BackupFrequency, QStringLiteral("Daily"));
    QCOMPARE(s.BackupPurge, qint16(30));
    QCOMPARE(s.LastReportID, QString());
    QCOMPARE(s.Domain(2), QStringLiteral("example.net"));
    QCOMPARE(s.AutoRun, false);
}

void TestScheduleFile::remoteMerge()
{
    FixedClock clock(QDateTime(QDate(2024, 3, 10), QTime(14, 30)));
    ClockGuard guard(clock);
    clsSchedule s(m_dir->path());
    FillExpected(s);
    s.Save(path(QStringLiteral("Qorlo.XML")));
    clsSchedule live(m_dir->path());
    live.Load(path(QStringLiteral("Qorlo.XML")));
    QCOMPARE(live.Count(), 3);
    QCOMPARE(live.AutoRun, true);
    live.AutoRun = false;

    const QString folder = path(QStringLiteral("drop"));
    QDir(m_dir->path()).mkpath(QStringLiteral("drop"));
    for (const char *name : {"one.rpt", "two.rpt", "skip.txt"}) {
        QFile f(folder + QLatin1Char('/') + QString::fromLatin1(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
    QByteArray remote = ReadFile(DataFile(QStringLiteral("store/schedule_remote.xml")));
    remote.replace("@FOLDER@", QFile::encodeName(folder));
    WriteFile(path(QStringLiteral("Remote.xml")), remote);
    live.Load(path(QStringLiteral("Remote.xml")));

    // 1 deleted; 2 changed; 50 added with its own ID; 51 by LoadNewFile; 52, 53 from the folder.
    QCOMPARE(live.Count(), 6);
    QVERIFY(!live.Confirm(QStringLiteral("1")));
    live.Find(QStringLiteral("2"));
    QCOMPARE(live.Position(), 0);
    QCOMPARE(live.Name(), QStringLiteral("Renamed by remote"));
    QCOMPARE(live.Printer(), QStringLiteral("PeerPDFFile")); // not named: kept
    QCOMPARE(live.PrinterCopies(), qint16(2));
    live.Find(QStringLiteral("50"));
    QCOMPARE(live.Position(), 2);
    QCOMPARE(live.Name(), QStringLiteral("Added by remote"));
    QCOMPARE(live.File(), QStringLiteral("/r/remote.rpt"));
    QCOMPARE(live.NextRun(), QStringLiteral("01-Apr-2024 09:00"));
    live.Find(QStringLiteral("51"));
    QCOMPARE(live.Position(), 3);
    QCOMPARE(live.File(), QStringLiteral("/r/folder/loaded.rpt"));
    QCOMPARE(live.Name(), QStringLiteral("loaded.rpt"));
    QCOMPARE(live.Schedule(), QStringLiteral("N"));
    QCOMPARE(live.FreqTimes(), QStringLiteral("1"));
    QCOMPARE(live.Frequency(), QStringLiteral("W"));
    QStringList added;
    for (int row = 4; row < 6; ++row) {
        live.SetPosition(row);
        QCOMPARE(live.ReportID(), QString::number(row + 48));
        QCOMPARE(live.File(), folder + QLatin1Char('/') + live.Name());
        QCOMPARE(live.Frequency(), QStringLiteral("W"));
        added << live.Name();
    }
    added.sort();
    QCOMPARE(added, (QStringList{QStringLiteral("one.rpt"), QStringLiteral("two.rpt")}));

    // Parameters: item 1's row blanked, the new one added, the others kept.
    QCOMPARE(live.ParmCount(), 3);
    QCOMPARE(live.ParmCell(0, clsSchedule::parmReportID), QString());
    QCOMPARE(live.ParmCell(1, clsSchedule::parmValue), QStringLiteral("South"));
    QCOMPARE(live.ParmCell(2, clsSchedule::parmReportID), QStringLiteral("50"));
    QCOMPARE(live.ParmCell(2, clsSchedule::parmName), QStringLiteral("{?Region}"));
    QCOMPARE(live.ParmCell(2, clsSchedule::parmValueType), QStringLiteral("12"));
    QCOMPARE(live.ParmCell(2, clsSchedule::parmValue), QStringLiteral("East"));

    // Settings: named ones change, AutoRun goes on whatever the value, the rest stays.
    QCOMPARE(live.Active, false);
    QCOMPARE(live.AutoRun, true);
    QCOMPARE(live.SMTP_Server, QStringLiteral("mail.example.com"));
    QCOMPARE(live.Domain(7), QStringLiteral("example.org"));
    // Collection rows stay (the one without a CollectionID wasn't saved); a deleted member reads "Missing".
    QCOMPARE(live.CollectionCount(), 2);
    live.SetCollectionPosition(1);
    QCOMPARE(live.CollectionItem(), QStringLiteral("1"));
    QCOMPARE(live.CollectionReport(), QStringLiteral("Missing"));

    // A remote document with the same parameter again adds a second row of that name.
    live.Load(path(QStringLiteral("Remote.xml")));
    QCOMPARE(live.ParmCount(), 4);
}

void TestScheduleFile::commandsAtCursor()
{
    clsSchedule s(m_dir->path());
    QString line = QStringLiteral("<LoadNewFile>/r/x.rpt</LoadNewFile>");
    s.ReadTags(line);
    QCOMPARE(s.Count(), 1);
    // Item tags outside a Load act on the cursor; a long element without a file takes its first line.
    line = QStringLiteral("  <Report-Message>Hi&#0013;&#0010;there");
    s.ReadTags(line);
    QCOMPARE(s.RptMessage(), QStringLiteral("Hi\r\nthere"));
    QCOMPARE(line, QStringLiteral("<Report-Message>Hi\r\nthere")); // trimmed and decoded in place
    line = QStringLiteral("<DeleteReportID>1</DeleteReportID>");
    s.ReadTags(line);
    QCOMPARE(s.Count(), 0);
    QCOMPARE(s.Position(), 0); // the Find of the command, not adjusted by Delete
    line = QStringLiteral("<Collection>");
    s.ReadTags(line);
    QCOMPARE(s.CollectionCount(), 1);
    line = QStringLiteral("<CollectionItem>4</CollectionItem>");
    s.ReadTags(line);
    QCOMPARE(s.CollectionItem(), QStringLiteral("4"));
    // Parameter tags before any <Parameter> line fill row 0, which the next <Parameter> then counts.
    clsSchedule fresh(m_dir->path());
    line = QStringLiteral("<ParameterName>x</ParameterName>");
    fresh.ReadTags(line);
    QCOMPARE(fresh.ParmCount(), 0);
    line = QStringLiteral("<Parameter>");
    fresh.ReadTags(line);
    QCOMPARE(fresh.ParmCount(), 1);
    QCOMPARE(fresh.ParmName(), QStringLiteral("x"));
}

void TestScheduleFile::itemTagBeforeReportID()
{
    WriteFile(path(QStringLiteral("early.XML")),
              "<Schedule>\r\n<Report_Schedule>\r\n<Report>\r\n<ReportName>x</ReportName>\r\n"
              "<ReportID>1</ReportID>\r\n");
    clsSchedule s(m_dir->path());
    QCOMPARE(ErrorOf([&] { s.Load(path(QStringLiteral("early.XML"))); }), 9);
    QCOMPARE(s.Count(), 0);
    // A long element before any ReportID fails the same way.
    WriteFile(path(QStringLiteral("early2.XML")), "<Notify-Msg>x\r\n</Notify-Msg>\r\n");
    QCOMPARE(ErrorOf([&] { s.Load(path(QStringLiteral("early2.XML"))); }), 9);
    // Settings before the first item are fine.
    WriteFile(path(QStringLiteral("early3.XML")), "<SMTP-Server>m</SMTP-Server>\r\n");
    QCOMPARE(ErrorOf([&] { s.Load(path(QStringLiteral("early3.XML"))); }), 0);
}

void TestScheduleFile::dateTagThatIsNoDate()
{
    clsSchedule s(m_dir->path());
    for (const char *text : {"<Period-One>soon</Period-One>\r\n", "<Year-Start></Year-Start>\r\n",
                             "<LastReportDate>31-Feb-2024 10:00</LastReportDate>\r\n"}) {
        WriteFile(path(QStringLiteral("date.XML")), text);
        QCOMPARE(ErrorOf([&] { s.Load(path(QStringLiteral("date.XML"))); }), 13);
    }
    WriteFile(path(QStringLiteral("date.XML")),
              "<Period-One>2023-04-01</Period-One>\r\n<Year-Start>1-jan-2024 6:05</Year-Start>\r\n");
    s.Load(path(QStringLiteral("date.XML")));
    QCOMPARE(s.Period_One, DayDate::FromParts(2023, 4, 1));
    QCOMPARE(s.Year_Start, DayDate::FromParts(2024, 1, 1, 6, 5));
}

void TestScheduleFile::truncatedFile()
{
    clsSchedule full(m_dir->path());
    FillEverything(full);
    full.Save(path(QStringLiteral("Qorlo.XML")));
    const QByteArray bytes = ReadFile(path(QStringLiteral("Qorlo.XML")));
    const qsizetype items = bytes.indexOf("<Report_Schedule>");
    QVERIFY(items > 0);
    // Cut anywhere after the settings: the file reads as far as its lines go.
    int cuts = 0;
    for (qsizetype cut = items; cut < bytes.size(); cut += 11) {
        WriteFile(path(QStringLiteral("cut.XML")), bytes.left(cut));
        clsSchedule s(m_dir->path());
        const int error = ErrorOf([&] { s.Load(path(QStringLiteral("cut.XML"))); });
        QVERIFY2(error == 0, qPrintable(QStringLiteral("cut at %1: error %2").arg(cut).arg(error)));
        QVERIFY(s.Count() <= 3);
        QCOMPARE(s.SMTP_Server, full.SMTP_Server);
        ++cuts;
    }
    QVERIFY(cuts > 100);
    // Cut in the middle of a long element: its text runs to the end of the file.
    const qsizetype message = bytes.indexOf("<Report-Message>");
    WriteFile(path(QStringLiteral("cut.XML")), bytes.left(message + 20));
    clsSchedule s(m_dir->path());
    s.Load(path(QStringLiteral("cut.XML")));
    QCOMPARE(s.Count(), 1);
    QCOMPARE(s.RptMessage(), QStringLiteral("Line"));
    // A cut inside the settings too, as long as no date or number is cut in half.
    const qsizetype smtp = bytes.indexOf("<SMTPMethod>");
    WriteFile(path(QStringLiteral("cut.XML")), bytes.left(smtp + 3));
    clsSchedule t(m_dir->path());
    t.Load(path(QStringLiteral("cut.XML")));
    QCOMPARE(t.Count(), 0);
    QCOMPARE(t.SMTP_Port, 2525);
}

void TestScheduleFile::binaryGarbage()
{
    QRandomGenerator random(RandomSeed());
    for (int round = 0; round < 20; ++round) {
        QByteArray garbage(32 * 1024, Qt::Uninitialized);
        for (char &c : garbage)
            c = char(random.bounded(256));
        WriteFile(path(QStringLiteral("garbage.XML")), garbage);
        clsSchedule s(m_dir->path());
        QCOMPARE(ErrorOf([&] { s.Load(path(QStringLiteral("garbage.XML"))); }), 0);
    }
    // A good file with garbage in the middle of its items and after its end.
    clsSchedule full(m_dir->path());
    FillEverything(full);
    full.Save(path(QStringLiteral("Qorlo.XML")));
    const QByteArray bytes = ReadFile(path(QStringLiteral("Qorlo.XML")));
    // Damage starts after the first <ReportID>: an item tag before it is an error.
    const qsizetype items = bytes.indexOf("</ReportID>") + 12;
    for (int round = 0; round < 50; ++round) {
        QByteArray damaged = bytes;
        for (int i = 0; i < 40; ++i) {
            const qsizetype at = items + random.bounded(int(damaged.size() - items));
            damaged[at] = char(random.bounded(256));
        }
        damaged += QByteArray("\0\0\xff\xfe<ReportName>\r\n&#12", 21);
        WriteFile(path(QStringLiteral("damaged.XML")), damaged);
        clsSchedule s(m_dir->path());
        const int error = ErrorOf([&] { s.Load(path(QStringLiteral("damaged.XML"))); });
        QVERIFY2(error == 0, qPrintable(QStringLiteral("round %1: error %2").arg(round).arg(error)));
        QVERIFY(s.Count() >= 1);
        // What was understood saves and reads again.
        s.Save(path(QStringLiteral("resaved.XML")));
        clsSchedule again(m_dir->path());
        again.Load(path(QStringLiteral("resaved.XML")));
        QCOMPARE(again.Count(), s.Count());
    }
}

void TestScheduleFile::missingFile()
{
    clsSchedule s(m_dir->path());
    s.Load(path(QStringLiteral("nothing.XML")));
    s.Load(QString());
    s.Load(m_dir->path()); // a folder reads as no lines
    QCOMPARE(s.Count(), 0);
    QCOMPARE(s.SMTPDelay, qint16(2));
}

QORLO_TEST_MAIN(TestScheduleFile)
#include "tst_schedulefile.moc"
