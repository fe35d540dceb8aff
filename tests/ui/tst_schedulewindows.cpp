#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "core/DayDate.h"
#include "scheduler/Dispatcher.h"
#include "scheduler/QorloGlobals.h"
#include "ui/frmAdv.h"
#include "ui/frmBackup.h"
#include "ui/frmMain.h"
#include "ui/frmSetTimer.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

using namespace TestSupport;

namespace {

// The present moment of every test: Monday 2 March 2026, 09:30.
const QDateTime kNow(QDate(2026, 3, 2), QTime(9, 30));

struct WindowFixture : GlobalsFixture
{
    void addDailyItem(const QString &nextRun)
    {
        schedule.AddNew();
        schedule.SetNextRun(nextRun);
        schedule.SetSchedule(QStringLiteral("Y"));
        schedule.SetFrequency(QStringLiteral("D"));
        schedule.SetFreqTimes(QStringLiteral("1"));
    }
    QString nextRun(clsSchedule &of, const QString &reportID)
    {
        of.Find(reportID);
        return of.NextRun();
    }
    QString savedFile() const { return QString::fromUtf8(ReadFile(path(QStringLiteral("Qorlo.XML")))); }

    FixedClock clock{kNow};
    ClockGuard guard{clock};
};

} // namespace

class TestScheduleWindows : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void backupSettings();
    void advanceAnalyseAndProcess();
    void menuEntriesOpenTheWindows();
    void setTimerSavesStartOnly();
};

void TestScheduleWindows::backupSettings()
{
    WindowFixture f;
    f.schedule.BackupFrequency = QStringLiteral("Weekly");
    f.schedule.BackupDate = DayDate::FromParts(2026, 3, 5, 22, 15);
    f.schedule.BackupPrevious = QStringLiteral("26-Feb-2026 22:15");
    f.schedule.BackupPreviousFile = f.path(QStringLiteral("Backup/Qorlo20260226.xml"));
    f.schedule.BackupPurge = 45;
    frmBackup window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), QStringLiteral("Backup Settings"));
    auto *frequency = Child<QComboBox>(&window, "cboFrequency");
    QCOMPARE(frequency->count(), 4);
    QCOMPARE(frequency->currentText(), QStringLiteral("Weekly"));
    QCOMPARE(Child<QDateEdit>(&window, "dtNext")->date(), QDate(2026, 3, 5));
    QCOMPARE(Child<QComboBox>(&window, "cboHour")->currentText(), QStringLiteral("22"));
    QCOMPARE(Child<QComboBox>(&window, "cboMinute")->currentText(), QStringLiteral("15"));
    QCOMPARE(Child<QLabel>(&window, "lblPrevious")->text(), f.schedule.BackupPrevious);
    QCOMPARE(Child<QLabel>(&window, "lblPreviousFile")->text(), f.schedule.BackupPreviousFile);
    auto *purge = Child<QLineEdit>(&window, "txtPurgeDays");
    QCOMPARE(purge->text(), QStringLiteral("45"));

    frequency->setCurrentText(QStringLiteral("Never"));
    Child<QDateEdit>(&window, "dtNext")->setDate(QDate(2026, 4, 1));
    Child<QComboBox>(&window, "cboHour")->setCurrentIndex(6);
    Child<QComboBox>(&window, "cboMinute")->setCurrentIndex(5);
    purge->setText(QStringLiteral("60"));
    Click(&window, "cmdSave");
    QVERIFY(!window.isVisible());
    QCOMPARE(f.schedule.BackupFrequency, QStringLiteral("Never"));
    QCOMPARE(f.schedule.BackupDate, DayDate::FromParts(2026, 4, 1, 6, 5));
    QCOMPARE(f.schedule.BackupPurge, qint16(60));
    QVERIFY(f.savedFile().contains(QStringLiteral("<BackupDate>01-Apr-2026 06:05</BackupDate>")));
    QVERIFY(f.savedFile().contains(QStringLiteral("<BackupPurge>60</BackupPurge>")));

    // Purge days that are no number end the process with the conversion error; nothing is stored.
    window.open();
    frequency->setCurrentText(QStringLiteral("Daily"));
    purge->setText(QStringLiteral("sixty"));
    Click(&window, "cmdSave");
    QCOMPARE(f.prompter.fatal, QStringList{QStringLiteral("Run-time error '13': Type mismatch")});
    QCOMPARE(f.schedule.BackupFrequency, QStringLiteral("Never"));
    QCOMPARE(f.schedule.BackupPurge, qint16(60));
    QVERIFY(window.isVisible());
    Click(&window, "cmdExit");
    QVERIFY(!window.isVisible());
}

void TestScheduleWindows::advanceAnalyseAndProcess()
{
    WindowFixture f;
    f.addDailyItem(QStringLiteral("01-Mar-2026 08:00"));
    f.addDailyItem(QStringLiteral("03-Mar-2026 14:00"));
    f.addDailyItem(QStringLiteral("10-Mar-2026 08:00"));
    f.addDailyItem(QString());
    frmAdv window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), QStringLiteral("Advance Schedule"));
    auto *date = Child<QDateEdit>(&window, "dtAdv");
    auto *hour = Child<QComboBox>(&window, "cboHour");
    auto *minute = Child<QComboBox>(&window, "cboMinute");
    QCOMPARE(date->date(), kNow.date());
    QCOMPARE(hour->currentText(), QStringLiteral("9"));
    QCOMPARE(minute->currentText(), QStringLiteral("30"));
    auto *status = Child<QLabel>(&window, "lblStatus");

    date->setDate(QDate(2026, 3, 4));
    hour->setCurrentIndex(12);
    minute->setCurrentIndex(0);
    Click(&window, "cmdAnalyse");
    QCOMPARE(status->text(),
             QStringLiteral("2 items in schedule will be advanced when you click the process button"));
    QCOMPARE(f.nextRun(f.schedule, QStringLiteral("1")), QStringLiteral("01-Mar-2026 08:00"));

    // The question comes while the window says it is processing; No changes nothing.
    QString statusAtQuestion;
    f.prompter.onRecord = [&] { statusAtQuestion = status->text(); };
    Click(&window, "cmdProcess");
    QCOMPARE(f.prompter.take(),
             QStringList{QStringLiteral("Advance Schedule: Confirm you wish to update the schedule times")});
    QCOMPARE(statusAtQuestion, QStringLiteral("Processing schedule"));
    QCOMPARE(status->text(), QStringLiteral("Cancelled"));
    QCOMPARE(f.nextRun(f.schedule, QStringLiteral("2")), QStringLiteral("03-Mar-2026 14:00"));
    QVERIFY(!QFile::exists(f.path(QStringLiteral("Qorlo.XML"))));

    f.prompter.setNextAnswers({true});
    Click(&window, "cmdProcess");
    QCOMPARE(status->text(), QStringLiteral("2 items in schedule have now been advanced to process after "
                                            "04-Mar-2026 12:00"));
    const auto saved = f.saved();
    QCOMPARE(f.nextRun(*saved, QStringLiteral("1")), QStringLiteral("05-Mar-2026 08:00"));
    QCOMPARE(f.nextRun(*saved, QStringLiteral("2")), QStringLiteral("04-Mar-2026 14:00"));
    QCOMPARE(f.nextRun(*saved, QStringLiteral("3")), QStringLiteral("10-Mar-2026 08:00"));
    QCOMPARE(f.nextRun(*saved, QStringLiteral("4")), QString());
    QVERIFY(window.isVisible());
    QVERIFY(f.prompter.fatal.isEmpty());
}

void TestScheduleWindows::menuEntriesOpenTheWindows()
{
    WindowFixture f;
    f.addDailyItem(QStringLiteral("10-Mar-2026 08:00"));
    Dispatcher dispatcher(f.globals);
    frmMain mainWindow(f.globals, dispatcher);
    dispatcher.StartSchedule();
    QVERIFY(f.schedule.Active);
    mainWindow.findChild<QAction *>(QStringLiteral("mnuAdvance"))->trigger();
    QVERIFY(!f.schedule.Active);
    QVERIFY(!f.globals.ReactivateOnFocus);
    QCOMPARE(f.globals.RefreshRowIndex, qint16(-1));
    QVERIFY(mainWindow.findChild<frmAdv *>()->isVisible());

    mainWindow.findChild<QAction *>(QStringLiteral("mnuBackup"))->trigger();
    QVERIFY(mainWindow.findChild<frmBackup *>()->isVisible());
    mainWindow.findChild<QAction *>(QStringLiteral("mnuSetTimer"))->trigger();
    QVERIFY(mainWindow.findChild<frmSetTimer *>()->isVisible());
}

void TestScheduleWindows::setTimerSavesStartOnly()
{
    WindowFixture f;
    AppFolder::MakeWorkingFolders(f.dir.path());
    f.schedule.StopTime = QStringLiteral("20-Mar-2026 18:45:00");
    frmSetTimer window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), QStringLiteral("Set Schedule Timer"));
    auto *setStart = Child<QCheckBox>(&window, "chkSetStart");
    auto *start = Child<QDateEdit>(&window, "dtStart");
    auto *setStop = Child<QCheckBox>(&window, "chkSetStop");
    auto *stop = Child<QDateEdit>(&window, "dtStop");
    QVERIFY(!setStart->isChecked());
    QVERIFY(!start->isEnabled());
    QCOMPARE(start->date(), kNow.date());
    QCOMPARE(Child<QComboBox>(&window, "cboStartHour")->currentIndex(), 9);
    QVERIFY(setStop->isChecked());
    QVERIFY(stop->isEnabled());
    QCOMPARE(stop->date(), QDate(2026, 3, 20));
    QCOMPARE(Child<QComboBox>(&window, "cboStopMinute")->currentIndex(), 45);

    setStart->setChecked(true);
    QVERIFY(start->isEnabled());
    start->setDate(QDate(2026, 3, 3));
    Child<QComboBox>(&window, "cboStartHour")->setCurrentIndex(7);
    Child<QComboBox>(&window, "cboStartMinute")->setCurrentIndex(5);
    setStop->setChecked(false);
    QVERIFY(!stop->isEnabled());
    Click(&window, "cmdSave");
    QVERIFY(!window.isVisible());
    QCOMPARE(f.schedule.StartTime, QStringLiteral("03-Mar-2026 07:05:00"));
    QCOMPARE(f.schedule.StopTime, QString());
    QCOMPARE(f.saved()->StartTime, QStringLiteral("03-Mar-2026 07:05:00"));
    QVERIFY(QFile::exists(f.path(QStringLiteral("Web/livestat.htm"))));
}

QORLO_TEST_MAIN(TestScheduleWindows)
#include "tst_schedulewindows.moc"
