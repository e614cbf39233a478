// Bubbles: their counters, where they stack, and how long they stay; then their pixels on a server.
#include <QDBusVirtualObject>
#include <QImage>
#include <QLabel>
#include <QStandardPaths>

#include "engine/base/UtilityObject.h"
#include "services/desktop/DesktopNotifications.h"
#include "support/PrivateBus.h"
#include "support/test.h"
#include "ui/bubbles/BubbleContent.h"
#include "ui/bubbles/BubbleView.h"
#include "ui/kit/chrome/DesktopSession.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

using Server = DesktopFacts::Server;
using testing::Helper;
using testing::PrivateBus;

BubbleGround onScreen() {
    BubbleGround ground;
    ground.server = [] { return Server::X11; };
    return ground;
}

std::unique_ptr<BubbleContent> words(const char* text) {
    return std::make_unique<BubbleContent>(QStringList{QLatin1String(text)});
}

class BubblesTest : public ::testing::Test {
protected:
    void SetUp() override {
        total = 0;
        live = 0;
    }
    std::atomic<std::int32_t>& total = UtilityObject::getMyObject().totalBubbleCount;
    std::atomic<std::int32_t>& live = UtilityObject::getMyObject().liveBubbleCount;
};

TEST_F(BubblesTest, StackDownwardsUntilAllHaveGone) {
    std::vector<std::unique_ptr<BubbleView>> all;
    const auto place = [&] {
        all.push_back(std::make_unique<BubbleView>(words("gone"), onScreen()));
        return all.back()->maattachedView()->y();
    };
    const int top = place();
    EXPECT_EQ(place(), top + 60);
    EXPECT_EQ(place(), top + 120);
    all[0]->deleteBubbleView();
    EXPECT_EQ(total, 3);
    EXPECT_EQ(live, 2);
    EXPECT_EQ(place(), top + 180) << "the gap stays";
    all[1]->initBubbleViewWith(words("new"));
    EXPECT_EQ(all[1]->maattachedView(), nullptr) << "the old one went, and no new one came";
    EXPECT_EQ(live, 3) << "and it counts until its time is over";
    all.clear();
    EXPECT_EQ(total, 0);
    EXPECT_EQ(live, 0);
    EXPECT_EQ(place(), top);
}

TEST_F(BubblesTest, StayWhileThePointerRestsOnThem) {
    BubbleGround ground = onScreen();
    ground.lifetime = std::chrono::milliseconds(150);
    BubbleView rested(words("rested on"), ground);
    QEnterEvent enter({}, {}, {});
    QApplication::sendEvent(rested.maattachedView(), &enter);
    BubbleView left(words("left alone"), ground);
    bool isGone = false;
    left.gone = [&] { isGone = true; };
    EXPECT_SOON(isGone);
    ASSERT_EQ(live, 1) << "placed before the other, and still here";
    ASSERT_TRUE(rested.isStanding());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(rested.maattachedView(), &leave);
    EXPECT_SOON(!rested.isStanding());
    EXPECT_EQ(total, 0);
}

TEST_F(BubblesTest, StandWhereTheDesktopLetsThem) {
    const struct {
        Server server;
        bool hasNotifications, hasWindow;
        BubblePlace place;
    } cases[] = {
        {Server::X11, true, true, BubblePlace::Screen},
        {Server::X11, false, false, BubblePlace::Screen},
        {Server::Wayland, true, true, BubblePlace::Notification},
        {Server::Wayland, false, true, BubblePlace::Window},
        {Server::Wayland, false, false, BubblePlace::Log},
        {Server::Other, true, true, BubblePlace::Window},
        {Server::Other, true, false, BubblePlace::Log},
    };
    for (const auto& each : cases)
        EXPECT_EQ(bubblePlace(each.server, each.hasNotifications, each.hasWindow), each.place);
}

// Takes calls and never answers.
class SilentService final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& /*message*/, const QDBusConnection& /*bus*/) override {
        ++calls;
        return true;
    }
    int calls = 0;
};

// A session bus on which nobody shows notes, and a window to lie in, or none; then a service that
// hangs.
TEST_F(BubblesTest, ANoteThatNobodyShowsLiesInTheWindowOrStandsInTheLog) {
    PrivateBus bus;
    if (bus.address.isEmpty()) GTEST_SKIP() << "no dbus-daemon here";
    DesktopNotifications notifications(
        QDBusConnection::connectToBus(bus.address, QStringLiteral("bubbles")));
    QWidget window;
    window.resize(800, 600);
    window.show();
    BubbleGround ground;
    ground.notifications = &notifications;
    ground.server = [] { return Server::Wayland; };
    ground.openWindow = [&] { return &window; };
    {
        const BubbleView bubble(words("in the window"), ground);
        EXPECT_EQ(bubble.maattachedView(), nullptr) << "not before the bus has answered";
        ASSERT_SOON(bubble.maattachedView() != nullptr);
        EXPECT_EQ(bubble.maattachedView()->parentWidget(), &window);
        EXPECT_TRUE(window.rect().contains(bubble.maattachedView()->geometry()));
        const auto* const label = bubble.maattachedView()->findChild<QLabel*>();
        EXPECT_EQ(label->text(), QStringLiteral("in the window"));
    }
    ground.openWindow = [] { return nullptr; };
    const LogLines log;
    const BubbleView bubble(std::make_unique<BubbleContent>(QStringList{
                                QStringLiteral("Files removed: 3"), QStringLiteral("1 GB")}),
                            ground);
    EXPECT_SOON(!log.lines.empty());
    EXPECT_EQ(log.lines, std::vector<std::string>{"Files removed: 3; 1 GB"});

    SilentService silent;
    auto service = QDBusConnection::connectToBus(bus.address, QStringLiteral("silent"));
    ASSERT_TRUE(
        service.registerVirtualObject(QStringLiteral("/"), &silent, QDBusConnection::SubPath));
    ASSERT_TRUE(service.registerService(QStringLiteral("org.freedesktop.Notifications")));
    ground.lifetime = std::chrono::milliseconds(600);
    BubbleView lives(words("lives"), ground);
    { const BubbleView went(words("went"), ground); }
    EXPECT_SOON(!lives.isStanding());
    EXPECT_EQ(silent.calls, 2);
    EXPECT_THAT(log.lines, ::testing::IsSupersetOf({"lives", "went"}));
    for (const char* const name : {"bubbles", "silent"})
        QDBusConnection::disconnectFromBus(QLatin1String(name));
}

TEST_F(BubblesTest, ALookThatChangesMovesTheWindow) {
    EXPECT_EQ(MAAttachedWindow::initWithView(nullptr, {}), nullptr) << "no view, no window";
    const auto attached =
        MAAttachedWindow::initWithView(words("x"), {400, 400}, nullptr, AttachedSide::Top, 5);
    const QRect before = attached->geometry();
    attached->setArrowHeight(26);
    attached->setViewMargin(12);
    EXPECT_EQ(attached->geometry(), before.adjusted(-10, -30, 10, 0));
}

// As a person on X11 meets them: in the corner, in their shape, and the keyboard stays where it is.
// The screen is 1000 by 800 and the bubbles are 224 by 54, from 688 on; the first begins at 31.
TEST_F(BubblesTest, OnAServerTheyStandInTheCornerAndTakeNoKeyboard) {
    testing::DesktopSession session;
    const std::string reason = session.startX11("openbox");
    if (!reason.empty()) GTEST_SKIP() << reason;
    session.run(QStringLiteral("xdotool mousemove 800 120"));  // where the second will be
    Helper probe;
    probe.setProcessEnvironment(session.environment());
    probe.start(QStringLiteral(BUBBLE_PROBE), {QStringLiteral("2500")});
    std::string said;
    const auto says = [&](const char* what) {
        said += probe.readAll().toStdString();
        return said.find(what) != std::string::npos;
    };
    ASSERT_SOON(says("living 2")) << said;
    TestTree tree;
    const QString file = QString::fromStdString(tree.at("screen.png"));
    QImage image;
    const auto gray = [&](int x, int y) { return qGray(image.pixel(x, y)); };
    ASSERT_SOON([&] {
        session.run(QStringLiteral("import -window root ") + file);
        return image.load(file) && gray(800, 31) > 200 && gray(800, 91) > 200 &&
               gray(12, 440) > 200;
    }());
    const int ground = gray(500, 300);
    for (const int y : {31, 91}) {
        EXPECT_GT(gray(800, y + 53), 200) << "its border";
        EXPECT_GT(gray(911, y + 27), 200);
        EXPECT_LT(gray(694, y + 6), 60) << "its inside";
        EXPECT_EQ(gray(800, y - 2), ground) << "the room of the arrow is not covered";
        EXPECT_EQ(gray(688, y), ground) << "nor what the round corner leaves";
    }
    EXPECT_LT(gray(18, 425), 60) << "below the point (30, 400), to the right of the edge";
    EXPECT_GT(gray(30, 403), 120) << "with its arrow there";
    EXPECT_SOON(says("living 1")) << "the first has gone";
    QTest::qWait(1000);
    said.clear();
    EXPECT_SOON(says("living 1")) << "the second is rested on";
    EXPECT_FALSE(says("living 0"));
    session.run(QStringLiteral("xdotool mousemove 100 500"));
    EXPECT_SOON(says("living 0")) << said;
    EXPECT_FALSE(says("focus")) << "somebody took the keyboard";
}

// The notification server stands on an X server of its own, as it would have no place on that
// compositor.
TEST_F(BubblesTest, OnWaylandTheDesktopShowsThem) {
    for (const char* program : {"dunst", "dunstctl"})
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            GTEST_SKIP() << program << " is not installed";
    testing::DesktopSession screen, wayland;
    for (const std::string& reason : {screen.startX11(""), wayland.startWayland()})
        if (!reason.empty()) GTEST_SKIP() << reason;
    PrivateBus bus;
    for (auto* const each : {&screen, &wayland})
        each->setVariable("DBUS_SESSION_BUS_ADDRESS", bus.address.toLatin1().constData());
    Helper dunst, probe;
    dunst.setProcessEnvironment(screen.environment());
    dunst.start(QStringLiteral("dunst"), {QStringLiteral("-conf"), QStringLiteral("/dev/null")});
    const QString count = QStringLiteral("dunstctl count displayed");
    ASSERT_SOON(screen.run(count).trimmed() == QStringLiteral("0"));
    probe.setProcessEnvironment(wayland.environment());
    probe.start(QStringLiteral(BUBBLE_PROBE), {QStringLiteral("5000")});
    EXPECT_SOON(screen.run(count).trimmed() == QStringLiteral("2"));
}

}  // namespace
}  // namespace orrinvale
