// The way to an entry, with the links in its folders followed.
#pragma once

#include <string>

#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

/// The same entry by a way without links, as the administrator's tool and the list of what stays
/// want it; the entry itself may be a link and is meant as such. The path as it is where its folder
/// can not be resolved: what is at its end is compared by identity.
[[nodiscard]] inline std::string withoutLinksOnTheWay(const FileSystem& files,
                                                      const std::string& path) {
    const auto folder = files.resolved(folderOf(path));
    return folder ? joinPath(*folder, lastPathComponent(path)) : path;
}

}  // namespace orrinvale
