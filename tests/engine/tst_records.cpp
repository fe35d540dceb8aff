#include "DatabasePeers.h"
#include "EngineExports.h"
#include "Peers.h"
#include "TestMain.h"

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

class TestRecords : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void sqliteBindsEveryValueType();
    void multiValuedListsStayData();
    void readFailuresCarryTheDriversMessage();
    void savedDataSelectionAndAlerts();
    void subreportTakesLinkedValues();
    void demoAlertsAgreeWithSql();
    void odbcDataSource();
    void postgresServer();

private:
    // Each test's own folder, with the fixture's sales.db.
    std::unique_ptr<QTemporaryDir> m_dir;
    QDir m_folder;

    static QString errorOf(Report &report)
    {
        return FailureOf([&] { report.ReadRecords(); }).description;
    }
    static QVariantList column(const Report &report, int field)
    {
        QVariantList values;
        for (int row : report.selectedRows())
            values.append(report.records().row(row)[field]);
        return values;
    }
};

void TestRecords::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_folder.setPath(m_dir->path());
    MakeSalesDatabase(m_folder.filePath(u"sales.db"_s));
}

void TestRecords::sqliteBindsEveryValueType()
{
    const QString path = SalesReport(
        m_folder, u"types.rpt"_s,
        u"SELECT {?Num} AS num, {?Money} AS money, {?Flag} AS flag, {?Day} AS day, {?Moment} AS moment, "
        "{?At} AS at, {?Text} AS text, '{?Num}' AS literal"_s,
        u"<parameter name=\"Num\" type=\"7\"/><parameter name=\"Money\" type=\"8\"/>"
        "<parameter name=\"Flag\" type=\"9\"/><parameter name=\"Day\" type=\"10\"/>"
        "<parameter name=\"Moment\" type=\"16\"/><parameter name=\"At\" type=\"11\"/>"
        "<parameter name=\"Text\" type=\"12\"><default>unused</default></parameter>"_s);
    Application application;
    auto report = application.OpenReport(path);
    auto &fields = report->ParameterFields();
    fields.Item(1).AddCurrentValue(12.5);
    fields.Item(2).AddCurrentValue(u"-3.75"_s);
    fields.Item(3).AddCurrentValue(true);
    fields.Item(4).AddCurrentValue(45351.0);
    fields.Item(5).AddCurrentValue(45351.75);
    fields.Item(6).AddCurrentValue(u"07:30:00"_s);
    fields.Item(7).AddCurrentValue(u"it's; a \"test\" --"_s);
    report->ReadRecords();
    QCOMPARE(report->PrintingStatus().NumberOfRecordSelected(), 1);
    const RecordStore::Row &row = report->records().row(0);
    QCOMPARE(row[0].toDouble(), 12.5);
    QCOMPARE(row[1].toDouble(), -3.75);
    QCOMPARE(row[2].toInt(), 1);
    QCOMPARE(row[3].toString(), u"2024-02-29"_s);
    QCOMPARE(row[4].toString(), u"2024-02-29 18:00:00"_s);
    QCOMPARE(row[5].toString(), u"07:30:00"_s);
    QCOMPARE(row[6].toString(), u"it's; a \"test\" --"_s);
    QCOMPARE(row[7].toString(), u"{?Num}"_s); // quoted text is the query's own
    QCOMPARE(report->PrintingStatus().Progress(), int(ProgressCompleted));
}

void TestRecords::multiValuedListsStayData()
{
    const QString path =
        SalesReport(m_folder, u"list.rpt"_s,
                    u"SELECT id, customer FROM {Sales} WHERE customer IN ({?Names}) AND order_date >= "
                    "{?From} ORDER BY id"_s,
                    u"<parameter name=\"Names\" type=\"12\" multiple=\"true\"/>"
                    "<parameter name=\"From\" type=\"10\"><default>2024-01-01</default></parameter>"_s);
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
    const QString count = SalesReport(m_folder, u"count.rpt"_s, u"SELECT * FROM {Sales}"_s);
    auto all = application.OpenReport(count);
    all->ReadRecords();
    QCOMPARE(all->PrintingStatus().NumberOfRecordSelected(), 6);

    report->ParameterFields().Item(1).ClearCurrentValueAndRange();
    QCOMPARE(errorOf(*report), u"Parameter {?Names} has no value"_s);
}

void TestRecords::readFailuresCarryTheDriversMessage()
{
    Application application;
    auto syntax = application.OpenReport(SalesReport(m_folder, u"s.rpt"_s, u"SELEC id FROM {Sales}"_s));
    QVERIFY(syntax->Database().Tables().Item(1).TestConnectivity());
    const QString syntaxError = errorOf(*syntax);
    QVERIFY2(syntaxError.startsWith(u"The query failed: "_s) && syntaxError.contains(u"syntax error"_s),
             qPrintable(syntaxError));
    QCOMPARE(syntax->PrintingStatus().Progress(), int(ProgressFailed));
    auto table = application.OpenReport(SalesReport(m_folder, u"t.rpt"_s, u"SELECT * FROM {Nope}"_s));
    QCOMPARE(errorOf(*table), u"The query names the unknown table {Nope}"_s);
    auto parameter = application.OpenReport(SalesReport(m_folder, u"p.rpt"_s, u"SELECT {?Nope}"_s));
    QCOMPARE(errorOf(*parameter), u"The query names the unknown parameter {?Nope}"_s);

    auto layout = application.OpenReport(SalesReport(m_folder, u"l.rpt"_s, u"SELECT id FROM {Sales}"_s,
                                                     u"<layout><group field=\"regoin\"/></layout>"_s));
    QCOMPARE(errorOf(*layout),
             u"The layout of "_s + m_folder.filePath(u"l.rpt"_s) +
                 u" names the field \"regoin\", which the query does not return; the nearest are: "
                 "id"_s);

    auto missing = application.OpenReport(SalesReport(m_folder, u"m.rpt"_s, u"SELECT 1"_s));
    missing->Database().Tables().Item(1).ConnectionProperties().Item(1).setValue(u"gone.db"_s);
    QVERIFY(!missing->Database().Tables().Item(1).TestConnectivity());
    QCOMPARE(missing->Database().Tables().Item(1).lastError(),
             u"Cannot open the SQLite database %1: the file does not exist"_s.arg(
                 m_folder.filePath(u"gone.db"_s)));
    QCOMPARE(errorOf(*missing), missing->Database().Tables().Item(1).lastError());
    QVERIFY(!QFile::exists(m_folder.filePath(u"gone.db"_s))); // never created by a read

    // Log-off forgets a log-on once.
    QVERIFY(syntax->Database().Tables().Item(1).TestConnectivity());
    application.LogOffServer(u"sqlite"_s, QString(), u"sales.db"_s);
    QVERIFY_THROWS_EXCEPTION(EngineError, application.LogOffServer(u"sqlite"_s, QString(), u"sales.db"_s));
}

void TestRecords::savedDataSelectionAndAlerts()
{
    const QString path =
        SalesReport(m_folder, u"alerts.rpt"_s, u"SELECT id, region, amount, paid FROM {Sales} ORDER BY id"_s,
                    u"<alert name=\"Big\">amount &gt;= 1500</alert>"
                    "<alert name=\"Unpaid\">not paid</alert>"
                    "<groupSelection>region &lt;&gt; 'East'</groupSelection>"_s);
    Application application;
    auto report = application.OpenReport(path);
    report->ReadRecords();
    QCOMPARE(report->PrintingStatus().NumberOfRecordSelected(), 5);
    QCOMPARE(report->ReportAlerts().Count(), 2);
    QCOMPARE(report->ReportAlerts().Item(1).Name(), u"Big"_s);
    QCOMPARE(report->ReportAlerts().Item(1).AlertingRecords().Count(), 2);
    QCOMPARE(report->ReportAlerts().Item(2).AlertingRecords().Count(),
             1); // East's unpaid row is not selected
    const QString opening = report->GroupSelectionFormula();
    report->setGroupSelectionFormula(opening + u" and "_s +
                                     report->ReportAlerts().Item(1).ConditionFormula());
    QCOMPARE(column(*report, 0), (QVariantList{3, 5}));
    QVERIFY_THROWS_EXCEPTION(EngineError, report->setGroupSelectionFormula(u"amount >"_s));
    QVERIFY_THROWS_EXCEPTION(EngineError, report->setGroupSelectionFormula(u"amout > 1"_s));
    QCOMPARE(column(*report, 0), (QVariantList{3, 5})); // a failed change leaves the view as it was
    report->setGroupSelectionFormula(opening);

    report->ExportOptions().FormatType = CrystalReportFormat;
    report->ExportOptions().DiskFileName = m_folder.filePath(u"saved.rpt"_s);
    report->Export(false);
    QVERIFY(QFile::remove(m_folder.filePath(u"sales.db"_s)));
    auto saved = application.OpenReport(m_folder.filePath(u"saved.rpt"_s));
    QVERIFY(saved->HasSavedData());
    saved->ReadRecords(); // from the saved rows: the database is gone
    QCOMPARE(saved->records().count(), 6);
    QCOMPARE(saved->PrintingStatus().NumberOfRecordSelected(), 5);
    QCOMPARE(saved->ReportAlerts().Item(1).AlertingRecords().Count(), 2);
    QCOMPARE(saved->records().row(3)[2], QVariant()); // the NULL amount stays null
    QCOMPARE(saved->records().row(2)[1], QVariant(u"North"_s));
    saved->DiscardSavedData();
    QVERIFY(!saved->HasSavedData());
    QCOMPARE(saved->PrintingStatus().NumberOfRecordSelected(), 0);
    QVERIFY(errorOf(*saved).contains(u"the file does not exist"_s));
}

void TestRecords::subreportTakesLinkedValues()
{
    Application application;
    auto report = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/regions-with-summary.rpt"));
    auto &regions = report->ParameterFields().Item(1);
    regions.AddCurrentValue(u"West"_s);
    regions.AddCurrentValue(u"East"_s);
    report->ReadRecords();
    QCOMPARE(column(*report, 0), (QVariantList{u"East"_s, u"West"_s}));
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
        QVERIFY(region == u"East"_s || region == u"West"_s);
}

void TestRecords::demoAlertsAgreeWithSql()
{
    Application application;
    auto report = application.OpenReport(QStringLiteral(QORLO_SOURCE_DIR "/demo/large-orders-alert.rpt"));
    report->ReadRecords();
    QCOMPARE(report->PrintingStatus().NumberOfRecordSelected(), 3000);
    // The same conditions counted by the database itself, through a second report on the demo data.
    const QString counts = WriteReport(m_folder, u"counts.rpt"_s,
                                       uR"(
<table name="Sales" location="sales" dll="sqlite"><property name="Database">%1</property></table>
<query>SELECT SUM(amount &gt;= 2000), SUM(amount &gt;= 1500 AND NOT paid),
  SUM(product = 'Doohickey' AND region = 'North' AND substr(order_date, 6, 2) = '12') FROM {Sales}</query>)"_s
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
    QORLO_REQUIRE_PEER(OdbcInstalled(), u"libsqliteodbc and the Qt ODBC driver"_s);
    MakeOdbcDataSource(m_folder.path(), u"QorloSales"_s, m_folder.filePath(u"sales.db"_s));

    const QString path = WriteReport(m_folder, u"odbc.rpt"_s, uR"(
<table name="Sales" location="sales" dll="odbc"><property name="DSN">QorloSales</property></table>
<parameter name="Regions" type="12" multiple="true"/><parameter name="Min" type="7"/>
<query>SELECT id FROM {Sales} WHERE region IN ({?Regions}) AND amount &gt; {?Min} ORDER BY id</query>)"_s);
    Application application;
    auto report = application.OpenReport(path);
    report->ParameterFields().Item(1).AddCurrentValue(u"North"_s);
    report->ParameterFields().Item(1).AddCurrentValue(u"x'); DROP TABLE sales; --"_s);
    report->ParameterFields().Item(2).AddCurrentValue(50);
    QVERIFY2(report->Database().Tables().Item(1).TestConnectivity(),
             qPrintable(report->Database().Tables().Item(1).lastError()));
    report->ReadRecords();
    QCOMPARE(column(*report, 0).size(), 2);
    QCOMPARE(column(*report, 0)[0].toInt(), 1);
    QCOMPARE(column(*report, 0)[1].toInt(), 3);

    report->Database().Tables().Item(1).ConnectionProperties().Item(1).setValue(u"NoSuchSource"_s);
    QVERIFY(!report->Database().Tables().Item(1).TestConnectivity());
    const QString failure = errorOf(*report);
    QVERIFY2(failure.contains(u"Data source name not found"_s), qPrintable(failure));
}

void TestRecords::postgresServer()
{
    QORLO_REQUIRE_PEER(PostgresPeer::Installed(), u"PostgreSQL 15 and the Qt PostgreSQL driver"_s);
    PostgresPeer server;
    QVERIFY2(server.start(u"s3cret"_s), qPrintable(server.error()));
    QVERIFY2(server.sql(
                 u"CREATE TABLE sales (id integer, order_date date, region text, amount numeric(10,2));"
                 "INSERT INTO sales VALUES (1, '2024-01-05', 'North', 120.5), (2, '2024-01-20', 'South', 80),"
                 "(3, '2024-02-02', 'North', 1500.25), (4, '2024-03-01', 'it''s; --', 5);"_s),
             qPrintable(server.error()));
    const QString path = WriteReport(m_folder, u"pg.rpt"_s, uR"(
<table name="Sales" location="public.sales" dll="psql">
  <property name="Server">127.0.0.1</property><property name="Port">%1</property>
  <property name="Database">postgres</property><property name="User ID">postgres</property>
</table>
<parameter name="Regions" type="12" multiple="true"/><parameter name="From" type="10"/>
<parameter name="Min" type="8"/>
<query>SELECT id, region FROM {Sales} WHERE region IN ({?Regions}) AND order_date &gt;= {?From}
  AND amount &gt; {?Min} ORDER BY id</query>)"_s.arg(server.port()));
    Application application;
    auto report = application.OpenReport(path);
    DatabaseTable &table = report->Database().Tables().Item(1);
    auto &fields = report->ParameterFields();
    for (const char *region : {"North", "it's; --"})
        fields.Item(1).AddCurrentValue(QString::fromUtf8(region));
    fields.Item(2).AddCurrentValue(QDate(2024, 1, 10));
    fields.Item(3).AddCurrentValue(1.0);

    table.ConnectionProperties().Add(u"Password"_s, u"wrong"_s);
    QVERIFY(!table.TestConnectivity());
    QVERIFY2(table.lastError().contains(u"password authentication failed"_s), qPrintable(table.lastError()));
    QVERIFY(errorOf(*report).contains(u"password authentication failed"_s));

    table.ConnectionProperties().Item(5).setValue(u"s3cret"_s);
    QVERIFY2(table.TestConnectivity(), qPrintable(table.lastError()));
    report->ReadRecords();
    QCOMPARE(column(*report, 0), (QVariantList{3, 4}));
    QCOMPARE(report->records().row(report->selectedRows()[1])[1].toString(), u"it's; --"_s);

    table.ConnectionProperties().Item(3).setValue(u"nowhere"_s);
    QVERIFY(!table.TestConnectivity());
    QVERIFY2(errorOf(*report).contains(u"database \"nowhere\" does not exist"_s),
             qPrintable(table.lastError()));
}

QORLO_TEST_MAIN(TestRecords)
#include "tst_records.moc"
