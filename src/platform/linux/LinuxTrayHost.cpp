// The thread, which sleeps on three descriptors: the bus, the X server, and the bell for its end.
#include "platform/linux/LinuxTrayHost.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <array>
#include <cerrno>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/descriptor.h"
#include "platform/linux/StatusNotifierWatch.h"
#include "platform/linux/XEmbedWatch.h"

namespace orrinvale {
namespace {

// What is there, and which one of its kind.
struct FoundHost {
    TrayKind kind = TrayKind::None;
    std::string host;
    std::uint32_t tray = 0;
    friend bool operator==(const FoundHost&, const FoundHost&) = default;
};

// A host is preferred: it draws the picture in its own looks. As long as nobody knows whether there
// is one, no other tray counts: the toolkit would ask that bus on the main thread, and decide once
// for all.
FoundHost whatIsThere(const StatusNotifierWatch& bus, const XEmbedWatch& x11) {
    if (!bus.host().empty()) return {TrayKind::StatusNotifier, bus.host(), 0};
    if (bus.isKnown() && x11.tray() != 0) return {TrayKind::XEmbed, {}, x11.tray()};
    return {};
}

}  // namespace

struct LinuxTrayHost::Shared {
    const Descriptor bell{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::mutex mutex;
    Told told;  // guarded by mutex; empty from the end on

    // Held while it tells, so that nothing is told behind the end.
    bool tell(TrayKind kind) {
        const std::lock_guard lock(mutex);
        if (told) told(kind);
        return told != nullptr;
    }
};

namespace {

template <class Tell>
void watchUntilTheBell(StatusNotifierWatch& bus, XEmbedWatch& x11, int bell, const Tell& tell) {
    std::optional<FoundHost> last;
    for (;;) {
        const FoundHost now = whatIsThere(bus, x11);
        if (last != now && !tell(now.kind)) return;
        last = now;
        std::array<pollfd, 3> waits{{{bell, POLLIN, 0}, bus.toPoll(), x11.toPoll()}};
        if (::poll(waits.data(), waits.size(), bus.patience()) < 0 && errno != EINTR) return;
        if (waits[0].revents != 0) return;
        bus.process();
        x11.process();
    }
}

}  // namespace

LinuxTrayHost::LinuxTrayHost(Where where) : m_where(where), m_shared(std::make_shared<Shared>()) {}

LinuxTrayHost::~LinuxTrayHost() {
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->told = nullptr;
    }
    const std::uint64_t one = 1;
    (void)!::write(m_shared->bell.get(), &one, sizeof one);
}

void LinuxTrayHost::watch(Told told) {
    m_shared->told = std::move(told);
    // Here, since the environment may change while the thread runs.
    BusHandle bus = m_where.hasBus ? StatusNotifierWatch::connectToSession() : nullptr;
    try {
        std::thread([shared = m_shared, bus = std::move(bus), hasX11 = m_where.hasX11]() mutable {
            XEmbedWatch x11(hasX11);
            StatusNotifierWatch notifiers(std::move(bus));
            watchUntilTheBell(notifiers, x11, shared->bell.get(),
                              [&shared](TrayKind kind) { return shared->tell(kind); });
        }).detach();
    } catch (const std::system_error&) {
        m_shared->tell(TrayKind::None);  // as where there is no tray
    }
}

}  // namespace orrinvale
