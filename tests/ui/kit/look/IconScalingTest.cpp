// Icons brought to size, looked at pixel by pixel: the upper half of each is red, the lower half
// blue.
#include "ui/kit/look/IconScaling.h"

#include <QPainter>

#include "support/test.h"

namespace orrinvale {
namespace {

ImageObject icon(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::blue);
    QPainter(&image).fillRect(0, 0, width, height / 2, Qt::red);
    return ImageObject(image);
}

// r, b, w for the three colours, a dot for nothing, a question mark for a mixture.
char letterAt(const QImage& image, int x, int y) {
    const QColor color = image.pixelColor(x, y);
    if (color.alpha() == 0) return '.';
    if (color == QColor(Qt::red)) return 'r';
    if (color == QColor(Qt::blue)) return 'b';
    return color == QColor(Qt::white) ? 'w' : '?';
}

std::string column(const QImage& image, int x) {
    std::string letters;
    for (int y = 0; y < image.height(); ++y) letters += letterAt(image, x, y);
    return letters;
}

std::string row(const QImage& image, int y) {
    std::string letters;
    for (int x = 0; x < image.width(); ++x) letters += letterAt(image, x, y);
    return letters;
}

TEST(IconScaling, MenuIconsByTheirSize) {
    struct Case {
        int width, height;
        float amount;
        bool flip, resized;
        std::string column,
            bottomRow;  // the middle column from above, the lowest row but one from the left
    };
    const std::vector<Case> cases = {
        {26, 28, 1, false, true, "rrrrrrrbbbbbbb", "bbbbbbbbbbbbb"},
        {13, 14, 1, false, true, "rrrrrrrbbbbbbb", "bbbbbbbbbbbbb"},
        {26, 28, 1, true, true, "bbbbbbbrrrrrrr", "rrrrrrrrrrrrr"},
        // Too low: stretched to the canvas, raised by half of 14 - 10, the top cut off, white
        // below. Where red meets blue they mix.
        {20, 10, 1, false, true, "rrrr??bbbbbbww", "wwwwwwwwwwwww"},
        {20, 10, 0, false, true, "..............", "............."},
        {20, 10, 0.5F, false, true, ".......bbbbbww", "wwwwwwwwwwwww"},
        {20, 10, 1, true, true, "bbbb??rrrrrrww", "wwwwwwwwwwwww"},
        // Too narrow: stretched, moved right by half of 13 - 7, the right end cut off. White
        // reaches up to 13.
        {7, 28, 1, false, true, ".rrrrrrbbbbbbb", "wwwbbbbbbbbbb"},
        // Smaller, or as wide and lower, or 14 high and narrower: as it is, in the middle.
        {7, 8, 1, false, false, ".wwrrrrbbbbwww", "wwwwwwwwwwwww"},
        {13, 8, 0, false, false, "..............", "............."},
        {7, 14, 0.5F, false, false, "........bbbbbb", "wwwbbbbbbbwww"},
        {7, 8, 1, true, false, ".wwbbbbrrrrwww", "wwwwwwwwwwwww"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + " by " + std::to_string(c.height));
        ImageObject image = icon(c.width, c.height);
        const ImageObject result = IconScaling::createScalesImage(image, c.flip, c.amount);
        ASSERT_EQ(result.size, QSizeF(13, 14));
        EXPECT_EQ(column(result.rendered(), 6), c.column);
        EXPECT_EQ(row(result.rendered(), 12), c.bottomRow);
        EXPECT_EQ(image.size, c.resized ? QSizeF(13, 14) : QSizeF(c.width, c.height));
        EXPECT_TRUE(image.scalesWhenResized);
        EXPECT_EQ(image.flipped, c.flip);
    }
}

TEST(IconScaling, BigIconsChangeTheCallersImageAndLoseNoPixel) {
    ImageObject image = icon(120, 120);
    EXPECT_EQ(IconScaling::getBigImage(image, true, 0).size, QSizeF(50, 50));
    EXPECT_EQ(image.size, QSizeF(50, 50));
    const ImageObject copy = IconScaling::get120X120BigImage(image, false, 0);
    EXPECT_TRUE(copy.flipped) << "a clear flag turns nothing back";
    EXPECT_EQ(copy.image, icon(120, 120).image);
    EXPECT_EQ(column(copy.rendered(), 0), std::string(60, 'b') + std::string(60, 'r'));

    ImageObject unscaled = icon(120, 120);
    const QImage large = IconScaling::get200X200BigImage(unscaled, false, 1).rendered();
    EXPECT_FALSE(unscaled.scalesWhenResized);
    EXPECT_EQ(column(large, 0), std::string(80, '.') + std::string(60, 'r') + std::string(60, 'b'));
    EXPECT_EQ(row(large, 199), std::string(120, 'b') + std::string(80, '.'));
}

TEST(IconScaling, DensePixelsStayDenseAndNothingStaysNothing) {
    ImageObject dense = icon(14, 16);
    dense.image.setDevicePixelRatio(2);
    dense.size = dense.image.deviceIndependentSize();
    const QImage canvas = IconScaling::createScalesImage(dense, false, 1).image;
    EXPECT_EQ(canvas.size(), QSize(26, 28));
    EXPECT_EQ(column(canvas, 12), "..wwwwrrrrrrrrbbbbbbbbwwwwww");

    ImageObject none;
    EXPECT_TRUE(IconScaling::createScalesImage(none, true, 1).isNull());
    EXPECT_TRUE(IconScaling::get200X200BigImage(none, true, 1).rendered().isNull());
    EXPECT_EQ(none.size, QSizeF());
}

}  // namespace
}  // namespace orrinvale
