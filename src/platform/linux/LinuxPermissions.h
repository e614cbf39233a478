// Permissions over the Linux system calls. Read platform/permissions.h first.
#pragma once

#include "platform/permissions.h"

namespace orrinvale {

/// Needs /proc: the mode is set through a descriptor that needs no right to read the folder.
class LinuxPermissions final : public Permissions {
public:
    std::optional<std::uint32_t> openToOwner(int folder) const override;
    void setPermissions(int folder, std::uint32_t permissions) const override;
};

}  // namespace orrinvale
