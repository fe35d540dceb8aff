#include "AppObjects.h"
#include "Files.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "core/DayDate.h"
#include "scheduler/Dispatcher.h"
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

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// The present moment of every test: Monday 2 March 2026, 09:30.
const QDateTime kNow(QDate(2026, 3, 2), QTime(9, 30));

struct WindowFixture : GlobalsFixture
{
    QString nextRun(clsSchedule &of, const QString &reportID)
    {
        of.Find(reportID);
        return of.NextRun();
    }
    QString savedFile() const { return QString::fromUtf8(ReadFile(path(u"Qorlo.XML"_s))); }

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
    f.schedule.BackupFrequency = u"Weekly"_s;
    f.schedule.BackupDate = DayDate::FromParts(2026, 3, 5, 22, 15);
    f.schedule.BackupPrevious = u"26-Feb-2026 22:15"_s;
    f.schedule.BackupPreviousFile = f.path(u"Backup/Qorlo20260226.xml"_s);
    f.schedule.BackupPurge = 45;
    frmBackup window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Backup Settings"_s);
    auto *frequency = Child<QComboBox>(&window, "cboFrequency");
    QCOMPARE(frequency->count(), 4);
    QCOMPARE(frequency->currentText(), u"Weekly"_s);
    QCOMPARE(Child<QDateEdit>(&window, "dtNext")->date(), QDate(2026, 3, 5));
    QCOMPARE(Child<QComboBox>(&window, "cboHour")->currentText(), u"22"_s);
    QCOMPARE(Child<QComboBox>(&window, "cboMinute")->currentText(), u"15"_s);
    QCOMPARE(Child<QLabel>(&window, "lblPrevious")->text(), f.schedule.BackupPrevious);
    QCOMPARE(Child<QLabel>(&window, "lblPreviousFile")->text(), f.schedule.BackupPreviousFile);
    auto *purge = Child<QLineEdit>(&window, "txtPurgeDays");
    QCOMPARE(purge->text(), u"45"_s);

    frequency->setCurrentText(u"Never"_s);
    Child<QDateEdit>(&window, "dtNext")->setDate(QDate(2026, 4, 1));
    Child<QComboBox>(&window, "cboHour")->setCurrentIndex(6);
    Child<QComboBox>(&window, "cboMinute")->setCurrentIndex(5);
    purge->setText(u"60"_s);
    Click(&window, "cmdSave");
    QVERIFY(!window.isVisible());
    QCOMPARE(f.schedule.BackupFrequency, u"Never"_s);
    QCOMPARE(f.schedule.BackupDate, DayDate::FromParts(2026, 4, 1, 6, 5));
    QCOMPARE(f.schedule.BackupPurge, qint16(60));
    QVERIFY(f.savedFile().contains(u"<BackupDate>01-Apr-2026 06:05</BackupDate>"_s));
    QVERIFY(f.savedFile().contains(u"<BackupPurge>60</BackupPurge>"_s));

    // Purge days that are no number show the conversion error and the window stays; nothing is stored.
    window.open();
    frequency->setCurrentText(u"Daily"_s);
    purge->setText(u"sixty"_s);
    Click(&window, "cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"QorloMANAGER: Run-time error '13': Type mismatch"_s});
    QVERIFY(f.prompter.fatal.isEmpty());
    QCOMPARE(f.schedule.BackupFrequency, u"Never"_s);
    QCOMPARE(f.schedule.BackupPurge, qint16(60));
    QVERIFY(window.isVisible());
    Click(&window, "cmdExit");
    QVERIFY(!window.isVisible());
}

void TestScheduleWindows::advanceAnalyseAndProcess()
{
    WindowFixture f;
    for (const QString &nextRun :
         {u"01-Mar-2026 08:00"_s, u"03-Mar-2026 14:00"_s, u"10-Mar-2026 08:00"_s, QString()})
        AddItem(f.schedule, {QString(), QString(), QString(), u"D"_s, u"1"_s, nextRun});
    f.schedule.SetSchedule(u"Y"_s); // scheduled, without a time
    frmAdv window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Advance Schedule"_s);
    auto *date = Child<QDateEdit>(&window, "dtAdv");
    auto *hour = Child<QComboBox>(&window, "cboHour");
    auto *minute = Child<QComboBox>(&window, "cboMinute");
    QCOMPARE(date->date(), kNow.date());
    QCOMPARE(hour->currentText(), u"9"_s);
    QCOMPARE(minute->currentText(), u"30"_s);
    auto *status = Child<QLabel>(&window, "lblStatus");

    date->setDate(QDate(2026, 3, 4));
    hour->setCurrentIndex(12);
    minute->setCurrentIndex(0);
    Click(&window, "cmdAnalyse");
    QCOMPARE(status->text(), u"2 items in schedule will be advanced when you click the process button"_s);
    // The whole answer fits the window, at its smallest too.
    window.resize(window.minimumSizeHint());
    QVERIFY(status->height() >= status->heightForWidth(status->width()));
    QCOMPARE(f.nextRun(f.schedule, u"1"_s), u"01-Mar-2026 08:00"_s);

    // The question comes while the window says it is processing; No changes nothing.
    QString statusAtQuestion;
    f.prompter.onRecord = [&] { statusAtQuestion = status->text(); };
    Click(&window, "cmdProcess");
    QCOMPARE(f.prompter.take(),
             QStringList{u"Advance Schedule: Confirm you wish to update the schedule times"_s});
    QCOMPARE(statusAtQuestion, u"Processing schedule"_s);
    QCOMPARE(status->text(), u"Cancelled"_s);
    QCOMPARE(f.nextRun(f.schedule, u"2"_s), u"03-Mar-2026 14:00"_s);
    QVERIFY(!QFile::exists(f.path(u"Qorlo.XML"_s)));

    f.prompter.setNextAnswers({true});
    Click(&window, "cmdProcess");
    QCOMPARE(status->text(), u"2 items in schedule have now been advanced to process after "
                             "04-Mar-2026 12:00"_s);
    const auto saved = f.saved();
    QCOMPARE(f.nextRun(*saved, u"1"_s), u"05-Mar-2026 08:00"_s);
    QCOMPARE(f.nextRun(*saved, u"2"_s), u"04-Mar-2026 14:00"_s);
    QCOMPARE(f.nextRun(*saved, u"3"_s), u"10-Mar-2026 08:00"_s);
    QCOMPARE(f.nextRun(*saved, u"4"_s), QString());
    QVERIFY(window.isVisible());
    QVERIFY(f.prompter.fatal.isEmpty());
}

void TestScheduleWindows::menuEntriesOpenTheWindows()
{
    WindowFixture f;
    AddItem(f.schedule, {QString(), QString(), QString(), u"D"_s, u"1"_s, u"10-Mar-2026 08:00"_s});
    Dispatcher dispatcher(f.globals);
    frmMain mainWindow(f.globals, dispatcher);
    dispatcher.StartSchedule();
    QVERIFY(f.schedule.Active);
    mainWindow.findChild<QAction *>(u"mnuAdvance"_s)->trigger();
    QVERIFY(!f.schedule.Active);
    QVERIFY(!f.globals.ReactivateOnFocus);
    QCOMPARE(f.globals.RefreshRowIndex, qint16(-1));
    QVERIFY(mainWindow.findChild<frmAdv *>()->isVisible());

    mainWindow.findChild<QAction *>(u"mnuBackup"_s)->trigger();
    QVERIFY(mainWindow.findChild<frmBackup *>()->isVisible());
    mainWindow.findChild<QAction *>(u"mnuSetTimer"_s)->trigger();
    QVERIFY(mainWindow.findChild<frmSetTimer *>()->isVisible());
}

void TestScheduleWindows::setTimerSavesStartOnly()
{
    WindowFixture f;
    AppFolder::MakeWorkingFolders(f.dir.path());
    f.schedule.StopTime = u"20-Mar-2026 18:45:00"_s;
    frmSetTimer window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Set Schedule Timer"_s);
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
    QCOMPARE(f.schedule.StartTime, u"03-Mar-2026 07:05:00"_s);
    QCOMPARE(f.schedule.StopTime, QString());
    QCOMPARE(f.saved()->StartTime, u"03-Mar-2026 07:05:00"_s);
    QVERIFY(QFile::exists(f.path(u"Web/livestat.htm"_s)));
}

QORLO_TEST_MAIN(TestScheduleWindows)
#include "tst_schedulewindows.moc"
