#include "mail/AddressList.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace AddressList;
using namespace Qt::Literals::StringLiterals;

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
        const QDir source(TestSupport::DataFile(u"mail/addresslists"_s));
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
    domains[0] = u"5corp.com"_s;
    domains[1] = u"example.com"_s;
    domains[5] = u"example.org"_s;
    // The digit is replaced whatever follows it, an unset shortcut stays, and one pass from 0 to 9
    // expands a domain that begins with a later digit again.
    QCOMPARE(ExpandDomainShortcuts(u"ann@1;Bo@1;dee@12;eve@3;fay@0"_s, domains),
             u"ann@example.com;Bo@example.com;dee@example.com2;eve@3;fay@example.orgcorp.com"_s);
}

void TestAddressList::nestedListFiles()
{
    AppFolder app;
    app.domains[1] = u"example.com"_s;
    app.domains[2] = u"example.net"_s;
    // team.lst: a quoted line, blank lines, a nested list and a repeated line; regions.lst repeats bob.
    QCOMPARE(ExpandListFiles(u"<team.lst>"_s, app.sources()),
             u"alice@1;bob@example.com;north@2;south@example.org"_s);
    QCOMPARE(ExpandAddressList(u"<team.lst>"_s, app.sources()),
             u"alice@example.com;bob@example.com;north@example.net;south@example.org"_s);
    // Lines already in the text are skipped; what surrounds the reference stays in place.
    QCOMPARE(ExpandListFiles(u"carol@example.com;<team.lst>;bob@example.com"_s, app.sources()),
             u"carol@example.com;alice@1;north@2;south@example.org;bob@example.com"_s);
    // Text without a whole reference is no reference at all.
    QCOMPARE(ExpandListFiles(u"a@example.com>;<b"_s, app.sources()), u"a@example.com>;<b"_s);
    QVERIFY(app.logged.isEmpty());
}

void TestAddressList::selfReference()
{
    AppFolder app;
    // self.lst names itself: the expansion ends at the second visit and leaves that reference.
    const QString self = u'<' + app.path(u"self.lst"_s) + u">;dave@example.com"_s;
    QCOMPARE(ExpandListFiles(self, app.sources()), u"carol@example.com;<self.lst>;dave@example.com"_s);
    // Through another file, the same.
    QCOMPARE(ExpandListFiles(u"<cycle-a.lst>"_s, app.sources()),
             u"two@example.com;<cycle-a.lst>;one@example.com"_s);
}

void TestAddressList::missingListFile()
{
    AppFolder app;
    app.domains[1] = u"example.com"_s;
    const QString missing = app.path(u"nowhere.lst"_s);

    // The reference stays, is logged once however often it occurs, and later references still expand.
    QCOMPARE(ExpandAddressList(u"<nowhere.lst>;<team.lst>;<nowhere.lst>"_s, app.sources()),
             QStringLiteral(
                 "<nowhere.lst>;alice@example.com;bob@example.com;north@2;south@example.org;<nowhere.lst>"));
    QCOMPARE(app.logged, QStringList{u"Cannot find list file: "_s + missing});

    // A folder is no list file.
    QVERIFY(QDir(app.dir.path()).mkdir(u"folder.lst"_s));
    QCOMPARE(ExpandListFiles(u"<folder.lst>"_s, app.sources()), u"<folder.lst>"_s);
    QCOMPARE(app.logged.size(), 2);

    // Nor is a FIFO, which would block the reader for good, or a device, which never ends.
    QCOMPARE(::mkfifo(QFile::encodeName(app.path(u"fifo.lst"_s)).constData(), 0600), 0);
    QCOMPARE(ExpandListFiles(u"<fifo.lst>;</dev/zero>"_s, app.sources()), u"<fifo.lst>;</dev/zero>"_s);
    QCOMPARE(app.logged.mid(2), (QStringList{u"Cannot find list file: "_s + app.path(u"fifo.lst"_s),
                                             u"Cannot find list file: /dev/zero"_s}));
}

QORLO_TEST_MAIN(TestAddressList)
#include "tst_addresslist.moc"
