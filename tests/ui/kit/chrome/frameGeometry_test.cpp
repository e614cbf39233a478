// Rectangles of windows, and the decision about who draws their frame.
#include "ui/kit/chrome/frameGeometry.h"

#include "support/test.h"
#include "ui/kit/chrome/desktopFrame.h"

namespace orrinvale {
namespace {

constexpr QSize smallestFrame(400, 300);
constexpr QSize largestFrame(1000, 800);

TEST(FrameGeometry, APulledEdgeLeavesTheOppositeOneAlone) {
    const QRect start(100, 100, 500, 400);
    struct Case {
        Qt::Edges edges;
        QPoint delta;
        QRect expected;
    };
    const Case cases[] = {
        {Qt::LeftEdge, {-50, 99}, {50, 100, 550, 400}},
        {Qt::LeftEdge,
         {300, 0},
         {200, 100, 400, 400}},  // smallestFrame size: the right edge stays at 600
        {Qt::TopEdge, {0, -900}, {100, -300, 500, 800}},
        {Qt::RightEdge | Qt::BottomEdge, {10, 20}, {100, 100, 510, 420}},
        {Qt::RightEdge | Qt::TopEdge, {9000, 9000}, {100, 200, 1000, 300}},
    };
    for (const Case& each : cases)
        EXPECT_EQ(pulledRect(start, each.edges, each.delta, smallestFrame, largestFrame),
                  each.expected);
}

TEST(FrameGeometry, AZoomedWindowKeepsItsBoundsAndItsTitleBarInSight) {
    EXPECT_EQ(zoomedRect({0, 30, 1920, 1050}, smallestFrame, largestFrame),
              QRect(460, 155, 1000, 800));
    EXPECT_EQ(zoomedRect({0, 30, 800, 1050}, smallestFrame, largestFrame), QRect(0, 155, 800, 800));
    EXPECT_EQ(zoomedRect({10, 20, 200, 100}, smallestFrame, largestFrame), QRect(10, 20, 400, 300));
}

TEST(FrameGeometry, AFrameComesBackIntoViewOfTheScreensThereAre) {
    const QRect left(0, 0, 1000, 800), right(1000, 0, 800, 600);
    struct Case {
        QRect frame;
        QList<QRect> screens;
        QRect expected;
    };
    const Case cases[] = {
        {{50, 60, 500, 400}, {left, right}, {50, 60, 500, 400}},
        {{2500, 900, 500, 400}, {left}, {500, 400, 500, 400}},  // its screen is gone
        {{1200, 500, 500, 400},
         {left, right},
         {1200, 200, 500, 400}},                          // the right one shows more of it
        {{0, 0, 1600, 1200}, {left}, {0, 0, 1000, 800}},  // too large
        {{-700, -700, 500, 400},
         {QRect(0, 0, 300, 200)},
         {0, 0, 400, 300}},  // no smaller than it may be
        {{5, 5, 500, 400}, {}, {5, 5, 500, 400}},
    };
    for (const Case& each : cases)
        EXPECT_EQ(rectInView(each.frame, each.screens, smallestFrame), each.expected);
}

TEST(FrameGeometry, ASavedFrameIsReadBackAndNothingElseIs) {
    const SavedFrame saved{{-20, 30, 800, 506}, true};
    EXPECT_EQ(saved.text(), "-20 30 800 506 1");
    EXPECT_EQ(SavedFrame::fromText(saved.text()), saved);
    for (const char* text :
         {"", "1 2 3 4", "1 2 3 4 5", "1 2 3 4 1 ", "1 2 0 4 0", "1 2 3 -4 0", "a 2 3 4 0",
          "1  2 3 4 0", "1 2 3 4 0x", "99999999999 2 3 4 0", "2000000000 2 3 4 0"})
        EXPECT_EQ(SavedFrame::fromText(text), std::nullopt) << text;
}

TEST(FrameKind, FollowsTheUserThenTheWindowManagerThenTheCompositor) {
    using Server = DesktopFacts::Server;
    struct Case {
        DesktopFacts facts;
        FrameKind expected;
    };
    const Case cases[] = {
        {{Server::X11, true, true, true, {}}, FrameKind::Own},
        {{Server::X11, true, true, false, {}}, FrameKind::OwnWithoutAlpha},
        {{Server::X11, true, false, true, {}}, FrameKind::System},
        {{Server::X11, true, false, true, false}, FrameKind::Own},
        {{Server::X11, false, false, false, {}},
         FrameKind::OwnWithoutAlpha},  // nobody there to draw one
        {{Server::Wayland, true, true, true, {}}, FrameKind::Own},
        {{Server::Wayland, true, true, true, true}, FrameKind::System},
    };
    for (const Case& each : cases)
        EXPECT_EQ(static_cast<int>(chooseFrame(each.facts)), static_cast<int>(each.expected))
            << &each - cases;
}

}  // namespace
}  // namespace orrinvale
