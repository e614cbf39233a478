// AppImageFile: what an AppImage says about itself, read from its bytes. Nothing of it is run.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/DesktopEntry.h"

namespace orrinvale {

/// How much is read of an image and unpacked at most, in bytes, before it counts as one that says
/// nothing.
inline constexpr std::size_t kAppImageReadLimit = std::size_t{4} << 20U;
inline constexpr std::size_t kAppImageUnpackLimit = std::size_t{8} << 20U;

/// The entry in the file system that the image carries, and nothing where it can not be told: it is
/// cut short, packed in a way that this machine has no library for, or needs more than the limits.
struct AppImageFile {
    bool isAppImage = false;  ///< by its mark, whatever else it holds
    std::optional<DesktopEntry> entry;

    /// Of a file or whatever else is at a path; neither a FIFO nor a device holds the caller up.
    [[nodiscard]] static AppImageFile read(const std::string& path,
                                           const std::vector<std::string>& languages);
    [[nodiscard]] static AppImageFile read(int file, std::uint64_t size,
                                           const std::vector<std::string>& languages);
};

}  // namespace orrinvale
