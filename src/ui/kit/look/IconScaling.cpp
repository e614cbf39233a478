// Icons for menu rows and pages. createScalesImage is the only one with cases; they stand in a list
// there.
#include "ui/kit/look/IconScaling.h"

#include <QPainter>
#include <algorithm>

namespace orrinvale {
namespace {

constexpr QSizeF menuSize{13, 14};

void prepare(ImageObject& image, bool scales, bool flipFlag) {
    image.scalesWhenResized = scales;
    if (flipFlag) image.flipped = true;
}

ImageObject resized(ImageObject& image, bool scales, bool flipFlag, double side) {
    if (image.isNull()) return {};
    prepare(image, scales, flipFlag);
    image.size = QSizeF(side, side);
    return image;
}

// The corner counts from the lower left one, upwards; what reaches over the canvas is cut off.
ImageObject onCanvas(const ImageObject& image, QPointF corner, double whiteHeight) {
    const qreal scale = std::max(1.0, image.image.devicePixelRatio());
    QImage canvas((menuSize * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    canvas.setDevicePixelRatio(scale);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (whiteHeight > 0) {
        const double white = std::min(whiteHeight, menuSize.height());
        painter.fillRect(QRectF(0, menuSize.height() - white, menuSize.width(), white), Qt::white);
    }
    const double top = menuSize.height() - corner.y() - image.size.height();
    // The white is what the image is seen on: above it, and where there is none, nothing of the
    // image shows.
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.drawImage(QRectF(QPointF(corner.x(), top), image.size), image.rendered(scale));
    painter.end();
    return ImageObject(canvas);
}

}  // namespace

ImageObject::ImageObject(QImage pixels)
    : image(std::move(pixels)), size(image.deviceIndependentSize()) {}

// QImage::scaled averages over all pixels that fall together; a painter would look at four and make
// icons of 512 jagged.
QImage ImageObject::rendered(qreal scale) const {
    const QSize pixels = (size * scale).toSize();
    if (isNull() || pixels.isEmpty()) return {};
    const QSize wanted =
        scalesWhenResized ? pixels : (image.deviceIndependentSize() * scale).toSize();
    QImage scaled = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (scaled.size() != wanted)
        scaled = scaled.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(1);
    QImage result(pixels, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.drawImage(0, pixels.height() - scaled.height(), scaled);
    painter.end();
    if (flipped) result = result.mirrored(false, true);
    result.setDevicePixelRatio(scale);
    return result;
}

// With w and h the image's size in whole points:
//   w >= 13, h >= 14   resized, no canvas
//   w >= 14, h < 14    resized, then on a canvas, raised by half of what h lacks
//   w < 13,  h >= 15   resized, then on a canvas, moved right by half of what w lacks
//   else               as large as it is, in the middle of a canvas
// In the second and third case the image has filled the canvas before it is moved, so a part of it
// is cut off.
ImageObject IconScaling::createScalesImage(ImageObject& image, bool flipFlag,
                                           float amountReflected) {
    if (image.isNull()) return {};
    prepare(image, true, flipFlag);
    const double w = static_cast<int>(image.size.width());
    const double h = static_cast<int>(image.size.height());
    const double amount = static_cast<double>(amountReflected);
    const double right = (menuSize.width() - w) / 2;
    const double up = (menuSize.height() - h) / 2;
    if (w >= 13 && h >= 14) {
        image.size = menuSize;
        return image;
    }
    if (w >= 14) {
        image.size = menuSize;
        return onCanvas(image, {0, up}, 14 * amount);
    }
    if (w < 13 && h >= 15) {
        image.size = menuSize;
        return onCanvas(image, {right, 0}, 13 * amount);
    }
    return onCanvas(image, {right, up}, 13 * amount);
}

ImageObject IconScaling::getBigImage(ImageObject& image, bool flipFlag, float) {
    return resized(image, true, flipFlag, 50);
}

ImageObject IconScaling::get120X120BigImage(ImageObject& image, bool flipFlag, float) {
    return resized(image, true, flipFlag, 120);
}

ImageObject IconScaling::get200X200BigImage(ImageObject& image, bool flipFlag, float) {
    return resized(image, false, flipFlag, 200);
}

}  // namespace orrinvale
