// inventoryStamp: whether something may have been installed or removed, without an inventory.
#pragma once

#include <string>

namespace orrinvale {

class Applications;
class FileSystem;

/// Another text when any of the places that tell of installed applications has changed: some
/// twenty looks. `applications` has those of its kinds besides bundles, and may be null. May wait
/// for the disk of the home; any thread.
[[nodiscard]] std::string inventoryStamp(const FileSystem& files, const std::string& home,
                                         const Applications* applications);

}  // namespace orrinvale
