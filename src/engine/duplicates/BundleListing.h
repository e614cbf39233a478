// BundleListing: everything that lies in a bundle at one moment, and one number that stands for it.
// The search takes it when it lists a bundle; a removal takes it again, and removes nothing when
// the number is another one.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// An entry of any type below a bundle.
struct BundleEntry {
    std::string path;  ///< below the bundle, exact bytes
    FileAttributes attributes;
    std::string linkText;                  ///< of a symbolic link what is written in it
    FileType leadsTo = FileType::Unknown;  ///< of a link what it ends at; Unknown where that was
                                           ///< not asked for, or is nothing
};

struct BundleListing {
    /// The names of each folder by their bytes, a folder before what is in it. No name of a folder
    /// stands here twice.
    std::vector<BundleEntry> entries;

    std::uint64_t bytes =
        0;  ///< lengths of all regular files and of the texts of all links; held at 2^64 - 1

    /// Stands for names, types, sizes, times of change of the contents, texts of links, and inode
    /// numbers of all entries, folders too. Equal for two listings between which nothing below the
    /// bundle was made, removed, renamed, written or exchanged; where inode numbers do not last
    /// they are left out. Times of change of the inode are, since a removal changes them itself.
    std::uint64_t digest = 0;
};

/// What listBundle() is asked for besides.
struct BundleQuery {
    /// FileSystem::devicesOfPassingInodes(), asked once by the caller.
    std::span<const std::uint64_t> passingInodes;
    /// Whether links are looked through for `leadsTo`, which asks whatever they lead to.
    bool followLinks = false;
};

/// Lists the bundle at a path of any length; a link at its end is followed, links in it are not.
/// Reads no contents and opens nothing but folders. The error when anything in it could not be
/// listed or looked at, with its full path; ECANCELED after a stop, which is looked at before each
/// entry. The bundle folder itself is no part of the digest.
[[nodiscard]] Result<BundleListing> listBundle(const FileSystem& files, const std::string& path,
                                               const BundleQuery& query,
                                               const std::atomic<bool>& stop);

/// The same below an open folder, which is left open; `shown` is the path that errors give for it.
[[nodiscard]] Result<BundleListing> listBundleAt(const FileSystem& files, int folder,
                                                 const std::string& shown, const BundleQuery& query,
                                                 const std::atomic<bool>& stop);

}  // namespace orrinvale
