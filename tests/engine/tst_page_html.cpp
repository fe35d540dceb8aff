#include "engine/page/HtmlPageSink.h"
#include "TestMain.h"
#include "tst_page_sample.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

struct CellPlace
{
    double start = -1;
    double end = -1;
    double top = -1;
    QString style;
};

// Where each text of a page's table stands, worked out from the table alone: the columns' widths from
// its left edge, the rows' heights from its top, and the columns each cell spans.
QHash<QString, CellPlace> CellPlaces(const QString &html)
{
    const auto table =
        QRegularExpression(QStringLiteral("<table style=\"left:([\\d.]+)pt;top:([\\d.]+)pt")).match(html);
    QList<double> edges{table.captured(1).toDouble()};
    auto columns = QRegularExpression(QStringLiteral("<col style=\"width:([\\d.]+)pt\">")).globalMatch(html);
    while (columns.hasNext())
        edges.append(edges.last() + columns.next().captured(1).toDouble());
    QHash<QString, double> heights;
    auto classes =
        QRegularExpression(QStringLiteral("tr\\.(h\\d+)\\{height:([\\d.]+)pt\\}")).globalMatch(html);
    while (classes.hasNext()) {
        const auto match = classes.next();
        heights.insert(match.captured(1), match.captured(2).toDouble());
    }
    QHash<QString, CellPlace> places;
    double top = table.captured(2).toDouble();
    auto rows = QRegularExpression(QStringLiteral("<tr class=\"(h\\d+)\">(.*)</tr>")).globalMatch(html);
    while (rows.hasNext()) {
        const auto row = rows.next();
        int column = 0;
        auto cells = QRegularExpression(
                         QStringLiteral("<td(?: class=\"(c\\d+)\")?(?: colspan=\"(\\d+)\")?>([^<]*)</td>"))
                         .globalMatch(row.captured(2));
        while (cells.hasNext()) {
            const auto cell = cells.next();
            const int span = cell.captured(2).isEmpty() ? 1 : cell.captured(2).toInt();
            if (!cell.captured(3).isEmpty())
                places.insert(cell.captured(3), CellPlace{edges.value(column), edges.value(column + span),
                                                          top, cell.captured(1)});
            column += span;
        }
        top += heights.value(row.captured(1));
    }
    return places;
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

    // Texts are escaped and kept in UTF-8, in table cells that begin where their texts begin.
    QVERIFY(html.contains(QStringLiteral(">Smith &amp; &lt;Sons&gt;</td>")));
    QVERIFY(!html.contains(QStringLiteral("<Sons>")));
    QVERIFY(html.contains(QStringLiteral(">Łódź {Ltd} \\ 5€</td>")));
    const QHash<QString, CellPlace> cells = CellPlaces(html.section(QStringLiteral("id=\"page2\""), 0, 0));
    QCOMPARE(cells.value(QStringLiteral("R001")).start, 40.0);
    QCOMPARE(cells.value(QStringLiteral("Smith &amp; &lt;Sons&gt;")).start, 120.0);
    // The amount's cell runs to the end of its box, where the text is aligned.
    QCOMPARE(cells.value(QStringLiteral("12.50")).start, 340.0);
    QCOMPARE(cells.value(QStringLiteral("12.50")).end, 440.0);
    QVERIFY(html.contains(
        QRegularExpression(QStringLiteral("td\\.%1\\{font:9pt \"Liberation Sans\"[^}]*text-align:right")
                               .arg(cells.value(QStringLiteral("12.50")).style))));
    QVERIFY(html.contains(QStringLiteral("font:bold 14pt \"Liberation Sans\"")));
    // A row's height is the distance to the next: rows 1 and 2 are 16 points apart, their texts 14 high.
    QCOMPARE(cells.value(QStringLiteral("R002")).top - cells.value(QStringLiteral("R001")).top, 16.0);
    // A row of three texts costs its texts and little more, not an element with a style for each text.
    const QString many = dir.filePath(QStringLiteral("many.html"));
    HtmlPageSink manySink(many, {false, false});
    PageSample::Render(manySink, PageSample::Setup(false), 103);
    const qint64 perPage = (QFileInfo(many).size() - QFileInfo(file).size()) / 100;
    // 8 rows, headings, title, footer and drawing; as elements placed one by one they took 6,000 bytes.
    QVERIFY2(perPage < 2000, qPrintable(QString::number(perPage)));
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
    QVERIFY(second.contains(QStringLiteral(">R009</td>")));

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
