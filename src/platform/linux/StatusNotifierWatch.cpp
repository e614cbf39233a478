// The watcher's owner and one of its properties, asked again at each signal that may change them.
#include "platform/linux/StatusNotifierWatch.h"

#include <array>

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds patience{1000};
constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr const char* ownerMatch =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='org.kde.StatusNotifierWatcher'";
constexpr std::array hostMatches{
    "type='signal',interface='org.kde.StatusNotifierWatcher',"
    "member='StatusNotifierHostRegistered'",
    "type='signal',interface='org.kde.StatusNotifierWatcher',"
    "member='StatusNotifierHostUnregistered'"};

// Calls a method with texts for arguments, of a service that runs already. Null for any failure.
template <class... Texts>
BusMessage answerOf(sd_bus* bus, const char* service, const char* path, const char* interface,
                    const char* method, const char* types, Texts... texts) {
    sd_bus_message* made = nullptr;
    const int failed =
        sdBus().message_new_method_call(bus, &made, service, path, interface, method);
    const BusMessage call(made);
    if (failed < 0 || sdBus().message_append(call.get(), types, texts...) < 0) return nullptr;
    sdBus().message_set_auto_start(call.get(), 0);
    BusError error;
    sd_bus_message* answered = nullptr;
    const int result =
        sdBus().call(bus, call.get(), busMicroseconds(patience), error.get(), &answered);
    return result < 0 ? nullptr : BusMessage(answered);
}

}  // namespace

BusHandle StatusNotifierWatch::connectToSession() {
    sd_bus* opened = nullptr;
    if (!hasSdBus() || sdBus().open_user(&opened) < 0) return nullptr;
    return BusHandle(opened);
}

StatusNotifierWatch::StatusNotifierWatch(BusHandle bus) : m_bus(std::move(bus)) {
    if (m_bus && (!becomesReady(*m_bus, patience) || !listen())) m_bus.reset();
    process();
}

int StatusNotifierWatch::onSignal(sd_bus_message* /*message*/, void* self, sd_bus_error*
                                  /*error*/) {
    static_cast<StatusNotifierWatch*>(self)->m_isStale = true;
    return 0;
}

bool StatusNotifierWatch::listen() {
    bool isWhole = sdBus().add_match(m_bus.get(), nullptr, ownerMatch, &onSignal, this) >= 0;
    for (const char* const match : hostMatches)
        isWhole = isWhole && sdBus().add_match(m_bus.get(), nullptr, match, &onSignal, this) >= 0;
    return isWhole;
}

pollfd StatusNotifierWatch::toPoll() const {
    if (!m_bus) return {-1, 0, 0};
    const int events = sdBus().get_events(m_bus.get());
    return {sdBus().get_fd(m_bus.get()), static_cast<short>(events), 0};
}

void StatusNotifierWatch::process() {
    if (!m_bus) return;
    for (;;) {
        const int done = sdBus().process(m_bus.get(), nullptr);
        if (done < 0) {  // the bus has gone
            m_bus.reset();
            m_host.clear();
            return;
        }
        if (done > 0) continue;
        if (!m_isStale) return;
        m_isStale = false;
        // What comes while this waits lies in the connection and not in its descriptor, so that the
        // loop goes round once more.
        m_host = askForHost();
    }
}

std::string StatusNotifierWatch::askForHost() const {
    const BusMessage owner = answerOf(m_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                      "org.freedesktop.DBus", "GetNameOwner", "s", watcherName);
    const char* name = nullptr;
    if (!owner || sdBus().message_read_basic(owner.get(), 's', &name) <= 0) return {};
    const BusMessage registered =
        answerOf(m_bus.get(), watcherName, watcherPath, "org.freedesktop.DBus.Properties", "Get",
                 "ss", watcherName, "IsStatusNotifierHostRegistered");
    int isRegistered = 0;
    if (!registered || sdBus().message_enter_container(registered.get(), 'v', "b") <= 0 ||
        sdBus().message_read_basic(registered.get(), 'b', &isRegistered) <= 0)
        return {};
    return isRegistered != 0 ? std::string(name) : std::string();
}

}  // namespace orrinvale
