// ThreadWorker: runs one piece of long work on a thread of its own and reports its end on the
// thread that asked for it.
#pragma once

#include <any>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace orrinvale {

/// A worker runs once. The starting thread must run an event loop, or the end is never delivered
/// and the worker's thread waits. Cancelling is a mark that the task asks for; it stops nothing by
/// itself.
class ThreadWorker final : public std::enable_shared_from_this<ThreadWorker> {
    struct Private {};

public:
    using Task = std::function<void(const std::any& argument)>;
    using CancellableTask = std::function<void(const std::any& argument, ThreadWorker& worker)>;
    using EndMethod = std::function<void(const std::any& argument)>;

    /// Whose work it is. The object is kept until the worker goes; the description is for the log.
    struct Target {
        std::shared_ptr<void> object;
        std::string description;
    };

    /// What runs on the new thread. Empty operations stand for a target that knows no such
    /// operation.
    struct Selector {
        std::string name;
        std::variant<Task, CancellableTask> operation;
    };

    /// Starts the task on a new thread that has an event loop of its own, so that the task may use
    /// timers. When it has returned, `didEndSelector`, if there is one, runs with an empty argument
    /// on the calling thread, from its event loop; the worker's thread waits for that, so that what
    /// both touch needs no lock. Gives null, with a line in the log, when the selector is empty or
    /// no thread can be had. What a task throws is not caught.
    [[nodiscard]] static std::shared_ptr<ThreadWorker> workOn(Target target, Selector withSelector,
                                                              std::any withObject,
                                                              EndMethod didEndSelector);

    ThreadWorker(Private, Target target, Selector selector, std::any argument,
                 EndMethod didEndSelector);
    ThreadWorker(const ThreadWorker&) = delete;
    ThreadWorker& operator=(const ThreadWorker&) = delete;

    /// Never blocks; a second call changes nothing. Any thread.
    void markAsCancelled() { m_cancelled.store(true, std::memory_order_relaxed); }
    [[nodiscard]] bool cancelled() const { return m_cancelled.load(std::memory_order_relaxed); }

    /// The class and its version.
    [[nodiscard]] static std::string description();

private:
    struct EndCall;

    void startThread(const std::shared_ptr<EndCall>& endCall);
    void runPrimaryTask(const std::shared_ptr<EndCall>& endCall);

    Target m_target;
    Selector m_selector;
    std::any m_argument;
    EndMethod m_didEndSelector;
    std::atomic<bool> m_cancelled{false};
    bool m_endRunLoop = false;  // touched on the worker's thread alone
};

}  // namespace orrinvale
