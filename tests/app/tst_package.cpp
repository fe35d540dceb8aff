#include "Files.h"
#include "Peers.h"
#include "TestMain.h"

#include <QDir>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestPackage : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void installedPackageRunsTheExample();
};

namespace {

struct Outcome
{
    int exitCode = -1;
    QByteArray output;
};

// Runs a tool to its end, standard error and output together, within `seconds`.
Outcome Run(const QString &program, const QStringList &arguments, int seconds = 120)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(seconds * 1000)) {
        process.kill();
        process.waitForFinished();
        return {-1, program.toUtf8() + " did not finish: " + process.readAll()};
    }
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAll()};
}

QString OnlyFile(const QString &folder, const QString &pattern)
{
    const QStringList found = QDir(folder).entryList({pattern}, QDir::Files);
    return found.size() == 1 ? folder + u'/' + found.first() : QString();
}

} // namespace

// cpack over this build folder, the package unpacked into a scratch root as dpkg would install it, and
// its qorlomanagerd run on a copy of its example folder until the first report is written.
void TestPackage::installedPackageRunsTheExample()
{
    const QString lintian = FindProgram(u"lintian"_s);
    QORLO_REQUIRE_PEER(!FindProgram(u"dpkg-shlibdeps"_s).isEmpty() && !lintian.isEmpty(),
                       u"dpkg-dev and lintian"_s);
    QTemporaryDir work;
    const QString out = work.filePath(u"out"_s);
    const Outcome packed = Run(QStringLiteral(QORLO_CPACK),
                               {u"--config"_s, QStringLiteral(QORLO_BINARY_DIR "/CPackConfig.cmake"), u"-G"_s,
                                u"DEB"_s, u"-B"_s, out},
                               400);
    QVERIFY2(packed.exitCode == 0, packed.output.constData());
    const QString deb = OnlyFile(out, u"qorlomanager_*.deb"_s);
    QVERIFY2(!deb.isEmpty(), packed.output.constData());

    // dpkg-shlibdeps found the libraries; the drivers and fonts loaded at run time are named.
    const QByteArray depends = Run(u"dpkg-deb"_s, {u"-f"_s, deb, u"Depends"_s}).output;
    for (const char *package : {"libqt6core6", "libqt6gui6", "libqt6widgets6", "libqt6network6", "libcups2",
                                "libc6", "fonts-dejavu-core", "fonts-liberation2", "libqt6sql6-sqlite",
                                "libqt6sql6-psql", "libqt6sql6-odbc"})
        QVERIFY2(depends.contains(package),
                 QByteArray(QByteArray(package) + " not in Depends: " + depends).constData());

    const Outcome lint = Run(lintian, {u"--tag-display-limit"_s, u"0"_s, deb}, 300);
    QVERIFY2(lint.exitCode >= 0, lint.output.constData());
    for (const QByteArray &line : lint.output.split('\n'))
        QVERIFY2(!line.startsWith("E: "), lint.output.constData());

    const QString root = work.filePath(u"root"_s);
    const Outcome unpacked = Run(u"dpkg"_s, {u"-x"_s, deb, root});
    QVERIFY2(unpacked.exitCode == 0, unpacked.output.constData());
    for (const char *file :
         {"usr/bin/qorlomanager", "usr/bin/qorlomanagerd", "usr/share/man/man1/qorlomanager.1.gz",
          "usr/share/man/man1/qorlomanagerd.1.gz", "usr/share/applications/qorlomanager.desktop",
          "usr/share/icons/hicolor/scalable/apps/qorlomanager.svg",
          "usr/share/icons/hicolor/48x48/apps/qorlomanager.png", "usr/lib/systemd/user/qorlomanagerd.service",
          "usr/lib/systemd/user/qorlomanagerd@.service", "usr/share/qorlomanager/help/index.html",
          "usr/share/qorlomanager/help/connect.htm", "usr/share/qorlomanager/help/guide/index.html",
          "usr/share/doc/qorlomanager/copyright", "usr/share/doc/qorlomanager/changelog.gz",
          "usr/share/doc/qorlomanager/examples/Qorlo.XML"})
        QVERIFY2(QFile::exists(root + u'/' + QLatin1StringView(file)), file);
    const Outcome manual = Run(
        u"sh"_s, {u"-c"_s, u"gzip -dc '"_s + root + u"/usr/share/man/man1/qorlomanagerd.1.gz' | man -l -"_s});
    QVERIFY2(manual.output.contains("QORLO_APP_FOLDER"), manual.output.constData());

    // The installed program on a copy of the installed example, as an operator would try it.
    const QString app = work.filePath(u"example"_s);
    QCOMPARE(Run(u"cp"_s, {u"-a"_s, root + u"/usr/share/doc/qorlomanager/examples"_s, app}).exitCode, 0);
    QProcessEnvironment environment = OwnProgramEnvironment(work.filePath(u"home"_s));
    environment.insert(u"QORLO_APP_FOLDER"_s, app);
    PeerProcess daemon;
    QVERIFY2(daemon.start(root + u"/usr/bin/qorlomanagerd"_s, {}, QString(), 5000, environment),
             qPrintable(daemon.error()));
    const auto written = [&] { return !OnlyFile(app + u"/Output"_s, u"sales-*.pdf"_s).isEmpty(); };
    QVERIFY2(WaitUntil(written, 90000), ReadFile(app + u"/QorloLog.XML"_s).constData());
    const QString report = OnlyFile(app + u"/Output"_s, u"sales-*.pdf"_s);
    QVERIFY(WaitForText(report, "%%EOF", 10000));
    QVERIFY(ReadFile(report).startsWith("%PDF-"));
    QVERIFY(WaitForText(app + u"/QorloLog.XML"_s, "Successful output to Output/sales-", 10000));
    QVERIFY(QFile::exists(app + u"/Help/guide/index.html"_s));
    QVERIFY(QFile::exists(app + u"/Help/connect.htm"_s));
    daemon.stop();
    QCOMPARE(daemon.process()->exitCode(), 0);
}

QORLO_TEST_MAIN(TestPackage)
#include "tst_package.moc"
