// The watcher's owner and one of its properties, asked again at each signal that may change them.
#include "platform/linux/StatusNotifierWatch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace orrinvale {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds answerPatience{1000};
// A panel that has just started may be busy for some seconds.
constexpr std::chrono::milliseconds untilNextQuestion{3000};
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

// Null for a refusal. "Late" is no answer at all, which says nothing.
struct Answer {
    BusMessage message;
    bool isLate = false;
};

// Calls a method with texts for arguments, of a service that runs already.
template <class... Texts>
Answer answerOf(sd_bus* bus, const char* service, const char* path, const char* interface,
                const char* method, const char* types, Texts... texts) {
    sd_bus_message* made = nullptr;
    const int failed =
        sdBus().message_new_method_call(bus, &made, service, path, interface, method);
    const BusMessage call(made);
    if (failed < 0 || sdBus().message_append(call.get(), types, texts...) < 0) return {};
    sdBus().message_set_auto_start(call.get(), 0);
    BusError error;
    sd_bus_message* answered = nullptr;
    const int result =
        sdBus().call(bus, call.get(), busMicroseconds(answerPatience), error.get(), &answered);
    return {result < 0 ? nullptr : BusMessage(answered), result == -ETIMEDOUT};
}

// A refusal leaves the question, which is asked all the same.
int matchAdded(sd_bus_message* /*message*/, void* /*self*/, sd_bus_error* /*error*/) { return 0; }

}  // namespace

BusHandle StatusNotifierWatch::connectToSession() {
    sd_bus* opened = nullptr;
    if (!hasSdBus() || sdBus().open_user(&opened) < 0) return nullptr;
    return BusHandle(opened);
}

StatusNotifierWatch::StatusNotifierWatch(BusHandle bus) : m_bus(std::move(bus)) {
    if (m_bus && (!becomesReady(*m_bus, answerPatience) || !listen())) m_bus.reset();
    m_isKnown = !m_bus;
    process();
}

int StatusNotifierWatch::onSignal(sd_bus_message* /*message*/, void* self, sd_bus_error*
                                  /*error*/) {
    static_cast<StatusNotifierWatch*>(self)->m_isStale = true;
    return 0;
}

// Without waiting, since a bus may hang behind its greeting; it works them off before it is asked
// anything.
bool StatusNotifierWatch::listen() {
    const auto add = [this](const char* match) {
        return sdBus().add_match_async(m_bus.get(), nullptr, match, &onSignal, &matchAdded, this) >=
               0;
    };
    return add(ownerMatch) && std::ranges::all_of(hostMatches, add);
}

pollfd StatusNotifierWatch::toPoll() const {
    if (!m_bus) return {-1, 0, 0};
    const int events = sdBus().get_events(m_bus.get());
    return {sdBus().get_fd(m_bus.get()), static_cast<short>(events), 0};
}

int StatusNotifierWatch::patience() const {
    if (!m_bus || !m_askAgainAt) return -1;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(*m_askAgainAt - Clock::now()).count();
    return static_cast<int>(std::max<std::int64_t>(left, 0));
}

void StatusNotifierWatch::process() {
    if (!m_bus) return;
    for (;;) {
        const int done = sdBus().process(m_bus.get(), nullptr);
        if (done < 0) {  // the bus has gone
            m_bus.reset();
            m_host.clear();
            m_isKnown = true;
            return;
        }
        if (done > 0) continue;
        if (!m_isStale && patience() != 0) return;
        // What comes while this waits lies in the connection and not in its descriptor, so that the
        // loop goes round once more.
        look();
    }
}

// A question without an answer leaves what was known.
void StatusNotifierWatch::look() {
    m_isStale = false;
    m_askAgainAt.reset();
    if (auto host = askForHost()) {
        m_host = *std::move(host);
        m_isKnown = true;
    } else {
        m_askAgainAt = Clock::now() + untilNextQuestion;
    }
}

std::optional<std::string> StatusNotifierWatch::askForHost() const {
    const Answer owner = answerOf(m_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                  "org.freedesktop.DBus", "GetNameOwner", "s", watcherName);
    if (owner.isLate) return std::nullopt;
    const char* name = nullptr;
    if (!owner.message || sdBus().message_read_basic(owner.message.get(), 's', &name) <= 0)
        return std::string();
    const Answer registered =
        answerOf(m_bus.get(), watcherName, watcherPath, "org.freedesktop.DBus.Properties", "Get",
                 "ss", watcherName, "IsStatusNotifierHostRegistered");
    if (registered.isLate) return std::nullopt;
    sd_bus_message* const answer = registered.message.get();
    int isRegistered = 0;
    if (answer == nullptr || sdBus().message_enter_container(answer, 'v', "b") <= 0 ||
        sdBus().message_read_basic(answer, 'b', &isRegistered) <= 0)
        return std::string();
    return isRegistered != 0 ? std::string(name) : std::string();
}

}  // namespace orrinvale
