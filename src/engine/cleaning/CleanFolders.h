// CleanFolders: which folder belongs to which category, by its path alone, and which folders are
// left alone altogether.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/cleaning/CleanCategory.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class FolderUtilities;
class Folders;

/// A snapshot of one moment; any thread. Asks the disk when it is made, and in objection().
class CleanFolders final {
public:
    CleanFolders(const FileSystem& files, const Folders& folders, const FolderUtilities& utilities);

    /// The category whose rules hold for a path without links: that of the innermost folder that
    /// holds it. What lies in none is looked at as strictly as the user's caches.
    [[nodiscard]] CleanCategory rulesFor(std::string_view path) const;

    /// One folder of a category, looked at.
    struct Folder {
        std::string path;         ///< as it was named
        std::string real;         ///< without links
        bool isSingle = false;    ///< a file that stands for itself
        std::string objection{};  ///< why nothing in it is touched; for people
    };
    /// Nothing for what is not there.
    [[nodiscard]] std::optional<Folder> lookAt(const std::string& path) const;

    /// Why nothing is touched at this path of an entry, for people; empty where something may be.
    /// Neither a folder of a category is an entry, nor what holds one.
    [[nodiscard]] std::string objectionToEntry(const std::string& path) const;

    [[nodiscard]] const std::string& systemCaches() const { return m_systemCaches; }
    [[nodiscard]] const std::string& systemLogs() const { return m_systemLogs; }

private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;  // device, inode
    struct Root {
        std::string real;
        CleanCategory category;
        std::optional<Identity> identity;
    };
    struct Other {
        std::string real;
        std::optional<Identity> identity;
    };
    [[nodiscard]] std::optional<Identity> identityOf(const std::string& real) const;
    [[nodiscard]] std::string objectionTo(const Folder& folder) const;
    [[nodiscard]] std::string withoutLinks(const std::string& path) const;

    const FileSystem& m_files;
    std::string m_systemCaches;
    std::string m_systemLogs;
    std::vector<Root> m_roots;
    std::vector<Other> m_others;  // folders of the user for other purposes, without links
    bool m_isForeignHome = false;
};

/// One such snapshot for several scans that belong together. Any thread; the first that asks makes
/// it, and the others wait for that.
class FoldersOfRun final {
public:
    [[nodiscard]] const CleanFolders& get(const FileSystem& files, const Folders& folders,
                                          const FolderUtilities& utilities) {
        std::call_once(m_once, [&] { m_folders.emplace(files, folders, utilities); });
        return *m_folders;
    }

private:
    std::once_flag m_once;
    std::optional<const CleanFolders> m_folders;
};

}  // namespace orrinvale
