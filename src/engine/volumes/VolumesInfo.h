// VolumesInfo: which volumes are mounted now, and of what kind each is. ZvVolumeInfo.h is the
// record, platform/volumes.h what it is made from.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/volumes/ZvVolumeInfo.h"
#include "platform/volumes.h"

namespace orrinvale {

/// Every answer is made afresh; nothing is kept from one walk to the next but the array itself, and
/// what the log has been told. One object belongs to one thread. A walk waits for the platform.
class VolumesInfo final {
public:
    using VolumeArray = std::vector<std::shared_ptr<ZvVolumeInfo>>;

    /// Walks the volumes at once. `platform` must outlive the object.
    explicit VolumesInfo(Volumes& platform);
    VolumesInfo(const VolumesInfo&) = delete;
    VolumesInfo& operator=(const VolumesInfo&) = delete;

    /// The volumes of a new walk, in the platform's order. It is the same array at every call, so
    /// that the next call changes it under the caller; whoever needs a record for longer keeps its
    /// pointer.
    VolumeArray& getAllVolsInfo();

    /// The array as the last walk left it.
    [[nodiscard]] VolumeArray& volsArray() { return m_volsArray; }

    /// Walks the volumes and appends what it finds. A volume with no size or with a failure is left
    /// out, and the walk goes on; it ends with the status nsvErr, whichever operation gives it.
    void enumVolumesInfo();

    /// The record of a volume whose size FSGetVolumeInfo could not tell, without a figure. Its kind
    /// is asked of the system, never of the volume. Null where that can not be told either.
    [[nodiscard]] std::shared_ptr<ZvVolumeInfo> recordWithoutSize(const IndexedVolume& volume);

    /// 0 for a buffer of a version below 3, which has no such bits.
    [[nodiscard]] std::uint32_t getVolParmsInfoExtendedAttributes(
        const GetVolParmsInfoBuffer& buffer) const;
    [[nodiscard]] bool isNetworkVolume(const GetVolParmsInfoBuffer& buffer) const;
    [[nodiscard]] bool volIsRemovable(const GetVolParmsInfoBuffer& buffer) const;
    [[nodiscard]] bool volIsEjectable(const GetVolParmsInfoBuffer& buffer) const;
    [[nodiscard]] bool volIsExtendBus(const GetVolParmsInfoBuffer& buffer) const;

    /// Whether the device of this name lies on a CD or a DVD. Every failure counts as no.
    [[nodiscard]] bool volCDorDVD(const char* bsdName);

    /// Climbs from a device to the first whole medium above it, itself included, and notes whether
    /// that is a disc.
    void FindWholeMedia(const RegistryEntryRef& service);

    /// True for a whole medium; then it is noted whether that is a disc.
    [[nodiscard]] bool IsWholeMedia(const RegistryEntry& object);

    /// One of VolumeType. A server decides first, then the disc, so that a disc in an outer drive
    /// is optical.
    [[nodiscard]] std::int32_t getVolumeType(const GetVolParmsInfoBuffer& buffer);

    /// What a server gives or an external bus holds can always be ejected, the rest as the device
    /// says. The path does not matter: the boot volume has no rule of its own.
    [[nodiscard]] bool getVolEjectFlag(const GetVolParmsInfoBuffer& buffer,
                                       const std::string& forVolume) const;

private:
    [[nodiscard]] std::int32_t addVolume(const IndexedVolume& volume);
    [[nodiscard]] std::int32_t classify(ZvVolumeInfo& record);

    Volumes& m_platform;
    VolumeArray m_volsArray;
    std::string m_inHand;  // root path of the volume that is being classified
    std::set<std::string>
        m_withoutDevice;  // root paths of volumes whose device has no name, which was logged
    bool m_bVolIsCDorDVD = false;  // what the climb found for the volume that is being classified
};

}  // namespace orrinvale
