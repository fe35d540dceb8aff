// Runs a real qorlomanagerd on 200 due items while remote command files arrive every 200 ms, kills it
// with SIGKILL at random moments, and after each kill checks what it left: every state file parses, no
// item and no command is lost, no run is repeated, no temporary file is left. Prints the counts.
//
// bench_killloop [KILLS [SEED]]   (defaults: 50 kills, seed from the clock)

#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "log/clsLog.h"
#include "store/clsSchedule.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int kItems = 200;
constexpr int kCommandIdBase = 100000;
// The schedule holds at most clsSchedule::MaxItems items and a command beyond that fails by design, so
// each command also deletes the item of the command this many before it.
constexpr int kKeptCommands = 500;
static_assert(kItems + kKeptCommands < clsSchedule::MaxItems);

struct Counts
{
    int kills = 0;
    int killsWithCommandsWaiting = 0;
    int commandsWritten = 0;
    int stateChecks = 0;
    int unreadableFiles = 0;
    int lostItems = 0;
    int lostCommands = 0;
    int runs = 0;
    int repeatedRuns = 0;
    int temporaryFiles = 0;
    int scheduleItems = 0;
    QSet<QString> failedCommands; // command files already reported from Remote/Failed/
};

class Installation
{
public:
    Installation()
    {
        m_app = m_dir.filePath(QStringLiteral("app"));
        QDir().mkpath(path(QStringLiteral("items")));
        QDir().mkpath(path(QStringLiteral("Remote")));
        QFile::copy(QStringLiteral(QORLO_DAEMON), path(QStringLiteral("qorlomanagerd")));
        QFile::setPermissions(path(QStringLiteral("qorlomanagerd")),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        WriteSchedule();
    }
    QString path(const QString &name) const { return m_app + QLatin1Char('/') + name; }
    QString appPath() const { return m_app; }

    void start(QProcess &daemon) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_dir.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath(QStringLiteral("config")));
        environment.insert(QStringLiteral("CUPS_SERVER"), QStringLiteral("127.0.0.1:1"));
        environment.remove(QStringLiteral("QORLO_APP_FOLDER"));
        daemon.setProcessEnvironment(environment);
        daemon.setWorkingDirectory(m_app);
        daemon.setStandardOutputFile(QProcess::nullDevice());
        daemon.setStandardErrorFile(m_dir.filePath(QStringLiteral("daemon.err")), QIODevice::Append);
        daemon.start(path(QStringLiteral("qorlomanagerd")), {});
        daemon.waitForStarted(5000);
    }

    // A command file, written under another name and renamed, as the writers' rule asks.
    void writeCommand(int number) const
    {
        const QString name = path(QStringLiteral("Remote/cmd-%1").arg(number));
        QFile file(name + QStringLiteral(".tmp"));
        if (!file.open(QIODevice::WriteOnly))
            return;
        if (number > kKeptCommands)
            file.write(QStringLiteral("<DeleteReportID>%1</DeleteReportID>\r\n")
                           .arg(kCommandIdBase + number - kKeptCommands)
                           .toLatin1());
        file.write(
            QStringLiteral("<ReportID>%1</ReportID>\r\n<ReportName>Command %2</ReportName>\r\n"
                           "<ReportFile>/bin/true</ReportFile>\r\n<ReportGroup>remote</ReportGroup>\r\n")
                .arg(kCommandIdBase + number)
                .arg(number)
                .toLatin1());
        file.close();
        QFile::rename(name + QStringLiteral(".tmp"), name + QStringLiteral(".xml"));
    }

private:
    // 200 one-off items, all due, oldest first; each appends its ID to runs.txt when it runs.
    void WriteSchedule() const
    {
        clsSchedule schedule(m_app);
        const double now = Now();
        for (int id = 1; id <= kItems; ++id) {
            const QString script = path(QStringLiteral("items/item-%1.sh").arg(id));
            QFile file(script);
            if (file.open(QIODevice::WriteOnly))
                file.write("#!/bin/sh\necho " + QByteArray::number(id) + " >> '" +
                           path(QStringLiteral("runs.txt")).toUtf8() + "'\n");
            file.close();
            QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            schedule.AddNew();
            schedule.SetReportID(QString::number(id));
            schedule.SetName(QStringLiteral("Item %1").arg(id));
            schedule.SetFile(script);
            schedule.SetSchedule(QStringLiteral("Y"));
            schedule.SetFrequency(QStringLiteral("Once"));
            schedule.SetFreqTimes(QStringLiteral("1"));
            schedule.SetNextRun(FormatDateTime(now - (kItems - id + 1) / 1440.0));
        }
        schedule.Active = true;
        schedule.AutoRun = true;
        schedule.SMTP_Server = QStringLiteral("127.0.0.1");
        schedule.Save(path(QStringLiteral("Qorlo.XML")));
    }

    QTemporaryDir m_dir;
    QString m_app;
};

// Whether the file was written whole: it ends with the given last line.
bool EndsWith(const QString &path, const QByteArray &last)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll().endsWith(last);
}

void Pump(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

QStringList PendingCommands(const Installation &installed)
{
    return QDir(installed.path(QStringLiteral("Remote")))
        .entryList({QStringLiteral("cmd-*.xml")}, QDir::Files);
}

// Each command file the daemon moved to Remote/Failed/ since the last check, with its content and the
// run-log entries that name it (they say why).
void ReportFailedCommands(const Installation &installed, const clsLog &log, Counts &counts)
{
    const QDir failed(installed.path(QStringLiteral("Remote/Failed")));
    for (const QString &name : failed.entryList(QDir::Files, QDir::Name)) {
        if (counts.failedCommands.contains(name))
            continue;
        counts.failedCommands.insert(name);
        std::printf("  failed command %s:\n", qPrintable(name));
        for (int row = 0; row < log.Count(); ++row) {
            if (log.CellAt(row, clsLog::ColText).contains(name))
                std::printf("    log: %s %s\n", qPrintable(log.CellAt(row, clsLog::ColLogDate)),
                            qPrintable(log.CellAt(row, clsLog::ColText)));
        }
        QFile file(failed.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            std::printf("    content:\n%s\n", file.readAll().constData());
    }
}

// Every check of one stopped daemon's folder, added to the counts.
void Check(const Installation &installed, int commandsWritten, Counts &counts)
{
    ++counts.stateChecks;
    clsSchedule schedule(installed.appPath());
    const QString scheduleFile = installed.path(QStringLiteral("Qorlo.XML"));
    try {
        schedule.Load(scheduleFile);
    } catch (const QorloError &) {
        ++counts.unreadableFiles;
    }
    if (!EndsWith(scheduleFile, "</Schedule>\r\n"))
        ++counts.unreadableFiles;
    clsLog log(installed.appPath());
    try {
        log.Load(log.FileName());
    } catch (const QorloError &) {
        ++counts.unreadableFiles;
    }
    if (QFile::exists(log.FileName()) && !EndsWith(log.FileName(), "</QorloLogDoc>\r\n"))
        ++counts.unreadableFiles;
    ReportFailedCommands(installed, log, counts);
    QDirIterator written(installed.appPath(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    static const QRegularExpression expected(
        QStringLiteral("^(qorlomanagerd|Qorlo\\.XML|QorloLog\\.XML|\\.QorloMANAGER\\.lock|runs\\.txt|"
                       "items/item-\\d+\\.sh|Backup/Qorlo\\d{8}\\.xml|Web/(livestat|logstat)\\.htm|"
                       "Remote/cmd-\\d+\\.xml|Help/.*)$"));
    while (written.hasNext()) {
        const QString relative = QDir(installed.appPath()).relativeFilePath(written.next());
        if (!expected.match(relative).hasMatch()) {
            ++counts.temporaryFiles;
            std::printf("  left over: %s\n", qPrintable(relative));
        }
        if (relative.startsWith(QLatin1String("Backup/")) && !EndsWith(written.filePath(), "</Schedule>\r\n"))
            ++counts.unreadableFiles;
        if (relative.startsWith(QLatin1String("Web/")) && !EndsWith(written.filePath(), "</html>\r\n"))
            ++counts.unreadableFiles;
    }

    counts.scheduleItems = schedule.Count();
    counts.lostItems = 0;
    for (int id = 1; id <= kItems; ++id)
        counts.lostItems += schedule.Confirm(QString::number(id)) ? 0 : 1;
    const QStringList waiting = PendingCommands(installed);
    const QSet<QString> pending(waiting.cbegin(), waiting.cend());
    const auto applied = [&](int number) {
        return number <= commandsWritten && !pending.contains(QStringLiteral("cmd-%1.xml").arg(number));
    };
    counts.lostCommands = 0;
    for (int number = 1; number <= commandsWritten; ++number) {
        // The later command deletes this item and adds its own in one save; a kill after that save
        // and before its file is deleted leaves the file waiting, but its own item tells.
        const int later = number + kKeptCommands;
        const bool deletedLater =
            applied(later) ||
            (later <= commandsWritten && schedule.Confirm(QString::number(kCommandIdBase + later)));
        if (applied(number) && !deletedLater && !schedule.Confirm(QString::number(kCommandIdBase + number)))
            ++counts.lostCommands;
    }
    QFile runs(installed.path(QStringLiteral("runs.txt")));
    QSet<QByteArray> seen;
    counts.runs = counts.repeatedRuns = 0;
    if (runs.open(QIODevice::ReadOnly)) {
        for (const QByteArray &id : runs.readAll().split('\n')) {
            if (id.isEmpty())
                continue;
            ++counts.runs;
            if (seen.contains(id))
                ++counts.repeatedRuns;
            seen.insert(id);
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int kills = argc > 1 ? QByteArray(argv[1]).toInt() : 50;
    const quint32 seed = argc > 2 ? QByteArray(argv[2]).toUInt() : QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    Installation installed;
    Counts counts;

    QTimer writer;
    writer.setInterval(200);
    QObject::connect(&writer, &QTimer::timeout, [&] { installed.writeCommand(++counts.commandsWritten); });
    writer.start();

    std::printf("bench_killloop: %d items, a command file every 200 ms, %d kills (seed %u)\n", kItems, kills,
                seed);
    for (int round = 1; round <= kills; ++round) {
        QProcess daemon;
        installed.start(daemon);
        // Ticks come 6 s apart from the start: moments up to 14 s fall before, in and after the first two.
        Pump(int(random.bounded(200, 14000)));
        counts.killsWithCommandsWaiting += PendingCommands(installed).isEmpty() ? 0 : 1;
        daemon.kill();
        daemon.waitForFinished(5000);
        ++counts.kills;
        Check(installed, counts.commandsWritten, counts);
        std::printf(
            "kill %2d: %5d commands written, %3d waiting, %4d items, %3d runs, lost %d items / %d commands, "
            "%d repeated, %d unreadable, %d left over\n",
            round, counts.commandsWritten, int(PendingCommands(installed).size()), counts.scheduleItems,
            counts.runs, counts.lostItems, counts.lostCommands, counts.repeatedRuns, counts.unreadableFiles,
            counts.temporaryFiles);
        std::fflush(stdout);
    }

    // A last start without a kill takes every command that is still waiting.
    writer.stop();
    QProcess daemon;
    installed.start(daemon);
    // Waits while the pile shrinks: at most 20 s without progress.
    for (qsizetype left = PendingCommands(installed).size(), stalled = 0; left > 0 && stalled < 200;
         ++stalled) {
        Pump(100);
        const qsizetype now = PendingCommands(installed).size();
        if (now < left)
            stalled = 0;
        left = now;
    }
    Pump(500);
    daemon.terminate();
    daemon.waitForFinished(15000);
    Check(installed, counts.commandsWritten, counts);
    std::printf("\nafter a last start that took the waiting commands:\n"
                "kills: %d (%d while command files were waiting)\n"
                "commands: %d written, %d applied, %d waiting, %d lost\n"
                "items: %d of %d present, %d lost\n"
                "runs: %d, %d repeated\n"
                "state files: %d checks, %d unreadable; temporary files left: %d\n",
                counts.kills, counts.killsWithCommandsWaiting, counts.commandsWritten,
                counts.commandsWritten - int(PendingCommands(installed).size()) - counts.lostCommands,
                int(PendingCommands(installed).size()), counts.lostCommands, kItems - counts.lostItems,
                kItems, counts.lostItems, counts.runs, counts.repeatedRuns, counts.stateChecks,
                counts.unreadableFiles, counts.temporaryFiles);
    const bool sound = counts.lostItems == 0 && counts.lostCommands == 0 && counts.repeatedRuns == 0 &&
                       counts.unreadableFiles == 0 && counts.temporaryFiles == 0;
    return sound ? 0 : 1;
}
