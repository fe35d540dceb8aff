#include "engine/page/HtmlPageSink.h"
#include "Files.h"
#include "PageSample.h"
#include "TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;

class TestPageHtml : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void onePageFile();
    void separatePages();
};

namespace {

QString ReadText(const QString &path)
{
    return QString::fromUtf8(TestSupport::ReadFile(path));
}

// The navigator's entries in order, a link as "caption=href", plain text as "caption".
QStringList NavigatorOf(const QString &html)
{
    const QRegularExpression block(u"<div class=\"navigator\">(.*?)</div>"_s);
    const QRegularExpression entry(u"<a href=\"([^\"]*)\">([^<]*)</a>|<span>([^<]*)</span>"_s);
    QStringList entries;
    auto it = entry.globalMatch(block.match(html).captured(1));
    while (it.hasNext()) {
        const auto match = it.next();
        entries.append(match.hasCaptured(1) ? match.captured(2) + u'=' + match.captured(1)
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
    const auto table = QRegularExpression(u"<table style=\"left:([\\d.]+)pt;top:([\\d.]+)pt"_s).match(html);
    QList<double> edges{table.captured(1).toDouble()};
    auto columns = QRegularExpression(u"<col style=\"width:([\\d.]+)pt\">"_s).globalMatch(html);
    while (columns.hasNext())
        edges.append(edges.last() + columns.next().captured(1).toDouble());
    QHash<QString, double> heights;
    auto classes = QRegularExpression(u"tr\\.(h\\d+)\\{height:([\\d.]+)pt\\}"_s).globalMatch(html);
    while (classes.hasNext()) {
        const auto match = classes.next();
        heights.insert(match.captured(1), match.captured(2).toDouble());
    }
    QHash<QString, CellPlace> places;
    double top = table.captured(2).toDouble();
    auto rows = QRegularExpression(u"<tr class=\"(h\\d+)\">(.*)</tr>"_s).globalMatch(html);
    while (rows.hasNext()) {
        const auto row = rows.next();
        int column = 0;
        auto cells = QRegularExpression(u"<td(?: class=\"(c\\d+)\")?(?: colspan=\"(\\d+)\")?>([^<]*)</td>"_s)
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
    const QString file = dir.filePath(u"sales.html"_s);
    HtmlPageSink sink(file, {false, false});
    PageSample::Render(sink, PageSample::Setup(false), 3);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{u"sales.html"_s});

    const QString html = ReadText(file);
    QVERIFY(html.startsWith(u"<!DOCTYPE html>"_s));
    QVERIFY(html.contains(u"<meta charset=\"utf-8\">"_s));
    QVERIFY(html.contains(u"<title>Sales &amp; Co</title>"_s));
    QCOMPARE(html.count(u"<div class=\"page\""_s), 3);
    QCOMPARE(html.count(QRegularExpression(
                 u"<div class=\"page\" id=\"page\\d\" style=\"width:500pt;height:560pt\">"_s)),
             3);
    QVERIFY(!html.contains(u"navigator\">"_s));
    QVERIFY(html.indexOf(u"Page 1 of 3"_s) < html.indexOf(u"id=\"page2\""_s));
    QVERIFY(html.indexOf(u"Page 3 of 3"_s) > html.indexOf(u"id=\"page3\""_s));
    QVERIFY(html.endsWith(u"</html>\n"_s));

    // Texts are escaped and kept in UTF-8, in table cells that begin where their texts begin.
    QVERIFY(html.contains(u">Smith &amp; &lt;Sons&gt;</td>"_s));
    QVERIFY(!html.contains(u"<Sons>"_s));
    QVERIFY(html.contains(u">Łódź {Ltd} \\ 5€</td>"_s));
    const QHash<QString, CellPlace> cells = CellPlaces(html.section(u"id=\"page2\""_s, 0, 0));
    QCOMPARE(cells.value(u"R001"_s).start, 40.0);
    QCOMPARE(cells.value(u"Smith &amp; &lt;Sons&gt;"_s).start, 120.0);
    // The amount's cell runs to the end of its box, where the text is aligned.
    QCOMPARE(cells.value(u"12.50"_s).start, 340.0);
    QCOMPARE(cells.value(u"12.50"_s).end, 440.0);
    QVERIFY(
        html.contains(QRegularExpression(u"td\\.%1\\{font:9pt \"Liberation Sans\"[^}]*text-align:right"_s.arg(
            cells.value(u"12.50"_s).style))));
    QVERIFY(html.contains(u"font:bold 14pt \"Liberation Sans\""_s));
    // A row's height is the distance to the next: rows 1 and 2 are 16 points apart, their texts 14 high.
    QCOMPARE(cells.value(u"R002"_s).top - cells.value(u"R001"_s).top, 16.0);
    // A row of three texts costs its texts and little more, not an element with a style for each text.
    const QString many = dir.filePath(u"many.html"_s);
    HtmlPageSink manySink(many, {false, false});
    PageSample::Render(manySink, PageSample::Setup(false), 103);
    const qint64 perPage = (QFileInfo(many).size() - QFileInfo(file).size()) / 100;
    // 8 rows, headings, title, footer and drawing; as elements placed one by one they took 6,000 bytes.
    QVERIFY2(perPage < 2000, qPrintable(QString::number(perPage)));
    // The heading line and the shaded box.
    QVERIFY(html.contains(
        u"<line x1=\"40\" y1=\"96\" x2=\"440\" y2=\"96\" stroke=\"black\" stroke-width=\"1\"/>"_s));
    QVERIFY(html.contains(u"<rect x=\"36\" y=\"76\" width=\"408\" height=\"156\" fill=\"#f0f0f0\""_s));
}

void TestPageHtml::separatePages()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(u"my sales.html"_s);
    HtmlPageSink sink(file, {true, true});
    PageSample::Render(sink, PageSample::Setup(true), 3);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files, QDir::Name),
             (QStringList{u"my sales.html"_s, u"my sales2.html"_s, u"my sales3.html"_s}));

    const QString first = ReadText(file);
    const QString second = ReadText(dir.filePath(u"my sales2.html"_s));
    const QString third = ReadText(dir.filePath(u"my sales3.html"_s));
    for (const QString *page : {&first, &second, &third}) {
        QCOMPARE(page->count(u"<div class=\"page\""_s), 1);
        QVERIFY(page->contains(u"<meta charset=\"utf-8\">"_s));
        QVERIFY(page->contains(u"style=\"width:560pt;height:500pt\""_s));
        QVERIFY(page->endsWith(u"</html>\n"_s));
    }
    QVERIFY(second.contains(u"Page 2 of 3"_s));
    QVERIFY(!second.contains(u"Page 1 of 3"_s));
    QVERIFY(second.contains(u">R009</td>"_s));

    QCOMPARE(NavigatorOf(first), (QStringList{u"First"_s, u"Previous"_s, u"Next=my%20sales2.html"_s,
                                              u"Last=my%20sales3.html"_s, u"Page 1 of 3"_s}));
    QCOMPARE(NavigatorOf(second),
             (QStringList{u"First=my%20sales.html"_s, u"Previous=my%20sales.html"_s,
                          u"Next=my%20sales3.html"_s, u"Last=my%20sales3.html"_s, u"Page 2 of 3"_s}));
    QCOMPARE(NavigatorOf(third), (QStringList{u"First=my%20sales.html"_s, u"Previous=my%20sales2.html"_s,
                                              u"Next"_s, u"Last"_s, u"Page 3 of 3"_s}));

    // Without the navigator, and with another extension.
    HtmlPageSink plain(dir.filePath(u"plain.htm"_s), {true, false});
    PageSample::Render(plain, PageSample::Setup(false), 2);
    QVERIFY2(!plain.failed(), qPrintable(plain.errorString()));
    QCOMPARE(QDir(dir.path()).entryList({u"plain*"_s}, QDir::Files, QDir::Name),
             (QStringList{u"plain.htm"_s, u"plain2.htm"_s}));
    QVERIFY(!ReadText(dir.filePath(u"plain2.htm"_s)).contains(u"navigator\">"_s));

    // No pages at all still gives the named file, an empty document.
    const QString empty = dir.filePath(u"empty.html"_s);
    HtmlPageSink nothing(empty, {true, true});
    PageSample::Render(nothing, PageSample::Setup(false), 0);
    QVERIFY(!nothing.failed());
    QVERIFY(ReadText(empty).endsWith(u"</html>\n"_s));
}

QORLO_TEST_MAIN(TestPageHtml)
#include "tst_page_html.moc"
