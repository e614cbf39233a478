// Checks: who may start the helper, and which folders it trusts on the way to an entry.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

#include "platform/descriptor.h"

namespace orrinvale::helper {

/// How the helper was started.
struct Start {
    int arguments = 0;             ///< argc, the program's name included
    bool isRoot = false;           ///< real and effective, and not by a set-user-id bit
    int input = 0;                 ///< the descriptor of standard input
    const char* caller = nullptr;  ///< $PKEXEC_UID, null when it is not set
};

/// Why the helper does not serve; an exit status of sysexits.h with one line for people.
struct Refusal {
    int status;
    std::string line;
};

/// How this process was started.
[[nodiscard]] Start howStarted(int argc);

/// The user who is served: the one whom pkexec names and who made the socket. Anything else is
/// refused.
[[nodiscard]] tl::expected<uid_t, Refusal> callerOf(const Start& start);

/// The parent of an entry and the entry's name in it.
struct VerifiedParent {
    Descriptor folder;  ///< O_PATH
    std::string name;
};

/// Walks from the root to the folder that holds the entry, one name at a time and through no link.
/// Each folder on the way, the root and the last included, has to belong to root or to the caller,
/// and nobody else may write it unless it is sticky; otherwise someone could exchange what stands
/// below it between our look and the tool's. A group may write it when it is one of TrustedGroups.
/// The path is one that readRequest() let through.
[[nodiscard]] tl::expected<VerifiedParent, std::string> openVerifiedParent(std::string_view path,
                                                                           uid_t caller);

}  // namespace orrinvale::helper
