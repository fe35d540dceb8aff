#include "engine/page/PdfPageSink.h"
#include "Peers.h"
#include "TestMain.h"
#include "tst_page_sample.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Engine;

class TestPdfSink : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void pagesTextAndFonts();
    void landscape();
    void unwritableTarget();

private:
    QString m_pdfinfo;
    QString m_pdftotext;
    QString m_pdffonts;
};

void TestPdfSink::initTestCase()
{
    m_pdfinfo = TestSupport::FindProgram(QStringLiteral("pdfinfo"));
    m_pdftotext = TestSupport::FindProgram(QStringLiteral("pdftotext"));
    m_pdffonts = TestSupport::FindProgram(QStringLiteral("pdffonts"));
    QORLO_REQUIRE_PEER(!m_pdfinfo.isEmpty() && !m_pdftotext.isEmpty() && !m_pdffonts.isEmpty(),
                       QStringLiteral("poppler-utils"));
}

void TestPdfSink::pagesTextAndFonts()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("sales.pdf"));
    PdfPageSink sink(file);
    PageSample::Render(sink, PageSample::Setup(false), 3);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));

    const QString info = QString::fromUtf8(PageSample::ReadWith(m_pdfinfo, {file}));
    QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+3\\n"))), qPrintable(info));
    QVERIFY(info.contains(QRegularExpression(QStringLiteral("Page size:\\s+500 x 560 pts"))));
    QVERIFY(info.contains(QRegularExpression(QStringLiteral("Title:\\s+Sales & Co"))));

    // Each page holds its own rows and footer, in reading order, special characters intact.
    for (int number = 1; number <= 3; ++number) {
        const QString n = QString::number(number);
        const QString text = QString::fromUtf8(
            PageSample::ReadWith(m_pdftotext, {QStringLiteral("-layout"), QStringLiteral("-f"), n,
                                               QStringLiteral("-l"), n, file, QStringLiteral("-")}));
        QVERIFY2(text.contains(QStringLiteral("Page %1 of 3").arg(number)), qPrintable(text));
        const int first = (number - 1) * PageSample::RowsPerPage + 1;
        const int last = number * PageSample::RowsPerPage;
        QVERIFY(text.contains(QRegularExpression(
            QStringLiteral("R%1\\s+%2\\s+%3")
                .arg(first, 3, 10, QLatin1Char('0'))
                .arg(QRegularExpression::escape(PageSample::Name(first)), PageSample::Amount(first)))));
        QVERIFY(text.contains(PageSample::Name(last)));
        QVERIFY(!text.contains(QStringLiteral("R%1").arg(last + 1, 3, 10, QLatin1Char('0'))));
        QVERIFY(text.indexOf(QStringLiteral("Sales by customer")) < text.indexOf(QStringLiteral("Page ")));
    }
    const QString all = QString::fromUtf8(PageSample::ReadWith(m_pdftotext, {file, QStringLiteral("-")}));
    QVERIFY(all.contains(QStringLiteral("Łódź {Ltd} \\ 5€")));
    QVERIFY(all.contains(QStringLiteral("Müller Grünwald")));

    // Every font is embedded, regular and bold alike.
    const QStringList fonts =
        QString::fromUtf8(PageSample::ReadWith(m_pdffonts, {file})).split(QLatin1Char('\n'));
    const QStringList rows = fonts.mid(2).filter(QRegularExpression(QStringLiteral("\\S")));
    QCOMPARE(rows.size(), 2);
    for (const QString &row : rows) {
        QVERIFY2(row.startsWith(QStringLiteral("LiberationSans")), qPrintable(row));
        QVERIFY2(row.contains(QRegularExpression(QStringLiteral("\\s+yes\\s+(yes|no)\\s+yes\\s+"))),
                 qPrintable(row));
    }
}

void TestPdfSink::landscape()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("wide.pdf"));
    PdfPageSink sink(file);
    PageSample::Render(sink, PageSample::Setup(true), 2);
    QVERIFY2(!sink.failed(), qPrintable(sink.errorString()));
    const QString info = QString::fromUtf8(PageSample::ReadWith(m_pdfinfo, {file}));
    QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Page size:\\s+560 x 500 pts"))),
             qPrintable(info));
    QVERIFY(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+2\\n"))));
    // The footer near the bottom of the shorter page is still on it.
    const QString text = QString::fromUtf8(PageSample::ReadWith(m_pdftotext, {file, QStringLiteral("-")}));
    QVERIFY(text.contains(QStringLiteral("Page 2 of 2")));
}

void TestPdfSink::unwritableTarget()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("missing/folder/out.pdf"));
    PdfPageSink sink(file);
    PageSample::Render(sink, PageSample::Setup(false), 2);
    QVERIFY(sink.failed());
    QVERIFY2(sink.errorString().contains(file), qPrintable(sink.errorString()));
    QVERIFY(!QFile::exists(file));
}

QORLO_TEST_MAIN(TestPdfSink)
#include "tst_pdf_sink.moc"
