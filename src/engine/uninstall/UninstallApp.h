// UninstallApp: removes a bundle and the files in the Library folders that begin with its
// identifier.
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "engine/files/EntryIdentity.h"
#include "engine/removal/RemovalDoor.h"
#include "engine/uninstall/AppItems.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// One entry that is to go, as it was when the list was made. The identity of one that could not be
/// looked at is nobody's: what comes into its place stays.
struct PlannedEntry {
    std::string path;
    EntryIdentity identity;
    int fault = 0;  ///< errno of the look; ENOENT for one that was not there

    [[nodiscard]] static PlannedEntry at(const FileSystem& files, std::string path);
};

/// Holds no state that changes; any thread.
class UninstallApp final {
public:
    /// `otherIdentifiers` are those of all bundles that stay, as often as they are installed: what
    /// one of them claims is left to it. `root` stands before the first of the folders. With
    /// `areOthersUnread` some may be installed that nobody knows of, and an identifier stands for
    /// whole names alone. The file system outlives the object.
    UninstallApp(const FileSystem& files, std::string home,
                 std::vector<std::string> otherIdentifiers = {}, std::string root = {},
                 bool areOthersUnread = false)
        : m_files(files),
          m_home(std::move(home)),
          m_others(std::move(otherIdentifiers)),
          m_root(std::move(root)),
          m_areOthersUnread(areOthersUnread) {}

    /// The folders that are looked through, in their order.
    [[nodiscard]] std::vector<std::string> searchedFolders() const;

    /// The direct entries of the folders whose names begin with the identifier, in the order of the
    /// folders and of their listings; case matters. An identifier of fewer than three parts,
    /// such as "com", stands for whole names alone. What a longer identifier that stays claims as
    /// well is left out, and an entry that two of the folders show counts once.
    [[nodiscard]] std::vector<std::string> getFilesByBundle(
        const std::string& bundle, const std::vector<std::string>& Paths) const;

    /// All that goes with the application, in the order in which it goes: itself is the last.
    [[nodiscard]] std::vector<PlannedEntry> planOf(const AppItems& app) const;

    /// Removes what planOf() lists now, through the administrator's door where that is open. False
    /// at the first entry that stays; what stands behind it in the list stays too, the application
    /// included.
    [[nodiscard]] bool uninstallApp(const AppItems& app) const;

    /// The same for what was listed before: an entry that is not what it was then stays.
    [[nodiscard]] static bool uninstallApp(const AppItems& app,
                                           const std::vector<PlannedEntry>& plan, RemovalDoor& door,
                                           const std::atomic<bool>& stop, std::string* reason);

private:
    [[nodiscard]] bool isClaimedByOthers(const std::string& name, const std::string& bundle) const;

    const FileSystem& m_files;
    const std::string m_home;
    const std::vector<std::string> m_others;
    const std::string m_root;
    const bool m_areOthersUnread;
};

/// Whether an entry of this name is one of the identifier's.
[[nodiscard]] bool isClaimedBy(const std::string& name, const std::string& identifier);

}  // namespace orrinvale
