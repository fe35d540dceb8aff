// An error that ends the process while the tick works on one item or one command file is recorded
// first and its cause set aside, so that the next start goes on; remote commands are saved one file
// at a time; and an exception that is not the program's own ends it as a run-time error, not an abort.
#include "AppObjects.h"
#include "TestMain.h"
#include "TestPrompter.h"

#include "core/AppFolder.h"
#include "core/Clock.h"
#include "core/DayDate.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/ListScheduleView.h"
#include "scheduler/QorloGlobals.h"

#include <QDir>
#include <QTemporaryDir>

#include <new>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestPoisonPills : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void itemThatFailsIsHeld();
    void commandFilesThatFailAreSetAside();
    void remoteCommandsAreSavedOneByOne();
    void remoteFileAppliedAgainChangesNothing();
    void foreignExceptionEndsAsRunTimeError();
};

namespace {

// The running program of one application folder: the objects of a fresh start, ticked by hand.
struct Program
{
    explicit Program(const QString &appPath) : globals(appPath, prompter)
    {
        globals.Log.ApplyStartDefaults();
        globals.Schedule.Load(globals.PathOf(u"Qorlo.XML"_s));
        globals.ViewTable();
    }
    // The number of the error the tick ends with, 0 if none.
    int tick()
    {
        return ErrorOf([this] { dispatcher.Tick(); });
    }

    TestPrompter prompter{true};
    QorloGlobals globals;
    Dispatcher dispatcher{globals};
};

struct Folder
{
    Folder() { AppFolder::MakeWorkingFolders(app.path()); }
    QString path(const QString &name) const { return app.filePath(name); }
    QStringList files(const QString &folder) const { return FileNames(path(folder)); }
    QStringList log() const { return SavedLogEntries(app.path()); }

    QTemporaryDir app;
};

QByteArray Overdue()
{
    return FormatDateTime(Now() - 1).toUtf8();
}

} // namespace

// A remote command sets a FreqTimes the week rule cannot step by: the tick that picks the item ends
// the process with the overflow error, after the item is put On Hold and saved and the log says why.
// The next start then runs on.
void TestPoisonPills::itemThatFailsIsHeld()
{
    Folder folder;
    {
        Program program(folder.app.path());
        program.globals.Schedule.Active = true;
        WriteFile(folder.path(u"Remote/weekly.xml"_s),
                  "<ReportID>5</ReportID>\r\n<ReportName>Weekly</ReportName>\r\n"
                  "<ReportFile>/bin/true</ReportFile>\r\n<ReportSchedule>Y</ReportSchedule>\r\n"
                  "<ReportFrequency>W</ReportFrequency>\r\n<FreqTimes>99999</FreqTimes>\r\n<NextRun>" +
                      Overdue() + "</NextRun>\r\n");
        QCOMPARE(program.tick(), 6);
    }
    clsSchedule saved(folder.app.path());
    saved.Load(folder.path(u"Qorlo.XML"_s));
    saved.Find(u"5"_s);
    QCOMPARE(saved.Schedule(), u"N"_s);
    QCOMPARE(saved.NextRun(), QString());
    QCOMPARE(saved.FreqTimes(), u"99999"_s);
    QCOMPARE(folder.log(), (QStringList{u"REMOTE|Process Remote command file: weekly.xml"_s,
                                        u"5|Weekly: Run-time error '6': Overflow - item put On Hold"_s}));

    Program restarted(folder.app.path());
    restarted.globals.Schedule.Active = true;
    QCOMPARE(restarted.tick(), 0);
    QCOMPARE(restarted.tick(), 0);
}

// A remote document that fails (an item tag before any ReportID) and a mail document that fails (a
// port beyond 16 bits) each end the process once: the file goes to Failed/ in its folder, the log says
// so, and the mail document's own lock file is gone, so later mail is not held up.
void TestPoisonPills::commandFilesThatFailAreSetAside()
{
    Folder folder;
    WriteFile(folder.path(u"Remote/orphan.xml"_s), "<ReportName>No row yet</ReportName>\r\n");
    QDir().mkpath(folder.path(u"Remote/Failed"_s));
    WriteFile(folder.path(u"Remote/Failed/orphan.xml"_s), "an older failure of the same name");
    {
        Program program(folder.app.path());
        QCOMPARE(program.tick(), 9);
    }
    QCOMPARE(folder.files(u"Remote"_s), QStringList());
    QCOMPARE(ReadFile(folder.path(u"Remote/Failed/orphan.xml"_s)), "<ReportName>No row yet</ReportName>\r\n");
    QCOMPARE(QFile::permissions(folder.path(u"Remote/Failed"_s)) & 0x0077, QFileDevice::Permissions());

    WriteFile(folder.path(u"Mail/port.xml"_s),
              "<QorloMAILDoc>\r\n<Server>127.0.0.1</Server>\r\n<SMTP-Port>99999</SMTP-Port>\r\n"
              "<To>boss@example.com</To>\r\n</QorloMAILDoc>\r\n");
    {
        Program program(folder.app.path());
        QCOMPARE(program.tick(), 6);
    }
    QCOMPARE(folder.files(u"Mail"_s), QStringList());
    QVERIFY(QFile::exists(folder.path(u"Mail/Failed/port.xml"_s)));
    QCOMPARE(
        folder.log(),
        (QStringList{
            u"REMOTE|Command file orphan.xml moved to Failed: Run-time error '9': Subscript out of range"_s,
            u"MAIL|Command file port.xml moved to Failed: Run-time error '6': Overflow"_s}));

    Program restarted(folder.app.path());
    QCOMPARE(restarted.tick(), 0);
    QCOMPARE(folder.log().size(), 2);
}

// Each remote file is saved before it is logged and deleted: when the log cannot be written (a
// damaged QorloLog.XML), the command of the file is in the saved schedule all the same, and the file
// is set aside, so that it is not applied twice.
void TestPoisonPills::remoteCommandsAreSavedOneByOne()
{
    Folder folder;
    WriteFile(folder.path(u"QorloLog.XML"_s), "<QorloLog>\r\n<LogDate>no date</LogDate>\r\n");
    WriteFile(folder.path(u"Remote/add.xml"_s), "<ReportID>12</ReportID>\r\n<ReportName>Added</"
                                                "ReportName>\r\n<ReportFile>/bin/true</ReportFile>\r\n");
    {
        Program program(folder.app.path());
        QCOMPARE(program.tick(), 13);
    }
    clsSchedule saved(folder.app.path());
    saved.Load(folder.path(u"Qorlo.XML"_s));
    QCOMPARE(saved.Count(), 1);
    QCOMPARE(saved.Cell(0, clsSchedule::colName), u"Added"_s);
    QCOMPARE(folder.files(u"Remote"_s), QStringList());
    QVERIFY(QFile::exists(folder.path(u"Remote/Failed/add.xml"_s)));
}

// A kill after a remote file is saved but before it is deleted leaves the file, and the next start
// applies it again: an add and a delete applied twice leave what they left once, without a failure.
void TestPoisonPills::remoteFileAppliedAgainChangesNothing()
{
    Folder folder;
    WriteFile(folder.path(u"Remote/old.xml"_s), "<ReportID>1</ReportID>\r\n<ReportName>Old</ReportName>\r\n");
    for (int start = 1; start <= 2; ++start) {
        WriteFile(folder.path(u"Remote/replace.xml"_s),
                  "<DeleteReportID>1</DeleteReportID>\r\n<ReportID>7</ReportID>\r\n"
                  "<ReportName>New</ReportName>\r\n");
        Program program(folder.app.path());
        QCOMPARE(program.tick(), 0);
        QCOMPARE(folder.files(u"Remote"_s), QStringList());
    }
    QCOMPARE(folder.files(u"Remote/Failed"_s), QStringList());
    clsSchedule saved(folder.app.path());
    saved.Load(folder.path(u"Qorlo.XML"_s));
    QCOMPARE(saved.Count(), 1);
    QCOMPARE(saved.Cell(0, clsSchedule::colReportID), u"7"_s);
    QCOMPARE(saved.Cell(0, clsSchedule::colName), u"New"_s);
}

// A view that runs out of memory while the tick paints the running row. The tick's failure reaches the
// front's fatal error box as error 7, through the event loop, where an exception that is not the
// program's own would otherwise abort the process.
void TestPoisonPills::foreignExceptionEndsAsRunTimeError()
{
    class ExhaustedView : public ListScheduleView
    {
    public:
        using ListScheduleView::ListScheduleView;
        void SetSchedule(int, int) override { throw std::bad_alloc(); }
    };

    Folder folder;
    TestPrompter prompter(true);
    QorloGlobals globals(folder.app.path(), prompter);
    ExhaustedView view(globals.Schedule);
    globals.SetView(view);
    globals.Log.ApplyStartDefaults();
    AddItem(globals.Schedule, {u"1"_s, u"Due"_s, u"/bin/true"_s, u"D"_s, u"1"_s, FormatDateTime(Now() - 1)});
    globals.Schedule.Active = true;
    globals.ViewTable();
    Dispatcher dispatcher(globals, 10);
    dispatcher.Start();
    QVERIFY(WaitUntil([&] { return !prompter.fatal.isEmpty(); }, 5000));
    QCOMPARE(prompter.fatal.first(), u"Run-time error '7': Out of memory"_s);
}

QORLO_TEST_MAIN(TestPoisonPills)
#include "tst_poisonpills.moc"
