// Messages that name what to fix: the database file or server that failed (a missing file: tst_records),
// the report whose formula names an unknown field with the nearest field names, the element a report file
// leaves open.

#include "EngineExports.h"
#include "Files.h"
#include "Peers.h"
#include "TestMain.h"

using namespace Engine;
using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestMessages : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void databasesByFileOrServer();
    void unknownFieldsWithTheNearestNames();
    void unclosedElements();

private:
    QString readFailure(const QString &report)
    {
        return FailureOf([&] { m_reports.application.OpenReport(report)->ReadRecords(); }).description;
    }

    ReportFolder m_reports;
};

void TestMessages::initTestCase()
{
    MakeSalesDatabase(m_reports.path(u"sales.db"_s));
}

void TestMessages::databasesByFileOrServer()
{
    // A file that is not a database at all.
    WriteFile(m_reports.path(u"junk.db"_s), QByteArray(4096, 'x'));
    // A PostgreSQL server where nothing listens, and an ODBC data source that is not defined.
    const quint16 port = FreePort();
    const struct
    {
        QString dll, properties, message;
    } databases[] = {
        {u"sqlite"_s, u"<property name=\"Database\">junk.db</property>"_s,
         u"Cannot open the SQLite database %1: file is not a database"_s.arg(m_reports.path(u"junk.db"_s))},
        {u"psql"_s,
         u"<property name=\"Server\">127.0.0.1:%1</property><property name=\"Database\">sales</property>"_s
             .arg(port),
         u"Cannot connect to the PostgreSQL server 127.0.0.1:%1, database sales: "_s.arg(port)},
        {u"odbc"_s, u"<property name=\"DSN\">NoSuchSource</property>"_s,
         u"Cannot connect to the ODBC data source NoSuchSource: "_s}};
    for (const auto &database : databases) {
        const QString report = WriteReport(
            QDir(m_reports.dir.path()), u"db.rpt"_s,
            u"<table name=\"Sales\" location=\"sales\" dll=\"%1\">%2</table><query>SELECT 1 AS one</query>"_s
                .arg(database.dll, database.properties));
        const QString failure = readFailure(report);
        QVERIFY2(failure.startsWith(database.message), qPrintable(failure));
    }
}

void TestMessages::unknownFieldsWithTheNearestNames()
{
    const QDir dir(m_reports.dir.path());
    const QString report =
        SalesReport(dir, u"alert.rpt"_s, u"SELECT id, region, customer, amount FROM {Sales}"_s,
                    u"<alert name=\"Big\">amout &gt; 100</alert>"_s);
    QCOMPARE(readFailure(report),
             u"Report %1: Formula alert \"Big\": position 1: unknown field \"amout\"; the nearest are: "
             "amount, id, region"_s.arg(report));
    const QString selection =
        SalesReport(dir, u"selection.rpt"_s, u"SELECT id, region, customer FROM {Sales}"_s);
    auto opened = m_reports.application.OpenReport(selection);
    opened->ReadRecords();
    QCOMPARE(FailureOf([&] { opened->setGroupSelectionFormula(u"Regoin = 'North'"_s); }).description,
             u"Report %1: Formula group selection: position 1: unknown field \"Regoin\"; the nearest "
             "are: region, id, customer"_s.arg(selection));
}

void TestMessages::unclosedElements()
{
    const auto failure = [&](const QByteArray &content) {
        const QString file =
            WriteFile(m_reports.path(u"open.rpt"_s),
                      "<?xml version=\"1.0\"?>\n<report version=\"1\">\n  <title>Open</title>\n"
                      "  <layout>\n" +
                          content);
        return FailureOf([&] { m_reports.application.OpenReport(file); }).description;
    };
    QCOMPARE(failure("    <column field=\"id\">\n  </layout>\n</report>\n"),
             u"Cannot open report file %1: line 6: the element <column> opened on line 5 is not closed "
             "(Opening and ending tag mismatch.)"_s.arg(m_reports.path(u"open.rpt"_s)));
    const QString unended = failure(QByteArray());
    QVERIFY2(unended.contains(u"the element <layout> opened on line 4 is not closed"_s), qPrintable(unended));
}

QORLO_TEST_MAIN(TestMessages)
#include "tst_messages.moc"
