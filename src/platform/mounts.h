// MountChanges: which volumes came and went. linux/LinuxMountChanges.h implements it;
// services/volumes/WorkspaceMounts.h listens.
#pragma once

#include <string>
#include <vector>

#include "platform/descriptor.h"

namespace orrinvale {

/// On which poll(2) tells POLLPRI, once for each poller, when anything was mounted or unmounted
/// since it was opened or last polled. Not open where that can not be seen.
[[nodiscard]] Descriptor openMountNews();

/// One volume that came or went.
struct MountChange {
    bool came = false;
    std::string name;  ///< what a person calls the volume, as in IndexedVolume; of one that went,
                       ///< what it was called
    std::string path;  ///< where it is or was mounted, exact bytes
    friend bool operator==(const MountChange&, const MountChange&) = default;
};

/// One thread at a time. No operation asks a volume itself, so none waits for one that does not
/// answer.
class MountChanges {
public:
    virtual ~MountChanges() = default;

    /// A descriptor on which poll(2) tells POLLPRI after a change; it stays the object's. -1 where
    /// changes can not be seen.
    [[nodiscard]] virtual int descriptor() const = 0;

    /// The changes since the last look, or since the object was made: first what went, then what
    /// came, each in the table's order. A volume that is only seen under another of its mounts has
    /// neither come nor gone.
    [[nodiscard]] virtual std::vector<MountChange> look() = 0;

protected:
    MountChanges() = default;
    MountChanges(const MountChanges&) = default;
    MountChanges& operator=(const MountChanges&) = default;
};

}  // namespace orrinvale
