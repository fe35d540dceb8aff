#include "engine/page/RtfMarkup.h"

#include <QBuffer>
#include <algorithm>
#include <cmath>

namespace Engine::RtfMarkup {

namespace {

constexpr int EmuPerPoint = 12700;

QString Property(const char *name, qint64 value)
{
    return QStringLiteral("{\\sp{\\sn %1}{\\sv %2}}").arg(QLatin1String(name)).arg(value);
}

// Shapes are anchored to the page, not to the paragraph that carries them, and let text through.
QString Shape(const QRectF &rect, int order, const QString &properties)
{
    return QStringLiteral("{\\shp{\\*\\shpinst\\shpleft%1\\shptop%2\\shpright%3\\shpbottom%4"
                          "\\shpfhdr0\\shpbxpage\\shpbxignore\\shpbypage\\shpbyignore\\shpwr3\\shpwrk0"
                          "\\shpfblwtxt1\\shpz%5%6}}")
        .arg(Twips(rect.left()))
        .arg(Twips(rect.top()))
        .arg(Twips(rect.right()))
        .arg(Twips(rect.bottom()))
        .arg(order)
        .arg(properties + Property("fBehindDocument", 1));
}

} // namespace

// Beyond a few metres a length is nonsense; it is held there instead of overflowing.
int Twips(double points)
{
    constexpr double Limit = 1e7;
    const double twips = points * 20;
    return std::isfinite(twips) ? int(std::lround(std::clamp(twips, -Limit, Limit))) : 0;
}

QString Escaped(const QString &text)
{
    QString rtf;
    rtf.reserve(text.size());
    for (const QChar c : text) {
        const ushort code = c.unicode();
        if (c == QLatin1Char('\\') || c == QLatin1Char('{') || c == QLatin1Char('}'))
            rtf += QLatin1Char('\\') + c;
        else if (c == QLatin1Char('\n'))
            rtf += QStringLiteral("\\line ");
        else if (code < 0x20)
            rtf += QLatin1Char(' '); // a tab or a control character would break the row's layout
        else if (code < 0x80)
            rtf += c;
        else // UTF-16 units, surrogates included, as signed 16-bit numbers with "?" for old readers
            rtf += QStringLiteral("\\u%1?").arg(qint16(code));
    }
    return rtf;
}

QString LineShape(const PageLine &line, int order)
{
    const QRectF rect = QRectF(line.from, line.to).normalized();
    // A line from lower left to upper right runs against its bounding box.
    const bool flip = (line.to.x() - line.from.x()) * (line.to.y() - line.from.y()) < 0;
    QString properties =
        Property("shapeType", 20) + Property("lineWidth", std::lround(line.width * EmuPerPoint));
    if (flip)
        properties += Property("fFlipV", 1);
    return Shape(rect, order, properties);
}

// Only the outline: a word processor may paint a filled shape over the text of later pages, and
// a shade is not worth a hidden row.
QString BoxShape(const PageBox &box, int order)
{
    QString properties = Property("shapeType", 1) + Property("fFilled", 0);
    if (box.lineWidth > 0)
        properties += Property("lineWidth", std::lround(box.lineWidth * EmuPerPoint));
    else
        properties += Property("fLine", 0);
    return Shape(box.rect, order, properties);
}

QString PictureShape(const PagePicture &picture, int order)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.image.save(&buffer, "PNG");
    const QString pict = QStringLiteral("{\\pict\\pngblip\\picw%1\\pich%2\\picwgoal%3\\pichgoal%4 %5}")
                             .arg(picture.image.width())
                             .arg(picture.image.height())
                             .arg(Twips(picture.box.width()))
                             .arg(Twips(picture.box.height()))
                             .arg(QString::fromLatin1(png.toHex()));
    return Shape(picture.box, order,
                 Property("shapeType", 75) + Property("fLine", 0) +
                     QStringLiteral("{\\sp{\\sn pib}{\\sv %1}}").arg(pict));
}

} // namespace Engine::RtfMarkup
