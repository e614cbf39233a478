// See FastCleanBubbleView.h.
#include "ui/fastclean/FastCleanBubbleView.h"

#include "ui/bubbles/BubbleContent.h"

namespace orrinvale {

FastCleanBubbleView::FastCleanBubbleView(const QStringList& lines, const BubbleGround& ground,
                                         FastCleanBubbleViewDelegate& delegate)
    : m_delegate(delegate),
      m_bubble(
          std::make_unique<StandingBubble>(std::make_unique<BubbleContent>(lines), ground, this)) {}

FastCleanBubbleView::~FastCleanBubbleView() = default;

void FastCleanBubbleView::mouseEnterAction() { m_delegate.fastCleantimerKillToDeleteDelegate(); }

void FastCleanBubbleView::mouseExitAction() {
    m_delegate.fastCleantimerBeginToBeleteBubbleViewDelegate();
}

}  // namespace orrinvale
