// A hard link that took the name of a file that is set aside, and how the file gets its name back.
#pragma once

#include <cstdint>
#include <string>

#include "platform/fileTypes.h"

namespace orrinvale {

/// The link gives way to the file aside, if it is another name of a file that has more of them. At
/// no moment the name is without a file. False when it is none, or the system can not do that; both
/// names are then as they were.
[[nodiscard]] bool takeBackFromLink(const FileSystem& files, int folder, const std::string& aside,
                                    const std::string& own);

/// The same where nobody knows who made the link: only if it has the very bytes of the file aside,
/// its owner, rights and attributes.
[[nodiscard]] bool takeBackName(const FileSystem& files, int folder, const std::string& aside,
                                const std::string& own);

/// The rest of a takeBackFromLink() that was killed: the file of this inode has its own name
/// already, and the link, which has further names, bears the name aside. False where it is not so.
[[nodiscard]] bool removeLinkLeftAside(const FileSystem& files, int folder,
                                       const std::string& aside, const std::string& own,
                                       std::uint64_t inode);

}  // namespace orrinvale
