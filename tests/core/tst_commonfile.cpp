#include "core/AppFolder.h"
#include "core/CommonFile.h"
#include "core/TWReg.h"
#include "Files.h"
#include "TestMain.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <pwd.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

using namespace CommonFile;

class TestCommonFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void pathParts();
    void settingsStore();
    void workingFolders();
    void systemFolders();
    void freshHomeForEveryTest();
};

void TestCommonFile::pathParts()
{
    QCOMPARE(FileExtension(u"/data/sales.rpt"_s), u"rpt"_s);
    // Nothing limits the search to the file name.
    QCOMPARE(FileExtension(u"/data/v1.2/report"_s), u"2/report"_s);
    QCOMPARE(FileExtension(u"/data/report"_s), QString());
    QCOMPARE(ChangeExtension(u"/a/b.rpt"_s, u"pdf"_s), u"/a/b.pdf"_s);
    QCOMPARE(ChangeExtension(u"/a/b"_s, u"pdf"_s), u"/a/b.pdf"_s);
    QCOMPARE(ChangeExtension(u"/a/b.rpt"_s, QString()), u"/a/b.rpt"_s);
    QCOMPARE(ChangeExtension(QString(), u"pdf"_s), QString());
    QCOMPARE(FileBaseName(u"/a/b.c/sales.q1.rpt"_s), u"sales.q1"_s);
    QCOMPARE(FileNameOnly(u"/a/b/sales.rpt"_s), u"sales.rpt"_s);
    QCOMPARE(FileNameOnly(u"sales.rpt"_s), u"sales.rpt"_s);
    QCOMPARE(FileNameOnly(QString()), QString());
    QCOMPARE(FolderOf(u"/a/b/sales.rpt"_s), u"/a/b"_s);
    QCOMPARE(FolderOf(u"/a/b/"_s), u"/a/b"_s);
    QCOMPARE(FolderOf(u"sales.rpt"_s), u"sales.rpt"_s);
    // A name without a folder lies in the given folder.
    QCOMPARE(CompletePath(u"/app"_s, u"holiday.lst"_s), u"/app/holiday.lst"_s);
    QCOMPARE(CompletePath(u"/app"_s, u"/etc/x.lst"_s), u"/etc/x.lst"_s);
}

void TestCommonFile::settingsStore()
{
    QCOMPARE(TWReg::ReadSetting(u"System"_s, u"Missing"_s, u"dflt"_s), u"dflt"_s);

    TWReg::SaveSetting(u"File Type"_s, u"Last"_s, u"  pdf  "_s);
    QCOMPARE(TWReg::ReadSetting(u"File Type"_s, u"Last"_s, QString()), u"pdf"_s);
    // A value saved empty is stored as a blank and reads back as the default.
    TWReg::SaveSetting(u"File Type"_s, u"Last"_s, QString());
    QCOMPARE(TWReg::ReadSetting(u"File Type"_s, u"Last"_s, u"xls"_s), u"xls"_s);

    TWReg::SaveSettingNumber(u"LogForm"_s, u"Top"_s, 1234);
    QCOMPARE(TWReg::ReadSettingNumber(u"LogForm"_s, u"Top"_s, 7), 1234);
    TWReg::SaveSetting(u"LogForm"_s, u"Left"_s, u"88px"_s);
    QCOMPARE(TWReg::ReadSettingNumber(u"LogForm"_s, u"Left"_s, 7), 88);
    QCOMPARE(TWReg::ReadSettingNumber(u"LogForm"_s, u"Width"_s, 7), 7);

    TWReg::SaveSetting(u"Settings"_s, u"RemotePort"_s, u"2525"_s, u"QorloSendMail"_s);
    const QSettings sendMail(TWReg::SettingsFolder() + u"/QorloSendMail.ini"_s, QSettings::IniFormat);
    QCOMPARE(sendMail.value(u"Settings/RemotePort"_s).toString(), u"2525"_s);

    TWReg::SaveApplicationValue(u"Scheduler"_s, u"QorloMANAGER"_s);
    QCOMPARE(TWReg::ReadApplicationValue(u"Scheduler"_s), u"QorloMANAGER"_s);
    QVERIFY(TestSupport::ReadFile(TWReg::SettingsFolder() + u"/Applications.ini"_s)
                .contains("[General]\nScheduler=QorloMANAGER"));

    // A long value is cut at the read buffer.
    TWReg::SaveSetting(u"System"_s, u"Long"_s, QString(300, u'x'));
    QCOMPARE(TWReg::ReadSetting(u"System"_s, u"Long"_s, QString()).size(), 254);
}

void TestCommonFile::workingFolders()
{
    QTemporaryDir app;
    QVERIFY(QDir(app.path()).mkdir(u"Web"_s));
    AppFolder::MakeWorkingFolders(app.path());
    QCOMPARE(QDir(app.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name),
             QStringList({u"Backup"_s, u"Help"_s, u"Mail"_s, u"Multirun"_s, u"Output"_s, u"Remote"_s,
                          u"SMTP"_s, u"Spool"_s, u"Web"_s}));
    QCOMPARE(QFileInfo(app.path() + u"/Remote"_s).permissions() & 0x0077, QFile::Permissions());
    QCOMPARE(AppFolder::Resolve(app.path() + u"/qorlomanagerd"_s), app.path());
    QCOMPARE(AppFolder::Resolve(u"/usr/bin/qorlomanagerd"_s),
             QDir::homePath() + u"/.local/share/QorloMANAGER"_s);
}

// The test main gives the process a home and a settings folder of its own, so that nothing lands in
// the home folder of whoever runs the tests.
void TestCommonFile::freshHomeForEveryTest()
{
    const QString home = QDir::homePath();
    QVERIFY2(home.startsWith(QDir::tempPath() + u"/qorlo-home-"_s), qPrintable(home));
    QVERIFY(home != QString::fromLocal8Bit(getpwuid(getuid())->pw_dir));
    QCOMPARE(QDir(home).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name),
             QStringList({u".cache"_s, u".config"_s, u".local"_s}));
    QCOMPARE(QString::fromLocal8Bit(qgetenv("XDG_CONFIG_HOME")), home + u"/.config"_s);
    QVERIFY(TWReg::SettingsFolder().startsWith(home + u"/.config/"_s));
}

void TestCommonFile::systemFolders()
{
    for (const char *folder : {"/usr", "/usr/bin", "/usr/local/bin", "/bin", "/bin/x", "/sbin", "/sbin/x"})
        QVERIFY2(AppFolder::IsSystemFolder(QLatin1String(folder)), folder);
    // A name that only begins like a system folder is an ordinary folder.
    for (const char *folder : {"/binaries/x", "/sbinx/x", "/usrlocal", "/opt/usr", "/home/bin"})
        QVERIFY2(!AppFolder::IsSystemFolder(QLatin1String(folder)), folder);
}

QORLO_TEST_MAIN(TestCommonFile)
#include "tst_commonfile.moc"
