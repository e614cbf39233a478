// NotificationCenter: named notices between parts that do not know each other, without a toolkit.
#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace orrinvale {

/// What the poster knows beside the object, by key.
using UserInfo = std::map<std::string, std::any, std::less<>>;

struct Notification {
    std::string name;
    std::any object;
    UserInfo userInfo;
};

/// Hands a notice to those who asked for its name. All operations may be called from any thread,
/// and from within a handler. No lock is held while a handler runs or is destroyed.
class NotificationCenter final {
    struct Entry;
    struct Registry;

public:
    using Handler = std::function<void(const Notification&)>;

    /// Keeps one handler registered; its end removes the handler. May outlive the centre.
    class [[nodiscard]] Observation final {
    public:
        Observation() = default;
        Observation(Observation&&) noexcept = default;
        Observation& operator=(Observation&& other) noexcept;
        ~Observation() { remove(); }

        /// Removes the handler now. On the thread that calls it the handler runs no more. A run
        /// that another thread has already begun goes on to its end: waiting for it here would lock
        /// up a handler that itself waits for this thread. A handler that may be called on several
        /// threads therefore holds what it uses by a weak pointer.
        void remove();

    private:
        friend class NotificationCenter;
        Observation(std::weak_ptr<Registry> registry, std::shared_ptr<Entry> entry);

        std::weak_ptr<Registry> m_registry;
        std::shared_ptr<Entry> m_entry;  // null once removed or moved from
    };

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    /// Registers a handler for a name until the result ends.
    [[nodiscard]] Observation addObserver(std::string name, Handler handler);

    /// Runs the handlers of the name on this thread, in the order of their registration, and
    /// returns after the last. A handler added meanwhile waits for the next notice; one removed
    /// meanwhile is left out. What a handler throws ends the round and reaches the caller.
    void post(std::string_view name, std::any object = {}, UserInfo userInfo = {}) const;

private:
    std::shared_ptr<Registry> m_registry;
};

}  // namespace orrinvale
