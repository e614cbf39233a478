// removeLoginItem: takes an entry away by the program's one removal, to the trash.
#pragma once

#include <string>
#include <vector>

#include "platform/fileTypes.h"
#include "platform/login_items.h"

namespace orrinvale {

/// The entry in the person's folder, a link itself, if it still is the one that the record was read
/// from; a system's entry of that name counts again then. Why it stays, for people; empty when it
/// went. Waits for other removals.
[[nodiscard]] std::string removeLoginItem(const FileSystem& files, const LoginItemRecord& item,
                                          const std::vector<std::string>& ownFiles,
                                          const std::string& stateFolder);

}  // namespace orrinvale
