// FastCleanBubbleView: the bubble at the end of a Fast Clean. Its time is its owner's.
#pragma once

#include <QStringList>

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

/// Stands from its making to its end. Main thread only.
class FastCleanBubbleView final {
public:
    /// Up to three lines. The delegate, which may be null, outlives it.
    FastCleanBubbleView(const QStringList& lines, FastCleanBubbleViewDelegate* delegate);
    ~FastCleanBubbleView();
    FastCleanBubbleView(const FastCleanBubbleView&) = delete;
    FastCleanBubbleView& operator=(const FastCleanBubbleView&) = delete;

    void mouseEnterAction();
    void mouseExitAction();

private:
    FastCleanBubbleViewDelegate* const m_delegate;
};

}  // namespace orrinvale
