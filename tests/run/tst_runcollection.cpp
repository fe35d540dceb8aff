// A collection item running its members in the order of the collection table.
#include "RunObjects.h"
#include "TestClocks.h"
#include "TestMain.h"

#include "core/AppFolder.h"
#include "run/OutputNames.h"
#include "run/RunCollection.h"

#include <QFile>

using namespace TestSupport;

using namespace Qt::Literals::StringLiterals;

class TestRunCollection : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void membersRunInOrder();
    void emptyCollection();
};

namespace {

// An item due on 01-Apr-2026 06:00.
void AddItem(clsSchedule &schedule, const QString &id, const QString &name, const QString &file)
{
    TestSupport::AddItem(schedule, {id, name, file, u"D"_s, u"1"_s, u"01-Apr-2026 06:00"_s});
}

void AddMember(clsSchedule &schedule, const QString &collection, const QString &member)
{
    schedule.NewCollectionItem();
    schedule.SetCollectionID(collection);
    schedule.SetCollectionItem(member);
}

} // namespace

// The collection's values reach its report member, whose output name takes the collection's name;
// every member's entry carries the collection's ID and a step number; only the collection's LastRun
// moves, and %c is empty again afterwards.
void TestRunCollection::membersRunInOrder()
{
    // QorloGLOBAL is not set in this test's settings.
    FixedClock clock(QDateTime(QDate(2026, 3, 31), QTime(6, 0)));
    ClockGuard guard(clock);
    RunObjects app;
    AppFolder::MakeWorkingFolders(app.appPath);
    MakeSalesDatabase(app.path(u"sales.db"_s));
    SalesReport(QDir(app.appPath), u"sales.rpt"_s,
                u"SELECT customer FROM {Sales} WHERE region = {?Region} ORDER BY id"_s,
                u"<parameter name=\"Region\" type=\"12\"/><layout><column field=\"customer\"/></layout>"_s);
    const QString marker = app.path(u"started.txt"_s);
    WriteScript(app.path(u"step.sh"_s), "echo started > '" + marker.toUtf8() + "'");

    clsSchedule &schedule = app.schedule;
    AddItem(schedule, u"1"_s, u"Month end"_s, u"COLLECTION"_s);
    schedule.SetCollectionName(u"March"_s);
    AddItem(schedule, u"2"_s, u"Sales"_s, app.path(u"sales.rpt"_s));
    schedule.SetOutputFormat(u"CSV File"_s);
    schedule.SetLocation(app.path(u"Output/%c/sales.csv"_s));
    AddItem(schedule, u"3"_s, u"Step"_s, app.path(u"step.sh"_s));
    AddItem(schedule, u"4"_s, u"Global"_s, app.path(u"command.xml"_s));
    app.storeParameter(u"1"_s, u"Region"_s, u"South"_s);
    app.storeParameter(u"2"_s, u"Region"_s, u"North"_s);
    AddMember(schedule, u"1"_s, u"3"_s);
    AddMember(schedule, u"9"_s, u"2"_s); // another collection's row
    AddMember(schedule, u"1"_s, u"2"_s);
    AddMember(schedule, u"1"_s, u"4"_s);
    schedule.Find(u"1"_s);

    RunCollection(app.run);

    const QString output = app.path(u"Output/March/sales.csv"_s);
    QCOMPARE(app.logEntries(),
             (QStringList{
                 u"1|Month end (Start): Start Process report collection"_s,
                 u"1|Month end (1): Successful Execute of Application "_s,
                 u"1|Month end (2): Successful output to "_s + output,
                 u"1|Error: Cannot run procedure until QorloGLOBAL application setting is entered"_s,
                 u"1|Month end (3): Successful QorloGLOBAL "_s,
                 u"1|Month end (Finished): Successful Run (3 schedule items processed in collection)"_s}));
    const QByteArray rows = ReadFile(output);
    QVERIFY2(rows.contains("Bolt; Nut") && !rows.contains("Acme"), rows.constData());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(marker), 5000);

    QCOMPARE(schedule.ReportID(), u"1"_s);
    QCOMPARE(schedule.LastRun(), u"31-Mar-2026 06:00"_s);
    QVERIFY(schedule.ProcessingID.isEmpty() && schedule.ProcessingName.isEmpty());
    QVERIFY(OutputNames::CurrentCollection().isEmpty());
    QVERIFY(QFile::exists(app.path(u"Qorlo.XML"_s)));
    schedule.Find(u"2"_s);
    QCOMPARE(schedule.NextRun(), u"01-Apr-2026 06:00"_s);
}

void TestRunCollection::emptyCollection()
{
    RunObjects app;
    AddItem(app.schedule, u"5"_s, u"Nothing"_s, u"COLLECTION"_s);
    RunCollection(app.run);
    QCOMPARE(
        app.logEntries(),
        (QStringList{u"5|Nothing (Start): Start Process report collection"_s,
                     u"5|Nothing (Finished): Successful Run (0 schedule items processed in collection)"_s}));
}

QORLO_TEST_MAIN(TestRunCollection)
#include "tst_runcollection.moc"
