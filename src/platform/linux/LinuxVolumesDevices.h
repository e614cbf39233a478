// The block devices below volumes, as sysfs and udev describe them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/MountTable.h"
#include "platform/volumes.h"

namespace orrinvale {

/// Reads when it is asked and keeps nothing. A device is its folder in sysfs, with all links
/// resolved; the empty text stands for none, and has no name, no attributes, no label. Any thread.
class LinuxVolumesDevices final {
public:
    /// The folders where sysfs and udev's state are found, "/sys" and "/run/udev" on a running
    /// system.
    LinuxVolumesDevices(const std::string& sys, std::string udev);

    /// The device of a mount; empty for what lies on none.
    [[nodiscard]] std::string deviceOf(const MountEntry& mount) const;

    /// By its kernel name ("sda1"); empty when there is none.
    [[nodiscard]] std::string deviceNamed(std::string_view name) const;

    /// By its number; empty when there is none.
    [[nodiscard]] std::string deviceNumbered(std::uint32_t major, std::uint32_t minor) const;

    /// The number of a device as makedev(3) makes it; nothing when it is gone.
    [[nodiscard]] std::optional<std::uint64_t> numberOf(const std::string& device) const;

    /// The devices that are made of this one: unlocked, mapped, joined, those made of these
    /// included.
    [[nodiscard]] std::vector<std::string> layersOn(const std::string& device) const;

    /// Whether it is a loop device with no image behind it; many let go of the image by themselves
    /// when they are unmounted.
    [[nodiscard]] bool isEmptyLoop(const std::string& device) const;

    /// What else is made of these devices than mounts and the devices among them, in words for
    /// people: volume groups and arrays, file systems that span other drives, storage pools. Empty
    /// when nothing is.
    [[nodiscard]] std::string otherUseOf(const std::vector<std::string>& devices) const;

    /// The files behind attached loop devices, in exact bytes.
    [[nodiscard]] std::vector<std::string> attachedImages() const;

    /// The text that the kernel gives to one disk only: a medium put in later under the same name
    /// has another. Empty where the kernel is too old, and for no device.
    [[nodiscard]] std::string sequenceOf(const std::string& device) const;

    /// The bits of vMExtendedAttributes.
    /// - Removable: the drive says so, and discs, cards in SD slots and loop devices, which
    /// somebody attached to see an image.
    /// - Ejectable: the same, since all of them are given back without a tool.
    /// - On an external bus: USB, FireWire, what Thunderbolt or another outside port brought, and
    /// SD slots.
    ///
    /// Encrypted, mapped and joined devices have what any device below them has.
    [[nodiscard]] std::uint32_t extendedAttributes(const std::string& device) const;

    /// The file system's label in exact bytes, as udev found it; empty when there is none.
    [[nodiscard]] std::string labelOf(const std::string& device) const;

    /// Whether a folder in sysfs is a block device or partition; whether that is a whole device;
    /// nothing when it is gone.
    [[nodiscard]] bool isBlockDevice(const std::string& folder) const;
    [[nodiscard]] std::optional<bool> isWhole(const std::string& device) const;

    /// What lies in an optical drive. Discs that are no DVDs all count as CDs: the drive is what a
    /// person sees.
    enum class Disc : std::uint8_t { None, Cd, Dvd };
    [[nodiscard]] Disc discIn(const std::string& device) const;

    /// The folder above, empty at the root of the tree of devices.
    [[nodiscard]] std::string parentOf(const std::string& folder) const;

private:
    [[nodiscard]] std::uint32_t attributesOfWhole(const std::string& whole, int levelsLeft) const;
    void addLayersOn(const std::string& device, int levelsLeft,
                     std::vector<std::string>& layers) const;
    [[nodiscard]] std::string spanningUseOf(const std::vector<std::string>& devices) const;
    [[nodiscard]] bool isOnExternalBus(const std::string& whole) const;
    [[nodiscard]] std::string udevProperties(const std::string& device) const;

    std::string m_sys;
    std::string m_udev;
};

/// What a person calls a volume: its label; without one "/" is "System", and any other bears the
/// name of its folder.
[[nodiscard]] std::string volumeNameOf(const MountEntry& mount, const LinuxVolumesDevices& devices);

/// The object in the tree of devices of a folder in sysfs, and the iterator over its parents; null
/// when the folder is gone.
[[nodiscard]] RegistryEntryRef registryEntryOf(const LinuxVolumesDevices& devices,
                                               std::string folder);
[[nodiscard]] std::unique_ptr<RegistryIterator> registryParentsOf(const RegistryEntry& entry);

}  // namespace orrinvale
