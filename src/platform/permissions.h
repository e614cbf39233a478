// Permissions: may this user remove an entry, and the mode bits of one. linux/LinuxPermissions.h implements it.
#pragma once

#include <cstdint>
#include <string>

#include "platform/files.h"

namespace orrinvale {

/// Any thread. Paths are absolute and their last component is never followed.
class Permissions {
public:
    virtual ~Permissions() = default;

    /// False when the folder that holds the entry can not be changed by this user (the sticky bit counts), when the entry is a
    /// folder of this user's that he may not read, change or search, and when it can not be told.
    [[nodiscard]] virtual bool isDeletable(const std::string& path) const = 0;

    /// Sets the permissions (the lower twelve bits of the mode) of a file or folder that is still the given one; the former ones,
    /// or an errno: ESTALE for another entry, EOPNOTSUPP for anything but a file or a folder, a link above all.
    [[nodiscard]] virtual SysResult<std::uint32_t> exchangeMode(const std::string& path, std::uint64_t device,
                                                                std::uint64_t inode, std::uint32_t mode) const = 0;

protected:
    Permissions() = default;
    Permissions(const Permissions&) = default;
    Permissions& operator=(const Permissions&) = default;
};

}  // namespace orrinvale
