// IconScaling: file and volume icons brought to the few sizes at which menus and pages show them.
#pragma once

#include <QImage>
#include <QSizeF>

namespace orrinvale {

/// Pixels with a size in points of their own, which may differ from that of the pixels, and the way
/// in which they are put into it. Resizing such an image costs nothing and loses no pixel.
struct ImageObject {
    ImageObject() = default;
    explicit ImageObject(QImage pixels);

    QImage image;
    QSizeF size;  ///< in points; at first that of the pixels
    bool scalesWhenResized =
        false;  ///< the pixels fill the size; otherwise they keep theirs, at the lower left corner
    bool flipped = false;  ///< drawn from the bottom up, that is, upside down

    [[nodiscard]] bool isNull() const { return image.isNull(); }

    /// What stands in the size on a screen of that scale; transparent where no pixel falls.
    [[nodiscard]] QImage rendered(qreal scale = 1.0) const;
};

/// Main thread only: each operation changes the image that it is given (its size and both flags)
/// and returns a copy. A null image gives a null image. A set flag turns the image upside down;
/// none turns it back.
class IconScaling final {
public:
    /// For a menu row of 13 by 14 points. An image at least as large is resized; a smaller one
    /// comes in the middle of a new canvas, as the table in the source says. The canvas is white
    /// from its foot up to 13 or 14 points times amountReflected, transparent above, and as dense
    /// as the image's pixels. Only on the white the image shows, and there it takes the place of
    /// the white, where it is transparent too.
    [[nodiscard]] static ImageObject createScalesImage(ImageObject& image, bool flipFlag,
                                                       float amountReflected);

    /// 50 by 50 points. The amount is ignored, here and below.
    [[nodiscard]] static ImageObject getBigImage(ImageObject& image, bool flipFlag,
                                                 float amountReflected);

    /// 120 by 120 points.
    [[nodiscard]] static ImageObject get120X120BigImage(ImageObject& image, bool flipFlag,
                                                        float amountReflected);

    /// 200 by 200 points; the pixels are not scaled.
    [[nodiscard]] static ImageObject get200X200BigImage(ImageObject& image, bool flipFlag,
                                                        float amountReflected);

    IconScaling() = delete;
};

}  // namespace orrinvale
