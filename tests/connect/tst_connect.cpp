#include "connect/clsConnect.h"
#include "connect/clsMap.h"
#include "core/LineReader.h"
#include "core/QorloError.h"
#include "core/XMLCode.h"
#include "Files.h"
#include "TestMain.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

class TestConnect : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void findAndDelete();
    void connectionRoundTrip();
    void passwordForms();
    void damagedConnectionFile();
    void tableMapFile();
    void applyTableMap();
};

using TestSupport::ReadFile;

namespace {

void AddConnection(clsConnect &list, const QString &dll, const QString &server, const QString &db,
                   const QString &user, const QString &password)
{
    list.AddNew();
    list.SetDLL(dll);
    list.SetServer(server);
    list.SetDatabase(db);
    list.SetUser(user);
    list.SetPassword(password);
}

// The file's lines with the scrambled values decoded, so two saves compare but for their noise.
QStringList DecodedLines(const QString &path)
{
    QStringList lines;
    LineReader reader(path);
    while (!reader.atEnd()) {
        QString line = reader.readLine();
        const QString tag = XMLCode::LineTag(line);
        if (tag == QLatin1String("<ConnectPassword>") || tag == QLatin1String("<Connection_Password>"))
            line = tag + XMLCode::DecodeText(XMLCode::TagValue(line));
        lines.append(line);
    }
    return lines;
}

} // namespace

void TestConnect::findAndDelete()
{
    QTemporaryDir app;
    clsConnect list(app.path());
    QVERIFY(!list.Find(QStringLiteral("odbc"), QStringLiteral("db"), QStringLiteral("Sales")));
    QCOMPARE(list.Cursor(), qint16(-1));

    AddConnection(list, QString(), QStringLiteral("db"), QStringLiteral("Sales"), QStringLiteral("first"),
                  QString());
    AddConnection(list, QStringLiteral("psql"), QStringLiteral("db"), QStringLiteral("Sales"),
                  QStringLiteral("second"), QString());
    AddConnection(list, QStringLiteral("psql"), QStringLiteral("pg"), QStringLiteral("HR"),
                  QStringLiteral("hr"), QString());
    // A row without a driver serves every driver; an empty driver asked for is compared like any text.
    QVERIFY(list.Find(QStringLiteral("odbc"), QStringLiteral("db"), QStringLiteral("Sales")));
    QCOMPARE(list.User(), QStringLiteral("first"));
    QVERIFY(!list.Find(QString(), QStringLiteral("pg"), QStringLiteral("HR")));
    QVERIFY(list.FindExt(QStringLiteral("psql"), QStringLiteral("db"), QStringLiteral("Sales"),
                         QStringLiteral("second")));
    QCOMPARE(list.Cursor(), qint16(1));

    QVERIFY(!list.Find(QStringLiteral("psql"), QStringLiteral("PG"), QStringLiteral("hr")));
    QCOMPARE(list.Cursor(), qint16(-1));
    list.CaseSensitive = false;
    QVERIFY(list.Find(QStringLiteral("PSQL"), QStringLiteral("PG"), QStringLiteral("hr")));
    QCOMPARE(list.Cursor(), qint16(2));

    list.Delete(0);
    QCOMPARE(list.Count(), qint16(2));
    QCOMPARE(list.Cursor(), qint16(2)); // the cursor doesn't move
    list.Delete(5);
    list.Delete(-1);
    QCOMPARE(list.Count(), qint16(2));
    list.Locate(0);
    QCOMPARE(list.User(), QStringLiteral("second"));
    list.Delete(1);
    list.Delete(0);
    QCOMPARE(list.Count(), qint16(0));

    // Capacity is checked only when a cell of the 152nd row is touched.
    for (int row = 0; row < 151; ++row)
        list.AddNew();
    list.SetServer(QStringLiteral("last"));
    list.AddNew();
    QVERIFY_THROWS_EXCEPTION(QorloError, list.SetServer(QStringLiteral("one too many")));
}

void TestConnect::connectionRoundTrip()
{
    QTemporaryDir app;
    clsConnect list(app.path());
    QCOMPARE(list.Connection_File, app.filePath(QStringLiteral("Connect.XML")));
    list.Connection_Password = QStringLiteral("lock <me>");
    list.UserOption = QStringLiteral("Yes");
    list.CaseSensitive = false;
    AddConnection(list, QString(), QStringLiteral("db1"), QStringLiteral("sales"), QStringLiteral("rep"),
                  QStringLiteral("p&ss<w>\"rd\" \u00e9\u20ac"));
    AddConnection(list, QStringLiteral("odbc"), QStringLiteral("DSN=Q"), QStringLiteral("\u00e9t\u00e9"),
                  QStringLiteral("admin"), QStringLiteral("~~~"));
    list.Save();
    const QString path = list.Connection_File;
    QCOMPARE(QFile::permissions(path) & 0x0077, QFileDevice::Permissions()); // owner only
    QVERIFY(!ReadFile(path).contains("lock"));
    QVERIFY(!ReadFile(path).contains("p&amp;ss"));

    clsConnect fresh(app.path());
    fresh.EncodeOptions = QStringLiteral("No"); // the file's own setting wins before the rows
    fresh.Load(path);
    QCOMPARE(fresh.Count(), qint16(2));
    QCOMPARE(fresh.Connection_Password, QStringLiteral("lock <me>"));
    QCOMPARE(fresh.EncodeOptions, QStringLiteral("Yes"));
    QCOMPARE(fresh.UserOption, QStringLiteral("Yes"));
    QVERIFY(!fresh.CaseSensitive);
    QVERIFY(fresh.FindExt(QStringLiteral("any"), QStringLiteral("DB1"), QStringLiteral("Sales"),
                          QStringLiteral("rep")));
    QCOMPARE(fresh.Password(), QStringLiteral("p&ss<w>\"rd\" \u00e9\u20ac"));
    fresh.Locate(1);
    QCOMPARE(fresh.DLL(), QStringLiteral("odbc"));
    QCOMPARE(fresh.Password(), QStringLiteral("~~~"));

    const QStringList first = DecodedLines(path);
    const QByteArray firstBytes = ReadFile(path);
    fresh.Save();
    QCOMPARE(DecodedLines(path), first);
    QVERIFY(ReadFile(path) != firstBytes); // new noise at every save

    // A missing file leaves an empty list and still names the file.
    const QString missing = app.filePath(QStringLiteral("none.XML"));
    fresh.Load(missing);
    QCOMPARE(fresh.Count(), qint16(0));
    QCOMPARE(fresh.Connection_File, missing);
}

void TestConnect::passwordForms()
{
    QTemporaryDir app;
    clsConnect list(app.path());
    list.Connection_Password = QStringLiteral("lock");
    list.EncodeOptions = QStringLiteral("No");
    AddConnection(list, QString(), QStringLiteral("s"), QStringLiteral("d"), QStringLiteral("u"),
                  QStringLiteral("clear pw"));
    AddConnection(list, QString(), QStringLiteral("s"), QStringLiteral("d"), QStringLiteral("v"), QString());
    list.Save();
    QByteArray bytes = ReadFile(list.Connection_File);
    QVERIFY(bytes.contains("<ConnectPassword>clear pw</ConnectPassword>"));
    QVERIFY(bytes.contains("<ConnectPassword></ConnectPassword>"));
    QVERIFY(!bytes.contains("lock")); // the editor's lock stays scrambled

    list.EncodeOptions = QStringLiteral("Yes");
    list.Connection_Password.clear();
    list.Save();
    bytes = ReadFile(list.Connection_File);
    QVERIFY(!bytes.contains("Connection_Password"));
    QVERIFY(!bytes.contains("clear pw"));
    // Empty text codes as the single character of code k + 64.
    const QRegularExpression single(QStringLiteral("<ConnectPassword>[@-L]</ConnectPassword>"));
    QVERIFY(single.match(QString::fromLatin1(bytes)).hasMatch());
}

void TestConnect::damagedConnectionFile()
{
    QTemporaryDir app;
    clsConnect list(app.path());
    const QString path = TestSupport::DataFile(QStringLiteral("connect/Connect-damaged.XML"));
    list.Load(path);
    QCOMPARE(list.Connection_File, path);
    QCOMPARE(list.UserOption, QStringLiteral("Yes"));
    QVERIFY(!list.CaseSensitive); // only "Yes" means yes
    QCOMPARE(list.EncodeOptions, QStringLiteral("No"));
    QCOMPARE(list.Count(), qint16(2));
    list.Locate(0);
    QCOMPARE(list.Password(), QStringLiteral("ab")); // decoded while "Yes" still stood
    list.Locate(1);
    QCOMPARE(list.Server(), QStringLiteral("db2"));
    QCOMPARE(list.Password(), QStringLiteral("Cd!ex"));
    QCOMPARE(list.User(), QStringLiteral("\u20ac&#1"));

    QFile garbage(app.filePath(QStringLiteral("Connect.XML")));
    QVERIFY(garbage.open(QIODevice::WriteOnly));
    for (int i = 0; i < 4096; ++i)
        garbage.write(QByteArray(1, char((i * 7919 + 13) % 256)));
    garbage.close();
    list.Load(garbage.fileName());
    QCOMPARE(list.Count(), qint16(0));
}

void TestConnect::tableMapFile()
{
    QTemporaryDir app;
    clsMap map(app.path());
    QVERIFY_THROWS_EXCEPTION(QorloError, map.SetReportID(QStringLiteral("1")));
    map.ExamineTables(QStringLiteral("12"), {QStringLiteral("dbo.Orders"), QStringLiteral("dbo.Items")});
    map.ExamineTables(QStringLiteral("12"), {QStringLiteral("dbo.Orders")}); // listed again
    map.Locate(2);
    map.SetNewTable(QStringLiteral("live.Orders & <x>"));
    map.AddNew();
    map.SetReportID(QString());
    map.SetOriginalTable(QStringLiteral("test"));
    map.SetNewTable(QString());
    map.Save();
    const QString path = app.filePath(QStringLiteral("TableMap.XML"));
    const QByteArray first = ReadFile(path);
    QCOMPARE(first.count("<TableMap>"), 4);
    QVERIFY(
        first.contains("<TableMap>\r\n<ReportMapID></ReportMapID>\r\n<OriginalTable>test</OriginalTable>"));

    clsMap fresh(app.path());
    fresh.Load(path);
    QCOMPARE(fresh.Count(), qint16(4));
    fresh.Locate(2);
    QCOMPARE(fresh.NewTable(), QStringLiteral("live.Orders & <x>"));
    fresh.Save();
    QCOMPARE(ReadFile(path), first);
    fresh.Load(path); // adds, as the caller clears first
    QCOMPARE(fresh.Count(), qint16(8));

    QFile old(app.filePath(QStringLiteral("old.XML")));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("<Schedule>\r\n<Report_Schedule>\r\n  "
              "<TableMap>\r\n<ReportMapID>3</ReportMapID>\r\n<Other>x</Other>\r\n");
    old.close();
    clsMap legacy(app.path());
    legacy.Load(old.fileName());
    QCOMPARE(legacy.Count(), qint16(1));
    QCOMPARE(legacy.ReportID(), QStringLiteral("3"));

    QVERIFY(old.open(QIODevice::WriteOnly));
    for (int i = 0; i < 4096; ++i)
        old.write(QByteArray(1, char((i * 104729 + 7) % 256)));
    old.close();
    legacy.Clear();
    legacy.Load(old.fileName());
    QCOMPARE(legacy.Count(), qint16(0));
}

void TestConnect::applyTableMap()
{
    QTemporaryDir app;
    clsMap map(app.path());
    QString location = QStringLiteral("A.A"), server = QStringLiteral("srvA"),
            database = QStringLiteral("dbA");
    QVERIFY(!map.ApplyTableMap(location, QStringLiteral("1"), server, database));
    QCOMPARE(server, QStringLiteral("srvA"));

    const auto add = [&map](const QString &id, const QString &from, const QString &to) {
        map.AddNew();
        map.SetReportID(id);
        map.SetOriginalTable(from);
        map.SetNewTable(to);
    };
    add(QString(), QStringLiteral("A"), QStringLiteral("B"));
    add(QStringLiteral("1"), QStringLiteral("B"), QStringLiteral("C"));
    add(QStringLiteral("2"), QStringLiteral("C"), QStringLiteral("X"));
    add(QString(), QStringLiteral("sales"), QStringLiteral("live"));
    add(QString(), QString(), QStringLiteral("never"));
    // Rows in sequence, first occurrence only, exact case; other reports' rows are passed over.
    QVERIFY(map.ApplyTableMap(location, QStringLiteral("1"), server, database));
    QCOMPARE(location, QStringLiteral("C.A"));
    QCOMPARE(server, QStringLiteral("srvC"));
    QCOMPARE(database, QStringLiteral("dbC"));

    location = QStringLiteral("Sales.orders");
    server = QStringLiteral("sales");
    database = QStringLiteral("x");
    QVERIFY(!map.ApplyTableMap(location, QStringLiteral("2"), server, database));
    QCOMPARE(location, QStringLiteral("Sales.orders"));
    QCOMPARE(server, QStringLiteral("live"));
}

QORLO_TEST_MAIN(TestConnect)
#include "tst_connect.moc"
