// NotedVolumes: the volumes, with a note of each that could not be asked.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/error.h"
#include "platform/volumes.h"

namespace orrinvale::cli {

/// Passes every question on. The list of volumes has no place for those that do not answer, but
/// whoever misses a server wants to know why. The platform outlives the object. One thread.
class NotedVolumes final : public Volumes {
public:
    explicit NotedVolumes(Volumes& platform) : m_platform(platform) {}

    [[nodiscard]] const std::vector<Error>& failures() const { return m_failures; }

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override {
        const std::int32_t status = m_platform.FSGetVolumeInfo(volumeIndex, answer);
        m_path = answer.rootPath;
        if (status != noErr && status != nsvErr) note(answer.errorNumber);
        return status;
    }
    std::int32_t FSGetVolumeParms(std::int16_t refNumber, GetVolParmsInfoBuffer& buffer) override {
        const std::int32_t status = m_platform.FSGetVolumeParms(refNumber, buffer);
        if (status != noErr) note(0);
        return status;
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
    void note(int number) { m_failures.push_back(systemError("statfs", m_path, number)); }

    Volumes& m_platform;
    std::string m_path;  // of the volume asked last
    std::vector<Error> m_failures;
};

}  // namespace orrinvale::cli
