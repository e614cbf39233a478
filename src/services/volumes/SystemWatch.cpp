// The thread, what it is asked for, and how a look comes to the main thread: at most one waits
// there, so that a busy window is told of the newest alone.
#include "services/volumes/SystemWatch.h"

#include <array>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "engine/base/Log.h"
#include "engine/base/MainQueue.h"

namespace orrinvale {
namespace {

using Clock = std::chrono::steady_clock;
using SightRef = std::shared_ptr<const SystemSight>;

constexpr std::size_t kParts = 2;
using PartFlags = std::array<bool, kParts>;

std::size_t indexOf(SystemWatch::Part part) { return static_cast<std::size_t>(part); }

}  // namespace

struct SystemWatch::Observer {
    Observer(std::shared_ptr<Shared> of, Part what, Handler called)
        : shared(std::move(of)), part(what), handler(std::move(called)) {}
    ~Observer();
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;

    const std::shared_ptr<Shared> shared;
    const Part part;
    const Handler handler;
};

struct SystemWatch::Shared : std::enable_shared_from_this<SystemWatch::Shared> {
    struct Wish {
        PartFlags parts{};
        bool tellsAnyway = false;  // somebody has come who was told of nothing yet
    };

    Shared(Volumes& theVolumes, const Memory& theMemory, MainQueue& queue,
           std::chrono::milliseconds howLong)
        : volumes(theVolumes), memory(theMemory), mainQueue(queue), pause(howLong) {}

    Volumes& volumes;
    const Memory& memory;
    MainQueue& mainQueue;
    const std::chrono::milliseconds pause;

    std::mutex mutex;  // guards the next lines
    std::condition_variable changed;
    std::array<int, kParts> observers{};
    bool isRunning = false;
    bool isOver = false;
    bool isDue = false;  // without waiting for the time
    bool hasNewObserver = false;
    SightRef waiting;       // for the main thread
    PartFlags waitingOf{};  // what differs in it from what was told before

    // The main thread's.
    std::vector<std::weak_ptr<Observer>> handlers;
    SightRef latest;

    void start();
    static void work(const std::shared_ptr<Shared>& self);
    bool nextWish(Clock::time_point due, Wish& wish);
    [[nodiscard]] SystemSight look(VolumeLook& eyes, const Wish& wish,
                                   const SystemSight& last) const;
    void tell(const SightRef& sight, const PartFlags& parts);
    void deliver();
};

SystemWatch::Observer::~Observer() {
    const std::lock_guard lock(shared->mutex);
    --shared->observers[indexOf(part)];
}

// With the lock held. Let go of: the process may end while a mount does not answer.
void SystemWatch::Shared::start() {
    if (std::exchange(isRunning, true)) return;
    try {
        std::thread([self = shared_from_this()] { work(self); }).detach();
    } catch (const std::system_error& error) {
        Log::line(fmt::format("No thread for looking at the volumes: {}", error.what()));
        isRunning = false;  // the next observer tries again
    }
}

void SystemWatch::Shared::work(const std::shared_ptr<Shared>& self) {
    VolumeLook eyes(self->volumes);
    auto last = std::make_shared<const SystemSight>();
    Wish wish;
    for (auto due = Clock::now(); self->nextWish(due, wish); due = std::max(due, Clock::now())) {
        due = Clock::now() + self->pause;
        const auto now = std::make_shared<const SystemSight>(self->look(eyes, wish, *last));
        const PartFlags differs{!showsSameVolumes(*last, *now), !showsSameMemory(*last, *now)};
        last = now;
        if (wish.tellsAnyway) self->tell(now, wish.parts);
        else if (differs[0] || differs[1]) self->tell(now, differs);
    }
}

// Waits for the time of the next look; false when there is none any more.
bool SystemWatch::Shared::nextWish(Clock::time_point due, Wish& wish) {
    std::unique_lock lock(mutex);
    const auto isWanted = [this] { return observers[0] + observers[1] > 0; };
    for (;;) {
        if (isOver) return false;
        if (isWanted() && (isDue || Clock::now() >= due)) break;
        if (isWanted()) changed.wait_until(lock, due);
        else changed.wait(lock);
    }
    wish = {{observers[0] > 0, observers[1] > 0}, std::exchange(hasNewObserver, false)};
    isDue = false;
    return true;
}

SystemSight SystemWatch::Shared::look(VolumeLook& eyes, const Wish& wish,
                                      const SystemSight& last) const {
    SystemSight sight = last;
    if (wish.parts[indexOf(Part::Volumes)]) sight.volumes = eyes.take();
    if (!wish.parts[indexOf(Part::Memory)]) return sight;
    sight.memoryState.reset();
    if (const auto state = memory.state()) sight.memoryState = *state;
    return sight;
}

void SystemWatch::Shared::tell(const SightRef& sight, const PartFlags& parts) {
    const std::lock_guard lock(mutex);
    if (isOver) return;
    for (std::size_t i = 0; i < kParts; ++i) waitingOf[i] = waitingOf[i] || parts[i];
    const bool isUnderWay = std::exchange(waiting, sight) != nullptr;
    if (!isUnderWay) mainQueue.async([self = shared_from_this()] { self->deliver(); });
}

void SystemWatch::Shared::deliver() {
    PartFlags parts{};
    {
        const std::lock_guard lock(mutex);
        if (isOver) return;
        latest = std::exchange(waiting, nullptr);
        parts = std::exchange(waitingOf, {});
    }
    const SightRef sight = latest;
    std::erase_if(handlers, [](const auto& each) { return each.expired(); });
    const auto told = handlers;  // a handler may bring others
    for (const auto& each : told)
        if (const auto observer = each.lock(); observer && parts[indexOf(observer->part)])
            observer->handler(*sight);
}

SystemWatch::SystemWatch(Volumes& volumes, const Memory& memory, MainQueue& mainQueue,
                         std::chrono::milliseconds pause)
    : m_shared(std::make_shared<Shared>(volumes, memory, mainQueue, pause)) {}

SystemWatch::~SystemWatch() {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->isOver = true;
    m_shared->changed.notify_all();
}

SystemWatch::Observation SystemWatch::observe(Part part, Handler handler) {
    auto observer = std::make_shared<Observer>(m_shared, part, std::move(handler));
    m_shared->handlers.push_back(observer);
    const std::lock_guard lock(m_shared->mutex);
    ++m_shared->observers[indexOf(part)];
    m_shared->hasNewObserver = true;
    m_shared->isDue = true;
    m_shared->start();
    m_shared->changed.notify_all();
    return observer;
}

void SystemWatch::lookNow() {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->isDue = true;
    m_shared->changed.notify_all();
}

SightRef SystemWatch::latest() const { return m_shared->latest; }

}  // namespace orrinvale
