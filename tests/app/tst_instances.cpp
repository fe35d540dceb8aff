#include "Files.h"
#include "Peers.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestInstances : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void templateUnitRunsOneScheduleEachFolder();
};

namespace {

// The command line of the template unit for one instance: its Environment= settings and the
// program of ExecStart=, with the home (%h) and the instance name (%i) filled in.
struct UnitCommand
{
    QString program;
    QProcessEnvironment environment;
};

UnitCommand InstanceCommand(const QString &home, const QString &instance)
{
    UnitCommand command{QString(), OwnProgramEnvironment(home)};
    const QString unit =
        QString::fromUtf8(ReadFile(QStringLiteral(QORLO_SOURCE_DIR) + u"/dist/qorlomanagerd@.service"_s));
    for (QString line : unit.split(u'\n')) {
        line.replace(u"%h"_s, home).replace(u"%i"_s, instance);
        if (line.startsWith(u"ExecStart="_s))
            command.program = line.mid(10).trimmed();
        if (line.startsWith(u"Environment="_s)) {
            const QString setting = line.mid(12).trimmed();
            const qsizetype equals = setting.indexOf(u'=');
            command.environment.insert(setting.left(equals), setting.mid(equals + 1));
        }
    }
    return command;
}

// An active schedule with one program item, due at once, named by a path relative to the folder.
void WriteSchedule(const QString &folder, const QByteArray &name)
{
    QDir().mkpath(folder);
    WriteScript(folder + u"/job.sh"_s, "pwd >> ran.txt");
    WriteFile(folder + u"/Qorlo.XML"_s,
              "<Schedule>\r\n<Current_Version>\r\n<Schedule_State>Active</Schedule_State>\r\n"
              "<AutoRun>Set</AutoRun>\r\n</Current_Version>\r\n<Report_Schedule>\r\n<Report>\r\n"
              "<ReportID>1</ReportID>\r\n<ReportName>" +
                  name +
                  "</ReportName>\r\n<ReportFile>job.sh</ReportFile>\r\n"
                  "<ReportSchedule>Y</ReportSchedule>\r\n<ReportFrequency>Day(s)</ReportFrequency>\r\n"
                  "<FreqTimes>1</FreqTimes>\r\n<NextRun>01-Jan-2026 00:00</NextRun>\r\n</Report>\r\n"
                  "</Report_Schedule>\r\n</Schedule>\r\n");
}

} // namespace

void TestInstances::templateUnitRunsOneScheduleEachFolder()
{
    QTemporaryDir home;
    const UnitCommand sales = InstanceCommand(home.path(), u"sales"_s);
    const UnitCommand stock = InstanceCommand(home.path(), u"stock"_s);
    QCOMPARE(sales.program, u"/usr/bin/qorlomanagerd"_s);
    const QString salesFolder = home.path() + u"/.local/share/QorloMANAGER/sales"_s;
    const QString stockFolder = home.path() + u"/.local/share/QorloMANAGER/stock"_s;
    QCOMPARE(sales.environment.value(u"QORLO_APP_FOLDER"_s), salesFolder);
    QCOMPARE(stock.environment.value(u"QORLO_APP_FOLDER"_s), stockFolder);
    WriteSchedule(salesFolder, "Sales figures");
    WriteSchedule(stockFolder, "Stock levels");

    // The unit names the installed program; the test runs the one just built, from another folder.
    PeerProcess salesDaemon;
    PeerProcess stockDaemon;
    QVERIFY2(salesDaemon.start(QStringLiteral(QORLO_DAEMON), {}, QString(), 5000, sales.environment),
             qPrintable(salesDaemon.error()));
    QVERIFY2(stockDaemon.start(QStringLiteral(QORLO_DAEMON), {}, QString(), 5000, stock.environment),
             qPrintable(stockDaemon.error()));

    for (const QString &folder : {salesFolder, stockFolder}) {
        QVERIFY2(WaitForText(folder + u"/QorloLog.XML"_s, "Successful Execute of Application", 20000),
                 qPrintable(folder));
        QCOMPARE(ReadFile(folder + u"/ran.txt"_s), folder.toUtf8() + '\n');
        QVERIFY(WaitForText(folder + u"/Web/livestat.htm"_s, "The schedule is currently active", 5000));
    }
    QVERIFY(ReadFile(salesFolder + u"/QorloLog.XML"_s).contains("Sales figures"));
    QVERIFY(!ReadFile(salesFolder + u"/QorloLog.XML"_s).contains("Stock levels"));
    QVERIFY(WaitForText(stockFolder + u"/Web/logstat.htm"_s, "Stock levels", 5000));
    QVERIFY(!ReadFile(stockFolder + u"/Web/logstat.htm"_s).contains("Sales figures"));

    // A third process on the sales folder, named through another path, is refused.
    QVERIFY(QFile::link(salesFolder, home.path() + u"/sales-link"_s));
    QProcessEnvironment again = sales.environment;
    again.insert(u"QORLO_APP_FOLDER"_s, home.path() + u"/sales-link"_s);
    QProcess third;
    third.setProcessEnvironment(again);
    third.start(QStringLiteral(QORLO_DAEMON), {});
    QVERIFY(third.waitForFinished(15000));
    QCOMPARE(third.exitCode(), 1);
    QVERIFY(third.readAllStandardError().contains("QorloMANAGER: QorloMANAGER already running"));

    for (PeerProcess *daemon : {&salesDaemon, &stockDaemon}) {
        daemon->stop();
        QCOMPARE(daemon->process()->exitStatus(), QProcess::NormalExit);
        QCOMPARE(daemon->process()->exitCode(), 0);
    }
    for (const QString &folder : {salesFolder, stockFolder})
        QVERIFY(ReadFile(folder + u"/Web/livestat.htm"_s).contains("QorloMANAGER shutdown at "));
}

QORLO_TEST_MAIN(TestInstances)
#include "tst_instances.moc"
