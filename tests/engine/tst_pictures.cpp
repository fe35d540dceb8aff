// Pictures: a logo from a file in the page header and the report header, and a record's picture from a
// BLOB field (PNG or JPEG), each scaled into its box, as the PDF, HTML and RTF (read by LibreOffice)
// show them.

#include "EngineExports.h"
#include "EngineOracles.h"
#include "Files.h"
#include "Readers.h"
#include "TestMain.h"

#include <QBuffer>
#include <QRegularExpression>
#include <QSqlQuery>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

const QColor Blue(0, 0, 255);
const QColor Green(0, 160, 0);
const QColor Magenta(255, 0, 255);

QByteArray Encoded(const QColor &color, const QSize &size, const char *format)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

// A logo twice as wide as high in a box of 120 by 40 points: 80 by 40 at its centre.
const QString Layout = uR"(<layout>
  <pageHeader>Photos<picture file="logo.png" width="120" height="40" align="right"/></pageHeader>
  <column field="id" width="40"/>
  <column field="name" width="100"/>
  <reportHeader><picture file="logo.png" width="200" height="50" align="center"/></reportHeader>
  <details><picture field="photo" width="48" height="36"/></details>
</layout>)"_s;

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void picturesInThePdf();
    void picturesInHtmlAndRtf();
    void faultsNameThePicture();

private:
    QString exportReport(const QString &name, const QString &layout, int format)
    {
        return m_reports.exportReport(name, uR"(<title>Photos</title>
<table name="Photos" location="photos" dll="sqlite"><property name="Database">photos.db</property></table>
<query>SELECT id, name, photo FROM {Photos} ORDER BY id</query>
)"_s + layout,
                                      format);
    }

    TestSupport::ReportFolder m_reports;
};

void TestPictures::initTestCase()
{
    QImage logo(200, 100, QImage::Format_RGB32);
    logo.fill(Blue);
    QVERIFY(logo.save(m_reports.path(u"logo.png"_s)));
    QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s);
    db.setDatabaseName(m_reports.path(u"photos.db"_s));
    QVERIFY(db.open());
    QSqlQuery query(db);
    QVERIFY(query.exec(u"CREATE TABLE photos (id INTEGER, name TEXT, photo BLOB)"_s));
    QVERIFY(query.prepare(u"INSERT INTO photos VALUES (?, ?, ?)"_s));
    const QList<std::tuple<int, QString, QVariant>> rows = {
        {1, u"green png"_s, Encoded(Green, {40, 30}, "PNG")},
        {2, u"magenta jpeg"_s, Encoded(Magenta, {120, 30}, "JPEG")},
        {3, u"no picture"_s, QVariant(QMetaType(QMetaType::QByteArray))},
        {4, u"damaged"_s, QByteArray("\x89PNG not really", 15)}};
    for (const auto &[id, name, photo] : rows) {
        query.addBindValue(id);
        query.addBindValue(name);
        query.addBindValue(photo);
        QVERIFY(query.exec());
    }
}

void TestPictures::picturesInThePdf()
{
    const QString pdf = exportReport(u"photos"_s, Layout, PdfFormat);
    // pdfimages lists each picture once, the logo drawn twice included: logo, green, magenta.
    const QString list = QString::fromUtf8(TestSupport::ProgramOutput(u"pdfimages"_s, {u"-list"_s, pdf}));
    const QStringList images = list.split(u'\n', Qt::SkipEmptyParts).mid(2);
    QVERIFY2(images.size() >= 3, qPrintable(list));
    QVERIFY(list.contains(QRegularExpression(u"\\s200\\s+100\\s"_s)));
    QVERIFY(list.contains(QRegularExpression(u"\\s40\\s+30\\s"_s)));
    QVERIFY(list.contains(QRegularExpression(u"\\s120\\s+30\\s"_s)));
    QVERIFY(TestSupport::PdfText(pdf, 0, true).contains(u"damaged"_s));

    // At 72 dpi a point is a pixel. The page header's logo fills 80 by 40 points at the right margin;
    // the report header's 100 by 50 at the centre; the photos keep their proportions in 48 by 36.
    const QImage page = EngineOracles::FirstPageImage(pdf, m_reports.dir.path(), 72);
    QVERIFY(!page.isNull());
    const int headerLogo = EngineOracles::PixelsNear(page, Blue, QRect(420, 30, 150, 60));
    QVERIFY2(std::abs(headerLogo - 80 * 40) < 300, qPrintable(QString::number(headerLogo)));
    const int reportLogo = EngineOracles::PixelsNear(page, Blue, QRect(200, 80, 200, 80));
    QVERIFY2(std::abs(reportLogo - 100 * 50) < 400, qPrintable(QString::number(reportLogo)));
    const int green = EngineOracles::PixelsNear(page, Green);
    QVERIFY2(std::abs(green - 48 * 36) < 250, qPrintable(QString::number(green)));
    const int magenta = EngineOracles::PixelsNear(page, Magenta);
    QVERIFY2(std::abs(magenta - 48 * 12) < 150, qPrintable(QString::number(magenta)));
}

void TestPictures::picturesInHtmlAndRtf()
{
    const QString html = EngineOracles::ReadUtf8(exportReport(u"photos"_s, Layout, HtmlFormat));
    QCOMPARE(html.count(u"<img "_s), 4);
    const QRegularExpression source(u"src=\"data:image/png;base64,([A-Za-z0-9+/=]+)\""_s);
    QList<QColor> colors;
    for (const QRegularExpressionMatch &match : source.globalMatch(html)) {
        const QImage image = QImage::fromData(QByteArray::fromBase64(match.captured(1).toLatin1()));
        QVERIFY(!image.isNull());
        colors.append(image.pixelColor(image.width() / 2, image.height() / 2));
    }
    QCOMPARE(colors.size(), 4);
    QCOMPARE(colors.count(Blue), 2);
    QCOMPARE(colors.count(Green), 1);

    const QString rtf = exportReport(u"photos"_s, Layout, RichTextFormat);
    const QString out = m_reports.path(u"converted"_s);
    QVERIFY(TestSupport::ConvertWithLibreOffice({rtf}, u"pdf"_s, out));
    const QImage page =
        EngineOracles::FirstPageImage(QDir(out).filePath(u"photos.pdf"_s), m_reports.dir.path(), 72);
    QVERIFY(!page.isNull());
    QVERIFY2(std::abs(EngineOracles::PixelsNear(page, Blue) - (80 * 40 + 100 * 50)) < 1200,
             qPrintable(QString::number(EngineOracles::PixelsNear(page, Blue))));
    QVERIFY(EngineOracles::PixelsNear(page, Green) > 48 * 36 / 2);
}

void TestPictures::faultsNameThePicture()
{
    const QStringList faults[] = {
        {u"<reportHeader><picture file=\"nologo.png\"/></reportHeader>"_s,
         u"the picture file %1 cannot be read as PNG or JPEG"_s.arg(m_reports.path(u"nologo.png"_s))},
        {u"<details><picture field=\"foto\"/></details>"_s,
         u"The picture of details shows the field \"foto\", which the report does not have; the nearest "
         "are: photo"_s},
        {u"<pageHeader><picture field=\"photo\"/></pageHeader>"_s,
         u"a picture in the page header comes from a file"_s}};
    for (const QStringList &fault : faults) {
        const QString failure =
            TestSupport::FailureOf([&] {
                exportReport(u"fault"_s, u"<layout>%1</layout>"_s.arg(fault[0]), PdfFormat);
            }).description;
        QVERIFY2(failure.contains(fault[1]), qPrintable(failure));
    }
}

QORLO_TEST_MAIN(TestPictures)
#include "tst_pictures.moc"
