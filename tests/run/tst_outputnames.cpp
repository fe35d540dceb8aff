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

using namespace Qt::Literals::StringLiterals;

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
    const QString base = dir.path() + u'/';
    const QDateTime moment(QDate(2007, 3, 5), QTime(14, 7, 9));
    const QString expected = base + u"March Mar 05-Mar-2007 05 Mon 14 03 20070305140709 200703 200702 "
                                    "140709 1407 05_Mar_2007 20070305 2007.pdf"_s;
    QCOMPARE(Expanded(moment, base + u"%a %b %d %e %f %h %m %n %p %q %s %t %u %y %z.pdf"_s), expected);
    QCOMPARE(Expanded(moment, base + u"%A %B %D %E %F %H %M %N %P %Q %S %T %U %Y %Z.pdf"_s), expected);

    // Unknown codes and a lone "%" stay.
    const QString unknown = base + u"%g%i%j%k%l%o%r%v%w%x%G 100%.pdf"_s;
    QCOMPARE(Expanded(moment, unknown), unknown);

    // %c is the running collection, empty outside one; its folder is made like any other.
    QCOMPARE(Expanded(moment, base + u"Sales-%c.pdf"_s), base + u"Sales-.pdf"_s);
    CurrentCollection() = u"Month End"_s;
    QCOMPARE(Expanded(moment, base + u"%C/%c-%y.pdf"_s), base + u"Month End/Month End-20070305.pdf"_s);
    QVERIFY(QFileInfo(base + u"Month End"_s).isDir());
}

void TestOutputNames::monthBeforeAndYearEnd()
{
    // The month is stepped back with the day clamped, not by a number of days.
    QCOMPARE(Expanded(QDateTime(QDate(2007, 3, 31), QTime(8, 0)), u"%q %p"_s), u"200702 200703"_s);
    QCOMPARE(Expanded(QDateTime(QDate(2008, 3, 31), QTime(8, 0)), u"%q"_s), u"200802"_s);
    QCOMPARE(Expanded(QDateTime(QDate(2008, 1, 1), QTime(0, 0, 5)), u"%p %q %z %n"_s),
             u"200801 200712 2008 20080101000005"_s);
    QCOMPARE(Expanded(QDateTime(QDate(2007, 12, 31), QTime(23, 59, 59)), u"%d %u %f %a %z %s %t"_s),
             u"31-Dec-2007 31_Dec_2007 Mon December 2007 235959 2359"_s);
}

void TestOutputNames::makeFolders()
{
    QTemporaryDir dir;
    const QString deep = dir.path() + u"/out/2007/03/05/report.pdf"_s;
    MakeFolders(deep);
    QVERIFY(QFileInfo(dir.path() + u"/out/2007/03/05"_s).isDir());
    QVERIFY(!QFileInfo::exists(deep));

    // Folders are made with or without codes; a trailing "/" makes the last folder too.
    const QString plain = dir.path() + u"/plain/100%/"_s;
    QCOMPARE(ExpandFileCodes(plain), plain);
    QVERIFY(QFileInfo(plain).isDir());

    // "//" + server + share is a root that is never made; below it folders are made as usual.
    MakeFolders(u'/' + dir.path() + u"/unc/a/b.pdf"_s);
    QVERIFY(QFileInfo(dir.path() + u"/unc/a"_s).isDir());
    QCOMPARE(MakeFoldersError(u"//qorlo-absent-server/share/a/b.pdf"_s), int(QorloError::PathNotFound));
    QVERIFY(!QFileInfo::exists(u"/qorlo-absent-server"_s));
    QCOMPARE(MakeFoldersError(u"//qorlo-absent-server/share"_s), 0);

    // A file where a folder should be fails the caller.
    WriteFile(dir.path() + u"/taken"_s, "x");
    QCOMPARE(MakeFoldersError(dir.path() + u"/taken/sub/x.pdf"_s), int(QorloError::PathNotFound));
}

void TestOutputNames::fixFileExtension()
{
    const QString base = u"/reports/sales.rpt"_s;
    QCOMPARE(FixFileExtension(u"out"_s, base, u"Excel Data"_s, false), u"/reports/out.xls"_s);
    QCOMPARE(FixFileExtension(u"out"_s, base, u"DHTML Document"_s, false), u"/reports/out.html"_s);
    // An extension stays unless forced; a name with a folder or a colon keeps its place.
    QCOMPARE(FixFileExtension(u"out.txt"_s, base, u"Acrobat File"_s, false), u"/reports/out.txt"_s);
    QCOMPARE(FixFileExtension(u"/data/x.csv"_s, base, u"MS Word doc"_s, true), u"/data/x.doc"_s);
    QCOMPARE(FixFileExtension(u"d:out"_s, base, u"Rich Text"_s, false), u"d:out.rtf"_s);
    // Formats are exact text.
    QCOMPARE(FixFileExtension(u"out"_s, base, u"acrobat file"_s, true), QString());
}

void TestOutputNames::mailTextFromReport()
{
    QTemporaryDir app;
    const QString text = u"Sales [{?Region}] {?Year} %c"_s;
    QCOMPARE(ExpandMailText(text, nullptr, app.path()), text);

    Engine::Application engine;
    const std::unique_ptr<Engine::Report> report =
        engine.OpenReport(TestSupport::DataFile(u"run/region.rpt"_s));
    Engine::ParameterFieldDefinition &region = report->ParameterFields().Item(1);
    QCOMPARE(region.ParameterFieldName(), u"Region"_s);

    // No current value gives empty text; a number reads as its plain text.
    QCOMPARE(ExpandMailText(text, report.get(), app.path()), u"Sales [] 2007 %c"_s);
    // One value of one character keeps the ", " in front; anything longer loses it.
    region.AddCurrentValue(u"N"_s);
    QCOMPARE(ExpandMailText(u"{?Region}"_s, report.get(), app.path()), u", N"_s);
    region.ClearCurrentValueAndRange();
    region.AddCurrentValue(u"NE"_s);
    QCOMPARE(ExpandMailText(u"{?Region}"_s, report.get(), app.path()), u"NE"_s);
    region.ClearCurrentValueAndRange();
    region.AddCurrentValue(u"N"_s);
    region.AddCurrentValue(u"S"_s);
    // Every occurrence; tags are case-sensitive; percent codes and sub-report parameters are left alone.
    QCOMPARE(ExpandMailText(u"{?Region} / {?Region} {?region} %d {?Manager}"_s, report.get(), app.path()),
             u"N, S / N, S {?region} %d {?Manager}"_s);

    // Inside a collection only the first %c, in either case, is replaced.
    CurrentCollection() = u"Month End"_s;
    QCOMPARE(ExpandMailText(u"%C for {?Region}, %c"_s, report.get(), app.path()),
             u"Month End for N, S, %c"_s);

    // The subject file is read before the parameters, after the collection code.
    WriteFile(app.filePath(u"Subject.txt"_s), "Sales for {?Region} %c\r\nsecond line\r\n");
    QCOMPARE(ExpandMailText(u"{$SUBJECT.TXT}"_s, report.get(), app.path()), u"Sales for N, S %c"_s);
    QCOMPARE(ExpandMailText(u"Re: {$subject.txt}"_s, report.get(), app.path()), u"Re: {$subject.txt}"_s);
}

void TestOutputNames::subjectFile()
{
    QTemporaryDir app;
    const QString tag = u"{$Subject.txt}"_s;
    QCOMPARE(ReadTextIfFile(tag, app.path()), tag);
    WriteFile(app.filePath(u"Subject.txt"_s), QByteArray());
    QCOMPARE(ReadTextIfFile(tag, app.path()), tag);
    WriteFile(app.filePath(u"Subject.txt"_s), "Quarter \x80 figures\r\n");
    QCOMPARE(ReadTextIfFile(tag, app.path()), u"Quarter \u20ac figures"_s);
}

QORLO_TEST_MAIN(TestOutputNames)
#include "tst_outputnames.moc"
