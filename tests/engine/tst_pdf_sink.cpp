#include "engine/page/PdfPageSink.h"
#include "PageSample.h"
#include "Peers.h"
#include "Readers.h"
#include "TestMain.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

class TestPdfSink : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void pagesTextFontsAndOrientation();
};

void TestPdfSink::initTestCase()
{
    QORLO_REQUIRE_PEER(PopplerInstalled(), u"poppler-utils"_s);
}

void TestPdfSink::pagesTextFontsAndOrientation()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(u"sales.pdf"_s);
    PdfPageSink sink(file);
    PageSample::Render(sink, PageSample::Setup(false), 3);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));

    QCOMPARE(PdfPages(file), 3);
    QCOMPARE(PdfPageSize(file), QSizeF(500, 560));
    QVERIFY(PdfInfo(file).contains(QRegularExpression(u"Title:\\s+Sales & Co"_s)));

    // Each page holds its own rows and footer, in reading order, special characters intact.
    for (int number = 1; number <= 3; ++number) {
        const QString text = PdfText(file, number, true);
        QVERIFY2(text.contains(u"Page %1 of 3"_s.arg(number)), qPrintable(text));
        const int first = (number - 1) * PageSample::RowsPerPage + 1;
        const int last = number * PageSample::RowsPerPage;
        QVERIFY(text.contains(QRegularExpression(u"%1\\s+%2\\s+%3"_s.arg(
            PageSample::RowLabel(first), QRegularExpression::escape(PageSample::Name(first)),
            PageSample::Amount(first)))));
        QVERIFY(text.contains(PageSample::Name(last)));
        QVERIFY(!text.contains(PageSample::RowLabel(last + 1)));
        QVERIFY(text.indexOf(u"Sales by customer"_s) < text.indexOf(u"Page "_s));
    }
    const QString all = PdfText(file);
    QVERIFY(all.contains(u"Łódź {Ltd} \\ 5€"_s));
    QVERIFY(all.contains(u"Müller Grünwald"_s));

    // Every font is embedded, regular and bold alike.
    const QStringList fonts = PdfFonts(file).split(u'\n');
    const QStringList rows = fonts.mid(2).filter(QRegularExpression(u"\\S"_s));
    QCOMPARE(rows.size(), 2);
    for (const QString &row : rows) {
        QVERIFY2(row.startsWith(u"LiberationSans"_s), qPrintable(row));
        QVERIFY2(row.contains(QRegularExpression(u"\\s+yes\\s+(yes|no)\\s+yes\\s+"_s)), qPrintable(row));
    }

    // Landscape: the footer near the bottom of the shorter page is still on it.
    const QString wide = dir.filePath(u"wide.pdf"_s);
    PdfPageSink landscape(wide);
    PageSample::Render(landscape, PageSample::Setup(true), 2);
    QVERIFY2(!landscape.failed(), qPrintable(landscape.errorString()));
    QCOMPARE(PdfPageSize(wide), QSizeF(560, 500));
    QCOMPARE(PdfPages(wide), 2);
    QVERIFY(PdfText(wide).contains(u"Page 2 of 2"_s));
}

QORLO_TEST_MAIN(TestPdfSink)
#include "tst_pdf_sink.moc"
