// The listing of a whole tree by one thread, in order: for bundles, which are compared as wholes,
// and for callers that want every path. Neither the depth of the tree nor the length of its paths
// is limited.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <string_view>

#include "engine/files/FolderNode.h"
#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// What TreeLister tells of an entry. All of it is valid during the call only.
struct TreeEntry {
    int folder;                 ///< open folder that holds the entry
    std::string_view name;      ///< NUL-terminated
    std::string_view relative;  ///< path below the start of the listing
    FileType type;              ///< a link is a link
};

/// How a tree is listed.
struct TreeListing {
    enum class Order {
        System,
        SortedByBytes
    };  ///< sorted, no name of a folder comes twice, whatever the system lists
    Order order = Order::System;
    bool foldersFirst = false;  ///< a folder before its contents; otherwise behind them, and only
                                ///< when it could be listed
    std::function<void(const TreeEntry&)> entry;
    std::function<void(std::string_view relative, int error)>
        failed;  ///< a folder below the start that could not be listed
    std::function<void(std::string_view relative)>
        enter;                                       ///< a folder is being listed; "" is the start
    std::function<bool(const TreeEntry&)> mayEnter;  ///< false: a folder below the start is told as
                                                     ///< an entry at most; empty: all are entered
};

/// Lists everything below an open folder, which is left open. Links are not followed. The error
/// when the start itself could not be listed. A stop ends the listing early, with what was told so
/// far; folders open then are not told.
[[nodiscard]] SysResult<void> listTree(const FileSystem& files, int start,
                                       const TreeListing& listing, const std::atomic<bool>& stop);

}  // namespace orrinvale
