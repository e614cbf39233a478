// Carries out what EjectionPlan.h plans, step by step, and stops at the first step that fails.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/linux/DiskService.h"
#include "platform/linux/EjectionPlan.h"
#include "platform/linux/LinuxVolumesDevices.h"

namespace orrinvale {

/// First unmount(), then release(). What vanishes by itself meanwhile, such as a stick that is
/// pulled, needs no more and is no failure. One thread; the parameters must outlive the object.
class DiskEjection final {
public:
    DiskEjection(DiskService& service, const EjectionPlan& plan, const LinuxVolumesDevices& devices)
        : m_service(service), m_plan(plan), m_devices(devices) {}

    /// Nothing when all file systems are unmounted. `isAnyLeft` tells whether one of them still
    /// stands: the service learns of a mount only a moment after it is made, and is asked again for
    /// a second.
    [[nodiscard]] std::optional<DiskServiceFailure> unmount(const std::function<bool()>& isAnyLeft);

    /// Nothing when the drive can be taken away.
    [[nodiscard]] std::optional<DiskServiceFailure> release();

private:
    using Result = DiskServiceResult<void>;

    [[nodiscard]] Result call(const std::string& path, const std::string& interface,
                              const char* operation);
    [[nodiscard]] std::optional<DiskServiceFailure> releaseDrive();
    [[nodiscard]] bool isLoopEmpty() const;

    DiskService& m_service;
    const EjectionPlan& m_plan;
    const LinuxVolumesDevices& m_devices;
};

}  // namespace orrinvale
