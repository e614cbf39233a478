// Whether a StatusNotifier host is on the session bus. LinuxTrayHost.h asks.
#pragma once

#include <poll.h>

#include <chrono>
#include <optional>
#include <string>

#include "platform/linux/BusHandles.h"

namespace orrinvale {

/// One thread. A question waits for a second at most.
class StatusNotifierWatch final {
public:
    /// `bus` may be fresh, or null where there is none: then there is never a host.
    explicit StatusNotifierWatch(BusHandle bus);
    StatusNotifierWatch(const StatusNotifierWatch&) = delete;
    StatusNotifierWatch& operator=(const StatusNotifierWatch&) = delete;

    /// A connection that is yet to be greeted, or null. Never waits.
    [[nodiscard]] static BusHandle connectToSession();

    /// What to poll for; a descriptor of -1 where there is no bus.
    [[nodiscard]] pollfd toPoll() const;

    /// Milliseconds until process() is to be called though nothing has come; -1 for never.
    [[nodiscard]] int patience() const;

    /// Takes what has come, and asks anew where that says something about hosts, or where the last
    /// question got no answer and some seconds have passed.
    void process();

    /// False as long as no question has been answered: there may be a host or not.
    [[nodiscard]] bool isKnown() const { return m_isKnown; }

    /// The unique name of the watcher's owner while a host is registered, else empty. Another name
    /// is another host.
    [[nodiscard]] const std::string& host() const { return m_host; }

private:
    static int onSignal(sd_bus_message* message, void* self, sd_bus_error* error);
    [[nodiscard]] bool listen();
    void look();
    [[nodiscard]] std::optional<std::string> askForHost() const;

    BusHandle m_bus;
    std::string m_host;
    bool m_isKnown = false;
    bool m_isStale = true;  // something has happened since the last question
    std::optional<std::chrono::steady_clock::time_point> m_askAgainAt;  // it got no answer
};

}  // namespace orrinvale
