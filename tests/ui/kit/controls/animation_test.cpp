// The progress strip with its real timers, its arithmetic, the blinking padlock, and the flight of
// a picture.
#include <QAccessible>
#include <QImage>
#include <QLabel>
#include <QPushButton>

#include "engine/base/NotificationCenter.h"
#include "support/test.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/PathAnimation.h"
#include "ui/kit/look/motion.h"
#include "ui/support/StillStyle.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

using testing::StillStyle;

bool waitFor(const std::function<bool()>& isSo) { return QTest::qWaitFor(isSo, 5000); }

class StripTest : public ::testing::Test {
protected:
    double offset() const { return strip.prograssView().frame.x(); }

    NotificationCenter center;
    Animation strip{center};
    double width = strip.bottomView().frame.width();
};

TEST_F(StripTest, SharesOfTheWork) {
    ASSERT_GT(width, 0.0);
    EXPECT_EQ(strip.goPrograss(), -310);
    EXPECT_EQ(strip.sizeHint(), strip.bottomView().frame.size().toSize());
    const struct {
        std::function<void()> place;
        double offset;
        int percent;
    } cases[] = {
        {[] {}, -width, 0},
        {[&] { strip.baseNumberSetPrograss(0); }, -width, 0},
        {[&] { strip.baseNumberSetPrograss(37); }, 37 * width / 100.0 - width, 37},
        {[&] { strip.baseNumberSetPrograss(100); }, 0.0, 100},
        {[&] { strip.baseNumberSetPrograss(130); }, 0.3 * width, 100},
        {[&] { strip.baseNumberSetPrograssMax(10, 0); }, -width, 0},
        {[&] { strip.baseNumberSetPrograssMax(10, 7); }, 3 * width / -10.0, 70},
        {[&] { strip.baseNumberSetPrograssMax(10, 10); }, 0.0, 100},
        {[&] { strip.initZeroPrograss(); }, -width, 0},
    };
    for (std::size_t index = 0; index < std::size(cases); ++index) {
        cases[index].place();
        EXPECT_NEAR(offset(), cases[index].offset, 1e-9) << index;
        EXPECT_EQ(strip.shownPercent(), cases[index].percent) << index;
    }
    EXPECT_EQ(strip.goPrograss(), -310) << "the run has a position of its own";
}

TEST_F(StripTest, StepsFillTheStripAndReportOnce) {
    int posts = 0, countAtPost = -1;
    const auto observation =
        center.addObserver("allThreadFinishCallBack", [&](const Notification&) {
            ++posts;
            countAtPost = strip.addNumber();
        });
    strip.setPrograssMax(3);
    const int whole = static_cast<int>(width);
    for (const int step : {1, 2, 3}) {
        strip.prograssShowDependChangeSize(1);
        EXPECT_EQ(offset(), step * whole / 3 - whole) << "in whole points";
        EXPECT_EQ(strip.addNumber(), step % 3);
        EXPECT_EQ(posts, step / 3);
    }
    EXPECT_EQ(countAtPost, 0);
    strip.prograssShowDependChangeSize(5);
    EXPECT_EQ(posts, 2) << "more steps than there are end it as well";
    strip.setPrograssMax(0);
    strip.prograssShowDependChangeSize(1);
    EXPECT_EQ(posts, 3);
    EXPECT_EQ(offset(), 0.0);
}

TEST_F(StripTest, TheRunGoesUpWrapsFallsAndEnds) {
    strip.setTimeSize(0.001F);
    strip.start();
    std::vector<int> seen{strip.goPrograss()};
    while (seen.size() < 70 && waitFor([&] { return strip.goPrograss() != seen.back(); }))
        seen.push_back(strip.goPrograss());
    ASSERT_EQ(seen.size(), 70U);
    EXPECT_TRUE(std::ranges::all_of(seen, [](int each) { return each < 0 && each % 5 == 0; }));
    EXPECT_EQ(*std::max_element(seen.begin(), seen.end()), -5);
    EXPECT_NE(std::ranges::find(seen, -static_cast<int>(width) / 2), seen.end())
        << "half a width back";
    strip.minishPrograss();
    EXPECT_FALSE(strip.isAdd());
    ASSERT_SOON(strip.goPrograss() == -294);
    strip.updateprograss();
    EXPECT_EQ(strip.goPrograss(), -294) << "not further down";
    EXPECT_EQ(offset(), -294.0);
    strip.setIsFinished(true);
    ASSERT_SOON(!strip.isRunning());
    EXPECT_EQ(offset(), -width);
    EXPECT_EQ(strip.goPrograss(), -static_cast<int>(width));
    EXPECT_TRUE(strip.isAdd() && !strip.isFinished());
}

struct Source final : AnimationTarget {
    int asked = 0;
    void getPrograss() override { ++asked; }
};

TEST_F(StripTest, OneTimerAtATime) {
    Source source;
    strip.setTarget(&source);
    strip.setTimeSize(0.001F);
    strip.startUpdatePrograss();
    strip.start();  // changes nothing
    ASSERT_SOON(source.asked >= 5);
    EXPECT_EQ(strip.goPrograss(), -310);
    strip.stopTimer();
    EXPECT_EQ(offset(), -width) << "only the timer ends";
    strip.stop();
    EXPECT_EQ(offset(), -width) << "without a timer there is nothing to stop";
    strip.start();
    strip.stop();
    EXPECT_EQ(offset(), 0.0);
    EXPECT_EQ(strip.goPrograss(), -static_cast<int>(width));
}

TEST_F(StripTest, ThePadlockBlinksUntilItIsStopped) {
    auto button = std::make_unique<QPushButton>();
    const auto shown = [&] { return button->icon().pixmap(16, 16).toImage(); };
    const QImage lit = picturePixmap(QStringLiteral("Lock_1"), QSize(16, 16)).toImage();
    const QImage closed = picturePixmap(QStringLiteral("Lock"), QSize(16, 16)).toImage();
    ASSERT_NE(lit, closed);
    strip.startUnlockAnimation(button.get());
    EXPECT_SOON(shown() == lit);
    EXPECT_SOON(shown() == closed);
    EXPECT_SOON(shown() == lit);
    strip.stopUnlockAnimation(button.get());
    EXPECT_EQ(shown(), closed);
    strip.startUnlockAnimation(button.get());
    button.reset();
    strip.changeUnlockImage();
}

TEST_F(StripTest, IsReadAndMirrored) {
    strip.baseNumberSetPrograss(30);
    auto* accessible = QAccessible::queryAccessibleInterface(&strip);
    EXPECT_EQ(accessible->role(), QAccessible::ProgressBar);
    ASSERT_NE(accessible->valueInterface(), nullptr);
    EXPECT_EQ(accessible->valueInterface()->currentValue().toInt(), 30);
    strip.resize(strip.sizeHint());
    const auto at = [&](double share) {
        const QImage image = strip.grab().toImage();
        return image.pixelColor(static_cast<int>(share * image.width()), image.height() / 2);
    };
    const QColor filled = at(0.2), rest = at(0.8);
    EXPECT_NE(filled, rest);
    strip.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(at(0.2), rest);
    EXPECT_NE(at(0.8), rest);
}

TEST(Motion, TheDesktopMaySwitchItOff) {
    const struct {
        const char* file;
        const char* text;
        bool mayMove;
    } cases[] = {
        {"kdeglobals", "[KDE]\nAnimationDurationFactor=0\n", false},
        {"kdeglobals", "[KDE]\nAnimationDurationFactor=0.5\n", true},
        {"gtk-3.0/settings.ini", "[Settings]\ngtk-enable-animations=0\n", false},
        {"gtk-4.0/settings.ini", "[Settings]\ngtk-enable-animations=False\n", false},
        {"gtk-4.0/settings.ini", "[Settings]\ngtk-enable-animations=true\n", true},
        {"gtk-4.0/settings.ini", "[Other]\ngtk-enable-animations=0\n", true},
        {"linked", " [Settings]\r\n# gtk\n gtk-enable-animations = 0 \r\n", false},
        {"pipe", "", true},
    };
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    QWidget widget;
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(tree.write(each.file, each.text) && tree.write("gtk-3.0/other", ""));
        const char* const gtk = "gtk-3.0/settings.ini";
        ASSERT_TRUE(each.file != std::string("linked") || tree.symlink("../linked", gtk));
        // Who opened it to read would wait for good.
        ASSERT_TRUE(each.file != std::string("pipe") || tree.fifo(gtk));
        qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(tree.path()));
        EXPECT_EQ(mayAnimate(widget), each.mayMove) << each.file << ' ' << each.text;
    }
    if (before.isNull()) qunsetenv("XDG_CONFIG_HOME");
    else qputenv("XDG_CONFIG_HOME", before);
    StillStyle still;
    widget.setStyle(&still);
    EXPECT_FALSE(mayAnimate(widget));
}

struct Landing final : PathAnimationDelegate {
    int calls = 0;
    void callBackDeleteItemWithIndex() override { ++calls; }
};

TEST(PathAnimation, FliesInACurveAndReportsItsLanding) {
    QWidget page;
    page.resize(400, 300);
    QPushButton trash(&page);
    trash.setGeometry(340, 260, 40, 30);
    page.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&page));
    const LogLines log;
    Landing landing;
    PathAnimation flight(page);
    flight.setDelegate(&landing);
    QPixmap icon(16, 16);
    icon.fill(Qt::red);

    const QRect start(20, 200, 30, 30);
    flight.fly(icon, start, &trash);
    QLabel* const view = flight.animatedIconView();
    EXPECT_TRUE(flight.isFly() && view->isVisible());
    EXPECT_LE((view->geometry().center() - start.center()).manhattanLength(), 2);
    bool hasRisen = false;
    QPoint last;
    ASSERT_TRUE(waitFor([&] {
        if (view->isVisible()) last = view->geometry().center();
        hasRisen = hasRisen || view->y() < start.top() - 20;
        return !flight.isFly();
    }));
    EXPECT_TRUE(hasRisen);
    EXPECT_LE((last - trash.geometry().center()).manhattanLength(), 40);
    EXPECT_FALSE(view->isVisible());
    EXPECT_EQ(landing.calls, 1);
    EXPECT_EQ(log.lines, (Strings{"animation start", "animation end"}));

    flight.fly(icon, start, &trash);
    flight.fly(icon, start, &trash);
    EXPECT_EQ(landing.calls, 2) << "the new flight ends the one under way";
    StillStyle still;
    page.setStyle(&still);
    flight.fly(icon, start, &trash);
    EXPECT_EQ(landing.calls, 4) << "where nothing may move it ends within the call";
    EXPECT_FALSE(flight.isFly() || view->isVisible());
}

}  // namespace
}  // namespace orrinvale
