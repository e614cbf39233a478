// TCImageWindow without a desktop: bounds, title bar, zoom, closing, focus and looks.
// desktop_window_test.cpp has real servers.
#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QWindow>

#include "support/test.h"
#include "ui/kit/chrome/ResizeGrip.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/chrome/WindowShadow.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/look/Theme.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

constexpr QSize least(400, 300);
constexpr QSize most(600, 500);

void mouse(QWidget* widget, QEvent::Type type, QPoint global) {
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, QPointF(widget->mapFromGlobal(global)), QPointF(global), button, held,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void drag(QWidget* widget, QPoint from, QPoint by) {
    mouse(widget, QEvent::MouseButtonPress, from);
    for (const int quarter : {1, 2, 3, 4})
        mouse(widget, QEvent::MouseMove, from + by * quarter / 4);
    mouse(widget, QEvent::MouseButtonRelease, from + by);
}

class Window : public ::testing::Test {
protected:
    Window() {
        window.setTitleBarHeight(62);
        window.setTopButtonShift(15);
        window.setLeftMargin(8);
        window.setMinSize(least);
        window.setMaxSize(most);
        window.setContentView(content);
        window.setFrame(start);
        window.show();
    }

    // What the pointer would hit there.
    [[nodiscard]] QWidget* at(QPoint global) const {
        QWidget* const child = window.childAt(window.mapFromGlobal(global));
        return child != nullptr ? child : const_cast<TCImageWindow*>(&window);
    }

    const QRect start{100, 100, 500, 400};
    TCImageWindow window;
    QWidget* content = new QWidget;
};

TEST_F(Window, PutsTitleBarButtonsAndContentWhereTheyAreAskedFor) {
    EXPECT_EQ(window.geometry(),
              start.adjusted(-shadowMargin, -shadowMargin, shadowMargin, shadowMargin));
    EXPECT_EQ(window.titleBarView()->mapToGlobal(QPoint()), start.topLeft());
    EXPECT_EQ(window.titleBarView()->size(), QSize(500, 62));
    EXPECT_EQ(content->mapToGlobal(QPoint()), start.topLeft() + QPoint(0, 62));
    EXPECT_EQ(content->size(), QSize(500, 338));
    EXPECT_EQ(window.standardWindowButton(0)->pos(), QPoint(8, 15));
    EXPECT_LT(window.standardWindowButton(0)->x(), window.standardWindowButton(1)->x());
    EXPECT_EQ(window.standardWindowButton(3), nullptr);
    auto* const line = new ToplineView(window.titleBarView());
    EXPECT_SOON(line->geometry() == window.titleBarView()->rect());
    window.setContentSize({450, 350});
    EXPECT_EQ(content->size(), QSize(450, 350));
}

TEST_F(Window, KeepsItsBoundsWhateverIsAskedOfIt) {
    window.setFrame({0, 0, 50, 50});
    EXPECT_EQ(window.frame().size(), least);
    window.setContentSize({5000, 5000});
    EXPECT_EQ(window.frame().size(), most);
    window.resize(10, 10);
    EXPECT_EQ(window.frame().size(), least);
}

TEST_F(Window, EveryEdgeAndCornerResizesFromTheShadowToJustWithin) {
    const QPoint middle = start.center();
    for (const int side : {-1, 0, 1})
        for (const int height : {-1, 0, 1}) {
            if (side == 0 && height == 0) continue;
            window.setFrame(start);
            // Two points outside of the edge.
            const auto along = [](int which, int low, int centre, int high) {
                return which < 0 ? low - 2 : which > 0 ? high + 2 : centre;
            };
            const QPoint place(along(side, start.left(), middle.x(), start.right()),
                               along(height, start.top(), middle.y(), start.bottom()));
            auto* const grip = qobject_cast<ResizeGrip*>(at(place));
            ASSERT_NE(grip, nullptr) << side << ' ' << height;
            drag(grip, place, {side * 30, height * 30});
            EXPECT_EQ(window.frame(), start.adjusted(side < 0 ? -30 : 0, height < 0 ? -30 : 0,
                                                     side > 0 ? 30 : 0, height > 0 ? 30 : 0));
        }
}

TEST_F(Window, EmptyPlacesAndLabelsOfTheTitleBarMoveItAndItsButtonsDoNot) {
    auto* const label = new QLabel(QStringLiteral("Orrinvale"), window.titleBarView());
    label->setGeometry(200, 10, 100, 30);
    label->show();
    const QPoint empty = start.topLeft() + QPoint(400, 30),
                 onLabel = start.topLeft() + QPoint(220, 20);
    drag(at(empty), empty, {40, -20});
    EXPECT_EQ(window.frame(), start.translated(40, -20));
    window.setFrame(start);
    EXPECT_EQ(at(onLabel), label);
    drag(label, onLabel, {40, 0});
    EXPECT_EQ(window.frame(), start.translated(40, 0));
    window.setFrame(start);
    drag(window.standardWindowButton(2), start.topLeft() + QPoint(80, 30), {0, 60});
    EXPECT_EQ(window.frame(), start);
    // A hand that shakes does not move it.
    drag(at(empty), empty, {2, 2});
    EXPECT_EQ(window.frame(), start);
}

TEST_F(Window, ZoomsToTheMiddleWhereTheScreenIsLargerThanItMayBe) {
    const QRect screen = window.screen()->availableGeometry();
    ASSERT_GT(screen.width(), most.width());
    WindowButton* const zoom = window.standardWindowButton(2);
    const QString before = zoom->accessibleName();
    QTest::mouseDClick(window.titleBarView(), Qt::LeftButton, {}, {300, 30});
    EXPECT_TRUE(window.isZoomed());
    EXPECT_EQ(window.frame().size(), most);
    EXPECT_LE((window.frame().center() - screen.center()).manhattanLength(), 2);
    EXPECT_NE(zoom->accessibleName(), before);
    QTest::mouseClick(zoom, Qt::LeftButton);
    EXPECT_FALSE(window.isZoomed());
    EXPECT_EQ(window.frame(), start);
    window.setDoubleClickAction(TCImageWindow::DoubleClick::Nothing);
    QTest::mouseDClick(window.titleBarView(), Qt::LeftButton, {}, {300, 30});
    EXPECT_EQ(window.frame(), start);
    window.setDoubleClickAction(TCImageWindow::DoubleClick::Miniaturize);
    QTest::mouseDClick(window.titleBarView(), Qt::LeftButton, {}, {300, 30});
    EXPECT_TRUE(window.isMinimized());
}

TEST_F(Window, FillsTheScreenWithoutShadowOrGripsWhereItMay) {
    window.setMaxSize({4000, 4000});
    window.zoom();
    EXPECT_SOON(window.frame() == window.screen()->availableGeometry());
    EXPECT_TRUE(window.isMaximized());
    EXPECT_EQ(content->width(), window.width());
    EXPECT_EQ(qobject_cast<ResizeGrip*>(at(window.frame().topLeft())), nullptr);
    EXPECT_EQ(window.stringWithSavedFrame(), "100 100 500 400 1");
    window.zoom();
    EXPECT_SOON(window.frame() == start);
}

TEST_F(Window, BeingMaximisedFromOutsideEndsAtItsMaximumSizeToo) {
    window.showMaximized();
    EXPECT_SOON(!window.isMaximized() && window.frame().size() == most);
    window.zoom();
    EXPECT_EQ(window.frame(), start);
}

TEST_F(Window, AllWaysOfClosingTakeTheActionOfTheCloseButton) {
    int asked = 0;
    window.standardWindowButton(0)->setAction([&] { ++asked; });
    QTest::mouseClick(window.standardWindowButton(0), Qt::LeftButton);
    EXPECT_EQ(asked, 1);
    QCloseEvent fromManager;
    QSpontaneKeyEvent::setSpontaneous(&fromManager);
    qApp->notify(&window, &fromManager);
    EXPECT_FALSE(fromManager.isAccepted());
    EXPECT_SOON(asked == 2);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keySequence(&window, QKeySequence::Close);
    EXPECT_EQ(asked, 3);
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(window.close());
    EXPECT_EQ(asked, 3);
}

TEST_F(Window, ASavedFrameComesBackAndOneOffScreenComesIntoView) {
    const std::string text = window.stringWithSavedFrame();
    window.setFrame({0, 0, 450, 350});
    EXPECT_TRUE(window.setFrameFromString(text));
    EXPECT_EQ(window.frame(), start);
    EXPECT_FALSE(window.setFrameFromString("nonsense"));
    EXPECT_EQ(window.frame(), start);
    EXPECT_TRUE(window.setFrameFromString("9000 9000 500 400 0"));
    EXPECT_TRUE(window.screen()->availableGeometry().contains(window.frame()));
    EXPECT_TRUE(window.setFrameFromString("100 100 500 400 1"));
    EXPECT_EQ(window.frame().size(), most);
    EXPECT_EQ(window.stringWithSavedFrame(), "100 100 500 400 1");
}

TEST_F(Window, TheTabKeyReachesTheContentFirstAndTheWindowButtonsLast) {
    auto* const first =
        new TextImageButton(QStringLiteral("First"), TextImageButton::Role::Plain, content);
    auto* const second =
        new TextImageButton(QStringLiteral("Second"), TextImageButton::Role::Plain, content);
    for (TextImageButton* const button : {first, second}) button->show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.setFocus();
    const QList<QWidget*> expected{first, second, window.standardWindowButton(0),
                                   window.standardWindowButton(1), window.standardWindowButton(2)};
    for (QWidget* const each : expected) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), each);
    }
}

TEST_F(Window, ItsCornersAreRoundItsEdgeCastsAShadowAndItFollowsTheTheme) {
    content->setAutoFillBackground(true);
    content->setPalette(QPalette(Qt::red));
    const QImage image = window.grab().toImage();
    const int margin = shadowMargin;
    // The corner's outermost point is outside of the rounding, and shows shadow only.
    const QColor corner = image.pixelColor(margin, image.height() - 1 - margin);
    EXPECT_LT(corner.alpha(), 200);
    EXPECT_GT(corner.alpha(), 0);
    EXPECT_EQ(image.pixelColor(margin + 20, image.height() - 1 - margin - 1), QColor(Qt::red));
    EXPECT_GT(image.pixelColor(image.width() / 2, image.height() - margin + 3).alpha(), 0);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    Theme::shared().setScheme(Theme::Scheme::Dark);
    const QColor bar = window.grab().toImage().pixelColor(margin + 300, margin + 40);
    EXPECT_EQ(bar, Theme::color(Theme::Color::SurfaceRaised, Theme::Scheme::Dark));
    Theme::shared().setScheme(Theme::Scheme::Light);
}

TEST(TCImageWindow, InTheSystemsFrameItHasNeitherButtonsNorShadowNorGrips) {
    qputenv("ORRINVALE_SYSTEM_FRAME", "1");
    TCImageWindow window;
    qunsetenv("ORRINVALE_SYSTEM_FRAME");
    EXPECT_EQ(window.frameKind(), FrameKind::System);
    window.setMinSize(least);
    window.setFrame({100, 100, 500, 400});
    window.titleBarView()->show();
    EXPECT_FALSE(window.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_EQ(window.size(), QSize(500, 400));
    EXPECT_TRUE(window.standardWindowButton(0)->isHidden());
    EXPECT_EQ(window.titleBarView()->contentRect(), window.titleBarView()->rect());
    EXPECT_EQ(qobject_cast<ResizeGrip*>(window.childAt(0, 0)), nullptr);
}

TEST_F(Window, SheetsComeOutFromUnderTheTitleBarAndLeaveTheCornersRound) {
    auto* const panel = new QLabel(QStringLiteral("Sure?"));
    auto* const sheet = new Sheet(*content, panel);  // ends with the window
    sheet->open(nullptr);
    const QRect below(window.titleBarView()->geometry().bottomLeft() + QPoint(0, 1),
                      content->geometry().bottomRight());
    EXPECT_EQ(sheet->geometry(), below);
    EXPECT_EQ(window.childAt(window.titleBarView()->geometry().center()), window.titleBarView());
    const auto children = window.children();
    for (const auto* const corner : window.findChildren<WindowCorner*>())
        EXPECT_GT(children.indexOf(corner), children.indexOf(sheet)) << "a corner is covered";
}

}  // namespace
}  // namespace orrinvale
