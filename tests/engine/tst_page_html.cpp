#include "engine/page/HtmlPageSink.h"
#include "TestMain.h"
#include "tst_page_sample.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Engine;

class TestPageHtml : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void onePageFile();
    void separatePagesWithNavigator();
    void separatePagesWithoutNavigator();
    void unwritableTarget();
};

namespace {

QString ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The navigator's entries in order, a link as "caption=href", plain text as "caption".
QStringList NavigatorOf(const QString &html)
{
    const QRegularExpression block(QStringLiteral("<div class=\"navigator\">(.*?)</div>"));
    const QRegularExpression entry(QStringLiteral("<a href=\"([^\"]*)\">([^<]*)</a>|<span>([^<]*)</span>"));
    QStringList entries;
    auto it = entry.globalMatch(block.match(html).captured(1));
    while (it.hasNext()) {
        const auto match = it.next();
        entries.append(match.hasCaptured(1) ? match.captured(2) + QLatin1Char('=') + match.captured(1)
                                            : match.captured(3));
    }
    return entries;
}

} // namespace

void TestPageHtml::onePageFile()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("sales.html"));
    HtmlPageSink sink(file, {false, false});
    PageSample::Render(sink, PageSample::Setup(false), 3);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("sales.html")});

    const QString html = ReadFile(file);
    QVERIFY(html.startsWith(QStringLiteral("<!DOCTYPE html>")));
    QVERIFY(html.contains(QStringLiteral("<meta charset=\"utf-8\">")));
    QVERIFY(html.contains(QStringLiteral("<title>Sales &amp; Co</title>")));
    QCOMPARE(html.count(QStringLiteral("<div class=\"page\"")), 3);
    QCOMPARE(html.count(QRegularExpression(
                 QStringLiteral("<div class=\"page\" id=\"page\\d\" style=\"width:500pt;height:560pt\">"))),
             3);
    QVERIFY(!html.contains(QStringLiteral("navigator\">")));
    QVERIFY(html.indexOf(QStringLiteral("Page 1 of 3")) < html.indexOf(QStringLiteral("id=\"page2\"")));
    QVERIFY(html.indexOf(QStringLiteral("Page 3 of 3")) > html.indexOf(QStringLiteral("id=\"page3\"")));
    QVERIFY(html.endsWith(QStringLiteral("</html>\n")));

    // Texts are escaped and kept in UTF-8; each sits at its place, right-aligned amounts at the right.
    QVERIFY(html.contains(QStringLiteral(">Smith &amp; &lt;Sons&gt;</div>")));
    QVERIFY(!html.contains(QStringLiteral("<Sons>")));
    QVERIFY(html.contains(QStringLiteral(">Łódź {Ltd} \\ 5€</div>")));
    QVERIFY(html.contains(QStringLiteral("left:340pt;top:100pt;width:100pt;height:14pt;"
                                         "font:9pt &quot;Liberation Sans&quot;,&quot;DejaVu "
                                         "Sans&quot;,&quot;Noto Sans CJK SC&quot;,sans-serif;"
                                         "justify-content:flex-end;align-items:center\">12.50</div>")));
    QVERIFY(html.contains(QStringLiteral("font:bold 14pt &quot;Liberation Sans&quot;")));
    // The heading line and the shaded box.
    QVERIFY(html.contains(QStringLiteral(
        "<line x1=\"40\" y1=\"96\" x2=\"440\" y2=\"96\" stroke=\"black\" stroke-width=\"1\"/>")));
    QVERIFY(html.contains(
        QStringLiteral("<rect x=\"36\" y=\"76\" width=\"408\" height=\"156\" fill=\"#f0f0f0\"")));
}

void TestPageHtml::separatePagesWithNavigator()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("my sales.html"));
    HtmlPageSink sink(file, {true, true});
    PageSample::Render(sink, PageSample::Setup(true), 3);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));
    QStringList files = QDir(dir.path()).entryList(QDir::Files, QDir::Name);
    QCOMPARE(files, (QStringList{QStringLiteral("my sales.html"), QStringLiteral("my sales2.html"),
                                 QStringLiteral("my sales3.html")}));

    const QString first = ReadFile(file);
    const QString second = ReadFile(dir.filePath(QStringLiteral("my sales2.html")));
    const QString third = ReadFile(dir.filePath(QStringLiteral("my sales3.html")));
    for (const QString *page : {&first, &second, &third}) {
        QCOMPARE(page->count(QStringLiteral("<div class=\"page\"")), 1);
        QVERIFY(page->contains(QStringLiteral("<meta charset=\"utf-8\">")));
        QVERIFY(page->contains(QStringLiteral("style=\"width:560pt;height:500pt\"")));
        QVERIFY(page->endsWith(QStringLiteral("</html>\n")));
    }
    QVERIFY(second.contains(QStringLiteral("Page 2 of 3")));
    QVERIFY(!second.contains(QStringLiteral("Page 1 of 3")));
    QVERIFY(second.contains(QStringLiteral(">R009</div>")));

    QCOMPARE(NavigatorOf(first),
             (QStringList{QStringLiteral("First"), QStringLiteral("Previous"),
                          QStringLiteral("Next=my%20sales2.html"), QStringLiteral("Last=my%20sales3.html"),
                          QStringLiteral("Page 1 of 3")}));
    QCOMPARE(NavigatorOf(second),
             (QStringList{QStringLiteral("First=my%20sales.html"), QStringLiteral("Previous=my%20sales.html"),
                          QStringLiteral("Next=my%20sales3.html"), QStringLiteral("Last=my%20sales3.html"),
                          QStringLiteral("Page 2 of 3")}));
    QCOMPARE(
        NavigatorOf(third),
        (QStringList{QStringLiteral("First=my%20sales.html"), QStringLiteral("Previous=my%20sales2.html"),
                     QStringLiteral("Next"), QStringLiteral("Last"), QStringLiteral("Page 3 of 3")}));
}

void TestPageHtml::separatePagesWithoutNavigator()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("plain.htm"));
    HtmlPageSink sink(file, {true, false});
    PageSample::Render(sink, PageSample::Setup(false), 2);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files, QDir::Name),
             (QStringList{QStringLiteral("plain.htm"), QStringLiteral("plain2.htm")}));
    QVERIFY(!ReadFile(dir.filePath(QStringLiteral("plain2.htm"))).contains(QStringLiteral("navigator\">")));

    // No pages at all still gives the named file, an empty document.
    const QString empty = dir.filePath(QStringLiteral("empty.html"));
    HtmlPageSink nothing(empty, {true, true});
    PageSample::Render(nothing, PageSample::Setup(false), 0);
    QVERIFY(!nothing.failed());
    QVERIFY(ReadFile(empty).endsWith(QStringLiteral("</html>\n")));
}

void TestPageHtml::unwritableTarget()
{
    QTemporaryDir dir;
    for (const bool separate : {false, true}) {
        const QString file = dir.filePath(QStringLiteral("missing/out.html"));
        HtmlPageSink sink(file, {separate, separate});
        PageSample::Render(sink, PageSample::Setup(false), 2);
        QVERIFY(sink.failed());
        QVERIFY2(sink.errorString().startsWith(QStringLiteral("Cannot write ") + file),
                 qPrintable(sink.errorString()));
    }
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

QORLO_TEST_MAIN(TestPageHtml)
#include "tst_page_html.moc"
