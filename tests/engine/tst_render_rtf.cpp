#include "engine/page/RtfPageSink.h"
#include "Peers.h"
#include "TestMain.h"
#include "tst_page_sample.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>

using namespace Engine;

class TestRenderRtf : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void rtfContent();
    void openedByWordProcessor();
    void unwritableTarget();

private:
    // Converts the files with LibreOffice into `format` in `outDir`; false when it failed.
    bool Convert(const QStringList &files, const QString &format, const QString &outDir);
    QString m_soffice;
    QString m_pdfinfo;
    QString m_pdftotext;
    QTemporaryDir m_dir;
};

namespace {

QString ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

void TestRenderRtf::initTestCase()
{
    m_soffice = TestSupport::FindProgram(QStringLiteral("soffice"));
    m_pdfinfo = TestSupport::FindProgram(QStringLiteral("pdfinfo"));
    m_pdftotext = TestSupport::FindProgram(QStringLiteral("pdftotext"));
    QVERIFY(m_dir.isValid());
    // The rich text document of three pages and the landscape Word document of two pages.
    RtfPageSink rtf(m_dir.filePath(QStringLiteral("sales.rtf")));
    PageSample::Render(rtf, PageSample::Setup(false), 3);
    QVERIFY2(!rtf.failed(), qPrintable(rtf.errorString()));
    RtfPageSink word(m_dir.filePath(QStringLiteral("wide.doc")));
    PageSample::Render(word, PageSample::Setup(true), 2);
    QVERIFY2(!word.failed(), qPrintable(word.errorString()));
}

bool TestRenderRtf::Convert(const QStringList &files, const QString &format, const QString &outDir)
{
    const QString profile = QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("profile"))).toString();
    const QStringList arguments = QStringList{QStringLiteral("-env:UserInstallation=") + profile,
                                              QStringLiteral("--headless"),
                                              QStringLiteral("--convert-to"),
                                              format,
                                              QStringLiteral("--outdir"),
                                              outDir} +
                                  files;
    PageSample::Run(m_soffice, arguments, nullptr, 180000);
    for (const QString &file : files)
        if (!QFile::exists(outDir + QLatin1Char('/') + QFileInfo(file).completeBaseName() + QLatin1Char('.') +
                           format))
            return false;
    return true;
}

void TestRenderRtf::rtfContent()
{
    const QString rtf = ReadFile(m_dir.filePath(QStringLiteral("sales.rtf")));
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
    const QString word = ReadFile(m_dir.filePath(QStringLiteral("wide.doc")));
    QVERIFY(word.contains(QStringLiteral("\\paperw11200\\paperh10000")));
    QVERIFY(word.contains(QStringLiteral("\\landscape")));
}

void TestRenderRtf::openedByWordProcessor()
{
    QORLO_REQUIRE_PEER(!m_soffice.isEmpty() && !m_pdfinfo.isEmpty() && !m_pdftotext.isEmpty(),
                       QStringLiteral("LibreOffice and poppler-utils"));
    const QStringList files{m_dir.filePath(QStringLiteral("sales.rtf")),
                            m_dir.filePath(QStringLiteral("wide.doc"))};
    const QString out = m_dir.filePath(QStringLiteral("out"));
    QVERIFY2(Convert(files, QStringLiteral("pdf"), out), "LibreOffice did not convert to PDF");
    QVERIFY2(Convert(files, QStringLiteral("txt"), out), "LibreOffice did not convert to text");

    // The word processor lays the document out on the same pages and paper.
    const QString salesPdf = out + QStringLiteral("/sales.pdf");
    const QString info = QString::fromUtf8(PageSample::ReadWith(m_pdfinfo, {salesPdf}));
    QVERIFY2(info.contains(QRegularExpression(QStringLiteral("Pages:\\s+3\\n"))), qPrintable(info));
    QVERIFY2(PageSample::SameSize(PageSample::PdfPageSize(info), QSizeF(500, 560)), qPrintable(info));
    const QString wideInfo =
        QString::fromUtf8(PageSample::ReadWith(m_pdfinfo, {out + QStringLiteral("/wide.pdf")}));
    QVERIFY2(wideInfo.contains(QRegularExpression(QStringLiteral("Pages:\\s+2\\n"))), qPrintable(wideInfo));
    QVERIFY2(PageSample::SameSize(PageSample::PdfPageSize(wideInfo), QSizeF(560, 500)), qPrintable(wideInfo));
    for (int number = 1; number <= 3; ++number) {
        const QString n = QString::number(number);
        const QString page = QString::fromUtf8(PageSample::ReadWith(
            m_pdftotext, {QStringLiteral("-f"), n, QStringLiteral("-l"), n, salesPdf, QStringLiteral("-")}));
        QVERIFY2(page.contains(QStringLiteral("Page %1 of 3").arg(number)), qPrintable(page));
        QVERIFY(page.contains(
            QStringLiteral("R%1").arg(number * PageSample::RowsPerPage, 3, 10, QLatin1Char('0'))));
    }

    // Each row is one paragraph with its texts at tab stops, in order.
    const QStringList lines =
        ReadFile(out + QStringLiteral("/sales.txt")).split(QRegularExpression(QStringLiteral("\\r?\\n")));
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
    QVERIFY(
        ReadFile(out + QStringLiteral("/wide.txt")).contains(QStringLiteral("\tR016\tCustomer 16\t200.00")));
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
