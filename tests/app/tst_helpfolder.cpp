// The help pages: every link of them leads to a page that is there, they lie beside the built programs
// as beside installed ones, and a program started from the build folder copies them into its Help
// folder.
#include "Files.h"
#include "Peers.h"
#include "TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestHelpFolder : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void linksLeadToStagedPages();
    void programFromTheBuildFolderCopiesThem();
};

namespace {

const QString kSource = QStringLiteral(QORLO_SOURCE_DIR "/help");
const QString kStaged = QStringLiteral(QORLO_BINARY_DIR "/src/share/qorlomanager/help");

} // namespace

// Page links must resolve; pictures of windows come from docs/screenshots, named by the window.
void TestHelpFolder::linksLeadToStagedPages()
{
    const QStringList pages = QDir(kSource).entryList({u"*.htm"_s, u"*.html"_s}, QDir::Files);
    // Every page that a window's Help entry opens.
    const QRegularExpression opened(uR"re(OpenHelpPage\([^;]*QStringLiteral\("([^"]+\.html?)"\)\);)re"_s);
    QStringList named;
    for (QDirIterator source(QStringLiteral(QORLO_SOURCE_DIR "/src"), {u"*.cpp"_s}, QDir::Files,
                             QDirIterator::Subdirectories);
         source.hasNext();) {
        for (auto match = opened.globalMatch(QString::fromUtf8(ReadFile(source.next()))); match.hasNext();)
            named.append(match.next().captured(1));
    }
    QVERIFY2(named.size() >= 6, qPrintable(named.join(u", "_s)));
    for (const QString &page : named)
        QVERIFY2(pages.contains(page),
                 qPrintable(page + u" is opened by a window but not among the pages"_s));
    const QRegularExpression link(uR"((href|src)="([^"#]+)(#[^"]*)?")"_s);
    const QRegularExpression picture(uR"(^guide/screenshots/frm[A-Za-z]+\.png$)"_s);
    QStringList broken;
    for (const QString &page : pages) {
        const QString text = QString::fromUtf8(ReadFile(kSource + u'/' + page));
        QVERIFY2(QFile::exists(kStaged + u'/' + page), qPrintable(page));
        for (auto match = link.globalMatch(text); match.hasNext();) {
            const QString target = match.next().captured(2);
            if (target.startsWith(u"guide/screenshots/"_s)) {
                if (!picture.match(target).hasMatch() ||
                    !QFile::exists(QStringLiteral(QORLO_SOURCE_DIR "/docs/") + target.mid(6)))
                    broken.append(page + u": "_s + target);
            } else if (!QFile::exists(kStaged + u'/' + target)) {
                broken.append(page + u": "_s + target);
            }
        }
    }
    QVERIFY2(broken.isEmpty(), qPrintable(broken.join(u", "_s)));
    // The screenshots there are lie beside the pages.
    const QStringList shots =
        QDir(QStringLiteral(QORLO_SOURCE_DIR "/docs/screenshots")).entryList({u"*.png"_s}, QDir::Files);
    QVERIFY(shots.contains(u"frmLog.png"_s));
    for (const QString &shot : shots)
        QVERIFY2(QFile::exists(kStaged + u"/guide/screenshots/"_s + shot), qPrintable(shot));
}

void TestHelpFolder::programFromTheBuildFolderCopiesThem()
{
    QTemporaryDir home;
    QTemporaryDir app;
    QProcessEnvironment environment = OwnProgramEnvironment(home.path());
    environment.insert(u"QORLO_APP_FOLDER"_s, app.path());
    PeerProcess daemon;
    QVERIFY2(daemon.start(QStringLiteral(QORLO_DAEMON), {}, QString(), 5000, environment),
             qPrintable(daemon.error()));
    // The start-up has ended with the first status page; the pages were copied before it.
    QVERIFY(WaitForText(app.filePath(u"Web/livestat.htm"_s), "The schedule is currently", 15000));
    QVERIFY(ReadFile(app.filePath(u"Help/index.html"_s)).contains("QorloMANAGER Help"));
    for (const char *page : {"connect.htm", "log.htm", "help.css", "guide/index.html"})
        QVERIFY2(QFile::exists(app.filePath(u"Help/"_s + QLatin1String(page))), page);
    daemon.stop();
    QCOMPARE(daemon.process()->exitCode(), 0);
}

QORLO_TEST_MAIN(TestHelpFolder)
#include "tst_helpfolder.moc"
