// Layout faults seen on real reports, each against expected output and the independent readers: group
// headers on continued pages, footers kept with their records, groups kept together, totals in the
// first column, long texts, and characters the report font lacks.

#include "EngineData.h"
#include "EngineOracles.h"
#include "Files.h"
#include "Readers.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Engine;
using namespace EngineData;
using namespace EngineOracles;

namespace {

// The body lines of a page of text: the page header, captions and footer left out.
QStringList BodyLines(const QString &page)
{
    QStringList lines;
    for (const QString &line : page.split(QStringLiteral("\r\n"))) {
        const QString text = line.simplified();
        if (!text.isEmpty() && !text.startsWith(QLatin1String("Order Customer")) &&
            !text.startsWith(QLatin1String("Page ")))
            lines.append(text);
    }
    return lines;
}

// Whether pdffonts lists every font of the file as embedded.
bool AllEmbedded(const QString &fonts)
{
    const QStringList lines = fonts.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.size() > 2 && std::all_of(lines.begin() + 2, lines.end(), [](const QString &line) {
               const QStringList fields = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
               return fields.size() > 5 && fields[fields.size() - 5] == QLatin1String("yes");
           });
}

} // namespace

class TestLayoutFaults : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void groupHeadersContinueAndFootersStayWithRecords();
    void groupsKeptTogether();
    void totalInTheFirstColumn();
    void longTextsEndInEllipsisOrWrap();
    void wordProcessorKeepsColumns();
    void charactersFromFallbackFonts();

private:
    QString exportReport(const QString &name, int format, const QString &extension);
    QStringList textPages(const QString &name);

    QTemporaryDir m_dir;
    Application m_application;
};

void TestLayoutFaults::initTestCase()
{
    QVERIFY(m_dir.isValid());
    const QDir source(TestSupport::DataFile(QStringLiteral("engine/layout")));
    for (const QString &name : source.entryList({QStringLiteral("*.rpt")}))
        QVERIFY(QFile::copy(source.filePath(name), m_dir.filePath(name)));
    QVERIFY(MakeOrders(m_dir.filePath(QStringLiteral("layout.db"))));
}

QString TestLayoutFaults::exportReport(const QString &name, int format, const QString &extension)
{
    auto report = m_application.OpenReport(m_dir.filePath(name + QStringLiteral(".rpt")));
    const QString target = m_dir.filePath(QStringLiteral("%1.%2.%3").arg(name).arg(format).arg(extension));
    report->ExportOptions().FormatType = format;
    report->ExportOptions().DiskFileName = target;
    report->ExportOptions().HTMLFileName = target;
    report->Export(false);
    return target;
}

QStringList TestLayoutFaults::textPages(const QString &name)
{
    QFile file(exportReport(name, PaginatedTextFormat, QStringLiteral("txt")));
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (!bytes.startsWith("\xEF\xBB\xBF")) // these reports ask for UTF-8, which starts with its mark
        return {QStringLiteral("no byte-order mark")};
    const QString text = QString::fromUtf8(bytes);
    const QString golden = Golden(QStringLiteral("engine/golden/layout/%1.10.txt").arg(name), text);
    if (text != golden)
        return {QStringLiteral("differs from the expected file")};
    return text.split(QLatin1Char('\f'));
}

void TestLayoutFaults::groupHeadersContinueAndFootersStayWithRecords()
{
    const QStringList pages = textPages(QStringLiteral("continued"));
    QVERIFY2(pages.size() == 4, qPrintable(pages.join(QStringLiteral("\n----\n"))));
    // The 37th northern order would fill page 1; it goes over with the total, so the total is not alone.
    QVERIFY(BodyLines(pages[0]).last().startsWith(QLatin1String("36 ")));
    QCOMPARE(BodyLines(pages[1]).mid(0, 3), (QStringList{QStringLiteral("Region: North (continued)"),
                                                         QStringLiteral("37 Łukasz Wiśniewski 462.50"),
                                                         QStringLiteral("Total North 8,787.50")}));
    // The southern orders run from page 2 to page 4, each continued page headed by their region.
    for (int page = 2; page <= 3; ++page)
        QCOMPARE(BodyLines(pages[page]).first(), QStringLiteral("Region: South (continued)"));
    for (const QString &page : pages) {
        const QStringList body = BodyLines(page);
        QVERIFY2(body.isEmpty() || !body.first().startsWith(QLatin1String("Total")), qPrintable(page));
        QVERIFY2(body.isEmpty() || !body.last().startsWith(QLatin1String("Region:")), qPrintable(page));
    }
}

void TestLayoutFaults::groupsKeptTogether()
{
    // Three cities of 30 orders: the second does not fit below the first, so each has a page.
    const QStringList pages = textPages(QStringLiteral("keep-together"));
    QVERIFY2(pages.size() == 3, qPrintable(pages.join(QStringLiteral("\n----\n"))));
    const QStringList cities{QStringLiteral("Gdańsk"), QStringLiteral("Kraków"), QStringLiteral("Łódź")};
    for (int i = 0; i < 3; ++i) {
        const QStringList body = BodyLines(pages[i]).mid(i == 0 ? 1 : 0); // the title heads page 1
        QVERIFY2(body.first().startsWith(QStringLiteral("City: ") + cities[i]), qPrintable(pages[i]));
        QVERIFY2(body.last().startsWith(QStringLiteral("Total ") + cities[i]), qPrintable(pages[i]));
    }
}

void TestLayoutFaults::totalInTheFirstColumn()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(QStringLiteral("pdftotext")).isEmpty(),
                       QStringLiteral("poppler-utils"));
    const QString pdf = TestSupport::PdfText(
        exportReport(QStringLiteral("first-column-total"), PdfFormat, QStringLiteral("pdf")), 0, true);
    QCOMPARE(pdf, Golden(QStringLiteral("engine/golden/layout/first-column-total.31.pdf.txt"), pdf));
    // The label has a line of its own, and the count of orders stands under the order numbers.
    const QStringList lines = pdf.split(QLatin1Char('\n'));
    const auto label = std::find_if(lines.begin(), lines.end(), [](const QString &line) {
        return line.trimmed() == QStringLiteral("Total Kraków");
    });
    QVERIFY2(label != lines.end(), qPrintable(pdf));
    QVERIFY2(QRegularExpression(QStringLiteral("^\\s+1\\s+1,625\\.00$")).match(*(label + 1)).hasMatch(),
             qPrintable(*(label + 1)));
    QVERIFY(pdf.contains(QRegularExpression(QStringLiteral("Grand total\\n\\s+5\\s+8,125\\.00"))));

    const QString rtf =
        ReadUtf8(exportReport(QStringLiteral("first-column-total"), RichTextFormat, QStringLiteral("rtf")));
    QCOMPARE(rtf, Golden(QStringLiteral("engine/golden/layout/first-column-total.4.rtf"), rtf));

    QORLO_REQUIRE_PEER(QFileInfo::exists(TestSupport::DebianPython()), QStringLiteral("python3-xlrd"));
    // In a workbook the city leads every row; without groups the order numbers do, and their count
    // goes below the label.
    const QString cells = XlsCells(
        exportReport(QStringLiteral("first-column-grand-total"), Excel80Format, QStringLiteral("xls")));
    QCOMPARE(cells,
             Golden(QStringLiteral("engine/golden/layout/first-column-grand-total.29.xls.txt"), cells));
    QVERIFY2(
        cells.contains(QStringLiteral("A7 text \"Grand total\" bold\nA8 number 5.0 bold\nC8 number 8125.0")),
        qPrintable(cells));
}

void TestLayoutFaults::longTextsEndInEllipsisOrWrap()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(QStringLiteral("pdftotext")).isEmpty(),
                       QStringLiteral("poppler-utils"));
    const QString pdf = TestSupport::PdfText(
        exportReport(QStringLiteral("long-text"), PdfFormat, QStringLiteral("pdf")), 0, true);
    QCOMPARE(pdf, Golden(QStringLiteral("engine/golden/layout/long-text.31.pdf.txt"), pdf));
    // The short column ends the note in "…"; the wrapped one shows every word on lines of its own.
    QVERIFY2(pdf.contains(QRegularExpression(QStringLiteral("Deliver to the back[^\\n]*…"))),
             qPrintable(pdf));
    const QString flat = TestSupport::PdfText(m_dir.filePath(QStringLiteral("long-text.31.pdf")));
    for (const char *words : {"ring twice and", "porter to open the gate"})
        QVERIFY2(flat.contains(QLatin1String(words)), words);
    const QString html =
        ReadUtf8(exportReport(QStringLiteral("long-text"), HtmlFormat, QStringLiteral("html")));
    QCOMPARE(html, Golden(QStringLiteral("engine/golden/layout/long-text.24.html"), html));
    QVERIFY(html.contains(QStringLiteral("…")));
}

void TestLayoutFaults::wordProcessorKeepsColumns()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(QStringLiteral("soffice")).isEmpty(),
                       QStringLiteral("LibreOffice (libreoffice-writer-nogui)"));
    const QString rtf = exportReport(QStringLiteral("long-text"), RichTextFormat, QStringLiteral("rtf"));
    QCOMPARE(ReadUtf8(rtf), Golden(QStringLiteral("engine/golden/layout/long-text.4.rtf"), ReadUtf8(rtf)));
    const QString out = m_dir.filePath(QStringLiteral("converted"));
    QVERIFY(TestSupport::ConvertWithLibreOffice({rtf}, QStringLiteral("pdf"), out));
    const QString text = TestSupport::PdfText(out + QStringLiteral("/long-text.4.pdf"), 0, true);
    // Every amount ends at the same place: no long note pushed it a tab stop to the right.
    QList<qsizetype> ends;
    for (const QString &line : text.split(QLatin1Char('\n')))
        if (QRegularExpression(QStringLiteral("\\d\\.\\d\\d$")).match(line).hasMatch())
            ends.append(line.size());
    QVERIFY2(ends.size() == 5, qPrintable(text));
    QVERIFY2(
        std::all_of(ends.begin(), ends.end(), [&](qsizetype end) { return qAbs(end - ends.first()) <= 1; }),
        qPrintable(text));
}

void TestLayoutFaults::charactersFromFallbackFonts()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(QStringLiteral("pdffonts")).isEmpty(),
                       QStringLiteral("poppler-utils"));
    const QString pdf = exportReport(QStringLiteral("long-text"), PdfFormat, QStringLiteral("pdf"));
    // pdftotext may name a shared glyph by its compatibility character; the normal form is the name.
    QVERIFY2(
        TestSupport::PdfText(pdf, 0, true).normalized(QString::NormalizationForm_KC).contains(ChineseName),
        qPrintable(TestSupport::PdfText(pdf, 0, true)));
    const QString fonts = QString::fromUtf8(TestSupport::ProgramOutput(QStringLiteral("pdffonts"), {pdf}));
    // A Chinese name in the simplified Chinese face, not in whichever CJK face comes first.
    QVERIFY2(fonts.contains(QLatin1String("NotoSansCJKsc")) &&
                 !fonts.contains(QLatin1String("NotoSansCJKjp")),
             qPrintable(fonts));
    QVERIFY2(AllEmbedded(fonts), qPrintable(fonts));
}

QORLO_TEST_MAIN(TestLayoutFaults)
#include "tst_layoutfaults.moc"
