#include "engine/page/HtmlPageSink.h"
#include "engine/page/PdfPageSink.h"
#include "engine/page/RtfPageSink.h"
#include "engine/page/TextPageSink.h"
#include "TestMain.h"
#include "tst_page_sample.h"

#include <QFile>
#include <QTemporaryDir>
#include <limits>

using namespace Engine;

class TestRenderBadInput : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void hostileGeometry();
};

namespace {

// Texts off the page, without a number for a place, of no size or of absurd size: each renderer
// still writes every text.
Page HostilePage()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double huge = 1e300;
    Page page;
    page.number = 1;
    page.texts.append(PageSample::Text(nan, nan, nan, QStringLiteral("nowhere")));
    page.texts.append(PageSample::Text(huge, huge, huge, QStringLiteral("far away"), Qt::AlignRight));
    page.texts.append(PageSample::Text(-huge, -50, 10, QStringLiteral("far left"), Qt::AlignHCenter));
    PageText big = PageSample::Text(40, 40, 100, QStringLiteral("big and tiny"));
    big.font.pointSize = nan;
    page.texts.append(big);
    big.font.pointSize = huge;
    page.texts.append(big);
    big.font.pointSize = -3;
    page.texts.append(big);
    page.lines.append(PageLine{QPointF(nan, 0), QPointF(huge, -huge), nan});
    page.boxes.append(PageBox{QRectF(-huge, nan, huge, huge), huge, QColor(1, 2, 3)});
    return page;
}

QByteArray Render(PageSink &sink, const QString &file)
{
    PageSetup setup = PageSample::Setup(false);
    sink.begin(setup, 1);
    sink.addPage(HostilePage());
    sink.end();
    QFile out(file);
    return !sink.failed() && out.open(QIODevice::ReadOnly) ? out.readAll() : QByteArray();
}

} // namespace

void TestRenderBadInput::hostileGeometry()
{
    QTemporaryDir dir;
    const QStringList texts{QStringLiteral("nowhere"), QStringLiteral("far away"), QStringLiteral("far left"),
                            QStringLiteral("big and tiny")};

    const QString textFile = dir.filePath(QStringLiteral("out.txt"));
    TextPageSink text(textFile, {10, 40, true});
    const QString plain = QString::fromUtf8(Render(text, textFile));
    for (const QString &expected : texts)
        QVERIFY2(plain.contains(expected), qPrintable(expected));
    QCOMPARE(plain.count(QStringLiteral("big and tiny")), 3);
    for (const QString &line : plain.split(QStringLiteral("\r\n")))
        QVERIFY2(line.size() < 200, qPrintable(line.left(80)));

    const QString htmlFile = dir.filePath(QStringLiteral("out.html"));
    HtmlPageSink html(htmlFile, {false, false});
    const QString markup = QString::fromUtf8(Render(html, htmlFile));
    // In a cell of the page's table, or placed on its own where it overlaps another.
    for (const QString &expected : texts)
        QVERIFY2(markup.contains(QLatin1Char('>') + expected + QStringLiteral("</td>")) ||
                     markup.contains(QLatin1Char('>') + expected + QStringLiteral("</div>")),
                 qPrintable(expected));
    QVERIFY(!markup.contains(QStringLiteral("nan")));

    const QString rtfFile = dir.filePath(QStringLiteral("out.rtf"));
    RtfPageSink rtf(rtfFile);
    const QString document = QString::fromLatin1(Render(rtf, rtfFile));
    for (const QString &expected : texts)
        QVERIFY2(document.contains(QLatin1Char(' ') + expected + QLatin1Char('}')), qPrintable(expected));
    QVERIFY(!document.contains(QStringLiteral("nan")));

    const QString pdfFile = dir.filePath(QStringLiteral("out.pdf"));
    PdfPageSink pdf(pdfFile);
    QVERIFY(Render(pdf, pdfFile).startsWith("%PDF-"));
}

QORLO_TEST_MAIN(TestRenderBadInput)
#include "tst_render_bad_input.moc"
