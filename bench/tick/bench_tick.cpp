// The cost of a tick that finds nothing to do, over a schedule of 2000 items in a scratch folder.
#include "core/AppFolder.h"
#include "core/Clock.h"
#include "core/DayDate.h"
#include "core/QorloError.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

class SilentPrompter : public Prompter
{
public:
    void ShowMessage(const QString &, const QString &, Icon) override {}
    bool AskYesNo(const QString &, const QString &) override { return true; }
    bool AskOkCancel(const QString &, const QString &) override { return true; }
    void FatalError(const QorloError &error) override
    {
        QTextStream(stderr) << error.runTimeText() << Qt::endl;
    }
};

void FillSchedule(clsSchedule &schedule, int items)
{
    const QString nextRun = FormatDateTime(Now() + 30);
    for (int i = 1; i <= items; ++i) {
        schedule.AddNew();
        schedule.SetReportID(QString::number(i));
        schedule.SetFile(QStringLiteral("/bin/true"));
        schedule.SetFrequency(QStringLiteral("D"));
        schedule.SetFreqTimes(QStringLiteral("1"));
        schedule.SetNextRun(nextRun);
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir folder;
    AppFolder::MakeWorkingFolders(folder.path());
    SilentPrompter prompter;
    QorloGlobals globals(folder.path(), prompter);
    FillSchedule(globals.Schedule, 2000);
    globals.Schedule.Active = true;
    globals.ViewTable();
    Dispatcher dispatcher(globals);
    // The first tick takes the backup and writes the status page; the ones after it are idle.
    dispatcher.Tick();

    const int ticks = 2000;
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < ticks; ++i)
        dispatcher.Tick();
    const double perTickMs = double(timer.nsecsElapsed()) / 1e6 / ticks;
    QTextStream(stdout) << "idle tick, 2000 items: " << QString::number(perTickMs, 'f', 4)
                        << " ms (target under 1 ms)" << Qt::endl;
    return 0;
}
