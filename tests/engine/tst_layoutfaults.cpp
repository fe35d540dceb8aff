// Layout faults seen on real reports, each against expected output and the independent readers: group
// headers on continued pages, footers kept with their records, groups kept together, totals in the
// first column, long texts, and characters the report font lacks.

#include "EngineData.h"
#include "EngineOracles.h"
#include "Readers.h"
#include "TestMain.h"
#include "engine/Application.h"
#include "engine/Report.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;
using namespace EngineData;
using namespace EngineOracles;

namespace {

// The body lines of a page of text: the page header, captions and footer left out.
QStringList BodyLines(const QString &page)
{
    QStringList lines;
    for (const QString &line : page.split(u"\r\n"_s)) {
        const QString text = line.simplified();
        if (!text.isEmpty() && !text.startsWith(u"Order Customer"_s) && !text.startsWith(u"Page "_s))
            lines.append(text);
    }
    return lines;
}

// Whether pdffonts lists every font of the file as embedded.
bool AllEmbedded(const QString &fonts)
{
    const QStringList lines = fonts.split(u'\n', Qt::SkipEmptyParts);
    return lines.size() > 2 && std::all_of(lines.begin() + 2, lines.end(), [](const QString &line) {
               const QStringList fields = line.split(u' ', Qt::SkipEmptyParts);
               return fields.size() > 5 && fields[fields.size() - 5] == u"yes"_s;
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
    const QDir source(TestSupport::DataFile(u"engine/layout"_s));
    for (const QString &name : source.entryList({u"*.rpt"_s}))
        QVERIFY(QFile::copy(source.filePath(name), m_dir.filePath(name)));
    QVERIFY(MakeOrders(m_dir.filePath(u"layout.db"_s)));
}

QString TestLayoutFaults::exportReport(const QString &name, int format, const QString &extension)
{
    auto report = m_application.OpenReport(m_dir.filePath(name + u".rpt"_s));
    const QString target = m_dir.filePath(u"%1.%2.%3"_s.arg(name).arg(format).arg(extension));
    report->ExportOptions().FormatType = format;
    report->ExportOptions().DiskFileName = target;
    report->ExportOptions().HTMLFileName = target;
    report->Export(false);
    return target;
}

QStringList TestLayoutFaults::textPages(const QString &name)
{
    const QByteArray bytes = ReadBytes(exportReport(name, PaginatedTextFormat, u"txt"_s));
    if (!bytes.startsWith("\xEF\xBB\xBF")) // these reports ask for UTF-8, which starts with its mark
        return {u"no byte-order mark"_s};
    const QString text = QString::fromUtf8(bytes);
    const QString golden = Golden(u"engine/golden/layout/%1.10.txt"_s.arg(name), text);
    if (text != golden)
        return {u"differs from the expected file"_s};
    return text.split(u'\f');
}

void TestLayoutFaults::groupHeadersContinueAndFootersStayWithRecords()
{
    const QStringList pages = textPages(u"continued"_s);
    QVERIFY2(pages.size() == 4, qPrintable(pages.join(u"\n----\n"_s)));
    // The 37th northern order would fill page 1; it goes over with the total, so the total is not alone.
    QVERIFY(BodyLines(pages[0]).last().startsWith(u"36 "_s));
    QCOMPARE(BodyLines(pages[1]).mid(0, 3),
             (QStringList{u"Region: North (continued)"_s, u"37 Łukasz Wiśniewski 462.50"_s,
                          u"Total North 8,787.50"_s}));
    // The southern orders run from page 2 to page 4, each continued page headed by their region.
    for (int page = 2; page <= 3; ++page)
        QCOMPARE(BodyLines(pages[page]).first(), u"Region: South (continued)"_s);
    for (const QString &page : pages) {
        const QStringList body = BodyLines(page);
        QVERIFY2(body.isEmpty() || !body.first().startsWith(u"Total"_s), qPrintable(page));
        QVERIFY2(body.isEmpty() || !body.last().startsWith(u"Region:"_s), qPrintable(page));
    }
}

void TestLayoutFaults::groupsKeptTogether()
{
    // Three cities of 30 orders: the second does not fit below the first, so each has a page.
    const QStringList pages = textPages(u"keep-together"_s);
    QVERIFY2(pages.size() == 3, qPrintable(pages.join(u"\n----\n"_s)));
    const QStringList cities{u"Gdańsk"_s, u"Kraków"_s, u"Łódź"_s};
    for (int i = 0; i < 3; ++i) {
        const QStringList body = BodyLines(pages[i]).mid(i == 0 ? 1 : 0); // the title heads page 1
        QVERIFY2(body.first().startsWith(u"City: "_s + cities[i]), qPrintable(pages[i]));
        QVERIFY2(body.last().startsWith(u"Total "_s + cities[i]), qPrintable(pages[i]));
    }

    // A sub-report in the group's footer counts: with it no two cities fit on a page, so each has
    // one, which its sub-report ends.
    const QStringList withSubreport = textPages(u"keep-together-subreport"_s);
    QVERIFY2(withSubreport.size() == 3, qPrintable(withSubreport.join(u"\n----\n"_s)));
    for (int i = 0; i < 3; ++i) {
        const QStringList body = BodyLines(withSubreport[i]).mid(i == 0 ? 1 : 0);
        QVERIFY2(body.first().startsWith(u"City: "_s + cities[i]), qPrintable(withSubreport[i]));
        QVERIFY2(body.contains(u"Largest orders of the city"_s), qPrintable(withSubreport[i]));
    }

    // Without keeping groups together, the sub-report's title still never stands alone at the foot of a page.
    const QString loose = m_dir.filePath(u"loose.rpt"_s);
    TestSupport::WriteFile(
        loose,
        ReadBytes(m_dir.filePath(u"keep-together-subreport.rpt"_s)).replace(" keepTogether=\"true\"", ""));
    const QStringList loosePages =
        QString::fromUtf8(ReadBytes(exportReport(u"loose"_s, PaginatedTextFormat, u"txt"_s))).split(u'\f');
    QVERIFY2(loosePages.size() >= 2, qPrintable(loosePages.join(u"\n----\n"_s)));
    for (const QString &page : loosePages)
        QVERIFY2(BodyLines(page).value(BodyLines(page).size() - 1) != u"Largest orders of the city"_s,
                 qPrintable(page));
}

void TestLayoutFaults::totalInTheFirstColumn()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(u"pdftotext"_s).isEmpty(), u"poppler-utils"_s);
    const QString pdf =
        TestSupport::PdfText(exportReport(u"first-column-total"_s, PdfFormat, u"pdf"_s), 0, true);
    QCOMPARE(pdf, Golden(u"engine/golden/layout/first-column-total.31.pdf.txt"_s, pdf));
    // The label has a line of its own, and the count of orders stands under the order numbers.
    const QStringList lines = pdf.split(u'\n');
    const auto label = std::find_if(lines.begin(), lines.end(),
                                    [](const QString &line) { return line.trimmed() == u"Total Kraków"_s; });
    QVERIFY2(label != lines.end(), qPrintable(pdf));
    QVERIFY2(QRegularExpression(u"^\\s+1\\s+1,625\\.00$"_s).match(*(label + 1)).hasMatch(),
             qPrintable(*(label + 1)));
    QVERIFY(pdf.contains(QRegularExpression(u"Grand total\\n\\s+5\\s+8,125\\.00"_s)));

    const QString rtf = ReadUtf8(exportReport(u"first-column-total"_s, RichTextFormat, u"rtf"_s));
    QCOMPARE(rtf, Golden(u"engine/golden/layout/first-column-total.4.rtf"_s, rtf));

    QORLO_REQUIRE_PEER(QFileInfo::exists(TestSupport::DebianPython()), u"python3-xlrd"_s);
    // In a workbook the city leads every row; without groups the order numbers do, and their count
    // goes below the label.
    const QString cells = XlsCells(exportReport(u"first-column-grand-total"_s, Excel80Format, u"xls"_s));
    QCOMPARE(cells, Golden(u"engine/golden/layout/first-column-grand-total.29.xls.txt"_s, cells));
    QVERIFY2(cells.contains(u"A7 text \"Grand total\" bold\nA8 number 5.0 bold\nC8 number 8125.0"_s),
             qPrintable(cells));
}

void TestLayoutFaults::longTextsEndInEllipsisOrWrap()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(u"pdftotext"_s).isEmpty(), u"poppler-utils"_s);
    const QString pdf = TestSupport::PdfText(exportReport(u"long-text"_s, PdfFormat, u"pdf"_s), 0, true);
    QCOMPARE(pdf, Golden(u"engine/golden/layout/long-text.31.pdf.txt"_s, pdf));
    // The short column ends the note in "…"; the wrapped one shows every word on lines of its own.
    QVERIFY2(pdf.contains(QRegularExpression(u"Deliver to the back[^\\n]*…"_s)), qPrintable(pdf));
    const QString flat = TestSupport::PdfText(m_dir.filePath(u"long-text.31.pdf"_s));
    for (const char *words : {"ring twice and", "porter to open the gate"})
        QVERIFY2(flat.contains(QLatin1String(words)), words);
    const QString html = ReadUtf8(exportReport(u"long-text"_s, HtmlFormat, u"html"_s));
    QCOMPARE(html, Golden(u"engine/golden/layout/long-text.24.html"_s, html));
    QVERIFY(html.contains(u"…"_s));
}

void TestLayoutFaults::wordProcessorKeepsColumns()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(u"soffice"_s).isEmpty(),
                       u"LibreOffice (libreoffice-writer-nogui)"_s);
    const QString rtf = exportReport(u"long-text"_s, RichTextFormat, u"rtf"_s);
    QCOMPARE(ReadUtf8(rtf), Golden(u"engine/golden/layout/long-text.4.rtf"_s, ReadUtf8(rtf)));
    const QString out = m_dir.filePath(u"converted"_s);
    QVERIFY(TestSupport::ConvertWithLibreOffice({rtf}, u"pdf"_s, out));
    const QString text = TestSupport::PdfText(out + u"/long-text.4.pdf"_s, 0, true);
    // Every amount ends at the same place: no long note pushed it a tab stop to the right.
    QList<qsizetype> ends;
    for (const QString &line : text.split(u'\n'))
        if (QRegularExpression(u"\\d\\.\\d\\d$"_s).match(line).hasMatch())
            ends.append(line.size());
    QVERIFY2(ends.size() == 5, qPrintable(text));
    QVERIFY2(
        std::all_of(ends.begin(), ends.end(), [&](qsizetype end) { return qAbs(end - ends.first()) <= 1; }),
        qPrintable(text));
}

void TestLayoutFaults::charactersFromFallbackFonts()
{
    QORLO_REQUIRE_PEER(!TestSupport::FindProgram(u"pdffonts"_s).isEmpty(), u"poppler-utils"_s);
    const QString pdf = exportReport(u"long-text"_s, PdfFormat, u"pdf"_s);
    // pdftotext may name a shared glyph by its compatibility character; the normal form is the name.
    QVERIFY2(
        TestSupport::PdfText(pdf, 0, true).normalized(QString::NormalizationForm_KC).contains(ChineseName),
        qPrintable(TestSupport::PdfText(pdf, 0, true)));
    const QString fonts = QString::fromUtf8(TestSupport::ProgramOutput(u"pdffonts"_s, {pdf}));
    // A Chinese name in the simplified Chinese face, not in whichever CJK face comes first.
    QVERIFY2(fonts.contains(u"NotoSansCJKsc"_s) && !fonts.contains(u"NotoSansCJKjp"_s), qPrintable(fonts));
    QVERIFY2(AllEmbedded(fonts), qPrintable(fonts));
}

QORLO_TEST_MAIN(TestLayoutFaults)
#include "tst_layoutfaults.moc"
