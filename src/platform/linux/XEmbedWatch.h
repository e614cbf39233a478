// Whether a tray of X11 is there. LinuxTrayHost.h asks; LinuxTrayHost works without it where the
// program was built without xcb.
#pragma once

#include <poll.h>

#include <cstdint>
#include <memory>

namespace orrinvale {

/// One thread. Connects to the display of this process; waits for the X server as each of its
/// programs does.
class XEmbedWatch final {
public:
    /// Without `hasX11` there is never a tray.
    explicit XEmbedWatch(bool hasX11);
    ~XEmbedWatch();
    XEmbedWatch(const XEmbedWatch&) = delete;
    XEmbedWatch& operator=(const XEmbedWatch&) = delete;

    /// What to poll for; a descriptor of -1 where there is no X server.
    [[nodiscard]] pollfd toPoll() const;

    /// Takes what has come.
    void process();

    /// The window of the tray, 0 for none. Another one is another tray.
    [[nodiscard]] std::uint32_t tray() const;

private:
    class Connection;
    std::unique_ptr<Connection> m_connection;
};

}  // namespace orrinvale
