// The list of one name is never changed in place: each change makes a new list, so a round under
// way keeps the one that it began with, and handlers run with the lock open.
#include "engine/base/NotificationCenter.h"

#include <atomic>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orrinvale {

struct NotificationCenter::Entry {
    std::string name;
    Handler handler;
    std::atomic<bool> isRemoved{false};
};

struct NotificationCenter::Registry {
    using List = std::vector<std::shared_ptr<Entry>>;
    using SharedList = std::shared_ptr<const List>;

    std::mutex mutex;
    std::unordered_map<std::string, SharedList> lists;  // guarded by mutex

    void add(const std::shared_ptr<Entry>& entry) {
        SharedList old;  // dies after the lock opens, as do the handlers that it may hold
        const std::lock_guard lock(mutex);
        SharedList& current = lists[entry->name];
        auto next = current ? std::make_shared<List>(*current) : std::make_shared<List>();
        next->push_back(entry);
        old = std::exchange(current, std::move(next));
    }

    void remove(const Entry& entry) {
        SharedList old;
        const std::lock_guard lock(mutex);
        const auto found = lists.find(entry.name);
        if (found == lists.end()) return;
        auto next = std::make_shared<List>(*found->second);
        std::erase_if(*next, [&](const auto& each) { return each.get() == &entry; });
        old = std::move(found->second);
        if (next->empty()) lists.erase(found);
        else found->second = std::move(next);
    }

    SharedList listOf(const std::string& name) {
        const std::lock_guard lock(mutex);
        const auto found = lists.find(name);
        return found == lists.end() ? nullptr : found->second;
    }
};

NotificationCenter::Observation::Observation(std::weak_ptr<Registry> registry,
                                             std::shared_ptr<Entry> entry)
    : m_registry(std::move(registry)), m_entry(std::move(entry)) {}

NotificationCenter::Observation& NotificationCenter::Observation::operator=(
    Observation&& other) noexcept {
    if (this == &other) return *this;
    remove();
    m_registry = std::move(other.m_registry);
    m_entry = std::move(other.m_entry);
    return *this;
}

void NotificationCenter::Observation::remove() {
    const auto entry = std::exchange(m_entry, nullptr);
    if (!entry) return;
    entry->isRemoved = true;
    if (const auto registry = m_registry.lock()) registry->remove(*entry);
}

NotificationCenter::NotificationCenter() : m_registry(std::make_shared<Registry>()) {}

NotificationCenter::~NotificationCenter() = default;

NotificationCenter::Observation NotificationCenter::addObserver(std::string name, Handler handler) {
    auto entry = std::make_shared<Entry>();
    entry->name = std::move(name);
    entry->handler = std::move(handler);
    m_registry->add(entry);
    return {m_registry, std::move(entry)};
}

void NotificationCenter::post(std::string_view name, std::any object, UserInfo userInfo) const {
    const Notification notification{std::string(name), std::move(object), std::move(userInfo)};
    const auto list = m_registry->listOf(notification.name);
    if (!list) return;
    for (const auto& entry : *list)
        if (!entry->isRemoved && entry->handler) entry->handler(notification);
}

}  // namespace orrinvale
