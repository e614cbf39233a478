// See FastCleanBubbleView.h.
#include "ui/fastclean/FastCleanBubbleView.h"

#include "engine/base/Log.h"
#include "engine/base/UtilityObject.h"

namespace orrinvale {

FastCleanBubbleView::FastCleanBubbleView(const QStringList& lines,
                                         FastCleanBubbleViewDelegate* delegate)
    : m_delegate(delegate) {
    UtilityObject& shared = UtilityObject::getMyObject();
    ++shared.totalBubbleCount;
    ++shared.liveBubbleCount;
    Log::line(lines.join(QStringLiteral("; ")).toStdString());
}

FastCleanBubbleView::~FastCleanBubbleView() {
    UtilityObject& shared = UtilityObject::getMyObject();
    if (--shared.liveBubbleCount == 0) shared.totalBubbleCount = 0;
}

void FastCleanBubbleView::mouseEnterAction() {
    if (m_delegate != nullptr) m_delegate->fastCleantimerKillToDeleteDelegate();
}

void FastCleanBubbleView::mouseExitAction() {
    if (m_delegate != nullptr) m_delegate->fastCleantimerBeginToBeleteBubbleViewDelegate();
}

}  // namespace orrinvale
