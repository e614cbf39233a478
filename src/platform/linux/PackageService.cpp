// Names on the bus and numbers are those of PackageKit's reference, which keeps them for good.
#include "platform/linux/PackageService.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <utility>

#include "platform/deadline.h"
#include "platform/linux/BusHandles.h"

namespace orrinvale {
namespace {

using Clock = std::chrono::steady_clock;
using End = PackageCourse::End;
using Message = sd_bus_message;

constexpr const char* serviceName = "org.freedesktop.PackageKit";
constexpr const char* servicePath = "/org/freedesktop/PackageKit";
constexpr const char* transactionInterface = "org.freedesktop.PackageKit.Transaction";
constexpr std::chrono::milliseconds stepPatience(10'000);  // of what no person is asked for
constexpr std::uint64_t filterInstalled = std::uint64_t{1} << 2U;
constexpr std::uint64_t flagSimulate = std::uint64_t{1} << 2U;

std::string textOf(Message* message, char type) {
    const char* text = nullptr;
    return sdBus().message_read_basic(message, type, &text) > 0 && text != nullptr ? text : "";
}

std::uint32_t numberOf(Message* message) {
    std::uint32_t number = 0;
    return sdBus().message_read_basic(message, 'u', &number) > 0 ? number : 0;
}

int matchAdded(Message* /*message*/, void* /*self*/, sd_bus_error* /*error*/) { return 0; }

class Transaction final {
public:
    // Without an end it is a person who is waited for.
    Transaction(const std::atomic<bool>& stop, std::optional<Clock::time_point> end)
        : m_stop(stop), m_end(end) {}

    // The method's arguments are put in by `fill`.
    PackageCourse run(const char* method, const std::function<bool(Message*)>& fill) {
        if (!begin() || !start(method, fill)) return std::move(m_course);
        while (!m_isOver) {
            if (m_stop && !stops()) break;
            if (left().count() == 0) break;
            const int processed = sdBus().process(m_bus.get(), nullptr);
            constexpr std::chrono::milliseconds turn(100);
            if (processed < 0) {
                m_course.end = End::Absent;
                break;
            }
            if (processed > 0) continue;
            if (const int waited =
                    sdBus().wait(m_bus.get(), busMicroseconds(std::min(left(), turn)));
                waited < 0 && waited != -EINTR) {
                m_course.end = End::Absent;
                break;
            }
        }
        return std::move(m_course);
    }

private:
    // A simulation is left alone. What changes something has to say itself that it has stopped, and
    // is asked again in between, since parts of a removal can not be left half done. False when
    // there is nothing more to wait for.
    bool stops() {
        if (m_end && !m_isStopping) {
            m_course.end = End::Stopped;
            return false;
        }
        constexpr std::chrono::milliseconds pause(500);
        if (m_isStopping || Clock::now() - m_asked < pause) return true;
        m_asked = Clock::now();
        m_end = m_asked + stepPatience;
        PackageCourse before = std::move(m_course);
        m_isStopping = call(m_path.c_str(), transactionInterface, "Cancel",
                            [](Message*) { return true; }) != nullptr;
        m_course = std::move(before);
        m_end.reset();
        m_course.couldNotStop = !m_isStopping;
        return true;
    }

    [[nodiscard]] std::chrono::milliseconds left() const {
        return m_end ? timeUntil(*m_end) : stepPatience;
    }

    bool fails(End end, std::string words = {}) {
        m_course.end = end;
        if (!words.empty()) m_course.words = std::move(words);
        return false;
    }

    bool failsBy(const BusError& error) {
        const std::string_view name = error.name();
        const auto isOneOf = [&](auto... names) { return ((name == names) || ...); };
        if (isOneOf("org.freedesktop.DBus.Error.NoReply", "org.freedesktop.DBus.Error.Timeout",
                    "org.freedesktop.DBus.Error.TimedOut"))
            return fails(End::Silent);
        if (isOneOf("org.freedesktop.DBus.Error.ServiceUnknown",
                    "org.freedesktop.DBus.Error.NameHasNoOwner") ||
            name.starts_with("org.freedesktop.DBus.Error.Spawn"))
            return fails(End::Absent);
        if (isOneOf("org.freedesktop.DBus.Error.AccessDenied") ||
            name.find("NotAuthorized") != std::string_view::npos ||
            name.find("RefusedByPolicy") != std::string_view::npos)
            return fails(End::Refused, error.message());
        return fails(End::Failed, error.message());
    }

    bool begin() {
        sd_bus* bus = nullptr;
        if (!hasSdBus() || sdBus().open_system(&bus) < 0) return fails(End::Absent);
        m_bus.reset(bus);
        if (!becomesReady(*bus, std::min(left(), stepPatience))) return fails(End::Silent);
        const BusMessage made =
            call(servicePath, serviceName, "CreateTransaction", [](Message*) { return true; });
        if (!made) return false;
        m_path = textOf(made.get(), 'o');
        const char* const sender = sdBus().message_get_sender(made.get());
        if (sender != nullptr) m_sender = sender;
        return !m_path.empty() && !m_sender.empty() ? listen() : fails(End::Failed);
    }

    // Of the one service that made the transaction; anybody may send signals.
    bool listen() {
        const std::string news = "type='signal',sender='" + m_sender + "',path='" + m_path + "'";
        const std::string owner =
            "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" +
            m_sender + "'";
        for (const auto& [rule, handler] :
             {std::pair(&news, &Transaction::onNews), std::pair(&owner, &Transaction::onOwner)})
            if (sdBus().add_match_async(m_bus.get(), nullptr, rule->c_str(), handler, &matchAdded,
                                        this) < 0)
                return fails(End::Failed);
        return true;
    }

    bool start(const char* method, const std::function<bool(Message*)>& fill) {
        return call(m_path.c_str(), transactionInterface, "SetHints",
                    [](Message* message) {
                        return sdBus().message_append(message, "as", 2, "interactive=true",
                                                      "background=false") >= 0;
                    }) != nullptr &&
               call(m_path.c_str(), transactionInterface, method, fill) != nullptr;
    }

    BusMessage call(const char* path, const char* interface, const char* method,
                    const std::function<bool(Message*)>& fill) {
        Message* made = nullptr;
        const int failed = sdBus().message_new_method_call(m_bus.get(), &made, serviceName, path,
                                                           interface, method);
        const BusMessage question(made);
        if (failed < 0 || !fill(made)) {
            fails(End::Failed);
            return nullptr;
        }
        sdBus().message_set_allow_interactive_authorization(made, 1);
        BusError error;
        Message* reply = nullptr;
        const auto patience = std::max(left(), std::chrono::milliseconds(1));
        if (sdBus().call(m_bus.get(), made, busMicroseconds(patience), error.get(), &reply) < 0) {
            failsBy(error);
            return nullptr;
        }
        return BusMessage(reply);
    }

    static int onOwner(Message* /*message*/, void* self, sd_bus_error* /*error*/) {
        auto* const me = static_cast<Transaction*>(self);
        me->m_course.end = End::Absent;
        me->m_isOver = true;
        return 0;
    }

    static int onNews(Message* message, void* self, sd_bus_error* /*error*/) {
        auto* const me = static_cast<Transaction*>(self);
        const char* const member = sdBus().message_get_member(message);
        const std::string_view name = member != nullptr ? member : "";
        PackageCourse& course = me->m_course;
        if (name == "Package") {
            const std::uint32_t info = numberOf(message);
            course.packages.push_back({info, textOf(message, 's')});
        } else if (name == "ErrorCode") {
            course.error = numberOf(message);
            course.words = textOf(message, 's');
        } else if (name == "Finished") {
            me->finish(numberOf(message));
        }
        return 0;
    }

    // The same number stands for a polkit that can not be asked.
    [[nodiscard]] bool isDismissal() const {
        return m_course.error == PackageCourse::NotAuthorized &&
               m_course.words.find("Failed to check") == std::string::npos;
    }

    // The ends that PackageKit numbers; 10 of them.
    void finish(std::uint32_t exit) {
        constexpr std::uint32_t success = 1;
        constexpr std::uint32_t cancelled = 3;
        m_isOver = true;
        if (m_isStopping) m_course.couldNotStop = exit == success;
        if (exit == success) m_course.end = End::Success;
        else if (m_isStopping) m_course.end = End::Stopped;
        else if (m_course.error == PackageCourse::CannotGetLock) m_course.end = End::Busy;
        else if (exit == cancelled || isDismissal()) m_course.end = End::Dismissed;
        else m_course.end = End::Failed;
    }

    const std::atomic<bool>& m_stop;
    std::optional<Clock::time_point> m_end;
    Clock::time_point m_asked;  // to stop
    bool m_isStopping = false;  // as it was asked to
    BusHandle m_bus;
    std::string m_path;
    std::string m_sender;
    PackageCourse m_course;
    bool m_isOver = false;
};

bool appendTexts(Message* message, const std::vector<std::string>& texts) {
    std::vector<char*> list;
    list.reserve(texts.size() + 1);
    for (const std::string& each : texts) list.push_back(const_cast<char*>(each.c_str()));
    list.push_back(nullptr);
    return sdBus().message_append_strv(message, list.data()) >= 0;
}

PackageCourse removal(Transaction transaction, const std::vector<std::string>& ids,
                      std::uint64_t flags, bool withDependents) {
    return transaction.run("RemovePackages", [&](Message* message) {
        constexpr int withUnused = 0;
        return sdBus().message_append(message, "t", flags) >= 0 && appendTexts(message, ids) &&
               sdBus().message_append(message, "bb", withDependents ? 1 : 0, withUnused) >= 0;
    });
}

}  // namespace

std::string_view ServicePackage::field(std::size_t index) const {
    std::string_view rest = id;
    for (; index > 0; --index)
        rest.remove_prefix(std::min(std::min(rest.find(';'), rest.size()) + 1, rest.size()));
    return rest.substr(0, rest.find(';'));
}

std::string noteOn(const PackageCourse& course, const std::vector<std::string>& besides) {
    std::string note;
    for (const std::string& name : besides)
        note += (note.empty() ? "Another package went as well: " : ", ") + name;
    if (course.couldNotStop)
        note += std::string(note.empty() ? "" : "; ") +
                "The removal of packages could not be stopped any more";
    return note;
}

tl::expected<std::string, std::string> idOf(const std::vector<ServicePackage>& packages,
                                            std::string_view key, std::string_view own) {
    const std::size_t colon = key.find(':');
    const std::string_view wanted = colon == std::string_view::npos ? own : key.substr(colon + 1);
    std::string out;
    for (const ServicePackage& each : packages) {
        const std::string_view architecture = each.architecture();
        const bool fits = wanted.empty() || architecture == wanted ||
                          (colon == std::string_view::npos && architecture == "all");
        if (each.name() != key.substr(0, colon) || !fits || each.id == out) continue;
        if (!out.empty()) return tl::unexpected(fmt::format("There are several packages {}", key));
        out = each.id;
    }
    if (out.empty()) return tl::unexpected(fmt::format("{} is not installed any more", key));
    return out;
}

PackageCourse PackageService::resolve(const std::vector<std::string>& names,
                                      const Waiting& waiting) {
    return Transaction(waiting.stop, waiting.end).run("Resolve", [&](Message* message) {
        return sdBus().message_append(message, "t", filterInstalled) >= 0 &&
               appendTexts(message, names);
    });
}

PackageCourse PackageService::simulateRemoval(const std::vector<std::string>& ids,
                                              const Waiting& waiting) {
    return removal(Transaction(waiting.stop, waiting.end), ids, flagSimulate, true);
}

PackageCourse PackageService::remove(const std::vector<std::string>& ids,
                                     const std::atomic<bool>& stop) {
    return removal(Transaction(stop, std::nullopt), ids, 0, false);
}

}  // namespace orrinvale
