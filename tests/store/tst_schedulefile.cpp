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

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// The file's lines (CR LF ends each line, so the split leaves one empty tail that is dropped).
QStringList FileLines(const QString &path)
{
    QStringList lines = Ansi::Decode(ReadFile(path)).split(u"\r\n"_s);
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
        if (line == u"</ServerPrinters>"_s)
            printers = false;
        if (printers)
            continue;
        if (line == u"<ServerPrinters>"_s)
            printers = true;
        if (line.startsWith(u"<SMTPPassword>"_s))
            continue;
        out << line;
    }
    return out;
}

const QString kMultiLine = u"Line one\r\nLine two\r\n\r\nLine four"_s;
// Characters above 126: inside and at the end, in Windows-1252 (é, ñ, €) and outside it (Ω, 😀).
const QString kHigh = u"Caf\u00e9 cr\u00e8me \u20ac 5 \u2126 \u00f1"_s;
const QString kHighOutside = u"Omega \u2126 and smile \U0001F600"_s;
const QString kSpecial = u"a < b > c & \"d\" 'e' &amp; &lt; &#0065;"_s;

// The schedule of schedule_expected.XML.
void FillExpected(clsSchedule &s)
{
    s.AutoRun = true;
    s.Active = true;
    s.StartTime = u"12-Mar-2024 06:00:00"_s;
    s.SMTP_Server = u"mail.example.com"_s;
    s.SMTP_Port = 0;
    s.SMTP_StdMessage = u"Regards\r\nReports desk"_s;
    s.SMTPMethod = u"SMTP"_s;
    s.SMTPAuthentication = u"Login"_s;
    s.SMTPUser = u"reports"_s;
    s.SMTPPassword = u"secret"_s;
    s.Today_Adjust = -1;
    s.Month_Length = 28;
    s.Period_One = DayDate::FromParts(2023, 4, 1);
    s.Year_Start = DayDate::FromParts(1900, 6, 1); // year 1900: not written
    s.Text_FormatCPI = u"12"_s;
    s.Business_Week = u"NYYYYYN"_s;
    s.BusinessHour_Start = {8, 30};
    s.LastReportID = u"1"_s;
    s.LastReport = u"Daily sales"_s;
    s.LastReportDate = DayDate::FromParts(2024, 3, 10, 7, 0);
    s.LastReportMsg = u"Successful email to boss@example.com"_s;

    s.AddNew();
    s.SetName(u"Daily sales"_s);
    s.SetFile(u"/r/sales.rpt"_s);
    s.SetSchedule(u"Y"_s);
    s.SetFrequency(u"Day(s)"_s);
    s.SetFreqTimes(u"1"_s);
    s.SetDest(u"E"_s);
    s.SetOutputFormat(u"Acrobat File"_s);
    s.SetEmail(u"boss@example.com"_s);
    s.SetNextRun(u"11-Mar-2024 07:00"_s);
    s.SetLastRun(u"10-Mar-2024 07:00"_s);
    s.SetNoRecords(u"No report is sent"_s);
    s.SetEMailAttach(u"Attached"_s);
    s.SetRptSubject(u"Sales & costs"_s);
    s.SetRptMessage(u"Hello\r\nWorld"_s);
    s.SetNotifyTo(u"admin@example.com"_s);
    s.SetPageCount(4); // never stored
    s.SetField(clsSchedule::colPrinterCopies, u"0"_s);

    s.AddNew();
    s.SetFile(u"/r/stock.rpt"_s);
    s.SetSchedule(u"C"_s);
    s.SetFrequency(u"W"_s);
    s.SetFreqTimes(u"1"_s);
    s.SetDest(u"P"_s);
    s.SetPrinter(u"PeerPDFFile"_s);
    s.SetPrinterCopies(2);
    s.SetPrinterOrient(u"Landscape"_s);
    s.SetGroup(u"Stock"_s);
    s.SetSelFormula(u"{Stock.Qty} < 10"_s);
    s.SetReportDescription(u"Low stock\r\nby warehouse"_s);
    s.SetRetainData(u"Yes"_s);
    s.SetMailAttach(u"/a/one.pdf\r\n/a/two.pdf"_s);

    s.AddNew();
    s.SetName(u"Month end"_s);
    s.SetFile(u"COLLECTION"_s);
    s.SetSchedule(u"Y"_s);
    s.SetFrequency(u"Month(s)"_s);
    s.SetFreqTimes(u"1"_s);
    s.SetNextRun(u"31-Mar-2024 22:00"_s);
    s.SetCollectionName(u"Month end"_s);

    s.ParmUpdate(u"1"_s, u"{?Region}"_s, u"12"_s, u"North"_s, u"Which region?"_s);
    s.ParmUpdate(u"9"_s, u"{?Gone}"_s, u"12"_s, u"x"_s, QString());
    s.ParmRemove(u"9"_s); // blank rows are skipped
    s.ParmUpdate(u"3"_s, u"{?Region}"_s, u"12"_s, u"South"_s, QString());

    for (const char *item : {"2", "1"}) {
        s.NewCollectionItem();
        s.SetCollectionID(u"3"_s);
        s.SetCollectionItem(QString::fromLatin1(item));
    }
    s.NewCollectionItem(); // no CollectionID: not written
    s.SetCollectionItem(u"2"_s);

    s.SaveDomain(0, u"example.com"_s);
    s.SaveDomain(7, u"example.org"_s);
}

// Every column and setting filled, with the awkward characters.
void FillEverything(clsSchedule &s)
{
    s.Application = u"QorloMANAGER"_s;
    s.SMTP_Server = u"smtp.example.com"_s;
    s.SMTP_From = u"Reports <reports@example.com>"_s;
    s.SMTP_Port = 2525;
    s.SMTP_StdMessage = kMultiLine + u"\r\n"_s + kHigh;
    s.SMTPDelay = 7;
    s.SMTPMethod = u"SMTP"_s;
    s.SMTPApplication = u"Qorlo"_s;
    s.SMTPAuthentication = u"Login"_s;
    s.SMTPUser = u"us\u00e9r"_s;
    s.SMTPPassword = u"Secr3t P\u00e4ssw\u00f6rd"_s;
    s.SMTP_Encryption = u"STARTTLS"_s;
    s.TestMessageTo = u"test@example.com"_s;
    s.Excel_Format = u"Excel 8"_s;
    s.Text_FormatCPI = u"12"_s;
    s.Text_FormatPage = u"66"_s;
    s.Crystal_Format = u"Crystal 9"_s;
    s.Active = true;
    s.AutoRun = true;
    s.LastReportID = u"2"_s;
    s.LastReport = u"Stock & more"_s;
    s.LastReportDate = DayDate::FromParts(2024, 2, 29, 23, 59);
    s.LastReportMsg = u"Error - \u00e9chec"_s;
    s.Business_Week = u"NYYYYYN"_s;
    s.Business_Month = u"First"_s;
    s.Holiday_List = u"/cal/h\u00f6liday.lst"_s;
    s.BusinessHour_Start = {7, 5};
    s.BusinessHour_End = {18, 45};
    s.BusinessHour_Schedule = 3;
    s.Today_Adjust = -2;
    s.Week_Start = 2;
    s.Month_Length = 31;
    s.Period_One = DayDate::FromParts(2023, 4, 1, 6, 30);
    s.Year_Start = DayDate::FromParts(2024, 1, 1);
    s.StartTime = u"12-Mar-2024 06:00:00"_s;
    s.StopTime = u"13-Mar-2024 18:00:00"_s;
    // Written, never read back.
    s.BackupDate = DayDate::FromParts(2030, 1, 1, 3, 0);
    s.BackupFrequency = u"Weekly"_s;
    s.BackupPrevious = u"01-Mar-2024 03:00"_s;
    s.BackupPreviousFile = u"/app/Backup/Qorlo20240301.xml"_s;
    s.BackupPurge = 12;
    s.BackupLastPurge = u"x"_s;
    s.BackupManualDate = u"y"_s;
    s.BackupManualFile = u"z"_s;

    for (int item = 0; item < 3; ++item) {
        s.AddNew();
        for (int column = 1; column < 41; ++column) {
            QString value;
            switch (column) {
            case clsSchedule::colPrinterCopies: value = QString::number(item + 1); break;
            case clsSchedule::colPageCount: continue;
            case clsSchedule::colRptMessage:
            case clsSchedule::colNotifyMsg:
            case clsSchedule::colReportDescription: value = kMultiLine + QString::number(item); break;
            case clsSchedule::colErrorMsg: value = kHigh; break;
            case clsSchedule::colMultiRunLineSuccessMsg: value = kHighOutside; break;
            case clsSchedule::colMultiRunLineErrorMsg: value = kSpecial + u"\r\n"_s + kHigh; break;
            case clsSchedule::colMailAttach: value = u"/a/1.pdf\r\n/a/2.pdf"_s; break;
            case clsSchedule::colSelFormula: value = kSpecial; break;
            case clsSchedule::colName: value = kHigh + QString::number(item); break;
            case clsSchedule::colRptSubject: value = kHighOutside; break;
            case clsSchedule::colNextRun: value = u"1%1-Mar-2024 08:00"_s.arg(item); break;
            default: value = clsSchedule::ColumnTag(column) + u" \u00e8 "_s + QString::number(item);
            }
            s.SetField(column, value);
        }
    }
    for (int p = 0; p < 5; ++p) {
        s.ParmAddNew();
        s.SetParmReportID(QString::number(p % 3 + 1));
        s.SetParmName(u"{?P%1}"_s.arg(p));
        s.SetParmValueType(u"12"_s);
        s.SetParmValue(p == 0 ? kSpecial : kHigh);
    }
    s.NewCollectionItem();
    s.SetCollectionID(u"1"_s);
    s.SetCollectionItem(u"2"_s);
    s.NewCollectionItem();
    s.SetCollectionID(u"1"_s);
    s.SetCollectionItem(u"3"_s);
    for (int d = 0; d < 10; d += 3)
        s.SaveDomain(d, u"d%1.example.com"_s.arg(d));
}

} // namespace

class TestScheduleFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir.emplace();
        QVERIFY(m_dir->isValid());
    }
    void saveMatchesExpectedFile();
    void roundTripEverything();
    void notReadBack();
    void saveRules();
    void handWrittenFile();
    void remoteMerge();
    void commandsAtCursor();
    void badTags();
    void truncatedFile();
    void binaryGarbage();
    void missingFile();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    // The file of FillEverything, saved as Qorlo.XML.
    QByteArray SaveEverything() const
    {
        clsSchedule full(m_dir->path());
        FillEverything(full);
        full.Save(path(u"Qorlo.XML"_s));
        return ReadFile(path(u"Qorlo.XML"_s));
    }

    FixedClock m_clock{QDateTime(QDate(2024, 3, 10), QTime(14, 30))};
    ClockGuard m_guard{m_clock};
    std::optional<QTemporaryDir> m_dir;
};

void TestScheduleFile::saveMatchesExpectedFile()
{
    clsSchedule s(m_dir->path());
    FillExpected(s);
    s.SetPosition(1);
    s.Save(path(u"Qorlo.XML"_s));
    QCOMPARE(s.Position(), 1); // the cursor is kept

    QStringList lines = FileLines(path(u"Qorlo.XML"_s));
    QVERIFY(lines.size() > 8);
    QCOMPARE(lines.at(0), u"<?xml version=\"1.0\" encoding=\"utf-8\"?>"_s);
    QVERIFY(lines.at(6).startsWith(u"<!-- File "_s + path(u"Qorlo.XML"_s)));
    QVERIFY(lines.at(6).contains(u"10-Mar-2024"_s));
    QStringList body = Stable(lines.mid(7));
    const QStringList expected = Stable(FileLines(DataFile(u"store/schedule_expected.XML"_s)));
    for (qsizetype i = 0; i < qMin(body.size(), expected.size()); ++i)
        QCOMPARE(body.at(i), expected.at(i));
    QCOMPARE(body.size(), expected.size());

    QCOMPARE(clsSchedule::ApplicationVersion(), u"10.0 (1)"_s);

    // Owner-only.
    const QFileDevice::Permissions perms = QFileInfo(path(u"Qorlo.XML"_s)).permissions();
    QVERIFY(perms & QFileDevice::ReadOwner);
    QVERIFY(!(perms & (QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::WriteGroup |
                       QFileDevice::WriteOther)));
}

void TestScheduleFile::roundTripEverything()
{
    clsSchedule first(m_dir->path());
    FillEverything(first);
    const QString fileA = path(u"A.XML"_s);
    const QString fileB = path(u"B.XML"_s);
    first.Save(fileA);

    clsSchedule second(m_dir->path());
    second.Load(fileA);

    // Every column except PageCount; what else is read back shows in the file saved again.
    QCOMPARE(second.Count(), first.Count());
    for (int row = 0; row < first.Count(); ++row) {
        for (int column = 0; column < 41; ++column) {
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
        const qsizetype close = a.at(i).indexOf(u'>');
        differing << (i == 6 ? u"header line 7"_s : a.at(i).left(close + 1));
    }
    const QStringList allowed{
        u"header line 7"_s,     u"<SMTPPassword>"_s,     u"<LastReportID>"_s,       u"<BackupDate>"_s,
        u"<BackupFrequency>"_s, u"<BackupPrevious>"_s,   u"<BackupPreviousFile>"_s, u"<BackupPurge>"_s,
        u"<BackupLastPurge>"_s, u"<BackupManualDate>"_s, u"<BackupManualFile>"_s,
    };
    for (const QString &tag : differing)
        QVERIFY2(allowed.contains(tag), qPrintable(tag));
    QVERIFY(differing.contains(u"<BackupFrequency>"_s));
    QVERIFY(differing.contains(u"<LastReportID>"_s));

    // The password's noise differs from save to save; its text does not.
    clsSchedule third(m_dir->path());
    third.Load(fileB);
    QCOMPARE(third.SMTPPassword, first.SMTPPassword);
}

void TestScheduleFile::notReadBack()
{
    clsSchedule s(m_dir->path());
    s.BackupDate = DayDate::FromParts(2030, 1, 1);
    s.BackupFrequency = u"Weekly"_s;
    s.BackupPurge = 9;
    s.BackupPrevious = u"p"_s;
    s.BackupPreviousFile = u"pf"_s;
    s.BackupLastPurge = u"lp"_s;
    s.BackupManualDate = u"md"_s;
    s.BackupManualFile = u"mf"_s;
    s.LastReportID = u"5"_s;
    s.LastReport = u"x"_s;
    s.LastReportDate = DayDate::FromParts(2024, 1, 1);
    s.PrinterNames = [] { return QStringList{u"Office"_s, u"Hall & Stairs"_s}; };
    s.Save(path(u"Qorlo.XML"_s));
    const QByteArray bytes = ReadFile(path(u"Qorlo.XML"_s));
    QVERIFY(bytes.contains("<BackupFrequency>Weekly</BackupFrequency>"));
    QVERIFY(bytes.contains("<BackupDate>01-Jan-2030 00:00</BackupDate>"));
    QVERIFY(bytes.contains("<LastReportID>5</LastReportID>"));
    QVERIFY(bytes.contains("<ServerPrinters>\r\n<MyPrinter>Office</MyPrinter>\r\n"
                           "<MyPrinter>Hall &amp; Stairs</MyPrinter>\r\n</ServerPrinters>\r\n"));

    clsSchedule back(m_dir->path());
    back.Load(path(u"Qorlo.XML"_s));
    QCOMPARE(back.BackupDate, DayDate::FromParts(2024, 3, 9, 14, 30));
    QCOMPARE(back.BackupFrequency, u"Daily"_s);
    QCOMPARE(back.BackupPurge, qint16(30));
    for (const QString &notRead : {back.BackupPrevious, back.BackupPreviousFile, back.BackupLastPurge,
                                   back.BackupManualDate, back.BackupManualFile, back.LastReportID})
        QCOMPARE(notRead, QString());
    QCOMPARE(back.LastReport, u"x"_s);
    QCOMPARE(back.LastReportDate, DayDate::FromParts(2024, 1, 1));

    // AutoRun False has no element: a file can turn it on, not off.
    QVERIFY(!bytes.contains("<AutoRun>"));
    back.AutoRun = true;
    back.Load(path(u"Qorlo.XML"_s));
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
    s.LastReportID = u"4"_s;
    s.AddNew();
    s.SetName(kHigh);
    s.SetRptSubject(kHighOutside);
    s.Save(path(u"Qorlo.XML"_s));
    QByteArray bytes = ReadFile(path(u"Qorlo.XML"_s));
    // Characters above 126 are references, but for a last one that Windows-1252 holds.
    for (const char *written :
         {"<ReportName>Caf&#0233; cr&#0232;me &#0128; 5 &#8486; \xF1</ReportName>\r\n",
          "<Report-Subject>Omega &#8486; and smile &#128512;</Report-Subject>\r\n", "<SMTP-Port></SMTP-Port>",
          "<SMTPDelay></SMTPDelay>", "<Year-Start>01-Jan-1901 00:00</Year-Start>",
          "<Report_Parameters>\r\n</Report_Parameters>\r\n", "<DefaultDomains>\r\n</DefaultDomains>\r\n",
          "<Schedule_State>Stopped</Schedule_State>"})
        QVERIFY2(bytes.contains(written), written);
    for (const char *left : {"<Period-One>", "<LastReportID>", "<SMTP-Server>", "<SMTP-From>",
                             "<TestMessageTo>", "<SMTP-Encryption>", "<Collections>"})
        QVERIFY2(!bytes.contains(left), left);

    // SMTP-Port 0 reads as 0; SMTPDelay empty keeps the reader's default.
    clsSchedule back(m_dir->path());
    back.Load(path(u"Qorlo.XML"_s));
    QCOMPARE(back.SMTP_Port, 0);
    QCOMPARE(back.SMTPDelay, qint16(2));
    QCOMPARE(back.Year_Start, DayDate::FromParts(1901, 1, 1));

    // A LastReport without a date writes the original's zero date, which reads back.
    s.LastReport = u"r"_s;
    s.LastReportDate = 0;
    s.Save(path(u"Qorlo.XML"_s));
    QVERIFY(ReadFile(path(u"Qorlo.XML"_s)).contains("<LastReportDate>30-Dec-1899 00:00</LastReportDate>"));
    clsSchedule zero(m_dir->path());
    zero.Load(path(u"Qorlo.XML"_s));
    QCOMPARE(zero.LastReportDate, 0.0);

    // SaveSuspended: nothing happens.
    s.SaveSuspended = true;
    s.Save(path(u"other.XML"_s));
    QVERIFY(!QFile::exists(path(u"other.XML"_s)));

    // A path that can't be written leaves nothing behind and raises nothing.
    s.SaveSuspended = false;
    s.Save(path(u"no/such/folder/Qorlo.XML"_s));
    QVERIFY(!QFile::exists(path(u"no/such/folder/Qorlo.XML"_s)));
}

void TestScheduleFile::handWrittenFile()
{
    clsSchedule s(m_dir->path());
    s.Load(DataFile(u"store/schedule_handwritten.XML"_s));
    QCOMPARE(s.Count(), 2);
    s.SetPosition(0);
    QCOMPARE(s.ReportID(), u"7"_s);
    QCOMPARE(s.Name(), u"Weekly"_s);
    QCOMPARE(s.File(), u"/r/weekly.rpt"_s);
    QCOMPARE(s.NextRun(), u"next Tuesday"_s); // kept as text
    // The second <ReportID>7 continued the first row.
    QCOMPARE(s.Frequency(), u"Week(s)"_s);
    QCOMPARE(s.FreqTimes(), u"2"_s);
    // Continuation lines of a long element are taken undecoded.
    QCOMPARE(s.ReportDescription(), u"First line\r\nsecond line &amp; more"_s);
    s.SetPosition(1);
    QCOMPARE(s.ReportID(), u"3"_s);
    QCOMPARE(s.Name(), u"Daily"_s);
    QCOMPARE(s.Frequency(), u"Day(s)"_s);
    QCOMPARE(s.Field(clsSchedule::colPrinterCopies), u"3"_s);
    // The NextRun that is no date doesn't count.
    QCOMPARE(s.ActiveCount(), 1);

    QCOMPARE(s.ParmCount(), 1);
    s.ParmLocate(0);
    QCOMPARE(s.ParmReportID(), u"3"_s);
    QCOMPARE(s.ParmName(), u"{?Limit}"_s);
    QCOMPARE(s.ParmValueType(), u"7"_s);
    QCOMPARE(s.ParmValue(), u"x < y"_s);

    QCOMPARE(s.SMTP_Server, u"mail.example.com"_s); // leading blanks trimmed
    QCOMPARE(s.Active, true);
    QCOMPARE(s.SMTP_Port, 0); // the tag with an attribute is another tag; the empty one reads 0
    QCOMPARE(s.SMTPDelay, qint16(2));
    QCOMPARE(s.Text_FormatCPI, QString());
    QCOMPARE(s.Text_FormatPage, u"66"_s);
    QCOMPARE(s.BusinessHour_Start, (clsSchedule::HourMinute{9, 0}));
    QCOMPARE(s.BusinessHour_End, (clsSchedule::HourMinute{16, 45}));
    QCOMPARE(s.Week_Start, qint16(0));
    QCOMPARE(s.Month_Length, qint16(30));
    QCOMPARE(s.BackupFrequency, u"Daily"_s);
    QCOMPARE(s.BackupPurge, qint16(30));
    QCOMPARE(s.LastReportID, QString());
    QCOMPARE(s.Domain(2), u"example.net"_s);
    QCOMPARE(s.AutoRun, false);
}

void TestScheduleFile::remoteMerge()
{
    clsSchedule s(m_dir->path());
    FillExpected(s);
    s.Save(path(u"Qorlo.XML"_s));
    clsSchedule live(m_dir->path());
    live.Load(path(u"Qorlo.XML"_s));
    QCOMPARE(live.Count(), 3);
    QCOMPARE(live.AutoRun, true);
    live.AutoRun = false;

    const QString folder = path(u"drop"_s);
    QDir(m_dir->path()).mkpath(u"drop"_s);
    for (const char *name : {"one.rpt", "two.rpt", "skip.txt"})
        WriteFile(folder + u'/' + QString::fromLatin1(name), {});
    QByteArray remote = ReadFile(DataFile(u"store/schedule_remote.xml"_s));
    remote.replace("@FOLDER@", QFile::encodeName(folder));
    WriteFile(path(u"Remote.xml"_s), remote);
    live.Load(path(u"Remote.xml"_s));

    // 1 deleted; 2 changed; 50 added with its own ID; 51 by LoadNewFile; 52, 53 from the folder.
    QCOMPARE(live.Count(), 6);
    QVERIFY(!live.Confirm(u"1"_s));
    live.Find(u"2"_s);
    QCOMPARE(live.Position(), 0);
    QCOMPARE(live.Name(), u"Renamed by remote"_s);
    QCOMPARE(live.Printer(), u"PeerPDFFile"_s); // not named: kept
    QCOMPARE(live.PrinterCopies(), qint16(2));
    live.Find(u"50"_s);
    QCOMPARE(live.Position(), 2);
    QCOMPARE(live.Name(), u"Added by remote"_s);
    QCOMPARE(live.File(), u"/r/remote.rpt"_s);
    QCOMPARE(live.NextRun(), u"01-Apr-2024 09:00"_s);
    live.Find(u"51"_s);
    QCOMPARE(live.Position(), 3);
    QCOMPARE(live.File(), u"/r/folder/loaded.rpt"_s);
    QCOMPARE(live.Name(), u"loaded.rpt"_s);
    QCOMPARE(live.Schedule(), u"N"_s);
    QCOMPARE(live.FreqTimes(), u"1"_s);
    QCOMPARE(live.Frequency(), u"W"_s);
    QStringList added;
    for (int row = 4; row < 6; ++row) {
        live.SetPosition(row);
        QCOMPARE(live.ReportID(), QString::number(row + 48));
        QCOMPARE(live.File(), folder + u'/' + live.Name());
        QCOMPARE(live.Frequency(), u"W"_s);
        added << live.Name();
    }
    added.sort();
    QCOMPARE(added, (QStringList{u"one.rpt"_s, u"two.rpt"_s}));

    // Parameters: item 1's row blanked, the new one added, the others kept.
    QCOMPARE(live.ParmCount(), 3);
    QCOMPARE(live.ParmCell(0, clsSchedule::parmReportID), QString());
    QCOMPARE(live.ParmCell(1, clsSchedule::parmValue), u"South"_s);
    QCOMPARE(live.ParmCell(2, clsSchedule::parmReportID), u"50"_s);
    QCOMPARE(live.ParmCell(2, clsSchedule::parmName), u"{?Region}"_s);
    QCOMPARE(live.ParmCell(2, clsSchedule::parmValueType), u"12"_s);
    QCOMPARE(live.ParmCell(2, clsSchedule::parmValue), u"East"_s);

    // Settings: named ones change, AutoRun goes on whatever the value, the rest stays.
    QCOMPARE(live.Active, false);
    QCOMPARE(live.AutoRun, true);
    QCOMPARE(live.SMTP_Server, u"mail.example.com"_s);
    QCOMPARE(live.Domain(7), u"example.org"_s);
    // Collection rows stay (the one without a CollectionID wasn't saved); a deleted member reads "Missing".
    QCOMPARE(live.CollectionCount(), 2);
    live.SetCollectionPosition(1);
    QCOMPARE(live.CollectionItem(), u"1"_s);
    QCOMPARE(live.CollectionReport(), u"Missing"_s);

    // A remote document with the same parameter again adds a second row of that name.
    live.Load(path(u"Remote.xml"_s));
    QCOMPARE(live.ParmCount(), 4);
}

void TestScheduleFile::commandsAtCursor()
{
    clsSchedule s(m_dir->path());
    QString line = u"<LoadNewFile>/r/x.rpt</LoadNewFile>"_s;
    s.ReadTags(line);
    QCOMPARE(s.Count(), 1);
    // Item tags outside a Load act on the cursor; a long element without a file takes its first line.
    line = u"  <Report-Message>Hi&#0013;&#0010;there"_s;
    s.ReadTags(line);
    QCOMPARE(s.RptMessage(), u"Hi\r\nthere"_s);
    QCOMPARE(line, u"<Report-Message>Hi\r\nthere"_s); // trimmed and decoded in place
    line = u"<DeleteReportID>1</DeleteReportID>"_s;
    s.ReadTags(line);
    QCOMPARE(s.Count(), 0);
    QCOMPARE(s.Position(), 0); // the Find of the command, not adjusted by Delete
    line = u"<Collection>"_s;
    s.ReadTags(line);
    QCOMPARE(s.CollectionCount(), 1);
    line = u"<CollectionItem>4</CollectionItem>"_s;
    s.ReadTags(line);
    QCOMPARE(s.CollectionItem(), u"4"_s);
    // Parameter tags before any <Parameter> line fill row 0, which the next <Parameter> then counts.
    clsSchedule fresh(m_dir->path());
    line = u"<ParameterName>x</ParameterName>"_s;
    fresh.ReadTags(line);
    QCOMPARE(fresh.ParmCount(), 0);
    line = u"<Parameter>"_s;
    fresh.ReadTags(line);
    QCOMPARE(fresh.ParmCount(), 1);
    QCOMPARE(fresh.ParmName(), u"x"_s);
}

// An item tag before the first ReportID stops the load with error 9, a date tag that is no date with 13;
// settings before the first item are fine.
void TestScheduleFile::badTags()
{
    const struct
    {
        const char *text;
        int error;
    } files[] = {
        {"<Schedule>\r\n<Report_Schedule>\r\n<Report>\r\n<ReportName>x</ReportName>\r\n<ReportID>1</"
         "ReportID>\r\n",
         9},
        {"<Notify-Msg>x\r\n</Notify-Msg>\r\n", 9}, // a long element
        {"<SMTP-Server>m</SMTP-Server>\r\n", 0},
        {"<Period-One>soon</Period-One>\r\n", 13},
        {"<Year-Start></Year-Start>\r\n", 13},
        {"<LastReportDate>31-Feb-2024 10:00</LastReportDate>\r\n", 13},
    };
    for (const auto &file : files) {
        clsSchedule s(m_dir->path());
        WriteFile(path(u"bad.XML"_s), file.text);
        const int error = ErrorOf([&] { s.Load(path(u"bad.XML"_s)); });
        QVERIFY2(error == file.error, qPrintable(u"%1: error %2"_s.arg(QLatin1String(file.text)).arg(error)));
        QCOMPARE(s.Count(), 0);
    }
    clsSchedule s(m_dir->path());
    WriteFile(path(u"date.XML"_s),
              "<Period-One>2023-04-01</Period-One>\r\n<Year-Start>1-jan-2024 6:05</Year-Start>\r\n");
    s.Load(path(u"date.XML"_s));
    QCOMPARE(s.Period_One, DayDate::FromParts(2023, 4, 1));
    QCOMPARE(s.Year_Start, DayDate::FromParts(2024, 1, 1, 6, 5));
}

void TestScheduleFile::truncatedFile()
{
    const QByteArray bytes = SaveEverything();
    const qsizetype items = bytes.indexOf("<Report_Schedule>");
    QVERIFY(items > 0);
    // Cut anywhere after the settings: the file reads as far as its lines go.
    int cuts = 0;
    for (qsizetype cut = items; cut < bytes.size(); cut += 11) {
        WriteFile(path(u"cut.XML"_s), bytes.left(cut));
        clsSchedule s(m_dir->path());
        const int error = ErrorOf([&] { s.Load(path(u"cut.XML"_s)); });
        QVERIFY2(error == 0, qPrintable(u"cut at %1: error %2"_s.arg(cut).arg(error)));
        QVERIFY(s.Count() <= 3);
        QCOMPARE(s.SMTP_Server, u"smtp.example.com"_s);
        ++cuts;
    }
    QVERIFY(cuts > 100);
    // Cut in the middle of a long element: its text runs to the end of the file.
    const qsizetype message = bytes.indexOf("<Report-Message>");
    WriteFile(path(u"cut.XML"_s), bytes.left(message + 20));
    clsSchedule s(m_dir->path());
    s.Load(path(u"cut.XML"_s));
    QCOMPARE(s.Count(), 1);
    QCOMPARE(s.RptMessage(), u"Line"_s);
    // A cut inside the settings too, as long as no date or number is cut in half.
    const qsizetype smtp = bytes.indexOf("<SMTPMethod>");
    WriteFile(path(u"cut.XML"_s), bytes.left(smtp + 3));
    clsSchedule t(m_dir->path());
    t.Load(path(u"cut.XML"_s));
    QCOMPARE(t.Count(), 0);
    QCOMPARE(t.SMTP_Port, 2525);
}

void TestScheduleFile::binaryGarbage()
{
    QRandomGenerator random(RandomSeed());
    for (int round = 0; round < 20; ++round) {
        WriteFile(path(u"garbage.XML"_s), RandomBytes(32 * 1024));
        clsSchedule s(m_dir->path());
        QCOMPARE(ErrorOf([&] { s.Load(path(u"garbage.XML"_s)); }), 0);
    }
    // A good file with garbage in the middle of its items and after its end.
    const QByteArray bytes = SaveEverything();
    // Damage starts after the first <ReportID>: an item tag before it is an error.
    const qsizetype items = bytes.indexOf("</ReportID>") + 12;
    for (int round = 0; round < 50; ++round) {
        QByteArray damaged = bytes;
        for (int i = 0; i < 40; ++i) {
            const qsizetype at = items + random.bounded(int(damaged.size() - items));
            damaged[at] = char(random.bounded(256));
        }
        damaged += QByteArray("\0\0\xff\xfe<ReportName>\r\n&#12", 21);
        WriteFile(path(u"damaged.XML"_s), damaged);
        clsSchedule s(m_dir->path());
        const int error = ErrorOf([&] { s.Load(path(u"damaged.XML"_s)); });
        QVERIFY2(error == 0, qPrintable(u"round %1: error %2"_s.arg(round).arg(error)));
        QVERIFY(s.Count() >= 1);
        // What was understood saves and reads again.
        s.Save(path(u"resaved.XML"_s));
        clsSchedule again(m_dir->path());
        again.Load(path(u"resaved.XML"_s));
        QCOMPARE(again.Count(), s.Count());
    }
}

void TestScheduleFile::missingFile()
{
    clsSchedule s(m_dir->path());
    s.Load(path(u"nothing.XML"_s));
    s.Load(QString());
    s.Load(m_dir->path()); // a folder reads as no lines
    QCOMPARE(s.Count(), 0);
    QCOMPARE(s.SMTPDelay, qint16(2));
}

QORLO_TEST_MAIN(TestScheduleFile)
#include "tst_schedulefile.moc"
