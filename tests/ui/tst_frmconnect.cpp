// The connection editor and the table map window, each with a round trip from the window through its
// file to a real report run: on PostgreSQL through the peer, and on SQLite.
#include "AppObjects.h"
#include "DatabasePeers.h"
#include "Files.h"
#include "Peers.h"
#include "SalesReport.h"
#include "TestClocks.h"
#include "TestMain.h"
#include "WindowFixture.h"

#include "core/AppFolder.h"
#include "core/Ansi.h"
#include "run/RunReport.h"
#include "run/RunState.h"
#include "ui/frmConnect.h"
#include "ui/frmTableMap.h"

#include <QAction>
#include <QComboBox>
#include <QFileDevice>
#include <QLabel>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTreeWidget>

using namespace Qt::Literals::StringLiterals;

using namespace TestSupport;

namespace {

struct ConnectFixture : GlobalsFixture
{
    ConnectFixture() { AppFolder::MakeWorkingFolders(dir.path()); }

    QLineEdit *field(const QObject *window, int index) const
    {
        return Child<QLineEdit>(window, qPrintable(u"txtField"_s + QString::number(index)));
    }
    QStringList nodes(const QObject *window) const
    {
        auto *tree = Child<QTreeWidget>(window, "tvRecords");
        QStringList texts;
        for (int row = 0; row < tree->topLevelItemCount(); ++row)
            texts.append(tree->topLevelItem(row)->text(0));
        return texts;
    }
    // Item 7 on the report, written as CSV to Output/<name>.csv; the cursor stays on it.
    void addItem(const QString &report, const QString &output)
    {
        AddItem(schedule, {u"7"_s, u"Regions"_s, report, u"D"_s, u"1"_s, QString()});
        schedule.SetOutputFormat(u"CSV File"_s);
        schedule.SetLocation(output);
    }
    // Runs item 7 and returns its log entry. Each run starts with a fresh run state, as in a new
    // process: a run that could not log on leaves its log-off count behind.
    QString runItem()
    {
        schedule.Find(u"7"_s);
        schedule.ProcessingID = u"7"_s;
        schedule.ProcessingName = u"Regions"_s;
        const RunContext program = globals.Context();
        RunState state;
        RunContext run{program.schedule, program.log,     program.connections, program.tableMap, state,
                       program.appPath,  program.saveWeb, program.warn};
        RunReport(run);
        return SavedLogEntries(dir.path()).value(0);
    }
    // The boxes after the file dialog.
    QStringList learnFrom(const QObject *window, const QString &report)
    {
        prompter.setNextFileNames({report});
        Child<QAction>(window, "mnuInsert")->trigger();
        return prompter.take().mid(1);
    }
};

// The archive beside the fixture: a database of its own whose table has rows of its own. A map row
// renames the database file as well as the table.
void AddArchiveTable(const QString &database)
{
    const QString name = u"archive-"_s + database;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(database);
        QVERIFY(db.open());
        QSqlQuery query(db);
        QVERIFY(query.exec(u"CREATE TABLE sales_archive (region TEXT, customer TEXT)"_s));
        QVERIFY(query.exec(u"INSERT INTO sales_archive VALUES ('West', 'Archived Co')"_s));
    }
    QSqlDatabase::removeDatabase(name);
}

} // namespace

class TestFrmConnect : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void editedConnectionLogsOnToPostgres();
    void rowsLeftDeletedAndOptions();
    void odbcDataSources();
    void tableMapRedirectsAReport();
};

void TestFrmConnect::editedConnectionLogsOnToPostgres()
{
    QORLO_REQUIRE_PEER(PostgresPeer::Installed(), u"PostgreSQL 15 and the Qt PostgreSQL driver"_s);
    PostgresPeer server;
    QVERIFY2(server.start(u"s3cret"_s), qPrintable(server.error()));
    QVERIFY2(server.sql(u"CREATE TABLE regions (region text, amount numeric(10,2));"
                        "INSERT INTO regions VALUES ('North', 120.5), ('South', 80);"_s),
             qPrintable(server.error()));
    ConnectFixture f;
    const QString host = u"127.0.0.1:"_s + QString::number(server.port());
    const QString report = WriteReport(QDir(f.dir.path()), u"regions.rpt"_s, uR"(
<table name="Regions" location="public.regions" dll="psql">
  <property name="Server">%1</property><property name="Database">postgres</property>
  <property name="User ID">postgres</property>
</table>
<query>SELECT region, amount FROM {Regions} ORDER BY region</query>)"_s.arg(host));
    f.addItem(report, f.path(u"Output/regions.csv"_s));

    frmConnect window(f.globals);
    window.open();
    QCOMPARE(window.windowTitle(), u"Database Connection Information"_s);
    QCOMPARE(Child<QLabel>(&window, "lblStatus")->text(), u"Record 0 of 0"_s);
    QCOMPARE(Child<QLabel>(&window, "lblMessage")->text(),
             u"No configuration settings were found in this file!"_s);

    // The report's connection is learned with an empty password; the report cannot log on yet.
    QVERIFY(f.learnFrom(&window, report).isEmpty());
    QCOMPARE(f.nodes(&window), QStringList{host + u" (postgres)"_s});
    QCOMPARE(Child<QLabel>(&window, "lblStatus")->text(), u"Record 1 of 1"_s);
    QCOMPARE(f.field(&window, frmConnect::fldDriver)->text(), u"psql"_s);
    QCOMPARE(f.field(&window, frmConnect::fldServer)->text(), host);
    QCOMPARE(f.field(&window, frmConnect::fldUser)->text(), u"postgres"_s);
    QCOMPARE(f.field(&window, frmConnect::fldPassword)->echoMode(), QLineEdit::Password);
    QCOMPARE(f.field(&window, frmConnect::fldConfirm)->echoMode(), QLineEdit::Password);
    QCOMPARE(Child<QLineEdit>(&window, "txtFile")->text(), f.path(u"Connect.XML"_s));
    QVERIFY(f.runItem().startsWith(u"7|Regions: "_s));
    QVERIFY(!QFile::exists(f.path(u"Output/regions.csv"_s)));

    // The same password with other capitals is refused and changes nothing.
    QTest::keyClicks(f.field(&window, frmConnect::fldPassword), u"s3cret"_s);
    QTest::keyClicks(f.field(&window, frmConnect::fldConfirm), u"S3cret"_s);
    Click(&window, "cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"Error saving record!: Passwords do not match!"_s});
    f.globals.Connections.Locate(0);
    QCOMPARE(f.globals.Connections.Password(), QString());

    // The test connects for real, with what the fields hold.
    Click(&window, "cmdTest");
    QCOMPARE(f.prompter.take(), QStringList{u"Test Connection: Connected to "_s + host + u" (postgres)"_s});
    f.field(&window, frmConnect::fldPassword)->setText(u"wrong"_s);
    Click(&window, "cmdTest");
    const QString refused = f.prompter.take().value(0);
    QVERIFY2(refused.contains(u"password authentication failed"_s), qPrintable(refused));

    f.field(&window, frmConnect::fldPassword)->setText(u"s3cret"_s);
    f.field(&window, frmConnect::fldConfirm)->setText(u"s3cret"_s);
    Click(&window, "cmdSave");
    QVERIFY(f.prompter.take().isEmpty());
    // The file holds the password scrambled, and only its owner may read it.
    const QByteArray file = ReadFile(f.path(u"Connect.XML"_s));
    QVERIFY2(file.contains("<ConnectPassword>") && !file.contains("s3cret"), file.constData());
    QCOMPARE(QFile::permissions(f.path(u"Connect.XML"_s)) & (QFileDevice::ReadOther | QFileDevice::ReadGroup),
             QFileDevice::Permissions());

    // The round trip: the list read back from its file logs the report on, and the run writes its rows.
    f.globals.Connections.Load(f.path(u"Connect.XML"_s));
    QFile::remove(f.path(u"QorloLog.XML"_s));
    QCOMPARE(f.runItem(), u"7|Regions: Successful output to "_s + f.path(u"Output/regions.csv"_s));
    const QByteArray rows = ReadFile(f.path(u"Output/regions.csv"_s));
    QVERIFY2(rows.contains("North") && rows.contains("South"), rows.constData());
}

void TestFrmConnect::rowsLeftDeletedAndOptions()
{
    ConnectFixture f;
    clsConnect &list = f.globals.Connections;
    for (const QString &server :
         {u"alpha.example.com"_s, u"a-server-name-that-is-far-too-long.example.com"_s, QString()}) {
        list.AddNew();
        list.SetDLL(u"psql"_s);
        list.SetServer(server);
        list.SetDatabase(server.isEmpty() ? QString() : u"sales"_s);
        list.SetUser(u"clerk"_s);
        list.SetPassword(u"pw"_s);
    }
    list.Save();
    frmConnect window(f.globals);
    window.open();
    QCOMPARE(f.nodes(&window), (QStringList{u"alpha.example.com (sales)"_s,
                                            u"a-server-name-that-is... (sales)"_s, u"(blank)"_s}));
    QCOMPARE(window.Row(), 0);

    // Leaving a changed row asks; No drops the change.
    QTest::keyClicks(f.field(&window, frmConnect::fldUser), u"2"_s);
    Click(&window, "cmdNext");
    QCOMPARE(f.prompter.take(),
             QStringList{u"Save changes?: This record has changed. Would you like to save your changes?"_s});
    QCOMPARE(window.Row(), 1);
    list.Locate(0);
    QCOMPARE(list.User(), u"clerk"_s);
    // Yes saves it; the tree moves the same way as the buttons.
    QTest::keyClicks(f.field(&window, frmConnect::fldUser), u"3"_s);
    f.prompter.setNextAnswers({true});
    auto *tree = Child<QTreeWidget>(&window, "tvRecords");
    tree->setCurrentItem(tree->topLevelItem(2));
    QCOMPARE(window.Row(), 2);
    QCOMPARE(Child<QLabel>(&window, "lblStatus")->text(), u"Record 3 of 3"_s);
    clsConnect saved(f.dir.path());
    saved.Load(f.path(u"Connect.XML"_s));
    saved.Locate(1);
    QCOMPARE(saved.User(), u"clerk3"_s);
    Click(&window, "cmdFirst");
    Click(&window, "cmdLast");
    Click(&window, "cmdPrevious");
    QCOMPARE(window.Row(), 1);

    // Cancel shows the stored row again.
    f.field(&window, frmConnect::fldDatabase)->setText(u"typed"_s);
    Click(&window, "cmdCancel");
    QCOMPARE(f.field(&window, frmConnect::fldDatabase)->text(), u"sales"_s);

    Child<QAction>(&window, "mnuDelete")->trigger();
    QCOMPARE(f.prompter.take().last(), u"Delete record?: Are you sure?"_s);
    QCOMPARE(list.Count(), 3);
    f.prompter.setNextAnswers({true});
    Child<QAction>(&window, "mnuDelete")->trigger();
    QCOMPARE(f.nodes(&window), (QStringList{u"alpha.example.com (sales)"_s, u"(blank)"_s}));
    saved.Load(f.path(u"Connect.XML"_s));
    QCOMPARE(saved.Count(), 2);

    auto *caseSensitive = Child<QAction>(&window, "mnuCaseSensitive");
    QVERIFY(caseSensitive->isChecked());
    caseSensitive->trigger();
    QVERIFY(!caseSensitive->isChecked());
    QVERIFY(ReadFile(f.path(u"Connect.XML"_s)).contains("<CaseSensitive>No</CaseSensitive>"));
    Child<QAction>(&window, "mnuRetainUser")->trigger();
    QCOMPARE(list.UserOption, u"Yes"_s);

    // The lock password, typed twice; nothing typed removes it after a question.
    auto *lock = Child<QAction>(&window, "mnuLockPassword");
    f.prompter.setNextTexts({u"abc"_s, u"abd"_s});
    lock->trigger();
    QCOMPARE(f.prompter.take().last(), u"Database Connection: Passwords do not match!"_s);
    QVERIFY(list.Connection_Password.isEmpty());
    f.prompter.setNextTexts({u"abc"_s, u"abc"_s});
    lock->trigger();
    saved.Load(f.path(u"Connect.XML"_s));
    QCOMPARE(saved.Connection_Password, u"abc"_s);
    QVERIFY(!ReadFile(f.path(u"Connect.XML"_s)).contains(">abc<"));
    f.prompter.take();
    f.prompter.setNextAnswers({true});
    lock->trigger();
    QCOMPARE(f.prompter.take().last(), u"Database Connection: Open this window without a password?"_s);
    QVERIFY(!ReadFile(f.path(u"Connect.XML"_s)).contains("<Connection_Password>"));
    QVERIFY(list.Connection_Password.isEmpty());

    // Save As moves the list to another file; Open reads one.
    f.prompter.setNextFileNames({f.path(u"Other/Connect.XML"_s)});
    QDir(f.dir.path()).mkdir(u"Other"_s);
    Child<QAction>(&window, "mnuSaveAs")->trigger();
    QCOMPARE(Child<QLineEdit>(&window, "txtFile")->text(), f.path(u"Other/Connect.XML"_s));
    QVERIFY(ReadFile(f.path(u"Other/Connect.XML"_s)).contains("<UserOption>Yes</UserOption>"));
    f.prompter.setNextFileNames({f.path(u"missing.xml"_s)});
    Child<QAction>(&window, "mnuOpen")->trigger();
    QCOMPARE(f.prompter.take().last(), u"Database Connection Information: "_s + f.path(u"Other"_s));
    QCOMPARE(Child<QLabel>(&window, "lblStatus")->text(), u"Record 0 of 0"_s);

    // A report that cannot be read says why.
    const QString error = f.learnFrom(&window, f.path(u"none.rpt"_s)).value(0);
    QVERIFY2(error.startsWith(u"Database Connections: Error: "_s), qPrintable(error));
}

void TestFrmConnect::odbcDataSources()
{
    QORLO_REQUIRE_PEER(OdbcInstalled(), u"unixODBC with the SQLite ODBC driver"_s);
    ConnectFixture f;
    MakeSalesDatabase(f.path(u"sales.db"_s));
    MakeOdbcDataSource(f.dir.path(), u"SalesDSN"_s, f.path(u"sales.db"_s));
    const QString report = WriteReport(QDir(f.dir.path()), u"odbc.rpt"_s, uR"(
<table name="Sales" location="sales" dll="odbc"><property name="DSN">SalesDSN</property></table>
<query>SELECT region FROM {Sales}</query>)"_s);
    frmConnect window(f.globals);
    window.open();
    auto *sources = Child<QComboBox>(&window, "cmbDSN");
    QVERIFY(sources->findText(u"SalesDSN"_s) >= 0);

    QVERIFY(f.learnFrom(&window, report).isEmpty());
    QCOMPARE(f.nodes(&window), QStringList{u"SalesDSN ()"_s});
    Click(&window, "cmdTest");
    QCOMPARE(f.prompter.take(), QStringList{u"Test Connection: Connected to SalesDSN ()"_s});

    // A data source the machine lacks is warned about, and saved all the same.
    f.field(&window, frmConnect::fldServer)->setText(u"NoSuchDSN"_s);
    Click(&window, "cmdSave");
    QCOMPARE(f.prompter.take(), QStringList{u"ODBC connection not configured: Warning: The ODBC connection "
                                            "'NoSuchDSN' does not exist on the local machine"_s});
    QVERIFY(ReadFile(f.path(u"Connect.XML"_s)).contains("<ConnectServer>NoSuchDSN</ConnectServer>"));
    // Choosing a listed source puts it in the server field.
    sources->textActivated(u"SalesDSN"_s);
    QCOMPARE(f.field(&window, frmConnect::fldServer)->text(), u"SalesDSN"_s);
    Click(&window, "cmdSave");
    QVERIFY(f.prompter.take().isEmpty());
}

void TestFrmConnect::tableMapRedirectsAReport()
{
    ConnectFixture f;
    MakeSalesDatabase(f.path(u"sales.db"_s));
    AddArchiveTable(f.path(u"sales_archive.db"_s));
    const QString report =
        SalesReport(QDir(f.dir.path()), u"sales.rpt"_s, u"SELECT region, customer FROM {Sales}"_s);
    f.addItem(report, f.path(u"Output/sales.csv"_s));

    frmTableMap *window = frmTableMap::OpenTableMap(f.globals, nullptr, u"7"_s, report);
    QCOMPARE(window->windowTitle(), u"Table Mapping"_s);
    auto *grid = Child<QTableWidget>(window, "fgTables");
    const auto rows = [grid] {
        QStringList texts;
        for (int row = 0; row < grid->rowCount(); ++row)
            texts.append(grid->item(row, 0)->text() + u'|' + grid->item(row, 1)->text() + u'|' +
                         grid->item(row, 2)->text());
        return texts;
    };
    QCOMPARE(grid->horizontalHeaderItem(2)->text(), u"New Database"_s);
    QCOMPARE(grid->columnWidth(1), 300);
    QCOMPARE(rows(), QStringList{u"7|sales|sales"_s});

    // Examining again lists the table twice; Delete Map takes a row off the grid only.
    Child<QAction>(window, "mnuExamine")->trigger();
    QCOMPARE(rows(), (QStringList{u"7|sales|sales"_s, u"7|sales|sales"_s}));
    grid->setCurrentCell(1, 0);
    Child<QAction>(window, "mnuDelete")->trigger();
    QCOMPARE(rows(), QStringList{u"7|sales|sales"_s});
    QCOMPARE(f.globals.TableMap.Count(), 2);

    // The new name typed into the cell; Save takes it while the cell is still being edited.
    Child<QAction>(window, "mnuInsert")->trigger();
    QCOMPARE(rows(), (QStringList{u"7|sales|sales"_s, u"||"_s}));
    grid->setCurrentCell(0, 2);
    auto *editor = qobject_cast<QLineEdit *>(grid->indexWidget(grid->currentIndex()));
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, u"sales_archive"_s);
    Child<QAction>(window, "mnuSave")->trigger();
    clsMap saved(f.dir.path());
    saved.Load(f.path(u"TableMap.XML"_s));
    QCOMPARE(saved.Count(), 2);
    saved.Locate(0);
    QCOMPARE(saved.NewTable(), u"sales_archive"_s);

    // The round trip: the map read back from its file moves the report to the other table.
    f.globals.TableMap.Clear();
    f.globals.TableMap.Load(f.path(u"TableMap.XML"_s));
    QCOMPARE(f.runItem(), u"7|Regions: Successful output to "_s + f.path(u"Output/sales.csv"_s));
    const QByteArray output = ReadFile(f.path(u"Output/sales.csv"_s));
    QVERIFY2(output.contains("Archived Co") && !output.contains("Acme"), output.constData());

    // An empty grid saves a map without rows.
    grid->setRowCount(0);
    Child<QAction>(window, "mnuSave")->trigger();
    saved.Clear();
    saved.Load(f.path(u"TableMap.XML"_s));
    QCOMPARE(saved.Count(), 0);
    QVERIFY(ReadFile(f.path(u"TableMap.XML"_s)).contains("TableMappingDoc"));
    Child<QAction>(window, "mnuExit")->trigger();

    // A report that does not open shows its error box; the map is shown all the same.
    WriteFile(f.path(u"broken.rpt"_s), "<report version=\"1\"><colum/></report>");
    frmTableMap broken(f.globals);
    broken.ShowItem(u"8"_s, f.path(u"broken.rpt"_s));
    const QString error = f.prompter.take().value(0);
    QVERIFY2(error.startsWith(u"QorloMANAGER: Run-time error '"_s), qPrintable(error));
}

QORLO_TEST_MAIN(TestFrmConnect)
#include "tst_frmconnect.moc"
