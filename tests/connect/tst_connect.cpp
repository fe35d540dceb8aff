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

using namespace Qt::Literals::StringLiterals;

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
    void tablesEndAtTheirBounds();
};

using namespace TestSupport;

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
        if (tag == u"<ConnectPassword>"_s || tag == u"<Connection_Password>"_s)
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
    QVERIFY(!list.Find(u"odbc"_s, u"db"_s, u"Sales"_s));
    QCOMPARE(list.Cursor(), qint16(-1));

    AddConnection(list, QString(), u"db"_s, u"Sales"_s, u"first"_s, QString());
    AddConnection(list, u"psql"_s, u"db"_s, u"Sales"_s, u"second"_s, QString());
    AddConnection(list, u"psql"_s, u"pg"_s, u"HR"_s, u"hr"_s, QString());
    // A row without a driver serves every driver; an empty driver asked for is compared like any text.
    QVERIFY(list.Find(u"odbc"_s, u"db"_s, u"Sales"_s));
    QCOMPARE(list.User(), u"first"_s);
    QVERIFY(!list.Find(QString(), u"pg"_s, u"HR"_s));
    QVERIFY(list.FindExt(u"psql"_s, u"db"_s, u"Sales"_s, u"second"_s));
    QCOMPARE(list.Cursor(), qint16(1));

    QVERIFY(!list.Find(u"psql"_s, u"PG"_s, u"hr"_s));
    QCOMPARE(list.Cursor(), qint16(-1));
    list.CaseSensitive = false;
    QVERIFY(list.Find(u"PSQL"_s, u"PG"_s, u"hr"_s));
    QCOMPARE(list.Cursor(), qint16(2));

    list.Delete(0);
    QCOMPARE(list.Count(), qint16(2));
    QCOMPARE(list.Cursor(), qint16(2)); // the cursor doesn't move
    list.Delete(5);
    list.Delete(-1);
    QCOMPARE(list.Count(), qint16(2));
    list.Locate(0);
    QCOMPARE(list.User(), u"second"_s);
    list.Delete(1);
    list.Delete(0);
    QCOMPARE(list.Count(), qint16(0));

    // Capacity is checked only when a cell of the 152nd row is touched.
    for (int row = 0; row < 151; ++row)
        list.AddNew();
    list.SetServer(u"last"_s);
    list.AddNew();
    QVERIFY_THROWS_EXCEPTION(QorloError, list.SetServer(u"one too many"_s));
}

void TestConnect::connectionRoundTrip()
{
    QTemporaryDir app;
    clsConnect list(app.path());
    QCOMPARE(list.Connection_File, app.filePath(u"Connect.XML"_s));
    list.Connection_Password = u"lock <me>"_s;
    list.UserOption = u"Yes"_s;
    list.CaseSensitive = false;
    AddConnection(list, QString(), u"db1"_s, u"sales"_s, u"rep"_s, u"p&ss<w>\"rd\" \u00e9\u20ac"_s);
    AddConnection(list, u"odbc"_s, u"DSN=Q"_s, u"\u00e9t\u00e9"_s, u"admin"_s, u"~~~"_s);
    list.Save();
    const QString path = list.Connection_File;
    QCOMPARE(QFile::permissions(path) & 0x0077, QFileDevice::Permissions()); // owner only
    QVERIFY(!ReadFile(path).contains("lock"));
    QVERIFY(!ReadFile(path).contains("p&amp;ss"));

    clsConnect fresh(app.path());
    fresh.EncodeOptions = u"No"_s; // the file's own setting wins before the rows
    fresh.Load(path);
    QCOMPARE(fresh.Count(), qint16(2));
    QCOMPARE(fresh.Connection_Password, u"lock <me>"_s);
    QCOMPARE(fresh.EncodeOptions, u"Yes"_s);
    QCOMPARE(fresh.UserOption, u"Yes"_s);
    QVERIFY(!fresh.CaseSensitive);
    QVERIFY(fresh.FindExt(u"any"_s, u"DB1"_s, u"Sales"_s, u"rep"_s));
    QCOMPARE(fresh.Password(), u"p&ss<w>\"rd\" \u00e9\u20ac"_s);
    fresh.Locate(1);
    QCOMPARE(fresh.DLL(), u"odbc"_s);
    QCOMPARE(fresh.Password(), u"~~~"_s);

    const QStringList first = DecodedLines(path);
    const QByteArray firstBytes = ReadFile(path);
    fresh.Save();
    QCOMPARE(DecodedLines(path), first);
    QVERIFY(ReadFile(path) != firstBytes); // new noise at every save

    // A missing file leaves an empty list and still names the file.
    const QString missing = app.filePath(u"none.XML"_s);
    fresh.Load(missing);
    QCOMPARE(fresh.Count(), qint16(0));
    QCOMPARE(fresh.Connection_File, missing);
}

void TestConnect::passwordForms()
{
    QTemporaryDir app;
    clsConnect list(app.path());
    list.Connection_Password = u"lock"_s;
    list.EncodeOptions = u"No"_s;
    AddConnection(list, QString(), u"s"_s, u"d"_s, u"u"_s, u"clear pw"_s);
    AddConnection(list, QString(), u"s"_s, u"d"_s, u"v"_s, QString());
    list.Save();
    QByteArray bytes = ReadFile(list.Connection_File);
    QVERIFY(bytes.contains("<ConnectPassword>clear pw</ConnectPassword>"));
    QVERIFY(bytes.contains("<ConnectPassword></ConnectPassword>"));
    QVERIFY(!bytes.contains("lock")); // the editor's lock stays scrambled

    list.EncodeOptions = u"Yes"_s;
    list.Connection_Password.clear();
    list.Save();
    bytes = ReadFile(list.Connection_File);
    QVERIFY(!bytes.contains("Connection_Password"));
    QVERIFY(!bytes.contains("clear pw"));
    // Empty text codes as the single character of code k + 64.
    const QRegularExpression single(u"<ConnectPassword>[@-L]</ConnectPassword>"_s);
    QVERIFY(single.match(QString::fromLatin1(bytes)).hasMatch());
}

void TestConnect::damagedConnectionFile()
{
    QTemporaryDir app;
    clsConnect list(app.path());
    const QString path = TestSupport::DataFile(u"connect/Connect-damaged.XML"_s);
    list.Load(path);
    QCOMPARE(list.Connection_File, path);
    QCOMPARE(list.UserOption, u"Yes"_s);
    QVERIFY(!list.CaseSensitive); // only "Yes" means yes
    QCOMPARE(list.EncodeOptions, u"No"_s);
    QCOMPARE(list.Count(), qint16(2));
    list.Locate(0);
    QCOMPARE(list.Password(), u"ab"_s); // decoded while "Yes" still stood
    list.Locate(1);
    QCOMPARE(list.Server(), u"db2"_s);
    QCOMPARE(list.Password(), u"Cd!ex"_s);
    QCOMPARE(list.User(), u"\u20ac&#1"_s);

    list.Load(WriteFile(app.filePath(u"Connect.XML"_s), RandomBytes(4096)));
    QCOMPARE(list.Count(), qint16(0));
}

void TestConnect::tableMapFile()
{
    QTemporaryDir app;
    clsMap map(app.path());
    QVERIFY_THROWS_EXCEPTION(QorloError, map.SetReportID(u"1"_s));
    map.ExamineTables(u"12"_s, {u"dbo.Orders"_s, u"dbo.Items"_s});
    map.ExamineTables(u"12"_s, {u"dbo.Orders"_s}); // listed again
    map.Locate(2);
    map.SetNewTable(u"live.Orders & <x>"_s);
    map.AddNew();
    map.SetReportID(QString());
    map.SetOriginalTable(u"test"_s);
    map.SetNewTable(QString());
    map.Save();
    const QString path = app.filePath(u"TableMap.XML"_s);
    const QByteArray first = ReadFile(path);
    QCOMPARE(first.count("<TableMap>"), 4);
    QVERIFY(
        first.contains("<TableMap>\r\n<ReportMapID></ReportMapID>\r\n<OriginalTable>test</OriginalTable>"));

    clsMap fresh(app.path());
    fresh.Load(path);
    QCOMPARE(fresh.Count(), qint16(4));
    fresh.Locate(2);
    QCOMPARE(fresh.NewTable(), u"live.Orders & <x>"_s);
    fresh.Save();
    QCOMPARE(ReadFile(path), first);
    fresh.Load(path); // adds, as the caller clears first
    QCOMPARE(fresh.Count(), qint16(8));

    const QString old = WriteFile(app.filePath(u"old.XML"_s),
                                  "<Schedule>\r\n<Report_Schedule>\r\n  "
                                  "<TableMap>\r\n<ReportMapID>3</ReportMapID>\r\n<Other>x</Other>\r\n");
    clsMap legacy(app.path());
    legacy.Load(old);
    QCOMPARE(legacy.Count(), qint16(1));
    QCOMPARE(legacy.ReportID(), u"3"_s);

    legacy.Clear();
    legacy.Load(WriteFile(old, RandomBytes(4096)));
    QCOMPARE(legacy.Count(), qint16(0));
}

void TestConnect::applyTableMap()
{
    QTemporaryDir app;
    clsMap map(app.path());
    QString location = u"A.A"_s, server = u"srvA"_s, database = u"dbA"_s;
    QVERIFY(!map.ApplyTableMap(location, u"1"_s, server, database));
    QCOMPARE(server, u"srvA"_s);

    const auto add = [&map](const QString &id, const QString &from, const QString &to) {
        map.AddNew();
        map.SetReportID(id);
        map.SetOriginalTable(from);
        map.SetNewTable(to);
    };
    add(QString(), u"A"_s, u"B"_s);
    add(u"1"_s, u"B"_s, u"C"_s);
    add(u"2"_s, u"C"_s, u"X"_s);
    add(QString(), u"sales"_s, u"live"_s);
    add(QString(), QString(), u"never"_s);
    // Rows in sequence, first occurrence only, exact case; other reports' rows are passed over.
    QVERIFY(map.ApplyTableMap(location, u"1"_s, server, database));
    QCOMPARE(location, u"C.A"_s);
    QCOMPARE(server, u"srvC"_s);
    QCOMPARE(database, u"dbC"_s);

    location = u"Sales.orders"_s;
    server = u"sales"_s;
    database = u"x"_s;
    QVERIFY(!map.ApplyTableMap(location, u"2"_s, server, database));
    QCOMPARE(location, u"Sales.orders"_s);
    QCOMPARE(server, u"live"_s);
}

QORLO_TEST_MAIN(TestConnect)
#include "tst_connect.moc"

// A file of more groups than the table has rows stops with the subscript error at the first cell of a
// row too many; rows too many without cells are not counted, so no walk of the table reads past it.
void TestConnect::tablesEndAtTheirBounds()
{
    QTemporaryDir app;
    // `count` groups, each naming its row in its first cell, or bare groups without cells.
    const auto groups = [&app](const QByteArray &group, const QByteArray &cell, int count) {
        QByteArray text;
        for (int row = 0; row < count; ++row) {
            text += '<' + group + ">\r\n";
            if (!cell.isEmpty())
                text += '<' + cell + '>' + QByteArray::number(row) + "</" + cell + ">\r\n";
        }
        return WriteFile(app.filePath(QString::fromLatin1(group + cell) + u".XML"_s), text);
    };

    clsMap map(app.path());
    map.Load(groups("TableMap", "ReportMapID", clsMap::UpperBound + 1));
    QCOMPARE(map.Count(), qint16(101));
    map.Locate(100);
    QCOMPARE(map.ReportID(), u"100"_s);
    map.AddNew();
    QCOMPARE(ErrorOf([&] { map.SetReportID(u"one too many"_s); }), 9);
    QCOMPARE(map.Count(), qint16(101));
    map.Clear();
    map.Load(groups("TableMap", {}, 20000));
    QCOMPARE(map.Count(), qint16(101));
    map.Clear();
    QCOMPARE(ErrorOf([&] { map.Load(groups("TableMap", "ReportMapID", 20000)); }), 9);
    QCOMPARE(map.Count(), qint16(101));
    QString location = u"100"_s, server, database;
    QVERIFY(!map.ApplyTableMap(location, u"1"_s, server, database));
    map.Save();
    QCOMPARE(ReadFile(app.filePath(u"TableMap.XML"_s)).count("<TableMap>"), 101);

    clsConnect list(app.path());
    list.Load(groups("Connect", "ConnectUser", clsConnect::UpperBound + 1));
    QCOMPARE(list.Count(), qint16(151));
    QCOMPARE(ErrorOf([&] { list.Load(groups("Connect", "ConnectUser", 20000)); }), 9);
    QCOMPARE(list.Count(), qint16(151));
    list.Load(groups("Connect", {}, 20000));
    QCOMPARE(list.Count(), qint16(151));
    QVERIFY(!list.Find(u"odbc"_s, u"none"_s, u"none"_s));
    list.Save();
    QCOMPARE(ReadFile(list.Connection_File).count("<Connect>"), 151);
}
