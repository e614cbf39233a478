// A tray tells of itself by a message to the root window, and of its end by that of its window.
#include "platform/linux/XEmbedWatch.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <string_view>

namespace orrinvale {
namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply> using ReplyPointer = std::unique_ptr<Reply, Free>;

xcb_atom_t atom(xcb_connection_t* x, std::string_view name) {
    const auto cookie = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

class XEmbedWatch::Connection {
public:
    Connection() : m_x(xcb_connect(nullptr, nullptr)) {
        if (isBroken()) return;
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_x)).data->root;
        // The toolkit opens one X screen, the first.
        m_selection = atom(m_x, "_NET_SYSTEM_TRAY_S0");
        m_manager = atom(m_x, "MANAGER");
        listenTo(m_root);
        look();
    }
    ~Connection() { xcb_disconnect(m_x); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] bool isBroken() const { return xcb_connection_has_error(m_x) != 0; }
    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(m_x); }
    [[nodiscard]] xcb_window_t tray() const { return m_tray; }

    void process() {
        bool mayHaveChanged = false;
        do {
            mayHaveChanged = false;
            while (const ReplyPointer<xcb_generic_event_t> event{xcb_poll_for_event(m_x)})
                mayHaveChanged = mayHaveChanged || isAboutTrays(*event);
            // Its questions may bring further events, which the descriptor then does not tell.
            if (mayHaveChanged) look();
        } while (mayHaveChanged && !isBroken());
    }

private:
    void listenTo(xcb_window_t window) {
        constexpr std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_x, window, XCB_CW_EVENT_MASK, &mask);
    }

    // Listens before it asks again, so that a tray that ends between the two is not missed.
    void look() {
        for (;;) {
            const xcb_window_t before = m_tray;
            const auto cookie = xcb_get_selection_owner(m_x, m_selection);
            const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
                xcb_get_selection_owner_reply(m_x, cookie, nullptr));
            m_tray = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
            if (m_tray == XCB_WINDOW_NONE || m_tray == before) break;
            listenTo(m_tray);
        }
        xcb_flush(m_x);
    }

    [[nodiscard]] bool isAboutTrays(const xcb_generic_event_t& event) const {
        switch (event.response_type & 0x7F) {
            case XCB_DESTROY_NOTIFY: return true;
            case XCB_CLIENT_MESSAGE: {
                const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
                return message.type == m_manager && message.data.data32[1] == m_selection;
            }
            default: return false;
        }
    }

    xcb_connection_t* const m_x;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    xcb_window_t m_tray = XCB_WINDOW_NONE;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_atom_t m_manager = XCB_ATOM_NONE;
};

XEmbedWatch::XEmbedWatch(bool hasX11) {
    if (hasX11) m_connection = std::make_unique<Connection>();
    if (m_connection && m_connection->isBroken()) m_connection.reset();
}

XEmbedWatch::~XEmbedWatch() = default;

pollfd XEmbedWatch::toPoll() const {
    return {m_connection ? m_connection->descriptor() : -1, POLLIN, 0};
}

void XEmbedWatch::process() {
    if (!m_connection) return;
    m_connection->process();
    if (m_connection->isBroken()) m_connection.reset();
}

std::uint32_t XEmbedWatch::tray() const { return m_connection ? m_connection->tray() : 0; }

}  // namespace orrinvale
