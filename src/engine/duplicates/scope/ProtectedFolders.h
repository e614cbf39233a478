// ProtectedFolders: which entries lie in folders that a person protects. The search marks by it
// what it found, and the removal of a plan asks it again.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/duplicates/AppAttrbItem.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// What stands above some places, by numbers, which a second mount does not change. One thread.
class FoldersAbove final {
public:
    /// All folders above the place at this path without links; each is asked for once.
    void add(const FileSystem& files, const std::string& place);
    [[nodiscard]] bool contains(const FileAttributes& entry) const {
        return m_entries.contains({entry.device, entry.inode});
    }

private:
    std::set<std::string> m_known;
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_entries;  // devices and inodes
};

/// A folder is known by its path, by the path without links, and by what it is, so that neither a
/// link nor a second mount leads around it, nor around the folders above it; where a mount shows it
/// alone, what holds it is found by looking through that. Also where numbers
/// need not last: one that is met by chance makes an entry stay. One that is not there protects its
/// path. Asked once, when the object is made. One thread.
class ProtectedFolders final {
public:
    /// The file system outlives the object.
    ProtectedFolders(const FileSystem& files, const std::vector<std::string>& folders);

    [[nodiscard]] bool empty() const { return m_paths.empty(); }
    /// Of what a search found. What was said of a folder of the search holds from then on.
    [[nodiscard]] bool covers(const fileAttrbItem& file);
    [[nodiscard]] bool covers(const AppAttrbItem& bundle);
    /// Whether the entry at this absolute path lies in one of them, is one, or holds one. Where it
    /// lies is looked up anew after a tenth of a second.
    [[nodiscard]] bool covers(const std::string& path);
    /// Whether a folder is one of them, or stands above one, by what it is and whatever path led to
    /// it: what holds such a folder holds what is protected. Any thread.
    [[nodiscard]] bool isOneOrAbove(const FileAttributes& folder) const {
        return isOne(folder.device, folder.inode) || m_above.contains(folder);
    }
    [[nodiscard]] bool isOneOrAbove(const FolderNode& folder) const;
    /// The path without links on the way to its last component, as old as that.
    [[nodiscard]] std::string realPlace(const std::string& path);

private:
    struct Place {
        std::string real;
        bool isCovered = false;
    };
    const Place& placeOf(const FolderNode& folder);
    const Place& placeAt(const std::string& folder);
    [[nodiscard]] bool isIn(const std::string& path) const;
    [[nodiscard]] bool holdsOne(const std::string& path) const;
    [[nodiscard]] bool isOne(std::uint64_t device, std::uint64_t inode) const {
        return inode != 0 && m_entries.contains({device, inode});
    }
    [[nodiscard]] bool isOneAt(const std::string& path) const;
    bool isBelowOne(const std::string& folder);

    const FileSystem& m_files;
    std::set<std::string> m_paths;  // as they were given, and without links
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_entries;  // devices and inodes of the same
    std::vector<Descriptor> m_held;  // of those whose numbers pass: while they are, these do not
    FoldersAbove m_above;
    std::map<const FolderNode*, Place> m_places;
    std::map<std::string, Place> m_known;           // folders that were asked about lately
    std::map<std::string, bool> m_below;            // the same, and those above them
    std::chrono::steady_clock::time_point m_asked;  // since when both are known
};

}  // namespace orrinvale
