#include "SalesReport.h"

#include "RunObjects.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/QorloError.h"
#include "run/ConnectionLookup.h"
#include "run/ReportBinding.h"

#include <QTemporaryDir>

using namespace TestSupport;

using namespace Qt::Literals::StringLiterals;
using namespace ReportBinding;

namespace {

// The program's objects and a database in their application folder.
struct Fixture : RunObjects
{
    QString db = path(u"sales.db"_s);

    Fixture()
    {
        MakeSalesDatabase(db);
        schedule.AddNew();
        schedule.SetReportID(u"7"_s);
        connections.AddNew();
        connections.SetDLL(u"sqlite"_s);
        connections.SetServer(u"srvA"_s);
        connections.SetDatabase(db);
        connections.SetUser(u"reader"_s);
        connections.SetPassword(u"secret"_s);
    }
    Engine::Report &open(const QString &body)
    {
        QString text = body;
        const QString path = WriteReport(QDir(appPath), u"r.rpt"_s, text.replace(u"DB"_s, db));
        state.report.reset();
        state.application = std::make_unique<Engine::Application>();
        state.report = state.application->OpenReport(path);
        return *state.report;
    }
};

QString Table(const QString &name, const QString &properties)
{
    return u"<table name=\""_s + name + u"\" location=\"sales\" dll=\"sqlite\">"_s + properties +
           u"</table>"_s;
}

QString Property(const QString &name, const QString &value)
{
    return u"<property name=\""_s + name + u"\">"_s + value + u"</property>"_s;
}

QString Subreport(const QString &tables)
{
    return u"<subreport name=\"Sub\"><report version=\"1\"><title>Sub</title>"_s + tables +
           u"</report></subreport>"_s;
}

Engine::ConnectionProperties &PropertiesOf(Engine::Report &report, int table)
{
    return report.Database().Tables().Item(table).ConnectionProperties();
}

Engine::Report &SubreportOf(Engine::Report &report)
{
    for (Engine::Section &section : report.Sections())
        for (Engine::ReportObject &object : section.ReportObjects())
            if (object.Kind() == Engine::SubreportObjectKind)
                return static_cast<Engine::SubreportObject &>(object).OpenSubreport();
    qFatal("no sub-report");
}

QVariantList Values(Engine::Report &report, const QString &name)
{
    QVariantList values;
    for (Engine::ParameterFieldDefinition &field : report.ParameterFields())
        if (field.ParameterFieldName() == name)
            for (int i = 1; i <= field.NumberOfCurrentValues(); ++i)
                values << field.GetNthCurrentValue(i);
    return values;
}

const QString kServerA = Property(u"Server"_s, u"srvA"_s) + Property(u"Database"_s, u"DB"_s);

} // namespace

class TestReportBinding : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void storedParameters();
    void logOnFromConnectionList();
    void tableMapAndFailingTable();
    void subreports();
    void lookups();
    void titleAndListing();
};

void TestReportBinding::storedParameters()
{
    Fixture f;
    FixedClock clock(QDateTime(QDate(2024, 5, 17), QTime(9, 0)));
    ClockGuard guard(clock);
    // Field name, value type, stored value, and the values that reach the field.
    const QDateTime moment(QDate(2024, 3, 1), QTime(13, 45));
    const std::tuple<QString, int, QString, QVariantList> cases[] = {
        {u"Num"_s, 7, u"12.5"_s, {12.5}},
        {u"Money"_s, 8, u"12,5x"_s, {}},
        {u"Flag"_s, 9, u"True"_s, {true}},
        {u"Lower"_s, 9, u"yes"_s, {false}},
        {u"Day"_s, 10, u"2024-03-01"_s, {QDate(2024, 3, 1)}},
        {u"Moment"_s, 16, u"date(2024, 3, 1, 13, 45, 0)"_s, {moment}},
        {u"Now"_s, 10, u"today"_s, {QDate(2024, 5, 17)}},
        {u"Ancient"_s, 10, u"1400-01-01"_s, {}},
        {u"Soon"_s, 10, u"soon"_s, {}},
        {u"At"_s, 11, u"07:30:00"_s, {}},
        {u"Text"_s, 12, u"a||b"_s, {u"a"_s, u"b"_s}},
        {u"Empty"_s, 12, QString(), {QString()}}};
    QString body;
    for (const auto &[name, type, value, expected] : cases) {
        body += u"<parameter name=\"%1\" type=\"%2\" multiple=\"true\"/>"_s.arg(name).arg(type);
        // Stored in small letters: a field is found by its name in any case.
        f.storeParameter(u"7"_s, name.toLower(), value);
    }
    f.storeParameter(u"7"_s, u"Nobody"_s, u"x"_s);
    f.storeParameter(u"8"_s, u"Text"_s, u"another item's"_s);

    Engine::Report &report = f.open(body);
    SetParameters(f.run, QString());
    QCOMPARE(f.schedule.ParmError, u"ERROR: Parameter must be numeric"_s);
    for (const auto &[name, type, value, expected] : cases)
        QCOMPARE(Values(report, name), expected);

    // The exclusion compares the stored name exactly: "{?Num}" does not leave out "num".
    Engine::Report &again = f.open(body);
    SetParameters(f.run, u"{?flag}"_s);
    QCOMPARE(Values(again, u"Flag"_s), QVariantList());
    QCOMPARE(Values(again, u"Lower"_s), QVariantList{false});
    SetParameters(f.run, u"{?Num}"_s);
    QCOMPARE(Values(again, u"Num"_s), (QVariantList{12.5, 12.5}));
    Engine::Report &none = f.open(body);
    SetParameters(f.run, u"*ALL*"_s);
    for (Engine::ParameterFieldDefinition &field : none.ParameterFields())
        QCOMPARE(field.NumberOfCurrentValues(), 0);
}

void TestReportBinding::logOnFromConnectionList()
{
    Fixture f;
    Engine::Report &report =
        f.open(Table(u"First"_s, kServerA + Property(u"User ID"_s, u"nobody"_s) +
                                     Property(u"UseDSNProperties"_s, u"true"_s)) +
               Table(u"Second"_s, kServerA + Property(u"Password"_s, QString())) +
               Table(u"Third"_s, Property(u"Database"_s, u"missing.db"_s) +
                                     Property(u"Connection String"_s, u"Driver=x;server=srvB;DATABASE=DB"_s) +
                                     Property(u"User ID"_s, u"guest"_s)) +
               Table(u"Fourth"_s, kServerA));
    LogOnReport(f.run, report, u"7"_s);
    QCOMPARE(f.state.ConnectError, QString());
    QCOMPARE(PropertiesOf(report, 1).textOf(u"User ID"_s), u"reader"_s);
    QCOMPARE(PropertiesOf(report, 1).textOf(u"Password"_s), u"secret"_s); // added: the count was 1
    QCOMPARE(PropertiesOf(report, 1).Item(4).Value(), QVariant(false));
    QCOMPARE(PropertiesOf(report, 2).textOf(u"Password"_s), u"secret"_s);
    QCOMPARE(PropertiesOf(report, 3).textOf(u"Database"_s), f.db);
    for (int table : {3, 4})
        QVERIFY(!PropertiesOf(report, table).has(u"Password"_s));
    // Each found password and each "Password" property count; the unknown connection does not.
    QCOMPARE(f.state.LogOffCount, 4);
    for (int index : {1, 2, 4}) {
        const LogOffEntry &entry = f.state.LogOffList[size_t(index)];
        QCOMPARE(QStringList({entry.server, entry.database, entry.dllName}),
                 QStringList({u"srvA"_s, f.db, u"sqlite"_s}));
    }
    QVERIFY(f.state.LogOffList[3].server.isEmpty());

    clsConnect saved(f.appPath);
    saved.Load(f.appPath + u"/Connect.XML"_s);
    QVERIFY(saved.Find(u"sqlite"_s, u"srvB"_s, f.db));
    QCOMPARE(saved.User(), u"guest"_s);
    QCOMPARE(saved.Password(), QString());

    // Holes and repeats fail and are ignored; the listed server is logged off, the others stay on.
    LogOffServers(f.run);
    QCOMPARE(f.state.LogOffCount, 0);
    QVERIFY(!f.state.trap.Armed() && !f.state.trap.IsSet());
    Engine::Application &engine = report.Application();
    QVERIFY_THROWS_EXCEPTION(Engine::EngineError, engine.LogOffServer(u"sqlite"_s, u"srvA"_s, f.db));
    engine.LogOffServer(u"sqlite"_s, QString(), f.db); // Third, never queued
}

void TestReportBinding::tableMapAndFailingTable()
{
    Fixture f;
    QFile::copy(f.db, f.path(u"current.db"_s));
    for (const auto &[id, from, to] :
         {std::tuple{"", "legacy", "current"}, std::tuple{"99", "current", "wrong"}}) {
        f.tableMap.AddNew();
        f.tableMap.SetReportID(QLatin1String(id));
        f.tableMap.SetOriginalTable(QLatin1String(from));
        f.tableMap.SetNewTable(QLatin1String(to));
    }
    const QString legacy = f.path(u"legacy.db"_s);
    Engine::Report &report =
        f.open(u"<table name=\"Mapped\" location=\"legacy_sales\" dll=\"sqlite\">"_s +
               Property(u"Server"_s, u"legacyhost"_s) + Property(u"Database"_s, legacy) + u"</table>"_s +
               Table(u"Broken"_s, Property(u"Database"_s, u"missing.db"_s)) +
               Table(u"After"_s, kServerA + Property(u"User ID"_s, u"x"_s)) +
               Subreport(Table(u"Inner"_s, kServerA)));
    LogOnReport(f.run, report, u"7"_s);
    Engine::DatabaseTable &mapped = report.Database().Tables().Item(1);
    QCOMPARE(mapped.Location(), u"current_sales"_s);
    QCOMPARE(mapped.ConnectionProperties().textOf(u"Server"_s), u"currenthost"_s);
    QCOMPARE(mapped.ConnectionProperties().textOf(u"Database"_s), f.path(u"current.db"_s));
    QCOMPARE(f.state.ConnectError, u"Cannot connect to Broken"_s);
    // Nothing after the failing table is touched, and only a sub-report's failure shows a box.
    QCOMPARE(PropertiesOf(report, 3).textOf(u"User ID"_s), u"x"_s);
    QVERIFY(!PropertiesOf(SubreportOf(report), 1).has(u"Password"_s));
    QVERIFY(f.warnings.isEmpty());
}

void TestReportBinding::subreports()
{
    Fixture f;
    Engine::Report &report = f.open(Table(u"Main"_s, kServerA) + Subreport(Table(u"Inner"_s, kServerA)));
    LogOnReport(f.run, report, u"7"_s);
    QCOMPARE(f.state.ConnectError, QString());
    // The sub-report starts the log-off list anew, so its first table gets the password added too.
    QCOMPARE(PropertiesOf(SubreportOf(report), 1).textOf(u"Password"_s), u"secret"_s);
    QCOMPARE(f.state.LogOffCount, 1);

    // A report without tables still visits its sub-reports.
    Engine::Report &failing = f.open(Subreport(Table(u"Inner"_s, Property(u"Database"_s, u"missing.db"_s))));
    LogOnReport(f.run, failing, u"7"_s);
    QCOMPARE(f.state.ConnectError, u"Cannot connect to Inner"_s);
    QCOMPARE(f.warnings, QStringList{u"DB Connection: Cannot connect to Inner"_s});
}

void TestReportBinding::lookups()
{
    Fixture f;
    const QString text = u"Driver={SQLite3};SERVER=Host1;Database=Sales"_s;
    QCOMPARE(ConnectionStringValue(text, u"Server="_s), u"Host1"_s);
    QCOMPARE(ConnectionStringValue(text, u"database="_s), u"Sales"_s);
    QCOMPARE(ConnectionStringValue(text, u"Port="_s), QString());

    f.connections.UserOption = u"Yes"_s;
    QCOMPARE(FindUser(f.connections, u"sqlite"_s, u"srvA"_s, f.db, u"reader"_s), u"reader"_s);
    QCOMPARE(FindUser(f.connections, u"sqlite"_s, u"srvA"_s, f.db, u"other"_s), QString());
    f.connections.UserOption = u"No"_s;
    QCOMPARE(FindUser(f.connections, u"sqlite"_s, u"srvA"_s, f.db, u"other"_s), u"reader"_s);

    // The log-off list holds 100 entries; the 101st is a bounds failure.
    f.state.LogOffCount = 99;
    QCOMPARE(FindPassword(f.run, u"sqlite"_s, u"srvA"_s, f.db, QString()), u"secret"_s);
    QCOMPARE(f.state.LogOffList[100].server, u"srvA"_s);
    QCOMPARE(ErrorOf([&] { FindPassword(f.run, u"sqlite"_s, u"srvA"_s, f.db, QString()); }),
             int(QorloError::OutOfRange));
    // Such a failure leaves the count past the list; the log-off still ends and empties it.
    f.open(QString());
    LogOffServers(f.run);
    QCOMPARE(f.state.LogOffCount, 0);
}

void TestReportBinding::titleAndListing()
{
    Fixture f;
    QCOMPARE(ReportTitle(QString()), QString());
    QCOMPARE(ReportTitle(f.path(u"none.rpt"_s)), QString());
    QCOMPARE(ReportTitle(f.writeFile(u"broken.rpt"_s, "<report version=\"1\"><colum/></report>")),
             u"Cannot Load Report Title"_s);

    Engine::Report &report = f.open(u"<title>Listed</title>"_s +
                                    Table(u"Sales"_s, kServerA + Property(u"Old Password"_s, u"pw"_s)));
    QCOMPARE(ReportTitle(f.path(u"r.rpt"_s)), u"Listed"_s);
    const QString expected =
        u"List of DB tables and connection properties\r\nNew Database Table=Sales\r\n"
        u"New Property Name=Server\r\nLocal Name=Server\r\nDescription=Host name of the database server\r\n"
        u"Value=srvA\r\nChildren=0\r\n"
        u"New Property Name=Database\r\nLocal Name=Database\r\nDescription=Database name or file\r\n"
        u"Value="_s +
        f.db +
        u"\r\nChildren=0\r\n"
        u"New Property Name=Old Password\r\nLocal Name=Old Password\r\nDescription=\r\n"
        u"Value is write only\r\nChildren=0\r\n"_s;
    QCOMPARE(DescribeConnections(report), expected);

    // The listing is written before the log-on changes anything.
    f.state.ConnectDiagnostic = u"DBPrint"_s;
    LogOnReport(f.run, report, u"7"_s);
    QCOMPARE(QString::fromLatin1(ReadFile(f.path(u"Connect.txt"_s))), expected);
}

QORLO_TEST_MAIN(TestReportBinding)
#include "tst_reportbinding.moc"
