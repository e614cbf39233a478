// What running programs have open below some folders. linux/OpenFiles.cpp implements it.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orrinvale {

/// A snapshot of one moment.
struct OpenFiles {
    /// Paths, as the system tells them, that a program has open, mapped, or as its working folder.
    std::set<std::string, std::less<>> paths;
    /// Device and inode of what a program has open on the devices of the folders, by whatever path:
    /// in a container, or through another mount. Files with several names only where they are open
    /// for writing, since to readers one name less makes no difference.
    std::set<std::pair<std::uint64_t, std::uint64_t>> entries;
    /// Programs of this user that do not show all that they have open, by their names in small
    /// letters.
    std::set<std::string, std::less<>> hiddenPrograms;

    /// Whether the entry at this path, or anything below it, is open.
    [[nodiscard]] bool isWithin(const std::string& path) const;
    /// Whether this very entry is open.
    [[nodiscard]] bool contain(std::uint64_t device, std::uint64_t inode) const {
        return !entries.empty() && entries.contains({device, inode});
    }

    /// What is open at or below these folders, which are absolute and without links. No file system
    /// is asked for anything but what this machine remembers of it, so that none holds the caller
    /// up. This process itself does not count. What other users' programs have open is told to root
    /// alone. Any thread.
    [[nodiscard]] static OpenFiles below(const std::vector<std::string>& folders);
};

}  // namespace orrinvale
