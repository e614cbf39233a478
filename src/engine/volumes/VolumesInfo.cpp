// First the walk, then the decisions, then the climb from a partition to its disc.
#include "engine/volumes/VolumesInfo.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/base/Log.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale {
namespace {

constexpr std::int16_t kFirstVersionWithExtendedAttributes = 3;

bool hasBit(std::uint32_t bits, unsigned number) { return (bits >> number & 1U) != 0; }

std::shared_ptr<ZvVolumeInfo> recordOf(const IndexedVolume& volume) {
    auto record = std::make_shared<ZvVolumeInfo>();
    record->nTotalSize = volume.info.totalBytes;
    record->nFreeSize = volume.info.freeBytes;
    record->nReservedSize = volume.info.reservedBytes;
    record->freeSpace = UtilityFunction::convertVolSpace(volume.info.freeBytes);
    record->totalSpace = UtilityFunction::convertVolSpace(volume.info.totalBytes);
    record->volumeName = volume.name;
    record->volRefNumber = volume.refNumber;
    record->volRootDir = volume.rootPath;
    record->volIcon = IconRequest{IconRequest::Path, volume.rootPath};
    record->bIsDefaultVol = volume.rootPath == "/";
    return record;
}

}  // namespace

VolumesInfo::VolumesInfo(Volumes& platform) : m_platform(platform) { enumVolumesInfo(); }

VolumesInfo::VolumeArray& VolumesInfo::getAllVolsInfo() {
    m_volsArray.clear();
    enumVolumesInfo();
    return m_volsArray;
}

void VolumesInfo::enumVolumesInfo() {
    std::int32_t status = noErr;
    for (std::uint32_t index = 1; status != nsvErr; ++index) {
        IndexedVolume volume;
        status = m_platform.FSGetVolumeInfo(index, volume);
        if (status == noErr && volume.info.totalBytes != 0) status = addVolume(volume);
    }
    std::erase_if(
        m_withoutDevice, [this](const std::string& path) {  // what comes back is told again
            return std::ranges::none_of(
                m_volsArray, [&](const auto& volume) { return volume->volRootDir == path; });
        });
}

std::int32_t VolumesInfo::addVolume(const IndexedVolume& volume) {
    auto record = recordOf(volume);
    const std::int32_t status = classify(*record);
    if (status == noErr) m_volsArray.push_back(std::move(record));
    return status;
}

std::shared_ptr<ZvVolumeInfo> VolumesInfo::recordWithoutSize(const IndexedVolume& volume) {
    IndexedVolume unsized = volume;
    unsized.info = {};
    auto record = recordOf(unsized);
    record->freeSpace.clear();
    record->totalSpace.clear();
    return classify(*record) == noErr ? record : nullptr;
}

std::int32_t VolumesInfo::classify(ZvVolumeInfo& record) {
    GetVolParmsInfoBuffer buffer;
    const std::int32_t status = m_platform.FSGetVolumeParms(record.volRefNumber, buffer);
    if (status != noErr) {
        Log::line(
            fmt::format("FSGetVolumeParms failed returned {}", status));  // the log ends the line
        return status;
    }
    m_inHand = record.volRootDir;
    record.bCanEject = getVolEjectFlag(buffer, record.volRootDir);
    record.volType = getVolumeType(buffer);
    if (record.volType == OpticalVolume)
        record.bCanEject = true;  // a drive gives a disc back, whatever it reports
    return status;
}

std::uint32_t VolumesInfo::getVolParmsInfoExtendedAttributes(
    const GetVolParmsInfoBuffer& buffer) const {
    return buffer.vMVersion < kFirstVersionWithExtendedAttributes ? 0 : buffer.vMExtendedAttributes;
}

bool VolumesInfo::isNetworkVolume(const GetVolParmsInfoBuffer& buffer) const {
    return buffer.vMServerAdr != 0;
}

bool VolumesInfo::volIsRemovable(const GetVolParmsInfoBuffer& buffer) const {
    return hasBit(getVolParmsInfoExtendedAttributes(buffer), bIsRemovable);
}

bool VolumesInfo::volIsEjectable(const GetVolParmsInfoBuffer& buffer) const {
    return hasBit(getVolParmsInfoExtendedAttributes(buffer), bIsEjectable);
}

bool VolumesInfo::volIsExtendBus(const GetVolParmsInfoBuffer& buffer) const {
    return hasBit(getVolParmsInfoExtendedAttributes(buffer), bIsOnExternalBus);
}

std::int32_t VolumesInfo::getVolumeType(const GetVolParmsInfoBuffer& buffer) {
    if (isNetworkVolume(buffer)) return NetworkVolume;
    if (volCDorDVD(buffer.vMDeviceID.c_str())) return OpticalVolume;
    if (volIsExtendBus(buffer)) return ExternalVolume;
    if (volIsRemovable(buffer)) return DiskImageVolume;
    return LocalVolume;
}

bool VolumesInfo::getVolEjectFlag(const GetVolParmsInfoBuffer& buffer,
                                  const std::string& /*forVolume*/) const {
    return isNetworkVolume(buffer) || volIsExtendBus(buffer) || volIsEjectable(buffer);
}

bool VolumesInfo::volCDorDVD(const char* bsdName) {
    m_bVolIsCDorDVD = false;
    const auto matching = m_platform.IOBSDNameMatching(bsdName);
    if (!matching) {
        // Once a volume and not once a walk, of which there is one every two seconds.
        if (m_withoutDevice.insert(m_inHand).second)
            Log::line("IOBSDNameMatching returned a NULL dictionary.");
        return false;
    }
    const RegistryEntryRef service = m_platform.IOServiceGetMatchingService(*matching);
    if (!service) {
        Log::line("IOServiceGetMatchingService returned IO_OBJECT_NULL.");
        return false;
    }
    FindWholeMedia(service);
    return m_bVolIsCDorDVD;
}

void VolumesInfo::FindWholeMedia(const RegistryEntryRef& service) {
    std::unique_ptr<RegistryIterator> parents;
    const std::uint32_t result = m_platform.IORegistryEntryCreateIterator(*service, parents);
    if (result != 0) {
        Log::line(fmt::format("IORegistryEntryCreateIterator failed returned 0x{:08x}", result));
        return;
    }
    if (!parents) {
        Log::line("IORegistryEntryCreateIterator returned a NULL iterator");
        return;
    }
    // A disc is not looked for above the first whole medium.
    for (RegistryEntryRef object = service; object; object = parents->IOIteratorNext())
        if (IsWholeMedia(*object)) return;
}

bool VolumesInfo::IsWholeMedia(const RegistryEntry& object) {
    if (!object.IOObjectConformsTo("IOMedia")) return false;
    const std::optional<bool> whole = object.IORegistryEntryCreateCFProperty("Whole");
    if (!whole) {
        Log::line("Could not retrieve Whole property");
        return false;
    }
    if (!*whole) return false;
    m_bVolIsCDorDVD =
        object.IOObjectConformsTo("IOCDMedia") || object.IOObjectConformsTo("IODVDMedia");
    return true;
}

}  // namespace orrinvale
