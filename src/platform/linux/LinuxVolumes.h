// Volumes over the kernel's table of mounts, sysfs and udev. Read platform/volumes.h first;
// LinuxVolumesChoice.h says what counts as a volume, LinuxVolumesSpace.h how a dead server is kept
// from holding the walk up.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/LinuxVolumesDevices.h"
#include "platform/linux/LinuxVolumesEjection.h"
#include "platform/linux/LinuxVolumesSpace.h"
#include "platform/linux/MountTable.h"
#include "platform/volumes.h"

namespace orrinvale {

/// Where the system's own account of itself is read.
struct LinuxVolumePlaces {
    std::string mountInfo = "/proc/self/mountinfo";
    std::string sys = "/sys";
    std::string udev = "/run/udev";
    std::string swaps = "/proc/swaps";
};

/// The reference number of a mount is its id where that fits 16 bits and meant no other mount
/// before in this object, so that other processes come to the same number; otherwise a free one,
/// from the top. A number never passes to another mount as long as a free one is left, since
/// somebody may still hold it to eject what it stood for. None is ever 5, which is the memory's row
/// in lists of volumes.
///
/// A volume is called by its label; without one "/" is "System", and any other bears the name of
/// its folder. FSGetVolumeInfo of index 1 takes the table and asks all volumes for their space, at
/// most for a second altogether, and those whose figures the kernel has in memory without any
/// other thread; the later indexes cost nothing. It leaves out what vanished
/// meanwhile; what did not answer fails with ioErr, so that those behind it are still seen.
/// FSGetVolumeParms knows every volume that is mounted; for any other number it gives ioErr, never
/// nsvErr, which would end the walk of a caller for one volume's sake.
///
/// FSEjectVolumeSync takes all volumes of a drive along. Asked for one of those afterwards it says
/// once that this is done, so that whoever ejects a list of volumes does not hear of a failure for
/// each further partition of one stick.
class LinuxVolumes final : public Volumes {
public:
    explicit LinuxVolumes(LinuxVolumePlaces places = {},
                          std::chrono::milliseconds patience = std::chrono::seconds(1),
                          LinuxVolumesSpace::Ask askForSpace = &askKernelForSpace);

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override;
    std::int32_t FSGetVolumeParms(std::int16_t refNumber, GetVolParmsInfoBuffer& buffer) override;
    std::int32_t FSEjectVolumeSync(std::int16_t refNumber, std::uint32_t options,
                                   EjectDissent& dissent) override;
    [[nodiscard]] std::optional<RegistryMatching> IOBSDNameMatching(
        const char* bsdName) const override;
    [[nodiscard]] RegistryEntryRef IOServiceGetMatchingService(
        const RegistryMatching& matching) const override;
    std::uint32_t IORegistryEntryCreateIterator(
        const RegistryEntry& entry, std::unique_ptr<RegistryIterator>& iterator) const override;

private:
    /// A mount, and the disk that it lies on: the kernel gives the numbers of a stick that was
    /// pulled to the next one.
    struct Standing {
        MountEntry mount;
        std::string diskSequence;  ///< empty where there is none
    };
    struct Row {
        MountEntry mount;
        std::int16_t refNumber = 0;
        SpaceAnswer space;
        bool isAtOnce = false;  ///< asking for its space never waits
    };
    using Table = std::vector<Row>;

    [[nodiscard]] Table takeTable();
    void askForSpace(Table& table);
    [[nodiscard]] std::int16_t numberOf(const Standing& standing, const std::vector<Standing>& all);
    void forgetAllBut(const std::vector<Standing>& all);
    void noteGone(const std::vector<MountEntry>& mounts, std::int16_t asked);
    [[nodiscard]] std::int32_t describe(const Row& row, IndexedVolume& answer) const;

    const std::string m_mountInfo;
    const LinuxVolumesDevices m_devices;
    const LinuxVolumesEjection m_ejection;
    const LinuxVolumesSpace::Ask m_askForSpace;
    LinuxVolumesSpace m_space;

    std::mutex m_mutex;                                               // guards all that follows
    std::map<std::thread::id, std::shared_ptr<const Table>> m_walks;  // under way, one a thread
    std::map<std::int16_t, Standing> m_owners;                        // of the numbers ever given
    std::set<std::int16_t> m_goneAlong;  // with another volume, and not asked for since
};

}  // namespace orrinvale
