#include "ui/bubbles/BubbleView.h"

#include <utility>

#include "ui/bubbles/BubbleContent.h"

namespace orrinvale {

BubbleView::BubbleView(std::unique_ptr<BubbleContent> initWithView, BubbleGround ground)
    : m_ground(std::move(ground)) {
    m_timer.setSingleShot(true);
    m_timer.setInterval(m_ground.lifetime);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { deleteBubbleView(); });
    initBubbleViewWith(std::move(initWithView));
}

BubbleView::~BubbleView() = default;

void BubbleView::initBubbleViewWith(std::unique_ptr<BubbleContent> view) {
    if (m_bubble) m_bubble->orderOut();
    else if (view) m_bubble = std::make_unique<StandingBubble>(std::move(view), m_ground, this);
    timerBeginToBeleteBubbleView();
}

void BubbleView::timerBeginToBeleteBubbleView() { m_timer.start(); }

void BubbleView::timerKillToDelete() { m_timer.stop(); }

void BubbleView::deleteBubbleView() {
    m_timer.stop();
    m_bubble.reset();
    const auto tell = std::exchange(gone, nullptr);
    if (tell) tell();
}

void BubbleView::mouseEnterAction() { timerKillToDelete(); }

void BubbleView::mouseExitAction() { timerBeginToBeleteBubbleView(); }

MAAttachedWindow* BubbleView::maattachedView() const {
    return m_bubble ? m_bubble->maattachedView() : nullptr;
}

}  // namespace orrinvale
