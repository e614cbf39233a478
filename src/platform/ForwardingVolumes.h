// ForwardingVolumes: what looks on while others ask for volumes begins with it. ForwardingFiles.h
// is the same for files.
#pragma once

#include <memory>
#include <optional>

#include "platform/volumes.h"

namespace orrinvale {

/// Passes every question on. The platform outlives the object.
class ForwardingVolumes : public Volumes {
public:
    explicit ForwardingVolumes(Volumes& platform) : m_platform(platform) {}

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override {
        return m_platform.FSGetVolumeInfo(volumeIndex, answer);
    }
    std::int32_t FSGetVolumeParms(std::int16_t refNumber, GetVolParmsInfoBuffer& buffer) override {
        return m_platform.FSGetVolumeParms(refNumber, buffer);
    }
    std::int32_t FSEjectVolumeSync(std::int16_t refNumber, std::uint32_t options,
                                   EjectDissent& dissent) override {
        return m_platform.FSEjectVolumeSync(refNumber, options, dissent);
    }
    [[nodiscard]] std::optional<RegistryMatching> IOBSDNameMatching(
        const char* bsdName) const override {
        return m_platform.IOBSDNameMatching(bsdName);
    }
    [[nodiscard]] RegistryEntryRef IOServiceGetMatchingService(
        const RegistryMatching& matching) const override {
        return m_platform.IOServiceGetMatchingService(matching);
    }
    std::uint32_t IORegistryEntryCreateIterator(
        const RegistryEntry& entry, std::unique_ptr<RegistryIterator>& iterator) const override {
        return m_platform.IORegistryEntryCreateIterator(entry, iterator);
    }

private:
    Volumes& m_platform;
};

}  // namespace orrinvale
