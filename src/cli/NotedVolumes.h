// NotedVolumes: the volumes, with a note of each that could not be asked.
#pragma once

#include <string>
#include <vector>

#include "platform/ForwardingVolumes.h"
#include "platform/error.h"

namespace orrinvale::cli {

/// The list of volumes has no place for those that do not answer, but whoever misses a server wants
/// to know why. The platform outlives the object. One thread.
class NotedVolumes final : public ForwardingVolumes {
public:
    using ForwardingVolumes::ForwardingVolumes;

    [[nodiscard]] const std::vector<Error>& failures() const { return m_failures; }

    std::int32_t FSGetVolumeInfo(std::uint32_t volumeIndex, IndexedVolume& answer) override {
        const std::int32_t status = ForwardingVolumes::FSGetVolumeInfo(volumeIndex, answer);
        m_path = answer.rootPath;
        if (status != noErr && status != nsvErr) note(answer.errorNumber);
        return status;
    }
    std::int32_t FSGetVolumeParms(std::int16_t refNumber, GetVolParmsInfoBuffer& buffer) override {
        const std::int32_t status = ForwardingVolumes::FSGetVolumeParms(refNumber, buffer);
        if (status != noErr) note(0);
        return status;
    }

private:
    void note(int number) { m_failures.push_back(systemError("statfs", m_path, number)); }

    std::string m_path;  // of the volume asked last
    std::vector<Error> m_failures;
};

}  // namespace orrinvale::cli
