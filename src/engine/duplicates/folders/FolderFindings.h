// FolderFindings: folders that are equal as wholes, and folders that are for the most part in
// another one. FolderFinding.h finds them.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/fileAttrbItem.h"
#include "engine/files/EntryIdentity.h"

namespace orrinvale {

/// A folder of a group.
struct FolderMember {
    std::string path;
    EntryIdentity identity;
    std::int64_t modified =
        0;                     ///< of the newest file that was listed in it, nanoseconds since 1970
    bool isProtected = false;  ///< it lies in a protected folder, or holds one
    std::string place = {};    ///< without links, where that is not the path
};

/// Folders that have equal trees: the same names, types, texts of links and contents to the last
/// entry.
struct FolderGroup {
    std::vector<FolderMember> members;  ///< in the order of the listing
    std::uint64_t entries = 0;          ///< in one of them, at any depth, folders too
    std::uint64_t files = 0;            ///< regular files among these, empty ones too
    std::uint64_t bytes = 0;            ///< of these
    std::uint64_t gain = 0;  ///< bytes that go when one of them stays: a file with several names
                             ///< counts when all its names go
};

/// A folder whose listed files are for the most part in another folder too.
struct PartlyEqual {
    std::string folder;
    std::string other;         ///< neither lies in the other
    std::uint64_t bytes = 0;   ///< of the folder's listed files
    std::uint64_t shared = 0;  ///< of those whose contents the other has too
    std::uint64_t files = 0;   ///< how many of them that are

    /// Rounded down, so that 100 is all of it.
    [[nodiscard]] unsigned percent() const {
        const auto share = static_cast<long double>(shared) / static_cast<long double>(bytes);
        return bytes == 0 ? 0 : shared >= bytes ? 100 : static_cast<unsigned>(share * 100);
    }
};

/// A value; the folders of `classes` live as long as the search.
struct FolderFindings {
    std::vector<FolderGroup> groups;  ///< in the order in which the listing met their first members
    std::vector<PartlyEqual> partly;  ///< what is shared most first
    std::unordered_map<const FolderNode*, std::uint32_t> classes;  ///< equal folders share one
    std::int64_t searched = 0;  ///< when the search began, nanoseconds since 1970

    /// Whether the copies of a file are copies because their folders are: they stand in folders of
    /// one class, one in each.
    [[nodiscard]] bool cover(const std::vector<const fileAttrbItem*>& copies) const;
};

}  // namespace orrinvale
