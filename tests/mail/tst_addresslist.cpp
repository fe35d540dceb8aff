#include "log/clsLog.h"
#include "mail/AddressList.h"
#include "store/clsSchedule.h"
#include "AppObjects.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

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
        const QDir source(TestSupport::DataFile(QStringLiteral("mail/addresslists")));
        for (const QString &name : source.entryList(QDir::Files))
            QFile::copy(source.filePath(name), path(name));
    }
};

} // namespace

void TestAddressList::domainShortcuts()
{
    QTemporaryDir dir;
    clsSchedule schedule(dir.path());
    schedule.SaveDomain(0, QStringLiteral("5corp.com"));
    schedule.SaveDomain(1, QStringLiteral("example.com"));
    schedule.SaveDomain(5, QStringLiteral("example.org"));
    // The digit is replaced whatever follows it, an unset shortcut stays, and one pass from 0 to 9
    // expands a domain that begins with a later digit again.
    QCOMPARE(ExpandDomainShortcuts(QStringLiteral("ann@1;Bo@1;dee@12;eve@3;fay@0"), schedule),
             QStringLiteral("ann@example.com;Bo@example.com;dee@example.com2;eve@3;fay@example.orgcorp.com"));
}

void TestAddressList::nestedListFiles()
{
    ListFolder app;
    app.schedule.SaveDomain(1, QStringLiteral("example.com"));
    app.schedule.SaveDomain(2, QStringLiteral("example.net"));
    // team.lst: a quoted line, blank lines, a nested list and a repeated line; regions.lst repeats bob.
    QCOMPARE(ExpandListFiles(QStringLiteral("<team.lst>"), app.schedule, app.log),
             QStringLiteral("alice@1;bob@example.com;north@2;south@example.org"));
    QCOMPARE(ExpandAddressList(QStringLiteral("<team.lst>"), app.schedule, app.log),
             QStringLiteral("alice@example.com;bob@example.com;north@example.net;south@example.org"));
    // Lines already in the text are skipped; what surrounds the reference stays in place.
    QCOMPARE(ExpandListFiles(QStringLiteral("carol@example.com;<team.lst>;bob@example.com"), app.schedule,
                             app.log),
             QStringLiteral("carol@example.com;alice@1;north@2;south@example.org;bob@example.com"));
    // Text without a whole reference is no reference at all.
    QCOMPARE(ExpandListFiles(QStringLiteral("a@example.com>;<b"), app.schedule, app.log),
             QStringLiteral("a@example.com>;<b"));
    QVERIFY(app.logEntries().isEmpty());
}

void TestAddressList::selfReference()
{
    ListFolder app;
    // self.lst names itself: the expansion ends at the second visit and leaves that reference.
    const QString self =
        QLatin1Char('<') + app.path(QStringLiteral("self.lst")) + QStringLiteral(">;dave@example.com");
    QCOMPARE(ExpandListFiles(self, app.schedule, app.log),
             QStringLiteral("carol@example.com;<self.lst>;dave@example.com"));
    // Through another file, the same.
    QCOMPARE(ExpandListFiles(QStringLiteral("<cycle-a.lst>"), app.schedule, app.log),
             QStringLiteral("two@example.com;<cycle-a.lst>;one@example.com"));
}

void TestAddressList::missingListFile()
{
    ListFolder app;
    app.schedule.ProcessingID = QStringLiteral("17");
    app.schedule.SaveDomain(1, QStringLiteral("example.com"));
    const QString missing = app.path(QStringLiteral("nowhere.lst"));

    // The reference stays, is logged once however often it occurs, and later references still expand.
    QCOMPARE(
        ExpandAddressList(QStringLiteral("<nowhere.lst>;<team.lst>;<nowhere.lst>"), app.schedule, app.log),
        QStringLiteral(
            "<nowhere.lst>;alice@example.com;bob@example.com;north@2;south@example.org;<nowhere.lst>"));
    QCOMPARE(app.logEntries(), QStringList{QStringLiteral("17|Cannot find list file: ") + missing});

    // A folder is no list file.
    QVERIFY(QDir(app.appPath).mkdir(QStringLiteral("folder.lst")));
    QCOMPARE(ExpandListFiles(QStringLiteral("<folder.lst>"), app.schedule, app.log),
             QStringLiteral("<folder.lst>"));
    QCOMPARE(app.logEntries().size(), 2);
}

QORLO_TEST_MAIN(TestAddressList)
#include "tst_addresslist.moc"
