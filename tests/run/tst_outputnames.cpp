#include "Files.h"
#include "core/QorloError.h"
#include "run/MailText.h"
#include "run/OutputNames.h"
#include "engine/Application.h"
#include "engine/Report.h"
#include "TestClocks.h"
#include "TestMain.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace TestSupport;

using namespace OutputNames;

class TestOutputNames : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { CurrentCollection().clear(); }
    void cleanup() { CurrentCollection().clear(); }
    void percentCodes();
    void monthBeforeAndYearEnd();
    void makeFolders();
    void fixFileExtension();
    void mailTextFromReport();
    void subjectFile();
};

namespace {

QString Expanded(const QDateTime &moment, const QString &codes)
{
    FixedClock clock(moment);
    const ClockGuard guard(clock);
    return ExpandFileCodes(codes);
}

// The error number MakeFolders raised, 0 for none.
int MakeFoldersError(const QString &path)
{
    return ErrorOf([&path] { MakeFolders(path); });
}

} // namespace

void TestOutputNames::percentCodes()
{
    QTemporaryDir dir;
    const QString base = dir.path() + QLatin1Char('/');
    const QDateTime moment(QDate(2007, 3, 5), QTime(14, 7, 9));
    const QString expected =
        base + QStringLiteral("March Mar 05-Mar-2007 05 Mon 14 03 20070305140709 200703 200702 "
                              "140709 1407 05_Mar_2007 20070305 2007.pdf");
    QCOMPARE(Expanded(moment, base + QStringLiteral("%a %b %d %e %f %h %m %n %p %q %s %t %u %y %z.pdf")),
             expected);
    QCOMPARE(Expanded(moment, base + QStringLiteral("%A %B %D %E %F %H %M %N %P %Q %S %T %U %Y %Z.pdf")),
             expected);

    // Unknown codes and a lone "%" stay.
    const QString unknown = base + QStringLiteral("%g%i%j%k%l%o%r%v%w%x%G 100%.pdf");
    QCOMPARE(Expanded(moment, unknown), unknown);

    // %c is the running collection, empty outside one; its folder is made like any other.
    QCOMPARE(Expanded(moment, base + QStringLiteral("Sales-%c.pdf")), base + QStringLiteral("Sales-.pdf"));
    CurrentCollection() = QStringLiteral("Month End");
    QCOMPARE(Expanded(moment, base + QStringLiteral("%C/%c-%y.pdf")),
             base + QStringLiteral("Month End/Month End-20070305.pdf"));
    QVERIFY(QFileInfo(base + QStringLiteral("Month End")).isDir());
}

void TestOutputNames::monthBeforeAndYearEnd()
{
    // The month is stepped back with the day clamped, not by a number of days.
    QCOMPARE(Expanded(QDateTime(QDate(2007, 3, 31), QTime(8, 0)), QStringLiteral("%q %p")),
             QStringLiteral("200702 200703"));
    QCOMPARE(Expanded(QDateTime(QDate(2008, 3, 31), QTime(8, 0)), QStringLiteral("%q")),
             QStringLiteral("200802"));
    QCOMPARE(Expanded(QDateTime(QDate(2008, 1, 1), QTime(0, 0, 5)), QStringLiteral("%p %q %z %n")),
             QStringLiteral("200801 200712 2008 20080101000005"));
    QCOMPARE(
        Expanded(QDateTime(QDate(2007, 12, 31), QTime(23, 59, 59)), QStringLiteral("%d %u %f %a %z %s %t")),
        QStringLiteral("31-Dec-2007 31_Dec_2007 Mon December 2007 235959 2359"));
}

void TestOutputNames::makeFolders()
{
    QTemporaryDir dir;
    const QString deep = dir.path() + QStringLiteral("/out/2007/03/05/report.pdf");
    MakeFolders(deep);
    QVERIFY(QFileInfo(dir.path() + QStringLiteral("/out/2007/03/05")).isDir());
    QVERIFY(!QFileInfo::exists(deep));

    // Folders are made with or without codes; a trailing "/" makes the last folder too.
    const QString plain = dir.path() + QStringLiteral("/plain/100%/");
    QCOMPARE(ExpandFileCodes(plain), plain);
    QVERIFY(QFileInfo(plain).isDir());

    // "//" + server + share is a root that is never made; below it folders are made as usual.
    MakeFolders(QLatin1Char('/') + dir.path() + QStringLiteral("/unc/a/b.pdf"));
    QVERIFY(QFileInfo(dir.path() + QStringLiteral("/unc/a")).isDir());
    QCOMPARE(MakeFoldersError(QStringLiteral("//qorlo-absent-server/share/a/b.pdf")),
             int(QorloError::PathNotFound));
    QVERIFY(!QFileInfo::exists(QStringLiteral("/qorlo-absent-server")));
    QCOMPARE(MakeFoldersError(QStringLiteral("//qorlo-absent-server/share")), 0);

    // A file where a folder should be fails the caller.
    WriteFile(dir.path() + QStringLiteral("/taken"), "x");
    QCOMPARE(MakeFoldersError(dir.path() + QStringLiteral("/taken/sub/x.pdf")),
             int(QorloError::PathNotFound));
}

void TestOutputNames::fixFileExtension()
{
    const QString base = QStringLiteral("/reports/sales.rpt");
    QCOMPARE(FixFileExtension(QStringLiteral("out"), base, QStringLiteral("Excel Data"), false),
             QStringLiteral("/reports/out.xls"));
    QCOMPARE(FixFileExtension(QStringLiteral("out"), base, QStringLiteral("DHTML Document"), false),
             QStringLiteral("/reports/out.html"));
    // An extension stays unless forced; a name with a folder or a colon keeps its place.
    QCOMPARE(FixFileExtension(QStringLiteral("out.txt"), base, QStringLiteral("Acrobat File"), false),
             QStringLiteral("/reports/out.txt"));
    QCOMPARE(FixFileExtension(QStringLiteral("/data/x.csv"), base, QStringLiteral("MS Word doc"), true),
             QStringLiteral("/data/x.doc"));
    QCOMPARE(FixFileExtension(QStringLiteral("d:out"), base, QStringLiteral("Rich Text"), false),
             QStringLiteral("d:out.rtf"));
    // Formats are exact text.
    QCOMPARE(FixFileExtension(QStringLiteral("out"), base, QStringLiteral("acrobat file"), true), QString());
}

void TestOutputNames::mailTextFromReport()
{
    QTemporaryDir app;
    const QString text = QStringLiteral("Sales [{?Region}] {?Year} %c");
    QCOMPARE(ExpandMailText(text, nullptr, app.path()), text);

    Engine::Application engine;
    const std::unique_ptr<Engine::Report> report =
        engine.OpenReport(TestSupport::DataFile(QStringLiteral("run/region.rpt")));
    Engine::ParameterFieldDefinition &region = report->ParameterFields().Item(1);
    QCOMPARE(region.ParameterFieldName(), QStringLiteral("Region"));

    // No current value gives empty text; a number reads as its plain text.
    QCOMPARE(ExpandMailText(text, report.get(), app.path()), QStringLiteral("Sales [] 2007 %c"));
    // One value of one character keeps the ", " in front; anything longer loses it.
    region.AddCurrentValue(QStringLiteral("N"));
    QCOMPARE(ExpandMailText(QStringLiteral("{?Region}"), report.get(), app.path()), QStringLiteral(", N"));
    region.ClearCurrentValueAndRange();
    region.AddCurrentValue(QStringLiteral("NE"));
    QCOMPARE(ExpandMailText(QStringLiteral("{?Region}"), report.get(), app.path()), QStringLiteral("NE"));
    region.ClearCurrentValueAndRange();
    region.AddCurrentValue(QStringLiteral("N"));
    region.AddCurrentValue(QStringLiteral("S"));
    // Every occurrence; tags are case-sensitive; percent codes and sub-report parameters are left alone.
    QCOMPARE(ExpandMailText(QStringLiteral("{?Region} / {?Region} {?region} %d {?Manager}"), report.get(),
                            app.path()),
             QStringLiteral("N, S / N, S {?region} %d {?Manager}"));

    // Inside a collection only the first %c, in either case, is replaced.
    CurrentCollection() = QStringLiteral("Month End");
    QCOMPARE(ExpandMailText(QStringLiteral("%C for {?Region}, %c"), report.get(), app.path()),
             QStringLiteral("Month End for N, S, %c"));

    // The subject file is read before the parameters, after the collection code.
    WriteFile(app.filePath(QStringLiteral("Subject.txt")), "Sales for {?Region} %c\r\nsecond line\r\n");
    QCOMPARE(ExpandMailText(QStringLiteral("{$SUBJECT.TXT}"), report.get(), app.path()),
             QStringLiteral("Sales for N, S %c"));
    QCOMPARE(ExpandMailText(QStringLiteral("Re: {$subject.txt}"), report.get(), app.path()),
             QStringLiteral("Re: {$subject.txt}"));
}

void TestOutputNames::subjectFile()
{
    QTemporaryDir app;
    const QString tag = QStringLiteral("{$Subject.txt}");
    QCOMPARE(ReadTextIfFile(tag, app.path()), tag);
    WriteFile(app.filePath(QStringLiteral("Subject.txt")), QByteArray());
    QCOMPARE(ReadTextIfFile(tag, app.path()), tag);
    WriteFile(app.filePath(QStringLiteral("Subject.txt")), "Quarter \x80 figures\r\n");
    QCOMPARE(ReadTextIfFile(tag, app.path()), QStringLiteral("Quarter \u20ac figures"));
}

QORLO_TEST_MAIN(TestOutputNames)
#include "tst_outputnames.moc"
