#include "engine/page/RtfPageSink.h"
#include "Files.h"
#include "PageSample.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Engine;
using namespace TestSupport;

class TestRenderRtf : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void rtfContent();
    void openedByWordProcessor();
    void unwritableTarget();

private:
    QString text(const QString &name) const { return QString::fromUtf8(ReadFile(m_dir.filePath(name))); }
    QTemporaryDir m_dir;
};

void TestRenderRtf::initTestCase()
{
    QVERIFY(m_dir.isValid());
    // The rich text document of three pages and the landscape Word document of two pages.
    RtfPageSink rtf(m_dir.filePath(QStringLiteral("sales.rtf")));
    PageSample::Render(rtf, PageSample::Setup(false), 3);
    QVERIFY2(!rtf.failed(), qPrintable(rtf.errorString()));
    RtfPageSink word(m_dir.filePath(QStringLiteral("wide.doc")));
    PageSample::Render(word, PageSample::Setup(true), 2);
    QVERIFY2(!word.failed(), qPrintable(word.errorString()));
}

void TestRenderRtf::rtfContent()
{
    const QString rtf = text(QStringLiteral("sales.rtf"));
    QVERIFY(rtf.startsWith(QStringLiteral("{\\rtf1\\ansi")));
    QVERIFY(rtf.trimmed().endsWith(QLatin1Char('}')));
    QCOMPARE(rtf.count(QLatin1Char('{')) - rtf.count(QStringLiteral("\\{")),
             rtf.count(QLatin1Char('}')) - rtf.count(QStringLiteral("\\}")));
    QVERIFY(rtf.contains(QStringLiteral("{\\fonttbl{\\f0\\fnil\\fcharset0 Liberation Sans;}}")));
    QVERIFY(rtf.contains(QStringLiteral("\\paperw10000\\paperh11200")));
    QVERIFY(!rtf.contains(QStringLiteral("\\landscape")));
    // Two page breaks for three pages; non-ASCII text as Unicode escapes, RTF's own characters escaped.
    QCOMPARE(rtf.count(QStringLiteral("\\pagebb")), 2);
    QVERIFY(rtf.contains(QStringLiteral("\\u321?\\u243?d\\u378? \\{Ltd\\} \\\\ 5\\u8364?")));
    QVERIFY(rtf.contains(QStringLiteral("M\\u252?ller Gr\\u252?nwald")));
    QVERIFY(rtf.contains(QStringLiteral("{\\title Sales & Co}")));
    // Each page's heading line and table box, placed on the page in twips.
    QCOMPARE(rtf.count(QStringLiteral("{\\shp{")), 6);
    QCOMPARE(rtf.count(QStringLiteral("\\shpleft800\\shptop1920\\shpright8800\\shpbottom1920")), 3);
    const QString word = text(QStringLiteral("wide.doc"));
    QVERIFY(word.contains(QStringLiteral("\\paperw11200\\paperh10000")));
    QVERIFY(word.contains(QStringLiteral("\\landscape")));
}

void TestRenderRtf::openedByWordProcessor()
{
    QORLO_REQUIRE_PEER(!LibreOffice().isEmpty() && PopplerInstalled(),
                       QStringLiteral("LibreOffice and poppler-utils"));
    const QStringList files{m_dir.filePath(QStringLiteral("sales.rtf")),
                            m_dir.filePath(QStringLiteral("wide.doc"))};
    const QString out = m_dir.filePath(QStringLiteral("out"));
    QVERIFY2(ConvertWithLibreOffice(files, QStringLiteral("pdf"), out), "LibreOffice did not convert to PDF");
    QVERIFY2(ConvertWithLibreOffice(files, QStringLiteral("txt"), out),
             "LibreOffice did not convert to text");

    // The word processor lays the document out on the same pages and paper.
    const QString salesPdf = out + QStringLiteral("/sales.pdf");
    const QString widePdf = out + QStringLiteral("/wide.pdf");
    QCOMPARE(PdfPages(salesPdf), 3);
    QVERIFY2(SameSize(PdfPageSize(salesPdf), QSizeF(500, 560)), qPrintable(PdfInfo(salesPdf)));
    QCOMPARE(PdfPages(widePdf), 2);
    QVERIFY2(SameSize(PdfPageSize(widePdf), QSizeF(560, 500)), qPrintable(PdfInfo(widePdf)));
    for (int number = 1; number <= 3; ++number) {
        const QString page = PdfText(salesPdf, number);
        QVERIFY2(page.contains(QStringLiteral("Page %1 of 3").arg(number)), qPrintable(page));
        QVERIFY(page.contains(
            QStringLiteral("R%1").arg(number * PageSample::RowsPerPage, 3, 10, QLatin1Char('0'))));
    }

    // Each row is one paragraph with its texts at tab stops, in order.
    const QStringList lines =
        text(QStringLiteral("out/sales.txt")).split(QRegularExpression(QStringLiteral("\\r?\\n")));
    int previous = -1;
    for (int row = 1; row <= 3 * PageSample::RowsPerPage; ++row) {
        const QString expected = QStringLiteral("\tR%1\t%2\t%3")
                                     .arg(row, 3, 10, QLatin1Char('0'))
                                     .arg(PageSample::Name(row), PageSample::Amount(row));
        const int line = int(lines.indexOf(expected));
        QVERIFY2(line > previous, qPrintable(expected));
        previous = line;
    }
    QVERIFY(lines.contains(QStringLiteral("\tPage 3 of 3")));
    QVERIFY(text(QStringLiteral("out/wide.txt")).contains(QStringLiteral("\tR016\tCustomer 16\t200.00")));
}

void TestRenderRtf::unwritableTarget()
{
    const QString file = m_dir.filePath(QStringLiteral("missing/out.rtf"));
    RtfPageSink sink(file);
    PageSample::Render(sink, PageSample::Setup(false), 1);
    QVERIFY(sink.failed());
    QVERIFY2(sink.errorString().startsWith(QStringLiteral("Cannot write ") + file),
             qPrintable(sink.errorString()));
}

QORLO_TEST_MAIN(TestRenderRtf)
#include "tst_render_rtf.moc"
