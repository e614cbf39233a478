// VolumesManager: ejects one volume or all that can be, and opens a volume's root in the file
// manager. platform/volumes.h does the ejecting, VolumesInfo.h says which volumes there are.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/volumes.h"

namespace orrinvale {

/// A volume that stayed, and why.
struct EjectFailure {
    std::int16_t volRefNumber = 0;
    std::string volumeName;  ///< exact bytes; empty after ejectSingleVolume(), whose caller has it
    std::string volRootDir;  ///< likewise
    std::int32_t status = noErr;
    EjectDissent dissent;
};

/// The failure as one sentence for people, on one line: control bytes in names are escaped, and of
/// many programs that hold the volume three are named. Bytes that are no UTF-8 stay as they are.
[[nodiscard]] std::string ejectFailureText(const EjectFailure& failure);

/// One object belongs to one thread at a time. The ejections wait for the platform, for minutes
/// where a medium is slow.
class VolumesManager final {
public:
    /// Shows a folder in the file manager; false when that can not be had.
    using OpenFolder = std::function<bool(const std::string& path)>;

    /// `platform` must outlive the object.
    VolumesManager(Volumes& platform, OpenFolder openFolder);
    VolumesManager(const VolumesManager&) = delete;
    VolumesManager& operator=(const VolumesManager&) = delete;

    /// True when the volume is ejected. A failure is logged and kept in failures(), without the
    /// names, which the caller has.
    bool ejectSingleVolume(std::int16_t volRefNumber);

    /// Ejects what can be ejected of the volumes that stand now, in their order; one that fails
    /// stops nothing. -1 when there are none, 0 when all went, 1 when at least one stayed. The boot
    /// volume is not spared by any rule of its own.
    std::int32_t ejectAllVolumes();

    /// The same for the volume that somebody sees at this root: whatever came into its place, or
    /// stands elsewhere under its number by now, stays, which is a failure. True where it has gone
    /// already and nothing came. A failure has the root, too.
    bool ejectVolumeAt(std::int16_t volRefNumber, const std::string& volRootDir);

    /// False for no path or an empty one, which touches nothing; else what the file manager says to
    /// the path in its plain form: without repeated slashes, ".", ".." and slashes at the end.
    bool openVolRootDir(const std::optional<std::string>& path);

    /// What stayed at the last call that ejected, in the order of the ejections.
    [[nodiscard]] const std::vector<EjectFailure>& failures() const { return m_failures; }

private:
    [[nodiscard]] std::optional<EjectFailure> eject(std::int16_t volRefNumber);

    Volumes& m_platform;
    const OpenFolder m_openFolder;
    std::vector<EjectFailure> m_failures;
};

}  // namespace orrinvale
