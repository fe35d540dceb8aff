// Every demo report in every export format, against expected files (binary formats through their
// readers' text), and the content of the Excel, word-processor and PDF files as their readers see it.

#include "EngineOracles.h"
#include "Readers.h"
#include "engine/Application.h"
#include "engine/Report.h"
#include "engine/page/HtmlPageSink.h"

#include <QLocale>
#include <QRegularExpression>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;
using namespace Engine;
using namespace TestSupport;

namespace {

enum class Reader { Text, Excel, Pdf };

struct Format
{
    int type;
    const char *extension;
    Reader reader;
};

const Format Formats[] = {{CrystalReportFormat, "rpt", Reader::Text},
                          {RecordFormat, "txt", Reader::Text},
                          {RichTextFormat, "rtf", Reader::Text},
                          {CharSeparatedFormat, "csv", Reader::Text},
                          {TabSeparatedValuesFormat, "tsv", Reader::Text},
                          {TextFormat, "txt", Reader::Text},
                          {TabSeparatedTextFormat, "tsv", Reader::Text},
                          {PaginatedTextFormat, "txt", Reader::Text},
                          {WordFormat, "doc", Reader::Text},
                          {HtmlFormat, "html", Reader::Text},
                          {Excel70Format, "xls", Reader::Excel},
                          {Excel70TabularFormat, "xls", Reader::Excel},
                          {Excel80Format, "xls", Reader::Excel},
                          {Excel80TabularFormat, "xls", Reader::Excel},
                          {PdfFormat, "pdf", Reader::Pdf},
                          {DhtmlFormat, "html", Reader::Text},
                          {XmlFormat, "xml", Reader::Text},
                          {ExcelDataOnlyFormat, "xls", Reader::Excel}};

QString FileName(const QString &report, const Format &format)
{
    return u"%1.%2.%3"_s.arg(report).arg(format.type).arg(QLatin1String(format.extension));
}

const Format &FormatOf(int type)
{
    return *std::find_if(std::begin(Formats), std::end(Formats),
                         [type](const Format &f) { return f.type == type; });
}

// Where a line of a report shows up: details in every reader, totals in the page formats and the Excel
// workbooks with totals (27 to 30), a sub-report's lines in the page formats only. A report with groups
// has its details in a workbook as sheet details, the group fields first.
enum class Part { Detail, Total, Subreport, SheetDetail };

// Lines a report must show, as the demo database gives them: `formats` has a letter a column, n plain
// number, q number with thousands, m money, d date, t text.
struct Expected
{
    Part part;
    const char *formats;
    const char *sql;
};

struct DemoReport
{
    const char *name;
    QList<Expected> expected;
    // Whole-file expected outputs are kept for the short reports only; the rows, totals and pages of the
    // 3000-row ones are checked against the database below.
    bool golden = true;
};

const DemoReport Reports[] = {
    {"large-orders-alert",
     {{Part::Detail, "ndttm", "SELECT id, order_date, customer, product, amount FROM sales"}},
     false},
    {"region-summary",
     {{Part::Detail, "ttnm",
       "SELECT region, product, COUNT(*), SUM(amount) FROM sales WHERE region IN ('North', 'West') "
       "GROUP BY region, product"},
      {Part::Total, "tm", "SELECT 'Grand total', SUM(amount) FROM sales WHERE region IN ('North', 'West')"}}},
    {"regions-with-summary",
     {{Part::Detail, "tt", "SELECT region, manager FROM regions"},
      {Part::Subreport, "ttnm",
       "SELECT region, product, COUNT(*), SUM(amount) FROM sales GROUP BY region, product"},
      {Part::Subreport, "tm", "SELECT 'Grand total', SUM(amount) FROM sales"}}},
    {"sales-by-region",
     {{Part::Detail, "dtqm", "SELECT order_date, customer, quantity, amount FROM sales"},
      {Part::SheetDetail, "ttdtqm",
       "SELECT region, product, order_date, customer, quantity, amount FROM sales"},
      {Part::Total, "tm", "SELECT 'Total ' || product, SUM(amount) FROM sales GROUP BY region, product"},
      {Part::Total, "tqm",
       "SELECT 'Total ' || region, SUM(quantity), SUM(amount) FROM sales GROUP BY region"},
      {Part::Total, "tqm", "SELECT 'Grand total', SUM(quantity), SUM(amount) FROM sales"}},
     false},
    {"sales-parameters",
     {{Part::Detail, "dtttm",
       "SELECT order_date, region, customer, product, amount FROM sales WHERE region IN ('North', 'East') "
       "AND order_date BETWEEN '2024-03-01' AND '2024-03-31'"},
      {Part::Total, "tm",
       "SELECT 'Grand total', SUM(amount) FROM sales WHERE region IN ('North', 'East') "
       "AND order_date BETWEEN '2024-03-01' AND '2024-03-31'"}}},
    // Formula fields, a running total, conditional looks, a logo and report sections.
    {"invoice",
     {{Part::Detail, "ndtqmmmmm",
       "SELECT ROW_NUMBER() OVER (ORDER BY order_date, id), order_date, product, quantity, unit_price, "
       "amount, amount * 0.2, amount * 1.2, SUM(amount * 1.2) OVER (ORDER BY order_date, id) FROM sales "
       "WHERE customer = 'Crane''s Hardware' AND order_date LIKE '2024-03-%' ORDER BY order_date, id"},
      {Part::Total, "tmmm",
       "SELECT 'Grand total', SUM(amount), SUM(amount * 0.2), SUM(amount * 1.2) FROM sales "
       "WHERE customer = 'Crane''s Hardware' AND order_date LIKE '2024-03-%'"}}},
    // Charts and cross-tabs over the summaries; the records themselves are hidden in the pages.
    {"sales-dashboard",
     {{Part::SheetDetail, "tttnnm",
       "SELECT region, product, substr(order_date, 1, 7), COUNT(*), SUM(quantity), SUM(amount) FROM sales "
       "GROUP BY 1, 2, 3"},
      {Part::Total, "tqqm",
       "SELECT 'Total ' || product, COUNT(*), SUM(quantity), SUM(amount) FROM sales GROUP BY region, "
       "product"},
      {Part::Total, "tqqm",
       "SELECT 'Total ' || region, COUNT(*), SUM(quantity), SUM(amount) FROM sales GROUP BY region"},
      {Part::Total, "tqqm", "SELECT 'Grand total', COUNT(*), SUM(quantity), SUM(amount) FROM sales"}}},
    // A sub-report in each region's footer, linked by the region.
    {"region-orders",
     {{Part::Detail, "tqm", "SELECT product, COUNT(*), SUM(amount) FROM sales GROUP BY region, product"},
      {Part::SheetDetail, "ttnm",
       "SELECT region, product, COUNT(*), SUM(amount) FROM sales GROUP BY region, product"},
      {Part::Total, "tqm", "SELECT 'Total ' || region, COUNT(*), SUM(amount) FROM sales GROUP BY region"},
      {Part::Total, "tqm", "SELECT 'Grand total', COUNT(*), SUM(amount) FROM sales"},
      {Part::Subreport, "ndtm",
       "SELECT id, order_date, customer, amount FROM (SELECT *, ROW_NUMBER() OVER (PARTITION BY region "
       "ORDER BY amount DESC, id) AS place FROM sales) WHERE place <= 5"}}}};

// A line as a page shows it: the formatted cells, one blank between them.
QString ShownLine(const char *formats, const QSqlQuery &query)
{
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    QStringList cells;
    for (int i = 0; formats[i]; ++i) {
        const QVariant value = query.value(i);
        switch (formats[i]) {
        case 'n': cells.append(QString::number(value.toLongLong())); break;
        case 'q': cells.append(english.toString(value.toLongLong())); break;
        case 'm': cells.append(english.toString(value.toDouble(), 'f', 2)); break;
        case 'd':
            cells.append(QDate::fromString(value.toString(), Qt::ISODate).toString(u"dd-MMM-yyyy"_s));
            break;
        default: cells.append(value.toString());
        }
    }
    return cells.join(u' ');
}

// A row as xls_dump.py shows a workbook's row: its cells that are not empty, numbers and dates typed.
QString SheetRow(const char *formats, const QSqlQuery &query)
{
    QStringList cells;
    for (int i = 0; formats[i]; ++i) {
        const QVariant value = query.value(i);
        switch (formats[i]) {
        case 'd': cells.append(u"date "_s + value.toString()); break;
        case 't': cells.append(u"text "_s + value.toString()); break;
        default: cells.append(u"number "_s + QString::number(value.toDouble(), 'f', 2));
        }
    }
    return cells.join(u'|');
}

// The rows of an xls_dump.py listing, in the form of SheetRow.
QSet<QString> SheetRows(const QString &dump)
{
    static const QRegularExpression cell(
        u"^[A-Z]+(\\d+) (\\w+) (?:\"(.*)\"|([-\\d.e+]+)(?: (\\d{4}-\\d\\d-\\d\\d))?)"_s);
    QMap<std::pair<int, int>, QStringList> rows; // by sheet and row
    int sheet = 0;
    for (const QString &line : dump.split(u'\n')) {
        sheet += line.startsWith(u"sheet "_s) ? 1 : 0;
        const auto match = cell.match(line);
        if (!match.hasMatch())
            continue;
        const QString kind = match.captured(2);
        QString value = match.captured(3);
        if (kind == u"number"_s)
            value = QString::number(match.captured(4).toDouble(), 'f', 2);
        else if (kind == u"date"_s)
            value = match.captured(5);
        rows[{sheet, match.captured(1).toInt()}].append(kind + u' ' + value.replace(u"\\\""_s, u"\""_s));
    }
    QSet<QString> result;
    for (const QStringList &row : std::as_const(rows))
        result.insert(row.join(u'|'));
    return result;
}

// The text's lines with their blanks and tabs collapsed, as ShownLine writes them.
QSet<QString> PageLines(const QString &text)
{
    QSet<QString> lines;
    for (const QString &line : text.split(QRegularExpression(u"[\\r\\n\\f]"_s)))
        lines.insert(line.simplified());
    return lines;
}

// The first few wanted lines that are not there, for the failure message; empty when all are.
QString Missing(const QStringList &wanted, const QSet<QString> &lines)
{
    QStringList missing;
    for (const QString &line : wanted)
        if (!lines.contains(line) && missing.size() < 5)
            missing.append(line);
    return missing.join(u"\n"_s);
}

} // namespace

class TestDemoGolden : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void goldenFiles_data();
    void goldenFiles();
    void pagesAgree();
    void xmlHoldsEveryRecord();
    void pageFormatsShowTheLines();
    void excelWorkbooks();
    void wordProcessorText();
    void firstPagesLookAsBefore();

private:
    void exportAll(const QString &report);
    QString output(const QString &report, const Format &format) const;
    // The output as a reader sees it, with the run's date and folder masked.
    QString readable(const QString &report, const Format &format);
    // What the demo database says the report shows, as ShownLine or SheetRow writes it.
    QStringList expected(const DemoReport &report, const QList<Part> &parts, bool sheet);

    QTemporaryDir m_dir;
    Application m_application;
    QHash<QString, int> m_pages;
};

void TestDemoGolden::initTestCase()
{
    QVERIFY(m_dir.isValid());
    // The reports run on a copy, so that no export lands in the source tree.
    const QDir demo(QStringLiteral(QORLO_SOURCE_DIR "/demo"));
    for (const QString &name : demo.entryList(QDir::Files))
        QVERIFY(QFile::copy(demo.filePath(name), m_dir.filePath(name)));
    QVERIFY(QDir(m_dir.path()).mkdir(u"out"_s));
    for (const DemoReport &report : Reports)
        exportAll(QLatin1String(report.name));
    QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s);
    db.setDatabaseName(m_dir.filePath(u"demo.db"_s));
    QVERIFY(db.open());
}

void TestDemoGolden::exportAll(const QString &name)
{
    auto report = m_application.OpenReport(m_dir.filePath(name + u".rpt"_s));
    // The one demo report without defaults takes two of the four regions.
    if (name == u"region-summary"_s) {
        report->ParameterFields().Item(1).AddCurrentValue(u"North"_s);
        report->ParameterFields().Item(1).AddCurrentValue(u"West"_s);
    }
    ExportOptions &options = report->ExportOptions();
    for (const Format &format : Formats) {
        const QString target = output(name, format);
        options.FormatType = format.type;
        options.DiskFileName = target;
        options.HTMLFileName = target;
        options.XMLFileName = target;
        options.HTMLEnableSeparatedPages = format.type == DhtmlFormat;
        options.HTMLHasPageNavigator = format.type == DhtmlFormat;
        report->Export(false);
    }
    m_pages.insert(name, report->PrintingStatus().NumberOfPages());
}

QString TestDemoGolden::output(const QString &report, const Format &format) const
{
    return m_dir.filePath(u"out/"_s + FileName(report, format));
}

QString TestDemoGolden::readable(const QString &report, const Format &format)
{
    const QString path = output(report, format);
    QString text;
    switch (format.reader) {
    case Reader::Excel: text = EngineOracles::XlsCells(path); break;
    case Reader::Pdf: text = PdfText(path, 0, true); break;
    case Reader::Text:
        if (format.type != DhtmlFormat) {
            text = EngineOracles::ReadUtf8(path);
            break;
        }
        // One file a page: the pages one after another, each under its file name.
        for (int number = 1; number <= m_pages.value(report); ++number) {
            const QString page = HtmlPageSink::PageFileName(path, number);
            text += u"==> %1 <==\n"_s.arg(QFileInfo(page).fileName()) + EngineOracles::ReadUtf8(page);
        }
    }
    const QDate today = QDate::currentDate();
    return text.replace(m_dir.path(), u"<FOLDER>"_s).replace(today.toString(Qt::ISODate), u"<PRINT DATE>"_s);
}

QStringList TestDemoGolden::expected(const DemoReport &report, const QList<Part> &parts, bool sheet)
{
    QStringList lines;
    for (const Expected &part : report.expected) {
        if (!parts.contains(part.part))
            continue;
        QSqlQuery query;
        if (!query.exec(QString::fromLatin1(part.sql)))
            qFatal("%s: %s", part.sql, qPrintable(query.lastError().text()));
        while (query.next())
            lines.append(sheet ? SheetRow(part.formats, query) : ShownLine(part.formats, query));
    }
    return lines;
}

void TestDemoGolden::goldenFiles_data()
{
    QTest::addColumn<QString>("report");
    QTest::addColumn<int>("format");
    for (const DemoReport &report : Reports)
        for (int i = 0; report.golden && i < int(std::size(Formats)); ++i)
            QTest::newRow(qPrintable(FileName(QLatin1String(report.name), Formats[i])))
                << QString::fromLatin1(report.name) << i;
}

void TestDemoGolden::goldenFiles()
{
    QFETCH(QString, report);
    QFETCH(int, format);
    const Format &type = Formats[format];
    QORLO_REQUIRE_PEER(type.reader != Reader::Pdf || PopplerInstalled(), u"poppler-utils"_s);
    QORLO_REQUIRE_PEER(type.reader != Reader::Excel || XlrdInstalled(), u"python3-xlrd"_s);
    const QString golden =
        u"engine/golden/"_s + FileName(report, type) + (type.reader == Reader::Text ? QString() : u".txt"_s);
    // A runaway export is reported by its size rather than read into memory (remove the expected file to
    // write one that grows by much).
    const qint64 size = QFileInfo(output(report, type)).size();
    const QFileInfo expected(DataFile(golden));
    QVERIFY2(type.reader != Reader::Text || !expected.exists() || size <= 2 * expected.size() + 65536,
             qPrintable(u"%1 bytes written, %2 expected"_s.arg(size).arg(expected.size())));
    const QString actual = readable(report, type);
    QCOMPARE(actual, EngineOracles::Golden(golden, actual));
}

void TestDemoGolden::pagesAgree()
{
    QORLO_REQUIRE_PEER(PopplerInstalled(), u"poppler-utils"_s);
    const Format &text = FormatOf(PaginatedTextFormat);
    const Format &pdf = FormatOf(PdfFormat);
    for (const DemoReport &report : Reports) {
        const QString name = QLatin1String(report.name);
        const int count = m_pages.value(name);
        QVERIFY2(count > 0, report.name);
        QVERIFY2(PdfPages(output(name, pdf)) == count, qPrintable(name));
        const QStringList textPages = EngineOracles::ReadUtf8(output(name, text)).split(u'\f');
        // pdftotext ends every page with a form feed.
        QStringList pdfPages = readable(name, pdf).split(u'\f');
        QCOMPARE(pdfPages.takeLast().trimmed(), QString());
        // The separate HTML pages: one file a page.
        const QString html = output(name, FormatOf(DhtmlFormat));
        QVERIFY2(QFile::exists(HtmlPageSink::PageFileName(html, count)), qPrintable(name));
        QVERIFY2(!QFile::exists(HtmlPageSink::PageFileName(html, count + 1)), qPrintable(name));
        QCOMPARE(textPages.size(), count);
        QCOMPARE(pdfPages.size(), count);
        for (int i = 0; i < count; ++i) {
            const QString footer = u"Page %1 of %2"_s.arg(i + 1).arg(count);
            QVERIFY2(textPages[i].contains(footer), qPrintable(name + u' ' + footer));
            QVERIFY2(pdfPages[i].contains(footer), qPrintable(name + u' ' + footer));
        }
    }
}

void TestDemoGolden::xmlHoldsEveryRecord()
{
    // The XML export goes to its file in pieces; a 3000-row report must come out with each record once.
    QSqlQuery query;
    QVERIFY(query.exec(u"SELECT COUNT(*) FROM sales"_s) && query.next());
    const QString xml = EngineOracles::ReadUtf8(output(u"large-orders-alert"_s, FormatOf(XmlFormat)));
    QCOMPARE(xml.count(u"<Record>"_s), query.value(0).toInt());
    QVERIFY(xml.trimmed().endsWith(u"</Report>"_s));
}

void TestDemoGolden::pageFormatsShowTheLines()
{
    QORLO_REQUIRE_PEER(PopplerInstalled(), u"poppler-utils"_s);
    for (const DemoReport &report : Reports) {
        const QStringList wanted = expected(report, {Part::Detail, Part::Total, Part::Subreport}, false);
        QVERIFY(!wanted.isEmpty());
        for (const int type : {PdfFormat, PaginatedTextFormat, TextFormat}) {
            const Format &format = FormatOf(type);
            const QString missing = Missing(wanted, PageLines(readable(QLatin1String(report.name), format)));
            QVERIFY2(missing.isEmpty(),
                     qPrintable(FileName(QLatin1String(report.name), format) + u" lacks:\n"_s + missing));
        }
    }
}

void TestDemoGolden::excelWorkbooks()
{
    QORLO_REQUIRE_PEER(XlrdInstalled(), u"python3-xlrd"_s);
    for (const DemoReport &report : Reports) {
        const bool grouped = std::any_of(report.expected.begin(), report.expected.end(),
                                         [](const Expected &e) { return e.part == Part::SheetDetail; });
        const QStringList details = expected(report, {grouped ? Part::SheetDetail : Part::Detail}, true);
        const QStringList totals = expected(report, {Part::Total}, true);
        for (const Format &format : Formats) {
            if (format.reader != Reader::Excel)
                continue;
            const QString name = FileName(QLatin1String(report.name), format);
            const QSet<QString> rows = SheetRows(readable(QLatin1String(report.name), format));
            QVERIFY2(!rows.isEmpty(), qPrintable(name));
            QString missing = Missing(details, rows);
            QVERIFY2(missing.isEmpty(), qPrintable(name + u" lacks:\n"_s + missing));
            // The data-only workbook has the records alone.
            if (format.type == ExcelDataOnlyFormat) {
                for (const QString &total : totals)
                    QVERIFY2(!rows.contains(total), qPrintable(name + u" has "_s + total));
                continue;
            }
            missing = Missing(totals, rows);
            QVERIFY2(missing.isEmpty(), qPrintable(name + u" lacks:\n"_s + missing));
        }
    }
}

void TestDemoGolden::wordProcessorText()
{
    QORLO_REQUIRE_PEER(!LibreOffice().isEmpty(), u"LibreOffice (libreoffice-writer-nogui)"_s);
    QStringList files;
    for (const DemoReport &report : Reports)
        for (const int type : {RichTextFormat, WordFormat})
            files.append(output(QLatin1String(report.name), FormatOf(type)));
    // One conversion for every file: LibreOffice takes seconds to start.
    const QString out = m_dir.filePath(u"converted"_s);
    QVERIFY(ConvertWithLibreOffice(files, u"txt"_s, out));
    for (const DemoReport &report : Reports) {
        const QStringList wanted = expected(report, {Part::Detail, Part::Total, Part::Subreport}, false);
        for (const int type : {RichTextFormat, WordFormat}) {
            const Format &format = FormatOf(type);
            const QString txt = out + u'/' +
                                QFileInfo(output(QLatin1String(report.name), format)).completeBaseName() +
                                u".txt"_s;
            const QString missing = Missing(wanted, PageLines(EngineOracles::ReadUtf8(txt)));
            QVERIFY2(missing.isEmpty(), qPrintable(txt + u" lacks:\n"_s + missing));
        }
    }
}

// Page 1 of each PDF as pdftoppm draws it, against the expected picture: a layout fault moves or
// changes more than the few pixels that anti-aliasing may.
void TestDemoGolden::firstPagesLookAsBefore()
{
    QORLO_REQUIRE_PEER(!FindProgram(u"pdftoppm"_s).isEmpty(), u"pdftoppm (poppler-utils)"_s);
    for (const DemoReport &report : Reports) {
        const QString name = QLatin1String(report.name);
        const QImage page = EngineOracles::FirstPageImage(output(name, FormatOf(PdfFormat)), m_dir.path());
        QVERIFY2(!page.isNull(), report.name);
        const QImage expected = EngineOracles::GoldenImage(u"engine/golden/%1.page1.png"_s.arg(name), page);
        const double different = EngineOracles::DifferentPixels(page, expected);
        QVERIFY2(different < 0.002,
                 qPrintable(u"%1: %2% of the pixels differ"_s.arg(name).arg(different * 100, 0, 'f', 2)));
    }
}

QORLO_TEST_MAIN(TestDemoGolden)
#include "tst_demogolden.moc"
