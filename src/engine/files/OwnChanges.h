// OwnChanges: the times of change that our own removals give to files. A file with several names is
// changed by the removal of each, so that its other names no longer are what a scan saw, by our own
// doing and by nobody else's.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Knows for each file exactly the one time of change that it had right after our last removal of a
/// name of it: whoever changes it later, with the time of writing put back, gives it another. One
/// thread. May serve many removals of what one scan saw.
class OwnChanges final {
public:
    /// Removes one name of what was looked at just before, by its name in an open folder. Of a file
    /// with other names, which is held meanwhile, it learns the time of change that they show from
    /// now on. ESTALE when it was changed since that look.
    [[nodiscard]] SysResult<void> removeName(const FileSystem& files, int folder, const char* name,
                                             const FileAttributes& seen);

    /// The attributes as they would be without our removals: of a file that nobody else changed,
    /// with its former time of change.
    [[nodiscard]] FileAttributes withoutOurs(FileAttributes now) const;

    /// Whether a name of this file went before, and others are left.
    [[nodiscard]] bool touched(const FileAttributes& file) const {
        return m_files.contains({file.device, file.inode});
    }

private:
    struct Times {
        std::int64_t seen = 0;  // before we came
        std::int64_t ours = 0;
    };
    void learn(const FileAttributes& before, const FileAttributes& after);

    std::map<std::pair<std::uint64_t, std::uint64_t>, Times> m_files;  // by device and inode
};

}  // namespace orrinvale
