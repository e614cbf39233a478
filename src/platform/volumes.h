// Volumes: the mounted volumes and the devices below them, as the engine asks for them.
// linux/LinuxVolumes.h implements it, fake/FakeVolumes.h stands in for it;
// engine/volumes/VolumesInfo.h is who asks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/statuses.h"

namespace orrinvale {

struct FSVolumeInfo {
    std::uint64_t totalBytes = 0;
    std::uint64_t freeBytes =
        0;  ///< what the user can still fill, without what is held back for the administrator
    std::uint64_t reservedBytes = 0;  ///< of the total, held back for the administrator, in no file
                                      ///< and not to be filled; 0 where that is not known
};

/// The answer of FSGetVolumeInfo.
struct IndexedVolume {
    std::int16_t refNumber = 0;  ///< the same for a mount as long as it stands
    FSVolumeInfo info;
    std::string name;      ///< what a person calls the volume; any bytes
    std::string rootPath;  ///< exact bytes; both are told on failure too, where they are known
    int errorNumber = 0;   ///< on failure the system's reason, 0 where there is none
};

/// What is known of a volume beside its size.
struct GetVolParmsInfoBuffer {
    std::int16_t vMVersion = 0;              ///< vMExtendedAttributes counts from version 3 on
    std::uint32_t vMServerAdr = 0;           ///< not 0 for a volume that a server gives
    std::uint32_t vMExtendedAttributes = 0;  ///< the bits below
    std::string vMDeviceID;  ///< name of the block device ("sda1"), empty where there is none
};

/// Bit numbers in vMExtendedAttributes.
inline constexpr unsigned bIsEjectable = 0;
inline constexpr unsigned bIsRemovable = 25;
inline constexpr unsigned bIsOnExternalBus = 27;

/// A program that uses a volume.
struct VolumeHolder {
    std::int32_t pid = 0;
    std::string name;  ///< of the program, as the system knows it; any bytes
    std::string
        path;  ///< something on the volume, or the device itself, that it holds open; any bytes
    friend bool operator==(const VolumeHolder&, const VolumeHolder&) = default;
};

/// What stood in the way of an ejection.
struct EjectDissent {
    std::string reason;  ///< one sentence for people, without a full stop; any bytes
    std::vector<VolumeHolder>
        holders;  ///< as many as were found in a short time; others may hold the volume too
};

/// One object in the tree of devices; a reference keeps it. What it answers is read when it is
/// asked.
class RegistryEntry {
public:
    virtual ~RegistryEntry() = default;

    /// Whether it is of this class or one derived from it: "IOMedia" is any block device or
    /// partition, "IOCDMedia" and "IODVDMedia" are discs.
    [[nodiscard]] virtual bool IOObjectConformsTo(std::string_view className) const = 0;

    /// A boolean property; nothing when it has none of this name or can not be read. "Whole" is
    /// false for a partition.
    [[nodiscard]] virtual std::optional<bool> IORegistryEntryCreateCFProperty(
        std::string_view key) const = 0;

protected:
    RegistryEntry() = default;
    RegistryEntry(const RegistryEntry&) = default;
    RegistryEntry& operator=(const RegistryEntry&) = default;
};

using RegistryEntryRef = std::shared_ptr<const RegistryEntry>;

/// Goes from one object towards the root of the tree.
class RegistryIterator {
public:
    virtual ~RegistryIterator() = default;

    /// The next parent, nullptr behind the last.
    [[nodiscard]] virtual RegistryEntryRef IOIteratorNext() = 0;

protected:
    RegistryIterator() = default;
    RegistryIterator(const RegistryIterator&) = default;
    RegistryIterator& operator=(const RegistryIterator&) = default;
};

/// What IOServiceGetMatchingService looks for: the device of this name.
struct RegistryMatching {
    std::string bsdName;
};

/// Any thread. The operations may wait for the system, each implementation says how long.
class Volumes {
public:
    virtual ~Volumes() = default;

    /// Describes the volume of this index, counted from 1. The numbering is that of the moment when
    /// this thread asked for index 1, and holds until it gets nsvErr, which says that the index
    /// lies past the last volume. Another failure concerns this volume only; the indexes behind it
    /// are still good.
    virtual std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) = 0;

    /// Fills the buffer for a volume that stands.
    virtual std::int32_t FSGetVolumeParms(std::int16_t refNumber,
                                          GetVolParmsInfoBuffer& buffer) = 0;

    /// Unmounts the volume and gives its medium or drive back, with all other volumes of that
    /// drive. 0 when it is done. nsvErr when the volume is gone already, fBsyErr when it is in use,
    /// ioErr for everything else; then `dissent` says why, and nothing is forced. A volume that the
    /// system runs from is refused before anything is touched. Whatever is mounted in the place of
    /// a volume that is gone stays. May ask the person for the right, and waits until a slow medium
    /// has taken all that was written, which can be minutes: not for a thread that draws. No
    /// options are known; the number is 0.
    virtual std::int32_t FSEjectVolumeSync(std::int16_t refNumber, std::uint32_t options,
                                           EjectDissent& dissent) = 0;

    /// Nothing for a text that can not name a device.
    [[nodiscard]] virtual std::optional<RegistryMatching> IOBSDNameMatching(
        const char* bsdName) const = 0;

    /// The device itself; nullptr when there is none of this name.
    [[nodiscard]] virtual RegistryEntryRef IOServiceGetMatchingService(
        const RegistryMatching& matching) const = 0;

    /// An iterator over the parents of an object, nearest first. 0, or the system's reason for
    /// having none.
    virtual std::uint32_t IORegistryEntryCreateIterator(
        const RegistryEntry& entry, std::unique_ptr<RegistryIterator>& iterator) const = 0;

protected:
    Volumes() = default;
    Volumes(const Volumes&) = default;
    Volumes& operator=(const Volumes&) = default;
};

}  // namespace orrinvale
