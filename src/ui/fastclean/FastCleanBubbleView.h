// FastCleanBubbleView: the bubble at the end of a Fast Clean. Its time is its owner's.
#pragma once

#include <QStringList>
#include <memory>

#include "ui/bubbles/StandingBubble.h"

namespace orrinvale {

/// Who gives the bubble its time.
class FastCleanBubbleViewDelegate {
public:
    virtual ~FastCleanBubbleViewDelegate() = default;
    /// The pointer is on it: it is not to go.
    virtual void fastCleantimerKillToDeleteDelegate() {}
    /// The pointer has left it: its time begins anew.
    virtual void fastCleantimerBeginToBeleteBubbleViewDelegate() {}

protected:
    FastCleanBubbleViewDelegate() = default;
    FastCleanBubbleViewDelegate(const FastCleanBubbleViewDelegate&) = default;
    FastCleanBubbleViewDelegate& operator=(const FastCleanBubbleViewDelegate&) = default;
};

/// Stands from its making to its end, among the other bubbles of the program. Main thread only.
class FastCleanBubbleView final : public MAAttachedWindowDelegate {
public:
    /// One line, or up to three. The delegate outlives it.
    FastCleanBubbleView(const QStringList& lines, const BubbleGround& ground,
                        FastCleanBubbleViewDelegate& delegate);
    ~FastCleanBubbleView() override;
    FastCleanBubbleView(const FastCleanBubbleView&) = delete;
    FastCleanBubbleView& operator=(const FastCleanBubbleView&) = delete;

    // The pointer comes and goes.
    void mouseEnterAction() override;
    void mouseExitAction() override;

    /// Null where it is not on the screen, or shown by the desktop.
    [[nodiscard]] MAAttachedWindow* maattachedView() const { return m_bubble->maattachedView(); }

private:
    FastCleanBubbleViewDelegate& m_delegate;
    const std::unique_ptr<StandingBubble> m_bubble;
};

}  // namespace orrinvale
