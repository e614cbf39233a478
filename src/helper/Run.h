// Run: one removal, from the walk to the entry to the look at whether it is gone.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "platform/linux/HelperPacket.h"

namespace orrinvale::helper {

/// Verifies and removes one entry in this process, which must have one thread; it changes the working folder. SIGTERM is to be
/// ignored here: the tool, in this process's group, takes it, and what became of the entry is told all the same. `ownFiles` are the
/// program's own files.
[[nodiscard]] HelperReply removeEntry(const HelperRequest& request, uid_t caller,
                                      const std::vector<std::string>& ownFiles);

}  // namespace orrinvale::helper
