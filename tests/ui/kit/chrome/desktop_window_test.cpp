// TCImageWindow on real servers: X11 with a window manager and without, and Wayland. The pointer is
// moved by xdotool.
#include <QThread>

#include "support/test.h"
#include "ui/kit/chrome/DesktopSession.h"

namespace orrinvale::testing {
namespace {

const QString probe = QStringLiteral(CHROME_WINDOW_PROBE);
constexpr const char* openbox = "openbox";

struct Pull {
    const char* name;
    QPoint from;  // the frame is 100, 80, 500 x 400
    QPoint by;
    QRect expected;
};

// With no compositor the window has no shadow, and its edges are taken hold of just within.
const Pull pulls[] = {
    {"title bar", {350, 100}, {60, 40}, {160, 120, 500, 400}},
    {"left", {101, 300}, {-40, 30}, {60, 80, 540, 400}},
    {"right", {598, 300}, {40, 30}, {100, 80, 540, 400}},
    {"top", {350, 81}, {30, -40}, {100, 40, 500, 440}},
    {"bottom", {350, 478}, {30, 40}, {100, 80, 500, 440}},
    {"top left", {101, 81}, {-30, -20}, {70, 60, 530, 420}},
    {"top right", {598, 81}, {30, -20}, {100, 60, 530, 420}},
    {"bottom left", {101, 478}, {-30, 20}, {70, 80, 530, 420}},
    {"bottom right", {598, 478}, {30, 20}, {100, 80, 530, 420}},
    {"no smaller than the least size", {598, 478}, {-300, -300}, {100, 80, 400, 300}},
};

// A window manager counts from where the pointer is when the press has become a drag.
bool isReached(const QRect& frame, const QRect& expected, int slack) {
    return frame.size() == expected.size() &&
           (frame.topLeft() - expected.topLeft()).manhattanLength() <= slack;
}

void expectPulls(DesktopSession& session, int slackOfMoves) {
    const QRect start(100, 80, 500, 400);
    for (const Pull& pull : pulls) {
        const int slack = &pull == &pulls[0] ? slackOfMoves : 0;
        bool reached = false;
        // A busy machine may take longer to notice the press than a quick pull lasts.
        for (const int pace : {20, 200}) {
            session.tell("frame 100 80 500 400 0");
            ASSERT_TRUE(session.waitFor([&](const ProbeState& state) {
                return state.frame == start;
            })) << session.said();
            session.drag(pull.from, pull.from + pull.by, pace);
            reached = session.waitFor(
                [&](const ProbeState& s) { return isReached(s.frame, pull.expected, slack); });
            if (reached) break;
        }
        EXPECT_TRUE(reached) << pull.name << '\n' << session.said();
    }
}

TEST(WindowOnX11, ThePointerMovesAndResizesItWithoutAWindowManagerAndThroughOne) {
    for (const auto& [manager, slackOfMoves] : {std::pair("", 0), std::pair(openbox, 20)}) {
        DesktopSession session;
        if (const auto reason = session.startX11(manager); !reason.empty()) GTEST_SKIP() << reason;
        ASSERT_EQ(session.startProbe(probe), "");
        EXPECT_EQ(session.state().kind, "bare");
        expectPulls(session, slackOfMoves);
    }
}

void doubleClick(DesktopSession& session, QPoint place) {
    session.run(QStringLiteral("xdotool mousemove %1 %2 click --repeat 2 --delay 60 1")
                    .arg(place.x())
                    .arg(place.y()));
}

TEST(WindowOnX11, ADoubleClickFillsTheScreenAsFarAsTheMaximumSizeAllows) {
    struct Case {
        QStringList arguments;
        QRect zoomed;
    };
    const Case cases[] = {{{}, {0, 0, 1000, 800}},
                          {{QStringLiteral("small")}, {200, 150, 600, 500}}};
    for (const Case& each : cases) {
        DesktopSession session;
        if (const auto reason = session.startX11(openbox); !reason.empty()) GTEST_SKIP() << reason;
        ASSERT_EQ(session.startProbe(probe, each.arguments), "");
        session.tell("frame 100 80 500 400 0");
        ASSERT_TRUE(session.waitFor(
            [](const ProbeState& state) { return state.frame == QRect(100, 80, 500, 400); }));
        doubleClick(session, {350, 100});
        EXPECT_TRUE(session.waitFor([&](const ProbeState& s) {
            return s.isZoomed && s.frame == each.zoomed;
        })) << session.said();
        doubleClick(session, each.zoomed.topLeft() + QPoint(250, 20));
        EXPECT_TRUE(session.waitFor([](const ProbeState& s) {
            return !s.isZoomed && s.frame == QRect(100, 80, 500, 400);
        })) << session.said();
    }
}

TEST(WindowOnX11, TheWindowManagersCloseTakesTheWayOfTheCloseButton) {
    DesktopSession session;
    if (const auto reason = session.startX11(openbox); !reason.empty()) GTEST_SKIP() << reason;
    ASSERT_EQ(session.startProbe(probe), "");
    const auto press = [&] {
        return session.run(
            QStringLiteral("xdotool search --onlyvisible --name \"Orrinvale probe\" "
                           "windowfocus --sync key alt+F4"));
    };
    // A manager that is still at the window loses the key; once the window has gone there is
    // nothing to press it on.
    for (int i = 0; i < 20 && !press().isNull(); ++i) QThread::msleep(100);
    EXPECT_TRUE(session.waitForLine("closing")) << session.said();
    int status = -1;
    EXPECT_TRUE(session.probeEnded(status));
    EXPECT_EQ(status, 0);
}

TEST(WindowOnX11, TheSystemsFrameTakesOverWhereItIsWishedOrPutThereAllTheSame) {
    for (const bool isWished : {true, false}) {
        DesktopSession session;
        if (isWished) session.setVariable("ORRINVALE_SYSTEM_FRAME", "1");
        if (const auto reason = session.startX11(openbox); !reason.empty()) GTEST_SKIP() << reason;
        ASSERT_EQ(session.startProbe(probe), "");
        int width = 550;
        session.tell("frame 100 80 550 350 0");
        const auto isSystem = [](const ProbeState& state) { return state.kind == "system"; };
        // As a manager says it that has put a frame with a title bar around the window. The real
        // one says otherwise when it has dealt with the window, which may be later: then it is said
        // again, with a further resize in which it is noticed.
        for (int i = 0; !isWished && !isSystem(session.state()) && i < 20; ++i) {
            session.run(
                QStringLiteral("xprop -name \"Orrinvale probe\" -f _NET_FRAME_EXTENTS 32c -set "
                               "_NET_FRAME_EXTENTS \"4, 4, 30, 4\""));
            ++width;
            session.tell(("frame 100 80 " + std::to_string(width) + " 350 0").c_str());
            EXPECT_TRUE(session.waitFor([&](const ProbeState& state) {
                return isSystem(state) || state.frame.width() == width;
            }));
        }
        EXPECT_TRUE(session.waitFor(isSystem)) << session.said();
        session.tell("frame 100 80 600 300 0");
        EXPECT_TRUE(session.waitFor([](const ProbeState& state) {
            return state.frame.size() == QSize(600, 300);
        })) << session.said();
    }
}

TEST(WindowOnWayland, ShowsZoomsAndCloses) {
    DesktopSession session;
    if (const auto reason = session.startWayland(); !reason.empty()) GTEST_SKIP() << reason;
    ASSERT_EQ(session.startProbe(probe), "");
    EXPECT_EQ(session.state().kind, "own");
    EXPECT_EQ(session.state().frame.size(), QSize(500, 400));
    session.tell("zoom");
    EXPECT_TRUE(session.waitFor([](const ProbeState& state) {
        return state.isZoomed && state.frame.width() == 1000;
    })) << session.said();
    session.tell("zoom");
    EXPECT_TRUE(session.waitFor([](const ProbeState& s) {
        return !s.isZoomed && s.frame.size() == QSize(500, 400);
    })) << session.said();
    session.tell("dark");
    session.tell("close");
    int status = -1;
    EXPECT_TRUE(session.waitForLine("closing"));
    EXPECT_TRUE(session.probeEnded(status)) << session.said();
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace orrinvale::testing
