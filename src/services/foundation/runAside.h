// runAside: typed work on a thread of its own, whose end comes back to the thread that asked.
// ThreadWorker.h has the thread.
#pragma once

#include <QPointer>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "services/foundation/ThreadWorker.h"

namespace orrinvale {
namespace aside {

template <class Work> constexpr bool takesWorker = std::is_invocable_v<Work&, ThreadWorker&>;

// Of work that returns nothing the value is a monostate, which the end is not given.
template <class Work> auto run(Work& work, ThreadWorker& worker) {
    const auto call = [&]() -> decltype(auto) {
        if constexpr (takesWorker<Work>) return work(worker);
        else return work();
    };
    if constexpr (!std::is_void_v<decltype(call())>) return call();
    else return call(), std::monostate{};
}

// The two halves and what goes from one to the other. The worker's end call is the lock between
// them: what the work wrote before it is seen in it.
template <class Work, class End> class Errand final {
public:
    Errand(Work work, End end) : m_work(std::move(work)), m_end(std::move(end)) {}

    void go(ThreadWorker& worker) {
        m_value.emplace(run(*m_work, worker));
        m_work.reset();
    }
    void comeBack(bool isWanted) {
        if (isWanted) {
            if constexpr (std::is_invocable_v<End&>) (*m_end)();
            else (*m_end)(std::move(*m_value));
        }
        m_end.reset();
        m_value.reset();
    }

private:
    std::optional<Work> m_work;
    std::optional<End> m_end;
    std::optional<decltype(run(std::declval<Work&>(), std::declval<ThreadWorker&>()))> m_value;
};

// `asker()` is asked on the starting thread; what it answers is kept while the end runs.
template <class Asker, class Work, class End>
std::shared_ptr<ThreadWorker> start(std::string name, Asker asker, Work work, End end) {
    const auto errand = std::make_shared<Errand<Work, End>>(std::move(work), std::move(end));
    return ThreadWorker::workOn(
        {nullptr, "runAside"},
        {std::move(name),
         [errand](const std::any& /*nothing*/, ThreadWorker& worker) { errand->go(worker); }},
        {}, [errand, asker = std::move(asker)](const std::any& /*nothing*/) {
            const auto kept = asker();
            errand->comeBack(kept != nullptr);
        });
}

}  // namespace aside

/// Runs `work()` on a new thread and then, from this thread's event loop, `end(value)` with what it
/// returned: only if the asker still lives, so that `end` may hold a bare pointer to it. An `end`
/// without a parameter is given nothing. `work` may take a `ThreadWorker&`, to see whether it was
/// cancelled.
///
/// What `work` holds goes on the thread aside as soon as it has run; what `end` holds, and the
/// value, go on this one, also when the asker is gone. This thread must run an event loop. Null,
/// with a line in the log, when no thread can be had: neither of the two then runs. `name` is for
/// that line. Keep the result to cancel, or drop it: the work goes on.
template <class Work, class End>
std::shared_ptr<ThreadWorker> runAside(QObject* asker, std::string name, Work work, End end) {
    return aside::start(
        std::move(name), [link = QPointer<QObject>(asker)] { return link.data(); }, std::move(work),
        std::move(end));
}

/// The same for an asker that is no QObject; it is kept while `end` runs.
template <class Asker, class Work, class End>
std::shared_ptr<ThreadWorker> runAside(std::weak_ptr<Asker> asker, std::string name, Work work,
                                       End end) {
    return aside::start(
        std::move(name), [link = std::move(asker)] { return link.lock(); }, std::move(work),
        std::move(end));
}

}  // namespace orrinvale
