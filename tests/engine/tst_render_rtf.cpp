#include "engine/page/RtfPageSink.h"
#include "Files.h"
#include "PageSample.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

class TestRenderRtf : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void rtfContent();
    void openedByWordProcessor();

private:
    QString text(const QString &name) const { return QString::fromUtf8(ReadFile(m_dir.filePath(name))); }
    QTemporaryDir m_dir;
};

void TestRenderRtf::initTestCase()
{
    QVERIFY(m_dir.isValid());
    // The rich text document of three pages and the landscape Word document of two pages.
    RtfPageSink rtf(m_dir.filePath(u"sales.rtf"_s));
    PageSample::Render(rtf, PageSample::Setup(false), 3);
    QVERIFY2(!rtf.failed(), qPrintable(rtf.errorString()));
    RtfPageSink word(m_dir.filePath(u"wide.doc"_s));
    PageSample::Render(word, PageSample::Setup(true), 2);
    QVERIFY2(!word.failed(), qPrintable(word.errorString()));
}

void TestRenderRtf::rtfContent()
{
    const QString rtf = text(u"sales.rtf"_s);
    QVERIFY(rtf.startsWith(u"{\\rtf1\\ansi"_s));
    QVERIFY(rtf.trimmed().endsWith(u'}'));
    QCOMPARE(rtf.count(u'{') - rtf.count(u"\\{"_s), rtf.count(u'}') - rtf.count(u"\\}"_s));
    QVERIFY(rtf.contains(u"{\\fonttbl{\\f0\\fnil\\fcharset0 Liberation Sans;}}"_s));
    QVERIFY(rtf.contains(u"\\paperw10000\\paperh11200"_s));
    QVERIFY(!rtf.contains(u"\\landscape"_s));
    // Two page breaks for three pages; non-ASCII text as Unicode escapes, RTF's own characters escaped.
    QCOMPARE(rtf.count(u"\\pagebb"_s), 2);
    QVERIFY(rtf.contains(u"\\u321?\\u243?d\\u378? \\{Ltd\\} \\\\ 5\\u8364?"_s));
    QVERIFY(rtf.contains(u"M\\u252?ller Gr\\u252?nwald"_s));
    QVERIFY(rtf.contains(u"{\\title Sales & Co}"_s));
    // Each page's heading line and table box, placed on the page in twips.
    QCOMPARE(rtf.count(u"{\\shp{"_s), 6);
    QCOMPARE(rtf.count(u"\\shpleft800\\shptop1920\\shpright8800\\shpbottom1920"_s), 3);
    const QString word = text(u"wide.doc"_s);
    QVERIFY(word.contains(u"\\paperw11200\\paperh10000"_s));
    QVERIFY(word.contains(u"\\landscape"_s));
}

void TestRenderRtf::openedByWordProcessor()
{
    QORLO_REQUIRE_PEER(!LibreOffice().isEmpty() && PopplerInstalled(), u"LibreOffice and poppler-utils"_s);
    const QStringList files{m_dir.filePath(u"sales.rtf"_s), m_dir.filePath(u"wide.doc"_s)};
    const QString out = m_dir.filePath(u"out"_s);
    QVERIFY2(ConvertWithLibreOffice(files, u"pdf"_s, out), "LibreOffice did not convert to PDF");
    QVERIFY2(ConvertWithLibreOffice(files, u"txt"_s, out), "LibreOffice did not convert to text");

    // The word processor lays the document out on the same pages and paper.
    const QString salesPdf = out + u"/sales.pdf"_s;
    const QString widePdf = out + u"/wide.pdf"_s;
    QCOMPARE(PdfPages(salesPdf), 3);
    QVERIFY2(SameSize(PdfPageSize(salesPdf), QSizeF(500, 560)), qPrintable(PdfInfo(salesPdf)));
    QCOMPARE(PdfPages(widePdf), 2);
    QVERIFY2(SameSize(PdfPageSize(widePdf), QSizeF(560, 500)), qPrintable(PdfInfo(widePdf)));
    for (int number = 1; number <= 3; ++number) {
        const QString page = PdfText(salesPdf, number);
        QVERIFY2(page.contains(u"Page %1 of 3"_s.arg(number)), qPrintable(page));
        QVERIFY(page.contains(PageSample::RowLabel(number * PageSample::RowsPerPage)));
    }

    // Each row is one paragraph with its texts at tab stops, in order.
    const QStringList lines = text(u"out/sales.txt"_s).split(QRegularExpression(u"\\r?\\n"_s));
    int previous = -1;
    for (int row = 1; row <= 3 * PageSample::RowsPerPage; ++row) {
        const QString expected =
            u"\t%1\t%2\t%3"_s.arg(PageSample::RowLabel(row), PageSample::Name(row), PageSample::Amount(row));
        const int line = int(lines.indexOf(expected));
        QVERIFY2(line > previous, qPrintable(expected));
        previous = line;
    }
    QVERIFY(lines.contains(u"\tPage 3 of 3"_s));
    QVERIFY(text(u"out/wide.txt"_s).contains(u"\tR016\tCustomer 16\t200.00"_s));
}

QORLO_TEST_MAIN(TestRenderRtf)
#include "tst_render_rtf.moc"
