// FolderVariables: the environment's word on where a user's files belong. folders.h and
// engine/settings/UserFolders.h build on it.
#pragma once

#include <sys/types.h>

#include <string>

namespace orrinvale {

/// The variables of the XDG base directory specification, as exact bytes; relative values count as
/// missing and are empty.
struct FolderVariables {
    std::string home{};  ///< HOME, or where it is missing or relative, the user database
    std::string cacheHome{};
    std::string configHome{};
    std::string dataHome{};
    std::string stateHome{};
    uid_t user = 0;

    /// As they are now. getenv(3) is not safe beside setenv(3).
    [[nodiscard]] static FolderVariables ofThisProcess();
};

}  // namespace orrinvale
