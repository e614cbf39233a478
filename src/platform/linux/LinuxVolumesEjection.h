// Takes a volume out of the system: DiskService.h for what lies on a device, the kernel's own
// unmount for what does not. Read EjectionPlan.h for what goes along with it, VolumeHolders.h for
// who may be in the way.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/LinuxVolumesDevices.h"
#include "platform/linux/MountTable.h"
#include "platform/volumes.h"

namespace orrinvale {

struct DiskObject;
struct EjectionPlan;

class LinuxVolumesEjection final {
public:
    struct Outcome {
        std::int32_t status = noErr;
        EjectDissent dissent;
        std::vector<MountEntry>
            gone;  ///< when it is done, all mounts that went with the volume, its own included
    };

    /// The files that list the mounts and what swaps. `devices` must outlive the object.
    LinuxVolumesEjection(std::string mountInfo, std::string swaps,
                         const LinuxVolumesDevices& devices)
        : m_mountInfo(std::move(mountInfo)), m_swaps(std::move(swaps)), m_devices(devices) {}

    /// Ejects this mount if it still stands, on a disk of this sequence where that is known. Any
    /// thread; see Volumes::FSEjectVolumeSync for what comes out of it and how long it takes. A
    /// disk service that does not answer is given up after a second.
    [[nodiscard]] Outcome eject(const MountEntry& mount, const std::string& diskSequence) const;

private:
    [[nodiscard]] std::vector<MountEntry> table() const;
    [[nodiscard]] bool stands(const MountEntry& mount) const;
    [[nodiscard]] Outcome unmount(const MountEntry& mount,
                                  const std::vector<MountEntry>& table) const;
    [[nodiscard]] Outcome ejectDevice(const MountEntry& mount, const std::string& device,
                                      const std::vector<MountEntry>& table) const;
    void addMounts(std::vector<DiskObject>& objects, const std::vector<MountEntry>& table) const;
    [[nodiscard]] std::vector<std::string> devicesOf(const EjectionPlan& plan) const;
    [[nodiscard]] std::string useBySystem(const EjectionPlan& plan,
                                          const std::vector<std::string>& devices,
                                          const std::vector<MountEntry>& mounts) const;

    [[nodiscard]] std::string useByOthers(const EjectionPlan& plan,
                                          const std::vector<MountEntry>& mounts) const;

    const std::string m_mountInfo;
    const std::string m_swaps;
    const LinuxVolumesDevices& m_devices;
};

}  // namespace orrinvale
