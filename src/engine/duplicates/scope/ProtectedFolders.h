// ProtectedFolders: which of what a search found lies in a folder that a person protects.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "engine/duplicates/AppAttrbItem.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// A folder is known by its path, by the path without links, and by what it is, so that neither a
/// link nor a mount leads around it. One that is not there protects its path. What was said of a
/// folder of the search holds from then on. One thread.
class ProtectedFolders final {
public:
    /// The file system outlives the object.
    ProtectedFolders(const FileSystem& files, const std::vector<std::string>& folders);

    [[nodiscard]] bool empty() const { return m_folders.empty(); }
    [[nodiscard]] bool covers(const fileAttrbItem& file);
    /// A bundle that holds a protected folder is protected as a whole.
    [[nodiscard]] bool covers(const AppAttrbItem& bundle);

private:
    struct Guarded {
        std::string path;
        std::string real;
        std::uint64_t device = 0, inode = 0;  // nothing where it is not there
        Descriptor held;                      // where numbers pass: while it is, this one does not
    };
    struct Place {
        std::string real;
        bool isCovered = false;
    };
    const Place& placeOf(const FolderNode& folder);
    bool coversBundleAt(const std::string& path);
    bool isBelowOne(const std::string& folder);
    [[nodiscard]] bool isIn(const std::string& path, const std::string& real) const;
    [[nodiscard]] bool isOne(std::uint64_t device, std::uint64_t inode) const;
    [[nodiscard]] bool isOneAt(const std::string& path) const;

    const FileSystem& m_files;
    std::vector<Guarded> m_folders;
    bool m_holdsPassing = false;
    std::map<const FolderNode*, Place> m_places;
    std::map<std::string, bool> m_below;  // folders above bundles
};

}  // namespace orrinvale
