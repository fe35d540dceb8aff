#include "core/HelpPages.h"
#include "Files.h"
#include "TestMain.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

class TestHelpPages : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void installedFolderBesideTheProgram();
    void refreshCopiesMissingAndOtherVersions();
};

namespace {

void Write(const QString &path, const QByteArray &bytes, const QDateTime &modified)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(TestSupport::WriteFile(path, bytes));
    QVERIFY(file.open(QIODevice::Append) && file.setFileTime(modified, QFileDevice::FileModificationTime));
}

} // namespace

void TestHelpPages::installedFolderBesideTheProgram()
{
    QCOMPARE(HelpPages::InstalledFolder(u"/usr/bin/qorlomanager"_s), u"/usr/share/qorlomanager/help"_s);
    QCOMPARE(HelpPages::InstalledFolder(u"/tmp/root/usr/bin/qorlomanagerd"_s),
             u"/tmp/root/usr/share/qorlomanager/help"_s);
}

void TestHelpPages::refreshCopiesMissingAndOtherVersions()
{
    QTemporaryDir dir;
    const QString source = dir.filePath(u"installed"_s);
    const QString help = dir.filePath(u"app/Help"_s);
    const QDateTime released = QDateTime::currentDateTime().addDays(-10);
    Write(source + u"/index.html"_s, "new index", released);
    Write(source + u"/images/logo.png"_s, "logo", released);
    Write(source + u"/schedule.htm"_s, "new schedule", released);
    Write(help + u"/index.html"_s, "old index", released.addDays(-30));
    Write(help + u"/schedule.htm"_s, "same version", released);
    Write(help + u"/notes.htm"_s, "the operator's own page", released);

    HelpPages::Refresh(source, help);
    QCOMPARE(TestSupport::ReadFile(help + u"/index.html"_s), "new index");
    QCOMPARE(TestSupport::ReadFile(help + u"/images/logo.png"_s), "logo");
    QCOMPARE(TestSupport::ReadFile(help + u"/schedule.htm"_s), "same version");
    QCOMPARE(TestSupport::ReadFile(help + u"/notes.htm"_s), "the operator's own page");
    QCOMPARE(QFileInfo(help + u"/index.html"_s).lastModified(),
             QFileInfo(source + u"/index.html"_s).lastModified());

    // A page whose time differs from the installed one is replaced, a newer one too.
    Write(help + u"/index.html"_s, "edited", released.addDays(5));
    Write(source + u"/schedule.htm"_s, "upgraded schedule", released.addDays(1));
    HelpPages::Refresh(source, help);
    QCOMPARE(TestSupport::ReadFile(help + u"/index.html"_s), "new index");
    QCOMPARE(TestSupport::ReadFile(help + u"/schedule.htm"_s), "upgraded schedule");

    HelpPages::Refresh(dir.filePath(u"nothing-installed"_s), help);
    QCOMPARE(QDir(help).entryList(QDir::Files).size(), 3);
}

QORLO_TEST_MAIN(TestHelpPages)
#include "tst_helppages.moc"
