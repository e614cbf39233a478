// StandingBubble: one bubble from its placing to its end, wherever bubbles stand on this desktop.
// BubbleView.h gives it its time.
#pragma once

#include <QObject>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "ui/bubbles/MAAttachedWindow.h"
#include "ui/kit/chrome/desktopFrame.h"

namespace orrinvale {

class BubbleContent;
class DesktopNotifications;

/// What bubbles are shown with. Nothing of it is owned; all of it outlives the bubbles.
struct BubbleGround {
    DesktopNotifications* notifications = nullptr;  ///< null: there are none
    std::function<QWidget*()> openWindow;  ///< what a bubble can lie in; null, or an answer of
                                           ///< null, where nothing is open
    std::function<DesktopFacts::Server()> server = [] { return desktopFacts().server; };
    std::chrono::milliseconds lifetime{5000};  ///< from its placing, and from the pointer's leaving
};

enum class BubblePlace { Screen, Notification, Window, Log };

/// An X server puts a window where it is told to; a Wayland compositor does not, but has a service
/// for such words.
[[nodiscard]] BubblePlace bubblePlace(DesktopFacts::Server server, bool hasNotifications,
                                      bool hasOpenWindow);

/// The place of the first bubble of a series on a screen of that size, measured from the lower left
/// corner.
[[nodiscard]] AttachedPoint bubbleAnchor(double screenWidth, double screenHeight);

/// Placing it counts both counters of UtilityObject up; each further one of a series stands 60
/// points lower. Its end takes it away and counts the living ones down; after the last of them the
/// next series begins at the top. Main thread only.
class StandingBubble final : public QObject {
    Q_OBJECT
public:
    /// How far each bubble stands below the one before, and how far all stand from their anchor.
    static constexpr int step = 60;
    static constexpr float distance = 5;

    /// The delegate hears of the pointer where the bubble is a window of ours; it outlives this.
    StandingBubble(std::unique_ptr<BubbleContent> content, BubbleGround ground,
                   MAAttachedWindowDelegate* delegate = nullptr);
    ~StandingBubble() override;

    /// Off the screen, and still counted.
    void orderOut() { delete m_window.data(); }

    /// Null where it is not on the screen, or shown by the desktop.
    [[nodiscard]] MAAttachedWindow* maattachedView() const { return m_window.data(); }

private:
    void show(BubblePlace place, std::unique_ptr<BubbleContent> content);
    void showWindow(std::unique_ptr<BubbleContent> content, QWidget* inWindow);
    void notify(const BubbleContent& content);

    const BubbleGround m_ground;
    MAAttachedWindowDelegate* const m_delegate;
    const int m_place;                    // in its series, from 0 on
    std::uint64_t m_note = 0;             // where the desktop shows it
    QPointer<MAAttachedWindow> m_window;  // ends with the window that it lies in
};

}  // namespace orrinvale
