// BubbleView: a bubble that goes when its time is over, unless the pointer rests on it.
#pragma once

#include <QTimer>
#include <functional>
#include <memory>

#include "ui/bubbles/StandingBubble.h"

namespace orrinvale {

/// Main thread only.
class BubbleView final : public MAAttachedWindowDelegate {
public:
    /// Shows the bubble at once.
    BubbleView(std::unique_ptr<BubbleContent> initWithView, BubbleGround ground);
    ~BubbleView() override;
    BubbleView(const BubbleView&) = delete;
    BubbleView& operator=(const BubbleView&) = delete;

    /// Takes the bubble that there is off the screen, and shows no new one then, though the old one
    /// counts as living until its time is over. The time begins anew in both cases.
    void initBubbleViewWith(std::unique_ptr<BubbleContent> view);

    void timerBeginToBeleteBubbleView();
    void timerKillToDelete();
    void deleteBubbleView();

    // The pointer comes and goes.
    void mouseEnterAction() override;
    void mouseExitAction() override;

    /// Null where it is not on the screen, or shown by the desktop.
    [[nodiscard]] MAAttachedWindow* maattachedView() const;
    [[nodiscard]] bool isStanding() const { return m_bubble != nullptr; }

    /// Called when the bubble has gone by itself; may delete this.
    std::function<void()> gone;

private:
    const BubbleGround m_ground;
    std::unique_ptr<StandingBubble> m_bubble;
    QTimer m_timer;
};

}  // namespace orrinvale
