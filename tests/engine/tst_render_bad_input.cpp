#include "engine/page/HtmlPageSink.h"
#include "engine/page/PdfPageSink.h"
#include "engine/page/RtfPageSink.h"
#include "engine/page/TextPageSink.h"
#include "Files.h"
#include "PageSample.h"
#include "TestMain.h"

#include <QDir>
#include <QTemporaryDir>
#include <limits>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;

class TestRenderBadInput : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void hostileGeometry();
    void unwritableTargets();
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
    page.texts.append(PageSample::Text(nan, nan, nan, u"nowhere"_s));
    page.texts.append(PageSample::Text(huge, huge, huge, u"far away"_s, Qt::AlignRight));
    page.texts.append(PageSample::Text(-huge, -50, 10, u"far left"_s, Qt::AlignHCenter));
    PageText big = PageSample::Text(40, 40, 100, u"big and tiny"_s);
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
    return sink.failed() ? QByteArray() : TestSupport::ReadFile(file);
}

} // namespace

void TestRenderBadInput::hostileGeometry()
{
    QTemporaryDir dir;
    const QStringList texts{u"nowhere"_s, u"far away"_s, u"far left"_s, u"big and tiny"_s};

    const QString textFile = dir.filePath(u"out.txt"_s);
    TextPageSink text(textFile, {10, 40, true});
    const QString plain = QString::fromUtf8(Render(text, textFile));
    for (const QString &expected : texts)
        QVERIFY2(plain.contains(expected), qPrintable(expected));
    QCOMPARE(plain.count(u"big and tiny"_s), 3);
    for (const QString &line : plain.split(u"\r\n"_s))
        QVERIFY2(line.size() < 200, qPrintable(line.left(80)));

    const QString htmlFile = dir.filePath(u"out.html"_s);
    HtmlPageSink html(htmlFile, {false, false});
    const QString markup = QString::fromUtf8(Render(html, htmlFile));
    // In a cell of the page's table, or placed on its own where it overlaps another.
    for (const QString &expected : texts)
        QVERIFY2(markup.contains(u'>' + expected + u"</td>"_s) ||
                     markup.contains(u'>' + expected + u"</div>"_s),
                 qPrintable(expected));
    QVERIFY(!markup.contains(u"nan"_s));

    const QString rtfFile = dir.filePath(u"out.rtf"_s);
    RtfPageSink rtf(rtfFile);
    const QString document = QString::fromLatin1(Render(rtf, rtfFile));
    for (const QString &expected : texts)
        QVERIFY2(document.contains(u' ' + expected + u'}'), qPrintable(expected));
    QVERIFY(!document.contains(u"nan"_s));

    const QString pdfFile = dir.filePath(u"out.pdf"_s);
    PdfPageSink pdf(pdfFile);
    QVERIFY(Render(pdf, pdfFile).startsWith("%PDF-"));
}

// Each renderer names a target it cannot write, and leaves nothing behind.
void TestRenderBadInput::unwritableTargets()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(u"missing/out"_s);
    std::unique_ptr<PageSink> sinks[] = {std::make_unique<TextPageSink>(file, TextPageOptions{}),
                                         std::make_unique<HtmlPageSink>(file, HtmlPageOptions{false, false}),
                                         std::make_unique<HtmlPageSink>(file, HtmlPageOptions{true, true}),
                                         std::make_unique<RtfPageSink>(file),
                                         std::make_unique<PdfPageSink>(file)};
    for (const auto &sink : sinks) {
        PageSample::Render(*sink, PageSample::Setup(false), 2);
        QVERIFY(sink->failed());
        QVERIFY2(sink->errorString().startsWith(u"Cannot write "_s + file), qPrintable(sink->errorString()));
    }
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

QORLO_TEST_MAIN(TestRenderBadInput)
#include "tst_render_bad_input.moc"
