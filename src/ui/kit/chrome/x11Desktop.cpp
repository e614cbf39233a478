// What an X server and its window manager can do, see desktopFrame.h. The names of properties are
// those of the Extended Window Manager Hints; the compositor of screen n owns the selection
// "_NET_WM_CM_Sn".
#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include "ui/kit/chrome/desktopFrame.h"

namespace orrinvale {
namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply> using ReplyPointer = std::unique_ptr<Reply, Free>;

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t atom(xcb_connection_t* x, std::string_view name) {
    const auto cookie = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// The 32-bit values of a property; none where it is missing.
std::vector<std::uint32_t> values(xcb_connection_t* x, xcb_window_t window, xcb_atom_t property) {
    constexpr std::uint32_t most = 4096;  // in values; window managers announce about a hundred
    const auto cookie =
        xcb_get_property(x, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, most);
    const ReplyPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + xcb_get_property_value_length(reply.get()) / 4};
}

bool isComposited(xcb_connection_t* x) {
    // The toolkit opens one X screen, the default one, whose monitors are its QScreens.
    const auto cookie = xcb_get_selection_owner(x, atom(x, "_NET_WM_CM_S0"));
    const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(x, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

}  // namespace

bool addX11Facts(DesktopFacts& facts) {
    xcb_connection_t* const x = connection();
    if (x == nullptr) return false;
    facts.server = DesktopFacts::Server::X11;
    facts.isComposited = isComposited(x);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    // The property may be left over from a manager that died; a living one repeats it on the window
    // that it points to.
    const xcb_atom_t check = atom(x, "_NET_SUPPORTING_WM_CHECK");
    const auto manager = values(x, root, check);
    facts.hasWindowManager = !manager.empty() && values(x, manager.front(), check) == manager;
    const auto supported = values(x, root, atom(x, "_NET_SUPPORTED"));
    const xcb_atom_t moveResize = atom(x, "_NET_WM_MOVERESIZE");
    facts.movesOnRequest = false;
    for (const std::uint32_t each : supported)
        facts.movesOnRequest = facts.movesOnRequest || each == moveResize;
    return true;
}

void announceShadow(const QWindow& window, const QMargins& margins) {
    xcb_connection_t* const x = connection();
    if (x == nullptr || window.handle() == nullptr) return;
    const qreal scale = window.devicePixelRatio();
    const auto pixels = [&](int points) {
        return static_cast<std::uint32_t>(qRound(points * scale));
    };
    const std::array extents{pixels(margins.left()), pixels(margins.right()), pixels(margins.top()),
                             pixels(margins.bottom())};
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        atom(x, "_GTK_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 32, extents.size(),
                        extents.data());
    xcb_flush(x);
}

}  // namespace orrinvale
