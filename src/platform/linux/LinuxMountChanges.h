// Mount changes by the kernel's table of mounts, held open. LinuxVolumesChoice.h says which mounts
// are volumes.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/descriptor.h"
#include "platform/linux/LinuxVolumes.h"
#include "platform/linux/LinuxVolumesChoice.h"
#include "platform/linux/LinuxVolumesDevices.h"
#include "platform/linux/MountTable.h"
#include "platform/mounts.h"

namespace orrinvale {

/// Takes the first look when it is made. A table that can not be read at a look changes nothing.
class LinuxMountChanges final : public MountChanges {
public:
    explicit LinuxMountChanges(LinuxVolumePlaces places = {});

    [[nodiscard]] int descriptor() const override { return m_file.get(); }
    [[nodiscard]] std::vector<MountChange> look() override;

private:
    struct Volume {
        MountEntry mount;
        std::string name;
    };
    /// One look at the table.
    struct Sight {
        std::vector<MountEntry> table;  // by mount id
        std::vector<Volume> volumes;    // in the table's order
        std::map<VolumeKey, std::size_t> byKey;
        [[nodiscard]] bool holds(const MountEntry& mount) const;
        [[nodiscard]] const Volume* find(
            const MountEntry& mount) const;  // null for a volume that is not there
    };

    [[nodiscard]] std::optional<std::string> readTable() const;
    [[nodiscard]] std::optional<Sight> takeSight() const;
    [[nodiscard]] bool stays(const Volume* before, const Volume* after, const Sight& now) const;

    const LinuxVolumesDevices m_devices;
    const Descriptor m_file;
    Sight m_last;
};

}  // namespace orrinvale
