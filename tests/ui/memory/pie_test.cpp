// The two pies, by their pixels.
#include <QImage>
#include <cmath>

#include "support/test.h"
#include "ui/memory/CLMiew.h"
#include "ui/memory/PieChartView.h"

namespace orrinvale::testing {
namespace {

using Items = std::vector<PieChartItem>;

QImage imageOf(QWidget& widget) {
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::black);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

// The first letter of the pixel's colour, small where it is darkened; "-" is none.
char letterOf(const QColor& color) {
    const int red = color.red();
    const int green = color.green();
    const int blue = color.blue();
    const int most = std::max({red, green, blue});
    if (most < 60) return '-';
    const bool isDark = most < 200;
    const char letter = blue == most ? 'B' : red == green ? 'Y' : red == most ? 'R' : 'G';
    return isDark ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

TEST(PieChartView, SlicesGoClockwiseByTheirShares) {
    const QColor red(255, 0, 0);
    const QColor green(0, 255, 0);
    const QColor blue(0, 0, 255);
    const QColor yellow(255, 255, 0);
    const struct {
        Items items;
        const char *disc, *rim;  // a letter each eighth, from just behind the right on
    } cases[] = {
        {{{{}, red, 1}, {{}, green, 1}, {{}, blue, 1}, {{}, yellow, 1}}, "RRGGBBYY", "rrgg"},
        {{{{}, red, 3}, {{}, green, 0}, {{}, blue, 5}}, "RRRBBBBB", "rrrb"},
        {{{{}, red, 5}, {{}, green, 3}}, "RRRRRGGG", "rrrr"},
        {{{{}, red, 7}}, "RRRRRRRR", "rrrr"},
        {{{{}, red, 0}, {{}, green, 0}}, "--------", "----"},
        {{{{}, red, std::nanf("")}, {{}, green, 1}}, "--------", "----"},
        {{}, "--------", "----"},
    };
    for (const auto& each : cases) {
        PieChartView view({400, 300});
        view.setPieChartItems(each.items);
        const QImage image = imageOf(view);
        const double radius = view.chartRadius();
        EXPECT_EQ(radius, 145);
        std::string disc;
        std::string rim;
        for (int eighth = 0; eighth < 8; ++eighth) {
            const double angle = (eighth + 0.5) * M_PI / 4;
            const auto letterAt = [&](double part, double below) {
                const QPointF at = view.chartCenter() +
                                   QPointF(std::cos(angle), std::sin(angle)) * radius * part +
                                   QPointF(0, below);
                return letterOf(
                    image.pixelColor(QPointF(at.x(), at.y() * PieChartView::scaleY).toPoint()));
            };
            disc += letterAt(0.6, 0);
            if (eighth < 4) rim += letterAt(1, PieChartView::spaceHeight / 2);
            if (eighth == 4 || eighth == 7) {
                EXPECT_EQ(letterAt(1.05, PieChartView::spaceHeight / 4), '-') << "none behind";
            }
        }
        EXPECT_EQ(disc, each.disc);
        EXPECT_EQ(rim, each.rim) << "darkened, and cut where the near half ends";
    }
}

TEST(CLMiew, DrawsListsAndColoursGoRound) {
    CLMiew view;
    view.resize(320, 180);
    view.valueArr = {1, 1, 2};
    view.colorArr = {QColor(255, 0, 0), QColor(0, 0, 255)};
    const LogLines log;
    const QImage image = imageOf(view);
    EXPECT_EQ(letterOf(image.pixelColor(200, 100)), 'R');
    EXPECT_EQ(letterOf(image.pixelColor(120, 100)), 'B');
    EXPECT_EQ(letterOf(image.pixelColor(200, 80)), 'R') << "the first colour again";
    EXPECT_EQ(log.lines.size(), 3U);
    EXPECT_EQ(log.lines.front(), ">>>>>>>>>>>>>>>currentAngel:0.000000");
    view.valueArr = {0, 0};
    EXPECT_EQ(letterOf(imageOf(view).pixelColor(200, 100)), '-');
}

}  // namespace
}  // namespace orrinvale::testing
