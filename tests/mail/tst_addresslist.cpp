#include "mail/AddressList.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

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

// An application folder holding the list files of tests/data/mail/addresslists, ten domain shortcuts
// and what the expansion logged.
struct AppFolder
{
    AppFolder()
    {
        const QDir source(TestSupport::DataFile(QStringLiteral("mail/addresslists")));
        for (const QString &name : source.entryList(QDir::Files))
            QFile::copy(source.filePath(name), path(name));
    }
    QString path(const QString &name) const { return dir.filePath(name); }
    Sources sources()
    {
        return {dir.path(), domains, [this](const QString &text) { logged.append(text); }};
    }

    QTemporaryDir dir;
    QStringList domains = QStringList(10, QString());
    QStringList logged;
};

} // namespace

void TestAddressList::domainShortcuts()
{
    QStringList domains(10, QString());
    domains[0] = QStringLiteral("5corp.com");
    domains[1] = QStringLiteral("example.com");
    domains[5] = QStringLiteral("example.org");
    // The digit is replaced whatever follows it, an unset shortcut stays, and one pass from 0 to 9
    // expands a domain that begins with a later digit again.
    QCOMPARE(ExpandDomainShortcuts(QStringLiteral("ann@1;Bo@1;dee@12;eve@3;fay@0"), domains),
             QStringLiteral("ann@example.com;Bo@example.com;dee@example.com2;eve@3;fay@example.orgcorp.com"));
}

void TestAddressList::nestedListFiles()
{
    AppFolder app;
    app.domains[1] = QStringLiteral("example.com");
    app.domains[2] = QStringLiteral("example.net");
    // team.lst: a quoted line, blank lines, a nested list and a repeated line; regions.lst repeats bob.
    QCOMPARE(ExpandListFiles(QStringLiteral("<team.lst>"), app.sources()),
             QStringLiteral("alice@1;bob@example.com;north@2;south@example.org"));
    QCOMPARE(ExpandAddressList(QStringLiteral("<team.lst>"), app.sources()),
             QStringLiteral("alice@example.com;bob@example.com;north@example.net;south@example.org"));
    // Lines already in the text are skipped; what surrounds the reference stays in place.
    QCOMPARE(ExpandListFiles(QStringLiteral("carol@example.com;<team.lst>;bob@example.com"), app.sources()),
             QStringLiteral("carol@example.com;alice@1;north@2;south@example.org;bob@example.com"));
    // Text without a whole reference is no reference at all.
    QCOMPARE(ExpandListFiles(QStringLiteral("a@example.com>;<b"), app.sources()),
             QStringLiteral("a@example.com>;<b"));
    QVERIFY(app.logged.isEmpty());
}

void TestAddressList::selfReference()
{
    AppFolder app;
    // self.lst names itself: the expansion ends at the second visit and leaves that reference.
    const QString self =
        QLatin1Char('<') + app.path(QStringLiteral("self.lst")) + QStringLiteral(">;dave@example.com");
    QCOMPARE(ExpandListFiles(self, app.sources()),
             QStringLiteral("carol@example.com;<self.lst>;dave@example.com"));
    // Through another file, the same.
    QCOMPARE(ExpandListFiles(QStringLiteral("<cycle-a.lst>"), app.sources()),
             QStringLiteral("two@example.com;<cycle-a.lst>;one@example.com"));
}

void TestAddressList::missingListFile()
{
    AppFolder app;
    app.domains[1] = QStringLiteral("example.com");
    const QString missing = app.path(QStringLiteral("nowhere.lst"));

    // The reference stays, is logged once however often it occurs, and later references still expand.
    QCOMPARE(ExpandAddressList(QStringLiteral("<nowhere.lst>;<team.lst>;<nowhere.lst>"), app.sources()),
             QStringLiteral(
                 "<nowhere.lst>;alice@example.com;bob@example.com;north@2;south@example.org;<nowhere.lst>"));
    QCOMPARE(app.logged, QStringList{QStringLiteral("Cannot find list file: ") + missing});

    // A folder is no list file.
    QVERIFY(QDir(app.dir.path()).mkdir(QStringLiteral("folder.lst")));
    QCOMPARE(ExpandListFiles(QStringLiteral("<folder.lst>"), app.sources()), QStringLiteral("<folder.lst>"));
    QCOMPARE(app.logged.size(), 2);

    // Nor is a FIFO, which would block the reader for good, or a device, which never ends.
    QCOMPARE(::mkfifo(QFile::encodeName(app.path(QStringLiteral("fifo.lst"))).constData(), 0600), 0);
    QCOMPARE(ExpandListFiles(QStringLiteral("<fifo.lst>;</dev/zero>"), app.sources()),
             QStringLiteral("<fifo.lst>;</dev/zero>"));
    QCOMPARE(app.logged.mid(2),
             (QStringList{QStringLiteral("Cannot find list file: ") + app.path(QStringLiteral("fifo.lst")),
                          QStringLiteral("Cannot find list file: /dev/zero")}));
}

QORLO_TEST_MAIN(TestAddressList)
#include "tst_addresslist.moc"
