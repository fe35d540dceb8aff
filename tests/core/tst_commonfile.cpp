#include "core/AppFolder.h"
#include "core/CommonFile.h"
#include "core/TWReg.h"
#include "TestMain.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <pwd.h>
#include <unistd.h>

using namespace CommonFile;

class TestCommonFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void pathParts();
    void settingsStore();
    void workingFolders();
    void freshHomeForEveryTest();
};

void TestCommonFile::pathParts()
{
    QCOMPARE(FileExtension(QStringLiteral("/data/sales.rpt")), QStringLiteral("rpt"));
    // Nothing limits the search to the file name.
    QCOMPARE(FileExtension(QStringLiteral("/data/v1.2/report")), QStringLiteral("2/report"));
    QCOMPARE(FileExtension(QStringLiteral("/data/report")), QString());
    QCOMPARE(ChangeExtension(QStringLiteral("/a/b.rpt"), QStringLiteral("pdf")), QStringLiteral("/a/b.pdf"));
    QCOMPARE(ChangeExtension(QStringLiteral("/a/b"), QStringLiteral("pdf")), QStringLiteral("/a/b.pdf"));
    QCOMPARE(ChangeExtension(QStringLiteral("/a/b.rpt"), QString()), QStringLiteral("/a/b.rpt"));
    QCOMPARE(ChangeExtension(QString(), QStringLiteral("pdf")), QString());
    QCOMPARE(FileBaseName(QStringLiteral("/a/b.c/sales.q1.rpt")), QStringLiteral("sales.q1"));
    QCOMPARE(FileNameOnly(QStringLiteral("/a/b/sales.rpt")), QStringLiteral("sales.rpt"));
    QCOMPARE(FileNameOnly(QStringLiteral("sales.rpt")), QStringLiteral("sales.rpt"));
    QCOMPARE(FileNameOnly(QString()), QString());
    QCOMPARE(FolderOf(QStringLiteral("/a/b/sales.rpt")), QStringLiteral("/a/b"));
    QCOMPARE(FolderOf(QStringLiteral("/a/b/")), QStringLiteral("/a/b"));
    QCOMPARE(FolderOf(QStringLiteral("sales.rpt")), QStringLiteral("sales.rpt"));
}

void TestCommonFile::settingsStore()
{
    QCOMPARE(TWReg::ReadSetting(QStringLiteral("System"), QStringLiteral("Missing"), QStringLiteral("dflt")),
             QStringLiteral("dflt"));

    TWReg::SaveSetting(QStringLiteral("File Type"), QStringLiteral("Last"), QStringLiteral("  pdf  "));
    QCOMPARE(TWReg::ReadSetting(QStringLiteral("File Type"), QStringLiteral("Last"), QString()),
             QStringLiteral("pdf"));
    // A value saved empty is stored as a blank and reads back as the default.
    TWReg::SaveSetting(QStringLiteral("File Type"), QStringLiteral("Last"), QString());
    QCOMPARE(TWReg::ReadSetting(QStringLiteral("File Type"), QStringLiteral("Last"), QStringLiteral("xls")),
             QStringLiteral("xls"));

    TWReg::SaveSettingNumber(QStringLiteral("LogForm"), QStringLiteral("Top"), 1234);
    QCOMPARE(TWReg::ReadSettingNumber(QStringLiteral("LogForm"), QStringLiteral("Top"), 7), 1234);
    TWReg::SaveSetting(QStringLiteral("LogForm"), QStringLiteral("Left"), QStringLiteral("88px"));
    QCOMPARE(TWReg::ReadSettingNumber(QStringLiteral("LogForm"), QStringLiteral("Left"), 7), 88);
    QCOMPARE(TWReg::ReadSettingNumber(QStringLiteral("LogForm"), QStringLiteral("Width"), 7), 7);

    TWReg::SaveSetting(QStringLiteral("Settings"), QStringLiteral("RemotePort"), QStringLiteral("2525"),
                       QStringLiteral("QorloSendMail"));
    const QSettings sendMail(TWReg::SettingsFolder() + QStringLiteral("/QorloSendMail.ini"),
                             QSettings::IniFormat);
    QCOMPARE(sendMail.value(QStringLiteral("Settings/RemotePort")).toString(), QStringLiteral("2525"));

    TWReg::SaveApplicationValue(QStringLiteral("Scheduler"), QStringLiteral("QorloMANAGER"));
    QCOMPARE(TWReg::ReadApplicationValue(QStringLiteral("Scheduler")), QStringLiteral("QorloMANAGER"));
    QFile file(TWReg::SettingsFolder() + QStringLiteral("/Applications.ini"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("[General]\nScheduler=QorloMANAGER"));

    // A long value is cut at the read buffer.
    TWReg::SaveSetting(QStringLiteral("System"), QStringLiteral("Long"), QString(300, QLatin1Char('x')));
    QCOMPARE(TWReg::ReadSetting(QStringLiteral("System"), QStringLiteral("Long"), QString()).size(), 254);
}

void TestCommonFile::workingFolders()
{
    QTemporaryDir app;
    QVERIFY(QDir(app.path()).mkdir(QStringLiteral("Web")));
    AppFolder::MakeWorkingFolders(app.path());
    QCOMPARE(QDir(app.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name),
             QStringList({QStringLiteral("Backup"), QStringLiteral("Help"), QStringLiteral("Mail"),
                          QStringLiteral("Multirun"), QStringLiteral("Output"), QStringLiteral("Remote"),
                          QStringLiteral("SMTP"), QStringLiteral("Spool"), QStringLiteral("Web")}));
    QCOMPARE(QFileInfo(app.path() + QStringLiteral("/Remote")).permissions() & 0x0077, QFile::Permissions());
    QCOMPARE(AppFolder::Resolve(app.path() + QStringLiteral("/qorlomanagerd")), app.path());
    QCOMPARE(AppFolder::Resolve(QStringLiteral("/usr/bin/qorlomanagerd")),
             QDir::homePath() + QStringLiteral("/.local/share/QorloMANAGER"));
}

// The test main gives the process a home and a settings folder of its own, so that nothing lands in
// the home folder of whoever runs the tests.
void TestCommonFile::freshHomeForEveryTest()
{
    const QString home = QDir::homePath();
    QVERIFY2(home.startsWith(QDir::tempPath() + QStringLiteral("/qorlo-home-")), qPrintable(home));
    QVERIFY(home != QString::fromLocal8Bit(getpwuid(getuid())->pw_dir));
    QCOMPARE(QDir(home).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name),
             QStringList({QStringLiteral(".cache"), QStringLiteral(".config"), QStringLiteral(".local")}));
    QCOMPARE(QString::fromLocal8Bit(qgetenv("XDG_CONFIG_HOME")), home + QStringLiteral("/.config"));
    QVERIFY(TWReg::SettingsFolder().startsWith(home + QStringLiteral("/.config/")));
}

QORLO_TEST_MAIN(TestCommonFile)
#include "tst_commonfile.moc"
