#include "services/foundation/ThreadWorker.h"

#include <QEventLoop>
#include <QTimer>
#include <system_error>
#include <thread>

#include "engine/base/Log.h"
#include "services/foundation/EndReceiver.h"

namespace orrinvale {

// The starting thread's end of the link. The receiver lives on that thread and deletes itself
// there.
struct ThreadWorker::EndCall {
    EndReceiver* receiver = nullptr;
};

ThreadWorker::ThreadWorker(Private, Target target, Selector selector, std::any argument,
                           EndMethod didEndSelector)
    : m_target(std::move(target)),
      m_selector(std::move(selector)),
      m_argument(std::move(argument)),
      m_didEndSelector(std::move(didEndSelector)) {}

std::shared_ptr<ThreadWorker> ThreadWorker::workOn(Target target, Selector withSelector,
                                                   std::any withObject, EndMethod didEndSelector) {
    const bool responds = std::visit(
        [](const auto& operation) { return static_cast<bool>(operation); }, withSelector.operation);
    if (!responds) {
        Log::line(fmt::format("ThreadWorker reports: Target {} does not respond to selector {}.",
                              target.description, withSelector.name));
        return nullptr;
    }
    auto worker =
        std::make_shared<ThreadWorker>(Private{}, std::move(target), std::move(withSelector),
                                       std::move(withObject), std::move(didEndSelector));
    auto endCall = std::make_shared<EndCall>();
    if (worker->m_didEndSelector) endCall->receiver = new EndReceiver(worker->m_didEndSelector);
    try {
        // The thread keeps the worker. It is let go, since nobody may wait for a task that asks for
        // no cancellation.
        std::thread([worker, endCall] { worker->startThread(endCall); }).detach();
    } catch (const std::system_error& error) {
        Log::line(fmt::format("ThreadWorker reports: no thread for {}: {}", worker->m_selector.name,
                              error.what()));
        delete endCall->receiver;
        return nullptr;
    }
    return worker;
}

void ThreadWorker::startThread(const std::shared_ptr<EndCall>& endCall) {
    QEventLoop loop;
    // From within the loop, so that it is up when the task begins.
    QTimer::singleShot(0, &loop, [this, &endCall] { runPrimaryTask(endCall); });
    while (!m_endRunLoop) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
        if (Log::isEngineEnabled())
            Log::line(fmt::format("isRunning: {:d}, _endRunLoop: {:d}", true, m_endRunLoop));
    }
}

void ThreadWorker::runPrimaryTask(const std::shared_ptr<EndCall>& endCall) {
    if (const auto* const cancellable = std::get_if<CancellableTask>(&m_selector.operation))
        (*cancellable)(m_argument, *this);
    else std::get<Task>(m_selector.operation)(m_argument);
    if (endCall->receiver != nullptr) endCall->receiver->callAndWait();
    m_endRunLoop = true;
}

std::string ThreadWorker::description() { return "ThreadWorker v1.0"; }

}  // namespace orrinvale
