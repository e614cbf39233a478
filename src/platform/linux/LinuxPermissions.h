// Permissions over the Linux system calls. Read platform/permissions.h first.
#pragma once

#include "platform/permissions.h"

namespace orrinvale {

/// Needs /proc to set a mode: it is set through a descriptor that needs no right to read the entry.
class LinuxPermissions final : public Permissions {
public:
    bool isDeletable(const std::string& path) const override;
    SysResult<std::uint32_t> exchangeMode(const std::string& path, std::uint64_t device, std::uint64_t inode,
                                          std::uint32_t mode) const override;
};

}  // namespace orrinvale
