// Messages that name what to fix: the database file or server that failed, the report whose formula
// names an unknown field with the nearest field names, the element a report file leaves open.

#include "SalesReport.h"
#include "Peers.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QTemporaryDir>

using namespace Engine;
using namespace TestSupport;

namespace {

template <typename Work> QString FailureOf(Work work)
{
    try {
        work();
    } catch (const EngineError &error) {
        return error.description();
    }
    return QStringLiteral("(no failure)");
}

} // namespace

class TestMessages : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void databasesByFileOrServer();
    void unknownFieldsWithTheNearestNames();
    void unclosedElements();

private:
    QString readFailure(const QString &report);

    QTemporaryDir m_dir;
    Application m_application;
};

void TestMessages::initTestCase()
{
    QVERIFY(m_dir.isValid());
    MakeSalesDatabase(m_dir.filePath(QStringLiteral("sales.db")));
}

QString TestMessages::readFailure(const QString &report)
{
    return FailureOf([&] { m_application.OpenReport(report)->ReadRecords(); });
}

void TestMessages::databasesByFileOrServer()
{
    const QDir dir(m_dir.path());
    const auto table = [](const QString &dll, const QString &properties) {
        return QStringLiteral("<table name=\"Sales\" location=\"sales\" dll=\"%1\">%2</table>"
                              "<query>SELECT 1 AS one</query>")
            .arg(dll, properties);
    };
    WriteReport(
        dir, QStringLiteral("gone.rpt"),
        table(QStringLiteral("sqlite"), QStringLiteral("<property name=\"Database\">gone.db</property>")));
    QCOMPARE(readFailure(dir.filePath(QStringLiteral("gone.rpt"))),
             QStringLiteral("Cannot open the SQLite database %1: the file does not exist")
                 .arg(dir.filePath(QStringLiteral("gone.db"))));

    // A file that is not a database at all.
    QFile junk(dir.filePath(QStringLiteral("junk.db")));
    QVERIFY(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(4096, 'x'));
    junk.close();
    WriteReport(
        dir, QStringLiteral("junk.rpt"),
        table(QStringLiteral("sqlite"), QStringLiteral("<property name=\"Database\">junk.db</property>")));
    const QString notDatabase = readFailure(dir.filePath(QStringLiteral("junk.rpt")));
    QVERIFY2(
        notDatabase.startsWith(QStringLiteral("Cannot open the SQLite database %1: file is not a database")
                                   .arg(junk.fileName())),
        qPrintable(notDatabase));

    // A PostgreSQL server where nothing listens, and an ODBC data source that is not defined.
    const quint16 port = TestSupport::FreePort();
    WriteReport(
        dir, QStringLiteral("psql.rpt"),
        table(QStringLiteral("psql"), QStringLiteral("<property name=\"Server\">127.0.0.1:%1</property>"
                                                     "<property name=\"Database\">sales</property>")
                                          .arg(port)));
    QVERIFY2(readFailure(dir.filePath(QStringLiteral("psql.rpt")))
                 .startsWith(
                     QStringLiteral("Cannot connect to the PostgreSQL server 127.0.0.1:%1, database sales: ")
                         .arg(port)),
             qPrintable(readFailure(dir.filePath(QStringLiteral("psql.rpt")))));
    WriteReport(
        dir, QStringLiteral("odbc.rpt"),
        table(QStringLiteral("odbc"), QStringLiteral("<property name=\"DSN\">NoSuchSource</property>")));
    QVERIFY2(readFailure(dir.filePath(QStringLiteral("odbc.rpt")))
                 .startsWith(QStringLiteral("Cannot connect to the ODBC data source NoSuchSource: ")),
             qPrintable(readFailure(dir.filePath(QStringLiteral("odbc.rpt")))));
}

void TestMessages::unknownFieldsWithTheNearestNames()
{
    const QDir dir(m_dir.path());
    const QString report = SalesReport(dir, QStringLiteral("alert.rpt"),
                                       QStringLiteral("SELECT id, region, customer, amount FROM {Sales}"),
                                       QStringLiteral("<alert name=\"Big\">amout &gt; 100</alert>"));
    QCOMPARE(readFailure(report),
             QStringLiteral(
                 "Report %1: Formula alert \"Big\": position 1: unknown field \"amout\"; the nearest are: "
                 "amount, id, region")
                 .arg(report));
    auto opened = m_application.OpenReport(SalesReport(
        dir, QStringLiteral("selection.rpt"), QStringLiteral("SELECT id, region, customer FROM {Sales}")));
    opened->ReadRecords();
    QCOMPARE(FailureOf([&] { opened->setGroupSelectionFormula(QStringLiteral("Regoin = 'North'")); }),
             QStringLiteral(
                 "Report %1: Formula group selection: position 1: unknown field \"Regoin\"; the nearest "
                 "are: region, id, customer")
                 .arg(dir.filePath(QStringLiteral("selection.rpt"))));
}

void TestMessages::unclosedElements()
{
    const QDir dir(m_dir.path());
    QFile file(dir.filePath(QStringLiteral("open.rpt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\"?>\n<report version=\"1\">\n  <title>Open</title>\n  <layout>\n"
               "    <column field=\"id\">\n  </layout>\n</report>\n");
    file.close();
    QCOMPARE(FailureOf([&] { m_application.OpenReport(file.fileName()); }),
             QStringLiteral(
                 "Cannot open report file %1: line 6: the element <column> opened on line 5 is not closed "
                 "(Opening and ending tag mismatch.)")
                 .arg(file.fileName()));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("<?xml version=\"1.0\"?>\n<report version=\"1\">\n  <title>Open</title>\n  <layout>\n");
    file.close();
    QVERIFY2(FailureOf([&] {
                 m_application.OpenReport(file.fileName());
             }).contains(QLatin1String("the element <layout> opened on line 4 is not closed")),
             qPrintable(FailureOf([&] { m_application.OpenReport(file.fileName()); })));
}

QORLO_TEST_MAIN(TestMessages)
#include "tst_messages.moc"
