// AuthorizedDoor: removal with this user's own rights first, and with the administrator right for
// what these do not reach.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/removal/PlainDoor.h"

namespace orrinvale {

/// The parts outlive it.
class AuthorizedDoor final : public RemovalDoor {
public:
    /// What the administrator's tool is handed.
    enum class ToolTakes : std::uint8_t { FilesAndFolders, FilesAlone };

    /// A door of this moment, with the protected places as they are now: one for all that a person
    /// confirmed.
    explicit AuthorizedDoor(const AuthorizationParts& parts,
                            ToolTakes takes = ToolTakes::FilesAndFolders);
    /// `own` as for PlainDoor.
    AuthorizedDoor(const AuthorizationParts& parts, ProtectedPlaces places,
                   ToolTakes takes = ToolTakes::FilesAndFolders,
                   std::shared_ptr<OwnChanges> own = std::make_shared<OwnChanges>());

    /// A folder that shuts out its own owner is opened up for him, and shut again. The
    /// administrator's tool follows a refusal of rights alone, gets the entries that were refused,
    /// and of folders whose contents a scan saw only those that are empty by then: it takes
    /// whatever is in one.
    RemovalResult remove(const LeavingEntry& entry, const std::atomic<bool>& stop) override;
    void flush() override { m_plain.flush(); }

private:
    [[nodiscard]] RemovalResult removePlainly(const LeavingEntry& entry,
                                              const std::atomic<bool>& stop);
    [[nodiscard]] bool removeRefused(const LeavingEntry& entry, RemovalResult& result) const;
    [[nodiscard]] bool isForTheTool(const LeavingEntry& entry, const std::string& refused) const;
    [[nodiscard]] bool runTool(const LeavingEntry& entry, StayedEntry& refused) const;

    const FileSystem& m_files;
    const Permissions* const m_permissions;
    PlainDoor m_plain;
    const ToolTakes m_takes;
};

/// Runs "/bin/rm" as administrator on an entry as it was just seen: why the entry is not gone, or
/// nothing when it is. A path at which nothing stands asks only for the right, as the tool would
/// have nothing to do and nothing to say. With `kept` the helper looks at that copy too.
[[nodiscard]] std::optional<std::string> runRemovalTool(
    const FileSystem& files, const std::string& path, const SysResult<FileAttributes>& entry,
    const std::optional<KeptCopy>& kept = std::nullopt);

/// A look at an entry by a path of any length, links kept.
[[nodiscard]] SysResult<FileAttributes> attributesByPath(const FileSystem& files,
                                                         const std::string& path);

}  // namespace orrinvale
