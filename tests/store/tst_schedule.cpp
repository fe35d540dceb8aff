// The schedule model clsSchedule: cursor, columns, tables, bulk edit, parameters, collections.
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "store/clsSchedule.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using TestSupport::ErrorOf;

namespace {

// Adds an item with the given name and returns its ReportID.
QString AddItem(clsSchedule &s, const QString &name)
{
    s.AddNew();
    s.SetName(name);
    s.SetFile(QStringLiteral("/reports/") + name + QStringLiteral(".rpt"));
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
    void deletedHighestIdIsReused();
    void duplicateAndDelete();
    void itemLimit();
    void columnsAndDerivedProperties();
    void printerCopiesAndPageCount();
    void sortIndexMoves();
    void addFolder();
    void activeCountAndClear();
    void bulkEdit();
    void notifyEmailList();
    void parameters();
    void parameterLimit();
    void collections();
    void domains();
};

void TestSchedule::defaults()
{
    FixedClock clock(QDateTime(QDate(2024, 3, 10), QTime(14, 30)));
    ClockGuard guard(clock);
    clsSchedule s(QStringLiteral("/app"));
    QCOMPARE(s.AppPath, QStringLiteral("/app"));
    QCOMPARE(s.FileName, QStringLiteral("/app/Qorlo.XML"));
    QCOMPARE(s.SMTPDelay, qint16(2));
    QCOMPARE(s.SMTP_Port, 25);
    QCOMPARE(s.BusinessHour_Start, (clsSchedule::HourMinute{9, 0}));
    QCOMPARE(s.BusinessHour_End, (clsSchedule::HourMinute{17, 0}));
    QCOMPARE(s.BusinessHour_Schedule, qint16(0));
    QCOMPARE(s.Holiday_List, QStringLiteral("holiday.lst"));
    QCOMPARE(s.AutoRun, false);
    QCOMPARE(s.Active, false);
    QCOMPARE(s.BackupFrequency, QStringLiteral("Daily"));
    QCOMPARE(s.BackupPurge, qint16(30));
    const double now = DayDate::FromParts(2024, 3, 10, 14, 30);
    QCOMPARE(s.StartedAt, now);
    QCOMPARE(s.BackupDate, now - 1);
    QCOMPARE(s.Period_One, 0.0);
    QCOMPARE(s.Year_Start, 0.0);
    QCOMPARE(s.LastReportDate, 0.0);
    QCOMPARE(s.SMTP_Encryption, QStringLiteral("None"));
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
    clsSchedule s(QStringLiteral("/app"));
    AddItem(s, QStringLiteral("First"));
    AddItem(s, QStringLiteral("Second"));
    s.Find(QStringLiteral("99"));
    QCOMPARE(s.Position(), -1);
    QVERIFY(s.NoMatch());
    QVERIFY(!s.Found());
    QCOMPARE(s.ReportID(), QString());
    QCOMPARE(s.File(), QString());
    QCOMPARE(ErrorOf([&] { s.Frequency(); }), 9);
    QCOMPARE(ErrorOf([&] { s.SetFrequency(QStringLiteral("D")); }), 9);
    QCOMPARE(ErrorOf([&] { s.SetReportID(QStringLiteral("5")); }), 9);
    QCOMPARE(ErrorOf([&] { s.PrinterCopies(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Location(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Dest(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Duplicate(); }), 9);
    QCOMPARE(ErrorOf([&] { s.SetPageCount(3); }), 0); // does nothing
    QCOMPARE(ErrorOf([&] { s.PageCount(); }), 9);
    // Reading Name at -1 puts the cursor on row 0.
    QCOMPARE(s.Name(), QStringLiteral("First"));
    QCOMPARE(s.Position(), 0);
    QCOMPARE(s.ReportID(), QStringLiteral("1"));

    // With an empty table row 0 is blank: its name is empty.
    clsSchedule empty(QStringLiteral("/app"));
    QCOMPARE(empty.Name(), QString());
    QCOMPARE(empty.Position(), 0);
}

void TestSchedule::positionFindConfirm()
{
    clsSchedule s(QStringLiteral("/app"));
    AddItem(s, QStringLiteral("A"));
    AddItem(s, QStringLiteral("B"));
    AddItem(s, QStringLiteral("C"));
    s.SetPosition(1);
    QCOMPARE(s.Position(), 1);
    QVERIFY(!s.NoMatch());
    s.SetPosition(3);
    QCOMPARE(s.Position(), -1);
    QVERIFY(s.NoMatch());
    s.SetPosition(-5);
    QCOMPARE(s.Position(), -1);

    s.Find(QStringLiteral("3"));
    QCOMPARE(s.Position(), 2);
    QVERIFY(s.Found());
    QVERIFY(!s.NoMatch());
    // Confirm leaves cursor and flags alone.
    QVERIFY(s.Confirm(QStringLiteral("1")));
    QVERIFY(!s.Confirm(QStringLiteral("7")));
    QCOMPARE(s.Position(), 2);
    QVERIFY(s.Found());
    // Exact text: " 1" and "01" are other IDs.
    QVERIFY(!s.Confirm(QStringLiteral("01")));
    // A changed ID is found under its new text only.
    s.SetReportID(QStringLiteral("30"));
    QVERIFY(!s.Confirm(QStringLiteral("3")));
    s.Find(QStringLiteral("30"));
    QCOMPARE(s.Position(), 2);
    // Two rows with one ID: Find gives the first.
    s.SetPosition(0);
    s.SetReportID(QStringLiteral("2"));
    s.Find(QStringLiteral("2"));
    QCOMPARE(s.Position(), 0);
    s.SetReportID(QStringLiteral("1"));
    s.Find(QStringLiteral("2"));
    QCOMPARE(s.Position(), 1);
}

void TestSchedule::addNewAndIds()
{
    clsSchedule s(QStringLiteral("/app"));
    QCOMPARE(s.NextReportID(), 1);
    s.AddNew();
    QCOMPARE(s.Count(), 1);
    QCOMPARE(s.Position(), 0);
    QCOMPARE(s.ReportID(), QStringLiteral("1"));
    QCOMPARE(s.Name(), QString()); // nothing else filled in
    QCOMPARE(s.Frequency(), QString());
    s.SetReportID(QStringLiteral("41abc")); // numeric value of the prefix
    QCOMPARE(s.NextReportID(), 42);
    s.AddNew();
    QCOMPARE(s.ReportID(), QStringLiteral("42"));
    s.SetReportID(QStringLiteral("x"));
    QCOMPARE(s.NextReportID(), 42);
    s.SetPosition(0);
    s.SetReportID(QStringLiteral("7"));
    QCOMPARE(s.NextReportID(), 8);
    s.SetReportID(QStringLiteral("2147483647"));
    QCOMPARE(ErrorOf([&] { s.NextReportID(); }), 6);
}

void TestSchedule::deletedHighestIdIsReused()
{
    clsSchedule s(QStringLiteral("/app"));
    for (int i = 0; i < 5; ++i)
        s.AddNew();
    s.Delete(QStringLiteral("5"));
    QCOMPARE(s.Count(), 4);
    s.AddNew();
    QCOMPARE(s.ReportID(), QStringLiteral("5"));
    // A deleted ID in the middle is not reused.
    s.Delete(QStringLiteral("2"));
    s.AddNew();
    QCOMPARE(s.ReportID(), QStringLiteral("6"));
}

void TestSchedule::duplicateAndDelete()
{
    clsSchedule s(QStringLiteral("/app"));
    const QString a = AddItem(s, QStringLiteral("A"));
    s.SetRptMessage(QStringLiteral("line1\r\nline2"));
    s.SetMailAttach(QStringLiteral("/x.pdf"));
    s.SetPageCount(12);
    const QString b = AddItem(s, QStringLiteral("B"));
    s.Find(a);
    s.Duplicate();
    QCOMPARE(s.Count(), 3);
    QCOMPARE(s.Position(), 2);
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
    QCOMPARE(s.Name(), QStringLiteral("A"));
    QCOMPARE(s.RptMessage(), QStringLiteral("line1\r\nline2"));
    QCOMPARE(s.MailAttach(), QStringLiteral("/x.pdf"));
    QCOMPARE(s.PageCount(), qint16(12));

    // Parameters go along with a separate call and away with Delete.
    s.ParmUpdate(a, QStringLiteral("{?P}"), QStringLiteral("12"), QStringLiteral("v"), QString());
    s.ParmUpdate(b, QStringLiteral("{?Q}"), QStringLiteral("12"), QStringLiteral("w"), QString());
    s.SetPosition(1);
    s.Delete(a);
    QCOMPARE(s.Count(), 2);
    QCOMPARE(s.Position(), 1); // not adjusted: now on the copy
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
    s.SetPosition(0);
    QCOMPARE(s.ReportID(), b);
    QCOMPARE(s.ParmCount(), 2); // rows stay counted
    QCOMPARE(s.ParmCell(0, clsSchedule::parmReportID), QString());
    QCOMPARE(s.ParmCell(0, clsSchedule::parmName), QStringLiteral("{?P}"));
    QCOMPARE(s.ParmCell(1, clsSchedule::parmReportID), b);
    // The freed last row is blank.
    QCOMPARE(s.Cell(2, clsSchedule::colName), QString());
    // Unknown ID: nothing.
    s.Delete(QStringLiteral("77"));
    QCOMPARE(s.Count(), 2);
    QCOMPARE(s.Position(), 0);
    QVERIFY(!s.Confirm(a));
    QVERIFY(s.Confirm(QStringLiteral("3")));
}

void TestSchedule::itemLimit()
{
    clsSchedule s(QStringLiteral("/app"));
    for (int i = 0; i < 2001; ++i)
        s.AddNew();
    QCOMPARE(s.Count(), 2001);
    QCOMPARE(s.ReportID(), QStringLiteral("2001"));
    QCOMPARE(ErrorOf([&] { s.AddNew(); }), 9);
    QCOMPARE(ErrorOf([&] { s.Duplicate(); }), 9);
    QCOMPARE(s.Count(), 2001);
    s.Find(QStringLiteral("1000"));
    QCOMPARE(s.Position(), 999);
    QCOMPARE(ErrorOf([&] { s.Cell(2001, 0); }), 9);
    QCOMPARE(ErrorOf([&] { s.Field(41); }), 9);
}

void TestSchedule::columnsAndDerivedProperties()
{
    clsSchedule s(QStringLiteral("/app"));
    s.AddNew();
    s.SetFile(QStringLiteral("/data/reports/Sales.Summary.rpt"));
    QCOMPARE(s.Name(), QStringLiteral("Sales.Summary")); // empty name: base name of File
    QCOMPARE(s.Field(clsSchedule::colName), QString());
    QCOMPARE(s.Location(), QStringLiteral("/app/Output/Sales.Summary.rpt"));
    s.SetLocation(QStringLiteral("/out/x.pdf"));
    QCOMPARE(s.Location(), QStringLiteral("/out/x.pdf"));

    QCOMPARE(s.Field(clsSchedule::colDest), QString());
    QCOMPARE(s.Dest(), QStringLiteral("D"));
    QCOMPARE(s.Field(clsSchedule::colDest), QStringLiteral("D")); // the reading stores it
    QCOMPARE(s.DestDesc(), QStringLiteral("Disk"));
    QCOMPARE(s.DestName(), QStringLiteral("/out/x.pdf"));
    s.SetEmail(QStringLiteral("a@example.com"));
    s.SetPrinter(QStringLiteral("PDF"));
    s.SetDest(QStringLiteral("E"));
    QCOMPARE(s.DestDesc(), QStringLiteral("EMail"));
    QCOMPARE(s.DestName(), QStringLiteral("a@example.com"));
    s.SetDest(QStringLiteral("P"));
    QCOMPARE(s.DestDesc(), QStringLiteral("Printer"));
    QCOMPARE(s.DestName(), QStringLiteral("PDF"));
    s.SetDest(QStringLiteral("M"));
    QCOMPARE(s.DestDesc(), QStringLiteral("MultiRun"));
    QCOMPARE(s.DestName(), QStringLiteral("MultiRun"));
    s.SetDest(QStringLiteral("e"));
    QCOMPARE(s.DestDesc(), QStringLiteral("Unknown"));
    QCOMPARE(s.DestName(), QString());
    s.SetDest(QStringLiteral("E"));
    s.SetFile(QStringLiteral("COLLECTION"));
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
        const QString text = QStringLiteral("value of %1").arg(p.column);
        (s.*p.set)(text);
        QCOMPARE(s.Field(p.column), text);
        QCOMPARE((s.*p.get)(), text);
    }
    QCOMPARE(clsSchedule::ColumnTag(clsSchedule::colPrinterOrient), QStringLiteral("PrinterOrientation"));
    QCOMPARE(clsSchedule::ColumnTag(clsSchedule::colPageCount), QString());
}

void TestSchedule::printerCopiesAndPageCount()
{
    clsSchedule s(QStringLiteral("/app"));
    s.AddNew();
    QCOMPARE(s.PrinterCopies(), qint16(1)); // empty
    s.SetField(clsSchedule::colPrinterCopies, QStringLiteral("0"));
    QCOMPARE(s.PrinterCopies(), qint16(1));
    s.SetField(clsSchedule::colPrinterCopies, QStringLiteral("-3"));
    QCOMPARE(s.PrinterCopies(), qint16(1));
    s.SetPrinterCopies(3);
    QCOMPARE(s.Field(clsSchedule::colPrinterCopies), QStringLiteral("3"));
    QCOMPARE(s.PrinterCopies(), qint16(3));
    s.SetPrinterCopies(0);
    QCOMPARE(s.Field(clsSchedule::colPrinterCopies), QString()); // format "#"
    s.SetField(clsSchedule::colPrinterCopies, QStringLiteral("2.5"));
    QCOMPARE(s.PrinterCopies(), qint16(2)); // halves to even
    s.SetField(clsSchedule::colPrinterCopies, QStringLiteral("40000"));
    QCOMPARE(ErrorOf([&] { s.PrinterCopies(); }), 6);

    QCOMPARE(s.PageCount(), qint16(0));
    s.SetPageCount(17);
    QCOMPARE(s.Field(clsSchedule::colPageCount), QStringLiteral("17"));
    QCOMPARE(s.PageCount(), qint16(17));
    s.SetField(clsSchedule::colPageCount, QStringLiteral("32768"));
    QCOMPARE(ErrorOf([&] { s.PageCount(); }), 6);
}

void TestSchedule::sortIndexMoves()
{
    clsSchedule s(QStringLiteral("/app"));
    for (int i = 0; i < 4; ++i)
        s.AddNew();
    s.SetPosition(0);
    // One entry only: MoveFirst and MoveLast do nothing.
    s.LoadSortIndexArray(QStringLiteral("3"));
    s.MoveFirst();
    QCOMPARE(s.Position(), 0);
    s.LoadSortIndexArray(QStringLiteral("3|1|4|2"));
    QCOMPARE(s.SortIndexCount(), 4);
    QCOMPARE(s.GetSortIndexArray(2), QStringLiteral("4"));
    QCOMPARE(ErrorOf([&] { s.GetSortIndexArray(4); }), 9);
    s.MoveFirst();
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
    s.MoveLast();
    QCOMPARE(s.ReportID(), QStringLiteral("2"));
    s.MoveNext(QStringLiteral("1"));
    QCOMPARE(s.ReportID(), QStringLiteral("4"));
    s.MovePrior(QStringLiteral("1"));
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
    s.MovePrior(QStringLiteral("3")); // at the start: stays
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
    s.MoveNext(QStringLiteral("2")); // at the end: stays
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
    s.MoveNext(QStringLiteral("9")); // unknown: stays
    QCOMPARE(s.ReportID(), QStringLiteral("3"));
}

void TestSchedule::addFolder()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    for (const char *name : {"b.rpt", "A.RPT", "notes.txt", "c.rpt.bak"}) {
        QFile f(dir.filePath(QString::fromLatin1(name)));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
    QDir(dir.path()).mkdir(QStringLiteral("sub.rpt"));
    clsSchedule s(QStringLiteral("/app"));
    AddItem(s, QStringLiteral("existing"));
    // The folder part of the path: a trailing separator or a file name.
    s.AddFolder2Schedule(dir.path() + QStringLiteral("/"));
    QCOMPARE(s.Count(), 3);
    QStringList names;
    for (int row = 1; row < 3; ++row) {
        s.SetPosition(row);
        names << s.Name();
        QCOMPARE(s.File(), dir.path() + QLatin1Char('/') + s.Name());
        QCOMPARE(s.Schedule(), QStringLiteral("N"));
        QCOMPARE(s.FreqTimes(), QStringLiteral("1"));
        QCOMPARE(s.Frequency(), QStringLiteral("W"));
        QCOMPARE(s.ReportID(), QString::number(row + 1));
    }
    names.sort();
    QCOMPARE(names, (QStringList{QStringLiteral("A.RPT"), QStringLiteral("b.rpt")}));
    s.AddFolder2Schedule(dir.filePath(QStringLiteral("anything.rpt")));
    QCOMPARE(s.Count(), 5);
    // Without a separator the path is its own folder part; a missing folder adds nothing.
    s.AddFolder2Schedule(dir.path() + QStringLiteral("/nothing/"));
    QCOMPARE(s.Count(), 5);
}

void TestSchedule::activeCountAndClear()
{
    clsSchedule s(QStringLiteral("/app"));
    AddItem(s, QStringLiteral("a"));
    s.SetNextRun(QStringLiteral("01-Feb-2024 10:00"));
    AddItem(s, QStringLiteral("b"));
    s.SetNextRun(QStringLiteral("next Tuesday"));
    AddItem(s, QStringLiteral("c"));
    AddItem(s, QStringLiteral("d"));
    s.SetNextRun(QStringLiteral("2024-02-03"));
    QCOMPARE(s.ActiveCount(), 2);
    s.NewCollectionItem();
    s.SetCollectionID(QStringLiteral("1"));
    s.ParmAddNew();
    s.SetParmReportID(QStringLiteral("1"));
    s.SMTP_Server = QStringLiteral("mail.example.com");
    s.Clear();
    QCOMPARE(s.Count(), 0);
    QCOMPARE(s.CollectionCount(), 0);
    QCOMPARE(s.ParmCount(), 1);
    QCOMPARE(s.SMTP_Server, QStringLiteral("mail.example.com"));
    QCOMPARE(s.ActiveCount(), 0);
    QVERIFY(!s.Confirm(QStringLiteral("1")));
    s.AddNew();
    QCOMPARE(s.ReportID(), QStringLiteral("1"));
    QCOMPARE(s.NextRun(), QString());
}

void TestSchedule::bulkEdit()
{
    clsSchedule s(QStringLiteral("/app"));
    AddItem(s, QStringLiteral("Monthly Sales"));
    AddItem(s, QStringLiteral("Sales by region, sales by rep"));
    AddItem(s, QStringLiteral("Stock"));
    QCOMPARE(s.ChangePreview(clsSchedule::colName, QStringLiteral("sales"), QStringLiteral("N")), qint16(2));
    QCOMPARE(s.ChangePreview(clsSchedule::colName, QStringLiteral("sales"), QStringLiteral("Y")), qint16(1));
    QCOMPARE(s.ChangePreview(clsSchedule::colName, QString(), QStringLiteral("N")), qint16(0));
    QCOMPARE(ErrorOf([&] { s.ChangePreview(41, QStringLiteral("x"), QStringLiteral("N")); }), 9);

    QCOMPARE(s.ChangeBulk(clsSchedule::colName, QStringLiteral("sales"), QStringLiteral("Stock"),
                          QStringLiteral("N")),
             qint16(2));
    QCOMPARE(s.Cell(0, clsSchedule::colName), QStringLiteral("monthly Stock"));
    QCOMPARE(s.Cell(1, clsSchedule::colName), QStringLiteral("Stock by region, sales by rep"));
    QCOMPARE(s.Cell(2, clsSchedule::colName), QStringLiteral("Stock")); // untouched row keeps case

    QCOMPARE(s.ChangeBulk(clsSchedule::colFile, QStringLiteral("/reports/"), QStringLiteral("/new/"),
                          QStringLiteral("Y")),
             qint16(3));
    QCOMPARE(s.Cell(0, clsSchedule::colFile), QStringLiteral("/new/Monthly Sales.rpt"));
    // On column 0 the ID changes for Find too.
    QCOMPARE(s.ChangeBulk(clsSchedule::colReportID, QStringLiteral("3"), QStringLiteral("30"),
                          QStringLiteral("Y")),
             qint16(1));
    QVERIFY(s.Confirm(QStringLiteral("30")));
    QCOMPARE(s.NextReportID(), 31);
}

void TestSchedule::notifyEmailList()
{
    clsSchedule s(QStringLiteral("/app"));
    QCOMPARE(s.NotifyEmailList(), QStringList());
    s.AddNew();
    s.SetNotifyTo(QStringLiteral("a@x.com;b@x.com"));
    s.SetErrorTo(QStringLiteral("a@x.com"));
    s.AddNew();
    s.SetMultiRunLineSuccessTo(QStringLiteral("b@x.com;c@x.com")); // c is new: the whole field goes in
    s.SetMultiRunLineErrorTo(QStringLiteral("d@x.com"));
    const QStringList expected{QStringLiteral("a@x.com"), QStringLiteral("b@x.com"),
                               QStringLiteral("b@x.com"), QStringLiteral("c@x.com"),
                               QStringLiteral("d@x.com")};
    QCOMPARE(s.NotifyEmailList(), expected);
}

void TestSchedule::parameters()
{
    clsSchedule s(QStringLiteral("/app"));
    // The cursor starts on row 0, which isn't counted until a row is added.
    QCOMPARE(s.ParmPosition(), 0);
    QCOMPARE(s.ParmName(), QString());
    s.ParmAddNew();
    QCOMPARE(s.ParmPosition(), 0);
    s.SetParmReportID(QStringLiteral("1"));
    s.SetParmName(QStringLiteral("{?From}"));
    s.SetParmValueType(QStringLiteral("10"));
    s.SetParmValue(QStringLiteral("01-Jan-2024"));
    s.SetParmPrompt(QStringLiteral("From date"));
    s.SetParmMulti(QStringLiteral("N"));
    QCOMPARE(s.ParmCount(), 1);
    QCOMPARE(s.ParmCell(0, clsSchedule::parmMulti), QStringLiteral("N"));
    QCOMPARE(s.ParmCell(0, clsSchedule::parmUnused), QString());

    // Update in place, or add a row without moving the cursor.
    s.ParmUpdate(QStringLiteral("1"), QStringLiteral("{?From}"), QStringLiteral("10"),
                 QStringLiteral("02-Jan-2024"), QStringLiteral("p"));
    QCOMPARE(s.ParmCount(), 1);
    QCOMPARE(s.ParmValue(), QStringLiteral("02-Jan-2024"));
    QCOMPARE(s.ParmPrompt(), QStringLiteral("p"));
    QCOMPARE(s.ParmMulti(), QStringLiteral("N"));
    s.ParmUpdate(QStringLiteral("1"), QStringLiteral("{?To}"), QStringLiteral("10"), QString(),
                 QStringLiteral("To date"));
    QCOMPARE(s.ParmCount(), 2);
    QCOMPARE(s.ParmPosition(), 0);
    QCOMPARE(s.ParmReportCount(QStringLiteral("1")), qint16(1)); // the empty value doesn't count

    s.ParmDuplicate(QStringLiteral("1"), QStringLiteral("2"));
    QCOMPARE(s.ParmCount(), 4);
    s.ParmLocate(2);
    QCOMPARE(s.ParmReportID(), QStringLiteral("2"));
    QCOMPARE(s.ParmName(), QStringLiteral("{?From}"));
    QCOMPARE(s.ParmPrompt(), QStringLiteral("p"));
    QCOMPARE(s.ParmMulti(), QStringLiteral("N"));
    s.ParmLocate(3);
    QCOMPARE(s.ParmName(), QStringLiteral("{?To}"));

    // A collection's values pass to its members where set.
    s.ParmUpdate(QStringLiteral("9"), QStringLiteral("{?To}"), QStringLiteral("10"),
                 QStringLiteral("31-Jan-2024"), QString());
    s.ParmUpdate(QStringLiteral("9"), QStringLiteral("{?From}"), QStringLiteral("10"), QString(), QString());
    s.SetCollectionParm(QStringLiteral("9"), QStringLiteral("2"));
    QCOMPARE(s.ParmCell(2, clsSchedule::parmValue), QStringLiteral("02-Jan-2024"));
    QCOMPARE(s.ParmCell(3, clsSchedule::parmValue), QStringLiteral("31-Jan-2024"));
    QCOMPARE(s.ParmCell(1, clsSchedule::parmValue), QString());

    s.ParmRemove(QStringLiteral("2"));
    QCOMPARE(s.ParmCount(), 6);
    QCOMPARE(s.ParmCell(2, clsSchedule::parmReportID), QString());
    QCOMPARE(s.ParmCell(3, clsSchedule::parmReportID), QString());
    QCOMPARE(s.ParmReportCount(QStringLiteral("2")), qint16(0));
    s.ParmLocate(-1);
    QCOMPARE(ErrorOf([&] { s.SetParmValue(QString()); }), 9);
}

void TestSchedule::parameterLimit()
{
    clsSchedule s(QStringLiteral("/app"));
    for (int i = 0; i < 3001; ++i)
        s.ParmAddNew();
    QCOMPARE(s.ParmCount(), 3001);
    QCOMPARE(ErrorOf([&] { s.ParmAddNew(); }), 9);
    QCOMPARE(ErrorOf([&] {
                 s.ParmUpdate(QStringLiteral("1"), QStringLiteral("x"), QString(), QString(), QString());
             }),
             9);
    QCOMPARE(s.ParmCount(), 3001);
    for (int i = 0; i < 2001; ++i)
        s.NewCollectionItem();
    QCOMPARE(ErrorOf([&] { s.NewCollectionItem(); }), 9);
}

void TestSchedule::collections()
{
    clsSchedule s(QStringLiteral("/app"));
    const QString coll = AddItem(s, QStringLiteral("Month end"));
    s.SetFile(QStringLiteral("COLLECTION"));
    const QString m1 = AddItem(s, QStringLiteral("Member one"));
    s.SetSchedule(QStringLiteral("N"));
    s.SetNextRun(QStringLiteral("01-Feb-2024 10:00"));
    const QString m2 = AddItem(s, QStringLiteral("Member two"));
    s.SetSchedule(QStringLiteral("Y"));
    const QString m3 = AddItem(s, QString()); // raw name empty
    s.SetFile(QStringLiteral("/r/third.rpt"));

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

    for (const QString &member : {m2, m3, QStringLiteral("99")}) {
        s.NewCollectionItem();
        s.SetCollectionID(coll);
        s.SetCollectionItem(member);
    }
    QCOMPARE(s.CollectionCount(), 4);
    s.SetCollectionPosition(0);
    QCOMPARE(s.CollectionReport(), QStringLiteral("Member one"));
    QCOMPARE(s.CollectionFile(), QStringLiteral("/reports/Member one.rpt"));
    s.SetCollectionPosition(2);
    QCOMPARE(s.CollectionReport(), QString()); // raw name
    QCOMPARE(s.CollectionFile(), QStringLiteral("/r/third.rpt"));
    s.SetCollectionPosition(3);
    QCOMPARE(s.CollectionReport(), QStringLiteral("Missing"));
    QCOMPARE(s.CollectionFile(), QStringLiteral("Lost Report"));
    QCOMPARE(s.CollectionNextRun(m1), QStringLiteral("01-Feb-2024 10:00"));
    QCOMPARE(s.CollectionNextRun(QStringLiteral("99")), QString());
    QCOMPARE(s.CollectionDescription(m2), QStringLiteral("Member two"));
    QCOMPARE(s.CollectionDescription(QStringLiteral("99")), QString());

    s.SetCollectionPosition(0);
    s.CollectionSetReport();
    s.SetCollectionPosition(1);
    s.CollectionSetReport();
    s.SetCollectionPosition(2);
    s.CollectionSetReport();
    s.SetCollectionPosition(3);
    s.CollectionSetReport(); // missing member: nothing
    QCOMPARE(s.Cell(1, clsSchedule::colSchedule), QStringLiteral("C"));
    QCOMPARE(s.Cell(2, clsSchedule::colSchedule), QStringLiteral("Y"));
    QCOMPARE(s.Cell(3, clsSchedule::colSchedule), QStringLiteral("C"));

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
    QCOMPARE(s.CollectionReport(), QStringLiteral("Missing"));
    // An empty member finds the blank row past Count: empty name and file.
    s.SetCollectionItem(QString());
    QCOMPARE(s.CollectionReport(), QString());
    QCOMPARE(s.CollectionFile(), QString());
}

void TestSchedule::domains()
{
    clsSchedule s(QStringLiteral("/app"));
    for (int d = 0; d < 10; ++d)
        QCOMPARE(s.Domain(d), QString());
    s.SaveDomain(0, QStringLiteral("example.com"));
    s.SaveDomain(9, QStringLiteral("example.org"));
    QCOMPARE(s.Domain(0), QStringLiteral("example.com"));
    QCOMPARE(s.Domain(9), QStringLiteral("example.org"));
    QCOMPARE(ErrorOf([&] { s.Domain(10); }), 9);
    QCOMPARE(ErrorOf([&] { s.SaveDomain(-1, QString()); }), 9);
}

QORLO_TEST_MAIN(TestSchedule)
#include "tst_schedule.moc"
