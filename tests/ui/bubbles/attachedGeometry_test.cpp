// Where attached windows stand, on each side and on the one that is found.
#include "ui/bubbles/attachedGeometry.h"

#include "support/test.h"

namespace orrinvale {
namespace {

using Side = AttachedSide;

std::string text(const AttachedRect& rect) {
    return fmt::format("{} {} {} {}", rect.x, rect.y, rect.width, rect.height);
}

TEST(AttachedGeometry, EachSideMovesTheWindowAwayAndKeepsTheArrowFree) {
    const AttachedTo to{280, 50, {1000, 900}, 5};
    const AttachedLook usual;
    AttachedLook doubled;
    doubled.scale = 2;
    AttachedLook square;
    square.drawsRoundCornerBesideArrow = false;
    const struct {
        Side side;
        const AttachedLook& look;
        const char *window, *view;
    } cases[] = {
        {Side::Left, usual, "695 873 300 54", "2 2 280 50"},
        {Side::Bottom, usual, "858 825 284 70", "2 2 280 50"},
        {Side::Right, usual, "1005 873 300 54", "18 2 280 50"},
        {Side::Top, usual, "858 905 284 70", "2 18 280 50"},
        {Side::LeftTop, usual, "695 882 300 54", "2 2 280 50"},
        {Side::LeftBottom, usual, "695 864 300 54", "2 2 280 50"},
        {Side::RightTop, usual, "1005 882 300 54", "18 2 280 50"},
        {Side::RightBottom, usual, "1005 864 300 54", "18 2 280 50"},
        {Side::TopLeft, usual, "734 905 284 70", "2 18 280 50"},
        {Side::TopRight, usual, "982 905 284 70", "2 18 280 50"},
        {Side::BottomLeft, usual, "734 825 284 70", "2 2 280 50"},
        {Side::BottomRight, usual, "982 825 284 70", "2 2 280 50"},
        {Side::Bottom, doubled, "856 805 288 90", "4 4 280 50"},
        {Side::TopRight, doubled, "964 905 288 90", "4 36 280 50"},
        {Side::BottomRight, square, "990 825 284 70", "2 2 280 50"},
    };
    for (const auto& each : cases) {
        const AttachedGeometry made = attachedGeometry(to, each.look, each.side);
        EXPECT_EQ(text(made.window), each.window) << static_cast<int>(each.side);
        EXPECT_EQ(text(made.view), each.view) << static_cast<int>(each.side);
    }
}

// A view of 100 by 50: 104 by 54 with its margins, 16 more towards the point.
TEST(AttachedGeometry, TheAutomaticSideIsTheFirstWithRoomAndStaysInside) {
    const AttachedRect screen{0, 0, 1000, 800}, low{0, 0, 1000, 60}, narrow{0, 0, 110, 300},
        tiny{0, 0, 110, 100}, second{1000, 200, 1000, 800};
    const struct {
        AttachedPoint point;
        const AttachedRect& visible;
        Side side;
    } cases[] = {
        {{500, 400}, screen, Side::Bottom},     {{500, 70}, screen, Side::Bottom},
        {{10, 400}, screen, Side::BottomRight}, {{990, 400}, screen, Side::BottomLeft},
        {{500, 69}, screen, Side::Right},       {{500, 20}, screen, Side::RightTop},
        {{880, 69}, screen, Side::Right},       {{881, 69}, screen, Side::Left},
        {{950, 20}, screen, Side::LeftTop},     {{500, 50}, low, Side::RightBottom},
        {{950, 50}, low, Side::LeftBottom},     {{55, 60}, narrow, Side::Top},
        {{20, 60}, narrow, Side::TopRight},     {{90, 60}, narrow, Side::TopLeft},
        {{55, 60}, tiny, Side::Bottom},         {{1010, 600}, second, Side::BottomRight},
        {{1500, 260}, second, Side::Right},
    };
    for (const auto& each : cases) {
        const Side side = bestAttachedSide({100, 50, each.point, 0}, AttachedLook{}, each.visible);
        EXPECT_EQ(side, each.side) << each.point.x << ' ' << each.point.y;
    }
    EXPECT_EQ(bestAttachedSide({100, 50, {500, 74}, 5}, AttachedLook{}, screen), Side::Right)
        << "the distance counts";
}

}  // namespace
}  // namespace orrinvale
