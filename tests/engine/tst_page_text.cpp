#include "engine/page/TextPageSink.h"
#include "Files.h"
#include "PageSample.h"
#include "TestMain.h"

#include <QFile>
#include <QStringDecoder>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;

class TestPageText : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void paginatedGrid();
    void crowdedRowsKeepApart();
    void plainTextWithoutBreaks();
};

namespace {

QString Render(const QString &file, const TextPageOptions &options, QList<Page> pages = {})
{
    TextPageSink sink(file, options);
    if (pages.isEmpty()) {
        PageSample::Render(sink, PageSample::Setup(false), 3);
    } else {
        sink.begin(PageSample::Setup(false), int(pages.size()));
        for (const Page &page : pages)
            sink.addPage(page);
        sink.end();
    }
    if (sink.failed())
        return u"FAILED: "_s + sink.errorString();
    QFile out(file);
    // Windows-1252, the default, read byte for byte.
    const QStringDecoder::Encoding encoding =
        options.encoding == TextEncoding::Utf8 ? QStringDecoder::Utf8 : QStringDecoder::Latin1;
    return out.open(QIODevice::ReadOnly) ? QStringDecoder(encoding).decode(out.readAll()) : QString();
}

} // namespace

void TestPageText::paginatedGrid()
{
    QTemporaryDir dir;
    // 10 characters an inch: 7.2 points a column; 40 lines on 560 points: 14 points a line.
    const QString text = Render(dir.filePath(u"sales.txt"_s), {10, 40, true});
    QCOMPARE(text.count(u"\r\n"_s), text.count(u'\n'));
    const QStringList pages = text.split(u'\f');
    QCOMPARE(pages.size(), 3);
    for (int number = 1; number <= 3; ++number) {
        const QStringList lines = pages[number - 1].split(u"\r\n"_s);
        QCOMPARE(lines.last(), QString()); // the page's last line is ended too
        // The title's middle is at 50 points: line 3; the headings at 87: line 6.
        QCOMPARE(lines[3], u"      Sales by customer"_s);
        QVERIFY2(lines[6].startsWith(u"      Row        Customer"_s), qPrintable(lines[6]));
        // The footer at 467 points lies on line 33, at column 40 / 7.2 = 6.
        QCOMPARE(lines[33], u"      Page %1 of 3"_s.arg(number));
        QCOMPARE(lines.size(), 35);
        // Rows at 107, 123, 139, 155 points: lines 7, 8, 9 and 11; the amount ends at column 440 / 7.2 = 61.
        const int first = (number - 1) * PageSample::RowsPerPage + 1;
        const QString expected =
            u"      %1"_s.arg(PageSample::RowLabel(first)).leftJustified(17) + PageSample::Name(first);
        QCOMPARE(lines[7].left(expected.size()), expected);
        QVERIFY(lines[7].endsWith(PageSample::Amount(first)));
        QCOMPARE(lines[7].size(), 61);
        QVERIFY(lines[8].contains(PageSample::RowLabel(first + 1)));
        QVERIFY(lines[9].contains(PageSample::RowLabel(first + 2)));
        QCOMPARE(lines[10], QString());
        QVERIFY(lines[11].contains(PageSample::RowLabel(first + 3)));
    }
    // "€" is 0x80 in Windows-1252; "Ł" and "ź" are not in it.
    QVERIFY(text.contains(u"?ód? {Ltd} \\ 5\u0080"_s));
}

void TestPageText::crowdedRowsKeepApart()
{
    QTemporaryDir dir;
    // 10 lines on 560 points: 56 points a line, so several rows fall on one line of the grid.
    Page page = PageSample::TablePage(1, 1);
    // A long text that runs into the next column must not overwrite it, nor be cut.
    page.texts.append(PageSample::Text(40, 300, 60, u"A very long first column text"_s));
    page.texts.append(PageSample::Text(120, 300, 60, u"next"_s));
    const QString text = Render(dir.filePath(u"crowded.txt"_s), {10, 10, true, TextEncoding::Utf8}, {page});
    QVERIFY(!text.contains(u'\f'));
    const QStringList lines = text.split(u"\r\n"_s);
    QVERIFY(lines.size() > 10);
    int previous = -1;
    for (int row = 1; row <= PageSample::RowsPerPage; ++row) {
        const int line =
            int(lines.indexOf(QRegularExpression(u"\\s*%1\\s.*"_s.arg(PageSample::RowLabel(row)))));
        QVERIFY2(line > previous, qPrintable(PageSample::RowLabel(row)));
        QVERIFY(lines[line].contains(PageSample::Name(row)));
        previous = line;
    }
    QVERIFY(lines.contains(u"      A very long first column text next"_s));
    QVERIFY(lines.indexOf(u"      Page 1 of 1"_s) > previous);
}

void TestPageText::plainTextWithoutBreaks()
{
    QTemporaryDir dir;
    const QString text = Render(dir.filePath(u"plain.txt"_s), {0, 0, false});
    QVERIFY(!text.contains(u'\f'));
    QCOMPARE(text.count(u"Sales by customer"_s), 3);
    int position = 0;
    for (int row = 1; row <= 3 * PageSample::RowsPerPage; ++row) {
        const int found = int(text.indexOf(PageSample::RowLabel(row), position));
        QVERIFY2(found > position, qPrintable(PageSample::RowLabel(row)));
        position = found;
    }
    // Pages follow each other: page 1's footer, then page 2's title.
    QVERIFY(text.indexOf(u"Page 1 of 3"_s) < text.indexOf(PageSample::RowLabel(PageSample::RowsPerPage + 1)));
    QVERIFY(text.endsWith(u"Page 3 of 3\r\n"_s));
}

QORLO_TEST_MAIN(TestPageText)
#include "tst_page_text.moc"
