// Whether a StatusNotifier host is on the session bus. LinuxTrayHost.h asks.
#pragma once

#include <poll.h>

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

    /// Takes what has come, and asks anew where that says something about hosts.
    void process();

    /// The unique name of the watcher's owner while a host is registered, else empty. Another name
    /// is another host.
    [[nodiscard]] const std::string& host() const { return m_host; }

private:
    static int onSignal(sd_bus_message* message, void* self, sd_bus_error* error);
    [[nodiscard]] bool listen();
    [[nodiscard]] std::string askForHost() const;

    BusHandle m_bus;
    std::string m_host;
    bool m_isStale = true;  // something has happened since the last question
};

}  // namespace orrinvale
