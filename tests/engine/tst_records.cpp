#include "EngineFixtures.h"
#include "Peers.h"
#include "PostgresPeer.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QTemporaryDir>

using namespace Engine;
using namespace EngineFixtures;

class TestRecords : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void sqliteBindsEveryValueType();
    void multiValuedListsStayData();
    void readFailuresCarryTheDriversMessage();
    void savedDataSelectionAndAlerts();
    void subreportTakesLinkedValues();
    void demoAlertsAgreeWithSql();
    void odbcDataSource();
    void postgresServer();

private:
    static QString errorOf(Report &report)
    {
        try {
            report.ReadRecords();
        } catch (const EngineError &error) {
            return error.description();
        }
        return QString();
    }
    static QVariantList column(const Report &report, int field)
    {
        QVariantList values;
        for (int row : report.selectedRows())
            values.append(report.records().row(row)[field]);
        return values;
    }
};

void TestRecords::sqliteBindsEveryValueType()
{
    QTemporaryDir dir;
    MakeSalesDatabase(dir.filePath(QStringLiteral("sales.db")));
    const QString path = SalesReport(
        QDir(dir.path()), QStringLiteral("types.rpt"),
        QStringLiteral(
            "SELECT {?Num} AS num, {?Money} AS money, {?Flag} AS flag, {?Day} AS day, {?Moment} AS moment, "
            "{?At} AS at, {?Text} AS text, '{?Num}' AS literal"),
        QStringLiteral("<parameter name=\"Num\" type=\"7\"/><parameter name=\"Money\" type=\"8\"/>"
                       "<parameter name=\"Flag\" type=\"9\"/><parameter name=\"Day\" type=\"10\"/>"
                       "<parameter name=\"Moment\" type=\"16\"/><parameter name=\"At\" type=\"11\"/>"
                       "<parameter name=\"Text\" type=\"12\"><default>unused</default></parameter>"));
    Application application;
    auto report = application.OpenReport(path);
    auto &fields = report->ParameterFields();
    fields.Item(1).AddCurrentValue(12.5);
    fields.Item(2).AddCurrentValue(QStringLiteral("-3.75"));
    fields.Item(3).AddCurrentValue(true);
    fields.Item(4).AddCurrentValue(45351.0);
    fields.Item(5).AddCurrentValue(45351.75);
    fields.Item(6).AddCurrentValue(QStringLiteral("07:30:00"));
    fields.Item(7).AddCurrentValue(QStringLiteral("it's; a \"test\" --"));
    report->ReadRecords();
    QCOMPARE(report->PrintingStatus().NumberOfRecordSelected(), 1);
    const RecordStore::Row &row = report->records().row(0);
    QCOMPARE(row[0].toDouble(), 12.5);
    QCOMPARE(row[1].toDouble(), -3.75);
    QCOMPARE(row[2].toInt(), 1);
    QCOMPARE(row[3].toString(), QStringLiteral("2024-02-29"));
    QCOMPARE(row[4].toString(), QStringLiteral("2024-02-29 18:00:00"));
    QCOMPARE(row[5].toString(), QStringLiteral("07:30:00"));
    QCOMPARE(row[6].toString(), QStringLiteral("it's; a \"test\" --"));
    QCOMPARE(row[7].toString(), QStringLiteral("{?Num}")); // quoted text is the query's own
    QCOMPARE(report->PrintingStatus().Progress(), int(ProgressCompleted));
}

void TestRecords::multiValuedListsStayData()
{
    QTemporaryDir dir;
    MakeSalesDatabase(dir.filePath(QStringLiteral("sales.db")));
    const QString path = SalesReport(
        QDir(dir.path()), QStringLiteral("list.rpt"),
        QStringLiteral("SELECT id, customer FROM {Sales} WHERE customer IN ({?Names}) AND order_date >= "
                       "{?From} ORDER BY id"),
        QStringLiteral("<parameter name=\"Names\" type=\"12\" multiple=\"true\"/>"
                       "<parameter name=\"From\" type=\"10\"><default>2024-01-01</default></parameter>"));
    Application application;
    auto report = application.OpenReport(path);
    for (const char *name : {"Bolt; Nut", "x'); DROP TABLE sales; --", "O'Brien \"Tools\"", "Nobody"})
        report->ParameterFields().Item(1).AddCurrentValue(QString::fromUtf8(name));
    report->ReadRecords();
    QCOMPARE(column(*report, 0), (QVariantList{2, 3, 6}));
    report->ParameterFields().Item(2).AddCurrentValue(QDate(2024, 2, 1));
    report->ReadRecords();
    QCOMPARE(column(*report, 0), (QVariantList{3, 6}));

    // The table is still whole: the texts above reached it as data.
    const QString count =
        SalesReport(QDir(dir.path()), QStringLiteral("count.rpt"), QStringLiteral("SELECT * FROM {Sales}"));
    auto all = application.OpenReport(count);
    all->ReadRecords();
    QCOMPARE(all->PrintingStatus().NumberOfRecordSelected(), 6);

    report->ParameterFields().Item(1).ClearCurrentValueAndRange();
    QCOMPARE(errorOf(*report), QStringLiteral("Parameter {?Names} has no value"));
}

void TestRecords::readFailuresCarryTheDriversMessage()
{
    QTemporaryDir dir;
    const QDir folder(dir.path());
    MakeSalesDatabase(dir.filePath(QStringLiteral("sales.db")));
    Application application;
    auto syntax = application.OpenReport(
        SalesReport(folder, QStringLiteral("s.rpt"), QStringLiteral("SELEC id FROM {Sales}")));
    QVERIFY(syntax->Database().Tables().Item(1).TestConnectivity());
    const QString syntaxError = errorOf(*syntax);
    QVERIFY2(syntaxError.startsWith(QLatin1String("The query failed: ")) &&
                 syntaxError.contains(QLatin1String("syntax error")),
             qPrintable(syntaxError));
    QCOMPARE(syntax->PrintingStatus().Progress(), int(ProgressFailed));
    auto table = application.OpenReport(
        SalesReport(folder, QStringLiteral("t.rpt"), QStringLiteral("SELECT * FROM {Nope}")));
    QCOMPARE(errorOf(*table), QStringLiteral("The query names the unknown table {Nope}"));
    auto parameter = application.OpenReport(
        SalesReport(folder, QStringLiteral("p.rpt"), QStringLiteral("SELECT {?Nope}")));
    QCOMPARE(errorOf(*parameter), QStringLiteral("The query names the unknown parameter {?Nope}"));

    auto layout = application.OpenReport(
        SalesReport(folder, QStringLiteral("l.rpt"), QStringLiteral("SELECT id FROM {Sales}"),
                    QStringLiteral("<layout><group field=\"regoin\"/></layout>")));
    QCOMPARE(
        errorOf(*layout),
        QStringLiteral("The layout of ") + folder.filePath(QStringLiteral("l.rpt")) +
            QStringLiteral(" names the field \"regoin\", which the query does not return; the nearest are: "
                           "id"));

    auto missing =
        application.OpenReport(SalesReport(folder, QStringLiteral("m.rpt"), QStringLiteral("SELECT 1")));
    missing->Database().Tables().Item(1).ConnectionProperties().Item(1).setValue(QStringLiteral("gone.db"));
    QVERIFY(!missing->Database().Tables().Item(1).TestConnectivity());
    QCOMPARE(missing->Database().Tables().Item(1).lastError(),
             QStringLiteral("Cannot open the SQLite database %1: the file does not exist")
                 .arg(folder.filePath(QStringLiteral("gone.db"))));
    QCOMPARE(errorOf(*missing), missing->Database().Tables().Item(1).lastError());
    QVERIFY(!QFile::exists(folder.filePath(QStringLiteral("gone.db")))); // never created by a read

    // Log-off forgets a log-on once.
    QVERIFY(syntax->Database().Tables().Item(1).TestConnectivity());
    application.LogOffServer(QStringLiteral("sqlite"), QString(), QStringLiteral("sales.db"));
    QVERIFY_THROWS_EXCEPTION(EngineError, application.LogOffServer(QStringLiteral("sqlite"), QString(),
                                                                   QStringLiteral("sales.db")));
}

void TestRecords::savedDataSelectionAndAlerts()
{
    QTemporaryDir dir;
    const QDir folder(dir.path());
    MakeSalesDatabase(dir.filePath(QStringLiteral("sales.db")));
    const QString path =
        SalesReport(folder, QStringLiteral("alerts.rpt"),
                    QStringLiteral("SELECT id, region, amount, paid FROM {Sales} ORDER BY id"),
                    QStringLiteral("<alert name=\"Big\">amount &gt;= 1500</alert>"
                                   "<alert name=\"Unpaid\">not paid</alert>"
                                   "<groupSelection>region &lt;&gt; 'East'</groupSelection>"));
    Application application;
    auto report = application.OpenReport(path);
    report->ReadRecords();
    QCOMPARE(report->PrintingStatus().NumberOfRecordSelected(), 5);
    QCOMPARE(report->ReportAlerts().Count(), 2);
    QCOMPARE(report->ReportAlerts().Item(1).Name(), QStringLiteral("Big"));
    QCOMPARE(report->ReportAlerts().Item(1).AlertingRecords().Count(), 2);
    QCOMPARE(report->ReportAlerts().Item(2).AlertingRecords().Count(),
             1); // East's unpaid row is not selected
    const QString opening = report->GroupSelectionFormula();
    report->setGroupSelectionFormula(opening + QStringLiteral(" and ") +
                                     report->ReportAlerts().Item(1).ConditionFormula());
    QCOMPARE(column(*report, 0), (QVariantList{3, 5}));
    QVERIFY_THROWS_EXCEPTION(EngineError, report->setGroupSelectionFormula(QStringLiteral("amount >")));
    QVERIFY_THROWS_EXCEPTION(EngineError, report->setGroupSelectionFormula(QStringLiteral("amout > 1")));
    QCOMPARE(column(*report, 0), (QVariantList{3, 5})); // a failed change leaves the view as it was
    report->setGroupSelectionFormula(opening);

    report->ExportOptions().FormatType = CrystalReportFormat;
    report->ExportOptions().DiskFileName = folder.filePath(QStringLiteral("saved.rpt"));
    report->Export(false);
    QVERIFY(QFile::remove(folder.filePath(QStringLiteral("sales.db"))));
    auto saved = application.OpenReport(folder.filePath(QStringLiteral("saved.rpt")));
    QVERIFY(saved->HasSavedData());
    saved->ReadRecords(); // from the saved rows: the database is gone
    QCOMPARE(saved->records().count(), 6);
    QCOMPARE(saved->PrintingStatus().NumberOfRecordSelected(), 5);
    QCOMPARE(saved->ReportAlerts().Item(1).AlertingRecords().Count(), 2);
    QCOMPARE(saved->records().row(3)[2], QVariant()); // the NULL amount stays null
    QCOMPARE(saved->records().row(2)[1], QVariant(QStringLiteral("North")));
    saved->DiscardSavedData();
    QVERIFY(!saved->HasSavedData());
    QCOMPARE(saved->PrintingStatus().NumberOfRecordSelected(), 0);
    QVERIFY(errorOf(*saved).contains(QLatin1String("the file does not exist")));
}

void TestRecords::subreportTakesLinkedValues()
{
    Application application;
    auto report = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/regions-with-summary.rpt"));
    auto &regions = report->ParameterFields().Item(1);
    regions.AddCurrentValue(QStringLiteral("West"));
    regions.AddCurrentValue(QStringLiteral("East"));
    report->ReadRecords();
    QCOMPARE(column(*report, 0), (QVariantList{QStringLiteral("East"), QStringLiteral("West")}));
    Report *sub = nullptr;
    for (Section &section : report->Sections()) {
        for (ReportObject &object : section.ReportObjects()) {
            if (object.Kind() == SubreportObjectKind)
                sub = &static_cast<SubreportObject &>(object).OpenSubreport();
        }
    }
    QVERIFY(sub);
    QCOMPARE(sub->ParameterFields().Item(1).NumberOfCurrentValues(), 2);
    QCOMPARE(sub->PrintingStatus().NumberOfRecordSelected(), 10); // 2 regions x 5 products
    for (const QVariant &region : column(*sub, 0))
        QVERIFY(region == QLatin1String("East") || region == QLatin1String("West"));
}

void TestRecords::demoAlertsAgreeWithSql()
{
    Application application;
    auto report = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/large-orders-alert.rpt"));
    report->ReadRecords();
    QCOMPARE(report->PrintingStatus().NumberOfRecordSelected(), 3000);
    // The same conditions counted by the database itself, through a second report on the demo data.
    QTemporaryDir dir;
    const QString counts = WriteReport(QDir(dir.path()), QStringLiteral("counts.rpt"),
                                       QStringLiteral(R"(
<table name="Sales" location="sales" dll="sqlite"><property name="Database">%1</property></table>
<query>SELECT SUM(amount &gt;= 2000), SUM(amount &gt;= 1500 AND NOT paid),
  SUM(product = 'Doohickey' AND region = 'North' AND substr(order_date, 6, 2) = '12') FROM {Sales}</query>)")
                                           .arg(QStringLiteral(QORLO_SOURCE_DIR "/demo/demo.db")));
    auto sql = application.OpenReport(counts);
    sql->ReadRecords();
    QCOMPARE(report->ReportAlerts().Count(), 3);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(sql->records().row(0)[i].toInt() > 0);
        QCOMPARE(report->ReportAlerts().Item(i + 1).AlertingRecords().Count(),
                 sql->records().row(0)[i].toInt());
    }
}

void TestRecords::odbcDataSource()
{
    const QString driver = QStringLiteral("/usr/lib/x86_64-linux-gnu/odbc/libsqlite3odbc.so");
    QORLO_REQUIRE_PEER(QFile::exists(driver) && QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")),
                       QStringLiteral("libsqliteodbc and the Qt ODBC driver"));
    QTemporaryDir dir;
    const QDir folder(dir.path());
    MakeSalesDatabase(dir.filePath(QStringLiteral("sales.db")));
    QFile odbcinst(folder.filePath(QStringLiteral("odbcinst.ini")));
    QVERIFY(odbcinst.open(QIODevice::WriteOnly));
    odbcinst.write("[SQLite3]\nDriver=" + driver.toUtf8() + "\n");
    odbcinst.close();
    QFile odbc(folder.filePath(QStringLiteral("odbc.ini")));
    QVERIFY(odbc.open(QIODevice::WriteOnly));
    odbc.write("[QorloSales]\nDriver=SQLite3\nDatabase=" + dir.filePath(QStringLiteral("sales.db")).toUtf8() +
               "\n");
    odbc.close();
    qputenv("ODBCSYSINI", QFile::encodeName(dir.path()));
    qputenv("ODBCINI", QFile::encodeName(odbc.fileName()));

    const QString path = WriteReport(folder, QStringLiteral("odbc.rpt"), QStringLiteral(R"(
<table name="Sales" location="sales" dll="odbc"><property name="DSN">QorloSales</property></table>
<parameter name="Regions" type="12" multiple="true"/><parameter name="Min" type="7"/>
<query>SELECT id FROM {Sales} WHERE region IN ({?Regions}) AND amount &gt; {?Min} ORDER BY id</query>)"));
    Application application;
    auto report = application.OpenReport(path);
    report->ParameterFields().Item(1).AddCurrentValue(QStringLiteral("North"));
    report->ParameterFields().Item(1).AddCurrentValue(QStringLiteral("x'); DROP TABLE sales; --"));
    report->ParameterFields().Item(2).AddCurrentValue(50);
    QVERIFY2(report->Database().Tables().Item(1).TestConnectivity(),
             qPrintable(report->Database().Tables().Item(1).lastError()));
    report->ReadRecords();
    QCOMPARE(column(*report, 0).size(), 2);
    QCOMPARE(column(*report, 0)[0].toInt(), 1);
    QCOMPARE(column(*report, 0)[1].toInt(), 3);

    report->Database().Tables().Item(1).ConnectionProperties().Item(1).setValue(
        QStringLiteral("NoSuchSource"));
    QVERIFY(!report->Database().Tables().Item(1).TestConnectivity());
    const QString failure = errorOf(*report);
    QVERIFY2(failure.contains(QLatin1String("Data source name not found")), qPrintable(failure));
}

void TestRecords::postgresServer()
{
    QORLO_REQUIRE_PEER(PostgresPeer::Installed() && QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL")),
                       QStringLiteral("PostgreSQL 15 and the Qt PostgreSQL driver"));
    PostgresPeer server;
    QVERIFY2(server.start(QStringLiteral("s3cret")), qPrintable(server.error()));
    QVERIFY2(server.sql(QStringLiteral(
                 "CREATE TABLE sales (id integer, order_date date, region text, amount numeric(10,2));"
                 "INSERT INTO sales VALUES (1, '2024-01-05', 'North', 120.5), (2, '2024-01-20', 'South', 80),"
                 "(3, '2024-02-02', 'North', 1500.25), (4, '2024-03-01', 'it''s; --', 5);")),
             qPrintable(server.error()));
    QTemporaryDir dir;
    const QString path = WriteReport(QDir(dir.path()), QStringLiteral("pg.rpt"),
                                     QStringLiteral(R"(
<table name="Sales" location="public.sales" dll="psql">
  <property name="Server">127.0.0.1</property><property name="Port">%1</property>
  <property name="Database">postgres</property><property name="User ID">postgres</property>
</table>
<parameter name="Regions" type="12" multiple="true"/><parameter name="From" type="10"/>
<parameter name="Min" type="8"/>
<query>SELECT id, region FROM {Sales} WHERE region IN ({?Regions}) AND order_date &gt;= {?From}
  AND amount &gt; {?Min} ORDER BY id</query>)")
                                         .arg(server.port()));
    Application application;
    auto report = application.OpenReport(path);
    DatabaseTable &table = report->Database().Tables().Item(1);
    auto &fields = report->ParameterFields();
    for (const char *region : {"North", "it's; --"})
        fields.Item(1).AddCurrentValue(QString::fromUtf8(region));
    fields.Item(2).AddCurrentValue(QDate(2024, 1, 10));
    fields.Item(3).AddCurrentValue(1.0);

    table.ConnectionProperties().Add(QStringLiteral("Password"), QStringLiteral("wrong"));
    QVERIFY(!table.TestConnectivity());
    QVERIFY2(table.lastError().contains(QLatin1String("password authentication failed")),
             qPrintable(table.lastError()));
    QVERIFY(errorOf(*report).contains(QLatin1String("password authentication failed")));

    table.ConnectionProperties().Item(5).setValue(QStringLiteral("s3cret"));
    QVERIFY2(table.TestConnectivity(), qPrintable(table.lastError()));
    report->ReadRecords();
    QCOMPARE(column(*report, 0), (QVariantList{3, 4}));
    QCOMPARE(report->records().row(report->selectedRows()[1])[1].toString(), QStringLiteral("it's; --"));

    table.ConnectionProperties().Item(3).setValue(QStringLiteral("nowhere"));
    QVERIFY(!table.TestConnectivity());
    QVERIFY2(errorOf(*report).contains(QLatin1String("database \"nowhere\" does not exist")),
             qPrintable(table.lastError()));
}

QORLO_TEST_MAIN(TestRecords)
#include "tst_records.moc"
