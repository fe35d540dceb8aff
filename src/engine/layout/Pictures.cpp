#include "engine/layout/Pictures.h"

namespace Engine {

QList<PagePicture> Fitted(const QImage &image, const QRectF &box)
{
    if (image.isNull() || box.isEmpty())
        return {};
    const QSizeF size = QSizeF(image.size()).scaled(box.size(), Qt::KeepAspectRatio);
    QRectF fitted(QPointF(), size);
    fitted.moveCenter(box.center());
    return {PagePicture{fitted, image}};
}

QImage PictureOf(const QVariant &value)
{
    if (value.typeId() != QMetaType::QByteArray)
        return QImage();
    return QImage::fromData(value.toByteArray());
}

QRectF PictureBox(const SectionObject &picture, double left, double width, double top)
{
    const double boxWidth = std::min(picture.width, width);
    double x = left;
    if (picture.alignment & Qt::AlignRight)
        x = left + width - boxWidth;
    else if (picture.alignment & Qt::AlignHCenter)
        x = left + (width - boxWidth) / 2;
    return QRectF(x, top, boxWidth, picture.height);
}

} // namespace Engine
