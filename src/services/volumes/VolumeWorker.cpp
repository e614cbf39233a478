// The queue of requests and the thread that works it off while there are any.
#include "services/volumes/VolumeWorker.h"

#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/MainQueue.h"
#include "platform/error.h"

namespace orrinvale {

// A request runs on the worker's thread and gives back what is to be done with its result on the
// main one.
struct VolumeWorker::Shared {
    using Request = std::function<std::function<void()>(Volumes&)>;

    Shared(Volumes& volumes, MainQueue& queue) : platform(volumes), mainQueue(queue) {}

    Volumes& platform;
    MainQueue& mainQueue;
    std::mutex mutex;  // guards what follows
    std::deque<Request> requests;
    bool isRunning = false;
    bool isOver = false;

    // The next request; none when nothing waits, and then the thread ends.
    Request next() {
        const std::lock_guard lock(mutex);
        if (isOver) requests.clear();
        isRunning = !requests.empty();
        if (!isRunning) return nullptr;
        Request first = std::move(requests.front());
        requests.pop_front();
        return first;
    }

    static void work(const std::shared_ptr<Shared>& self) {
        while (const Request request = self->next())
            self->mainQueue.async([self, answer = request(self->platform)] {
                if (!self->isEnded()) answer();
            });
    }

    void forgetRequests() {
        const std::lock_guard lock(mutex);
        requests.clear();
        isRunning = false;
    }

    bool isEnded() {
        const std::lock_guard lock(mutex);
        return isOver;
    }
};

VolumeWorker::VolumeWorker(Volumes& platform, MainQueue& mainQueue, StartThread startThread)
    : m_shared(std::make_shared<Shared>(platform, mainQueue)),
      m_startThread(std::move(startThread)) {}

VolumeWorker::~VolumeWorker() {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->isOver = true;
}

// Let go of: the process may end while a medium is still being written.
void VolumeWorker::startDetached(std::function<void()> work) {
    std::thread(std::move(work)).detach();
}

void VolumeWorker::add(Shared::Request request,
                       std::function<void(const std::string& reason)> refused) {
    {
        const std::lock_guard lock(m_shared->mutex);
        m_shared->requests.push_back(std::move(request));
        if (std::exchange(m_shared->isRunning, true)) return;
    }
    try {
        m_startThread([shared = m_shared] { Shared::work(shared); });
    } catch (const std::system_error& error) {
        Log::line(fmt::format("No thread for the volumes: {}", error.what()));
        m_shared->forgetRequests();  // this one alone; the next one tries again
        m_shared->mainQueue.async(
            [shared = m_shared, refused = std::move(refused),
             reason = systemError("clone", {}, error.code().value()).reason()] {
                if (!shared->isEnded()) refused(reason);
            });
    }
}

void VolumeWorker::ejectAllVolumes(const Ejected& ended) {
    const auto work = [ended](Volumes& platform) -> std::function<void()> {
        VolumesManager manager(platform, {});
        const std::int32_t status = manager.ejectAllVolumes();
        return [ended, status, failures = manager.failures()] { ended(status, failures); };
    };
    add(work, [ended](const std::string& reason) {
        ended(ioErr, {{0, {}, {}, ioErr, {reason, {}}}});
    });
}

void VolumeWorker::ejectVolume(std::int16_t volRefNumber, const std::string& volRootDir,
                               const std::string& volumeName, const Ejected& ended) {
    const auto work = [volRefNumber, volRootDir, volumeName,
                       ended](Volumes& platform) -> std::function<void()> {
        VolumesManager manager(platform, {});
        manager.ejectVolumeAt(volRefNumber, volRootDir);
        auto failures = manager.failures();
        for (EjectFailure& each : failures) each.volumeName = volumeName;
        const std::int32_t status = failures.empty() ? noErr : failures.front().status;
        return [ended, status, failures = std::move(failures)] { ended(status, failures); };
    };
    add(work, [volRefNumber, volRootDir, volumeName, ended](const std::string& reason) {
        ended(ioErr, {{volRefNumber, volumeName, volRootDir, ioErr, {reason, {}}}});
    });
}

}  // namespace orrinvale
