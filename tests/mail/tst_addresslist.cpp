#include "log/clsLog.h"
#include "mail/AddressList.h"
#include "store/clsSchedule.h"
#include "AppObjects.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

using namespace AddressList;

class TestAddressList : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void domainShortcuts();
    void nestedListFiles();
    void selfReference();
    void missingListFile();
};

namespace {

// An application folder holding the list files of tests/data/mail/addresslists.
struct ListFolder : TestSupport::AppObjects
{
    ListFolder()
    {
        const QDir source(TestSupport::DataFile(u"mail/addresslists"_s));
        for (const QString &name : source.entryList(QDir::Files))
            QFile::copy(source.filePath(name), path(name));
    }
};

} // namespace

void TestAddressList::domainShortcuts()
{
    QTemporaryDir dir;
    clsSchedule schedule(dir.path());
    schedule.SaveDomain(0, u"5corp.com"_s);
    schedule.SaveDomain(1, u"example.com"_s);
    schedule.SaveDomain(5, u"example.org"_s);
    // The digit is replaced whatever follows it, an unset shortcut stays, and one pass from 0 to 9
    // expands a domain that begins with a later digit again.
    QCOMPARE(ExpandDomainShortcuts(u"ann@1;Bo@1;dee@12;eve@3;fay@0"_s, schedule),
             u"ann@example.com;Bo@example.com;dee@example.com2;eve@3;fay@example.orgcorp.com"_s);
}

void TestAddressList::nestedListFiles()
{
    ListFolder app;
    app.schedule.SaveDomain(1, u"example.com"_s);
    app.schedule.SaveDomain(2, u"example.net"_s);
    // team.lst: a quoted line, blank lines, a nested list and a repeated line; regions.lst repeats bob.
    QCOMPARE(ExpandListFiles(u"<team.lst>"_s, app.schedule, app.log),
             u"alice@1;bob@example.com;north@2;south@example.org"_s);
    QCOMPARE(ExpandAddressList(u"<team.lst>"_s, app.schedule, app.log),
             u"alice@example.com;bob@example.com;north@example.net;south@example.org"_s);
    // Lines already in the text are skipped; what surrounds the reference stays in place.
    QCOMPARE(ExpandListFiles(u"carol@example.com;<team.lst>;bob@example.com"_s, app.schedule, app.log),
             u"carol@example.com;alice@1;north@2;south@example.org;bob@example.com"_s);
    // Text without a whole reference is no reference at all.
    QCOMPARE(ExpandListFiles(u"a@example.com>;<b"_s, app.schedule, app.log), u"a@example.com>;<b"_s);
    QVERIFY(app.logEntries().isEmpty());
}

void TestAddressList::selfReference()
{
    ListFolder app;
    // self.lst names itself: the expansion ends at the second visit and leaves that reference.
    const QString self = u'<' + app.path(u"self.lst"_s) + u">;dave@example.com"_s;
    QCOMPARE(ExpandListFiles(self, app.schedule, app.log),
             u"carol@example.com;<self.lst>;dave@example.com"_s);
    // Through another file, the same.
    QCOMPARE(ExpandListFiles(u"<cycle-a.lst>"_s, app.schedule, app.log),
             u"two@example.com;<cycle-a.lst>;one@example.com"_s);
}

void TestAddressList::missingListFile()
{
    ListFolder app;
    app.schedule.ProcessingID = u"17"_s;
    app.schedule.SaveDomain(1, u"example.com"_s);
    const QString missing = app.path(u"nowhere.lst"_s);

    // The reference stays, is logged once however often it occurs, and later references still expand.
    QCOMPARE(ExpandAddressList(u"<nowhere.lst>;<team.lst>;<nowhere.lst>"_s, app.schedule, app.log),
             u"<nowhere.lst>;alice@example.com;bob@example.com;north@2;south@example.org;<nowhere.lst>"_s);
    QCOMPARE(app.logEntries(), QStringList{u"17|Cannot find list file: "_s + missing});

    // A folder is no list file.
    QVERIFY(QDir(app.appPath).mkdir(u"folder.lst"_s));
    QCOMPARE(ExpandListFiles(u"<folder.lst>"_s, app.schedule, app.log), u"<folder.lst>"_s);
    QCOMPARE(app.logEntries().size(), 2);
}

QORLO_TEST_MAIN(TestAddressList)
#include "tst_addresslist.moc"
