// inventoryStamp: whether something may have been installed or removed, without an inventory.
#pragma once

#include <string>

#include "platform/FolderVariables.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class FileSystem;

/// Another text when any of the places that tell of installed applications has changed: some
/// twenty looks. May wait for the disk of the home; any thread.
[[nodiscard]] std::string inventoryStamp(const FileSystem& files, const FolderVariables& variables);

}  // namespace orrinvale
