// The steps as calls over the bus, and how each one's end is waited for.
#include "platform/linux/DiskEjection.h"

#include <sys/sysmacros.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace orrinvale {
namespace {

using FailureKind = DiskServiceFailure::Kind;

constexpr int kMostRounds = 10;
constexpr std::chrono::milliseconds kBetweenRounds{100};

bool isGone(const DiskServiceResult<void>& result) {
    return !result && result.error().kind == FailureKind::Gone;
}

}  // namespace

std::optional<DiskServiceFailure> DiskEjection::unmount(const std::function<bool()>& isAnyLeft) {
    std::optional<DiskServiceFailure> vanished;
    for (int round = 0; round < kMostRounds; ++round) {
        if (round > 0) std::this_thread::sleep_for(kBetweenRounds);
        vanished.reset();
        bool isUnknown = false;
        for (const std::string& device : m_plan.mounted) {
            const Result done = call(device, "Filesystem", "Unmount");
            if (done) continue;
            if (done.error().kind != FailureKind::NotMounted && !isGone(done)) return done.error();
            if (isGone(done)) vanished = done.error();
            isUnknown = true;
        }
        if (!isUnknown || !isAnyLeft()) break;
    }
    return vanished;
}

std::optional<DiskServiceFailure> DiskEjection::release() {
    for (const std::string& device : m_plan.unlocked)
        if (const Result done = call(device, "Encrypted", "Lock"); !done && !isGone(done))
            return done.error();
    if (m_plan.loop.empty()) return releaseDrive();
    if (isLoopEmpty()) return std::nullopt;
    const Result done = call(m_plan.loop, "Loop", "Delete");
    if (done || isGone(done) || isLoopEmpty()) return std::nullopt;
    return done.error();
}

// A drive that gives its medium back may stay switched on, and one that can be switched off need
// not give it back.
std::optional<DiskServiceFailure> DiskEjection::releaseDrive() {
    std::optional<DiskServiceFailure> obstacle;
    if (m_plan.ejects) {
        const Result done = call(m_plan.drive, "Drive", "Eject");
        if (isGone(done)) return std::nullopt;
        if (!done) obstacle = done.error();
    }
    if (!m_plan.powersOff) return obstacle;
    const Result done = call(m_plan.drive, "Drive", "PowerOff");
    if (done || isGone(done) || (m_plan.ejects && !obstacle)) return std::nullopt;
    return obstacle ? obstacle : done.error();
}

bool DiskEjection::isLoopEmpty() const {
    return std::any_of(m_plan.devices.begin(), m_plan.devices.end(), [&](const DiskObject& each) {
        return each.path == m_plan.loop &&
               m_devices.isEmptyLoop(m_devices.deviceNumbered(gnu_dev_major(each.number),
                                                              gnu_dev_minor(each.number)));
    });
}

DiskEjection::Result DiskEjection::call(const std::string& path, const std::string& interface,
                                        const char* operation) {
    return m_service.call(path, ("org.freedesktop.UDisks2." + interface).c_str(), operation);
}

}  // namespace orrinvale
