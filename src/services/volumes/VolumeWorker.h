// VolumeWorker: ejects volumes without holding the window up. engine/volumes/VolumesManager.h does
// the work.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/volumes/VolumesManager.h"

namespace orrinvale {

class MainQueue;

/// Requests are worked off one after another on a thread of their own, and answered on the main
/// queue in their order: ejecting may take minutes where a medium has a lot to write. Main thread
/// only. When the object ends, what has begun goes on, what waits is dropped, and nothing is
/// answered any more.
class VolumeWorker final {
public:
    using Ejected =
        std::function<void(std::int32_t status, const std::vector<EjectFailure>& failures)>;

    /// Runs it on a thread that nobody joins; throws std::system_error where there is none.
    using StartThread = std::function<void(std::function<void()> work)>;

    /// Both outlive the process's last request. Where no thread starts, a request is answered with
    /// ioErr and the reason.
    VolumeWorker(Volumes& platform, MainQueue& mainQueue, StartThread startThread = startDetached);
    ~VolumeWorker();
    VolumeWorker(const VolumeWorker&) = delete;
    VolumeWorker& operator=(const VolumeWorker&) = delete;

    /// As VolumesManager::ejectAllVolumes().
    void ejectAllVolumes(const Ejected& ended);

    /// As VolumesManager::ejectVolumeAt(); at most one failure, which bears this name.
    void ejectVolume(std::int16_t volRefNumber, const std::string& volRootDir,
                     const std::string& volumeName, const Ejected& ended);

private:
    struct Shared;
    static void startDetached(std::function<void()> work);
    void add(std::function<std::function<void()>(Volumes&)> request,
             std::function<void(const std::string& reason)> refused);

    const std::shared_ptr<Shared> m_shared;
    const StartThread m_startThread;
};

}  // namespace orrinvale
