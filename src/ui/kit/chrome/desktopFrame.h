// desktopFrame: whether the windows of this program draw their own frame on this desktop, and with
// a shadow.
#pragma once

#include <QMargins>
#include <QtGlobal>

#include <optional>

class QWindow;

namespace orrinvale {

/// What the display server and its window manager can do.
struct DesktopFacts {
    enum class Server { X11, Wayland, Other };

    Server server = Server::Other;
    bool hasWindowManager = true;  ///< X11 only: somebody announces himself as one
    bool movesOnRequest =
        true;  ///< X11 only: he takes "_NET_WM_MOVERESIZE", so dragging snaps as in other windows
    bool isComposited = true;  ///< half transparent pixels show what lies behind the window
    std::optional<bool>
        wantsSystemFrame;  ///< ORRINVALE_SYSTEM_FRAME, "1" or "0"; nothing where it is not set
};

enum class FrameKind {
    Own,              ///< title bar, buttons, rounded corners and shadow of our own
    OwnWithoutAlpha,  ///< the same with square corners and a hairline, as nobody blends the pixels
    System  ///< the window manager's frame around our title bar, which then has no buttons
};

/// The user's wish comes first. A window manager that can not move windows on request would leave a
/// frameless window without the snapping and the key commands of its neighbours, so it draws the
/// frame; with no window manager at all nobody would, so we do, and move the window ourselves.
[[nodiscard]] FrameKind chooseFrame(const DesktopFacts& facts);

/// Asks the running desktop. Main thread; needs a QGuiApplication. Cheap enough for each activation
/// of a window.
[[nodiscard]] DesktopFacts desktopFacts();

/// Tells the window manager how much of the window is shadow only, so that it maximises, snaps and
/// stacks by what is seen. In points; does nothing where the server has no such notion.
void announceShadow(const QWindow& window, const QMargins& margins);

/// For desktopFrame.cpp: fills in what an X server knows. False when the program does not run on
/// one.
bool addX11Facts(DesktopFacts& facts);

}  // namespace orrinvale
