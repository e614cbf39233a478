// Run: one removal, from the walk to the entry to the look at whether it is gone.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "helper/EndSignal.h"
#include "helper/RootJournal.h"
#include "platform/linux/HelperPacket.h"

namespace orrinvale::helper {

/// What all requests of a session share.
struct Grounds {
    uid_t caller;
    const std::vector<std::string>& ownFiles;  ///< the program's own
    RootJournal& journal;                      ///< open, or nothing is set aside
    const EndSignal&
        end;  ///< when it comes the tool is ended, and what is aside gets its own name back
};

/// Verifies and removes one entry in this process, which must have one thread. A file, and a copy
/// of something that stays, is set aside first and looked at again: it goes as what was asked for,
/// or it stays under its own name. The tool is in this process's group.
[[nodiscard]] HelperReply removeEntry(const HelperRequest& request, const Grounds& grounds);

}  // namespace orrinvale::helper
