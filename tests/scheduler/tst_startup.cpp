#include "AppObjects.h"
#include "CupsPeer.h"
#include "TestPrompter.h"
#include "TestMain.h"

#include "core/AppFolder.h"
#include "core/TWReg.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"
#include "scheduler/SingleInstance.h"
#include "scheduler/StartUp.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestStartUp : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void firstStartAndSecondInstance();
    void savedStateAndElection();
    void singleInstanceLock();
    void unreadableSchedule();
    void commandFolderAccess();
    void leftOverMailLocks();
};

namespace {

// One start of the program on the folder, its questions answered Yes.
struct Start
{
    explicit Start(const QString &appPath) : globals(appPath, prompter) {}
    bool run(const QString &program = u"qorlomanagerd"_s)
    {
        return StartUp(globals, instance, dispatcher, globals.PathOf(program));
    }

    TestPrompter prompter{true};
    QorloGlobals globals;
    SingleInstance instance;
    Dispatcher dispatcher{globals};
};

} // namespace

void TestStartUp::initTestCase()
{
    // No print server answers here, so the printer warning is certain and quick.
    NoPrintServer();
}

// An empty folder: the folders appear, the boxes come in order, the family settings are written, and
// a second start on the same folder is refused.
void TestStartUp::firstStartAndSecondInstance()
{
    QTemporaryDir app;
    Start first(app.path());
    QVERIFY(first.run());
    QCOMPARE(first.prompter.messages,
             (QStringList{u"Printer Setup: Warning - No printers configured"_s,
                          u"QorloMANAGER: No Data in Schedule"_s,
                          u"SMTP Server settings: Please enter your mail connection details"_s}));
    QVERIFY(first.prompter.questions.isEmpty());
    QCOMPARE(QDir(app.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name),
             (QStringList{u"Backup"_s, u"Help"_s, u"Mail"_s, u"Multirun"_s, u"Output"_s, u"Remote"_s,
                          u"SMTP"_s, u"Spool"_s, u"Web"_s}));
    QVERIFY(!QFile::exists(app.filePath(u"Qorlo.XML"_s)));
    QCOMPARE(TWReg::ReadApplicationValue(u"QorloMANAGER"_s), app.filePath(u"qorlomanagerd"_s));
    QCOMPARE(TWReg::ReadApplicationValue(u"Scheduler"_s), u"QorloMANAGER"_s);
    QCOMPARE(TWReg::ReadApplicationValue(u"Mailbox"_s), app.filePath(u"Mail"_s));
    QCOMPARE(TWReg::ReadApplicationValue(u"RemoteFolder"_s), app.filePath(u"Remote"_s));
    QCOMPARE(TWReg::ReadApplicationValue(u"LogFolder"_s), app.filePath(u"Remote"_s));

    Start second(app.path() + u"/Web/.."_s);
    QVERIFY(!second.run());
    QCOMPARE(second.prompter.messages,
             QStringList{u"QorloMANAGER: QorloMANAGER already running\r\n"
                         u"Resume previous instance or wait 5 minutes and try again"_s});
}

// A schedule saved active asks the question, and No stops it; the log's retention values are reset;
// another program's election is left alone.
void TestStartUp::savedStateAndElection()
{
    QTemporaryDir app;
    TWReg::SaveApplicationValue(u"Scheduler"_s, u"OtherScheduler"_s);
    TWReg::SaveApplicationValue(u"Mailbox"_s, u"/elsewhere/Mail"_s);
    {
        clsSchedule saved(app.path());
        AddItem(saved, {u"1"_s, u"Item"_s, u"/bin/true"_s, u"D"_s, u"1"_s, u"01-Jan-2030 09:00"_s});
        saved.Active = true;
        saved.SMTP_Server = u"127.0.0.1"_s;
        saved.Save(app.filePath(u"Qorlo.XML"_s));
        WriteFile(app.filePath(u"QorloLog.XML"_s), "<QorloLogDoc>\r\n<LogHeader>\r\n<RetainLog>5</"
                                                   "RetainLog>\r\n<CheckRetainLog>M</CheckRetainLog>\r\n"
                                                   "</LogHeader>\r\n</QorloLogDoc>\r\n");
    }
    Start start(app.path());
    start.prompter.answer = false;
    QVERIFY(start.run(u"qorlomanager"_s));
    QorloGlobals &globals = start.globals;
    QCOMPARE(start.prompter.questions,
             QStringList{u"Previously active: Schedule was active prior to shutdown\r\n"
                         u"Do you wish to activate Schedule?"_s});
    QVERIFY(!globals.Schedule.Active);
    QCOMPARE(globals.Schedule.Count(), 1);
    QCOMPARE(globals.Log.RetainLog, 30);
    QCOMPARE(globals.Log.CheckRetainLog, u"W"_s);
    QCOMPARE(TWReg::ReadApplicationValue(u"Scheduler"_s), u"OtherScheduler"_s);
    QCOMPARE(TWReg::ReadApplicationValue(u"Mailbox"_s), u"/elsewhere/Mail"_s);
    QCOMPARE(TWReg::ReadApplicationValue(u"QorloMANAGER"_s), app.filePath(u"qorlomanager"_s));

    QVERIFY(CloseMainWindow(globals, false));
    QVERIFY(ReadFile(app.filePath(u"Web/livestat.htm"_s)).contains("QorloMANAGER shutdown at "));
}

// The folder is held by a lock on a file in it, which any user's instance sees and which nobody can take
// by binding a name first; the lock goes with the instance that held it.
void TestStartUp::singleInstanceLock()
{
    QTemporaryDir app;
    // The name of the socket an earlier build listened on, bound by someone else first.
    const QByteArray folder =
        QCryptographicHash::hash(QFileInfo(app.path()).canonicalFilePath().toUtf8(), QCryptographicHash::Sha1)
            .toHex();
    QLocalServer squatter;
    squatter.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    QVERIFY(squatter.listen(u"QorloMANAGER-"_s + QString::number(::getuid()) + u'-' + QLatin1String(folder)));
    {
        Start first(app.path());
        QVERIFY(first.run());
    }

    // Another process's lock on the file, as another user's instance would hold it.
    const QByteArray lockFile = QFile::encodeName(app.filePath(u".QorloMANAGER.lock"_s));
    const int fd = ::open(lockFile.constData(), O_RDONLY);
    QVERIFY(fd >= 0);
    QCOMPARE(::flock(fd, LOCK_EX | LOCK_NB), 0);
    Start second(app.path());
    QVERIFY(!second.run());
    QCOMPARE(second.prompter.messages.size(), 1);
    QVERIFY(second.prompter.messages.first().startsWith(u"QorloMANAGER: QorloMANAGER already running"_s));
    ::close(fd);
    Start third(app.path());
    QVERIFY(third.run());
}

// A schedule saved by an editor as UTF-16 reads as its items. A schedule that yields no item and no
// setting is kept beside under a dated name before the first save writes the empty schedule over it.
void TestStartUp::unreadableSchedule()
{
    QTemporaryDir app;
    const QString file = app.filePath(u"Qorlo.XML"_s);
    QString text = u"\ufeff<Schedule>\r\n<Schedule_State>Stopped</Schedule_State>\r\n"_s;
    for (int id = 1; id <= 3; ++id)
        text += u"<ReportID>%1</ReportID>\r\n<ReportName>Caf\u00e9 %1</ReportName>\r\n"_s.arg(id);
    WriteFile(file, QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2));
    {
        Start start(app.path());
        QVERIFY(start.run());
        QCOMPARE(start.globals.Schedule.Count(), 3);
        QCOMPARE(start.globals.Schedule.Cell(2, clsSchedule::colName), u"Caf\u00e9 3"_s);
    }

    // Bytes without a ">", so that no line has a tag.
    const QByteArray unreadable = "x" + RandomBytes(2048).replace('>', 'x');
    WriteFile(file, unreadable);
    Start start(app.path());
    QVERIFY(start.run());
    QCOMPARE(start.globals.Schedule.Count(), 0);
    const QStringList kept = FileNames(app.path(), {u"Qorlo-unread-*.XML"_s});
    QCOMPARE(kept.size(), 1);
    QCOMPARE(ReadFile(app.filePath(kept.first())), unreadable);
    QCOMPARE(SavedLogEntries(app.path()),
             QStringList{u"QorloMANAGER|No item and no setting could be read from "_s + file +
                         u"; it is kept as "_s + app.filePath(kept.first())});
    start.dispatcher.Tick();
    QVERIFY(ReadFile(file).contains("<Report_Schedule>"));
    QCOMPARE(ReadFile(app.filePath(kept.first())), unreadable);
}

// The command folders are made owner-only at every start, not only when they are made. A folder that
// another user owns is not read: said in the run log and on the status page. Symbolic links and
// FIFOs among the command files are passed over.
void TestStartUp::commandFolderAccess()
{
    QTemporaryDir app;
    AppFolder::MakeWorkingFolders(app.path());
    QVERIFY(QFile::setPermissions(app.filePath(u"Remote"_s), QFileDevice::Permissions(0x7777)));
    QVERIFY(QFile::setPermissions(app.filePath(u"Mail"_s), QFileDevice::Permissions(0x7755)));
    const QByteArray command = "<ReportID>4</ReportID>\r\n<ReportName>From a link</ReportName>\r\n";
    WriteFile(app.filePath(u"elsewhere.xml"_s), command);
    QVERIFY(QFile::link(app.filePath(u"elsewhere.xml"_s), app.filePath(u"Remote/link.xml"_s)));
    QVERIFY(QFile::link(app.filePath(u"elsewhere.xml"_s), app.filePath(u"Remote/hold.lck"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(app.filePath(u"Remote/pipe.xml"_s)).constData(), 0600), 0);
    WriteFile(app.filePath(u"Remote/real.xml"_s),
              "<ReportID>5</ReportID>\r\n<ReportName>Real</ReportName>\r\n");
    {
        Start start(app.path());
        QVERIFY(start.run());
        for (const char *folder : {"Remote", "Mail"}) {
            struct stat status;
            QCOMPARE(::stat(QFile::encodeName(app.filePath(QLatin1String(folder))).constData(), &status), 0);
            QCOMPARE(status.st_mode & 07777, mode_t(0700));
        }
        start.dispatcher.Tick();
        QCOMPARE(start.globals.Schedule.Count(), 1);
        QCOMPARE(start.globals.Schedule.Cell(0, clsSchedule::colName), u"Real"_s);
        QCOMPARE(FileNames(app.filePath(u"Remote"_s)), (QStringList{u"hold.lck"_s, u"link.xml"_s}));
        QCOMPARE(ReadFile(app.filePath(u"elsewhere.xml"_s)), command);
    }

    // A Remote folder of another user: as root, handed to nobody; otherwise, a link to the root's folder.
    const QString remote = app.filePath(u"Remote"_s);
    QVERIFY(QDir(remote).removeRecursively());
    if (::geteuid() == 0) {
        QVERIFY(QDir().mkdir(remote));
        QCOMPARE(::chown(QFile::encodeName(remote).constData(), 65534, 65534), 0);
        QVERIFY(QFile::setPermissions(remote, QFileDevice::Permissions(0x7777)));
        WriteFile(app.filePath(u"Remote/start.xml"_s),
                  "<ReportID>6</ReportID>\r\n<ReportFile>/bin/sh</ReportFile>\r\n");
    } else {
        QVERIFY(QFile::link(u"/"_s, remote));
    }
    Start start(app.path());
    QVERIFY(start.run());
    start.dispatcher.Tick();
    QCOMPARE(start.globals.Schedule.Count(), 1);
    const QString note = u"Command folder "_s + remote + u" is not read: it belongs to another user"_s;
    QCOMPARE(SavedLogEntries(app.path()),
             (QStringList{u"REMOTE|Process Remote command file: real.xml"_s, u"REMOTE|"_s + note}));
    QVERIFY(ReadFile(app.filePath(u"Web/livestat.htm"_s)).contains(QByteArray(note.toUtf8() + "</br>")));
    if (::geteuid() == 0) {
        QVERIFY(QFile::exists(app.filePath(u"Remote/start.xml"_s)));
        QCOMPARE(QFile::permissions(remote) & 0x0077, QFileDevice::Permissions(0x0077));
    }
}

// Lock files of the program's own naming left in Mail by a process that ended while reading go at the
// next start; other programs' locks stay.
void TestStartUp::leftOverMailLocks()
{
    QTemporaryDir app;
    AppFolder::MakeWorkingFolders(app.path());
    WriteFile(app.filePath(u"Mail/QorloMAIL2359.lck"_s), "Lock File Created : 01-Jan-2026");
    WriteFile(app.filePath(u"Mail/writer.lck"_s), "");
    Start start(app.path());
    QVERIFY(start.run());
    QCOMPARE(FileNames(app.filePath(u"Mail"_s)), QStringList{u"writer.lck"_s});
}

QORLO_TEST_MAIN(TestStartUp)
#include "tst_startup.moc"
