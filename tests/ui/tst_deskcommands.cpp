// The main window's menu walked entry by entry, and the desk's entries: window list, View Report Now,
// help pages, the knowledgebase, the connection test and lock, list files, output settings, the About
// box and the mails to the support mailbox.
#include "AppObjects.h"
#include "CupsPeer.h"
#include "Files.h"
#include "Peers.h"
#include "SalesReport.h"
#include "SmtpPeer.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowChecks.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "core/TWReg.h"
#include "scheduler/Dispatcher.h"
#include "engine/Codes.h"
#include "engine/Report.h"
#include "ui/DeskCommands.h"
#include "ui/frmAbout.h"
#include "ui/frmConnect.h"
#include "ui/frmList.h"
#include "ui/frmLog.h"
#include "ui/frmCrystal.h"
#include "ui/frmMain.h"
#include "ui/frmSettings.h"
#include "ui/frmTableMap.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDirIterator>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableWidget>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

// Every entry of the main window's menu by its name.
const QStringList kMenuEntries = {
    u"mnuAutoRun"_s,      u"mnuBackup"_s,       u"mnuBusCal"_s,         u"mnuConnection"_s,
    u"mnuDomains"_s,      u"mnuDates"_s,        u"mnuEncryptDB"_s,      u"mnuExportFormat"_s,
    u"mnuLogSettings"_s,  u"mnuSMTPSettings"_s, u"mnuTableMapping"_s,   u"mnuPrinterSettings"_s,
    u"mnuSaveSchedule"_s, u"mnuExit"_s,         u"mnuPList"_s,          u"mnuMultiRun"_s,
    u"mnuAdvance"_s,      u"mnuReplace"_s,      u"mnuViewLog"_s,        u"mnuViewSMTP"_s,
    u"mnuBrowse"_s,       u"mnuNewPack"_s,      u"mnuEditPack"_s,       u"mnuNewList"_s,
    u"mnuEditList"_s,     u"mnuDelList"_s,      u"mnuStartSchedule"_s,  u"mnuStopSchedule"_s,
    u"mnuSetTimer"_s,     u"mnuRunNow"_s,       u"mnuTestConnection"_s, u"mnuWin0"_s,
    u"mnuHelpFile"_s,     u"mnuOnLineHelp"_s,   u"mnuSendXML"_s,        u"mnuSendConnectDB"_s,
    u"mnuKnowledge"_s,    u"mnuAbout"_s,        u"mnuNewReport"_s,      u"mnuNewFolder"_s,
    u"mnuDuplicate"_s,    u"mnuDeleteReport"_s, u"mnuModifyReport"_s,   u"mnuSortOrig"_s,
    u"mnuSortDate"_s,     u"mnuSortDesc"_s,     u"mnuSortFile"_s,       u"mnuSortDest"_s,
    u"mnuSortPrev"_s,
};

struct DeskFixture : GlobalsFixture
{
    DeskFixture()
    {
        globals.Viewer.ApplyStartDefaults();
        AppFolder::MakeWorkingFolders(dir.path());
        MakeSalesDatabase(path(u"sales.db"_s));
        SalesReport(QDir(dir.path()), u"sales.rpt"_s, u"SELECT region FROM {Sales}"_s);
        AddItem(schedule, {u"1"_s, u"Sales"_s, path(u"sales.rpt"_s), u"D"_s, u"1"_s, u"05-Mar-2026 06:00"_s});
        AddItem(schedule, {u"2"_s, u"Stock"_s, path(u"stock.rpt"_s), u"D"_s, u"1"_s, u"04-Mar-2026 07:00"_s});
        globals.ViewTable();
        window.SetSelectedRow(1);
    }
    QAction *entry(const char *name) { return Child<QAction>(&window, name); }
    void trigger(const char *name) { entry(name)->trigger(); }
    QList<QWidget *> openWindows() const
    {
        QList<QWidget *> open;
        for (QWidget *top : QApplication::topLevelWidgets()) {
            if (top != &window && top->isVisible())
                open.append(top);
        }
        return open;
    }
    void closeOtherWindows()
    {
        for (QWidget *top : openWindows())
            top->close();
    }

    FixedClock clock{QDateTime(QDate(2026, 3, 4), QTime(10, 0))};
    ClockGuard guard{clock};
    Dispatcher dispatcher{globals};
    frmMain window{globals, dispatcher};
    DeskCommands *desk = window.findChild<DeskCommands *>();
};

// What an entry may change that shows it did something.
struct Effects
{
    explicit Effects(DeskFixture &f, const UrlReceiver &urls, const QSignalSpy &exits)
    {
        prompts = f.prompter.messages.size();
        windows = f.openWindows();
        for (QAction *action : f.window.findChildren<QAction *>())
            checks.append(action->isChecked());
        caption = f.window.windowTitle();
        sortColumn = f.window.SortColumn();
        grid = RowIDs(f.window);
        QDirIterator files(f.dir.path(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QFileInfo file(files.next());
            stamps.append(file.filePath() + file.lastModified().toString(Qt::ISODateWithMs));
        }
        opened = int(urls.opened.size());
        exitCount = int(exits.size());
        active = QApplication::activeWindow();
    }
    bool operator==(const Effects &) const = default;

    qsizetype prompts;
    QList<QWidget *> windows;
    QList<bool> checks;
    QString caption;
    int sortColumn;
    QStringList grid;
    QStringList stamps;
    int opened;
    int exitCount;
    QWidget *active;
};

QList<QAction *> MenuEntries(const QMenu *menu)
{
    QList<QAction *> entries;
    for (QAction *action : menu->actions()) {
        if (action->isSeparator())
            continue;
        if (action->menu())
            entries += MenuEntries(action->menu());
        else
            entries.append(action);
    }
    return entries;
}

} // namespace

class TestDeskCommands : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { ShortMailTimeouts(); }
    // Each case starts from the program's default settings.
    void init() { QFile::remove(TWReg::SettingsFolder() + u"/QorloMANAGER.ini"_s); }
    void everyMenuEntryActs();
    void windowList();
    void viewReportNowAndHelp();
    void connectionTestAndLock();
    void listFilesTableMapAndOutput();
    void supportMails();
};

void TestDeskCommands::everyMenuEntryActs()
{
    DeskFixture f;
    // Mail goes nowhere quickly: no server listens on the port.
    f.schedule.SMTP_Server = u"127.0.0.1"_s;
    f.schedule.SMTP_From = u"scheduler@example.com"_s;
    f.schedule.SMTP_Port = FreePort();
    f.window.show();
    f.window.SortBy(5);
    UrlReceiver urls({u"file"_s, u"https"_s});
    QSignalSpy exits(&f.window, &frmMain::ExitRequested);

    QStringList idle;
    QStringList walked;
    for (QAction *menu : f.window.menuBar()->actions()) {
        for (QAction *entry : MenuEntries(menu->menu())) {
            // The window list's entries lead to a window once one is open.
            if (entry->objectName().startsWith(u"mnuWin"_s)) {
                f.trigger("mnuAbout");
                f.desk->RebuildWindowList();
            }
            // The main window in front, with nothing left to arrive from the entry before.
            f.window.activateWindow();
            QVERIFY(WaitUntil([&] { return QApplication::activeWindow() == &f.window; }, 2000));
            QTest::qWait(20);
            if (!entry->isVisible())
                continue;
            const Effects before(f, urls, exits);
            entry->trigger();
            // A window comes to the front when the platform says so.
            if (!WaitUntil([&] { return !(Effects(f, urls, exits) == before); }, 500))
                idle.append(entry->objectName());
            walked.append(entry->objectName());
            f.closeOtherWindows();
        }
    }
    QVERIFY2(idle.isEmpty(), qPrintable(u"entries that do nothing: "_s + idle.join(u", "_s)));
    // Every entry of the list was reached, and nothing else is in the menus.
    QStringList expected = kMenuEntries;
    walked.sort();
    expected.sort();
    QCOMPARE(walked, expected);
}

void TestDeskCommands::windowList()
{
    DeskFixture f;
    f.window.show();
    QCOMPARE(f.entry("mnuWin0")->text(), u"No Forms open"_s);
    QVERIFY(!f.entry("mnuWin0")->isEnabled());
    QVERIFY(!f.entry("mnuWin1")->isVisible());

    f.trigger("mnuViewLog");
    f.trigger("mnuExportFormat");
    f.desk->RebuildWindowList();
    QStringList captions;
    for (int index = 0; index < DeskCommands::WindowEntries; ++index) {
        QAction *entry = f.entry(qPrintable(u"mnuWin"_s + QString::number(index)));
        if (entry->isVisible())
            captions.append(entry->text());
    }
    captions.sort();
    QCOMPARE(captions, (QStringList{u"Export Formats"_s, u"Report Log"_s}));
    // Choosing an entry brings its window to the front.
    for (const char *name : {"mnuWin0", "mnuWin1"}) {
        f.trigger(name);
        QVERIFY(WaitUntil(
            [&] {
                return QApplication::activeWindow() &&
                       QApplication::activeWindow()->windowTitle() == f.entry(name)->text();
            },
            2000));
    }
    f.closeOtherWindows();
    f.desk->RebuildWindowList();
    QCOMPARE(f.entry("mnuWin0")->text(), u"No Forms open"_s);
}

void TestDeskCommands::viewReportNowAndHelp()
{
    DeskFixture f;
    // Reports alone by default; each kind is switched on by its setting.
    f.trigger("mnuBrowse");
    QCOMPARE(f.prompter.filters.takeLast(), u"Crystal Report (*.rpt)"_s);
    TWReg::SaveSetting(u"File Type"_s, u"rpt"_s, u"No"_s);
    for (const char *kind : {"txt", "web", "xls", "dbf", "db"})
        TWReg::SaveSetting(u"File Type"_s, QLatin1String(kind), u"Yes"_s);
    f.trigger("mnuBrowse");
    QCOMPARE(f.prompter.filters.takeLast(),
             u"Text File (*.rtf *.txt);;Web Document (*.htm *.jpg);;MS Excel (*.xls);;xBase Table (*.dbf);;"
             "Paradox Table (*.db)"_s);
    f.prompter.take();

    // A report opens in a viewer of its own; a cancelled dialog opens nothing.
    f.prompter.setNextFileNames({f.path(u"sales.rpt"_s)});
    f.trigger("mnuBrowse");
    f.trigger("mnuBrowse");
    QCOMPARE(f.prompter.take(), QStringList(2, u"View Report Now: "_s + f.dir.path()));
    QCOMPARE(f.openWindows().size(), 1);
    auto *viewer = qobject_cast<frmCrystal *>(f.openWindows().first());
    QVERIFY(viewer);
    QCOMPARE(viewer->Report()->PrintingStatus().Progress(), int(Engine::ProgressCompleted));
    viewer->close();
    // Without a desktop program the box says so; with one, the file goes to it.
    const QString text = WriteFile(f.path(u"notes.TXT"_s), "notes");
    f.prompter.setNextFileNames({text});
    f.trigger("mnuBrowse");
    QCOMPARE(f.prompter.take().last(), u"View Report Now: No program of the desktop could open "_s + text);
    UrlReceiver urls({u"file"_s, u"https"_s});
    f.prompter.setNextFileNames({text});
    f.trigger("mnuBrowse");
    QCOMPARE(urls.opened, QList<QUrl>{QUrl::fromLocalFile(text)});

    // The help pages of the application folder.
    f.trigger("mnuHelpFile");
    QCOMPARE(f.prompter.take().last(),
             u"QorloMANAGER Help: The help page "_s + f.path(u"Help/index.html"_s) + u" is missing"_s);
    WriteFile(f.path(u"Help/index.html"_s), "<html></html>");
    f.trigger("mnuHelpFile");
    QCOMPARE(urls.opened.last(), QUrl::fromLocalFile(f.path(u"Help/index.html"_s)));
    // The connection window's help page.
    WriteFile(f.path(u"Help/connect.htm"_s), "<html></html>");
    f.trigger("mnuConnection");
    Child<QAction>(f.window.findChild<frmConnect *>(), "mnuHelp")->trigger();
    QCOMPARE(urls.opened.last(), QUrl::fromLocalFile(f.path(u"Help/connect.htm"_s)));

    // The knowledgebase page on the host of the setting.
    f.trigger("mnuKnowledge");
    QCOMPARE(urls.opened.last(), QUrl(QStringLiteral(QORLO_KNOWLEDGEBASE "/qiss/getfaq.asp?id=270")));
    TWReg::SaveSetting(u"System"_s, u"Knowledgebase"_s, u"https://help.example.com"_s);
    f.trigger("mnuKnowledge");
    QCOMPARE(urls.opened.last(), QUrl(u"https://help.example.com/qiss/getfaq.asp?id=270"_s));
    QVERIFY(f.prompter.take().isEmpty());

    // The About box names the version, the licence and the libraries.
    f.trigger("mnuAbout");
    const QString about = Child<QLabel>(f.window.findChild<frmAbout *>(), "lblAbout")->text();
    QVERIFY2(about.contains(u"version 10.0 ("_s) && about.contains(u"has not published a licence"_s) &&
                 about.contains(u"Qt "_s) && about.contains(u"CUPS"_s) && about.contains(u"unixODBC"_s),
             qPrintable(about));
}

void TestDeskCommands::connectionTestAndLock()
{
    DeskFixture f;
    // The selected report's connection joins the list once.
    f.trigger("mnuTestConnection");
    QCOMPARE(f.prompter.take(), QStringList{u"Test Connection: New connections added to connections form"_s});
    QCOMPARE(f.globals.Connections.Count(), 1);
    f.globals.Connections.Locate(0);
    QCOMPARE(f.globals.Connections.DLL(), u"sqlite"_s);
    QCOMPARE(f.globals.Connections.Database(), u"sales.db"_s);
    QVERIFY(ReadFile(f.path(u"Connect.XML"_s)).contains("<ConnectDB>sales.db</ConnectDB>"));
    f.trigger("mnuTestConnection");
    QCOMPARE(f.prompter.take(), QStringList{u"Test Connection: No new connection found"_s});
    // A report that is not there says why; no selection is refused.
    f.window.SetSelectedRow(2);
    f.trigger("mnuTestConnection");
    QVERIFY(f.prompter.take().value(0).startsWith(u"QorloMANAGER: Run-time error '53'"_s));
    f.window.SetSelectedRow(0);
    f.trigger("mnuTestConnection");
    QCOMPARE(f.prompter.take(), QStringList{u"Test Connection: Please select a report from the list"_s});

    // The lock of the connection editor: a wrong password opens nothing, without a word.
    f.globals.Connections.Connection_Password = u"lock"_s;
    f.prompter.setNextTexts({u"Lock"_s});
    f.trigger("mnuConnection");
    QCOMPARE(f.prompter.take(), QStringList{u"Database Connection: Enter password to use this option"_s});
    QVERIFY(!f.window.findChild<frmConnect *>());
    f.prompter.setNextTexts({u"lock"_s});
    f.trigger("mnuConnection");
    QVERIFY(f.window.findChild<frmConnect *>()->isVisible());
}

void TestDeskCommands::listFilesTableMapAndOutput()
{
    DeskFixture f;
    NoPrintServer();
    f.trigger("mnuNewList");
    auto *list = f.window.findChild<frmList *>();
    QVERIFY(list && list->isVisible());
    QCOMPARE(list->Kind(), frmList::Std);
    QVERIFY(list->FileName().isEmpty());
    list->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    const QString file = WriteLines(f.path(u"people.lst"_s), {u"ann@example.com"_s, u"bob@example.com"_s});
    f.prompter.setNextFileNames({file});
    f.trigger("mnuEditList");
    list = f.window.findChild<frmList *>();
    QVERIFY(list && list->FileName() == file);
    QCOMPARE(Child<QTableWidget>(list, "fgList")->rowCount(), 2);
    list->close();

    // Deleting asks first.
    f.prompter.setNextFileNames({file});
    f.trigger("mnuDelList");
    QCOMPARE(f.prompter.take().last(), u"Delete List File: Delete "_s + file + u"?"_s);
    QVERIFY(QFile::exists(file));
    f.prompter.setNextFileNames({file});
    f.prompter.setNextAnswers({true});
    f.trigger("mnuDelList");
    QVERIFY(!QFile::exists(file));

    // The table map opens on the selected item's report.
    f.trigger("mnuTableMapping");
    auto *map = f.window.findChild<frmTableMap *>();
    QVERIFY(map && map->isVisible());
    auto *tables = Child<QTableWidget>(map, "fgTables");
    QCOMPARE(tables->rowCount(), 1);
    QCOMPARE(tables->item(0, 0)->text(), u"1"_s);
    QCOMPARE(tables->item(0, 1)->text(), u"sales"_s);

    // Output settings go to the program's settings; a stored printer the machine lacks is kept.
    TWReg::SaveSetting(u"System"_s, u"Printer"_s, u"Office"_s);
    f.trigger("mnuPrinterSettings");
    auto *output = f.window.findChild<frmSettings *>();
    QCOMPARE(output->windowTitle(), u"Output Settings"_s);
    QVERIFY(Child<QRadioButton>(output, "optNormal")->isChecked());
    QVERIFY(Child<QRadioButton>(output, "optScreen")->isChecked());
    QCOMPARE(Child<QSpinBox>(output, "spnZoom")->value(), 100);
    QCOMPARE(Child<QComboBox>(output, "cmbPrinter")->currentText(), u"Office"_s);
    QVERIFY(Child<QCheckBox>(output, "chkrpt")->isChecked());
    QVERIFY(!Child<QCheckBox>(output, "chkweb")->isChecked());
    QCOMPARE(Child<QLineEdit>(output, "txtKnowledgebase")->text(), QStringLiteral(QORLO_KNOWLEDGEBASE));
    Child<QCheckBox>(output, "chkweb")->setChecked(true);
    Child<QLineEdit>(output, "txtKnowledgebase")->setText(u"https://kb.example.com"_s);
    Child<QRadioButton>(output, "optMaximised")->setChecked(true);
    Child<QRadioButton>(output, "optPrinter")->setChecked(true);
    Child<QSpinBox>(output, "spnZoom")->setValue(150);
    Click(output, "cmdSave");
    QCOMPARE(TWReg::ReadSetting(u"Viewer"_s, u"WindowState"_s, QString()), u"2"_s);
    QCOMPARE(TWReg::ReadSetting(u"System"_s, u"Report Zoom"_s, QString()), u"150"_s);
    QCOMPARE(TWReg::ReadSetting(u"System"_s, u"Report Output"_s, QString()), u"Printer"_s);
    QCOMPARE(TWReg::ReadSetting(u"System"_s, u"Printer"_s, QString()), u"Office"_s);
    // View Report Now and the knowledgebase take them.
    f.trigger("mnuBrowse");
    QCOMPARE(f.prompter.filters.takeLast(), u"Crystal Report (*.rpt);;Web Document (*.htm *.jpg)"_s);
    UrlReceiver urls({u"https"_s});
    f.trigger("mnuKnowledge");
    QCOMPARE(urls.opened, QList<QUrl>{QUrl(u"https://kb.example.com/qiss/getfaq.asp?id=270"_s)});
}

void TestDeskCommands::supportMails()
{
    SmtpPeer peer;
    QORLO_START_PEER(peer.start({}), peer);
    DeskFixture f;
    f.schedule.SMTP_Server = u"127.0.0.1"_s;
    f.schedule.SMTP_Port = peer.port();
    f.schedule.SMTP_From = u"scheduler@example.com"_s;
    f.schedule.SMTPDelay = 0;
    f.globals.SaveSchedule();
    WriteFile(f.path(u"Extra.Xml"_s), "<x/>");

    // Refused while a run is on.
    f.schedule.ProcessingID = u"1"_s;
    for (const char *name : {"mnuSendXML", "mnuSendConnectDB"}) {
        f.trigger(name);
        QCOMPARE(f.prompter.take(),
                 QStringList{u"QorloMANAGER: Please wait until report finished processing"_s});
    }
    f.schedule.ProcessingID.clear();
    QVERIFY(peer.messages().isEmpty());

    f.trigger("mnuSendXML");
    QCOMPARE(f.prompter.take(), QStringList{u"SMTP Message: Message Sent"_s});
    QCOMPARE(peer.messages().size(), 1);
    const QString xml = peer.messages().first();
    QCOMPARE(Recipients(xml), QStringList{QStringLiteral(QORLO_SUPPORT_MAILBOX)});
    QVERIFY(ReadFile(xml).contains("Subject: QorloMANAGER XML files"));
    QStringList attached = PartNames(ParseMessage(xml));
    attached.sort();
    QCOMPARE(attached, (QStringList{QString(), u"Extra.Xml"_s, u"Qorlo.XML"_s}));

    f.trigger("mnuSendConnectDB");
    QCOMPARE(f.prompter.take(), QStringList{u"SMTP Message: Message Sent"_s});
    QCOMPARE(peer.messages().size(), 2);
    const QByteArray details = ReadFile(peer.messages().last());
    QVERIFY2(details.contains("Subject: QorloMANAGER connection details") &&
                 details.contains("New Database Table=Sales") && details.contains("Value=sales.db"),
             details.constData());
}

QORLO_TEST_MAIN(TestDeskCommands)
#include "tst_deskcommands.moc"
