// The schedule model clsSchedule: cursor, columns, tables, bulk edit, parameters, collections.
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "store/clsSchedule.h"

#include <QDir>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using TestSupport::ErrorOf;

namespace {

// Adds an item with the given name and returns its ReportID.
QString AddItem(clsSchedule &s, const QString &name)
{
    s.AddNew();
    s.SetName(name);
    s.SetFile(u"/reports/"_s + name + u".rpt"_s);
    return s.ReportID();
}

} // namespace

class TestSchedule : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void defaults();
    void cursorMinusOne();
    void positionFindConfirm();
    void addNewAndIds();
    void duplicateAndDelete();
    void tableLimits();
    void columnsAndDerivedProperties();
    void printerCopiesAndPageCount();
    void sortIndexMoves();
    void addFolder();
    void activeCountAndClear();
    void bulkEdit();
    void notifyEmailList();
    void parameters();
    void collections();
    void domains();
};

void TestSchedule::defaults()
{
    FixedClock clock(QDateTime(QDate(2024, 3, 10), QTime(14, 30)));
    ClockGuard guard(clock);
    clsSchedule s(u"/app"_s);
    QCOMPARE(s.AppPath, u"/app"_s);
    QCOMPARE(s.FileName, u"/app/Qorlo.XML"_s);
    QCOMPARE(s.SMTPDelay, qint16(2));
    QCOMPARE(s.SMTP_Port, 25);
    QCOMPARE(s.BusinessHour_Start, (clsSchedule::HourMinute{9, 0}));
    QCOMPARE(s.BusinessHour_End, (clsSchedule::HourMinute{17, 0}));
    QCOMPARE(s.BusinessHour_Schedule, qint16(0));
    QCOMPARE(s.Holiday_List, u"holiday.lst"_s);
    QCOMPARE(s.AutoRun, false);
    QCOMPARE(s.Active, false);
    QCOMPARE(s.BackupFrequency, u"Daily"_s);
    QCOMPARE(s.BackupPurge, qint16(30));
    const double now = DayDate::FromParts(2024, 3, 10, 14, 30);
    QCOMPARE(s.StartedAt, now);
    QCOMPARE(s.BackupDate, now - 1);
    QCOMPARE(s.Period_One, 0.0);
    QCOMPARE(s.Year_Start, 0.0);
    QCOMPARE(s.LastReportDate, 0.0);
    QCOMPARE(s.SMTP_Encryption, u"None"_s);
    QCOMPARE(s.SaveSuspended, false);
    QCOMPARE(s.Count(), 0);
    QCOMPARE(s.Position(), -1);
    QCOMPARE(s.NoMatch(), true);
    QCOMPARE(s.Found(), false);
    QCOMPARE(s.ParmCount(), 0);
    QCOMPARE(s.CollectionCount(), 0);
}

void TestSchedule::cursorMinusOne()
{
    clsSchedule s(u"/app"_s);
    AddItem(s, u"First"_s);
    AddItem(s, u"Second"_s);
    s.Find(u"99"_s);
    QCOMPARE(s.Position(), -1);
    QVERIFY(s.NoMatch());
    QVERIFY(!s.Found());
    QCOMPARE(s.ReportID(), QString());
    QCOMPARE(s.File(), QString());
    QCOMPARE(ErrorOf([&] { s.Frequency(); }), 9);
    QCOMPARE(ErrorOf([&] { s.SetFrequency(u"D"_s); }), 9);
    QCOMPARE(ErrorOf([&] { s.SetReportID(u"5"_s); }), 9);
    QCOMPARE(ErrorOf([&] { s.PrinterCopies(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Location(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Dest(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Duplicate(); }), 9);
    QCOMPARE(ErrorOf([&] { s.SetPageCount(3); }), 0); // does nothing
    QCOMPARE(ErrorOf([&] { s.PageCount(); }), 9);
    // Reading Name at -1 puts the cursor on row 0.
    QCOMPARE(s.Name(), u"First"_s);
    QCOMPARE(s.Position(), 0);
    QCOMPARE(s.ReportID(), u"1"_s);

    // With an empty table row 0 is blank: its name is empty.
    clsSchedule empty(u"/app"_s);
    QCOMPARE(empty.Name(), QString());
    QCOMPARE(empty.Position(), 0);
}

void TestSchedule::positionFindConfirm()
{
    clsSchedule s(u"/app"_s);
    AddItem(s, u"A"_s);
    AddItem(s, u"B"_s);
    AddItem(s, u"C"_s);
    s.SetPosition(1);
    QCOMPARE(s.Position(), 1);
    QVERIFY(!s.NoMatch());
    s.SetPosition(3);
    QCOMPARE(s.Position(), -1);
    QVERIFY(s.NoMatch());
    s.SetPosition(-5);
    QCOMPARE(s.Position(), -1);

    s.Find(u"3"_s);
    QCOMPARE(s.Position(), 2);
    QVERIFY(s.Found());
    QVERIFY(!s.NoMatch());
    // Confirm leaves cursor and flags alone.
    QVERIFY(s.Confirm(u"1"_s));
    QVERIFY(!s.Confirm(u"7"_s));
    QCOMPARE(s.Position(), 2);
    QVERIFY(s.Found());
    // Exact text: " 1" and "01" are other IDs.
    QVERIFY(!s.Confirm(u"01"_s));
    // A changed ID is found under its new text only.
    s.SetReportID(u"30"_s);
    QVERIFY(!s.Confirm(u"3"_s));
    s.Find(u"30"_s);
    QCOMPARE(s.Position(), 2);
    // Two rows with one ID: Find gives the first.
    s.SetPosition(0);
    s.SetReportID(u"2"_s);
    s.Find(u"2"_s);
    QCOMPARE(s.Position(), 0);
    s.SetReportID(u"1"_s);
    s.Find(u"2"_s);
    QCOMPARE(s.Position(), 1);
}

void TestSchedule::addNewAndIds()
{
    clsSchedule s(u"/app"_s);
    QCOMPARE(s.NextReportID(), 1);
    s.AddNew();
    QCOMPARE(s.Count(), 1);
    QCOMPARE(s.Position(), 0);
    QCOMPARE(s.ReportID(), u"1"_s);
    QCOMPARE(s.Name(), QString()); // nothing else filled in
    QCOMPARE(s.Frequency(), QString());
    s.SetReportID(u"41abc"_s); // numeric value of the prefix
    QCOMPARE(s.NextReportID(), 42);
    s.AddNew();
    QCOMPARE(s.ReportID(), u"42"_s);
    s.SetReportID(u"x"_s);
    QCOMPARE(s.NextReportID(), 42);
    s.SetPosition(0);
    s.SetReportID(u"7"_s);
    QCOMPARE(s.NextReportID(), 8);
    s.SetReportID(u"2147483647"_s);
    QCOMPARE(ErrorOf([&] { s.NextReportID(); }), 6);

    // The highest ID, deleted, is reused; one in the middle is not.
    clsSchedule five(u"/app"_s);
    for (int i = 0; i < 5; ++i)
        five.AddNew();
    five.Delete(u"5"_s);
    QCOMPARE(five.Count(), 4);
    five.AddNew();
    QCOMPARE(five.ReportID(), u"5"_s);
    five.Delete(u"2"_s);
    five.AddNew();
    QCOMPARE(five.ReportID(), u"6"_s);
}

void TestSchedule::duplicateAndDelete()
{
    clsSchedule s(u"/app"_s);
    const QString a = AddItem(s, u"A"_s);
    s.SetRptMessage(u"line1\r\nline2"_s);
    s.SetMailAttach(u"/x.pdf"_s);
    s.SetPageCount(12);
    const QString b = AddItem(s, u"B"_s);
    s.Find(a);
    s.Duplicate();
    QCOMPARE(s.Count(), 3);
    QCOMPARE(s.Position(), 2);
    QCOMPARE(s.ReportID(), u"3"_s);
    QCOMPARE(s.Name(), u"A"_s);
    QCOMPARE(s.RptMessage(), u"line1\r\nline2"_s);
    QCOMPARE(s.MailAttach(), u"/x.pdf"_s);
    QCOMPARE(s.PageCount(), qint16(12));

    // Parameters go along with a separate call and away with Delete.
    s.ParmUpdate(a, u"{?P}"_s, u"12"_s, u"v"_s, QString());
    s.ParmUpdate(b, u"{?Q}"_s, u"12"_s, u"w"_s, QString());
    s.SetPosition(1);
    s.Delete(a);
    QCOMPARE(s.Count(), 2);
    QCOMPARE(s.Position(), 1); // not adjusted: now on the copy
    QCOMPARE(s.ReportID(), u"3"_s);
    s.SetPosition(0);
    QCOMPARE(s.ReportID(), b);
    QCOMPARE(s.ParmCount(), 2); // rows stay counted
    QCOMPARE(s.ParmCell(0, clsSchedule::parmReportID), QString());
    QCOMPARE(s.ParmCell(0, clsSchedule::parmName), u"{?P}"_s);
    QCOMPARE(s.ParmCell(1, clsSchedule::parmReportID), b);
    // The freed last row is blank.
    QCOMPARE(s.Cell(2, clsSchedule::colName), QString());
    // Unknown ID: nothing.
    s.Delete(u"77"_s);
    QCOMPARE(s.Count(), 2);
    QCOMPARE(s.Position(), 0);
    QVERIFY(!s.Confirm(a));
    QVERIFY(s.Confirm(u"3"_s));
}

// 2001 items, 3001 parameter rows, 2001 collection rows.
void TestSchedule::tableLimits()
{
    clsSchedule s(u"/app"_s);
    for (int i = 0; i < 2001; ++i)
        s.AddNew();
    QCOMPARE(s.Count(), 2001);
    QCOMPARE(s.ReportID(), u"2001"_s);
    QCOMPARE(ErrorOf([&] { s.AddNew(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Duplicate(); }), 9);
    QCOMPARE(s.Count(), 2001);
    s.Find(u"1000"_s);
    QCOMPARE(s.Position(), 999);
    QCOMPARE(ErrorOf([&] { s.Cell(2001, 0); }), 9);
    QCOMPARE(ErrorOf([&] { s.Field(41); }), 9);

    for (int i = 0; i < 3001; ++i)
        s.ParmAddNew();
    QCOMPARE(s.ParmCount(), 3001);
    QCOMPARE(ErrorOf([&] { s.ParmAddNew(); }), 9);
    QCOMPARE(ErrorOf([&] { s.ParmUpdate(u"1"_s, u"x"_s, QString(), QString(), QString()); }), 9);
    QCOMPARE(s.ParmCount(), 3001);
    for (int i = 0; i < 2001; ++i)
        s.NewCollectionItem();
    QCOMPARE(ErrorOf([&] { s.NewCollectionItem(); }), 9);
}

void TestSchedule::columnsAndDerivedProperties()
{
    clsSchedule s(u"/app"_s);
    s.AddNew();
    s.SetFile(u"/data/reports/Sales.Summary.rpt"_s);
    QCOMPARE(s.Name(), u"Sales.Summary"_s); // empty name: base name of File
    QCOMPARE(s.Field(clsSchedule::colName), QString());
    QCOMPARE(s.Location(), u"/app/Output/Sales.Summary.rpt"_s);
    s.SetLocation(u"/out/x.pdf"_s);
    QCOMPARE(s.Location(), u"/out/x.pdf"_s);

    QCOMPARE(s.Field(clsSchedule::colDest), QString());
    QCOMPARE(s.Dest(), u"D"_s);
    QCOMPARE(s.Field(clsSchedule::colDest), u"D"_s); // the reading stores it
    QCOMPARE(s.DestDesc(), u"Disk"_s);
    QCOMPARE(s.DestName(), u"/out/x.pdf"_s);
    s.SetEmail(u"a@example.com"_s);
    s.SetPrinter(u"PDF"_s);
    const QString dests[][3] = {{u"E"_s, u"EMail"_s, u"a@example.com"_s},
                                {u"P"_s, u"Printer"_s, u"PDF"_s},
                                {u"M"_s, u"MultiRun"_s, u"MultiRun"_s},
                                {u"e"_s, u"Unknown"_s, QString()}};
    for (const auto &[dest, desc, name] : dests) {
        s.SetDest(dest);
        QCOMPARE(s.DestDesc(), desc);
        QCOMPARE(s.DestName(), name);
    }
    s.SetDest(u"E"_s);
    s.SetFile(u"COLLECTION"_s);
    QCOMPARE(s.DestName(), QString());

    // Every column through its accessor lands in its own column.
    using Set = void (clsSchedule::*)(const QString &);
    using Get = QString (clsSchedule::*)() const;
    const struct
    {
        int column;
        Set set;
        Get get;
    } plain[] = {
        {clsSchedule::colSchedule, &clsSchedule::SetSchedule, &clsSchedule::Schedule},
        {clsSchedule::colFrequency, &clsSchedule::SetFrequency, &clsSchedule::Frequency},
        {clsSchedule::colFreqTimes, &clsSchedule::SetFreqTimes, &clsSchedule::FreqTimes},
        {clsSchedule::colOutputFormat, &clsSchedule::SetOutputFormat, &clsSchedule::OutputFormat},
        {clsSchedule::colPrompt, &clsSchedule::SetPrompt, &clsSchedule::Prompt},
        {clsSchedule::colPrinter, &clsSchedule::SetPrinter, &clsSchedule::Printer},
        {clsSchedule::colEmail, &clsSchedule::SetEmail, &clsSchedule::Email},
        {clsSchedule::colGroup, &clsSchedule::SetGroup, &clsSchedule::Group},
        {clsSchedule::colSelFormula, &clsSchedule::SetSelFormula, &clsSchedule::SelFormula},
        {clsSchedule::colNextRun, &clsSchedule::SetNextRun, &clsSchedule::NextRun},
        {clsSchedule::colNoRecords, &clsSchedule::SetNoRecords, &clsSchedule::NoRecords},
        {clsSchedule::colEMailAttach, &clsSchedule::SetEMailAttach, &clsSchedule::EMailAttach},
        {clsSchedule::colHTMLPages, &clsSchedule::SetHTMLPages, &clsSchedule::HTMLPages},
        {clsSchedule::colPrinterOrient, &clsSchedule::SetPrinterOrient, &clsSchedule::PrinterOrient},
        {clsSchedule::colDateStamp, &clsSchedule::SetDateStamp, &clsSchedule::DateStamp},
        {clsSchedule::colLastRun, &clsSchedule::SetLastRun, &clsSchedule::LastRun},
        {clsSchedule::colCustomCalendarFile, &clsSchedule::SetCustomCalendarFile,
         &clsSchedule::CustomCalendarFile},
        {clsSchedule::colRptToCC, &clsSchedule::SetRptToCC, &clsSchedule::RptToCC},
        {clsSchedule::colRptToBCC, &clsSchedule::SetRptToBCC, &clsSchedule::RptToBCC},
        {clsSchedule::colRptSubject, &clsSchedule::SetRptSubject, &clsSchedule::RptSubject},
        {clsSchedule::colRptMessage, &clsSchedule::SetRptMessage, &clsSchedule::RptMessage},
        {clsSchedule::colRptFrom, &clsSchedule::SetRptFrom, &clsSchedule::RptFrom},
        {clsSchedule::colNotifyTo, &clsSchedule::SetNotifyTo, &clsSchedule::NotifyTo},
        {clsSchedule::colNotifyMsg, &clsSchedule::SetNotifyMsg, &clsSchedule::NotifyMsg},
        {clsSchedule::colErrorTo, &clsSchedule::SetErrorTo, &clsSchedule::ErrorTo},
        {clsSchedule::colErrorMsg, &clsSchedule::SetErrorMsg, &clsSchedule::ErrorMsg},
        {clsSchedule::colReportDescription, &clsSchedule::SetReportDescription,
         &clsSchedule::ReportDescription},
        {clsSchedule::colRetainData, &clsSchedule::SetRetainData, &clsSchedule::RetainData},
        {clsSchedule::colCollectionName, &clsSchedule::SetCollectionName, &clsSchedule::CollectionName},
        {clsSchedule::colMultiRunLineSuccessTo, &clsSchedule::SetMultiRunLineSuccessTo,
         &clsSchedule::MultiRunLineSuccessTo},
        {clsSchedule::colMultiRunLineSuccessMsg, &clsSchedule::SetMultiRunLineSuccessMsg,
         &clsSchedule::MultiRunLineSuccessMsg},
        {clsSchedule::colMultiRunLineErrorTo, &clsSchedule::SetMultiRunLineErrorTo,
         &clsSchedule::MultiRunLineErrorTo},
        {clsSchedule::colMultiRunLineErrorMsg, &clsSchedule::SetMultiRunLineErrorMsg,
         &clsSchedule::MultiRunLineErrorMsg},
        {clsSchedule::colMailAttach, &clsSchedule::SetMailAttach, &clsSchedule::MailAttach},
    };
    for (const auto &p : plain) {
        const QString text = u"value of %1"_s.arg(p.column);
        (s.*p.set)(text);
        QCOMPARE(s.Field(p.column), text);
        QCOMPARE((s.*p.get)(), text);
    }
    QCOMPARE(clsSchedule::ColumnTag(clsSchedule::colPrinterOrient), u"PrinterOrientation"_s);
    QCOMPARE(clsSchedule::ColumnTag(clsSchedule::colPageCount), QString());
}

void TestSchedule::printerCopiesAndPageCount()
{
    clsSchedule s(u"/app"_s);
    s.AddNew();
    for (const QString &none : {QString(), u"0"_s, u"-3"_s}) {
        s.SetField(clsSchedule::colPrinterCopies, none);
        QCOMPARE(s.PrinterCopies(), qint16(1));
    }
    s.SetPrinterCopies(3);
    QCOMPARE(s.Field(clsSchedule::colPrinterCopies), u"3"_s);
    QCOMPARE(s.PrinterCopies(), qint16(3));
    s.SetPrinterCopies(0);
    QCOMPARE(s.Field(clsSchedule::colPrinterCopies), QString()); // format "#"
    s.SetField(clsSchedule::colPrinterCopies, u"2.5"_s);
    QCOMPARE(s.PrinterCopies(), qint16(2)); // halves to even
    s.SetField(clsSchedule::colPrinterCopies, u"40000"_s);
    QCOMPARE(ErrorOf([&] { s.PrinterCopies(); }), 6);

    QCOMPARE(s.PageCount(), qint16(0));
    s.SetPageCount(17);
    QCOMPARE(s.Field(clsSchedule::colPageCount), u"17"_s);
    QCOMPARE(s.PageCount(), qint16(17));
    s.SetField(clsSchedule::colPageCount, u"32768"_s);
    QCOMPARE(ErrorOf([&] { s.PageCount(); }), 6);
}

void TestSchedule::sortIndexMoves()
{
    clsSchedule s(u"/app"_s);
    for (int i = 0; i < 4; ++i)
        s.AddNew();
    s.SetPosition(0);
    // One entry only: MoveFirst and MoveLast do nothing.
    s.LoadSortIndexArray(u"3"_s);
    s.MoveFirst();
    QCOMPARE(s.Position(), 0);
    s.LoadSortIndexArray(u"3|1|4|2"_s);
    QCOMPARE(s.SortIndexCount(), 4);
    QCOMPARE(s.GetSortIndexArray(2), u"4"_s);
    QCOMPARE(ErrorOf([&] { s.GetSortIndexArray(4); }), 9);
    s.MoveFirst();
    QCOMPARE(s.ReportID(), u"3"_s);
    s.MoveLast();
    QCOMPARE(s.ReportID(), u"2"_s);
    s.MoveNext(u"1"_s);
    QCOMPARE(s.ReportID(), u"4"_s);
    s.MovePrior(u"1"_s);
    QCOMPARE(s.ReportID(), u"3"_s);
    s.MovePrior(u"3"_s); // at the start: stays
    QCOMPARE(s.ReportID(), u"3"_s);
    s.MoveNext(u"2"_s); // at the end: stays
    QCOMPARE(s.ReportID(), u"3"_s);
    s.MoveNext(u"9"_s); // unknown: stays
    QCOMPARE(s.ReportID(), u"3"_s);
}

void TestSchedule::addFolder()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    for (const char *name : {"b.rpt", "A.RPT", "notes.txt", "c.rpt.bak"})
        TestSupport::WriteFile(dir.filePath(QString::fromLatin1(name)), {});
    QDir(dir.path()).mkdir(u"sub.rpt"_s);
    clsSchedule s(u"/app"_s);
    AddItem(s, u"existing"_s);
    // The folder part of the path: a trailing separator or a file name.
    s.AddFolder2Schedule(dir.path() + u"/"_s);
    QCOMPARE(s.Count(), 3);
    QStringList names;
    for (int row = 1; row < 3; ++row) {
        s.SetPosition(row);
        names << s.Name();
        QCOMPARE(s.File(), dir.path() + u'/' + s.Name());
        QCOMPARE(s.Schedule(), u"N"_s);
        QCOMPARE(s.FreqTimes(), u"1"_s);
        QCOMPARE(s.Frequency(), u"W"_s);
        QCOMPARE(s.ReportID(), QString::number(row + 1));
    }
    names.sort();
    QCOMPARE(names, (QStringList{u"A.RPT"_s, u"b.rpt"_s}));
    s.AddFolder2Schedule(dir.filePath(u"anything.rpt"_s));
    QCOMPARE(s.Count(), 5);
    // Without a separator the path is its own folder part; a missing folder adds nothing.
    s.AddFolder2Schedule(dir.path() + u"/nothing/"_s);
    QCOMPARE(s.Count(), 5);
}

void TestSchedule::activeCountAndClear()
{
    clsSchedule s(u"/app"_s);
    AddItem(s, u"a"_s);
    s.SetNextRun(u"01-Feb-2024 10:00"_s);
    AddItem(s, u"b"_s);
    s.SetNextRun(u"next Tuesday"_s);
    AddItem(s, u"c"_s);
    AddItem(s, u"d"_s);
    s.SetNextRun(u"2024-02-03"_s);
    QCOMPARE(s.ActiveCount(), 2);
    s.NewCollectionItem();
    s.SetCollectionID(u"1"_s);
    s.ParmAddNew();
    s.SetParmReportID(u"1"_s);
    s.SMTP_Server = u"mail.example.com"_s;
    s.Clear();
    QCOMPARE(s.Count(), 0);
    QCOMPARE(s.CollectionCount(), 0);
    QCOMPARE(s.ParmCount(), 1);
    QCOMPARE(s.SMTP_Server, u"mail.example.com"_s);
    QCOMPARE(s.ActiveCount(), 0);
    QVERIFY(!s.Confirm(u"1"_s));
    s.AddNew();
    QCOMPARE(s.ReportID(), u"1"_s);
    QCOMPARE(s.NextRun(), QString());
}

void TestSchedule::bulkEdit()
{
    clsSchedule s(u"/app"_s);
    AddItem(s, u"Monthly Sales"_s);
    AddItem(s, u"Sales by region, sales by rep"_s);
    AddItem(s, u"Stock"_s);
    QCOMPARE(s.ChangePreview(clsSchedule::colName, u"sales"_s, u"N"_s), qint16(2));
    QCOMPARE(s.ChangePreview(clsSchedule::colName, u"sales"_s, u"Y"_s), qint16(1));
    QCOMPARE(s.ChangePreview(clsSchedule::colName, QString(), u"N"_s), qint16(0));
    QCOMPARE(ErrorOf([&] { s.ChangePreview(41, u"x"_s, u"N"_s); }), 9);

    QCOMPARE(s.ChangeBulk(clsSchedule::colName, u"sales"_s, u"Stock"_s, u"N"_s), qint16(2));
    QCOMPARE(s.Cell(0, clsSchedule::colName), u"monthly Stock"_s);
    QCOMPARE(s.Cell(1, clsSchedule::colName), u"Stock by region, sales by rep"_s);
    QCOMPARE(s.Cell(2, clsSchedule::colName), u"Stock"_s); // untouched row keeps case

    QCOMPARE(s.ChangeBulk(clsSchedule::colFile, u"/reports/"_s, u"/new/"_s, u"Y"_s), qint16(3));
    QCOMPARE(s.Cell(0, clsSchedule::colFile), u"/new/Monthly Sales.rpt"_s);
    // On column 0 the ID changes for Find too.
    QCOMPARE(s.ChangeBulk(clsSchedule::colReportID, u"3"_s, u"30"_s, u"Y"_s), qint16(1));
    QVERIFY(s.Confirm(u"30"_s));
    QCOMPARE(s.NextReportID(), 31);
}

void TestSchedule::notifyEmailList()
{
    clsSchedule s(u"/app"_s);
    QCOMPARE(s.NotifyEmailList(), QStringList());
    s.AddNew();
    s.SetNotifyTo(u"a@x.com;b@x.com"_s);
    s.SetErrorTo(u"a@x.com"_s);
    s.AddNew();
    s.SetMultiRunLineSuccessTo(u"b@x.com;c@x.com"_s); // c is new: the whole field goes in
    s.SetMultiRunLineErrorTo(u"d@x.com"_s);
    const QStringList expected{u"a@x.com"_s, u"b@x.com"_s, u"b@x.com"_s, u"c@x.com"_s, u"d@x.com"_s};
    QCOMPARE(s.NotifyEmailList(), expected);
}

void TestSchedule::parameters()
{
    clsSchedule s(u"/app"_s);
    // The cursor starts on row 0, which isn't counted until a row is added.
    QCOMPARE(s.ParmPosition(), 0);
    QCOMPARE(s.ParmName(), QString());
    s.ParmAddNew();
    QCOMPARE(s.ParmPosition(), 0);
    s.SetParmReportID(u"1"_s);
    s.SetParmName(u"{?From}"_s);
    s.SetParmValueType(u"10"_s);
    s.SetParmValue(u"01-Jan-2024"_s);
    s.SetParmPrompt(u"From date"_s);
    s.SetParmMulti(u"N"_s);
    QCOMPARE(s.ParmCount(), 1);
    QCOMPARE(s.ParmCell(0, clsSchedule::parmMulti), u"N"_s);
    QCOMPARE(s.ParmCell(0, clsSchedule::parmUnused), QString());

    // Update in place, or add a row without moving the cursor.
    s.ParmUpdate(u"1"_s, u"{?From}"_s, u"10"_s, u"02-Jan-2024"_s, u"p"_s);
    QCOMPARE(s.ParmCount(), 1);
    QCOMPARE(s.ParmValue(), u"02-Jan-2024"_s);
    QCOMPARE(s.ParmPrompt(), u"p"_s);
    QCOMPARE(s.ParmMulti(), u"N"_s);
    s.ParmUpdate(u"1"_s, u"{?To}"_s, u"10"_s, QString(), u"To date"_s);
    QCOMPARE(s.ParmCount(), 2);
    QCOMPARE(s.ParmPosition(), 0);
    QCOMPARE(s.ParmReportCount(u"1"_s), qint16(1)); // the empty value doesn't count

    s.ParmDuplicate(u"1"_s, u"2"_s);
    QCOMPARE(s.ParmCount(), 4);
    s.ParmLocate(2);
    QCOMPARE(s.ParmReportID(), u"2"_s);
    QCOMPARE(s.ParmName(), u"{?From}"_s);
    QCOMPARE(s.ParmPrompt(), u"p"_s);
    QCOMPARE(s.ParmMulti(), u"N"_s);
    s.ParmLocate(3);
    QCOMPARE(s.ParmName(), u"{?To}"_s);

    // A collection's values pass to its members where set.
    s.ParmUpdate(u"9"_s, u"{?To}"_s, u"10"_s, u"31-Jan-2024"_s, QString());
    s.ParmUpdate(u"9"_s, u"{?From}"_s, u"10"_s, QString(), QString());
    s.SetCollectionParm(u"9"_s, u"2"_s);
    QCOMPARE(s.ParmCell(2, clsSchedule::parmValue), u"02-Jan-2024"_s);
    QCOMPARE(s.ParmCell(3, clsSchedule::parmValue), u"31-Jan-2024"_s);
    QCOMPARE(s.ParmCell(1, clsSchedule::parmValue), QString());

    s.ParmRemove(u"2"_s);
    QCOMPARE(s.ParmCount(), 6);
    QCOMPARE(s.ParmCell(2, clsSchedule::parmReportID), QString());
    QCOMPARE(s.ParmCell(3, clsSchedule::parmReportID), QString());
    QCOMPARE(s.ParmReportCount(u"2"_s), qint16(0));
    s.ParmLocate(-1);
    QCOMPARE(ErrorOf([&] { s.SetParmValue(QString()); }), 9);
}

void TestSchedule::collections()
{
    clsSchedule s(u"/app"_s);
    const QString coll = AddItem(s, u"Month end"_s);
    s.SetFile(u"COLLECTION"_s);
    const QString m1 = AddItem(s, u"Member one"_s);
    s.SetSchedule(u"N"_s);
    s.SetNextRun(u"01-Feb-2024 10:00"_s);
    const QString m2 = AddItem(s, u"Member two"_s);
    s.SetSchedule(u"Y"_s);
    const QString m3 = AddItem(s, QString()); // raw name empty
    s.SetFile(u"/r/third.rpt"_s);

    QCOMPARE(s.CollectionPosition(), 0);
    QCOMPARE(s.CollectionID(), QString());
    s.SetCollectionPosition(-1);
    QCOMPARE(ErrorOf([&] { s.CollectionID(); }), 9);
    s.SetCollectionPosition(2001);
    QCOMPARE(ErrorOf([&] { s.CollectionReport(); }), 9);
    // One row can't be deleted.
    s.NewCollectionItem();
    s.SetCollectionID(coll);
    s.SetCollectionItem(m1);
    s.CollectionDeleteRow(0);
    QCOMPARE(s.CollectionCount(), 1);
    s.SetCollectionPosition(0);
    QCOMPARE(s.CollectionItem(), m1);

    for (const QString &member : {m2, m3, u"99"_s}) {
        s.NewCollectionItem();
        s.SetCollectionID(coll);
        s.SetCollectionItem(member);
    }
    QCOMPARE(s.CollectionCount(), 4);
    s.SetCollectionPosition(0);
    QCOMPARE(s.CollectionReport(), u"Member one"_s);
    QCOMPARE(s.CollectionFile(), u"/reports/Member one.rpt"_s);
    s.SetCollectionPosition(2);
    QCOMPARE(s.CollectionReport(), QString()); // raw name
    QCOMPARE(s.CollectionFile(), u"/r/third.rpt"_s);
    s.SetCollectionPosition(3);
    QCOMPARE(s.CollectionReport(), u"Missing"_s);
    QCOMPARE(s.CollectionFile(), u"Lost Report"_s);
    QCOMPARE(s.CollectionNextRun(m1), u"01-Feb-2024 10:00"_s);
    QCOMPARE(s.CollectionNextRun(u"99"_s), QString());
    QCOMPARE(s.CollectionDescription(m2), u"Member two"_s);
    QCOMPARE(s.CollectionDescription(u"99"_s), QString());

    s.SetCollectionPosition(0);
    s.CollectionSetReport();
    s.SetCollectionPosition(1);
    s.CollectionSetReport();
    s.SetCollectionPosition(2);
    s.CollectionSetReport();
    s.SetCollectionPosition(3);
    s.CollectionSetReport(); // missing member: nothing
    QCOMPARE(s.Cell(1, clsSchedule::colSchedule), u"C"_s);
    QCOMPARE(s.Cell(2, clsSchedule::colSchedule), u"Y"_s);
    QCOMPARE(s.Cell(3, clsSchedule::colSchedule), u"C"_s);

    s.CollectionSwap(0, 1);
    s.SetCollectionPosition(0);
    QCOMPARE(s.CollectionItem(), m2);
    QCOMPARE(s.CollectionID(), coll);
    s.SetCollectionPosition(1);
    QCOMPARE(s.CollectionItem(), m1);

    s.CollectionDeleteRow(1);
    QCOMPARE(s.CollectionCount(), 3);
    s.SetCollectionPosition(1);
    QCOMPARE(s.CollectionItem(), m3);
    s.CollectionDeleteRow(10); // past the end: the count falls
    QCOMPARE(s.CollectionCount(), 2);

    // Deleting a member leaves the collection row, which then reads "Missing".
    s.Delete(m2);
    s.SetCollectionPosition(0);
    QCOMPARE(s.CollectionItem(), m2);
    QCOMPARE(s.CollectionReport(), u"Missing"_s);
    // An empty member finds the blank row past Count: empty name and file.
    s.SetCollectionItem(QString());
    QCOMPARE(s.CollectionReport(), QString());
    QCOMPARE(s.CollectionFile(), QString());
}

void TestSchedule::domains()
{
    clsSchedule s(u"/app"_s);
    for (int d = 0; d < 10; ++d)
        QCOMPARE(s.Domain(d), QString());
    s.SaveDomain(0, u"example.com"_s);
    s.SaveDomain(9, u"example.org"_s);
    QCOMPARE(s.Domain(0), u"example.com"_s);
    QCOMPARE(s.Domain(9), u"example.org"_s);
    QCOMPARE(ErrorOf([&] { s.Domain(10); }), 9);
    QCOMPARE(ErrorOf([&] { s.SaveDomain(-1, QString()); }), 9);
}

QORLO_TEST_MAIN(TestSchedule)
#include "tst_schedule.moc"
