// Permissions: folders that shut out their own owner. linux/LinuxPermissions.h implements it.
#pragma once

#include <cstdint>
#include <optional>

namespace orrinvale {

/// Any thread. `folder` is held or open (FileSystem::holdEntry is enough), so that no name is
/// looked up and no other entry is hit.
class Permissions {
public:
    virtual ~Permissions() = default;

    /// Lets this user read, change and search a folder of his own that denies it to him; nobody
    /// else gains anything, so that a process that is killed meanwhile leaves nothing open to
    /// others. The former permissions (the lower twelve bits of the mode), or nothing when there
    /// was nothing to do or it could not be done.
    [[nodiscard]] virtual std::optional<std::uint32_t> openToOwner(int folder) const = 0;

    /// Sets the permissions back, as far as the folder is still there.
    virtual void setPermissions(int folder, std::uint32_t permissions) const = 0;

protected:
    Permissions() = default;
    Permissions(const Permissions&) = default;
    Permissions& operator=(const Permissions&) = default;
};

}  // namespace orrinvale
