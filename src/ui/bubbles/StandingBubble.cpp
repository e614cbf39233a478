// The counters are of the screen, however a bubble is shown, so that a desktop that changes its
// mind finds them right.
#include "ui/bubbles/StandingBubble.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/UtilityObject.h"
#include "services/desktop/DesktopNotifications.h"
#include "ui/bubbles/BubbleContent.h"
#include "ui/kit/chrome/SheetHost.h"

namespace orrinvale {
namespace {

constexpr double besideEdge = 200;
constexpr double belowEdge = 10;

// The inside of a window that draws its own title bar is what lies below that.
AttachedPoint anchorIn(QWidget& window) {
    const auto* const host = dynamic_cast<const SheetHost*>(&window);
    const QRect area = host != nullptr ? host->sheetArea() : window.rect();
    const AttachedPoint anchor = bubbleAnchor(area.width(), area.height());
    return {area.x() + anchor.x, window.height() - area.y() - area.height() + anchor.y};
}

QWidget* openWindowOf(const BubbleGround& ground) {
    return ground.openWindow ? ground.openWindow() : nullptr;
}

void log(const QStringList& lines) { Log::line(lines.join(QStringLiteral("; ")).toStdString()); }

}  // namespace

BubblePlace bubblePlace(DesktopFacts::Server server, bool hasNotifications, bool hasOpenWindow) {
    if (server == DesktopFacts::Server::X11) return BubblePlace::Screen;
    if (server == DesktopFacts::Server::Wayland && hasNotifications)
        return BubblePlace::Notification;
    return hasOpenWindow ? BubblePlace::Window : BubblePlace::Log;
}

AttachedPoint bubbleAnchor(double screenWidth, double screenHeight) {
    return {screenWidth - besideEdge, screenHeight - belowEdge};
}

StandingBubble::StandingBubble(std::unique_ptr<BubbleContent> content, BubbleGround ground,
                               MAAttachedWindowDelegate* delegate)
    : m_ground(std::move(ground)),
      m_delegate(delegate),
      m_place(UtilityObject::getMyObject().totalBubbleCount++) {
    ++UtilityObject::getMyObject().liveBubbleCount;
    const bool hasNotifications = m_ground.notifications && m_ground.notifications->hasBus();
    show(bubblePlace(m_ground.server(), hasNotifications, openWindowOf(m_ground) != nullptr),
         std::move(content));
}

StandingBubble::~StandingBubble() {
    if (--UtilityObject::getMyObject().liveBubbleCount == 0)
        UtilityObject::getMyObject().totalBubbleCount = 0;
    orderOut();
}

void StandingBubble::show(BubblePlace place, std::unique_ptr<BubbleContent> content) {
    switch (place) {
        case BubblePlace::Screen: showWindow(std::move(content), nullptr); break;
        case BubblePlace::Notification: notify(*content); break;
        case BubblePlace::Window: showWindow(std::move(content), openWindowOf(m_ground)); break;
        case BubblePlace::Log: log(content->lines()); break;
    }
}

void StandingBubble::showWindow(std::unique_ptr<BubbleContent> content, QWidget* inWindow) {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const QSize size = screen == nullptr ? QSize(0, 0) : screen->size();
    AttachedPoint anchor =
        inWindow != nullptr ? anchorIn(*inWindow) : bubbleAnchor(size.width(), size.height());
    anchor.y -= m_place * step;
    m_window = MAAttachedWindow::initWithView(std::move(content), anchor, inWindow,
                                              AttachedSide::Bottom, distance)
                   .release();
    m_window->setDelegate(m_delegate);
    m_window->setHasArrow(false);
    m_window->show();
}

// Passed on as words: the desktop has its own place, look and time for them. Where nobody shows
// them after all, the open window does, for most of the bubble's life.
void StandingBubble::notify(const BubbleContent& content) {
    const QStringList& lines = content.lines();
    DesktopNote note;
    note.title = lines.value(0);
    note.body = lines.mid(1).join(QLatin1Char('\n'));
    note.milliseconds = static_cast<int>(m_ground.lifetime.count());
    note.patience = m_ground.lifetime / 3;
    m_note = m_ground.notifications->show(note, [self = QPointer<StandingBubble>(this), lines] {
        if (!self) {
            log(lines);
            return;
        }
        self->m_ground.notifications->withdraw(self->m_note);  // a slow service shows it yet
        const bool hasWindow = openWindowOf(self->m_ground) != nullptr;
        self->show(hasWindow ? BubblePlace::Window : BubblePlace::Log,
                   std::make_unique<BubbleContent>(lines));
    });
}

}  // namespace orrinvale
