// FolderUtilities: the folders of the six cleaning categories, the sizes of what lies in them, and
// the one-shot right to clean them. CleanablePlaces.h says what of it may go.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/cleaning/CleanCategory.h"
#include "engine/files/TreeSize.h"
#include "platform/authorization.h"
#include "platform/fileTypes.h"
#include "platform/folders.h"

namespace orrinvale {

class FSRef;

/// Holds no state that changes; any thread.
class FolderUtilities final {
public:
    /// The roots of all mounted local volumes; empty when they can not be told. Called for each
    /// question about the trash.
    using LocalVolumes = std::function<std::vector<std::string>()>;

    /// The references must outlive the object.
    FolderUtilities(const FileSystem& files, const Folders& folders, LocalVolumes localVolumes);

    /// The folders of a CleanCategory by its number; they need not exist. The user's logs may be
    /// none, and a file among them stands for itself. The trash gives the folders whose entries are
    /// what was thrown away: for the volume of the home folder the user's own, for each other local
    /// volume those on it; none when no volume is known. A number above 5 gives none.
    [[nodiscard]] std::vector<std::string> getFolderPath(std::uint32_t index) const;

    /// Bytes of a file, or of everything below a folder, as TreeSize counts them; 0 for a path that
    /// can not be reached. With a watch it can be followed and stopped.
    [[nodiscard]] std::uint64_t sizeOfItemAtPath(const std::string& path,
                                                 const SizeWatch& watch = {}) const;

    /// The same for a reference; 0 for null and for one that names nothing.
    [[nodiscard]] std::uint64_t _sizeOfItemForFSRef(const FSRef* ref,
                                                    const SizeWatch& watch = {}) const;

    /// The path of an entry; nothing for null, for an entry that is gone, and for a path of more
    /// than 4095 bytes.
    [[nodiscard]] std::optional<std::string> pathForRef(const FSRef* ref) const;

    /// The folder to show for a path: a plain folder shows itself; a file, a missing path and an
    /// application bundle show the folder that they are in.
    [[nodiscard]] std::string getFolderFromFile(const std::string& path) const;

    /// Asks the person for the administrator right once more, on a new reference. The one handed in
    /// stays as it was, and the new one goes with the answer, which tells only that the person
    /// agreed. A right that the padlock holds stays.
    [[nodiscard]] static bool CreateAuthoration(AuthorizationRef reference);

    /// Frees the reference; false when the platform does not know it.
    [[nodiscard]] static bool DeleteAuthoration(AuthorizationRef reference);

private:
    [[nodiscard]] std::vector<std::string> userCaches() const;
    [[nodiscard]] std::vector<std::string> trashFolders() const;

    const FileSystem& m_files;
    const Folders& m_folders;
    const LocalVolumes m_localVolumes;
};

}  // namespace orrinvale
